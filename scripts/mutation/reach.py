"""Which tests come by which faults, so that a fault is shown to those only that can notice it."""
import json
import time
from dataclasses import dataclass

from workshop import PROGRAMS


@dataclass(frozen=True)
class Group:
    """Tests that are run together: those of a suite, or one test where each starts programs."""
    program: str
    filter: str
    seconds: float
    faults: int  # that it comes by: the fewer, the nearer it is to each

    def seconds_allowed(self):
        return 10 + 20 * self.seconds


class Reach:
    def __init__(self, groups, numbers):
        self.groups = groups  # all that pass without a fault
        self.by_number = {}   # the groups that come by a fault
        for group, reached in zip(groups, numbers):
            for number in reached:
                self.by_number.setdefault(number, []).append(group)

    def near(self, numbers):
        """The groups that come by any of these faults, the nearest first."""
        found = {group for number in numbers for group in self.by_number.get(number, [])}
        return sorted(found, key=lambda group: (group.faults, group.seconds, group.filter))


def filters_of(workshop, program):
    suite = ""
    for line in workshop.run_tests(program, ["--gtest_list_tests"], 60).stdout.splitlines():
        name = line.split("#")[0].rstrip()
        if not name.startswith(" "):
            suite = name
        alone = program in ("box-tests", "xml-tool-tests", "fault-tests")
        if name.startswith(" ") == alone and suite.endswith("."):
            yield suite + name.strip() if alone else suite + "*"


def measure(workshop, marks, say):
    """Every group alone: what it comes by, and how long it takes."""
    file = workshop.tree.with_name("reached")
    for program in PROGRAMS:
        for name in filters_of(workshop, program):
            file.write_bytes(bytes(marks))
            began = time.monotonic()
            failed = workshop.tests_notice(program, [name], 600, VRK_REACHED=str(file))
            seconds = time.monotonic() - began
            reached = [number for number, mark in enumerate(file.read_bytes()) if mark]
            if failed:
                say(f"left out, for it fails without a fault: {program} {name}")
            elif reached:
                yield (program, name, seconds, len(reached)), reached


def find_reach(workshop, marks, cache, key, say):
    """Measures, or takes what was measured of the same sources."""
    known = json.loads(cache.read_text()) if cache.exists() else {}
    if known.get("key") != key:
        say("running every test without a fault")
        known = {"key": key, "groups": list(measure(workshop, marks, say))}
        cache.write_text(json.dumps(known))
    return Reach([Group(*group) for group, _ in known["groups"]], [reached for _, reached in known["groups"]])
