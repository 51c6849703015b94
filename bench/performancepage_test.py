#!/usr/bin/env python3
"""Tests performancepage.py on made-up results, and the published page."""

import contextlib
import io
import json
import pathlib
import tempfile
import unittest
from unittest import mock

import performancepage

PAGE = pathlib.Path(__file__).resolve().parent.parent / "docs" / "performance.md"


def comparison(work, ratio, bound="time", goal=2.0, reached=True):
    return {"kind": "comparison", "section": "Calls", "work": work, "reference": "a lock", "ns": 1500.0,
            "referenceNs": 1000.0, "ratio": ratio, "lower": ratio * 0.9, "upper": ratio * 1.1,
            "bound": bound, "goal": goal, "reached": reached}


def speed(work, value, **goal):
    return {"kind": "speed", "section": "Copies", "bytes": 1 << 20, "work": work,
            "gigabytesPerSecond": value, "ratios": {"memcpy": value / 10}, **goal}


CURVE = {"kind": "curve", "section": "Sizes", "work": "read", "size": "bytes",
         "points": [[1024, 5.0], [4096, 5.5]]}
GROWTH = {"kind": "growth", "section": "Growth", "work": "shared", "milliseconds": [1, 2, 4], "ratio": 4.0,
          "bound": "time", "goal": 6, "reached": True}
NOTES = {"sections": {"Calls": "What a call contains."}, "misses": {"text": "The reason\nof the miss."}}


class Page(unittest.TestCase):
    def write(self, native, windows=()):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        folder = pathlib.Path(temporary.name)
        for world, results in (("native", native), ("windows", windows)):
            if results:
                (folder / f"{world}-program.json").write_text(json.dumps(results), encoding="utf-8")
        notes = folder / "notes.toml"
        notes.write_text("".join(
            f"[{section}]\n" + "".join(f"{json.dumps(key)} = {json.dumps(text)}\n" for key, text in texts.items())
            for section, texts in NOTES.items()), encoding="utf-8")
        page = folder / "page.md"
        arguments = ["performancepage.py", str(folder), str(page)]
        with mock.patch.object(performancepage, "NOTES", notes), mock.patch("sys.argv", arguments), \
                mock.patch.object(performancepage, "plot") as plot:
            performancepage.main()
        self.plots = plot.call_args_list
        return page.read_text(encoding="utf-8")

    def test_Comparison_ShowsRatioTimesAndGoal(self):
        page = self.write([comparison("number", 1.5)], [comparison("number", 1.25)])
        self.assertIn("| number | a lock | 1.50 (1.35 to 1.65) reached; 1.50 µs / 1.00 µs "
                      "| 1.25 (1.12 to 1.38) reached; 1.50 µs / 1.00 µs | ≤ 2 × |", page)
        self.assertIn("What a call contains.", page)

    def test_ComparisonOfOneSystem_LeavesTheOtherEmpty(self):
        page = self.write([comparison("number", 1.5)], [comparison("text", 1.5)])
        self.assertIn("| number | a lock | 1.50 (1.35 to 1.65) reached; 1.50 µs / 1.00 µs | — |", page)

    def test_Goals_OfEachKind_HaveTheirUnits(self):
        page = self.write([comparison("number", 12.0, "speed", 10)],
                          [comparison("route", 2500.0, "nanoseconds", 3000)])
        self.assertIn("≥ 10 × as fast", page)
        self.assertIn("2500 ns (2250 to 2750) reached", page)
        self.assertIn("≤ 3000 ns more", page)

    def test_MissedGoal_HasItsNote(self):
        page = self.write([comparison("text", 3.0, reached=False)], [comparison("text", 1.0)])
        self.assertIn("3.00 (2.70 to 3.30) **missed**", page)
        self.assertIn("- *text*: The reason of the miss.", page)

    def test_MissedGoalWithoutANote_SaysSo(self):
        page = self.write([comparison("number", 3.0, reached=False)], [comparison("number", 1.0)])
        self.assertIn("- *number*: missed, and not explained yet.", page)

    def test_Speeds_AreRelatedToMemcpy(self):
        rows = [speed("memcpy", 10.0),
                speed("AVX2", 5.0, goal=0.7, bound="speed", reached=False, goalReference="memcpy")]
        page = self.write(rows, rows)
        self.assertIn("| AVX2 | 5.00 (0.500 ×) | 5.00 (0.500 ×) | ≥ 0.7 × memcpy: **missed** (Linux 0.500); ", page)
        self.assertIn("- *Copies: AVX2*: missed, and not explained yet.", page)

    def test_Curves_AreDrawnAndListed(self):
        page = self.write([CURVE], [CURVE])
        self.assertIn("| read, Linux | 5.00 ns | 5.50 ns |", page)
        self.assertIn("(page/sizes-bytes.svg)", page)
        self.assertEqual(len(self.plots), 1)
        self.assertEqual([world for _, world, _ in self.plots[0].args[3]], ["native", "windows"])

    def test_Growth_HasItsLimit(self):
        self.assertIn("| shared | 4.00 reached | 4.00 reached | ≤ 6 × |", self.write([GROWTH], [GROWTH]))

    def test_ResultsOfOneSystemOnly_AreRefused(self):
        with self.assertRaisesRegex(SystemExit, "no results of both worlds"), \
                contextlib.redirect_stderr(io.StringIO()):
            self.write([CURVE])


class PublishedPage(unittest.TestCase):
    def test_EveryMissedGoal_IsExplained(self):
        page = PAGE.read_text(encoding="utf-8")
        self.assertIn("**missed**", page)
        self.assertNotIn("not explained yet", page)

    def test_Plots_Exist(self):
        plots = [line.split("](")[1].rstrip(")") for line in PAGE.read_text(encoding="utf-8").splitlines()
                 if line.startswith("![")]
        self.assertTrue(plots)
        for plot in plots:
            self.assertTrue((PAGE.parent / plot).is_file(), plot)


if __name__ == "__main__":
    unittest.main()
