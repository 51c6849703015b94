"""The completion scripts that quenra prints. The one for bash runs in bash."""

import os
import pathlib
import pty
import re
import subprocess
import tempfile
import unittest

from commandline import TIME_LIMIT_SECONDS, CommandLineTest

# Completes the last of its words.
COMPLETE = """
source "$1"
shift
COMP_WORDS=(quenra "$@")
COMP_CWORD=$#
_quenra quenra "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\\n' "${COMPREPLY[@]}"
"""


class ScriptFile:
    def __init__(self, test, shell):
        self.text = test.quenra("completion", shell).out
        folder = tempfile.TemporaryDirectory()
        test.addCleanup(folder.cleanup)
        self.path = pathlib.Path(folder.name, "completion")
        self.path.write_text(self.text, encoding="utf-8")


def bash(words, **options):
    return subprocess.run(["bash", "--noprofile", "--norc", *words], capture_output=True, text=True,
                          timeout=TIME_LIMIT_SECONDS, check=False, **options)


class Bash(CommandLineTest):
    def setUp(self):
        super().setUp()
        self.script = ScriptFile(self, "bash")

    def offered(self, *words):
        """The completions offered for the last of the words after `quenra`."""
        result = bash(["-euc", COMPLETE, "bash", str(self.script.path), *words])
        self.assertEqual((result.returncode, result.stderr), (0, ""), words)
        return [line for line in result.stdout.split("\n") if line]

    def test_script_is_clean(self):
        result = bash(["-n", str(self.script.path)])
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        result = subprocess.run(["shellcheck", "--shell=bash", str(self.script.path)],
                                capture_output=True, text=True, check=False)
        self.assertEqual((result.returncode, result.stdout), (0, ""))

    def verbs(self):
        text = self.quenra("help").out.split("Verbs:\n")[1].split("Examples:")[0]
        return re.findall(r"(?m)^  ([a-z-]+(?: [a-z]+)?)  ", text)

    def test_every_verb_is_offered(self):
        firsts = list(dict.fromkeys(verb.split()[0] for verb in self.verbs()))
        self.assertIn("set", firsts)
        self.assertEqual(self.offered(""), firsts)
        self.assertEqual(self.offered("help", ""), firsts)
        self.assertEqual(self.offered("in"), ["info"])
        self.assertEqual(self.offered("--json", "ge"), ["get"])

    def test_second_word_of_a_verb_is_offered(self):
        for group in ("route", "firmware"):
            actions = [verb.split()[1] for verb in self.verbs() if verb.startswith(group + " ")]
            self.assertEqual(self.offered(group, ""), actions)
            self.assertEqual(self.offered("--json", group, "--json", actions[0][:2]), actions[:1])
            self.assertEqual(self.offered(group, "--"), ["--help", "--json"])
            self.assertEqual(self.offered(group, "nothing", ""), [])

    def test_every_option_of_the_help_is_offered(self):
        for verb in self.verbs():
            with self.subTest(verb=verb):
                listed = re.findall(r"(?m)^  (?:-h,)?(--[a-z-]+)", self.quenra(*verb.split(), "--help").out)
                self.assertGreaterEqual(len(listed), 2)
                self.assertEqual(sorted(self.offered(*verb.split(), "--")), sorted(listed))
        self.assertEqual(self.offered("--v"), ["--version"])

    def test_every_attribute_is_offered(self):
        attributes = self.document("attributes", kind="attributes")["attributes"]
        self.assertEqual(self.offered("get", ""), [a["name"] for a in attributes if a["readable"]])
        self.assertEqual(self.offered("set", ""), [a["name"] for a in attributes if a["writable"]])
        self.assertEqual(self.offered("get", "product-"), ["product-name"])

    def test_further_attributes_are_offered(self):
        self.assertEqual(self.offered("get", "product-name", "serial-n"), ["serial-number"])
        self.assertEqual(self.offered("get", "product-name", "--instance", "1", "memory-size", ""),
                         self.offered("get", ""))
        self.assertEqual(self.offered("get", "product-name", "--m"), ["--marten"])
        self.assertEqual(self.offered("set", "driver-setting-1", "7", ""), self.offered("set", "x", "7", "--"))

    def test_subjects_are_offered(self):
        self.assertEqual(self.offered("info", "--subject", "mem"), ["memory"])
        self.assertIn("--subject", self.offered("info", "--subject", "memory", "--"))

    def test_every_status_is_offered(self):
        offered = self.offered("explain", "")
        self.assertEqual(self.offered("explain", "QUENRA_STATUS_NOT_S"), ["QUENRA_STATUS_NOT_SUPPORTED"])
        self.assertEqual(len(offered), len(set(offered)))
        self.quenra("explain", offered[-1])

    def test_shells_are_offered(self):
        self.assertEqual(self.offered("completion", ""), ["bash", "powershell"])

    def test_options_count_for_no_position(self):
        self.assertEqual(self.offered("get", "--json", "product-"), ["product-name"])
        self.assertEqual(self.offered("get", "--instance", "1", "product-"), ["product-name"])
        self.assertEqual(self.offered("get", "--instance", "=", "1", "product-"), ["product-name"])
        self.assertEqual(self.offered("set", "--", "driver-setting-1"), ["driver-setting-1"])

    def test_ends_of_a_route_offer_the_terminals(self):
        terminals = [terminal["name"]
                     for terminal in self.document("terminals", kind="terminals")["terminals"]]
        for verb in (("route", "plan"), ("route", "connect")):
            for option in ("--from", "--to"):
                with self.subTest(verb=verb, option=option):
                    self.assertEqual(self.offered(*verb, option, ""), terminals)
                    self.assertEqual(self.offered(*verb, option, "="), terminals)
                    self.assertEqual(self.offered(*verb, option, "=", "TRIG"), ["TRIG_SMB"])
                    self.assertEqual(self.offered(*verb, "--invert", option, "TRIG"), ["TRIG_SMB"])
                    self.assertEqual(self.offered(*verb, option, "nothing"), [])
        self.assertEqual(self.offered("route", "plan", "--from", "TRIG_SMB", "--to", "PXI_Trig7"),
                         ["PXI_Trig7"])
        self.assertEqual(self.offered("route", "connect", "--for", ""), [])
        self.assertEqual(self.offered("get", "--from", ""), self.offered("get", ""))

    def test_devices_are_offered(self):
        self.assertEqual(self.offered("firmware", "build", "--device", ""), ["BIOS", "MARTEN", "SAFEMODE"])

    def test_nothing_is_offered_for_a_value(self):
        self.assertEqual(self.offered("set", "driver-setting-1", ""), [])
        self.assertEqual(self.offered("get", "--instance", ""), [])
        self.assertEqual(self.offered("get", "--instance", "="), [])
        self.assertEqual(self.offered("get", "--instance", "=", "1"), [])
        self.assertEqual(self.offered("get", "--instance", "--"), [])

    def test_given_options_and_those_they_exclude_are_not_offered(self):
        self.assertEqual(self.offered("set", "--marten", "--"), ["--help", "--json", "--instance"])
        self.assertEqual(self.offered("get", "--instance", "1", "--json", "--"),
                         ["--help", "--controller", "--marten"])

    def test_lines_exclude_the_document(self):
        self.assertNotIn("--json-lines", self.offered("update", "--json", "--"))
        self.assertNotIn("--json", self.offered("update", "--json-lines", "--"))
        self.assertIn("--json-lines", self.offered("update", "--"))

    def test_options_are_offered_where_nothing_else_can_stand(self):
        self.assertEqual(self.offered("self-test", ""), ["--help", "--json"])

    def test_no_option_is_offered_after_two_dashes(self):
        self.assertEqual(self.offered("set", "--", "driver-setting-1", "--"), [])

    def test_program_after_two_dashes_is_a_command_with_files(self):
        connect = ("route", "connect", "--from", "TRIG_SMB", "--")
        self.assertIn("bash", self.offered(*connect, "bas"))
        self.assertEqual(self.offered(*connect, "bash", ""), [])  # bash then completes file names
        self.assertEqual(self.offered(*connect, "bash", "--f"), [])
        self.assertEqual(self.offered("route", "plan", "--", "bas"), [])

    def test_unknown_verb_has_nothing(self):
        self.assertEqual(self.offered("inof", ""), [])

    def test_typed_keys_are_completed(self):
        typed = ("quenra get product-n\t\n"
                 "quenra sel\t--js\t\n"
                 "quenra get --instance=1 memory-si\t--mar\t\n"
                 "quenra route plan --from TRIG\t--to=WD\t\n"
                 "quenra firmware inspect comple\t\n"
                 "quenra firmware build comple\t--device MA\t--output=comple\t\n"
                 "exit\n")
        controller, terminal = pty.openpty()
        with os.fdopen(controller, "wb", buffering=0) as keyboard:
            shell = subprocess.Popen(
                ["bash", "--noprofile", "--norc", "-i"], stdin=terminal, stderr=subprocess.DEVNULL,
                stdout=subprocess.PIPE, text=True, cwd=self.script.path.parent,
                env={**os.environ, "INPUTRC": "/dev/null", "TERM": "dumb"})
            os.close(terminal)
            with shell:
                keyboard.write(b"source ./completion\nquenra() { printf '<%s>' \"$@\"; echo; }\n")
                keyboard.write(typed.encode())
                out, _ = shell.communicate(timeout=TIME_LIMIT_SECONDS)
        self.assertEqual(out.split(), ["<get><product-name>",
                                       "<self-test><--json>",
                                       "<get><--instance=1><memory-size><--marten>",
                                       "<route><plan><--from><TRIG_SMB><--to=WD_Terminal>",
                                       "<firmware><inspect><completion>",
                                       "<firmware><build><completion><--device><MARTEN><--output=completion>"])

    def test_program_is_known_by_both_names(self):
        result = bash(["-c", 'source "$1"; complete -p quenra quenra.exe', "bash", str(self.script.path)])
        self.assertEqual(result.stdout, "complete -o default -F _quenra quenra\n"
                                        "complete -o default -F _quenra quenra.exe\n")


