#!/usr/bin/env python3
"""Tests the Windows installer package: its tables, and installing it under Wine.

The environment variables QUENRA_PACKAGES, the folder of the packages, and QUENRA_VERSION select the
staged files. The installations run in a prefix of their own, which the test creates and removes. Wine's
msiexec does not implement its option /f, so a repair uses the properties that this option sets on
Windows. Windows itself was not tried.
"""

import hashlib
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "packaging/installer"))
import make_installer  # noqa: E402

STAGE = pathlib.Path(os.environ["QUENRA_PACKAGES"], "stage",
                     f"quenra-{os.environ['QUENRA_VERSION']}-win64").resolve()
OLDER, VERSION, NEWER = "0.0.9", "1.2.3", "1.10.0"
UNSUCCESSFUL = 1603  # ERROR_INSTALL_FAILURE
FIXED_FILE_VERSION = struct.pack("<II", 0xFEEF04BD, 0x00010000)


def stage_of_version(version, folder):
    """A copy of the stage whose images have a version in their resources."""
    shutil.copytree(STAGE, folder)
    major, minor, patch = (int(part) for part in version.split("."))
    for image in (folder / "bin").iterdir():
        data = bytearray(image.read_bytes())
        place = data.find(FIXED_FILE_VERSION)
        if place >= 0:
            struct.pack_into("<II", data, place + 8, major << 16 | minor, patch << 16)
            image.write_bytes(data)
    return folder


def table(package, name):
    """The rows of a table by column."""
    text = subprocess.run(["msiinfo", "export", package, name], check=True, capture_output=True,
                          text=True).stdout
    lines = text.splitlines()
    columns = lines[0].split("\t")
    return [dict(zip(columns, line.split("\t"))) for line in lines[3:]]


def files_below(folder):
    """The names of the files, each with a hash of its content."""
    return {file.relative_to(folder).as_posix(): hashlib.sha256(file.read_bytes()).hexdigest()
            for file in folder.rglob("*") if file.is_file()}


class Packages(unittest.TestCase):
    """Packages of three versions, made once."""

    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="quenra-installer-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.package, cls.staged = {}, {}
        for version in (OLDER, VERSION, NEWER):
            cls.staged[version] = stage_of_version(version, cls.folder / f"stage-{version}")
            cls.package[version] = cls.folder / f"quenra-{version}.msi"
            make_installer.make(cls.staged[version], version, cls.package[version])


class Tables(Packages):
    def test_SameFilesElsewhere_SameBytes(self):
        copy = self.folder / "another place"
        shutil.copytree(STAGE, copy, copy_function=shutil.copyfile)
        for file in copy.rglob("*"):
            os.utime(file, (1, 1))
            file.chmod(0o700)
        stage_of_version(VERSION, self.folder / "same")
        for file in files_below(self.folder / "same"):
            shutil.copyfile(self.folder / "same" / file, copy / file)
        second = self.folder / "second.msi"
        os.environ["TZ"] = "Asia/Tokyo"
        self.addCleanup(os.environ.pop, "TZ")
        make_installer.make(copy, VERSION, second)
        self.assertEqual(self.package[VERSION].read_bytes(), second.read_bytes())

    def test_OneOtherByte_OtherPackageCode(self):
        changed = self.folder / "changed"
        shutil.copytree(self.staged[VERSION], changed)
        with open(changed / "include/quenra.h", "a", encoding="utf-8") as header:
            header.write("\n")
        make_installer.make(changed, VERSION, self.folder / "changed.msi")
        first, second = (next(row["Value"] for row in table(package, "_SummaryInformation")
                              if row["PropertyId"] == "9")
                         for package in (self.package[VERSION], self.folder / "changed.msi"))
        self.assertNotEqual(first, second)

    def test_Codes_ProductChangesAndComponentsStay(self):
        def properties(version):
            return {row["Property"]: row["Value"] for row in table(self.package[version], "Property")}
        old, new = properties(OLDER), properties(VERSION)
        self.assertEqual(old["UpgradeCode"], new["UpgradeCode"])
        self.assertNotEqual(old["ProductCode"], new["ProductCode"])
        self.assertEqual(table(self.package[OLDER], "Component"), table(self.package[VERSION], "Component"))

    def test_Images_HaveVersionAndNoHash(self):
        # Windows keeps an installed file with a version if that of the package has none.
        files = {row["FileName"].split("|")[-1]: row for row in table(self.package[VERSION], "File")}
        hashed = {row["File_"] for row in table(self.package[VERSION], "MsiFileHash")}
        for image in ("quenra.dll", "quenra.exe"):
            self.assertEqual(files[image]["Version"], f"{VERSION}.0")
            self.assertNotIn(files[image]["File"], hashed)
        self.assertIn(files["quenra.h"]["File"], hashed)

    def test_Upgrade_RemovesOlderVersionsWithinTheTransaction(self):
        sequence = {row["Action"]: int(row["Sequence"])
                    for row in table(self.package[VERSION], "InstallExecuteSequence")}
        self.assertLess(sequence["InstallInitialize"], sequence["RemoveExistingProducts"])
        self.assertLess(sequence["RemoveExistingProducts"], sequence["ProcessComponents"])
        self.assertLess(sequence["FindRelatedProducts"], sequence["LaunchConditions"])
        older, newer = table(self.package[VERSION], "Upgrade")
        self.assertEqual((older["VersionMin"], older["VersionMax"]), ("", VERSION))
        self.assertEqual((newer["VersionMin"], newer["VersionMax"]), (VERSION, ""))
        self.assertEqual(int(newer["Attributes"]) & 2, 2, "only detects newer versions")

    def test_Upgrade_MigratesTheSelectedFeatures(self):
        # Wine does not implement this action: an upgrade there installs all features.
        older = table(self.package[VERSION], "Upgrade")[0]
        self.assertEqual(int(older["Attributes"]) & 1, 1)
        for name in ("InstallExecuteSequence", "InstallUISequence"):
            sequence = {row["Action"]: int(row["Sequence"]) for row in table(self.package[VERSION], name)}
            self.assertLess(sequence["CostFinalize"], sequence["MigrateFeatureStates"])

    def test_Downgrade_MessageNamesTheRemedy(self):
        detected = table(self.package[VERSION], "Upgrade")[1]["ActionProperty"]
        messages = {row["Condition"]: row["Description"]
                    for row in table(self.package[VERSION], "LaunchCondition")}
        self.assertIn(f"To install version {VERSION}, uninstall the newer version first.",
                      messages[f"NOT {detected}"])

    def test_SearchPath_IsThatOfAllUsersAndIsRestored(self):
        row, = table(self.package[VERSION], "Environment")
        self.assertEqual((row["Name"], row["Value"]), ("=-*PATH", "[~];[INSTALLFOLDER]bin"))

    def test_FileOfAnUnknownFolder_IsRefused(self):
        stray = self.folder / "stray"
        shutil.copytree(STAGE, stray)
        (stray / "etc").mkdir()
        (stray / "etc/quenra.conf").write_text("", encoding="utf-8")
        with self.assertRaisesRegex(make_installer.Refused, "no feature contains 'etc/quenra.conf'"):
            make_installer.make(stray, VERSION, self.folder / "stray.msi")

    def test_VersionWithoutThreeNumbers_IsRefused(self):
        with self.assertRaisesRegex(make_installer.Refused, "'1.2' is not a version of three numbers"):
            make_installer.make(STAGE, "1.2", self.folder / "two.msi")


