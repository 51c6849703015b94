import hashlib
import unittest

from commandline import CommandLineTest, Files


class Firmware(CommandLineTest):
    def setUp(self):
        super().setUp()
        self.files = Files(self)
        self.typed = self.files.typed

    def build(self, payload, *more, device="MARTEN", version="1.4.2f7", exit_code=0):
        self.files["payload"].write_bytes(payload)
        return self.quenra("firmware", "build", self.typed("payload"), "--output",
                           self.typed("Größe.fwi"), "--device", device, "--firmware-version",
                           version, *more, exit_code=exit_code)

    def inspected(self):
        return self.document("firmware", "inspect", self.typed("Größe.fwi"),
                             kind="firmware-inspect")["image"]

    def test_built_image_is_inspected_and_verified(self):
        payload = bytes(range(256)) * 100
        self.assertEqual(self.build(payload).out, "")
        self.build(b"[Version]\r\n", "--append", "--file-name", "a.inf", device="BIOS")
        image = self.inspected()
        self.assertTrue(image["valid"])
        self.assertEqual([(section["device"], section["byteCount"], section["order"])
                          for section in image["sections"]], [("MARTEN", 25600, 2), ("BIOS", 11, 1)])
        self.assertEqual(self.quenra("firmware", "verify", self.typed("Größe.fwi")).out,
                         "good: 2 sections\n")
        self.document("firmware", "verify", self.typed("Größe.fwi"), kind="firmware-verify")

    def test_payload_is_extracted_as_it_was_built(self):
        payload = bytes(range(256)) * 100
        self.build(payload)
        self.build(b"[Version]\r\n", "--append", "--file-name", "a.inf", device="BIOS")
        words = ("firmware", "extract", self.typed("Größe.fwi"), "--section", "1", "--output",
                 self.typed("Nutzlast.bin"))
        document = self.document(*words, kind="firmware-extract")
        self.assertEqual(self.files["Nutzlast.bin"].read_bytes(), payload)
        digest = hashlib.sha256(payload).hexdigest()
        self.assertEqual(document["sha256"], digest)
        self.assertEqual(self.inspected()["sections"][0]["sha256"], digest)
        self.assertIn(f"\n  1  {digest}\n",
                      self.quenra("firmware", "inspect", self.typed("Größe.fwi")).out)
        self.assertIn("the file exists", self.quenra(*words, exit_code=1).error)

    def test_refused_section_is_not_extracted(self):
        self.build(b"123456789")
        path = self.files["Größe.fwi"]
        path.write_bytes(path.read_bytes().replace(b"MTIz", b"MTI0"))
        run = self.quenra("firmware", "extract", self.typed("Größe.fwi"), "--section", "1",
                          "--output", self.typed("x"), exit_code=1)
        self.assertIn("section 1 is refused: CRC mismatch: ", run.error)
        self.assertFalse(self.files["x"].exists())

    def test_every_fault_is_printed(self):
        self.build(b"123456789")
        path = self.files["Größe.fwi"]
        path.write_bytes(path.read_bytes().replace(b"MTIz", b"MTI0"))
        self.assertIn("refused: CRC mismatch: header 0x05440F15, payload 0x",
                      self.quenra("firmware", "inspect", self.typed("Größe.fwi")).out)
        run = self.quenra("firmware", "verify", self.typed("Größe.fwi"), exit_code=1)
        self.assertIn("\n  -26938 QUENRA_STATUS_INVALID_IMAGE, line 258\n  Advice: ", run.error)
        document = self.document("firmware", "verify", self.typed("Größe.fwi"),
                                 kind="firmware-verify", exit_code=1)
        self.assertEqual(document["image"]["sections"][0]["fault"]["line"], 258)

    def test_document_lists_the_built_sections(self):
        self.files["payload"].write_bytes(b"123456789")
        document = self.document("firmware", "build", self.typed("payload"), "--output",
                                 self.typed("x.fwi"), "--device", "SAFEMODE", "--firmware-version",
                                 "1.4.2f7", kind="firmware-build")
        self.assertEqual(document["image"]["sections"][0]["crc"], 0x05440F15)

    def test_file_name_that_is_not_plain_is_unsafe(self):
        self.build(b"x", "--file-name", "aaaa.cap", device="BIOS")
        path = self.files["Größe.fwi"]
        path.write_bytes(path.read_bytes().replace(b"aaaa.cap", b"D:\\x.cap"))
        self.assertIn("unsafe: the file name 'D:\\x.cap' is not plain: ",
                      self.quenra("firmware", "inspect", self.typed("Größe.fwi")).out)
        document = self.document("firmware", "verify", self.typed("Größe.fwi"),
                                 kind="firmware-verify", exit_code=1)
        self.assertTrue(document["image"]["sections"][0]["remarks"][0]["refused"])
        self.build(b"x", "--force", "--file-name", "..\\x.cap", device="BIOS", exit_code=2)

    def test_text_that_is_no_version_is_wrong_usage(self):
        self.build(b"x", version="3.0", exit_code=2)
        self.assertFalse(self.files["Größe.fwi"].exists())

    def test_needs_no_controller(self):
        self.machine("scenario", "--controllers", "0")
        self.build(b"x")
        self.assertTrue(self.inspected()["valid"])

    def test_file_that_cannot_be_read_is_an_error(self):
        document = self.document("firmware", "inspect", self.typed("none"), kind="error",
                                 exit_code=1)
        self.assertEqual(document["command"], "firmware inspect")
        self.assertEqual(document["error"]["cause"], "program")
        self.quenra("firmware", "verify", self.typed("."), exit_code=1)


if __name__ == "__main__":
    unittest.main()
