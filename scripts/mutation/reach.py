"""Which tests come by which faults, so that a fault is shown to those only that can notice it."""
import json
import time
from dataclasses import dataclass

from workshop import PROGRAMS


@dataclass(frozen=True)
class Test:
    program: str
    name: str
    seconds: float
    faults: int  # that it comes by

    def seconds_allowed(self):
        return 10 + 20 * self.seconds


class Reach:
    def __init__(self, tests, numbers, broken):
        self.broken = broken  # tests that fail without a fault, and are left out
        self.by_number = {}   # the tests that come by a fault
        for test, reached in zip(tests, numbers):
            for number in reached:
                self.by_number.setdefault(number, []).append(test)

    def near(self, numbers):
        """The tests that come by any of these faults, those first that are quick and come by few others."""
        found = {test for number in numbers for test in self.by_number.get(number, [])}
        return sorted(found, key=lambda test: (test.seconds * test.faults, test.name))


def tests_of(workshop, program):
    suite = ""
    for line in workshop.run_tests(program, ["--gtest_list_tests"], 60).stdout.splitlines():
        name = line.split("#")[0].rstrip()
        if not name.startswith(" "):
            suite = name
        elif suite.endswith("."):
            yield suite + name.strip()


def measure(workshop, marks, broken, say):
    """Every test alone: what it comes by, and how long it takes. Tests that fail are added to `broken`."""
    file = workshop.tree.with_name("reached")
    for program in PROGRAMS:
        for name in tests_of(workshop, program):
            failed = True
            while failed:
                file.write_bytes(bytes(marks))
                began = time.monotonic()
                failed = workshop.failed_tests(program, [name], broken, 600, VRK_REACHED=str(file))
                seconds = time.monotonic() - began
                broken += failed
                for test in failed:
                    say(f"left out, for it fails without a fault: {program} {test}")
            reached = [number for number, mark in enumerate(file.read_bytes()) if mark]
            if reached:
                yield (program, name, seconds, len(reached)), reached


def find_reach(workshop, marks, cache, key, say):
    """Measures, or takes what was measured of the same sources."""
    known = json.loads(cache.read_text()) if cache.exists() else {}
    if known.get("key") != key:
        say("running every test without a fault")
        broken = []
        known = {"key": key, "tests": list(measure(workshop, marks, broken, say)), "broken": broken}
        cache.write_text(json.dumps(known))
    return Reach([Test(*test) for test, _ in known["tests"]], [reached for _, reached in known["tests"]],
                 known["broken"])
