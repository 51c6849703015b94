"""Programs of the simulated machine start reliably: they run without address randomisation."""

import pathlib
import subprocess
import unittest

from commandline import CommandLineTest, command

ADDR_NO_RANDOMIZE = 0x0040000
HOLDER = b"pending_holder.exe"


def allowed():
    """True if the system lets programs disable address randomisation."""
    try:
        return subprocess.run(["setarch", "-R", "true"], capture_output=True,
                              check=False).returncode == 0
    except FileNotFoundError:
        return False


def holders():
    """The processes of Wine that run the holder."""
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if HOLDER in (process / "cmdline").read_bytes() and \
                    "wine" in (process / "exe").readlink().name:
                yield process
        except OSError:
            pass  # it has ended, or belongs to another user


@unittest.skipUnless(allowed(), "the system insists on random addresses")
class Steadiness(CommandLineTest):
    def test_programs_have_no_random_addresses(self):
        with subprocess.Popen(command("QUENRA_PENDING_HOLDER_EXE"), stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as holder:
            self.assertEqual(holder.stdout.readline().strip(), b"0")
            found = list(holders())
            self.assertTrue(found)
            for process in found:
                personality = int((process / "personality").read_text(), 16)
                self.assertTrue(personality & ADDR_NO_RANDOMIZE, process)
            holder.stdin.close()


if __name__ == "__main__":
    unittest.main()
