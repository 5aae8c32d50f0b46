"""The faults that change nothing that anybody could notice, each with its reason: equivalent.txt.

An entry is a paragraph: the file, the line without the fault after "- ", the line with it after "+ ", as mutate.py
prints them, and the reason. A line that begins with "#" is a comment.
"""


class Equivalents:
    def __init__(self, file):
        self.entries = set()  # (file, before, after)
        text = "\n".join(line for line in file.read_text().splitlines() if not line.startswith("#"))
        for paragraph in filter(str.strip, text.split("\n\n")):
            name, before, after, *reason = paragraph.strip().splitlines()
            if not (before.startswith("- ") and after.startswith("+ ") and reason):
                raise ValueError(f"{file}: not a file, a line without and with the fault, and a reason:\n{paragraph}")
            self.entries.add((name, before[2:], after[2:]))

    @staticmethod
    def key(fault):
        return fault.file, fault.before, fault.after

    def __contains__(self, fault):
        return self.key(fault) in self.entries

    def report_stale(self, faults, say):
        """Prints what the sources cannot have any more."""
        for file, before, after in sorted(self.entries - set(map(self.key, faults))):
            say(f"equivalent.txt has a fault that the sources have not:\n{file}\n- {before}\n+ {after}\n")
