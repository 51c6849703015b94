import unittest

from commandline import CommandLineTest

WRONG = (
    (),
    ("inof",),
    ("get",),
    ("get", "product-nam"),
    ("get", "0x30000000"),
    ("get", "memory-size", "--instance", "256"),
    ("get", "firmware-version", "--controller", "--marten"),
    ("set",),
    ("set", "driver-setting-1"),
    ("set", "driver-setting-1", "one"),
    ("set", "text-setting-of-both", "a", "--controller"),
    ("set", "text-setting-of-both", "a", "--both", "--marten"),
    ("self-test", "extra"),
    ("completion",),
    ("completion", "zsh"),
    ("help", "get", "--manual"),
    ("explain",),
    ("explain", "99999999999"),
    ("info", "--unknown"),
    ("info", "/json"),
    ("attributes", "extra"),
)


class Usage(CommandLineTest):
    def test_wrong_usage_is_printed_on_standard_error_only(self):
        for words in WRONG:
            with self.subTest(words=words):
                run = self.quenra(*words, exit_code=2)
                self.assertEqual(run.out, "")
                self.assertTrue(run.error.startswith("quenra: "), run)

    def test_wrong_usage_with_json_is_a_document(self):
        for words in WRONG:
            with self.subTest(words=words):
                document = self.document(*words, kind="error", exit_code=2)
                self.assertEqual(document["error"]["cause"], "usage")

    def test_misspelt_names_are_met_with_a_suggestion(self):
        self.assertIn("Did you mean product-name?", self.quenra("get", "product-nam", exit_code=2).error)
        self.assertIn("Did you mean info?", self.quenra("inof", exit_code=2).error)


if __name__ == "__main__":
    unittest.main()
