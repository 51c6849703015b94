"""Every command and program on the pages does what its page shows."""

import pathlib
import re
import textwrap
import unittest

import examples
from examples import PAGES, ROOT, Block, ExampleError


def blocks_of(page):
    return list(examples.blocks_of(page, (ROOT / page).read_text()))


class Pages(unittest.TestCase):
    """One test for each page is added below."""

    def run_page(self, page):
        examples.reset_machine()
        reader = examples.Reader(page)
        self.addCleanup(examples.reset_machine)
        self.addCleanup(reader.close)
        for block in blocks_of(page):
            with self.subTest(page=page, line=block.line):
                reader.run(block)

    def test_every_code_block_has_a_fence_a_language_and_a_test_or_a_reason(self):
        for page in PAGES:
            for number in examples.indented_code((ROOT / page).read_text()):
                with self.subTest(page=page, line=number):
                    self.fail("code without a fence: write ``` and its language before it")
            for block in blocks_of(page):
                with self.subTest(page=page, line=block.line):
                    examples.check(block)

    def test_test_that_a_reason_names_exists(self):
        for page in PAGES:
            for block in blocks_of(page):
                for name in re.findall(r"[\w/]+\.py", block.options.get("no-run", "") +
                                       block.options.get("tested-by", "")):
                    with self.subTest(page=page, line=block.line):
                        self.assertTrue((ROOT / name).is_file(), name)

    def test_programs_of_the_bindings_have_a_test_that_reads_their_page(self):
        for (page, language), test in examples.TESTED_ELSEWHERE.items():
            if (ROOT / page).is_file():
                with self.subTest(page=page):
                    self.assertTrue(any(block.language == language for block in blocks_of(page)))
                    self.assertIn(page, (ROOT / test).read_text())


def test_of(page):
    return lambda self: self.run_page(page)


for name in PAGES:
    if blocks_of(name):
        setattr(Pages, f"test_{pathlib.Path(name).stem.replace('-', '_')}_md", test_of(name))


class Blocks(unittest.TestCase):
    @staticmethod
    def blocks(text):
        return list(examples.blocks_of("a.md", textwrap.dedent(text)))

    def test_block_has_its_language_its_options_and_the_notes_before_it(self):
        block, = self.blocks("""\
            Text.

            <!-- varies: 3.2 s; process 7 -->
            <!-- prepare
            > quenra-sim reset
            -->
            ```console no-run="a reason" save=a.txt
            $ true
            ```
            """)
        self.assertEqual((block.language, block.line), ("console", 7))
        self.assertEqual(block.options, {"no-run": "a reason", "save": "a.txt"})
        self.assertEqual(block.varies, ("3.2 s", "process 7"))
        self.assertEqual(block.prepare, "> quenra-sim reset\n")

    def test_indented_code_is_found_and_a_list_is_not(self):
        text = "Text:\n\n    code\n\n- item\n\n    of the item\n"
        self.assertEqual(list(examples.indented_code(text)), [3])

    def test_console_is_a_list_of_commands_with_their_output(self):
        block, = self.blocks("```console\n$ a\none\n\n> b\n```\n")
        commands = examples.commands_of(block, block.text)
        self.assertEqual([(c.prompt, c.words, c.output) for c in commands], [("$", "a", ["one"]), (">", "b", [])])

    def test_command_line_for_windows_keeps_backslashes(self):
        self.assertEqual(examples.words_of_windows(r'quenra set a "b c" C:\d   # a comment'),
                         ["quenra", "set", "a", "b c", r"C:\d"])


class Outputs(unittest.TestCase):
    def assert_matches(self, expected, actual, varies=()):
        self.assertIsNotNone(examples.matches(expected, actual, varies))

    def assert_differs(self, expected, actual, varies=()):
        self.assertIsNone(examples.matches(expected, actual, varies))

    def test_other_text_does_not_match(self):
        self.assert_matches(["one"], ["one"])
        self.assert_differs(["one"], ["one", "two"])
        self.assert_differs(["one"], ["ones"])

    def test_dots_stand_for_any_lines(self):
        self.assert_matches(["one", "...", "nine"], ["one", "two", "three", "nine"])
        self.assert_matches(["one", "..."], ["one"])
        self.assert_differs(["one", "..."], ["two", "one"])

    def test_only_numbers_of_the_named_parts_vary(self):
        self.assert_matches(["done after 3.2 s, 5 files"], ["done after 10 s, 5 files"], ["after 3.2 s"])
        self.assert_differs(["done after 3.2 s, 5 files"], ["done after 3.2 s, 6 files"], ["after 3.2 s"])

    def test_numbers_that_vary_are_returned(self):
        self.assertEqual(examples.matches(["ticket 9 after 3.2 s"], ["ticket 41 after 0.5 s"], ["ticket 9", "3.2 s"]),
                         {"9": "41", "3.2": "0.5"})


class Running(unittest.TestCase):
    def setUp(self):
        self.reader = examples.Reader("test.md")
        self.addCleanup(self.reader.close)

    def fails(self, language, text, message, **options):
        with self.assertRaisesRegex(ExampleError, message):
            self.reader.run(Block("test.md", 1, language, options, text))

    def test_wrong_example_is_an_error(self):
        self.fails("sh", "false\n", "exit code 1")
        self.fails("console", "$ echo one\ntwo\n", "does not print this")
        self.fails("console", "$ exit 3\n", "exit code 3")
        self.fails("json", "{\n", "invalid JSON")
        self.fails("python", "assert False\n", "AssertionError")
        self.fails("c", "int main(void) { return undeclared; }\n", "does not compile")
        self.fails("c", "int main(void) { return 3; }\n", "exit code 3")
        self.fails("basic", "PRINT\n", "is none of")
        self.fails("powershell", "Get-Item\n", "state the reason")
        self.fails("sh", "true\n", "state the reason", **{"no-run": ""})

    def test_right_example_passes(self):
        for language, text in (("sh", "test -x ./dev\n"), ("console", "$ echo one\none\n"),
                               ("c", "const int32_t code = QUENRA_STATUS_SUCCESS;\n"), ("json", "[1]\n")):
            self.reader.run(Block("test.md", 1, language, {}, text))


if __name__ == "__main__":
    unittest.main()
