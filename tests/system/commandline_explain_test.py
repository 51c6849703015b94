import unittest

from commandline import CommandLineTest


class Explain(CommandLineTest):
    def test_negative_code_needs_no_quoting(self):
        run = self.quenra("explain", "-26934")
        self.assertEqual(run.error, "")
        self.assertTrue(run.out.startswith("-26934 QUENRA_STATUS_NOT_SUPPORTED\n"), run)
        self.assertRegex(run.out, r"(?m)^  advice +\S")

    def test_every_form_of_a_code_gives_the_same_document(self):
        expected = self.document("explain", "-26934", kind="explain")
        for form in ("0xFFFF96CA", "4294940362", "QUENRA_STATUS_NOT_SUPPORTED"):
            self.assertEqual(self.document("explain", form, kind="explain"), expected)

    def test_severity_follows_the_sign(self):
        for code, severity in ((0, "success"), (52011, "warning"), (-52007, "failure")):
            status = self.document("explain", str(code), kind="explain")["status"]
            self.assertEqual((status["code"], status["severity"]), (code, severity))

    def test_code_of_the_driver_is_no_error(self):
        status = self.document("explain", "-777", kind="explain")["status"]
        self.assertEqual((status["known"], status["constant"]), (False, None))

    def test_needs_no_controller(self):
        self.machine("scenario", "--controllers", "0")
        self.document("explain", "-26932", kind="explain")

    def test_unknown_constant_is_met_with_a_suggestion(self):
        error = self.document("explain", "QUENRA_STATUS_BUSI", kind="error", exit_code=2)["error"]
        self.assertEqual(error["suggestions"], ["QUENRA_STATUS_BUSY"])


if __name__ == "__main__":
    unittest.main()