class PowerShell(CommandLineTest):
    """Checks the text of the script only: no PowerShell is available to run it."""

    def test_brackets_and_quotes_are_balanced(self):
        text = ScriptFile(self, "powershell").text
        self.assertTrue(text.isascii())
        code = re.sub(r"'(?:[^'\n]|'')*'|\"[^\"\n]*\"|#[^\n]*", "", text)
        self.assertNotRegex(code, "['\"`]")
        expected = []
        for bracket in re.findall(r"[][(){}]", code):
            if bracket in "([{":
                expected.append({"(": ")", "[": "]", "{": "}"}[bracket])
            else:
                self.assertEqual(bracket, expected.pop())
        self.assertEqual(expected, [])

    def test_offers_the_same_words_as_bash(self):
        text = ScriptFile(self, "powershell").text
        lists = dict(re.findall(r"(?m)^        '(\w+)' = @\(\n((?:            @\{.*\n)*)", text))
        for name, lines in lists.items():
            with self.subTest(list=name):
                rows = re.findall(r"@\{ Name = '([^']+)'; Meaning = '((?:[^']|'')+)' \}", lines)
                self.assertEqual(len(rows), len(lines.splitlines()))
                in_bash = re.search(rf"(?m)^_quenra_{name}='\n([^']*)'$", ScriptFile(self, "bash").text)
                self.assertEqual([row[0] for row in rows], in_bash[1].split())
        self.assertEqual(list(lists),
                         re.findall(r"(?m)^_quenra_(\w+)='$", ScriptFile(self, "bash").text))


    def test_ends_of_a_route_offer_the_terminals(self):
        text = ScriptFile(self, "powershell").text
        for option in ("--from", "--to"):
            rows = re.findall(rf"@\{{ Name = '{option}'; .*; Words = '(\w*)'; ", text)
            # Of 'plan' and of 'connect'; other verbs have an option --from for a file.
            self.assertEqual([row for row in rows if row], ["terminals", "terminals"])
        self.assertIn("$offered = $words[$valued.Words]", text)


    def test_only_get_accepts_further_attributes(self):
        text = ScriptFile(self, "powershell").text
        entries = re.findall(r"(?m)^        '([^']*)' = @\{((?:\n            .*)*)", text)
        self.assertEqual([name for name, entry in entries if "RepeatsLast = $true" in entry], ["get"])
        self.assertEqual([name for name, entry in entries if "RunsProgram = $true" in entry],
                         ["route connect"])


