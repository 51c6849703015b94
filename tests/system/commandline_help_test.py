import unittest

from commandline import CommandLineTest

VERBS = ("info", "get", "set", "self-test", "metrics", "report", "doctor", "terminals", "route plan", "route connect",
         "firmware inspect", "firmware verify", "firmware build", "firmware extract", "attributes", "explain", "completion", "help")


class Help(CommandLineTest):
    def test_prints_verbs_examples_and_exit_codes(self):
        text = self.quenra("--help").out
        for verb in VERBS:
            self.assertRegex(text, rf"(?m)^  {verb} ")
        self.assertIn("Examples:\n", text)
        self.assertIn("Exit codes:\n  0  done\n", text)
        self.assertEqual(self.quenra("help").out, text)

    def test_of_every_verb_has_examples(self):
        for verb in VERBS:
            self.assertIn(f"Examples:\n  quenra {verb}", self.quenra(*verb.split(), "--help").out)

    def test_with_json_is_a_document(self):
        document = self.document("help", "get", kind="help")
        self.assertEqual(document["text"], self.quenra("get", "--help").out)

    def test_version_is_printed_both_ways(self):
        version = self.document("--version", kind="version")["version"]
        self.assertEqual(self.quenra("--version").out, f"quenra {version}\n")


if __name__ == "__main__":
    unittest.main()
