#!/usr/bin/env python3
"""Tries the tests: makes one small change at a time to a room's code and sees whether a test fails.

    mutate.py --room app
    mutate.py --room overview --sample 50 --seed 1
    mutate.py --room overview --sample 80 --resume     goes on: 30 more of the same order
    mutate.py --room overview --retry          only those that survived the last run
    mutate.py --room overview --list           shows the changes and tries none

A change ("mutant") that fails to build is set aside, and so is one that gives the very object code of
the original. Of the others, those that make a test fail are killed; the rest survive and are listed
with file, line and change.

Works on a copy of the tree in build/mutants/ (see --work): the tree itself is never written to. Tests
run one at a time, the likeliest to fail first: those of the room itself, and the whole-program tests
for what these let through and for the file that only they see, app/main.cpp. Results stand in
build/mutants/<room>.json.

Ends with status 1 where a change survives.
"""

import argparse
import fcntl
import hashlib
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from collections import Counter, defaultdict
from pathlib import Path

PROJECT = Path(__file__).resolve().parent.parent
WHOLE_PROGRAM = ("panel", "faults")  # the folders below tests/ whose tests run the program itself
MAIN = "app/main.cpp"
BUILD_TIMEOUT = 600  # seconds
POLL_INTERVAL = 0.1  # seconds
PATIENCE = 10  # seconds for a test to end when it is asked to
FAILURE = b"\nFAIL!"  # what QtTest writes of a function that fails
MEMORY_LIMIT = 4 << 30  # bytes of address space for each process of a test

# No debug information: it doubles the time to link. No hardening: it changes nothing that a test sees.
CONFIGURATION = [
    "-GNinja",
    "-DCMAKE_BUILD_TYPE=Debug",
    "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -w",
    "-DPANEL_HARDENING=OFF",
    "-DBUILD_TESTING=ON",
    "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache",
]

# Most changes need several test programs linked anew.
if shutil.which("ld.lld"):
    CONFIGURATION.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld")

# Most of a change's time goes into reading Qt's headers: the room gets them precompiled.
PRECOMPILE = """\
function(precompile_qt)
    get_property(targets DIRECTORY "${{CMAKE_SOURCE_DIR}}/{room}" PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target IN LISTS targets)
        get_target_property(type ${{target}} TYPE)
        if(type STREQUAL STATIC_LIBRARY)
            get_target_property(libraries ${{target}} LINK_LIBRARIES)
            if("Qt5::Widgets" IN_LIST libraries)
                target_precompile_headers(${{target}} PRIVATE <QtWidgets>)
            else()
                target_precompile_headers(${{target}} PRIVATE <QtCore>)
            endif()
        endif()
    endforeach()
endfunction()
cmake_language(DEFER CALL precompile_qt)
"""

# --- reading the code

TOKEN = re.compile(
    r"""
    (?P<comment> //[^\n]* | /\*.*?\*/ )
  | (?P<directive> ^[ \t]*\#(?:[^\n\\]|\\.|\\\n)* )
  | (?P<raw> (?:u8|u|U|L)?R"(?P<fence>[^(\s]*)\(.*?\)(?P=fence)" )
  | (?P<string> (?:u8|u|U|L)?"(?:[^"\\\n]|\\.)*" )
  | (?P<character> '(?:[^'\\\n]|\\.)+' )
  | (?P<number> (?:0[xX][0-9a-fA-F]+ | \d+\.\d*(?:[eE][+-]?\d+)? | \.\d+ | \d+)[uUlLfF]* )
  | (?P<word> [A-Za-z_]\w* )
  | (?P<operator> <<=|>>=|\.\.\.|->\*|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||\+=|-=|\*=|/=|%=|\|=|&=|\^=|::|[^\s\w] )
    """,
    re.X | re.M | re.S,
)


class Token:
    __slots__ = ("kind", "text", "start", "end")

    def __init__(self, match):
        self.kind = match.lastgroup if match.lastgroup != "fence" else "raw"
        self.text = match.group()
        self.start = match.start()
        self.end = match.end()


def tokens_of(text):
    return [t for t in map(Token, TOKEN.finditer(text)) if t.kind not in ("comment", "directive")]


