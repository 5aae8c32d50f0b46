#!/usr/bin/env python3
"""Puts one fault at a time into the plug-in's sources, and tells which ones no test notices.

A fault that does not compile is replaced by another of the same file; one that runs without end is noticed. Everything
happens in copies of the sources under build/mutate. Ends with failure when fewer than 97 of 100 faults are noticed.
What is printed with its number can be run by hand: VRK_FAULT=NUMBER build/mutate/tree/build/mutate/bin/unit-tests.
"""
import argparse
import hashlib
import random
import sys
import threading
import time
from pathlib import Path

sys.dont_write_bytecode = True  # nothing is left beside the sources
sys.path.insert(0, str(Path(__file__).parent / "mutation"))

from equivalent import Equivalents
from faults import Source
from reach import find_reach
from schemata import Schemata
from workshop import ALL_TARGETS, PROGRAMS, BuildFailed, Copy, Workshop, all_sources, copy_sources

ROOT = Path(__file__).resolve().parent.parent
PLACE = ROOT / "build" / "mutate"
PARTS = ("tessaroll", "vrk-includes")
ENOUGH = 0.97
ROUNDS = (0.3, 2, float("inf"))  # seconds that the tests of a round take together at most


def say(text):
    print(text, flush=True)


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, help="choose the same faults again")
    parser.add_argument("--sample", type=int, default=1000, metavar="N", help="how many faults (default: %(default)s)")
    parser.add_argument("--only", metavar="FILE", action="append", help="faults of this file only")
    parser.add_argument("--at", metavar="FILE:LINE", help="every fault of this line, and nothing else")
    parser.add_argument("--list", action="store_true", help="print the faults and build nothing")
    parser.add_argument("--jobs", type=int, default=2, metavar="N", help="faults that are tested at once")
    return parser.parse_args()


def plugin_sources():
    """Those of other systems are not compiled here."""
    files = [file for part in PARTS for file in (ROOT / part).iterdir() if file.suffix in (".cpp", ".h")]
    names = sorted(str(file.relative_to(ROOT)) for file in files)
    return [Source(name, (ROOT / name).read_text()) for name in names if "-windows" not in name]


def key_of(texts):
    digest = hashlib.sha256()
    for text in texts:
        digest.update(text + b"\0")
    return digest.hexdigest()


def shares(sample, faults, lines):
    """How many of the sample each file gets: in proportion to its lines, and no more than it has faults."""
    left, given = min(sample, sum(map(len, faults.values()))), dict.fromkeys(faults, 0)
    while left:
        open_files = [file for file in faults if given[file] < len(faults[file])]
        file = min(open_files, key=lambda name: ((given[name] + 1) / lines[name], name))
        given[file] += 1
        left -= 1
    return given


class Supply:
    """The faults of a run. Workers take from it, and ask for another when one does not compile."""

    def __init__(self, faults, given):
        self.left = {file: list(reversed(faults[file])) for file in faults}
        self.wanted = dict(given)
        self.lock = threading.Lock()

    def take(self):
        with self.lock:
            file = next((name for name, count in self.wanted.items() if count and self.left[name]), None)
            if not file:
                return None
            self.wanted[file] -= 1
            return self.left[file].pop()

    def replace(self, fault):
        with self.lock:
            self.wanted[fault.file] += 1


class Results:
    def __init__(self, total, numbers):
        self.total = total
        self.numbers = numbers
        self.noticed, self.survived = {}, {}
        self.lock = threading.Lock()
        self.began = time.monotonic()

    def add(self, fault, is_noticed):
        with self.lock:
            counts = self.noticed if is_noticed else self.survived
            counts[fault.file] = counts.get(fault.file, 0) + 1
            if not is_noticed:
                say(described(fault, self.numbers))
            done = sum(self.noticed.values()) + sum(self.survived.values())
            if done % 100 == 0:
                minutes = (time.monotonic() - self.began) / 60
                say(f"... {done} of {self.total} after {minutes:.1f} minutes\n")

    def table(self):
        """Prints the numbers by file; returns the part that is noticed."""
        say(f"{'':34}{'faults':>8}{'noticed':>9}{'of 100':>8}")
        for file in sorted({*self.noticed, *self.survived}):
            self.row(file, self.noticed.get(file, 0), self.survived.get(file, 0))
        noticed, survived = sum(self.noticed.values()), sum(self.survived.values())
        self.row("all", noticed, survived)
        return noticed / max(noticed + survived, 1)

    @staticmethod
    def row(name, noticed, survived):
        total = noticed + survived
        say(f"{name:34}{total:8}{noticed:9}{100 * noticed / max(total, 1):8.1f}")


