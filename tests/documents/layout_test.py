"""The pages and the search in a browser, from files: the widths of a telephone and of a screen."""

import html
import json
import re
import shutil
import unittest

import builtsite

WIDTHS = (390, 1280)

# Opens every page in a frame of each width, and writes down elements that reach beyond the frame, unless
# they are inside an element that scrolls by itself.
SCRIPT = """
const clipped = (element) => {
  for (let parent = element.parentElement; parent; parent = parent.parentElement) {
    if (["auto", "scroll", "hidden"].includes(parent.ownerDocument.defaultView.getComputedStyle(parent).overflowX)
        && parent !== parent.ownerDocument.documentElement && parent !== parent.ownerDocument.body) return true;
  }
  return false;
};
const measure = (page, width) => new Promise((done) => {
  const frame = document.createElement("iframe");
  frame.style.cssText = `width: ${width}px; height: 900px; border: 0`;
  frame.onload = () => {
    const inner = frame.contentDocument;
    const article = inner.querySelector("article");
    const outside = [...article.querySelectorAll("*")].filter((element) => {
      const box = element.getBoundingClientRect();
      return box.width > 0 && box.right > frame.contentWindow.innerWidth + 1 && !clipped(element);
    });
    done({page, width, scroll: inner.documentElement.scrollWidth, text: article.innerText.length,
          outside: outside.slice(0, 5).map((element) => element.outerHTML.slice(0, 160))});
    frame.remove();
  };
  frame.src = page;
  document.body.appendChild(frame);
});
const search = (query) => new Promise((done) => {
  const frame = document.createElement("iframe");
  frame.onload = async () => {
    const inner = frame.contentDocument;
    for (let attempt = 0; attempt < 100 && !inner.querySelector("ul.search a"); ++attempt)
      await new Promise((next) => setTimeout(next, 50));
    await new Promise((next) => setTimeout(next, 300));
    done({query, found: [...inner.querySelectorAll("ul.search a")].map((link) => link.getAttribute("href"))});
    frame.remove();
  };
  frame.src = "search.html?q=" + encodeURIComponent(query);
  document.body.appendChild(frame);
});
(async () => {
  const results = {measured: [], searched: []};
  for (const page of PAGES) for (const width of WIDTHS) results.measured.push(await measure(page, width));
  for (const query of QUERIES) results.searched.push(await search(query));
  document.body.innerHTML = "<pre id='results'></pre>";
  document.getElementById("results").textContent = JSON.stringify(results);
})();
"""

# A search and a page that it finds.
SEARCHES = {
    "QUENRA_STATUS_NOT_SUPPORTED": "docs/attributes.html",
    "-26934": "reference/quenra_status.html",
    "reserveRoute": "reference/quenra_routing.html",
    "pnputil": "docs/command-line.html",
}


def seen_by_a_browser():
    folder = builtsite.FOLDER / "layout"
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(builtsite.site(), folder)
    constants = {"PAGES": list(builtsite.pages()), "WIDTHS": WIDTHS, "QUERIES": list(SEARCHES)}
    script = "".join(f"const {name} = {json.dumps(value)};\n" for name, value in constants.items()) + SCRIPT
    (folder / "measure.html").write_text(f"<!doctype html><body><script>{script}</script></body>")
    document = builtsite.dumped((folder / "measure.html").as_uri(), seconds=60)
    match = re.search(r'<pre id="results">(.*?)</pre>', document, re.DOTALL)
    return json.loads(html.unescape(match[1]))


class Browser(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        seen = seen_by_a_browser()
        cls.measured, cls.searched = seen["measured"], seen["searched"]

    def test_every_page_was_measured_at_every_width(self):
        self.assertEqual(len(self.measured), len(builtsite.pages()) * len(WIDTHS))
        self.assertTrue(all(page["text"] > 20 or page["page"] == "search.html" for page in self.measured))

    def test_no_page_scrolls_sideways(self):
        for page in self.measured:
            with self.subTest(page=page["page"], width=page["width"]):
                self.assertLessEqual(page["scroll"], page["width"])

    def test_no_element_is_cut_off(self):
        for page in self.measured:
            with self.subTest(page=page["page"], width=page["width"]):
                self.assertEqual(page["outside"], [])

    def test_search_finds_words_without_a_server(self):
        self.assertEqual(len(self.searched), len(SEARCHES))
        for search in self.searched:
            with self.subTest(query=search["query"]):
                found = [link.partition("?")[0].partition("#")[0] for link in search["found"]]
                self.assertIn(SEARCHES[search["query"]], found)


if __name__ == "__main__":
    unittest.main()
