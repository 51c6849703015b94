import unittest

from commandline import CommandLineTest


class Attributes(CommandLineTest):
    def test_lists_every_attribute_with_id_type_and_unit(self):
        run = self.quenra("attributes")
        self.assertEqual(run.error, "")
        self.assertRegex(run.out, r"(?m)^  memory-speed +0x2000C900  unsigned  read         MT/s  \S")
        document = self.document("attributes", kind="attributes")
        self.assertEqual(len(document["attributes"]), sum(l.startswith("  ") for l in run.out.split("\n")))
        for attribute in document["attributes"]:
            self.assertIn(f"  {attribute['name']} ", run.out)
            self.assertIn(attribute["id"], run.out)

    def test_needs_no_controller(self):
        self.machine("scenario", "--controllers", "0", "--martens", "0", "--device-paths", "0")
        self.document("attributes", kind="attributes")

    def test_get_accepts_every_id_and_constant(self):
        listed = [attribute for attribute in self.document("attributes", kind="attributes")["attributes"]
                  if attribute["readable"]]
        for attribute in listed[:: len(listed) // 6]:
            by_id = self.document("get", attribute["id"], kind="get")
            by_constant = self.document("get", attribute["constant"], kind="get")
            self.assertEqual(by_id, by_constant)
            self.assertEqual(by_id["attribute"]["name"], attribute["name"])


if __name__ == "__main__":
    unittest.main()