class Installation(Packages):
    ENVIRONMENT = r"HKLM\System\CurrentControlSet\Control\Session Manager\Environment"
    UNINSTALL = r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall"
    COMMAND_LINE_FOLDER = r"C:\Program Files\quenra\bin"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        prefix = cls.folder / "prefix"
        cls.environment = {**os.environ, "WINEPREFIX": str(prefix), "WINEDEBUG": "-all",
                           "WINEDLLOVERRIDES": "mscoree,mshtml,winemenubuilder.exe="}
        cls.environment.pop("DISPLAY", None)
        cls.addClassCleanup(cls.run_wine, "wineserver", "-k")
        cls.run_wine("wineboot", "-i")
        cls.run_wine("wineserver", "-w")
        cls.run_wine("wineserver", "-p")
        # Wine's default may be older than the oldest version that the package supports.
        cls.run_wine("wine", "winecfg", "-v", "win10")
        cls.disk = prefix / "drive_c"
        cls.installed = cls.disk / "Program Files/quenra"
        # The first installation creates folders and keys of Wine's own, which stay.
        cls.run_wine("wine", "msiexec", "/i", cls.package[VERSION], "/qn")
        cls.run_wine("wine", "msiexec", "/x", cls.package[VERSION], "/qn")

    @classmethod
    def run_wine(cls, *command):
        # Processes in the background keep the output open: a file does not wait for them.
        with tempfile.TemporaryFile() as output:
            result = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL,
                                    stdout=output, stderr=subprocess.DEVNULL,
                                    env=cls.environment, cwd=cls.folder, timeout=120)
            output.seek(0)
            result.stdout = output.read().decode("cp1252")
        return result

    def install(self, version, *properties, code=0):
        result = self.run_wine("wine", "msiexec", "/i", self.package[version], "/qn", *properties)
        self.addCleanup(self.run_wine, "wine", "msiexec", "/x", self.package[version], "/qn")
        # The system keeps the low byte of the exit code.
        self.assertEqual(result.returncode, code & 0xFF)

    def uninstall(self, version):
        result = self.run_wine("wine", "msiexec", "/x", self.package[version], "/qn")
        self.assertEqual(result.returncode, 0)

    def search_path(self):
        """The folders of the variable of all users. Wine leaves the separator of a removed folder."""
        text = self.run_wine("wine", "reg", "query", self.ENVIRONMENT, "/v", "PATH").stdout
        value = text.split("REG_EXPAND_SZ", 1)[1].strip()
        return [folder for folder in value.split(";") if folder]

    def listed_versions(self):
        text = self.run_wine("wine", "reg", "query", self.UNINSTALL, "/s").stdout
        return [line.split()[-1] for line in text.splitlines() if "DisplayVersion" in line]

    def registry(self):
        """The keys and values that mention the product or its codes."""
        self.run_wine("wine", "regedit", "/E", r"C:\registry.reg")
        text = (self.disk / "registry.reg").read_text(encoding="utf-16").lower()
        (self.disk / "registry.reg").unlink()
        return [line for line in text.splitlines() if "quenra" in line]

    def files(self):
        return {path.relative_to(self.disk) for path in self.disk.rglob("*")}

    def assert_installed(self, version):
        self.assertEqual(files_below(self.installed), files_below(self.staged[version]))
        self.assertEqual(self.listed_versions(), [version])

    def test_AllFeatures_InstallTheStage(self):
        self.install(VERSION)
        self.assert_installed(VERSION)
        text = self.run_wine("wine", "reg", "query", self.UNINSTALL, "/s").stdout
        self.assertRegex(text, r"InstallLocation +REG_SZ +C:\\Program Files\\quenra\\")

    def test_LibraryOnly_InstallsNeitherProgramNorHeaders(self):
        before = self.search_path()
        self.install(VERSION, "ADDLOCAL=Library")
        names = files_below(self.installed)
        self.assertIn("bin/quenra.dll", names)
        self.assertNotIn("bin/quenra.exe", names)
        self.assertFalse([name for name in names if name.startswith(("include", "lib"))])
        self.assertEqual(self.search_path(), before)

    def test_CommandLineOnly_RunsFromTheSearchPath(self):
        before = self.search_path()
        self.assertNotEqual(self.run_wine("wine", "quenra", "--version").returncode, 0)
        self.install(VERSION, "ADDLOCAL=CommandLine")
        self.assertEqual(self.search_path(), [*before, self.COMMAND_LINE_FOLDER])
        self.assertTrue(self.run_wine("wine", "quenra", "--version").stdout.startswith("quenra "))
        self.assertFalse((self.installed / "include").exists())

    def test_FeatureAddedLater_JoinsTheInstalledOnes(self):
        self.install(VERSION, "ADDLOCAL=Library")
        self.install(VERSION, "ADDLOCAL=Development")
        names = files_below(self.installed)
        self.assertIn("include/quenra.h", names)
        self.assertIn("bin/quenra.dll", names)
        self.assertNotIn("bin/quenra.exe", names)

    def test_OtherFolder_IsKeptByUpgradeAndRemoved(self):
        self.install(OLDER, r"INSTALLFOLDER=C:\tools\quenra")
        self.install(VERSION)
        self.assertEqual(files_below(self.disk / "tools/quenra"), files_below(self.staged[VERSION]))
        self.assertIn(r"C:\tools\quenra\bin", self.search_path())
        self.assertFalse(self.installed.exists())
        self.uninstall(VERSION)
        self.assertFalse((self.disk / "tools/quenra").exists())

    def test_OlderVersion_IsReplaced(self):
        self.install(OLDER)
        self.install(VERSION)
        self.assert_installed(VERSION)
        self.assertEqual(self.search_path().count(self.COMMAND_LINE_FOLDER), 1)

    def test_VersionWithMoreDigits_IsNewer(self):
        self.install(VERSION)
        self.install(NEWER)
        self.assert_installed(NEWER)

    def test_NewerVersion_IsKept(self):
        self.install(NEWER)
        self.install(VERSION, code=UNSUCCESSFUL)
        self.assert_installed(NEWER)

    def test_Windows7_IsRefused(self):
        self.run_wine("wine", "winecfg", "-v", "win7")
        self.addCleanup(self.run_wine, "wine", "winecfg", "-v", "win10")
        self.install(VERSION, code=UNSUCCESSFUL)
        self.assertFalse(self.installed.exists())

    def test_DamagedAndMissingFiles_AreRepaired(self):
        self.install(VERSION)
        (self.installed / "bin/quenra.dll").unlink()
        header = self.installed / "include/quenra.h"
        header.write_text("damaged", encoding="utf-8")
        self.install(VERSION, "REINSTALL=ALL", "REINSTALLMODE=amus")
        self.assert_installed(VERSION)

    def test_Uninstallation_LeavesNothing(self):
        files, registry, path = self.files(), self.registry(), self.search_path()
        self.install(VERSION)
        self.assertNotEqual(self.registry(), registry)
        self.uninstall(VERSION)
        self.assertEqual(self.files(), files)
        self.assertEqual(self.registry(), registry)
        self.assertEqual(self.search_path(), path)

    def test_Uninstallation_KeepsFilesOfTheUser(self):
        self.install(VERSION)
        (self.installed / "bin/notes.txt").write_text("mine", encoding="utf-8")
        self.uninstall(VERSION)
        self.assertEqual(list(files_below(self.installed)), ["bin/notes.txt"])
        shutil.rmtree(self.installed)


if __name__ == "__main__":
    unittest.main()
