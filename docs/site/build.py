#!/usr/bin/env python3
"""Builds the documentation site: the pages of the project and the reference of the public headers.

Usage: build.py OUTPUT [WORK]

WORK, OUTPUT-source by default, receives the sources in the layout of the project, so that the links
between the pages work in the project and on the site. The same sources give the same bytes. Warnings of
Sphinx are errors.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

sys.dont_write_bytecode = True
import reference  # noqa: E402: writes no bytecode beside the source

FOLDER = pathlib.Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]
# Files that the pages show or offer for download.
DOWNLOADS = ("include/*.h", "include/*.hpp", "docs/schema/*.json", "docs/quenra.1", "docs/performance/*.svg")
HEADER_LINK = re.compile(
    r"\]\(((?:\.\./)*)include/(%s)\.h\)" % "|".join(name.removesuffix(".h") for name in reference.HEADERS))
COMMENT = re.compile(r"<!--.*?-->\n?", re.DOTALL)
BLOCK = re.compile(r"^(?P<fence>`{3,})(?P<language>\w*)[^\n]*\n(?P<body>.*?)^(?P=fence)$", re.MULTILINE | re.DOTALL)


def page_sources():
    """The Markdown pages of the site, relative to the root."""
    pages = ["README.md", "CHANGELOG.md", "SECURITY.md"]
    return pages + sorted(str(page.relative_to(ROOT)) for page in (ROOT / "docs").glob("*.md"))


def sections(available):
    """The table of contents: (title, [(page, title or None)])."""
    result, listed = [], set()
    for line in (FOLDER / "contents.txt").read_text().splitlines():
        if line.startswith("#") or not line.strip():
            continue
        if not line.startswith(" "):
            result.append((line.strip(), []))
            continue
        page, _, title = line.strip().partition(" ")
        listed.add(page)
        if page in available:
            result[-1][1].append((page, title.strip() or None))
    further = [(page, None) for page in sorted(available - listed)]
    return result + ([("Further pages", further)] if further else [])


def toctrees(available):
    lines = []
    for section, pages in sections(available):
        lines += ["```{toctree}", f":caption: {section}", ":maxdepth: 1", ""]
        for page, title in pages:
            name = str(pathlib.PurePosixPath(page).with_suffix(""))
            lines.append(f"{title} <{name}>" if title else name)
        lines += ["```", ""]
    return "\n".join(lines)


def published(text):
    """A page without the notes for the tests: comments, and options of code blocks. Links to a header lead
    to its reference."""
    text = HEADER_LINK.sub(lambda match: f"]({match[1]}reference/{match[2]}.rst)", text)
    parts, end = [], 0
    for match in BLOCK.finditer(text):
        parts += [COMMENT.sub("", text[end:match.start()]),
                  "{fence}{language}\n{body}{fence}".format(**match.groupdict())]
        end = match.end()
    return "".join([*parts, COMMENT.sub("", text[end:])])


def assemble(work):
    shutil.rmtree(work, ignore_errors=True)
    available = set()
    for page in page_sources():
        target = work / page
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(published((ROOT / page).read_text()))
        available.add(page)
    for pattern in DOWNLOADS:
        for source in sorted(ROOT.glob(pattern)):
            target = work / source.relative_to(ROOT)
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(source, target)
    (work / "reference").mkdir()
    for name, text in reference.pages(ROOT / "include"):
        (work / "reference" / name).write_text(text)
        available.add(f"reference/{name}")
    index = (FOLDER / "index.md").read_text()
    (work / "index.md").write_text(index.replace("CONTENTS", toctrees(available)))


def build(output, work):
    assemble(work)
    shutil.rmtree(output, ignore_errors=True)
    environment = dict(os.environ, PYTHONHASHSEED="0", SOURCE_DATE_EPOCH="0", LC_ALL="C.UTF-8")
    doctrees = work / ".doctrees"
    result = subprocess.run(
        [sys.executable, "-B", "-m", "sphinx", "-q", "-W", "--keep-going", "-b", "html", "-c", FOLDER,
         "-d", doctrees, work, output], env=environment, check=False)
    if result.returncode != 0:
        return result.returncode
    for name in (".buildinfo", ".buildinfo.bak"):
        (output / name).unlink(missing_ok=True)
    return 0


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    output = pathlib.Path(sys.argv[1]).resolve()
    work = pathlib.Path(sys.argv[2]).resolve() if len(sys.argv) == 3 else output.with_name(output.name + "-source")
    try:
        return build(output, work)
    except reference.HeaderError as error:
        sys.exit(f"docs: {error}")


if __name__ == "__main__":
    sys.exit(main())
