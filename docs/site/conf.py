"""The configuration of Sphinx. build.py calls it; the pages are in build/site-source then."""

import pathlib
import re
import sys

import docutils.nodes
import pygments.lexer
import pygments.token
import sphinx.addnodes
import sphinx.search
from sphinx.search.en import SearchEnglish
from sphinx.transforms import SphinxTransform

folder = pathlib.Path(__file__).resolve().parent
root = folder.parents[1]
sys.dont_write_bytecode = True
sys.path.insert(0, str(folder))
import reference  # noqa: E402: the path is set above

version_header = (root / "include" / "quenra_version.h").read_text()
release = ".".join(re.search(rf"QUENRA_VERSION_{part} (\d+)", version_header)[1]
                   for part in ("MAJOR", "MINOR", "PATCH"))
project = "quenra"
language = "en"
root_doc = "index"

extensions = ["myst_parser"]
myst_heading_anchors = 4
# Quotation marks and dashes of the sources stay as they are.
smartquotes = False
primary_domain = "c"
highlight_language = "text"

html_theme = "furo"
html_title = f"quenra {release}"
html_static_path = [str(folder / "static")]
html_css_files = ["site.css"]
html_copy_source = False
html_show_sourcelink = False
html_show_sphinx = False
html_show_copyright = False
# The summaries of search results are read by requests that browsers refuse for files.
html_show_search_summary = False
pygments_style = "default"
pygments_dark_style = "native"

SYMBOLS = reference.symbols_of(reference.read_headers(root / "include"))


class LinkSymbols(SphinxTransform):
    """Links code that is the name of a symbol of the headers to its description."""

    default_priority = 400

    def apply(self, **kwargs):
        for literal in list(self.document.findall(docutils.nodes.literal)):
            name = literal.astext().removesuffix("()")
            inside = isinstance(literal.parent, (docutils.nodes.reference, sphinx.addnodes.pending_xref,
                                                 docutils.nodes.title))
            if name not in SYMBOLS or inside:
                continue
            link = sphinx.addnodes.pending_xref(
                "", refdomain="c", reftype=SYMBOLS[name] if SYMBOLS[name] != "function" else "func",
                reftarget=name, refexplicit=True, refwarn=True)
            link["refdoc"] = self.env.docname
            literal.replace_self(link)
            link += literal


class Console(pygments.lexer.RegexLexer):
    """Commands after the prompts of the pages, `$ ` and `> `, and their output."""

    name = "console"
    tokens = {
        "root": [
            (r"^([$>] )(.*?)(  +# .*)?(\n)",
             pygments.lexer.bygroups(pygments.token.Generic.Prompt, pygments.token.Text, pygments.token.Comment,
                                     pygments.token.Text)),
            (r".*\n", pygments.token.Generic.Output),
        ],
    }


class SearchWithNumbers(SearchEnglish):
    """Finds status codes by their number. The search drops words of digits, so they receive a letter in the
    index and in the query."""

    js_splitter_code = """
var splitQuery = (query) => query
    .split(/[^\\p{Letter}\\p{Number}_]+/gu)
    .filter((word) => word)
    .map((word) => /^\\d+$/.test(word) ? "n" + word : word);
"""

    def split(self, input):
        return ["n" + word if word.isdigit() else word for word in super().split(input)]


def setup(app):
    sphinx.search.languages["en"] = SearchWithNumbers
    app.add_lexer("console", Console)
    app.add_transform(LinkSymbols)
    return {"parallel_read_safe": True}
