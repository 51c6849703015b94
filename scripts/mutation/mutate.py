#!/usr/bin/env python3
"""Changes one operator or constant at a time, and reports the changes that no test detects.

The tool works on a copy of the tree in the build folder and keeps its results there: the next run
resumes an interrupted or limited one, unless a source or a test of the unit has changed.
"""

import argparse
import hashlib
import json
import os
import pathlib
import random
import subprocess
import sys
import time

import equivalents
import mutations
import units

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutation"
COPY = WORK / "source"
BUILD = WORK / "build"
RESULTS = WORK / "results.jsonl"
DETECTED, SURVIVED, REJECTED = "detected", "survived", "rejected by the compiler"
BUILD_SECONDS = 1800


def run(command, **options):
    """The exit code, or None after a timeout, which kills the complete process group."""
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               stdin=subprocess.DEVNULL, start_new_session=True,
                               **{key: value for key, value in options.items() if key != "timeout"})
    try:
        return process.wait(options.get("timeout"))
    except subprocess.TimeoutExpired:
        return None
    finally:
        if process.poll() is None:
            os.killpg(process.pid, 9)
            process.wait()


def sources_of(unit):
    return sorted(path.relative_to(ROOT).as_posix() for pattern in unit.sources
                  for path in ROOT.glob(pattern))


def listed_files():
    output = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                            cwd=ROOT, check=True, capture_output=True).stdout
    return sorted({name for name in output.decode().split("\0") if name and (ROOT / name).is_file()})


def update_copy():
    """Unchanged files keep their time stamps, so that the build does not compile them again."""
    for name in listed_files():
        target, content = COPY / name, (ROOT / name).read_bytes()
        if not target.is_file() or target.read_bytes() != content:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)


def configure():
    # No compiler cache: the sources differ in one character and are written within milliseconds,
    # so a cache could return the object of another mutant.
    for launcher in ("CMAKE_C_COMPILER_LAUNCHER", "CMAKE_CXX_COMPILER_LAUNCHER"):
        os.environ.pop(launcher, None)
    if (BUILD / "build.ninja").is_file():
        return
    options = ["-DCMAKE_C_COMPILER=clang", "-DCMAKE_CXX_COMPILER=clang++",
               "-DCMAKE_C_FLAGS_RELWITHDEBINFO=-O0", "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O0",
               "-DQUENRA_SANITIZERS=address,undefined", "-DCMAKE_COMPILE_WARNING_AS_ERROR=ON"]
    command = ["cmake", "-S", COPY, "-B", BUILD, "-G", "Ninja", *options]
    if run(command) != 0:
        sys.exit("configuring failed: " + " ".join(map(str, command)))


def build(test):
    return run(["cmake", "--build", BUILD, "--target", test.target, "--", "--quiet"],
               timeout=BUILD_SECONDS) == 0


def passes(test, seconds):
    """True if the test passes within the given seconds."""
    environment = {**os.environ, "ASAN_OPTIONS": "hard_rss_limit_mb=3000:detect_leaks=1"}
    return run([BUILD / "bin" / test.target, f"--gtest_filter={test.filter}", "--gtest_fail_fast",
                "--gtest_brief=1"], timeout=seconds, env=environment, cwd=WORK) == 0


def fingerprint(unit):
    """A hash of all sources and tests that affect whether a change is detected."""
    found, sources = hashlib.sha256(), sources_of(unit)
    for name in listed_files():
        if name.startswith(unit.test_folders) or name in sources:
            found.update(name.encode() + b"\0" + (ROOT / name).read_bytes())
    return found.hexdigest()


def identity(mutant):
    return f"{mutant.path}:{mutant.line}: {mutant.mutated.strip()}"


class Results:
    def __init__(self):
        self._kept = {}
        if RESULTS.is_file():
            for line in RESULTS.read_text().splitlines():
                entry = json.loads(line)
                self._kept[entry["mutant"]] = entry

    def of(self, mutant, state):
        entry = self._kept.get(identity(mutant))
        return entry["result"] if entry and entry["state"] == state else None

    def latest(self, mutant):
        entry = self._kept.get(identity(mutant))
        return entry["result"] if entry else None

    def add(self, mutant, state, result):
        entry = {"mutant": identity(mutant), "state": state, "result": result}
        self._kept[entry["mutant"]] = entry
        with RESULTS.open("a") as results:
            results.write(json.dumps(entry) + "\n")


def try_mutant(mutant, unit, seconds):
    original = (ROOT / mutant.path).read_text()
    copy = COPY / mutant.path
    try:
        copy.write_text(mutations.apply(mutant, original))
        for test in unit.tests:
            if not build(test):
                return REJECTED
            if not passes(test, seconds[test]):
                return DETECTED
        return SURVIVED
    finally:
        copy.write_text(original)