OPENING = {"(": ")", "[": "]", "{": "}"}


def partners(tokens):
    """For each bracket's place among the tokens, the place of its partner."""
    partner = {}
    stack = []
    for i, token in enumerate(tokens):
        if token.text in OPENING:
            stack.append(i)
        elif stack and token.text == OPENING[tokens[stack[-1]].text]:
            partner[i] = stack.pop()
            partner[partner[i]] = i
    return partner


# --- the changes

COMPARISONS = {
    "==": ["!="],
    "!=": ["=="],
    "<": ["<=", ">="],
    "<=": ["<", ">"],
    ">": [">=", "<="],
    ">=": [">", "<"],
}
LOGIC = {"&&": ["||"], "||": ["&&"]}
ARITHMETIC = {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "|": ["&"], "&": ["|"]}
ASSIGNMENTS = {"+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "|=": ["&="], "&=": ["|="]}
STEPS = {"++": ["--"], "--": ["++"]}

# What stands before a brace that opens a block, not a list of values.
BEFORE_BLOCK = {")", "else", "do", "try", "{", "}", ";", ":", "const", "override", "noexcept", "mutable"}
LABELS = {"case", "default", "public", "private", "protected", "signals", "slots"}
SCOPES = {"class", "enum", "extern", "inline", "namespace", "struct", "union"}
DECLARING = {
    "alignas", "auto", "class", "const", "constexpr", "enum", "explicit", "extern", "friend", "inline",
    "namespace", "static", "static_assert", "struct", "template", "typedef", "typename", "union",
    "using", "virtual",
}  # fmt: skip
CONTROL = {"if", "for", "while", "switch"}
EMPTY_RESULTS = {"{}", "false", "true", "0", "QString()", "std::nullopt", "nullptr"}


class Mutant:
    """One change: text[start:end] of a file becomes `after`."""

    def __init__(self, file, text, kind, start, end, after):
        self.file = file
        self.kind = kind
        self.start = start
        self.end = end
        self.before = text[start:end]
        self.after = after
        self.line = text.count("\n", 0, start) + 1
        first = text.rfind("\n", 0, start) + 1
        last = text.find("\n", end)
        self.old_line = text[first:last]
        self.new_line = text[first:start] + after + text[end:last]

    def key(self):
        return f"{self.file}:{self.start}:{self.before}=>{self.after}"

    def describe(self):
        def flat(line):
            return " ".join(line.split())

        return f"{self.file}:{self.line}: [{self.kind}] {flat(self.old_line)}  =>  {flat(self.new_line)}"


def is_spaced(text, token):
    """Binary operators stand between blanks; templates, references and pointers don't."""
    return text[token.start - 1] in " \n" and text[token.end : token.end + 1] in (" ", "\n")


def number_variants(number):
    suffix = re.search(r"[uUlLfF]*$", number).group() if not number.startswith(("0x", "0X")) else ""
    digits = number[: len(number) - len(suffix)]
    if "." in digits or "e" in digits.lower() and not digits.lower().startswith("0x"):
        return [f"({number} + 1)"]
    value = int(digits, 0 if digits.lower().startswith("0x") or digits == "0" else 10)
    variants = [value + 1] if value == 0 else [value + 1, value - 1]
    return [f"{v:#x}" if digits.lower().startswith("0x") else f"{v}{suffix}" for v in variants]


def token_changes(text, tokens):
    for i, token in enumerate(tokens):
        before = tokens[i - 1] if i else None
        after = tokens[i + 1] if i + 1 < len(tokens) else None
        where = token.start, token.end

        if token.kind == "operator":
            for kind, table in (("comparison", COMPARISONS), ("logic", LOGIC),
                                ("arithmetic", ARITHMETIC), ("assignment", ASSIGNMENTS)):  # fmt: skip
                if token.text in table and is_spaced(text, token):
                    for replacement in table[token.text]:
                        yield (kind, *where, replacement)
            for replacement in STEPS.get(token.text, []):
                yield ("step", *where, replacement)
            if token.text == "!":
                yield ("negation", *where, "")
            if token.text == "-" and after and not is_spaced(text, token):
                yield ("sign", *where, "")

        elif token.kind == "number":
            for replacement in number_variants(token.text):
                yield ("number", *where, replacement)

        elif token.kind == "string":
            # The first argument is for the translation tools and reaches no compiler.
            is_context = i >= 2 and tokens[i - 2].text == "QT_TRANSLATE_NOOP"
            if not token.text.endswith('""') and not is_context:
                yield ("string", *where, token.text[: token.text.index('"')] + '""')

        elif token.text in ("true", "false"):
            yield ("boolean", *where, "false" if token.text == "true" else "true")

        elif token.text in ("if", "while") and after and after.text == "(":
            partner = partners(tokens[i + 1 :]).get(0)
            if partner:
                last = tokens[i + 1 + partner]
                condition = text[after.end : last.start]
                if not condition.startswith("!"):
                    yield ("condition", after.end, last.start, f"!({condition})")

        if token.text == "?":
            yield from ternary_changes(text, tokens, i)


def ternary_changes(text, tokens, i):
    depth = 0
    colon = None
    for j in range(i + 1, len(tokens)):
        word = tokens[j].text
        if depth == 0 and word == ":" and colon is None:
            colon = j
        elif depth == 0 and word in (",", ";", ")", "}", "]"):
            if colon is not None:
                first = text[tokens[i + 1].start : tokens[colon - 1].end]
                second = text[tokens[colon + 1].start : tokens[j - 1].end]
                swapped = f"{second} : {first}"
                yield ("choice", tokens[i + 1].start, tokens[j - 1].end, swapped)
            return
        depth += (word in OPENING) - (word in OPENING.values())


def is_declaration(statement):
    """Whether the tokens of a statement begin with a type and a name, or a word that declares."""
    if statement[0].text in DECLARING or statement[0].kind != "word" and statement[0].text != "*":
        return statement[0].text not in ("++", "--")
    i = 0
    depth = 0
    while i < len(statement):
        word = statement[i]
        if word.text == "<":
            depth += 1
        elif word.text == ">":
            depth -= 1
        elif depth == 0 and word.kind == "word":
            previous = statement[i - 1] if i else None
            if previous and previous.text in ("*", "&", "&&", ">") and i > 1:
                return True
            if previous and previous.kind == "word" and previous.text not in ("delete", "return"):
                return True
        elif depth == 0 and word.text not in ("::", "*", "&", "&&"):
            return False
        i += 1
    return False


def statement_changes(text, tokens):
    """Statements removed, and results emptied."""
    partner = partners(tokens)
    blocks = []  # for each open bracket: "" for a list of values, "{" for a block, or a scope's word
    start = 0
    for i, token in enumerate(tokens):
        in_block = not blocks or blocks[-1]
        if token.text in OPENING:
            is_scope = (token.text == "{" and in_block and start < i and tokens[start].text in SCOPES
                        and not any(t.text in ("=", "(") for t in tokens[start:i]))  # fmt: skip
            is_block = token.text == "{" and (i == 0 or tokens[i - 1].text in BEFORE_BLOCK)
            blocks.append(tokens[start].text if is_scope else "{" if is_block else "")
            if blocks[-1]:
                start = i + 1
        elif token.text in OPENING.values() and blocks:
            was_block = blocks.pop()
            in_block = not blocks or blocks[-1]
            if was_block and in_block:
                start = i + 1
            elif token.text == ")" and in_block and i in partner and partner[i] > 0:
                if tokens[partner[i] - 1].text in CONTROL:
                    start = i + 1
        elif token.text in ("else", "do") and in_block:
            start = i + 1
        elif token.text == ":" and in_block and tokens[start].text in LABELS:
            start = i + 1
        elif token.text == ";" and in_block:
            statement = tokens[start:i]
            in_function = blocks and blocks[-1] == "{"
            start = i + 1
            if not statement or not in_function:
                continue
            begin, end = statement[0].start, statement[-1].end
            if statement[0].text == "return" and len(statement) > 1:
                if text[statement[1].start : end] not in EMPTY_RESULTS:
                    yield ("result", statement[1].start, end, "{}")
            elif statement[0].text in ("return", "break", "continue") or not is_declaration(statement):
                yield ("statement", begin, end, "")


def mutants_of(file):
    text = (PROJECT / file).read_text()
    tokens = tokens_of(text)
    seen = set()
    for change in [*token_changes(text, tokens), *statement_changes(text, tokens)]:
        mutant = Mutant(file, text, *change)
        if mutant.key() not in seen:
            seen.add(mutant.key())
            yield mutant


# --- the copy of the tree


class Copy:
    """The copy that the changes are made to, with its build folder."""

    def __init__(self, work, jobs):
        self.tree = work / "tree"
        self.build = work / "build"
        self.jobs = jobs

    def synchronise(self):
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=PROJECT, check=True, capture_output=True, text=True)  # fmt: skip
        wanted = {f for f in listed.stdout.split("\0") if f and (PROJECT / f).is_file()}
        for file in wanted:
            source, target = PROJECT / file, self.tree / file
            content = source.read_bytes()
            if not target.is_file() or target.read_bytes() != content:
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_bytes(content)
            target.chmod(source.stat().st_mode)
        for path in self.tree.rglob("*"):
            if path.is_file() and str(path.relative_to(self.tree)) not in wanted:
                path.unlink()

    def configure(self, room):
        include = self.tree.parent / "precompile.cmake"
        include.write_text(PRECOMPILE.format(room=room))
        subprocess.run(["cmake", "-S", self.tree, "-B", self.build, *CONFIGURATION,
                        f"-DCMAKE_PROJECT_INCLUDE={include}"],
                       check=True, stdout=subprocess.DEVNULL)  # fmt: skip

    def make(self, targets):
        """Builds the targets; returns whether that worked, and what the build said."""
        command = ["ninja", "-C", str(self.build), f"-j{self.jobs}", *targets]
        try:
            done = subprocess.run(command, timeout=BUILD_TIMEOUT, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, text=True)  # fmt: skip
        except subprocess.TimeoutExpired:
            return False, "the build took too long"
        return done.returncode == 0, done.stdout

    def object_code(self, room):
        """A digest of what the room and the program's own file compile to."""
        digest = hashlib.sha256()
        folders = [self.build / room, self.build / "CMakeFiles" / "corvane-panel.dir"]
        for path in sorted(p for folder in folders for p in folder.rglob("*.o")):
            digest.update(path.read_bytes())
        return digest.hexdigest()

    def tests(self, folder):
        """The tests that are declared in tests/<folder>."""
        listed = subprocess.run(["ctest", "--show-only=json-v1"], cwd=self.build, check=True,
                                capture_output=True, text=True)  # fmt: skip
        for entry in json.loads(listed.stdout)["tests"]:
            properties = {p["name"]: p["value"] for p in entry.get("properties", [])}
            if Path(properties["WORKING_DIRECTORY"]) == self.build / "tests" / folder:
                yield Test(entry["name"], entry["command"], self.build, properties.get("TIMEOUT", 60))


