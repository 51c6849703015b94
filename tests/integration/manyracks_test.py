"""The commands of docs/many-racks.md on a simulated fleet, as a reader runs them."""

import pathlib
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = "docs/many-racks.md"

sys.path.insert(0, str(ROOT / "tests" / "documents"))
import examples  # noqa: E402


class Page(unittest.TestCase):
    def setUp(self):
        self.end_fleet()
        self.addCleanup(self.end_fleet)
        self.reader = examples.Reader(PAGE)
        self.addCleanup(self.reader.close)

    @staticmethod
    def end_fleet():
        subprocess.run([ROOT / "dev", "fleet", "off"], check=True, capture_output=True, timeout=60)

    def test_every_command_does_what_the_page_shows(self):
        blocks = [block for block in examples.blocks_of(PAGE, (ROOT / PAGE).read_text(encoding="utf-8"))
                  if block.options.pop("tested-by", "").endswith("/manyracks_test.py")]
        self.assertGreater(len(blocks), 0)
        for block in blocks:
            self.reader.run(block)


if __name__ == "__main__":
    unittest.main()