def described(fault, numbers):
    return f"# {numbers[fault]}, line {fault.line}\n{fault.file}\n- {fault.before}\n+ {fault.after}\n"


def rounds(tests):
    """The nearest tests first, a few at a time."""
    left = list(tests)
    for seconds in ROUNDS:
        some = []
        while left and (not some or sum(test.seconds for test in some) + left[0].seconds < seconds):
            some.append(left.pop(0))
        yield some


class Worker:
    def __init__(self, number, tree, schemata, reach, texts):
        self.name = f"copy-{number}"
        self.workshop = Workshop(tree, self.name)
        self.copy = None  # made when it is needed
        self.tree, self.schemata, self.reach, self.texts = tree, schemata, reach, texts

    def run(self, supply, results):
        fault = supply.take()
        while fault:
            try:
                results.add(fault, self.is_noticed(fault))
            except BuildFailed:
                supply.replace(fault)
            fault = supply.take()
        for used in filter(None, (self.workshop, self.copy)):
            used.close()

    def is_noticed(self, fault):
        if fault in self.schemata.impossible:
            raise BuildFailed
        number = self.schemata.numbers[fault]
        if fault not in self.schemata.alone:
            return self.tests_notice(self.workshop, self.reach.near([number]), VRK_FAULT=str(number))
        if not self.copy:
            self.copy = Copy(self.tree, self.name)
        self.copy.put(fault, self.texts[fault.file])
        return self.tests_notice(self.copy, self.reach.near(self.schemata.around(fault)))

    def tests_notice(self, workshop, tests, **variables):
        for some in rounds(tests):
            for program in PROGRAMS:
                asked = [test for test in some if test.program == program]
                if asked and workshop is self.copy:
                    workshop.build(program, *PROGRAMS[program])
                seconds = sum(test.seconds_allowed() for test in asked)
                if asked and workshop.failed_tests(program, [test.name for test in asked], self.reach.broken, seconds,
                                                   **variables):
                    return True
        return False


def prepare(texts, all_faults):
    """Everything built once, and which tests come by which fault."""
    names, tree = all_sources(ROOT), PLACE / "tree"
    instrumented = [name for name in names if name in texts]
    copy_sources(ROOT, tree, [name for name in names if name not in instrumented])
    workshop, schemata = Workshop(tree, "building"), Schemata(texts, all_faults)
    scripts = [file.read_bytes() for file in sorted(Path(__file__).parent.glob("mutation/*.py"))]
    key = key_of([text.encode() for text in texts.values()] + scripts)
    say("building")
    schemata.write(workshop)
    workshop.configure()
    schemata.build(workshop, ALL_TARGETS, PLACE / "schemata.json", key)
    tested = [(ROOT / name).read_bytes() for name in names if not name.startswith("scripts/")]
    everything = key_of([key.encode(), *tested])
    reach = find_reach(workshop, schemata.marks, PLACE / "reach.json", everything, say)
    workshop.close()
    return tree, schemata, reach


def main():
    options = arguments()
    equivalents = Equivalents(ROOT / "scripts" / "mutation" / "equivalent.txt")
    sources = plugin_sources()
    by_file = {source.file: source.all_faults() for source in sources}
    all_faults = sum(by_file.values(), [])
    equivalents.report_stale(all_faults, say)

    def is_wanted(fault):
        return (fault not in equivalents and (not options.only or fault.file in options.only) and
                (not options.at or f"{fault.file}:{fault.line}" == options.at))

    faults = {file: list(filter(is_wanted, of_file)) for file, of_file in by_file.items()}
    faults = {file: of_file for file, of_file in faults.items() if of_file}
    if options.list:
        numbers = {fault: number for number, fault in enumerate(all_faults, 1)}
        for fault in sum(faults.values(), []):
            say(described(fault, numbers))
        return 0
    seed = options.seed if options.seed is not None else random.randrange(10**6)
    say(f"seed {seed}")
    for file in faults:
        random.Random(f"{seed} {file}").shuffle(faults[file])
    given = shares(10**6 if options.at else options.sample, faults,
                   {source.file: len(source.line_starts) for source in sources})
    tree, schemata, reach = prepare({source.file: source.text for source in sources}, all_faults)
    supply, results = Supply(faults, given), Results(sum(given.values()), schemata.numbers)
    workers = [Worker(number, tree, schemata, reach, schemata.texts) for number in range(options.jobs)]
    threads = [threading.Thread(target=worker.run, args=(supply, results)) for worker in workers]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return 0 if results.table() >= ENOUGH else 1


if __name__ == "__main__":
    sys.exit(main())
