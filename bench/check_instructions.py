#!/usr/bin/env python3
"""check_instructions.py [--record] PROGRAM FIGURES

Counts the instructions of each scenario of bench/scenarios.cpp with callgrind and compares them with the
committed figures of the same compiler and libraries. Exit code 1: a scenario takes over 3 per cent more
instructions, or a figure is missing. Without figures for this toolchain, prints the counts only.

--record writes the counts as the figures of this toolchain.
"""

import collections
import dataclasses
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

LIMIT = 0.03
# The functions of a scenario that the figures contain, and that a report names.
RECORDED_FUNCTIONS = 12
REPORTED_FUNCTIONS = 10
# The fake Windows and the simulated driver are no part of the library.
EXCLUDED_FOLDERS = ("tests/", "simulator/")
# The size of the environment moves the stack, and the counts of string functions depend on alignment. The
# tunables select the string functions that every processor runs; by default the C library selects them by
# the processor.
ENVIRONMENT = {
    "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX512F,-AVX2,-AVX,-AVX_Fast_Unaligned_Load,-BMI2,-ERMS,-FSRM,"
                      "-SSSE3,-SSE4_1,-SSE4_2:glibc.cpu.x86_non_temporal_threshold=16777216",
    "LC_ALL": "C",
    "LD_BIND_NOW": "1",
    "PATH": "/usr/bin:/bin",
}


@dataclasses.dataclass(frozen=True)
class Function:
    file: str
    name: str


@dataclasses.dataclass
class Profile:
    """The instructions of each function itself, and those of its calls, callees included."""

    own: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    calls: collections.Counter = dataclasses.field(default_factory=collections.Counter)


def parse_profile(text):
    """Reads a callgrind file of one event. A file without a name becomes the object that contains it."""
    names = {"file": {}, "function": {}, "object": {}}

    def name_of(kind, value):
        match = re.fullmatch(r"\((\d+)\)(?: (.*))?", value)
        if match is None:
            return value
        if match[2] is not None:
            names[kind][match[1]] = match[2]
        return names[kind][match[1]]

    def known_file(value, in_object):
        file = name_of("file", value)
        return in_object if file == "???" else file

    profile = Profile()
    file = function = callee_file = callee = in_object = callee_object = None
    is_call = False
    for line in text.splitlines():
        key, _, value = line.partition("=")
        if key == "ob":
            in_object = callee_object = name_of("object", value)
        elif key in ("fl", "fi", "fe"):
            file = callee_file = known_file(value, in_object)
        elif key == "fn":
            function = Function(file, name_of("function", value))
        elif key == "cob":
            callee_object = name_of("object", value)
        elif key in ("cfi", "cfl"):
            callee_file = known_file(value, callee_object)
        elif key == "cfn":
            callee = Function(callee_file, name_of("function", value))
            callee_file, callee_object = file, in_object
        elif key == "calls":
            is_call = True
        elif re.match(r"[0-9+*-]", line):
            cost = int(line.split()[1])
            if is_call:
                profile.calls[function, callee] += cost
            else:
                profile.own[function] += cost
            is_call = False
    return profile


def library_costs(profile, is_excluded):
    """The instructions of each function apart from those that excluded functions cause.

    A function that excluded functions call too counts by the share of the calls that come from others.
    """
    callers = collections.defaultdict(list)
    for (caller, callee), cost in profile.calls.items():
        if caller != callee and cost > 0:
            callers[callee].append((caller, cost))
    functions = {*profile.own, *callers}
    shares = {function: 0.0 if is_excluded(function) else 1.0 for function in functions}
    for _ in range(100):  # more than the depth of any chain of calls
        before = dict(shares)
        for function in functions:
            if callers[function] and not is_excluded(function):
                total = sum(cost for _, cost in callers[function])
                shares[function] = sum(
                    before.get(caller, 1.0) * cost for caller, cost in callers[function]) / total
        if shares == before:
            break
    return {function: own * shares[function] for function, own in profile.own.items()}


def repository_path(file, root):
    """The path inside the repository, wherever the compiler ran; other paths as they are."""
    parts = pathlib.PurePath(os.path.normpath(file)).parts
    for start in range(len(parts)):
        candidate = pathlib.PurePath(*parts[start:])
        if not candidate.is_absolute() and (root / candidate).is_file():
            return candidate.as_posix()
    return file


def short_name(name):
    """A function without parameters, template arguments and the namespaces of the project."""
    name = re.sub(r"\[clone [^]]*\]", "", name).replace("(anonymous namespace)::", "").strip()
    name = re.sub(r"operator(\(\)|<<?=?|>>?=?|->\*?)", lambda match: "operator " + {
        "(": "call", "<": "less", ">": "greater", "-": "arrow"}[match[1][0]], name)
    while (shorter := re.sub(r"<[^<>]*>|\([^()]*\)", "", name)) != name:
        name = shorter
    name = re.sub(r"\{[^{}]*\}", "lambda", name).replace(" const", "").strip()
    name = re.sub(r"\bn[A-Z]\w*::", "", name)
    return name.split()[-1] if name and "operator" not in name else name


