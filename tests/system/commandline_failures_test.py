import unittest

from commandline import CommandLineTest


class NotSupported(CommandLineTest):
    def assert_not_supported(self, *words, state="notSupported", code=-26934,
                             message="is not supported on this machine\n"):
        run = self.quenra("get", *words, exit_code=3)
        self.assertEqual(run.out, "", run)
        self.assertIn(message, run.error)
        document = self.document("get", *words, kind="get", exit_code=3)
        self.assertEqual(document["attribute"]["state"], state)
        self.assertEqual(document["attribute"]["status"]["code"], code)
        return run

    def test_attribute_that_the_driver_refuses(self):
        self.machine("attribute", "remove", "controller", "0x20044C00")
        run = self.assert_not_supported("driver-setting-1")
        self.assert_failure(run, -26934, "QUENRA_STATUS_NOT_SUPPORTED")

    def test_instance_beyond_the_last_memory_module(self):
        self.assert_not_supported("memory-size", "--instance", "3",
                                  message="memory-size has 3 instances (0 to 2)\n")

    def test_unknown_id(self):
        self.assert_not_supported("0x10012300")

    def test_marten_interface_of_a_machine_without_one(self):
        self.machine("scenario", "--martens", "0")
        run = self.assert_not_supported("firmware-version", "--marten", state="notAvailable", code=-26932,
                                        message="is not available: the machine has no Marten interface\n")
        self.assert_failure(run, -26932, "QUENRA_STATUS_NO_CONTROLLER")


class NoController(CommandLineTest):
    def test_absent_controller_has_its_exit_code_in_every_verb_that_opens_it(self):
        self.machine("scenario", "--controllers", "0")
        for words in (("info",), ("get", "product-name")):
            run = self.quenra(*words, exit_code=4)
            self.assert_failure(run, -26932, "QUENRA_STATUS_NO_CONTROLLER")
            document = self.document(*words, kind="error", exit_code=4)
            self.assertEqual(document["command"], words[0])
            self.assertEqual(document["error"]["cause"], "status")
            self.assertEqual(document["error"]["code"], -26932)
            self.assertEqual(document["error"]["constant"], "QUENRA_STATUS_NO_CONTROLLER")

    def test_device_path_without_a_device(self):
        self.machine("scenario", "--device-paths", "0")
        run = self.quenra("get", "device-path", exit_code=4)
        self.assert_failure(run, -26932, "QUENRA_STATUS_NO_CONTROLLER")
        self.document("get", "device-path", kind="error", exit_code=4)


class LibraryFailure(CommandLineTest):
    def test_two_controllers(self):
        self.machine("scenario", "--controllers", "2")
        run = self.quenra("info", exit_code=1)
        self.assert_failure(run, -52003, "QUENRA_STATUS_GENERIC_FAILURE")
        self.assertIn("2 controller interfaces are present; exactly 1 is supported\n", run.error)
        self.assertEqual(self.document("info", kind="error", exit_code=1)["error"]["code"], -52003)

    def test_two_martens(self):
        self.machine("scenario", "--martens", "2")
        run = self.quenra("get", "product-name", exit_code=1)
        self.assert_failure(run, -52003, "QUENRA_STATUS_GENERIC_FAILURE")
        self.assertIn("2 Marten interfaces are present; at most 1 is supported\n", run.error)

    def test_unusable_table_is_distinguished_from_an_absent_controller(self):
        self.machine("scenario", "--without-structure", "150")
        run = self.quenra("info", exit_code=4)
        self.assert_failure(run, -26932, "QUENRA_STATUS_NO_CONTROLLER")
        self.assertIn("the driver replied, but its SMBIOS table is unusable", run.error)

    def test_driver_that_fails_a_read(self):
        self.machine("answer", "add", "controller", "get-attribute", "--times", "0", "--code", "-52007")
        run = self.quenra("get", "driver-setting-1", exit_code=1)
        self.assert_failure(run, -52007, "QUENRA_STATUS_TIME_OUT")
        document = self.document("get", "driver-setting-1", kind="error", exit_code=1)
        self.assertEqual(document["error"]["constant"], "QUENRA_STATUS_TIME_OUT")

    def test_code_of_the_driver_is_passed_on(self):
        self.machine("answer", "add", "controller", "exchange-values", "--times", "0", "--code", "-777")
        error = self.document("info", kind="error", exit_code=1)["error"]
        self.assertEqual((error["code"], error["constant"]), (-777, None))


if __name__ == "__main__":
    unittest.main()
