"""The pages at the widths of a telephone and of a screen, measured in a browser.

Skipped without chromium, whose package is too large for every test run."""

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
(async () => {
  const results = [];
  for (const page of PAGES) for (const width of WIDTHS) results.push(await measure(page, width));
  document.body.innerHTML = "<pre id='results'></pre>";
  document.getElementById("results").textContent = JSON.stringify(results);
})();
"""


def measurements():
    folder = builtsite.FOLDER / "layout"
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(builtsite.site(), folder)
    script = f"const PAGES = {json.dumps(list(builtsite.pages()))}; const WIDTHS = {json.dumps(WIDTHS)};{SCRIPT}"
    (folder / "measure.html").write_text(f"<!doctype html><body><script>{script}</script></body>")
    document = builtsite.dumped((folder / "measure.html").as_uri(), seconds=60)
    match = re.search(r'<pre id="results">(.*?)</pre>', document, re.DOTALL)
    return json.loads(html.unescape(match[1]))


@unittest.skipUnless(builtsite.chromium(), "needs chromium")
class Layout(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.measured = measurements()

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


if __name__ == "__main__":
    unittest.main()
