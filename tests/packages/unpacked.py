"""The packages as a user has them: downloaded, and unpacked to a new folder.

Environment:
  QUENRA_PACKAGES  the folder with the packages
  QUENRA_VERSION   their version
  QUENRA_RUNNER    the command that starts a Windows program, quoted as in a shell
"""

import os
import pathlib
import shlex
import shutil
import subprocess
import tempfile
import unittest
import zipfile

PACKAGES = pathlib.Path(os.environ["QUENRA_PACKAGES"])
VERSION = os.environ["QUENRA_VERSION"]
PRODUCT = f"quenra-{VERSION}"
ROOT = pathlib.Path(__file__).resolve().parents[2]
PRODUCT_NAME = "qctl-8840"  # of the simulated machine
TIME_LIMIT_SECONDS = 300


def run(*command, folder=None, variables=None):
    """The standard output of a command, which must succeed."""
    result = subprocess.run(
        [str(word) for word in command], cwd=folder, env={**os.environ, **(variables or {})},
        stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=TIME_LIMIT_SECONDS,
        check=False)
    if result.returncode != 0:
        raise AssertionError(f"{shlex.join(map(str, command))}: {result.returncode}\n"
                             f"{result.stdout}\n{result.stderr}")
    return result.stdout


def run_windows(program, *words, folder=None):
    return run(*shlex.split(os.environ["QUENRA_RUNNER"]), program, *words, folder=folder)


def unpack(name, folder):
    """Unpacks an archive as its users do; returns the folder in it."""
    with zipfile.ZipFile(PACKAGES / f"{name}.zip") as archive:
        archive.extractall(folder)
    return pathlib.Path(folder) / name


class PackageTest(unittest.TestCase):
    """`package` is the unpacked zip, in a folder with a space in its name; `folder` is empty."""

    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory(prefix="quenra packages ")
        cls.addClassCleanup(temporary.cleanup)
        cls.package = unpack(f"{PRODUCT}-win64", temporary.name)
        cls.examples = cls.package / "share/doc/quenra/examples"

    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="quenra consumer ")
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def copy_library(self, folder=None):
        """Windows searches the folder of a program for the libraries that it imports."""
        shutil.copy(self.package / "bin/quenra.dll", folder or self.folder)

    def assert_prints_product_name(self, program, *words):
        self.assertEqual(run_windows(program, *words, folder=self.folder).splitlines(),
                         [PRODUCT_NAME])