class Test:
    def __init__(self, name, command, build, timeout):
        self.name = name
        self.command = command
        self.build = build
        self.timeout = timeout
        self.duration = 1.0
        self.kills = Counter()

    def targets(self):
        """What must be built to run it."""
        for word in self.command:
            path = Path(word)
            if path.is_relative_to(self.build):
                yield str(path.relative_to(self.build))

    def run(self):
        """Returns "passed", "failed" or "timeout", and the output."""
        with tempfile.TemporaryFile() as log:
            # A session of its own, so that its whole group of processes can be ended.
            process = subprocess.Popen(
                ["prlimit", f"--as={MEMORY_LIMIT}", *self.command], cwd=self.build,
                stdin=subprocess.DEVNULL, stdout=log, stderr=subprocess.STDOUT,
                start_new_session=True)  # fmt: skip
            try:
                return self.watch(process, log)
            finally:
                end_group(process)

    def watch(self, process, log):
        deadline = time.monotonic() + self.timeout
        while True:
            ended = process.poll() is not None
            output = os.pread(log.fileno(), os.fstat(log.fileno()).st_size, 0)
            # One failure is enough; the rest of a test program's functions may take long.
            if FAILURE in output or ended and process.returncode != 0:
                return "failed", output
            if ended:
                return "passed", output
            if time.monotonic() > deadline:
                return "timeout", output
            time.sleep(POLL_INTERVAL)


