"""The NuGet package contains the library of the zip. tests/bindings/csharp/package_test.py tests the rest."""

import zipfile

from unpacked import PACKAGES, ROOT, VERSION, PackageTest

LICENSES = "share/doc/quenra/licenses"


class NuGet(PackageTest):
    def setUp(self):
        super().setUp()
        self.nupkg = zipfile.ZipFile(PACKAGES / f"Quenra.{VERSION}.nupkg")
        self.addCleanup(self.nupkg.close)

    def test_package_has_the_library_of_the_zip(self):
        self.assertEqual(self.nupkg.read("runtimes/win-x64/native/quenra.dll"),
                         (self.package / "bin/quenra.dll").read_bytes())

    def test_package_has_the_licences_of_the_zip(self):
        packed = {name.removeprefix("licenses/"): self.nupkg.read(name)
                  for name in self.nupkg.namelist() if name.startswith("licenses/")}
        shipped = {path.name: path.read_bytes() for path in (self.package / LICENSES).iterdir()}
        self.assertNotEqual(packed, {})
        self.assertEqual(packed, shipped)

    def test_source_file_has_both_parts_of_the_binding(self):
        source = (PACKAGES / f"Quenra.{VERSION}.cs").read_text("utf-8")
        for part in ("Constants.cs", "Quenra.cs"):
            self.assertIn((ROOT / "bindings/csharp" / part).read_text("utf-8"), source)
