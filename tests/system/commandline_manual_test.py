"""The manual page that quenra prints, formatted by groff as man does."""

import pathlib
import re
import subprocess
import unittest

from commandline import TIME_LIMIT_SECONDS, CommandLineTest

COMMITTED = pathlib.Path(__file__).resolve().parents[2] / "docs" / "quenra.1"


class Manual(CommandLineTest):
    def page_as_read(self):
        page = self.quenra("help", "--manual").out
        # -ww: all warnings. -c and -P-cbou: no styles, so that words stay intact.
        result = subprocess.run(
            ["groff", "-man", "-Tutf8", "-ww", "-rHY=0", "-c", "-P-cbou"], input=page.encode(),
            capture_output=True, timeout=TIME_LIMIT_SECONDS, check=False)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        return result.stdout.decode("utf-8")

    def verbs(self):
        text = self.quenra("help").out.split("Verbs:\n")[1].split("Examples:")[0]
        return re.findall(r"(?m)^  ([a-z-]+(?: [a-z]+)?)  ", text)

    def test_groff_formats_it_without_warnings_and_every_verb_has_a_section(self):
        text = self.page_as_read()
        sections = re.findall(r"(?m)^[A-Z][A-Z ]+$", text)
        self.assertEqual(sections, ["NAME", "SYNOPSIS", "DESCRIPTION", "VERBS",
                                    "OPTIONS OF EVERY VERB", "EXIT STATUS", "ENVIRONMENT",
                                    "EXAMPLES"])
        self.assertRegex(text, r"(?m)^ +quenra - show ")

    def test_names_every_verb_and_option_of_the_help(self):
        text = self.page_as_read()
        verbs = self.verbs()
        self.assertIn("set", verbs)
        for verb in verbs:
            # A justified line has more than one blank between words.
            self.assertRegex(text, rf"(?m)^ +quenra +{verb.replace(' ', ' +')}\b")
            self.assertRegex(text, rf"(?m)^   {verb}$")
            for option in re.findall(r"(?m)^  (?:-h,)?(--[a-z-]+)", self.quenra(*verb.split(), "--help").out):
                self.assertRegex(text, rf"(?m)^ +{option}\b", verb)

    def test_committed_page_is_the_programs_own(self):
        self.assertEqual(COMMITTED.read_text(encoding="utf-8"), self.quenra("help", "--manual").out)

    def test_documents_every_verb(self):
        run = self.quenra("help", "get", "--manual", exit_code=2)
        self.assertIn("the manual page documents all verbs", run.error)

    def test_with_json_is_a_document(self):
        document = self.document("help", "--manual", kind="help")
        self.assertEqual(document["text"], self.quenra("help", "--manual").out)


if __name__ == "__main__":
    unittest.main()