@dataclasses.dataclass
class Count:
    """The instructions of one repetition of a scenario, in all and by function."""

    instructions: int
    functions: dict

    @staticmethod
    def of(costs, repetitions):
        functions = collections.Counter()
        for label, cost in costs:
            functions[label] += cost / repetitions
        rounded = {label: round(cost) for label, cost in
                   sorted(functions.items(), key=lambda item: (-item[1], item[0]))}
        return Count(round(sum(functions.values())), rounded)

    def as_figures(self):
        largest = [item for item in self.functions.items() if item[1] > 0][:RECORDED_FUNCTIONS]
        return {"instructions": self.instructions, "functions": dict(largest)}


def grown_functions(figures, count):
    """The functions whose counts grew most, each with its growth and its count."""
    recorded = figures["functions"]
    # A function that is not recorded had at most the count of the last one that is.
    unrecorded = min(recorded.values()) if len(recorded) == RECORDED_FUNCTIONS else 0
    growths = [(now - recorded.get(label, min(now, unrecorded)), now, label)
               for label, now in count.functions.items()]
    return sorted(growths, key=lambda growth: (-growth[0], -growth[1], growth[2]))[:REPORTED_FUNCTIONS]


def compare(figures, counts):
    """Compares counts with the figures of a toolchain. Returns the report's lines, and whether it passes."""
    rows = [("scenario", "committed", "now", "ratio", "verdict")]
    details = []
    passes = True
    for name in figures.keys() - counts.keys():
        rows.append((name, str(figures[name]["instructions"]), "-", "-", "NO SUCH SCENARIO"))
        passes = False
    for name, count in counts.items():
        if name not in figures:
            rows.append((name, "-", str(count.instructions), "-", "NO FIGURE"))
            passes = False
            continue
        committed = figures[name]["instructions"]
        ratio = count.instructions / committed
        verdict = "equal" if count.instructions == committed else "within 3 %"
        if ratio > 1 + LIMIT:
            verdict = "MORE"
            passes = False
            details += ["", f"{name}: growth and count of functions, those that grew most first:"]
            details += [f"  {growth:+9d} to {now:9d}  {label}"
                        for growth, now, label in grown_functions(figures[name], count)]
        elif ratio < 1 - LIMIT:
            verdict = "fewer; record it: ./dev bench --check --record"
        rows.append((name, str(committed), str(count.instructions), f"{ratio:.3f}", verdict))
    return table(rows) + details, passes


def table(rows):
    return [f"{name:<16} {committed:>10} {now:>10} {ratio:>6}  {verdict}"
            for name, committed, now, ratio, verdict in rows]


def count_scenario(program, name, repetitions, root):
    # A copy, because the length of the program's path moves the stack as well.
    with tempfile.TemporaryDirectory(dir="/tmp") as folder:
        output = pathlib.Path(folder) / "callgrind.out"
        shutil.copy(program, folder)
        done = subprocess.run(
            ["valgrind", "--tool=callgrind", "--toggle-collect=measuredWork",
             f"--callgrind-out-file={output}", f"./{program.name}", name],
            cwd=folder, env=ENVIRONMENT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            text=True, timeout=300, check=False)
        if done.returncode != 0:
            sys.exit(f"check_instructions: scenario '{name}' failed:\n{done.stdout}")
        profile = parse_profile(output.read_text())
    paths = {file: repository_path(file, root) for file in {function.file for function in
             {*profile.own, *(callee for _, callee in profile.calls)}}}
    if not any(path.startswith("bench/") for path in paths.values()):
        sys.exit("check_instructions: cannot distinguish the library from the fake Windows: the program has no "
                 "debug information. Remove build/bench, which is older than its preset.")
    costs = library_costs(
        profile, lambda function: paths.get(function.file, "").startswith(EXCLUDED_FOLDERS))
    return Count.of(((f"{short_name(function.name)} ({pathlib.PurePath(paths[function.file]).name})", cost)
                     for function, cost in costs.items()), repetitions)


def output_of(program, *arguments):
    return subprocess.run([program, *arguments], stdout=subprocess.PIPE, text=True, check=True).stdout


def main(arguments):
    record = "--record" in arguments
    names = [argument for argument in arguments if argument != "--record"]
    if len(names) != 2:
        sys.exit(__doc__)
    program, path = (pathlib.Path(name).resolve() for name in names)
    root = pathlib.Path(__file__).resolve().parent.parent
    toolchain = output_of(program, "--toolchain").strip()
    counts = {}
    for line in output_of(program).splitlines():
        name, repetitions, _ = line.split("\t")
        counts[name] = count_scenario(program, name, int(repetitions), root)
    figures = json.loads(path.read_text()) if path.exists() else {}
    print(f"Instructions of one repetition; {toolchain}")
    report, passes = compare(figures.get(toolchain, {}), counts)
    if toolchain in figures or record:
        print("\n".join(report))
    if record:
        figures[toolchain] = {name: count.as_figures() for name, count in counts.items()}
        path.write_text(json.dumps(figures, indent=2, sort_keys=False) + "\n")
        print(f"Recorded in {os.path.relpath(path, root)}.")
        return 0
    if toolchain not in figures:
        print("\n".join(f"{name:<16} {count.instructions:>10}" for name, count in counts.items()))
        print(f"No figures are committed for {toolchain}, so there is nothing to compare with. To record "
              "these: ./dev bench --check --record")
        return 0
    if not passes:
        print("\nScenarios take over 3 per cent more instructions than committed, or have no figure. Remove "
              "the cause, or record the new figures and give the reason in the commit: "
              "./dev bench --check --record")
    return 0 if passes else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
