"""The documentation site, built once for all tests of a process, and its HTML pages as data."""

import functools
import html.parser
import os
import pathlib
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build" / "documents"


def build(output):
    # The interpreter of the Debian packages, which have the generator.
    result = subprocess.run(["/usr/bin/python3", "-B", ROOT / "docs" / "site" / "build.py", output],
                            capture_output=True, text=True, check=False)
    if result.returncode != 0:
        raise RuntimeError(f"building the site failed:\n{result.stdout}{result.stderr}")
    return output


@functools.cache
def site():
    """The folder of the site."""
    shutil.rmtree(FOLDER / "site", ignore_errors=True)
    return build(FOLDER / "site")


class Page(html.parser.HTMLParser):
    """The anchors, links and text of a page, and the code blocks in it."""

    def __init__(self, path):
        super().__init__()
        self.path = path
        self.anchors, self.links, self.resources = set(), [], []
        self.text, self.preformatted = [], []
        self.open_preformatted = 0
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if "id" in values:
            self.anchors.add(values["id"])
        if tag == "a" and "href" in values:
            self.links.append(values["href"])
        if tag in ("img", "script", "iframe") and values.get("src"):
            self.resources.append(values["src"])
        if tag == "link" and values["href"] != "#":
            self.resources.append(values["href"])
        if tag == "pre":
            self.preformatted.append("")
            self.open_preformatted += 1

    def handle_endtag(self, tag):
        if tag == "pre":
            self.open_preformatted -= 1

    def handle_data(self, data):
        self.text.append(data)
        if self.open_preformatted:
            self.preformatted[-1] += data


@functools.cache
def pages():
    """Every page of the site by its path in the site."""
    return {path.relative_to(site()).as_posix(): Page(path) for path in sorted(site().rglob("*.html"))}


def chromium():
    """The browser, or None. Only developers' machines have it: its package is too large for every test run."""
    return shutil.which("chromium")


def dumped(page, *, seconds=60):
    """The document of a page after its scripts have run."""
    environment = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
    result = subprocess.run(
        [chromium(), "--headless", "--no-sandbox", "--disable-gpu", "--allow-file-access-from-files",
         f"--virtual-time-budget={seconds * 1000}", "--dump-dom", page],
        env=environment, capture_output=True, text=True, timeout=seconds + 60, check=False)
    if result.returncode != 0:
        raise RuntimeError(result.stderr)
    return result.stdout


sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "docs" / "site"))
