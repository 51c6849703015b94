#!/usr/bin/env python3
"""Tests the NuGet package of the C# binding as its users consume it.

Usage: package_test.py LIBRARY FOLDER

Makes the package twice in FOLDER and compares the bytes, checks its content, builds the programs of
docs/csharp.md from the unpacked package and from the single source file, and runs them on Mono against
libquenra.so in the folder LIBRARY, which replaces quenra.dll.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest
import xml.etree.ElementTree
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[3]
VERSION = "1.2.3"
PACKAGE = f"Quenra.{VERSION}.nupkg"
LIBRARY_CONTENT = b"stands for quenra.dll"
ASSEMBLY = "lib/netstandard2.0/Quenra.Net.dll"

library = folder = None


def run(*command, cwd):
    environment = dict(os.environ, LD_LIBRARY_PATH=str(library), LC_ALL="C.UTF-8")
    result = subprocess.run(command, cwd=cwd, env=environment, timeout=60, capture_output=True, text=True)
    if result.returncode != 0:
        raise AssertionError(f"{' '.join(command)}: exit code {result.returncode}\n{result.stdout}{result.stderr}")
    return result.stdout


def make_package(name):
    target = folder / name
    target.mkdir()
    (target / "input.dll").write_bytes(LIBRARY_CONTENT)
    (target / "licenses").mkdir()
    # Created in an order that is not that of the names.
    for part in ("second", "first"):
        (target / f"licenses/{part}.txt").write_text(part, "utf-8")
    run(sys.executable, "-B", str(ROOT / "packaging/nupkg.py"), VERSION, "input.dll",
        "licenses", PACKAGE, cwd=target)
    return target


def documented_programs():
    """The programs of the page with their output."""
    text = (ROOT / "docs/csharp.md").read_text("utf-8")
    programs = re.findall(r"```csharp\n([^`]*)```\n\n```text\n([^`]*)```", text)
    if len(programs) != text.count("```csharp\n"):
        raise AssertionError("docs/csharp.md has a program without output")
    return programs


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        cls.made = make_package("first")
        cls.unpacked = folder / "unpacked"
        with zipfile.ZipFile(cls.made / PACKAGE) as archive:
            cls.names = archive.namelist()
            archive.extractall(cls.unpacked)

    def parse(self, name):
        return xml.etree.ElementTree.parse(self.unpacked / name).getroot()

    def test_MadeTwice_HasTheSameBytes(self):
        second = make_package("second_with_another_path")
        for name in (PACKAGE, PACKAGE.replace(".nupkg", ".cs")):
            self.assertEqual((self.made / name).read_bytes(), (second / name).read_bytes(), name)

    def test_Content_IsComplete(self):
        self.assertEqual(sorted(self.names), sorted([
            "[Content_Types].xml", "_rels/.rels", "Quenra.nuspec", "build/net461/Quenra.targets",
            "buildTransitive/net461/Quenra.targets", ASSEMBLY, "lib/netstandard2.0/Quenra.Net.xml",
            "licenses/first.txt", "licenses/second.txt", "runtimes/win-x64/native/quenra.dll"]))
        self.assertEqual((self.unpacked / "runtimes/win-x64/native/quenra.dll").read_bytes(), LIBRARY_CONTENT)

    def test_FilesOfOneProgram_DifferInMoreThanCase(self):
        """Assembly and library are copied to one folder."""
        copied = [pathlib.PurePosixPath(name).name.lower() for name in self.names if name.endswith(".dll")]
        self.assertEqual(len(copied), len(set(copied)), copied)

    def test_Manifest_NamesTheVersionAndIsTheTargetOfTheRelationship(self):
        namespace = "{http://schemas.microsoft.com/packaging/2013/05/nuspec.xsd}"
        metadata = self.parse("Quenra.nuspec").find(f"{namespace}metadata")
        for element in ("id", "version", "authors", "description"):
            self.assertTrue(metadata.findtext(namespace + element), element)
        self.assertEqual(metadata.findtext(namespace + "version"), VERSION)
        relationships = list(self.parse("_rels/.rels"))
        self.assertEqual([each.get("Target") for each in relationships], ["/Quenra.nuspec"])

    def test_ContentTypes_CoverEveryFile(self):
        known = {each.get("Extension") for each in self.parse("[Content_Types].xml")}
        used = {name.rpartition(".")[2] for name in self.names if name != "[Content_Types].xml"}
        self.assertEqual(known, used)

    def test_Targets_CopyAFileOfThePackage(self):
        namespace = "{http://schemas.microsoft.com/developer/msbuild/2003}"
        for name in self.names:
            if name.endswith(".targets"):
                include = self.parse(name).find(f"{namespace}ItemGroup/{namespace}None").get("Include")
                path = include.replace("$(MSBuildThisFileDirectory)", str((self.unpacked / name).parent) + "/")
                self.assertTrue(pathlib.Path(path).is_file(), include)

    def test_Documentation_HasTheMembersOfTheAssembly(self):
        members = {each.get("name") for each in self.parse("lib/netstandard2.0/Quenra.Net.xml").iter("member")}
        for member in ("T:Quenra.Controller", "M:Quenra.Controller.Open", "F:Quenra.Attributes.ProductName",
                       "E:Quenra.RoutingSession.Demoted", "P:Quenra.QuenraException.Advice"):
            self.assertIn(member, members)

    def test_Assembly_HasTheVersionAndReferencesTheCoreLibraryOnly(self):
        consumer = folder / "inspection"
        consumer.mkdir()
        (consumer / "Program.cs").write_text("""
            using System;
            using System.Reflection;
            internal static class Program
            {
                private static void Main()
                {
                    Assembly assembly = typeof(Quenra.Controller).Assembly;
                    Console.WriteLine(assembly.FullName);
                    foreach (AssemblyName reference in assembly.GetReferencedAssemblies())
                    {
                        Console.WriteLine(reference.Name);
                    }
                }
            }""", "utf-8")
        shutil.copy(self.unpacked / ASSEMBLY, consumer)
        run("mcs", "-noconfig", "-warnaserror", "-r:Quenra.Net.dll", "Program.cs", cwd=consumer)
        self.assertEqual(run("mono", "Program.exe", cwd=consumer),
                         f"Quenra.Net, Version={VERSION}.0, Culture=neutral, PublicKeyToken=null\nmscorlib\n")

    def run_programs(self, name, prepare, *options):
        programs = documented_programs()
        self.assertEqual(len(programs), 3)
        for number, (program, output) in enumerate(programs):
            consumer = folder / f"{name}{number}"
            consumer.mkdir()
            (consumer / "Program.cs").write_text(program, "utf-8")
            prepare(consumer)
            run("mcs", "-noconfig", "-warnaserror", "-langversion:7.2", "-out:Program.exe", *options,
                "Program.cs", cwd=consumer)
            self.assertEqual(run("mono", "Program.exe", cwd=consumer), output)

    def test_DocumentedPrograms_WithTheAssembly_PrintTheDocumentedOutput(self):
        self.run_programs("assembly", lambda consumer: shutil.copy(self.unpacked / ASSEMBLY, consumer),
                          "-r:Quenra.Net.dll")

    def test_DocumentedPrograms_WithTheSingleSource_PrintTheDocumentedOutput(self):
        source = self.made / PACKAGE.replace(".nupkg", ".cs")
        self.run_programs("source", lambda consumer: shutil.copy(source, consumer / "Quenra.cs"), "-checked", "Quenra.cs")

    def test_DocumentedProgram_WithoutTheLibrary_ReportsThat(self):
        consumer = folder / "nolibrary"
        consumer.mkdir()
        (consumer / "Program.cs").write_text(documented_programs()[0][0], "utf-8")
        shutil.copy(self.unpacked / ASSEMBLY, consumer)
        run("mcs", "-noconfig", "-r:Quenra.Net.dll", "Program.cs", cwd=consumer)
        result = subprocess.run(["mono", "Program.exe"], cwd=consumer, timeout=60, capture_output=True, text=True)
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("System.DllNotFoundException: quenra", result.stderr)


if __name__ == "__main__":
    library, folder = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    unittest.main(argv=sys.argv[:1])