def prepare(unit):
    """{test: its timeout in seconds with a change in the unit}"""
    print(f"== {unit.name}", file=sys.stderr, flush=True)
    allowed = {}
    for test in unit.tests:
        if not build(test):
            sys.exit(f"{unit.name}: {test.target} does not build")
        start = time.monotonic()
        if not passes(test, 600):
            sys.exit(f"{unit.name}: {test.target} fails without a change")
        allowed[test] = 10 + 5 * (time.monotonic() - start)
    return allowed


def runs_here(name):
    missing = units.missing_features(name)
    if missing:
        print(f"not tried: {name}: this processor has no {', '.join(sorted(missing))}", flush=True)
    return not missing


def work_list(unit, arguments, known, results):
    wanted = [name for name in sources_of(unit)
              if (not arguments.files or name in arguments.files) and runs_here(name)]
    found = [mutant for name in wanted
             for mutant in mutations.mutants_of(name, (ROOT / name).read_text())
             if not known.covers(mutant)]
    if arguments.survivors:
        return [mutant for mutant in found if results.latest(mutant) == SURVIVED]
    if arguments.sample and len(found) > arguments.sample:
        chosen = random.Random(arguments.seed).sample(range(len(found)), arguments.sample)
        found = [found[index] for index in sorted(chosen)]
    return found


def run_unit(unit, arguments, known, results, deadline):
    """{result: count}, and the surviving mutants."""
    state, seconds = fingerprint(unit), None
    counts, survivors = {DETECTED: 0, SURVIVED: 0, REJECTED: 0, "not tried": 0}, []
    for mutant in work_list(unit, arguments, known, results):
        result = results.of(mutant, state)
        if result is None:
            if time.monotonic() > deadline:
                counts["not tried"] += 1
                continue
            seconds = seconds or prepare(unit)
            result = try_mutant(mutant, unit, seconds)
            results.add(mutant, state, result)
            if result == SURVIVED:
                report(mutant)
        counts[result] += 1
        if result == SURVIVED:
            survivors.append(mutant)
    return counts, survivors


def report(mutant):
    occurrence = f" #{mutant.occurrence}" if mutant.occurrence > 1 else ""
    print(f"{mutant.path}:{mutant.line}\n"
          f"  {mutant.scope}: {mutant.before} -> {mutant.after}{occurrence}\n"
          f"  - {mutant.original.strip()}\n  + {mutant.mutated.strip()}", flush=True)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__, prog="./dev mutate")
    parser.add_argument("files", nargs="*", metavar="FILE", help="only these sources")
    parser.add_argument("--seconds", type=float, default=float("inf"), help="stop after this time")
    parser.add_argument("--sample", type=int, help="number of changes of each unit, chosen at random")
    parser.add_argument("--seed", type=int, default=1, help="seed of that choice")
    parser.add_argument("--survivors", action="store_true", help="only the survivors of the last run")
    parser.add_argument("--check", action="store_true",
                        help="list the entries of equivalent.txt without a change, and exit")
    return parser.parse_args()


def check(known):
    found = [mutant for unit in units.UNITS for name in sources_of(unit)
             for mutant in mutations.mutants_of(name, (ROOT / name).read_text())]
    stale = known.without(found)
    for entry in stale:
        print(f"equivalent.txt: {entry.path} has no change "
              f"'{entry.scope}: {entry.before} -> {entry.after} #{entry.occurrence}'")
    print(f"{len(found)} changes, {sum(map(known.covers, found))} of them change no behaviour")
    return 1 if stale else 0


def main():
    arguments = parse_arguments()
    known = equivalents.read(ROOT / "scripts" / "mutation" / "equivalent.txt")
    if arguments.check:
        return check(known)
    tried = {name for unit in units.UNITS for name in sources_of(unit)}
    arguments.files = [pathlib.PurePath(name).as_posix() for name in arguments.files]
    if strangers := [name for name in arguments.files if name not in tried]:
        sys.exit(f"not in a unit: {', '.join(strangers)}; sources: {', '.join(sorted(tried))}")
    deadline = time.monotonic() + arguments.seconds
    WORK.mkdir(parents=True, exist_ok=True)
    update_copy()
    configure()
    results = Results()
    outcome = [(unit, *run_unit(unit, arguments, known, results, deadline)) for unit in units.UNITS]
    print("\nChanges that no test detected:" if any(survivors for *_, survivors in outcome)
          else "\nThe tests detected every change.")
    for unit, _, survivors in outcome:
        for mutant in survivors:
            report(mutant)
    for unit, counts, _ in outcome:
        print(f"{unit.name:18}" + "".join(f"  {count:5} {name}" for name, count in counts.items()))
    return 1 if any(survivors for *_, survivors in outcome) else 0


if __name__ == "__main__":
    sys.exit(main())
