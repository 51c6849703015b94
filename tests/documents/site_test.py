"""The documentation site: its links, its contents, its search, and that it needs no network."""

import json
import pathlib
import re
import shutil
import unittest
import urllib.parse

import builtsite
import reference

EXPORTS = (builtsite.ROOT / "tests" / "architecture" / "exports.txt").read_text().split()
EXTERNAL = re.compile(r"https?://[\w-]+(\.[\w-]+)+(:\d+)?(/[\w./~%+#?=&,-]*)?")


def index_of_search():
    text = (builtsite.site() / "searchindex.js").read_text()
    return json.loads(text.removeprefix("Search.setIndex(").rstrip(";").removesuffix(")"))


class Links(unittest.TestCase):
    def problem(self, page, link):
        """The reason why a link leads nowhere, or None."""
        if re.match(r"[a-z]+:", link):
            return None if EXTERNAL.fullmatch(link) else "malformed"
        path, _, anchor = urllib.parse.unquote(link).partition("#")
        target = (page.path.parent / path.partition("?")[0]).resolve() if path else page.path
        if not target.is_relative_to(builtsite.site()):
            return "outside the site"
        if not target.is_file():
            return "no such file"
        name = target.relative_to(builtsite.site()).as_posix()
        if anchor and anchor not in builtsite.pages()[name].anchors:
            return "no such anchor"
        return None

    def test_every_link_leads_to_a_page_and_an_anchor(self):
        checked = 0
        for name, page in builtsite.pages().items():
            for link in page.links:
                checked += 1
                with self.subTest(page=name, link=link):
                    self.assertIsNone(self.problem(page, link))
        self.assertGreater(checked, 1000)

    def test_no_page_loads_anything_from_a_network(self):
        for name, page in builtsite.pages().items():
            for link in page.resources:
                with self.subTest(page=name, link=link):
                    self.assertNotRegex(link, r"^(\w+:)?//")
                    self.assertTrue((page.path.parent / link.partition("?")[0]).resolve().is_file())
        for style in builtsite.site().rglob("*.css"):
            with self.subTest(style=style.name):
                self.assertNotRegex(style.read_text(), r"(url\(|@import)\s*['\"]?(https?:)?//")


class Contents(unittest.TestCase):
    def test_every_page_of_the_project_is_listed(self):
        linked = {link.partition("#")[0] for link in builtsite.pages()["index.html"].links}
        for page in sorted((builtsite.ROOT / "docs").glob("*.md")):
            self.assertIn(f"docs/{page.stem}.html", linked)
        for name in reference.HEADERS:
            self.assertIn(f"reference/{name.replace('.h', '.html')}", linked)

    def test_every_exported_function_has_an_anchor_in_the_reference(self):
        anchors = {anchor for name, page in builtsite.pages().items() if name.startswith("reference/")
                   for anchor in page.anchors}
        self.assertEqual([name for name in EXPORTS if f"c.{name}" not in anchors], [])

    def test_a_symbol_on_a_page_links_to_the_reference(self):
        self.assertIn("../reference/quenra_status.html#c.QUENRA_Status.QUENRA_STATUS_NOT_SUPPORTED",
                      builtsite.pages()["docs/attributes.html"].links)

    def test_no_page_shows_a_note_for_the_tests(self):
        for page in builtsite.pages().values():
            self.assertNotIn("<!-- ", page.path.read_text().split('<article role="main"')[-1])


class Search(unittest.TestCase):
    def found(self, word):
        """The pages that the index lists for a word, as the script of the search reads it."""
        index = index_of_search()
        numbers = index["terms"].get(word, [])
        return {index["docnames"][number] for number in ([numbers] if isinstance(numbers, int) else numbers)}

    def test_constant_is_found_in_the_text_and_as_a_symbol(self):
        # The stem of the word, as the script computes it.
        self.assertIn("docs/attributes", self.found("quenra_status_not_support"))
        symbols = [entry[-1] for entries in index_of_search()["objects"].values() for entry in entries]
        self.assertIn("QUENRA_STATUS_NOT_SUPPORTED", symbols)

    def test_status_code_is_found_by_its_number(self):
        self.assertIn("reference/quenra_status", self.found("n26934"))
        self.assertIn('"n" + word', (builtsite.site() / "_static" / "language_data.js").read_text())

    def test_every_exported_function_is_a_symbol_of_the_index(self):
        symbols = {entry[-1] for entries in index_of_search()["objects"].values() for entry in entries}
        self.assertEqual(set(EXPORTS) - symbols, set())


class Build(unittest.TestCase):
    def files(self, folder):
        return {path.relative_to(folder).as_posix(): path.read_bytes()
                for path in sorted(folder.rglob("*")) if path.is_file()}

    def test_same_sources_give_the_same_bytes(self):
        folder = builtsite.FOLDER / "another-place"
        shutil.rmtree(folder, ignore_errors=True)
        first, second = self.files(builtsite.site()), self.files(builtsite.build(folder / "site"))
        self.assertEqual(sorted(first), sorted(second))
        self.assertEqual([name for name in first if first[name] != second[name]], [])

    def test_no_file_names_the_folder_of_the_build(self):
        for name, content in self.files(builtsite.site()).items():
            self.assertNotIn(str(pathlib.Path(builtsite.ROOT)).encode(), content, name)


if __name__ == "__main__":
    unittest.main()
