#!/usr/bin/env python3
"""Tests the download of the simulated machine, unpacked in an empty folder.

The environment variables QUENRA_PACKAGES, the folder of the packages, and QUENRA_VERSION select the
files. The test makes two machines and removes them.
"""

import os
import pathlib
import pty
import re
import select
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

PACKAGES = pathlib.Path(os.environ["QUENRA_PACKAGES"]).resolve()
VERSION = os.environ["QUENRA_VERSION"]
DEVELOPMENT = PACKAGES / "stage" / f"quenra-{VERSION}-win64"
NAME = f"quenra-simulator-{VERSION}"
TIMEOUT = 400  # for a first start on a busy system
ROUTE = ("quenra", "route", "connect", "--from", "TRIG_SMB", "--to", "PXI_Trig0")
PROGRAM = r"""
#include <stdio.h>
#include "quenra.h"

int main(int count, char** arguments) {
  uint64_t controller = 0;
  if (QUENRA_openController(&controller) < 0) {
    return 1;
  }
  char name[256] = "";
  uint64_t size = sizeof name;
  QUENRA_getAttributeUTF8(controller, QUENRA_ATTRIBUTE_PRODUCT_NAME, name, &size);
  QUENRA_closeController(controller);
  FILE* const file = fopen("name.txt", "w");
  fprintf(file, "%s %s\n", name, count > 1 ? arguments[1] : "");
  return fclose(file) == 0 ? 7 : 2;
}
"""


