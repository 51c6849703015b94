#!/usr/bin/env python3
"""Tests signing with `./dev package --sign`: the checks of its arguments, and the signatures.

The environment variables QUENRA_PACKAGES, the folder of the packages, and QUENRA_VERSION select the files
to sign. The certificates are made by the test, which also is the time-stamp authority.
"""

import functools
import http.server
import os
import pathlib
import shlex
import shutil
import subprocess
import tempfile
import threading
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PACKAGES = pathlib.Path(os.environ["QUENRA_PACKAGES"]).resolve()
VERSION = os.environ["QUENRA_VERSION"]
STAGE = PACKAGES / "stage" / f"quenra-{VERSION}-win64"
FILES = (STAGE / "bin/quenra.dll", STAGE / "bin/quenra.exe", PACKAGES / f"quenra-{VERSION}-win64.msi")


def run(*command, folder=None):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, cwd=folder,
                          stdin=subprocess.DEVNULL, timeout=300)


def openssl(*words, folder):
    result = run("openssl", *words, folder=folder)
    if result.returncode:
        raise AssertionError(result.stderr)


def expired_validity():
    """The options of a certificate that has expired. OpenSSL 3.4 and later refuse an end before the start,
    and have options for both; earlier versions know only a number of days from now."""
    if "-not_after" in run("openssl", "x509", "-help").stderr:
        return ("-not_before", "20200101000000Z", "-not_after", "20200102000000Z")
    return ("-days", "-1")


class TimestampAuthority(http.server.BaseHTTPRequestHandler):
    """Answers queries of RFC 3161 with the certificate `authority` of a folder."""

    def __init__(self, folder, *arguments):
        self.folder = folder
        super().__init__(*arguments)

    def do_POST(self):
        (self.folder / "query").write_bytes(self.rfile.read(int(self.headers["Content-Length"])))
        openssl("ts", "-reply", "-config", "authority.conf", "-queryfile", "query", "-out", "reply",
                folder=self.folder)
        reply = (self.folder / "reply").read_bytes()
        self.send_response(200)
        self.send_header("Content-Type", "application/timestamp-reply")
        self.send_header("Content-Length", str(len(reply)))
        self.end_headers()
        self.wfile.write(reply)

    def log_message(self, *_):
        pass


AUTHORITY = """
[tsa]
default_tsa = authority
[authority]
serial = ./serial
signer_cert = ./authority.pem
signer_key = ./authority.key
signer_digest = sha256
default_policy = 1.2.3.4
digests = sha256, sha1
ess_cert_id_alg = sha256
"""


