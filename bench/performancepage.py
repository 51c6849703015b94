"""performancepage.py RESULTS PAGE: writes the page of the measurements, with its plots beside it, from the
results of the programs, natively and under Wine."""

import datetime
import json
import math
import os
import pathlib
import platform
import subprocess
import sys
import tomllib

NOTES = pathlib.Path(__file__).with_name("notes.toml")
WORLDS = {"native": "Linux", "windows": "Wine"}
COLOURS = {"native": "#1f77b4", "windows": "#d95f02"}

INTRODUCTION = """# Performance

Figures of one run of `./dev bench`, which writes this page. Every ratio compares two works of the same
run: they alternate for many rounds, and the page shows the median of the ratios of the rounds with their
quartiles. The ratios hold on other machines; the times do not.

| | |
|---|---|
| date | {date} |
| processors | {count} × {processor} |
| systems | {systems} |
| compilers | {compilers} |

*Linux* is the library over the fake Windows of the tests, in the same process as the model of the driver.
*Wine* is the released library with the simulated controller's kernel driver. Real Windows was not
measured.
"""


# ---- The machine ----

def output_of(*command):
    try:
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return "unknown"


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def introduction():
    release = platform.freedesktop_os_release()
    windows_compiler = output_of("x86_64-w64-mingw32-g++-posix", "-dumpfullversion")
    return INTRODUCTION.format(
        date=datetime.date.today().isoformat(), processor=processor(),
        count=os.cpu_count(),
        systems=f"{release['PRETTY_NAME']}, {output_of('wine', '--version')}",
        compilers=f"GCC {output_of('g++', '-dumpfullversion')} for Linux, GCC {windows_compiler.split('-')[0]} (mingw-w64) for Windows")


# ---- Results ----

def load(folder):
    """The results by world, in the order of the measurements."""
    results = {world: [] for world in WORLDS}
    for world in WORLDS:
        for file in sorted(folder.glob(f"{world}-*.json")):
            results[world] += json.loads(file.read_text(encoding="utf-8"))
    if not all(results.values()):
        sys.exit(f"performancepage.py: no results of both worlds in '{folder}'")
    return results


def by_section(results, kind):
    """{section: {key: {world: result}}} of one kind of result."""
    sections = {}
    for world, ofWorld in results.items():
        for result in ofWorld:
            if result["kind"] == kind:
                key = (result["work"], result.get("reference"))
                sections.setdefault(result["section"], {}).setdefault(key, {})[world] = result
    return sections


# ---- Texts ----

def significant(value, digits=3):
    if value == 0:
        return "0"
    decimals = max(0, digits - 1 - math.floor(math.log10(abs(value))))
    return f"{value:.{decimals}f}"