class Download(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="quenra-simulator-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        subprocess.run(["unzip", "-q", PACKAGES / f"{NAME}.zip"], cwd=cls.folder, check=True)
        cls.script = cls.folder / NAME / "quenra-machine"
        cls.environment = {key: value for key, value in os.environ.items()
                           if not key.startswith(("WINE", "QUENRA_"))}
        cls.environment["XDG_DATA_HOME"] = str(cls.folder / "data")
        cls.machine = cls.folder / "data/quenra-machine"

    @classmethod
    def call(cls, *arguments, folder=None, **changes):
        """Reads the output to its end: no process in the background may hold it."""
        return subprocess.run([cls.script, *arguments], cwd=folder or cls.folder, text=True,
                              capture_output=True, stdin=subprocess.DEVNULL, timeout=TIMEOUT,
                              env={**cls.environment, **changes})

    def assert_refused(self, result, code, *texts):
        self.assertEqual(result.returncode, code)
        self.assertEqual(result.stdout, "")
        for text in texts:
            self.assertIn(text, result.stderr)


class CommandLine(Download):
    """Refusals, which need no machine."""

    def test_Help_ListsEveryCommand(self):
        result = self.call("--help")
        self.assertEqual(result.returncode, 0)
        for command in ("start", "run PROGRAM", "stop", "reset", "remove"):
            self.assertRegex(result.stdout, rf"\n  {command}\b")

    def test_Documents_LinkToFilesOfTheDownload(self):
        pages = list((self.folder / NAME).rglob("*.md"))
        self.assertIn("simulator.md", [page.name for page in pages])
        for page in pages:
            for link in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", page.read_text(encoding="utf-8")):
                self.assertTrue((page.parent / link).exists(), f"{page.name}: {link}")

    def test_UnknownWords_AreUsageErrors(self):
        self.assert_refused(self.call("begin"), 2, "unknown command 'begin'", "quenra-machine help")
        self.assert_refused(self.call("--folder", "x", "start"), 2, "unknown option '--folder'")
        self.assert_refused(self.call("--machine"), 2, "--machine requires a folder")
        self.assert_refused(self.call("run"), 2, "run requires a program")
        self.assert_refused(self.call("stop", "now"), 2, "stop accepts no argument 'now'")

    def test_MissingWine_NamesThePackages(self):
        tools = self.folder / "tools"
        tools.mkdir()
        for tool in ("bash", "cat", "dirname", "readlink", "realpath", "flock", "sha256sum"):
            (tools / tool).symlink_to(shutil.which(tool))
        result = self.call("start", PATH=str(tools))
        self.assert_refused(result, 1, "'wine' is missing", "apt-get install wine wine64", "dnf install wine")
        self.assertFalse(self.machine.exists())

    def test_FolderWithOtherFiles_IsNeverTouched(self):
        other = self.folder / "other"
        (other / "disk").mkdir(parents=True)
        for command in (("start",), ("run", "quenra"), ("stop",), ("remove",)):
            self.assert_refused(self.call("--machine", "other", *command), 1, "contains other files")
        self.assertEqual([file.name for file in other.rglob("*")], ["disk"])

    def test_NoMachine_CannotBeStopped(self):
        self.assert_refused(self.call("stop"), 1, "there is no machine", "quenra-machine start")

    def test_IncompleteDownload_IsReported(self):
        copy = self.folder / "incomplete"
        shutil.copytree(self.folder / NAME, copy)
        (copy / "bin/quenra-sim.exe").unlink()
        result = subprocess.run([copy / "quenra-machine", "--machine", self.folder / "new", "start"],
                                text=True, capture_output=True, env=self.environment, timeout=TIMEOUT)
        self.assert_refused(result, 1, "does not contain quenra-sim.exe", "unpack the download again")


class Machine(Download):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        source = cls.folder / "program.c"
        source.write_text(PROGRAM, encoding="utf-8")
        subprocess.run(["x86_64-w64-mingw32-gcc", f"-I{DEVELOPMENT}/include", source,
                        DEVELOPMENT / "lib/libquenra.dll.a", "-o", cls.folder / NAME / "yourprogram.exe"],
                       check=True)
        for name in ("", "second"):
            cls.addClassCleanup(cls.call, *(("--machine", name) if name else ()), "remove")
        cls.first_commands = re.findall(r"^ {4}\./quenra-machine (.*?) +#", (
            cls.folder / NAME / "README.md").read_text(encoding="utf-8"), re.MULTILINE)
        cls.first_results = [cls.call(*command.split(), folder=cls.folder / NAME)
                             for command in cls.first_commands]

    def tearDown(self):
        self.call("reset")

    def processes(self, machine):
        """The Wine processes of a machine."""
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if (f"WINEPREFIX={machine}/disk".encode() in (process / "environ").read_bytes().split(b"\0")
                        and "wine" in os.readlink(process / "exe")):
                    yield process.name
            except OSError:
                pass

    def test_CommandsOfTheReadme_Run(self):
        self.assertEqual(self.first_commands, ["start", "run quenra info", "run ./yourprogram.exe"])
        started, info, program = self.first_results
        self.assertEqual(started.returncode, 0, started.stderr)
        self.assertIn(f"The simulated machine is on: {self.machine}", started.stderr)
        self.assertRegex(info.stdout, r"product-name +qctl-8840")
        self.assertEqual(program.returncode, 7, program.stderr)

    def test_Program_RunsInTheCallersFolder(self):
        folder = self.folder / "work"
        folder.mkdir()
        result = self.call("run", f"../{NAME}/yourprogram.exe", "two words", folder=folder)
        self.assertEqual(result.returncode, 7)
        self.assertEqual((folder / "name.txt").read_text(encoding="utf-8"), "qctl-8840 two words\n")

    def test_MissingProgram_Fails(self):
        self.assertNotEqual(self.call("run", "./missing.exe").returncode, 0)

    def test_Interrupt_ReachesTheProgram(self):
        process = subprocess.Popen([self.script, "run", *ROUTE], stdout=subprocess.PIPE, text=True,
                                   stdin=subprocess.DEVNULL, env=self.environment)
        self.assertIn("connected", process.stdout.readline())
        process.send_signal(signal.SIGINT)
        rest, _ = process.communicate(timeout=TIMEOUT)
        self.assertIn("released", rest)
        self.assertEqual(self.call("run", "quenra-sim", "routes").stdout, "")

    def test_ControlC_EndsTheProgramOfATerminal(self):
        process, terminal = pty.fork()
        if process == 0:
            os.execve(self.script, [str(self.script), "run", *ROUTE], self.environment)
        output, deadline, pressed = b"", time.monotonic() + TIMEOUT, False
        while time.monotonic() < deadline:
            if not select.select([terminal], [], [], 1)[0]:
                continue
            try:
                output += os.read(terminal, 4096)
            except OSError:  # the program has ended
                break
            if b"connected" in output and not pressed:
                os.write(terminal, b"\x03")
                pressed = True
        os.close(terminal)
        os.waitpid(process, 0)
        self.assertIn(b"released", output)
        self.assertEqual(self.call("run", "quenra-sim", "routes").stdout, "")

    def test_SecondMachine_IsIndependent(self):
        changed = self.call("--machine", "second", "run", "quenra-sim", "scenario", "--martens", "0")
        self.assertEqual(changed.returncode, 0, changed.stderr)
        command = ("run", "quenra", "get", "firmware-version", "--marten")
        self.assertNotEqual(self.call("--machine", "second", *command).returncode, 0)
        self.assertEqual(self.call(*command).returncode, 0)
        self.assertEqual(self.call("--machine", "second", "stop").returncode, 0)
        self.assertEqual(list(self.processes(self.folder / "second")), [])
        self.assertEqual(self.call(*command).returncode, 0)

    def test_Reset_RestoresTheDefaultMachine(self):
        self.call("run", "quenra-sim", "scenario", "--martens", "0")
        self.assertEqual(self.call("reset").returncode, 0)
        self.assertEqual(self.call("run", "quenra", "get", "firmware-version", "--marten").returncode, 0)

    def test_Stop_EndsEveryProcess(self):
        self.call("run", "quenra-sim", "scenario", "--martens", "0")
        self.assertNotEqual(list(self.processes(self.machine)), [])
        self.assertEqual(self.call("stop").returncode, 0)
        self.assertEqual(list(self.processes(self.machine)), [])
        self.assert_refused(self.call("reset"), 1, "the machine is off")
        self.assertEqual(self.call("start").returncode, 0)
        self.assertEqual(self.call("run", "quenra", "get", "firmware-version", "--marten").returncode, 0)

    def test_ZRemove_DeletesTheFolder(self):
        # Last in the order of names: another test would have to make the machine again.
        self.assertEqual(self.call("remove").returncode, 0)
        self.assertFalse(self.machine.exists())
        self.assertEqual(list(self.processes(self.machine)), [])


if __name__ == "__main__":
    unittest.main()
