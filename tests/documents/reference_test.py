"""The reference that docs/site/reference.py makes from the public headers."""

import re
import textwrap
import unittest

import builtsite
import reference

EXPORTS = (builtsite.ROOT / "tests" / "architecture" / "exports.txt").read_text().split()


def page_of(header):
    items = reference.Reader("test.h", textwrap.dedent(header)).read()
    texts = reference.Texts(reference.symbols_of({"test.h": items}))
    return reference.Page("test.h", "Title", texts).write(items)


class PublicHeaders(unittest.TestCase):
    def test_every_exported_function_is_a_function_of_the_reference(self):
        symbols = reference.symbols_of(reference.read_headers(builtsite.ROOT / "include"))
        functions = {name for name, kind in symbols.items() if kind == "function"}
        helpers = {name for name in functions if name.startswith("zoerr_Status_")}
        self.assertEqual(sorted(functions - helpers), sorted(EXPORTS))

    def test_every_word_of_a_comment_is_on_the_page(self):
        for name, page in reference.pages(builtsite.ROOT / "include"):
            header = (builtsite.ROOT / "include" / name.replace(".rst", ".h")).read_text()
            shown = set(re.findall(r"\w{3,}", page.replace("\\", "")))
            for comment in re.findall(r"/\*.*?\*/", header, re.DOTALL):
                missing = set(re.findall(r"\w{3,}", comment)) - shown
                self.assertFalse(missing, comment)

    def test_every_constant_is_on_the_page(self):
        symbols = reference.symbols_of(reference.read_headers(builtsite.ROOT / "include"))
        for name in reference.HEADERS:
            header = (builtsite.ROOT / "include" / name).read_text()
            defined = re.findall(r"^#define (\w+)(?=[ (].*\S)", header, re.MULTILINE)
            defined += re.findall(r"^  (\w+) = ", header, re.MULTILINE)
            self.assertTrue(defined or name == "quenra.h", name)
            self.assertFalse(set(defined) - set(symbols), name)


class Forms(unittest.TestCase):
    def test_comment_of_a_function_has_definitions_and_a_table(self):
        page = page_of("""\
            /* A header. */

            /* Reads a value.
             *
             * value: out; the
             *        value.
             *
             * Returns
             *   0           done
             *   QUENRA_BAD  the value is
             *               bad */
            QUENRA_RETURNS_STATUS int32_t QUENRA_read(QUENRA_OUT uint32_t* value);
            """)
        self.assertIn(".. c:function:: int32_t QUENRA_read(uint32_t* value)\n", page)
        self.assertIn("   ``value``\n      out; the value.\n", page)
        self.assertIn("      * - 0\n        - done\n", page)
        self.assertIn("      * - ``QUENRA_BAD``\n        - the value is bad\n", page)

    def test_list_of_a_comment_keeps_the_paragraphs_and_examples_of_its_items(self):
        page = page_of("""\
            /* Rules:
             *
             *  9. Order:
             *
             *       first
             *         second
             *
             *     The end.
             * 10. More. */
            """)
        self.assertIn("9. Order:\n\n   ::\n\n      first\n        second\n\n   The end.\n\n10. More.\n", page)

    def test_neighbours_share_a_comment(self):
        page = page_of("""\
            /* A header. */

            /* Steps. */
            void QUENRA_one(void);
            void QUENRA_two(void);
            """)
        self.assertIn(".. c:function:: void QUENRA_one(void)\n                void QUENRA_two(void)\n\n   Steps.", page)

    def test_symbol_in_a_comment_is_a_link(self):
        page = page_of("""\
            /* A header. */

            /* As QUENRA_two. */
            void QUENRA_one(void);

            void QUENRA_two(void);
            """)
        self.assertIn(":c:func:`QUENRA_two() <QUENRA_two>`", page)

    def test_enumerators_have_their_own_comments_and_group_titles(self):
        page = page_of("""\
            /* A header. */

            enum QUENRA_Kind {
              /* Memory: modules. */
              QUENRA_SIZE = 1,
              /* In MHz. */
              QUENRA_SPEED = 2,
              QUENRA_COUNT = 3
            };
            """)
        self.assertIn("   Memory: modules.\n\n   .. c:enumerator:: QUENRA_SIZE = 1\n\n"
                      "   .. c:enumerator:: QUENRA_SPEED = 2\n\n      In MHz.\n\n"
                      "   .. c:enumerator:: QUENRA_COUNT = 3\n", page)

    def test_unknown_declaration_is_an_error_with_its_line(self):
        with self.assertRaisesRegex(reference.HeaderError, r"include/test.h:3: "):
            page_of("""\
                /* A header. */

                union QUENRA_Either { int one; };
                """)


if __name__ == "__main__":
    unittest.main()