class SimulatorScript(CommandLineTest):
    """The script of quenra-sim, loaded after that of quenra: both define names of their own."""

    COMPLETE = COMPLETE.replace("_quenra quenra", "_quenra_sim quenra-sim").replace(
        "(quenra ", "(quenra-sim ")

    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = pathlib.Path(folder.name, "completion")
        self.path.write_bytes(self.quenra("completion", "bash").out.encode()
                              + self.machine("completion", "bash"))

    def offered(self, *words):
        result = bash(["-euc", self.COMPLETE, "bash", str(self.path), *words])
        self.assertEqual((result.returncode, result.stderr), (0, ""), words)
        return [line for line in result.stdout.split("\n") if line]

    def test_words_of_quenra_sim_are_offered(self):
        self.assertEqual(self.offered("attribute", "re"), ["remove", "refuse-writes"])
        self.assertEqual(self.offered("answer", "add", ""), ["controller", "marten"])
        self.assertEqual(self.offered("encryption", "fail", "lo"), ["locator"])
        self.assertEqual(self.offered("status", "--"), ["--help", "--json"])

    def test_repeatable_option_is_offered_again(self):
        self.assertIn("--structure-byte",
                      self.offered("scenario", "--structure-byte", "1/2=3", "--"))
        self.assertNotIn("--martens", self.offered("scenario", "--martens", "0", "--"))

    def test_script_is_clean(self):
        result = subprocess.run(["shellcheck", "--shell=bash", str(self.path)],
                                capture_output=True, text=True, check=False)
        self.assertEqual((result.returncode, result.stdout), (0, ""))


class Document(CommandLineTest):
    def test_document_holds_the_script(self):
        for shell in ("bash", "powershell"):
            document = self.document("completion", shell, kind="completion")
            self.assertEqual(document["shell"], shell)
            self.assertEqual(document["script"], self.quenra("completion", shell).out)

    def test_unknown_shell_is_wrong_usage(self):
        error = self.document("completion", "bas", kind="error", exit_code=2)["error"]
        self.assertEqual(error["suggestions"], ["bash"])

    def test_needs_no_controller(self):
        self.machine("scenario", "--controllers", "0")
        self.quenra("completion", "bash")


if __name__ == "__main__":
    unittest.main()
