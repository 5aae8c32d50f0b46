"""Copies of the sources in which faults are put, built and tested. The user's own files are never changed."""
import os
import re
import shutil
import signal
import subprocess

PRESET = "mutate"

# What can notice a fault, in the order in which it is asked, and the programs and modules that it starts.
PROGRAMS = {
    "unit-tests": [],
    "box-unit-tests": ["vrk.tessaroll"],
    "box-tests": ["vrk.tessaroll", "vrk-run"],
    "xml-tool-tests": ["vrk-xml"],
    "fault-tests": [],
}
ALL_TARGETS = sorted({*PROGRAMS, *sum(PROGRAMS.values(), [])})

# A program that a fault has made greedy may not take the machine's memory or disk: kilobytes, and blocks of 512 bytes.
LIMITED = 'ulimit -v 8000000; ulimit -f 4000000; exec "$@"'
IN_PLACE = 'mount --bind "$1" "$2" && cd "$2" && shift 2 && ' + LIMITED


class BuildFailed(Exception):
    pass


def all_sources(root):
    """The names of the files that git knows, or would add."""
    command = ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"]
    listed = subprocess.run(command, cwd=root, check=True, capture_output=True, text=True).stdout
    return sorted(name for name in listed.split("\0") if name and (root / name).is_file())


def write_if_other(file, content):
    """A file that is the same stays as old as it is, and is not built again."""
    if not file.is_file() or file.read_bytes() != content:
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(content)


def copy_sources(root, tree, names):
    """Brings files of a tree up to date; what is not among the names goes, but for builds."""
    for name in names:
        write_if_other(tree / name, (root / name).read_bytes())
        shutil.copymode(root / name, tree / name)
    for file in [path for path in tree.rglob("*") if path.is_file()]:
        name = file.relative_to(tree)
        if name.parts[0] != "build" and name.parts[0] not in ("tessaroll", "vrk-includes") and str(name) not in names:
            file.unlink()


class Workshop:
    """A tree of sources with its build."""

    def __init__(self, tree, name):
        self.tree = tree
        self.temporary = tree.with_name(name + "-tmp")

    def run(self, command, seconds, **variables):
        """The finished process; one that takes longer than it may is ended with all that it has started."""
        shutil.rmtree(self.temporary, ignore_errors=True)
        self.temporary.mkdir(parents=True)
        environment = {**os.environ, "TMPDIR": str(self.temporary), "MALLOC_PERTURB_": "165", **variables}
        process = subprocess.Popen(self.limited([str(word) for word in command]), env=environment, cwd=self.tree,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   text=True, errors="replace", start_new_session=True)
        try:
            output, _ = process.communicate(timeout=seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            output, _ = process.communicate()
        return subprocess.CompletedProcess(command, process.returncode, output)

    def limited(self, command):
        return ["sh", "-c", LIMITED, "sh", *command]

    def run_tests(self, program, options, seconds, **variables):
        return self.run([f"build/{PRESET}/bin/{program}", *options], seconds, **variables)

    def failed_tests(self, program, filters, without, seconds, **variables):
        """The names of the tests that fail first, or the filters when there is no name, as after a crash; nothing when
        all pass."""
        chosen = "--gtest_filter=" + ":".join(filters) + "-" + ":".join(without)
        ran = self.run_tests(program, ["--gtest_fail_fast", "--gtest_brief=1", chosen], seconds, **variables)
        if ran.returncode == 0:
            return []
        return re.findall(r"^\[  FAILED  \] ([^\s,]+)", ran.stdout, re.MULTILINE) or filters

    def configure(self):
        kinds = ("EXE", "MODULE", "SHARED") if shutil.which("ld.lld") else ()  # links in no time
        linker = [f"-DCMAKE_{kind}_LINKER_FLAGS=-fuse-ld=lld" for kind in kinds]
        configured = self.run(["cmake", "--preset", PRESET, *linker], 600)
        if configured.returncode != 0:
            raise BuildFailed(configured.stdout)

    def build(self, *targets, jobs=1, go_on=1):
        """Raises what was printed when a target cannot be built, after so many failures."""
        built = self.run(["ninja", "-C", f"build/{PRESET}", "-j", jobs, "-k", go_on, *targets], 7200)
        if built.returncode != 0:
            raise BuildFailed(built.stdout)

    def close(self):
        shutil.rmtree(self.temporary, ignore_errors=True)


class Copy(Workshop):
    """A copy of a tree that stands in its place for whatever is run here: paths that were compiled into programs lead
    into the copy, and only what has a fault is built again."""

    def __init__(self, tree, name):
        super().__init__(tree, name)
        self.copy = tree.with_name(name)
        self.changed = None  # the file that has a fault now
        shutil.rmtree(self.copy, ignore_errors=True)
        subprocess.run(["cp", "-a", "--reflink=auto", tree, self.copy], check=True)

    def limited(self, command):
        namespace = ["unshare", "--mount"] if os.geteuid() == 0 else ["unshare", "--mount", "--map-root-user"]
        return [*namespace, "sh", "-c", IN_PLACE, "sh", str(self.copy), str(self.tree), *command]

    def put(self, fault, text):
        """Writes a source with one fault, and mends the one that had the last."""
        if self.changed and self.changed != fault.file:
            shutil.copyfile(self.tree / self.changed, self.copy / self.changed)
        self.changed = fault.file
        (self.copy / fault.file).write_text(text[:fault.start] + fault.replacement + text[fault.end:])

    def close(self):
        super().close()
        shutil.rmtree(self.copy, ignore_errors=True)
