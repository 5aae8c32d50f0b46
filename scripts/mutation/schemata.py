"""One build that has many faults, of which the environment chooses one.

Each fault is written around what it changes: "a == b" becomes "((a == b) != vrk_at(7))", the other answer when
VRK_FAULT is 7. VRK_REACHED names a file in which every fault that is come by leaves a mark at its number. What cannot
be written so, like a constant in a constant expression, does not compile, is found by the compiler's own words, and is
built alone. Swapped arguments that do not compile are of two types, and no fault at all.
"""
import json
import re

from workshop import BuildFailed, write_if_other

PREAMBLE = """
#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>
namespace {
const int vrk_fault = getenv("VRK_FAULT") ? atoi(getenv("VRK_FAULT")) : 0;
char *vrk_marks() {
    static char nowhere[MARKS];
    const int file = getenv("VRK_REACHED") ? open(getenv("VRK_REACHED"), O_RDWR) : -1;
    void *marks = file < 0 ? MAP_FAILED : mmap(nullptr, MARKS, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (file >= 0)
        close(file);
    return marks == MAP_FAILED ? nowhere : static_cast<char *>(marks);
}
char *const vrk_reached = vrk_marks();
[[maybe_unused]] bool vrk_at(int fault) {
    vrk_reached[fault] = 1;
    return fault == vrk_fault;
}
template <class T> T vrk_plus(int fault, int more, T value) { return vrk_at(fault) ? T(value + more) : value; }
template <class A, class B> bool vrk_lt(int fault, A &&a, B &&b) { return vrk_at(fault) ? a <= b : a < b; }
template <class A, class B> bool vrk_gt(int fault, A &&a, B &&b) { return vrk_at(fault) ? a >= b : a > b; }
template <class A, class B> bool vrk_le(int fault, A &&a, B &&b) { return vrk_at(fault) ? a < b : a <= b; }
template <class A, class B> bool vrk_ge(int fault, A &&a, B &&b) { return vrk_at(fault) ? a > b : a >= b; }
}
"""


class Schema:
    """The text of one source with its faults in it, and which part of it is whose."""

    def __init__(self, text, faults, numbers, marks):
        opening, closing, replaced = {}, {}, {}
        count = 0
        for fault in faults:
            number = str(numbers[fault])
            for start, end, prefix, suffix in fault.wraps:
                count += 1
                order = (bool(fault.marks), count)  # what has lost its operator is inside of all others
                opening.setdefault(start, []).append((-end, order, prefix.replace("@", number), fault))
                closing.setdefault(end, []).append((-start, (-order[0], -order[1]), suffix.replace("@", number), fault))
            for start, end, mark in fault.marks:
                replaced[start] = (end, mark, fault)
        pieces, self.owned, self.text = [], [], PREAMBLE.replace("MARKS", str(marks))
        at = 0
        for position in sorted({*opening, *closing, *replaced, len(text)}):
            self.text += text[at:position]
            at = max(at, position)
            for *_, piece, fault in sorted(closing.get(position, []), key=lambda entry: entry[:2]):
                self.insert(piece, fault)
            for *_, piece, fault in sorted(opening.get(position, []), key=lambda entry: entry[:2]):
                self.insert(piece, fault)
            if position in replaced:
                at, mark, fault = replaced[position]
                self.insert(mark, fault)

    def insert(self, piece, fault):
        self.owned.append((len(self.text), len(self.text) + len(piece), fault))
        self.text += piece

    def blamed(self, complaints):
        """The faults that the compiler complains of: (line, column, whether it is an error)."""
        starts = [0] + [match.end() for match in re.finditer("\n", self.text)] + [len(self.text)]
        places = [starts[line - 1] + column - 1 for line, column, _ in complaints]
        blamed = {fault for start, end, fault in self.owned if any(start <= place < end for place in places)}
        lines = {line for line, _, is_error in complaints if is_error}
        return blamed or {fault for start, end, fault in self.owned
                          if any(start < starts[line] and end > starts[line - 1] for line in lines)}


def complaints_in(output, file):
    """What a compiler has said of a file."""
    found = re.finditer(rf"{re.escape(file)}:(\d+):(\d+): +(\w+)", output)
    return [(int(match[1]), int(match[2]), match[3] == "error") for match in found]


class Schemata:
    """The build of all faults that can be in one."""

    def __init__(self, texts, faults):
        self.texts = texts      # by file
        self.numbers = {fault: number for number, fault in enumerate(faults, 1)}
        self.marks = len(faults) + 1
        self.alone = {fault for fault in faults if not fault.wraps}  # to be built each by itself
        self.impossible = set()                                      # does not compile at all

    def faults_of(self, file):
        left_out = self.alone | self.impossible
        return [fault for fault in self.numbers if fault.file == file and fault not in left_out]

    def around(self, fault):
        """The numbers of the faults of the same file that are built together with all others, all of them in a header's
        case: whoever comes by one of them may notice the fault."""
        known = self.faults_of(fault.file)
        return [self.numbers[other] for other in known] or range(1, self.marks)

    def write(self, workshop):
        schemas = {}
        for file, text in self.texts.items():
            schema = Schema(text, self.faults_of(file), self.numbers, self.marks) if file.endswith(".cpp") else None
            write_if_other(workshop.tree / file, (schema.text if schema else text).encode())
            schemas[file] = schema
        return schemas

    def build(self, workshop, targets, cache, key):
        """Builds until the compiler has nothing against any fault that is left."""
        known = json.loads(cache.read_text()) if cache.exists() else {}
        if known.get("key") == key:
            self.leave_out(known)
        while True:
            schemas = self.write(workshop)
            try:
                workshop.build(*targets, jobs=2, go_on=0)
                break
            except BuildFailed as failure:
                if not self.learn(schemas, str(failure)):
                    raise
        cache.write_text(json.dumps({"key": key, "alone": [self.numbers[fault] for fault in self.alone],
                                     "impossible": [self.numbers[fault] for fault in self.impossible]}))

    def leave_out(self, known):
        by_number = {number: fault for fault, number in self.numbers.items()}
        self.alone = {by_number[number] for number in known["alone"]}
        self.impossible = {by_number[number] for number in known["impossible"]}

    def declaring(self, file, output):
        """Statements that cannot be left out alone, for they declare something."""
        names = set(re.findall(rf"{re.escape(file)}:\d+:\d+: error: \W*(\w+)\W* was not declared", output))
        return {fault for fault in self.faults_of(file) if fault.replacement == ";" and
                any(re.search(rf"\b{name}\b", fault.before) for name in names)}

    def learn(self, schemas, output):
        """Leaves out what the compiler complains of; false when that is nothing."""
        blamed = set()
        for file, schema in schemas.items():
            if schema:
                blamed |= schema.blamed(complaints_in(output, file)) or self.declaring(file, output)
        self.impossible |= {fault for fault in blamed if fault.is_swap}
        self.alone |= {fault for fault in blamed if not fault.is_swap}
        return bool(blamed)