def end_group(process):
    """Ends the processes that a test has started, first politely: it cleans up after itself."""
    if process.poll() is not None:
        return
    # As long as it isn't waited for, its number can't be anybody else's.
    os.killpg(process.pid, signal.SIGTERM)
    deadline = time.monotonic() + PATIENCE
    unreaped = os.WEXITED | os.WNOHANG | os.WNOWAIT
    while time.monotonic() < deadline and not os.waitid(os.P_PID, process.pid, unreaped):
        time.sleep(POLL_INTERVAL)
    # A child that the signal met between its creation and its own program may hang in the handler
    # that it has from the test.
    os.killpg(process.pid, signal.SIGKILL)
    process.wait()


# --- the run


class Run:
    def __init__(self, copy, room, whole, without):
        def chosen(*folders):
            return [t for folder in folders for t in copy.tests(folder)
                    if not (without and re.search(without, t.name))]  # fmt: skip

        self.copy = copy
        self.room = room
        self.room_tests = chosen(room)
        self.whole_tests = [] if whole == "never" else chosen(*WHOLE_PROGRAM)

    def baseline(self):
        """Everything must pass unchanged. Also takes the tests' times."""
        tests = self.room_tests + self.whole_tests
        if not self.room_tests:
            sys.exit(f"mutate.py: there are no tests in tests/{self.room}")
        targets = {target for test in tests for target in test.targets()}
        built, output = self.copy.make(["bin/corvane-panel", *sorted(targets)])
        if not built:
            sys.exit(f"mutate.py: the unchanged tree doesn't build:\n{output}")
        for test in tests:
            begin = time.monotonic()
            self.must_pass(test)
            test.duration = time.monotonic() - begin
            # Other work on the machine must not pass for a test that hangs.
            test.timeout = 4 * test.duration + 20
            say(f"{test.name}: {test.duration:.1f} s")
        self.object_code = self.copy.object_code(self.room)

    @staticmethod
    def must_pass(test):
        outcome, output = test.run()
        if outcome != "passed":
            sys.exit(f"mutate.py: {test.name} fails on the unchanged tree:\n{output.decode()}")

    def check_killers(self):
        """What a test that was ended early leaves behind must not make it fail from then on."""
        for test in self.room_tests + self.whole_tests:
            if test.kills:
                built, output = self.copy.make(test.targets())
                if not built:
                    sys.exit(f"mutate.py: the unchanged tree doesn't build any more:\n{output}")
                self.must_pass(test)

    def tests_for(self, mutant):
        # A class's tests bear its name.
        stem = Path(mutant.file).stem.removesuffix("_p")

        def promise(test):
            return stem not in test.name, test.duration / (1 + 2 * test.kills[mutant.file])

        room = [] if mutant.file == MAIN else sorted(self.room_tests, key=promise)
        return room + sorted(self.whole_tests, key=promise)

    def try_out(self, mutant):
        """Returns the verdict: "no build", "same code", "killed" or "survived"; and by which test."""
        target = self.copy.tree / mutant.file
        original = target.read_text()
        try:
            target.write_text(original[: mutant.start] + mutant.after + original[mutant.end :])
            built, output = self.copy.make(
                ["bin/corvane-panel" if mutant.file == MAIN else f"{self.room}/all"])  # fmt: skip
            if not built:
                return "no build", complaint(output)
            if self.copy.object_code(self.room) == self.object_code:
                return "same code", None
            for test in self.tests_for(mutant):
                # Only now: most mutants need but one or two of the test programs.
                built, output = self.copy.make(test.targets())
                if not built:
                    return "no build", complaint(output)
                outcome, _ = test.run()
                if outcome != "passed":
                    test.kills[mutant.file] += 1
                    return "killed", test.name + (" (hung)" if outcome == "timeout" else "")
            return "survived", None
        finally:
            target.write_text(original)


