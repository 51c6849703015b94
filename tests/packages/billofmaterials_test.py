"""The bills of materials against the rules of SPDX 2.3, and against the packages that they describe."""

import copy
import hashlib
import json
import re
import sys
import unittest
import zipfile

from license_expression import get_spdx_licensing

from unpacked import PACKAGES, PRODUCT, ROOT, VERSION

sys.path.insert(0, str(ROOT / "packaging"))
import billofmaterials  # pylint: disable=wrong-import-position

IDENTIFIER = r"SPDXRef-[A-Za-z0-9.-]+"
CHECKSUM_DIGITS = {"SHA1": 40, "SHA256": 64}
RELATIONSHIPS = {"DESCRIBES", "CONTAINS", "STATIC_LINK", "DYNAMIC_LINK"}
FILE_TYPES = {"SOURCE", "BINARY", "ARCHIVE", "APPLICATION", "AUDIO", "IMAGE", "TEXT", "VIDEO",
              "DOCUMENTATION", "SPDX", "OTHER"}
PURPOSES = {"APPLICATION", "FRAMEWORK", "LIBRARY", "CONTAINER", "OPERATING-SYSTEM", "DEVICE", "FIRMWARE",
            "SOURCE", "ARCHIVE", "FILE", "INSTALL", "OTHER"}
LICENSING = get_spdx_licensing()


class Rules:
    """Collects the violations of the format in a document."""

    def __init__(self, document):
        self.document = document
        self.violations = []
        self.own_licenses = {entry["licenseId"] for entry in
                             document.get("hasExtractedLicensingInfos", [])}
        self.check_header()
        for package in document["packages"]:
            self.check_package(package)
        for entry in document["files"]:
            self.check_file(entry)
        self.check_extracted_licenses()
        self.check_identifiers()
        self.check_relationships()

    def require(self, condition, text):
        if not condition:
            self.violations.append(text)

    def check_header(self):
        document = self.document
        self.require(document.get("spdxVersion") == "SPDX-2.3", "spdxVersion")
        self.require(document.get("dataLicense") == "CC0-1.0", "dataLicense")
        self.require(document.get("SPDXID") == "SPDXRef-DOCUMENT", "SPDXID of the document")
        self.require(bool(document.get("name")), "name of the document")
        self.require(re.fullmatch(r"https?://[^#\s]+", document.get("documentNamespace", "")),
                     "documentNamespace: an absolute address without a fragment")
        creation = document.get("creationInfo", {})
        self.require(re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", creation.get("created", "")),
                     "created: a time in UTC")
        self.require(creation.get("creators") and all(
            re.fullmatch(r"(Tool|Organization|Person): .+", creator)
            for creator in creation["creators"]), "creators")

    def check_package(self, package):
        name = package.get("name", "?")
        for field in ("SPDXID", "name", "downloadLocation"):
            self.require(package.get(field), f"package {name}: {field}")
        for field in ("licenseConcluded", "licenseDeclared"):
            self.check_license(package.get(field), f"package {name}: {field}")
        self.check_checksums(package.get("checksums", []), f"package {name}")
        self.require(package.get("primaryPackagePurpose", "OTHER") in PURPOSES, f"package {name}: purpose")
        for reference in package.get("externalRefs", []):
            self.require(reference["referenceCategory"] in ("PACKAGE-MANAGER", "SECURITY", "OTHER"),
                         f"package {name}: category of a reference")
            self.require(re.fullmatch(r"pkg:deb/[a-z]+/[\w.%-]+@[\w.%~:-]+", reference["referenceLocator"]),
                         f"package {name}: {reference['referenceLocator']}")
        analyzed = package.get("filesAnalyzed", True)
        self.require(analyzed == ("packageVerificationCode" in package),
                     f"package {name}: a verification code if and only if its files were analyzed")

    def check_file(self, entry):
        name = entry.get("fileName", "?")
        self.require(name.startswith("./"), f"file {name}: relative to the package")
        self.require(set(entry.get("fileTypes", [])) <= FILE_TYPES, f"file {name}: type")
        self.check_license(entry.get("licenseConcluded"), f"file {name}")
        self.check_checksums(entry.get("checksums", []), f"file {name}")
        self.require(any(one["algorithm"] == "SHA1" for one in entry.get("checksums", [])),
                     f"file {name}: SHA1 is mandatory")

    def check_checksums(self, checksums, owner):
        for entry in checksums:
            digits = CHECKSUM_DIGITS.get(entry["algorithm"], 0)
            self.require(re.fullmatch(f"[0-9a-f]{{{digits}}}", entry["checksumValue"]),
                         f"{owner}: {entry['algorithm']}")

    def check_license(self, expression, owner):
        if expression in ("NOASSERTION", "NONE"):
            return
        if not expression:
            self.violations.append(f"{owner}: a licence expression")
            return
        references = set(re.findall(r"LicenseRef-[A-Za-z0-9.-]+", expression))
        self.require(references <= self.own_licenses, f"{owner}: {references} without a text")
        known = re.sub(r"LicenseRef-[A-Za-z0-9.-]+", "MIT", expression)
        self.require(not LICENSING.validate(known).errors, f"{owner}: '{expression}'")

    def check_extracted_licenses(self):
        for entry in self.document.get("hasExtractedLicensingInfos", []):
            self.require(re.fullmatch(r"LicenseRef-[A-Za-z0-9.-]+", entry["licenseId"]), entry["licenseId"])
            self.require(entry.get("extractedText"), f"{entry['licenseId']}: its text")

    def identifiers(self):
        return ["SPDXRef-DOCUMENT"] + [entry.get("SPDXID") for entry in
                                       (*self.document["packages"], *self.document["files"])]

    def check_identifiers(self):
        names = self.identifiers()
        self.require(len(names) == len(set(names)), "an identifier occurs twice")
        for name in names:
            self.require(re.fullmatch(IDENTIFIER, name or ""), f"identifier {name}")

    def check_relationships(self):
        names = set(self.identifiers())
        described = set()
        for entry in self.document["relationships"]:
            kind = entry["relationshipType"]
            self.require(kind in RELATIONSHIPS, f"relationship {kind}")
            for end in (entry["spdxElementId"], entry["relatedSpdxElement"]):
                self.require(end in names, f"relationship {kind} with the unknown {end}")
            if kind == "DESCRIBES":
                described.add(entry["relatedSpdxElement"])
        self.require(described, "the document describes nothing")


class BillTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.bills = {path.name.removesuffix(".spdx.json"): json.loads(path.read_text())
                     for path in sorted(PACKAGES.glob("*.spdx.json"))}
        cls.bill = cls.bills[f"{PRODUCT}-win64"]


class Format(BillTest):
    def test_documents_follow_the_rules_of_the_format(self):
        for name, bill in self.bills.items():
            self.assertEqual(Rules(bill).violations, [], name)

    def test_each_planted_fault_is_a_violation(self):
        def license_without_identifier(bill):
            bill["packages"][1]["licenseDeclared"] = "The Licence of Everybody"

        def license_without_text(bill):
            bill["hasExtractedLicensingInfos"] = []

        def dangling_relationship(bill):
            bill["relationships"][1]["relatedSpdxElement"] = "SPDXRef-File-missing"

        def checksum_too_short(bill):
            bill["files"][0]["checksums"][0]["checksumValue"] = "12ab"

        def same_identifier_twice(bill):
            bill["files"][1]["SPDXID"] = bill["files"][0]["SPDXID"]

        def local_time(bill):
            bill["creationInfo"]["created"] = "2026-01-01 12:00"

        for fault in (license_without_identifier, license_without_text, dangling_relationship,
                      checksum_too_short, same_identifier_twice, local_time):
            bill = copy.deepcopy(self.bill)
            fault(bill)
            self.assertNotEqual(Rules(bill).violations, [], fault.__name__)


class Truth(BillTest):
    """The statements of the documents, recomputed from the archives."""

    def test_files_and_checksums_are_those_of_the_archive(self):
        for name, bill in self.bills.items():
            with zipfile.ZipFile(PACKAGES / f"{name}.zip") as archive:
                contents = {f"./{entry.split('/', 1)[1]}": archive.read(entry)
                            for entry in archive.namelist()}
            listed = {entry["fileName"]: entry["checksums"] for entry in bill["files"]}
            self.assertEqual(listed.keys(), contents.keys())
            for file, content in contents.items():
                for checksum in listed[file]:
                    self.assertEqual(hashlib.new(checksum["algorithm"], content).hexdigest(),
                                     checksum["checksumValue"], file)

    def test_package_has_the_checksum_of_the_archive(self):
        for name, bill in self.bills.items():
            content = (PACKAGES / f"{name}.zip").read_bytes()
            sums = {entry["algorithm"]: entry["checksumValue"] for entry in
                    bill["packages"][0]["checksums"]}
            self.assertEqual(sums["SHA256"], hashlib.sha256(content).hexdigest())
            self.assertEqual(bill["packages"][0]["versionInfo"], VERSION)

    def test_verification_code_is_that_of_the_files(self):
        for bill in self.bills.values():
            sums = sorted(checksum["checksumValue"] for entry in bill["files"]
                          for checksum in entry["checksums"] if checksum["algorithm"] == "SHA1")
            self.assertEqual(
                bill["packages"][0]["packageVerificationCode"]["packageVerificationCodeValue"],
                hashlib.sha1("".join(sums).encode()).hexdigest())

    def linked_into(self, file):
        return {entry["relatedSpdxElement"].removeprefix("SPDXRef-Package-")
                for entry in self.bill["relationships"] if entry["relationshipType"] == "STATIC_LINK"
                and entry["spdxElementId"] == f"SPDXRef-File-bin-{file}"}

    def test_library_contains_the_components_that_its_sources_use(self):
        self.assertEqual(self.linked_into("quenra.dll"),
                         {"gcc-runtime", "winpthreads", "mingw-w64-runtime", "rapidjson", "boost"})

    def test_command_line_contains_the_components_that_its_sources_use(self):
        self.assertEqual(self.linked_into("quenra.exe"),
                         {"gcc-runtime", "winpthreads", "mingw-w64-runtime", "rapidjson", "cli11"})

    def test_project_states_no_licence(self):
        own = self.bill["packages"][0]
        self.assertEqual((own["licenseConcluded"], own["licenseDeclared"]), ("NOASSERTION",) * 2)


class Evidence(unittest.TestCase):
    def test_unknown_contribution_is_an_error(self):
        with self.assertRaisesRegex(SystemExit, "'/usr/include/zlib.h' is linked in or included"):
            billofmaterials.component_of(
                "/usr/include/zlib.h",
                json.loads((ROOT / "packaging/thirdparty.json").read_text()))

    def test_upstream_version_has_neither_epoch_nor_revision(self):
        self.assertEqual(billofmaterials.upstream_version("1:1.74.0+ds1-21"), "1.74.0+ds1")
        self.assertEqual(billofmaterials.upstream_version("12.2.0-14+deb12u1+25.2+b1"), "12.2.0")


if __name__ == "__main__":
    unittest.main()
