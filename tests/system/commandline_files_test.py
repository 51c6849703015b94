"""Failures of files and of the output, as users see them."""

import os
import subprocess
import unittest

from commandline import TIME_LIMIT_SECONDS, CommandLineTest, Files, command


class FilesOnDisk(CommandLineTest):
    def setUp(self):
        super().setUp()
        self.files = Files(self)
        self.typed = self.files.typed
        self.files["payload"].write_bytes(b"123456789")

    def assert_fails(self, message, *words):
        """The message is the same in the text and in the document."""
        run = self.quenra(*words, exit_code=1)
        self.assertEqual((run.out, run.error), ("", f"quenra: {message}\n"))
        document = self.document(*words, kind="error", exit_code=1)
        self.assertEqual(document["error"]["message"], message)
        self.assertEqual(document["error"]["cause"], "program")

    def build_words(self, image, payload="payload"):
        return ("firmware", "build", self.typed(payload), "--output", self.typed(image),
                "--device", "MARTEN", "--firmware-version", "1.4.2f7")

    def assert_read_fails(self, name, reason):
        message = f"cannot read '{self.typed(name)}': {reason}"
        self.assert_fails(message, "firmware", "inspect", self.typed(name))
        self.assert_fails(message, "firmware", "verify", self.typed(name))
        self.assert_fails(message, "update", "--plan", self.typed(name))
        self.assert_fails(message, *self.build_words("image", payload=name))
        self.assertFalse(self.files["image"].exists())

    def assert_write_fails(self, name, reason, *options):
        self.assert_fails(f"cannot write '{self.typed(name)}': {reason}",
                          *self.build_words(name), *options)

    def test_read_of_a_missing_file(self):
        self.assert_read_fails("nofile", "no such file")

    def test_read_of_a_directory(self):
        self.files["directory"].mkdir()
        self.assert_read_fails("directory", "is a directory")

    def test_name_that_windows_does_not_allow(self):
        self.assert_read_fails("a|b?", "the path is invalid")

    def test_write_into_a_missing_directory(self):
        self.assert_write_fails("none/image", "no such directory")

    def test_write_over_a_directory(self):
        self.files["directory"].mkdir()
        self.assert_write_fails("directory", "is a directory", "--force")
        self.assertEqual(sorted(path.name for path in self.files.folder.iterdir()),
                         ["directory", "payload"])

    def test_existing_output_stays_without_force(self):
        self.files["image"].write_bytes(b"old")
        run = self.quenra(*self.build_words("image"), exit_code=1)
        self.assertIn(f"cannot write '{self.typed('image')}': the file exists\n", run.error)
        self.assertEqual(self.files["image"].read_bytes(), b"old")
        self.quenra(*self.build_words("image"), "--force")
        self.assertTrue(self.files["image"].read_bytes().startswith(b"HeaderVersion::1"))

    def test_payload_that_is_the_output_stays(self):
        self.quenra(*self.build_words("payload"), "--force", exit_code=2)
        self.assertEqual(self.files["payload"].read_bytes(), b"123456789")

    def test_other_files_of_the_user_stay(self):
        self.files["image.unfinished"].write_bytes(b"of the user")
        self.quenra(*self.build_words("image"))
        self.assertEqual(self.files["image.unfinished"].read_bytes(), b"of the user")
        self.assertEqual(sorted(path.name for path in self.files.folder.iterdir()),
                         ["image", "image.unfinished", "payload"])


class StandardOutput(CommandLineTest):
    def run_into(self, output):
        """A run whose standard output is a file that the test opened; its exit code and errors."""
        result = subprocess.run(
            command("QUENRA_EXE", ("attributes",)), stdin=subprocess.DEVNULL, stdout=output,
            stderr=subprocess.PIPE, timeout=TIME_LIMIT_SECONDS, check=False)
        return result.returncode, result.stderr.decode("utf-8")

    def test_full_disk(self):
        with open("/dev/full", "wb") as full:
            self.assertEqual(self.run_into(full),
                             (1, "quenra: cannot write the output: no space left on the disk\n"))

    def test_closed_pipe_is_silent(self):
        reader, writer = os.pipe()
        os.close(reader)
        with os.fdopen(writer, "wb") as closed:
            self.assertEqual(self.run_into(closed), (1, ""))


if __name__ == "__main__":
    unittest.main()