def complaint(output):
    """The line of a build's output that tells why it failed."""
    lines = output.splitlines() or ["nothing said"]
    return next((line for line in lines if "error" in line or "undefined" in line), lines[-1])


def say(text):
    print(text, flush=True)


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)  # fmt: skip
    parser.add_argument("--room", required=True, help="folder of the code: app, overview, ...")
    parser.add_argument("--file", help="only this file of the room")
    parser.add_argument("--sample", type=int, metavar="N", help="try N changes only, picked at random")
    parser.add_argument("--seed", type=int, default=1, help="which N (default 1)")
    parser.add_argument("--retry", action="store_true", help="only those that survived the last run")
    parser.add_argument("--resume", action="store_true", help="leave out what an earlier run tried")
    parser.add_argument("--list", action="store_true", help="show the changes and try none")
    parser.add_argument("--whole", choices=["survivors", "never"], default="survivors",
                        help="when to run the whole-program tests (default: survivors)")  # fmt: skip
    parser.add_argument("--without", metavar="REGEX", help="leave out tests whose names match")
    parser.add_argument("--jobs", type=int, default=2, help="of the build (default 2)")
    parser.add_argument("--work", type=Path, default=PROJECT / "build" / "mutants",
                        help="folder of the copy and the results")  # fmt: skip
    options = parser.parse_args()

    files = sorted(str(p.relative_to(PROJECT)) for p in (PROJECT / options.room).rglob("*")
                   if p.suffix in (".cpp", ".h"))  # fmt: skip
    if options.file:
        files = [f for f in files if f == options.file]
    mutants = [mutant for file in files for mutant in mutants_of(file)]
    generated = len(mutants)
    if options.whole == "never":
        mutants = [m for m in mutants if m.file != MAIN]

    options.work = options.work.resolve()
    options.work.mkdir(parents=True, exist_ok=True)
    record = options.work / f"{options.room}.json"
    results = {}
    if options.retry or options.resume and record.exists():
        results = {r["key"]: r for r in json.loads(record.read_text())["results"]}
    if options.retry:
        survivors = {(r["file"], r["before_line"], r["after_line"])
                     for r in results.values() if r["verdict"] == "survived"}  # fmt: skip
        mutants = [m for m in mutants if (m.file, m.old_line, m.new_line) in survivors]
    else:
        # In any order: a run that is broken off has tried a fair sample too. Headers come last and
        # one after the other, for each of them rebuilds half of the room and its tests.
        random.Random(options.seed).shuffle(mutants)
        mutants = [m for m in mutants[: options.sample] if m.key() not in results]
        mutants.sort(key=lambda m: m.file if m.file.endswith(".h") else "")

    if options.list:
        for mutant in mutants:
            say(mutant.describe())
        return 0

    # Two runs in one copy would try each other's changes.
    lock = open(options.work / "lock", "w")
    fcntl.flock(lock, fcntl.LOCK_EX)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))

    copy = Copy(options.work, options.jobs)
    copy.synchronise()
    copy.configure(options.room)
    run = Run(copy, options.room, options.whole, options.without)
    run.baseline()

    verdicts = defaultdict(list)
    for number, mutant in enumerate(mutants, 1):
        begin = time.monotonic()
        verdict, killer = run.try_out(mutant)
        verdicts[verdict].append(mutant)
        say(f"{number}/{len(mutants)} {verdict}{f' by {killer}' if killer else ''} "
            f"({time.monotonic() - begin:.0f} s) {mutant.describe()}")  # fmt: skip
        results[mutant.key()] = {
            "key": mutant.key(), "file": mutant.file, "line": mutant.line, "kind": mutant.kind,
            "verdict": verdict, "killer": killer,
            "before_line": mutant.old_line, "after_line": mutant.new_line,
        }  # fmt: skip
        record.write_text(json.dumps({"generated": generated, "results": list(results.values())},
                                     ensure_ascii=False, indent=1))  # fmt: skip

    run.check_killers()
    say(f"\n{options.room}: {generated} changes, {len(mutants)} tried, "
        + ", ".join(f"{len(verdicts[v])} {v}" for v in ("no build", "same code", "killed", "survived")))  # fmt: skip
    for mutant in verdicts["survived"]:
        say(mutant.describe())
    return 1 if verdicts["survived"] else 0


if __name__ == "__main__":
    sys.exit(main())
