import unittest

from commandline import CommandLineTest


class SelfTest(CommandLineTest):
    def test_passes_where_a_controller_is(self):
        run = self.quenra("self-test")
        self.assertEqual((run.out, run.error), ("self-test: passed\n", ""))
        self.assertTrue(self.document("self-test", kind="self-test")["selfTest"]["passed"])

    def test_opens_and_closes_the_controller_and_asks_it_nothing_more(self):
        self.machine("log", "--clear")
        self.quenra("self-test")
        events = [(entry["event"], entry.get("request")) for entry in self.log()
                  if entry["interface"] == "controller"]
        self.assertEqual(events, [("open", None), ("request", "exchange-values"),
                                  ("request", "exchange-values"), ("close", None)])

    def test_absent_controller_has_its_exit_code(self):
        self.machine("scenario", "--controllers", "0")
        run = self.quenra("self-test", exit_code=4)
        self.assert_failure(run, -26932, "QUENRA_STATUS_NO_CONTROLLER")
        document = self.document("self-test", kind="error", exit_code=4)
        self.assertEqual(document["command"], "self-test")

    def test_controller_that_cannot_be_opened_is_a_failure(self):
        self.machine("scenario", "--controllers", "2")
        run = self.quenra("self-test", exit_code=1)
        self.assert_failure(run, -52003, "QUENRA_STATUS_GENERIC_FAILURE")


if __name__ == "__main__":
    unittest.main()
