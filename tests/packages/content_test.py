"""The contents of the packages: complete, stripped, and the same as in the build."""

import hashlib
import os
import pathlib
import re
import sys
import zipfile

from unpacked import PACKAGES, PRODUCT, ROOT, PackageTest, run, unpack

sys.path.insert(0, str(ROOT / "tests/architecture"))
import check_hardening  # pylint: disable=wrong-import-position
import peimage  # pylint: disable=wrong-import-position

BUILT = pathlib.Path(os.environ["QUENRA_BUILD"]) / "bin"
IMAGES = ("quenra.dll", "quenra.exe")
EXPECTED = """
bin/quenra.dll
bin/quenra.exe
include/quenra.h
include/quenra.hpp
include/quenra_annotations.h
include/quenra_attributes.h
include/quenra_routing.h
include/quenra_status.h
include/quenra_version.h
lib/cmake/quenra/quenraConfig.cmake
lib/cmake/quenra/quenraConfigVersion.cmake
lib/libquenra.dll.a
lib/pkgconfig/quenra.pc
lib/quenra.lib
share/bash-completion/completions/quenra
share/doc/quenra/CHANGELOG.md
share/doc/quenra/README.md
share/doc/quenra/SECURITY.md
share/doc/quenra/docs/packages.md
share/doc/quenra/docs/routing.md
share/doc/quenra/docs/schema/info.schema.json
share/doc/quenra/examples/productname.c
share/doc/quenra/examples/route.c
share/man/man1/quenra.1
share/quenra/completion.ps1
""".split()
SYMBOLS_STRIPPED = 0xC
FOLDERS = {"bin", "include", "lib", "share"}


class Content(PackageTest):
    def files(self):
        return {path.relative_to(self.package).as_posix()
                for path in self.package.rglob("*") if path.is_file()}

    def test_zip_has_every_kind_of_file(self):
        self.assertEqual(set(EXPECTED) - self.files(), set())

    def test_zip_has_the_public_headers_and_no_others(self):
        public = {path.name for kind in ("*.h", "*.hpp") for path in (ROOT / "include").glob(kind)}
        self.assertEqual({path.name for path in (self.package / "include").rglob("*")}, public)

    def test_zip_has_no_other_folders(self):
        self.assertEqual({name.split("/")[0] for name in self.files()}, FOLDERS)
        self.assertEqual({name for name in self.files() if name.startswith("bin/")},
                         {f"bin/{image}" for image in IMAGES})

    def test_zip_has_the_licence_of_each_linked_package(self):
        names = {path.name for path in (self.package / "share/doc/quenra/licenses").iterdir()}
        for part in ("g++-mingw-w64", "mingw-w64-x86-64-dev", "rapidjson", "boost", "cli11"):
            self.assertTrue(any(part in name for name in names), f"{part}: {names}")

    def test_documents_link_to_files_of_the_package(self):
        documents = self.package / "share/doc/quenra"
        broken = []
        for page in documents.rglob("*.md"):
            for link in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", page.read_text()):
                if not (page.parent / link).exists():
                    broken.append(f"{page.relative_to(documents)}: {link}")
        self.assertEqual(broken, [])

    def test_text_files_have_no_path_of_the_build(self):
        for name in self.files():
            content = (self.package / name).read_bytes()
            self.assertNotIn(str(ROOT).encode(), content, name)

    def test_examples_are_the_programs_of_the_pages(self):
        for example, page in (("productname.c", "README.md"), ("route.c", "docs/routing.md")):
            blocks = re.findall(r"^```c(?: [^\n]*)?\n(.*?)^```$", (ROOT / page).read_text(), re.M | re.S)
            self.assertIn((self.examples / example).read_text(), blocks, f"{example} and {page} differ")


class StrippedImages(PackageTest):
    """The shipped images are the built ones, of which the other tests hold."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.symbols = unpack(f"{PRODUCT}-win64-symbols", cls.package.parent)

    def images(self):
        for name in IMAGES:
            yield peimage.Image(self.package / "bin" / name), peimage.Image(BUILT / name)

    def test_symbols_and_debug_sections_are_removed(self):
        for shipped, built in self.images():
            self.assertEqual(shipped.symbols(), {})
            self.assertGreater(len(built.symbols()), 0)
            self.assertLess(len(shipped.bytes), len(built.bytes) / 2)

    def test_loaded_sections_are_those_of_the_build(self):
        for shipped, built in self.images():
            originals = {section.name: section for section in built.sections}
            # A slash begins the number of a longer name: the link to the symbols.
            loaded = [section for section in shipped.sections if not section.name.startswith("/")]
            self.assertGreater(len(loaded), 6)
            for section in loaded:
                original = originals[section.name]
                self.assertEqual((section.address, section.virtual_size, section.flags),
                                 (original.address, original.virtual_size, original.flags), section.name)
                self.assertEqual(shipped.bytes[section.place:section.place + section.size],
                                 built.bytes[original.place:original.place + original.size], section.name)

    def test_headers_are_those_of_the_build(self):
        for shipped, built in self.images():
            for field in ("time", "dll_flags", "base", "directories", "system_version",
                          "subsystem_version"):
                self.assertEqual(getattr(shipped, field), getattr(built, field), field)
            # objcopy records that the symbols are missing.
            self.assertEqual(shipped.flags | SYMBOLS_STRIPPED, built.flags | SYMBOLS_STRIPPED)

    def test_checksum_is_that_of_the_shipped_bytes(self):
        for shipped, _ in self.images():
            self.assertEqual(list(check_hardening.checksum(shipped)), [])

    def test_debugger_finds_function_and_line_of_an_export(self):
        shipped = peimage.Image(self.package / "bin/quenra.dll")
        table, _ = shipped.directories[peimage.EXPORTS]
        function = shipped.number("I", shipped.number("I", table + 28))
        # As GDB does it: through the link in the image, in its folder.
        folder = self.folder / "bin"
        run("cp", "-r", self.package / "bin", folder)
        run("cp", self.symbols / "bin/quenra.dll.debug", folder)
        found = run("x86_64-w64-mingw32-addr2line", "-f", "-e", folder / "quenra.dll",
                    hex(shipped.base + function)).splitlines()
        self.assertEqual(found[0], "QUENRA_closeController")
        self.assertRegex(found[1], r"^\./.*source/user/exports/quenraexports\.cpp:\d+")


class Checksums(PackageTest):
    def test_every_file_has_its_checksum(self):
        listed = dict(line.split("  ")[::-1] for line in
                      (PACKAGES / "SHA256SUMS").read_text().splitlines())
        files = {path.name: path for path in PACKAGES.iterdir()
                 if path.is_file() and path.name != "SHA256SUMS"}
        self.assertEqual(listed.keys(), files.keys())
        for name, path in files.items():
            self.assertEqual(hashlib.sha256(path.read_bytes()).hexdigest(), listed[name], name)


class Archives(PackageTest):
    def test_entries_have_one_date_and_are_sorted(self):
        for path in PACKAGES.glob("*.zip"):
            with zipfile.ZipFile(path) as archive:
                entries = archive.infolist()
            self.assertEqual({entry.date_time for entry in entries}, {(1980, 1, 1, 0, 0, 0)}, path.name)
            names = [entry.filename for entry in entries]
            self.assertEqual(names, sorted(names), path.name)
            self.assertEqual({name.split("/")[0] for name in names}, {path.stem}, path.name)
