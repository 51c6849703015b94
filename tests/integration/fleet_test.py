"""./dev fleet: racks that differ, do not influence each other, and share what no program writes."""

import hashlib
import json
import os
import pathlib
import signal
import subprocess
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
FLEET = ROOT / "build" / "fleet"
TIME_LIMIT_SECONDS = 240


def fleet(*words, exit_code=0):
    result = subprocess.run([ROOT / "dev", "fleet", *words], stdin=subprocess.DEVNULL, capture_output=True,
                            text=True, timeout=TIME_LIMIT_SECONDS, check=False)
    if result.returncode != exit_code:
        raise AssertionError(f"./dev fleet {words}: {result.returncode}\n{result.stdout}{result.stderr}")
    return result


def on_rack(rack, *words, exit_code=0):
    return fleet("run", rack, "--", *words, exit_code=exit_code).stdout


def processes():
    """The processes of the racks."""
    found = []
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if f"WINEPREFIX={FLEET}/".encode() in (process / "environ").read_bytes():
                found.append(process.name)
        except OSError:  # ended
            pass
    return found


def hashes(folder):
    """The SHA-256 of each file below a folder that has several names: those of Wine that racks share."""
    return {str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
            for path in sorted(folder.rglob("*"))
            if path.is_file() and not path.is_symlink() and path.stat().st_nlink > 1}


def own_size(rack):
    """The bytes of a rack's disk that no other rack shares."""
    return sum(path.lstat().st_size for path in (FLEET / rack).rglob("*")
               if path.is_file() and path.lstat().st_nlink == 1)


class Racks(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.addClassCleanup(fleet, "off")
        fleet("off")
        fleet("3")
        cls.shared = hashes(FLEET / "base")

    def get(self, rack, *words):
        return on_rack(rack, "quenra", "get", *words).strip()

    def test_racks_differ_by_their_number(self):
        racks = [f"rack-{number}" for number in (1, 2, 3)]
        for words, count in ((("serial-number",), 3), (("firmware-version", "--controller"), 3),
                             (("firmware-version", "--marten"), 3), (("memory-size",), 3)):
            with self.subTest(attribute=words):
                self.assertEqual(len({self.get(rack, *words) for rack in racks}), count)

    def test_racks_are_the_same_each_time(self):
        self.assertEqual((self.get("rack-1", "serial-number"), self.get("rack-1", "firmware-version"),
                          self.get("rack-2", "memory-size")), ("VQ03004099", "1.3.2f4", "4096"))

    @staticmethod
    def change_rack_1():
        on_rack("rack-1", "quenra", "set", "driver-setting-1", "77")
        on_rack("rack-1", "quenra-sim", "encryption", "on")
        on_rack("rack-1", "quenra-sim", "driver-store", "broken")
        on_rack("rack-1", "reg", "add", "HKLM\\Software\\Fleet", "/v", "One", "/d", "1", "/f")
        on_rack("rack-1", "cmd", "/c", "echo own> C:\\own.txt")
        on_rack("rack-1", "cmd", "/c", "echo changed>> C:\\windows\\win.ini")

    def test_a_change_of_one_rack_does_not_reach_another(self):
        self.change_rack_1()
        self.assertEqual(self.get("rack-1", "driver-setting-1"), "77")
        self.assertEqual(self.get("rack-2", "driver-setting-1"), "5")
        self.assertEqual(json.loads(on_rack("rack-2", "quenra-sim", "encryption", "--json"))["protection"],
                         "off")
        on_rack("rack-2", "reg", "query", "HKLM\\Software\\Fleet", exit_code=1)
        for path in ("own.txt", "windows/Sysnative/pnputil.exe", "windows/win.ini"):
            with self.subTest(path=path):
                one, two = (FLEET / rack / "disk" / "drive_c" / path for rack in ("rack-1", "rack-2"))
                self.assertTrue(not two.exists() or one.read_bytes() != two.read_bytes())

    def test_no_program_wrote_to_a_shared_file(self):
        self.change_rack_1()
        self.assertGreater(len(self.shared), 500)
        now = hashes(FLEET / "base")
        self.assertEqual([path for path in self.shared if now.get(path) != self.shared[path]], [])

    def test_files_that_wine_writes_are_not_shared(self):
        for path in ("system.reg", "user.reg", "userdef.reg", ".driver", "drive_c/windows/win.ini",
                     "drive_c/windows/system32/drivers/quenrasim.sys",
                     "drive_c/windows/Sysnative/pnputil.exe"):
            with self.subTest(path=path):
                self.assertEqual((FLEET / "rack-3" / "disk" / path).stat().st_nlink, 1)

    def test_a_rack_takes_few_megabytes(self):
        self.assertLess(own_size("rack-3"), 20e6)

    def test_a_restart_starts_the_received_firmware(self):
        folder = FLEET / "rack-3"
        (folder / "marten.bin").write_bytes(b"1.5.0f2\nfirmware")
        image = str(folder / "update.fwi")
        on_rack("rack-3", "quenra", "firmware", "build", str(folder / "marten.bin"), "--output", image,
                "--device", "MARTEN", "--firmware-version", "1.5.0f2")
        on_rack("rack-3", "quenra", "update", image)
        self.assertEqual(self.get("rack-3", "firmware-version"), "0.0.0f0")
        self.assertEqual(fleet("restart", "rack-3").stdout, "rack-3: BIOS 2.1.0f3, Marten 1.5.0f2\n")
        self.assertEqual(self.get("rack-3", "firmware-version"), "1.5.0f2")
        self.assertEqual(self.get("rack-2", "firmware-version"), "1.4.0f7")
        fleet("restart", "rack-3", "--marten", "1.4.1f0")
        self.assertEqual(self.get("rack-3", "firmware-version"), "1.4.1f0")

    def test_wrong_input_names_the_remedy(self):
        for words, message in ((("0",), "'0' is not a number of racks from 1 to 64"),
                               (("many",), "'many' is not a number of racks"),
                               (("run", "rack-9", "--", "quenra", "info"), "there is no rack-9"),
                               (("run", "../x", "--", "quenra"), "is not the name of a rack"),
                               (("run", "rack-1"), "name a rack and a program"),
                               (("restart", "rack-1", "--marten", "new"), "requires a version"),
                               (("off", "now"), "off accepts no argument")):
            with self.subTest(words=words):
                self.assertIn(message, fleet(*words, exit_code=1).stderr)


class Ends(unittest.TestCase):
    def test_off_leaves_no_process_and_no_disk(self):
        self.addCleanup(fleet, "off")
        fleet("2")
        self.assertTrue(processes())
        fleet("1")
        self.assertFalse((FLEET / "rack-2").exists())
        fleet("off")
        self.assertEqual(processes(), [])
        self.assertEqual(list(FLEET.glob("rack-*")), [])
        self.assertFalse((FLEET / "inventory.yml").exists())

    def test_interrupt_ends_the_racks_that_started(self):
        self.addCleanup(fleet, "off")
        process = subprocess.Popen([ROOT / "dev", "fleet", "4"], stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        deadline = time.monotonic() + TIME_LIMIT_SECONDS
        while not (FLEET / "rack-1" / "disk").exists() and time.monotonic() < deadline:
            time.sleep(0.05)
        os.kill(process.pid, signal.SIGINT)
        out, _ = process.communicate(timeout=TIME_LIMIT_SECONDS)
        self.assertEqual(process.returncode, 130, out)
        self.assertEqual(processes(), [])
        self.assertEqual(list(FLEET.glob("rack-*")), [])


if __name__ == "__main__":
    unittest.main()
