"""The wheel of the Python package: its content, and its installation into an empty folder."""

import base64
import csv
import email
import hashlib
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
import zipfile

from unpacked import PACKAGES, PRODUCT, ROOT, VERSION, run

WHEEL = PACKAGES / f"{PRODUCT}-py3-none-win_amd64.whl"
INFORMATION = f"{PRODUCT}.dist-info"
SOURCE = ROOT / "bindings/python/quenra"


class Content(unittest.TestCase):
    def setUp(self):
        self.wheel = zipfile.ZipFile(WHEEL)
        self.addCleanup(self.wheel.close)

    def metadata(self, name):
        return email.message_from_bytes(self.wheel.read(f"{INFORMATION}/{name}"))

    def test_wheel_has_the_sources_the_library_and_licenses_only(self):
        names = {name for name in self.wheel.namelist() if not name.startswith(f"{INFORMATION}/")}
        licenses = {name for name in names if name.startswith("quenra/licenses/")}
        sources = {f"quenra/{path.name}" for path in [*SOURCE.glob("*.py"), SOURCE / "py.typed"]}
        self.assertEqual(names - licenses, sources | {"quenra/quenra.dll"})
        self.assertGreater(len(licenses), 2)

    def test_sources_are_those_of_the_repository(self):
        for path in SOURCE.glob("*.py"):
            self.assertEqual(self.wheel.read(f"quenra/{path.name}"), path.read_bytes(), path.name)

    def test_library_is_that_of_the_zip(self):
        with zipfile.ZipFile(PACKAGES / f"{PRODUCT}-win64.zip") as archive:
            (name,) = [name for name in archive.namelist() if name.endswith("bin/quenra.dll")]
            self.assertEqual(self.wheel.read("quenra/quenra.dll"), archive.read(name))

    def test_metadata_names_version_and_requirements(self):
        metadata = self.metadata("METADATA")
        self.assertEqual((metadata["Name"], metadata["Version"]), ("quenra", VERSION))
        self.assertEqual(metadata["Requires-Python"], ">=3.9")
        self.assertIsNone(metadata["Requires-Dist"])
        self.assertEqual(metadata.get_payload().strip(),
                         (ROOT / "bindings/python/README.md").read_text().strip())

    def test_tag_is_that_of_64_bit_windows(self):
        wheel = self.metadata("WHEEL")
        self.assertEqual(wheel.get_all("Tag"), ["py3-none-win_amd64"])
        self.assertEqual(wheel["Root-Is-Purelib"], "false")

    def test_record_has_the_hash_of_every_file(self):
        lines = self.wheel.read(f"{INFORMATION}/RECORD").decode().splitlines()
        recorded = {name: (digest, size) for name, digest, size in csv.reader(lines)}
        self.assertEqual(set(recorded), set(self.wheel.namelist()))
        for name, (digest, size) in recorded.items():
            if name.endswith("/RECORD"):
                continue
            content = self.wheel.read(name)
            encoded = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).decode()
            self.assertEqual((digest, int(size)), ("sha256=" + encoded.rstrip("="), len(content)))

    def test_files_have_the_same_date_in_every_build(self):
        self.assertEqual({entry.date_time for entry in self.wheel.infolist()}, {(1980, 1, 1, 0, 0, 0)})


class Installation(unittest.TestCase):
    """Installed into an empty folder by pip, without a network."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quenra wheel ")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        run(sys.executable, "-m", "pip", "install", "--quiet", "--no-deps", "--no-index", "--no-cache-dir",
            "--disable-pip-version-check", "--root-user-action=ignore", "--only-binary=:all:",
            "--platform", "win_amd64", "--target", cls.folder, WHEEL)

    def python(self, program):
        environment = {"PYTHONPATH": str(self.folder), "PATH": os.environ["PATH"]}
        return subprocess.run([sys.executable, "-B", "-W", "error", "-c", program], env=environment,
                              cwd=self.folder, capture_output=True, text=True, check=False)

    def test_folder_has_the_package_with_types_and_library(self):
        for name in ("__init__.py", "py.typed", "quenra.dll"):
            self.assertTrue((self.folder / "quenra" / name).is_file(), name)

    def test_package_knows_its_version_and_its_library(self):
        result = self.python("import json, quenra, quenra._library as library\n"
                             "print(json.dumps([quenra.__version__, library.DEFAULT_PATH]))")
        self.assertEqual(result.stderr, "")
        version, library = json.loads(result.stdout)
        self.assertEqual(version, VERSION)
        self.assertTrue(pathlib.Path(library).samefile(self.folder / "quenra/quenra.dll"))

    def test_open_on_another_system_raises_a_library_error(self):
        result = self.python("import quenra\ntry:\n  quenra.open()\n"
                             "except quenra.LibraryError as error:\n  print(error)")
        self.assertEqual(result.stderr, "")
        self.assertIn("The library is for 64-bit Python on Windows", result.stdout)

    def test_pip_refuses_the_wheel_on_another_system(self):
        result = subprocess.run(
            [sys.executable, "-m", "pip", "install", "--no-deps", "--no-index", "--no-cache-dir",
             "--target", self.folder / "other", WHEEL], capture_output=True, text=True, check=False)
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("is not a supported wheel on this platform", result.stderr)


if __name__ == "__main__":
    unittest.main()
