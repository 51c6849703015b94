"""Runs quenra and quenra-sim as their users do, and checks every document against its schema.

Environment:
  QUENRA_EXE      quenra.exe
  QUENRA_SIM_EXE  quenra-sim.exe
  QUENRA_LOAD_EXE quenra_load.exe
  QUENRA_PENDING_HOLDER_EXE
                  a program that keeps a request pending until its input ends
  QUENRA_RUNNER   the command that starts a Windows program, quoted as in a shell; empty on Windows
"""

import json
import os
import pathlib
import shlex
import signal
import subprocess
import tempfile
import unittest

from documentschema import DocumentSchema

ESCAPE = "\x1b"
TIME_LIMIT_SECONDS = 60


def command_of(path, *words):
    runner = shlex.split(os.environ.get("QUENRA_RUNNER", ""))
    return runner + [path, *words]


def command(program, words=()):
    """The command line of a program that an environment variable names."""
    return command_of(os.environ[program], *words)


def start(program, words):
    """Runs a program that an environment variable names."""
    return start_program(os.environ[program], *words)


def start_program(path, *words):
    return subprocess.run(
        command_of(path, *words),
        stdin=subprocess.DEVNULL,
        capture_output=True,
        timeout=TIME_LIMIT_SECONDS,
        check=False,
    )


class Run:
    """The exit code and output of one run of quenra."""

    def __init__(self, words):
        result = start("QUENRA_EXE", words)
        self.words = words
        self.exit_code = result.returncode
        self.out = result.stdout.decode("utf-8")
        self.error = result.stderr.decode("utf-8")

    def __repr__(self):
        return f"quenra {shlex.join(self.words)}: {self.exit_code}\n{self.out}\n{self.error}"


class Started:
    """A run of quenra in parallel with the test."""

    def __init__(self, test, *words):
        self.test = test
        # A session of its own: a signal to its group reaches every process of the runner.
        self.process = subprocess.Popen(
            command("QUENRA_EXE", words), stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)
        test.addCleanup(self.kill)

    def next_line(self):
        """The next line of its output."""
        return self.process.stdout.readline().decode("utf-8")

    def read_until(self, text):
        """Reads lines of its output up to one with the text."""
        line = self.next_line()
        while text not in line:
            self.test.assertNotEqual(line, "", f"it ended without '{text}'")
            line = self.next_line()

    def warned(self):
        """The next line on its error stream."""
        return self.process.stderr.readline().decode("utf-8")

    def interrupt(self):
        os.killpg(self.process.pid, signal.SIGINT)

    def kill(self):
        if self.process.poll() is None:
            os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()
        self.process.stdout.close()
        self.process.stderr.close()

    def end(self, exit_code):
        out, error = self.process.communicate(timeout=TIME_LIMIT_SECONDS)
        self.test.assertEqual(self.process.returncode, exit_code, error)
        return out.decode("utf-8"), error.decode("utf-8")


class Files:
    """A folder of the test, removed at its end."""

    def __init__(self, test):
        folder = tempfile.TemporaryDirectory()
        test.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def __getitem__(self, name):
        return self.folder / name

    def typed(self, name):
        """The path of a file as a user types it in the simulated machine."""
        path = str(self.folder / name)
        return "Z:" + path.replace("/", "\\") if os.environ.get("QUENRA_RUNNER") else path


class CommandLineTest(unittest.TestCase):
    """Resets the machine before each test and after the last one."""

    schema = DocumentSchema()

    def setUp(self):
        self.machine("reset")

    @classmethod
    def tearDownClass(cls):
        cls.machine("reset")

    @staticmethod
    def machine(*words):
        result = start("QUENRA_SIM_EXE", words)
        if result.returncode != 0:
            raise RuntimeError(
                f"quenra-sim {shlex.join(words)}: {result.returncode} {result.stderr!r}"
            )
        return result.stdout

    @classmethod
    def log(cls):
        """The driver's requests and replies since the machine was reset, in order."""
        return json.loads(cls.machine("log", "--json"))["entries"]

    def quenra(self, *words, exit_code=0):
        """A run with text output, which must not contain terminal escape sequences."""
        run = Run(words)
        self.assertEqual(run.exit_code, exit_code, run)
        self.assertNotIn(ESCAPE, run.out, run)
        self.assertNotIn(ESCAPE, run.error, run)
        self.assertNotIn("\r", run.out, run)
        return run

    def document(self, *words, kind, exit_code=0, json_is_given=False):
        """The document of a run with --json, validated against its schema."""
        run = self.quenra(*words, *(() if json_is_given else ("--json",)), exit_code=exit_code)
        document = json.loads(run.out)  # fails if anything follows the document
        self.assertEqual(document["kind"], kind, run)
        self.assertEqual(document["exitCode"], exit_code, run)
        self.schema.check(document)
        if exit_code != 0:
            self.assertTrue(run.error.startswith("quenra: "), run)
        return document

    def without_duplicates(self, members):
        self.assertEqual(len({name for name, _ in members}), len(members), members)
        return dict(members)

    def events(self, text):
        """The lines of --json-lines, validated against their schema."""
        lines = [json.loads(line, object_pairs_hook=self.without_duplicates) for line in text.splitlines()]
        for line in lines:
            self.schema.check_line(line)
        self.assertEqual([line["event"] for line in lines].index("result"), len(lines) - 1, text)
        times = [line["sinceStartMilliseconds"] for line in lines]
        self.assertEqual(times, sorted(times))
        return lines

    def assert_failure(self, run, code, constant):
        """A failure prints its code, constant and advice, and nothing on standard output."""
        self.assertEqual(run.out, "", run)
        self.assertIn(f"\n  {code} {constant}\n", run.error)
        self.assertIn("\n  Advice: ", run.error)