def duration(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{significant(nanoseconds / size)} {unit}"
    return f"{significant(nanoseconds)} ns"


def goal_text(result):
    if "goal" not in result:
        return ""
    return {"time": "≤ {:g} ×", "speed": "≥ {:g} × as fast",
            "nanoseconds": "≤ {:g} ns more"}[result["bound"]].format(result["goal"])


def verdict(result):
    if "goal" not in result:
        return ""
    return " reached" if result["reached"] else " **missed**"


def ratio_cell(result):
    if result is None:
        return "—"
    unit = " ns" if result.get("bound") == "nanoseconds" else ""
    spread = f"{significant(result['lower'])} to {significant(result['upper'])}"
    return (f"{significant(result['ratio'])}{unit} ({spread}){verdict(result)}; "
            f"{duration(result['ns'])} / {duration(result['referenceNs'])}")


def any_of(worlds):
    return next(iter(worlds.values()))


def notes_below(section, missed, notes):
    """The notes of a section, and of each missed row of it."""
    lines = []
    if section in notes.get("sections", {}):
        lines += [notes["sections"][section].strip(), ""]
    for work in missed:
        note = " ".join(notes.get("misses", {}).get(work, "").split())
        lines.append(f"- *{work}*: {note}" if note else f"- *{work}*: missed, and not explained yet.")
    return lines + [""] if missed else lines


def comparison_tables(results, notes):
    lines = []
    for section, rows in by_section(results, "comparison").items():
        lines += [f"## {section}", "", "| work | against | Linux | Wine | goal |",
                  "|---|---|---|---|---|"]
        missed = []
        for (work, reference), worlds in rows.items():
            cells = [ratio_cell(worlds.get(world)) for world in WORLDS]
            goals = " / ".join(dict.fromkeys(filter(None, map(goal_text, worlds.values()))))
            lines.append(f"| {work} | {reference} | {cells[0]} | {cells[1]} | {goals} |")
            if any("goal" in result and not result["reached"] for result in worlds.values()):
                missed.append(work)
        lines += [""] + notes_below(section, missed, notes)
    return lines


def speed_cell(result, reference):
    if result is None:
        return "—"
    ratio = result["ratios"].get(reference)
    return f"{significant(result['gigabytesPerSecond'])}" + (
        "" if ratio is None else f" ({significant(ratio)} ×)")


def speed_tables(results, notes):
    lines = []
    for section, rows in by_section(results, "speed").items():
        first = any_of(any_of(rows))
        reference = next(iter(first["ratios"]))
        for candidate in ("memcpy", "reading"):
            if candidate in first["ratios"]:
                reference = candidate
        lines += [f"## {section}", "",
                  f"GB/s of {first['bytes'] / 2**20:.0f} MiB; in brackets, of the speed of {reference}.", "",
                  "| | Linux | Wine | goal |", "|---|---|---|---|"]
        missed = []
        for (work, _), worlds in rows.items():
            cells = [speed_cell(worlds.get(world), reference) for world in WORLDS]
            goals = [f"≥ {result['goal']:.3g} × {result['goalReference']}:{verdict(result)} ({WORLDS[world]} "
                     f"{significant(result['gigabytesPerSecond'] / speed_of(rows, result, world))})"
                     for world, result in worlds.items() if "goal" in result]
            lines.append(f"| {work} | {cells[0]} | {cells[1]} | {'; '.join(goals)} |")
            if any("goal" in result and not result["reached"] for result in worlds.values()):
                missed.append(f"{section}: {work}")
        lines += [""] + notes_below(section, missed, notes)
    return lines


def speed_of(rows, result, world):
    return rows[(result["goalReference"], None)][world]["gigabytesPerSecond"]


def growth_tables(results, notes):
    lines = []
    for section, rows in by_section(results, "growth").items():
        lines += [f"## {section}", "",
                  "Time for 4 times the size, as a multiple of that for the first size. Linear growth is 4.", "",
                  "| | Linux | Wine | goal |", "|---|---|---|---|"]
        missed = []
        for (work, _), worlds in rows.items():
            cells = [f"{significant(worlds[world]['ratio'])}{verdict(worlds[world])}"
                     if world in worlds else "—" for world in WORLDS]
            lines.append(f"| {work} | {cells[0]} | {cells[1]} | ≤ {any_of(worlds)['goal']:g} × |")
            if not all(result["reached"] for result in worlds.values()):
                missed.append(work)
        lines += [""] + notes_below(section, missed, notes)
    return lines


# ---- Plots ----

def plot(file, title, unit, curves):
    """Draws curves, [(name, world, points)], in logarithmic scales."""
    commands = [
        'set terminal svg size 720,520 dynamic font "sans-serif,13" background "#ffffff"',
        f'set output "{file}"', f'set title "{title}"', f'set xlabel "{unit}"', 'set ylabel "nanoseconds"',
        "set logscale xy", "set grid", "set key outside bottom center horizontal maxrows 4",
        'set format x "10^{%L}"', 'set format y "10^{%L}"']
    for index, (_, _, points) in enumerate(curves):
        commands += [f"$curve{index} << END"] + [f"{size} {time}" for size, time in points] + ["END"]
    styles = {name: index + 1 for index, name in enumerate(dict.fromkeys(c[0] for c in curves))}
    plots = [f'$curve{index} with linespoints linewidth 2 pointtype {2 * styles[name] + 3} '
             f'dashtype {styles[name]} linecolor rgb "{COLOURS[world]}" title "{name}, {WORLDS[world]}"'
             for index, (name, world, _) in enumerate(curves)]
    commands.append("plot " + ", ".join(plots))
    subprocess.run(["gnuplot"], input="\n".join(commands) + "\n", check=True, text=True)


def plots(results, folder, notes):
    lines = []
    for section, rows in by_section(results, "curve").items():
        lines += [f"## {section}", ""] + notes_below(section, [], notes)
        axes = {}
        for (name, _), worlds in rows.items():
            unit = any_of(worlds)["size"].split(" ")[0]
            for world, result in worlds.items():
                axes.setdefault(unit, []).append((name, world, result["points"]))
        for unit, curves in axes.items():
            file = folder / f"{section.lower().replace(' ', '-')}-{unit}.svg"
            plot(file, f"{section}: cost by {unit}", unit, curves)
            lines += [f"![{section}, cost by {unit}]({folder.name}/{file.name})", "",
                      "| | " + " | ".join(f"{size:,}" for size, _ in curves[0][2]) + " |",
                      "|---|" + "---|" * len(curves[0][2])]
            for name, world, points in curves:
                lines.append(f"| {name}, {WORLDS[world]} | "
                             + " | ".join(duration(time) for _, time in points) + " |")
            lines.append("")
    return lines


def main():
    results_folder, page = map(pathlib.Path, sys.argv[1:])
    results = load(results_folder)
    notes = tomllib.loads(NOTES.read_text(encoding="utf-8"))
    folder = page.with_suffix("")
    folder.mkdir(exist_ok=True)
    lines = [introduction()]
    lines += comparison_tables(results, notes) + plots(results, folder, notes)
    lines += speed_tables(results, notes) + growth_tables(results, notes)
    page.write_text("\n".join(lines).rstrip() + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