class Signing(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="quenra-signing-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.make_certificate("code", "codeSigning")
        cls.make_certificate("other", "codeSigning")
        cls.make_certificate("server", "serverAuth")
        cls.make_certificate("expired", "codeSigning", *expired_validity())
        cls.make_certificate("authority", "critical,timeStamping")
        openssl("pkey", "-in", "code.key", "-aes256", "-passout", "pass:secret", "-out", "encrypted.key",
                folder=cls.folder)

    @classmethod
    def make_certificate(cls, name, usage, *validity):
        openssl("req", "-new", "-newkey", "rsa:2048", "-nodes", "-keyout", f"{name}.key", "-out", f"{name}.csr",
                "-subj", f"/CN={name} of the test", folder=cls.folder)
        (cls.folder / "extensions").write_text(f"extendedKeyUsage={usage}\n", encoding="utf-8")
        openssl("x509", "-req", "-in", f"{name}.csr", "-signkey", f"{name}.key", *validity,
                "-extfile", "extensions", "-out", f"{name}.pem", folder=cls.folder)

    def refusal(self, *arguments):
        """The message of `./dev package`, which refuses its arguments before it builds anything."""
        result = run(ROOT / "dev", "package", *arguments, folder=self.folder)
        self.assertNotEqual(result.returncode, 0)
        self.assertNotIn("Packaging", result.stderr)
        return result.stderr

    def sign(self, file, timestamp=""):
        """Signs a copy of a file with the functions of `./dev package`."""
        copy = self.folder / file.name
        shutil.copy(file, copy)
        self.addCleanup(copy.unlink)
        words = [self.folder / "code.pem", self.folder / "code.key", timestamp, copy]
        script = (f"source {shlex.quote(str(ROOT / 'scripts/lib/build.sh'))}\n"
                  f"source {shlex.quote(str(ROOT / 'scripts/lib/signing.sh'))}\n"
                  f"sign_files {' '.join(shlex.quote(str(word)) for word in words)}")
        result = run("bash", "-c", script)
        self.assertEqual(result.returncode, 0, result.stderr)
        return copy

    def verification(self, file, certificate="code"):
        return run("osslsigncode", "verify", "-CAfile", self.folder / f"{certificate}.pem",
                   "-TSA-CAfile", self.folder / "authority.pem", "-in", file)

    def is_verified(self, file, certificate="code"):
        return self.verification(file, certificate).returncode == 0

    def test_MissingFile_IsNamed(self):
        self.assertIn("cannot read", self.refusal("--sign", "absent.pem", "code.key"))
        self.assertIn(f"{self.folder}/absent.key", self.refusal("--sign", "code.pem", "absent.key"))

    def test_KeyOfAnotherCertificate_IsRefused(self):
        self.assertIn("does not belong to the certificate", self.refusal("--sign", "code.pem", "other.key"))

    def test_FilesInTheWrongOrder_AreRefused(self):
        self.assertIn("is not a certificate", self.refusal("--sign", "code.key", "code.pem"))

    def test_EncryptedKey_NamesTheRemedy(self):
        self.assertIn("decrypt it with", self.refusal("--sign", "code.pem", "encrypted.key"))

    def test_CertificateForServers_IsRefused(self):
        self.assertIn("is not for code signing", self.refusal("--sign", "server.pem", "server.key"))

    def test_ExpiredCertificate_IsRefused(self):
        self.assertIn("has expired", self.refusal("--sign", "expired.pem", "expired.key"))

    def test_IncompleteOptions_AreRefused(self):
        self.assertIn("--sign requires", self.refusal("--sign", "code.pem"))
        self.assertIn("--timestamp requires --sign", self.refusal("--timestamp", "http://localhost"))
        self.assertIn("requires the URL", self.refusal("--timestamp", "soon", "--sign", "code.pem", "code.key"))
        self.assertIn("without signatures", self.refusal("--test", "--sign", "code.pem", "code.key"))

    def test_SignedFiles_AreVerified(self):
        for file in FILES:
            with self.subTest(file.name):
                self.assertFalse(self.is_verified(file), "not signed yet")
                signed = self.sign(file)
                self.assertTrue(self.is_verified(signed))
                self.assertFalse(self.is_verified(signed, "other"))
                self.assertEqual(signed.stat().st_mode, file.stat().st_mode)

    def test_OneChangedByte_FailsTheVerification(self):
        for file in FILES:
            # Of the original content: in a section of an image, in the cabinet of the installer.
            place = file.stat().st_size // 2
            with self.subTest(file.name):
                signed = self.sign(file)
                content = bytearray(signed.read_bytes())
                content[place] ^= 1
                signed.write_bytes(content)
                self.assertFalse(self.is_verified(signed))

    def test_Timestamp_OfTheAuthority(self):
        (self.folder / "authority.conf").write_text(AUTHORITY, encoding="utf-8")
        (self.folder / "serial").write_text("01\n", encoding="utf-8")
        server = http.server.HTTPServer(("127.0.0.1", 0),
                                        functools.partial(TimestampAuthority, self.folder))
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        for file in FILES:
            with self.subTest(file.name):
                result = self.verification(self.sign(file, f"http://127.0.0.1:{server.server_port}/"))
                self.assertEqual(result.returncode, 0, result.stdout)
                self.assertRegex(result.stdout, "authority of the test")


if __name__ == "__main__":
    unittest.main()
