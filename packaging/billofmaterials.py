#!/usr/bin/env python3
"""Documents what others have contributed to the images of a package.

Usage: billofmaterials.py licenses BUILD STAGE
       billofmaterials.py document BUILD STAGE ARCHIVE VERSION OUTPUT

`licenses` copies the licences of the contributing Debian packages to STAGE. `document` writes a bill of
materials in the format SPDX 2.3: the files of STAGE with their checksums, and the third-party code in the
images. The evidence is the build itself: the linker's map lists the archives in an image, and ninja the
headers that its sources include. thirdparty.json names the component and the licence of each such file; a
file without an entry is an error, so that no contribution is left out.

The date is SOURCE_DATE_EPOCH, or 1980-01-01, the date of the files in the archives.
"""

import datetime
import fnmatch
import hashlib
import json
import os
import pathlib
import platform
import re
import shutil
import subprocess
import sys
import uuid

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent
LICENSES = "share/doc/quenra/licenses"
IMAGES = ("*.dll", "*.exe", "*.sys")
ARCHIVE_DATE = 315532800
NOT_STATED = "NOASSERTION"


# ---- Evidence ----


def linked_files(build, image):
    """The archives and objects in the image, relative to the build folder or absolute."""
    text = (build / "packaging" / "shipped" / f"{image}.map").read_text(errors="replace")
    named = set(re.findall(r"(?<!\S)([^\s()]+\.(?:a(?=\()|o(?!\S)|obj(?!\S)))", text))
    return {name for name in named if (build / name).is_file()}


def headers_of(build, linked):
    """The headers that the project's own objects and the objects of its own archives include."""
    targets = [name for name in sorted(linked) if not name.startswith("/") and ".dll." not in name]
    inputs = run("ninja", "-C", build, "-t", "inputs", *targets).split("\n")
    objects = {name for name in (*inputs, *targets) if name.endswith(".obj")}
    if not objects:
        raise SystemExit("billofmaterials.py: the linker's map names no object of the project")
    listed = run("ninja", "-C", build, "-t", "deps", *sorted(objects)).split("\n")
    return {line.strip() for line in listed if line.startswith("    ")}


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def contributions_of(build, image):
    """The files outside the project of which the image contains something."""
    linked = linked_files(build, image)
    files = {os.path.realpath(build / name) for name in linked | headers_of(build, linked)}
    own = (str(ROOT) + "/", os.path.realpath(build) + "/")
    return sorted(name for name in files if not name.startswith(own))


def component_of(name, components):
    for component in components:
        if any(fnmatch.fnmatch(name, pattern) for pattern in component["files"]):
            return component
    raise SystemExit(f"billofmaterials.py: '{name}' is linked in or included, but "
                     "packaging/thirdparty.json has no component for it: add one with its licence")


def owners_of(names):
    """The Debian packages that own the files, as {package: version}."""
    # Of the architecture of the build system, for headers: without it.
    lines = run("dpkg-query", "-S", *names).split("\n")
    packages = sorted({name.split(":")[0] for line in lines if ": " in line
                       for name in line.split(": ")[0].split(", ")})
    return {name: run("dpkg-query", "-W", "-f", "${Version}", name) for name in packages}


class ThirdParties:
    """The components in the images of a package."""

    def __init__(self, build, stage):
        components = json.loads((HERE / "thirdparty.json").read_text())
        self.of_image = {}
        files = {}
        for image in sorted(path.name for kind in IMAGES for path in (stage / "bin").glob(kind)):
            names = [(component_of(name, components)["name"], name)
                     for name in contributions_of(build, image)]
            self.of_image[image] = sorted({component for component, _ in names})
            for component, name in names:
                files.setdefault(component, set()).add(name)
        self.components = [component for component in components if component["name"] in files]
        self.owners = {name: owners_of(sorted(found)) for name, found in files.items()}

    def packages(self):
        return sorted({package for owners in self.owners.values() for package in owners})


# ---- Licences ----


def copy_licenses(build, stage):
    folder = stage / LICENSES
    folder.mkdir(parents=True, exist_ok=True)
    for package in ThirdParties(build, stage).packages():
        shutil.copyfile(f"/usr/share/doc/{package}/copyright", folder / f"{package}.txt")


# ---- Document ----


def upstream_version(version):
    """1:1.2.3+ds-4 is 1.2.3+ds."""
    return re.sub(r"^\d+:", "", version).rsplit("-", 1)[0].split("-")[0]


def distribution():
    return platform.freedesktop_os_release()["ID"]


def package_of(component, owners):
    versions = sorted(owners.items())
    return {
        "SPDXID": f"SPDXRef-Package-{component['name']}",
        "name": component["name"],
        "summary": component["title"],
        "versionInfo": upstream_version(versions[0][1]),
        "downloadLocation": NOT_STATED,
        "homepage": component["homepage"],
        "filesAnalyzed": False,
        "licenseConcluded": component["license"],
        "licenseDeclared": component["license"],
        "copyrightText": NOT_STATED,
        "supplier": NOT_STATED,
        "comment": "Packages of the build system: "
                   + ", ".join(f"{name} {version}" for name, version in versions),
        "externalRefs": [{
            "referenceCategory": "PACKAGE-MANAGER",
            "referenceType": "purl",
            "referenceLocator":
                f"pkg:deb/{distribution()}/{name.replace('+', '%2B')}@{version.replace('+', '%2B')}",
        } for name, version in versions],
    }


def checksums_of(content):
    return [{"algorithm": name.upper(), "checksumValue": hashlib.new(name, content).hexdigest()}
            for name in ("sha1", "sha256")]


FILE_TYPES = {".dll": "BINARY", ".exe": "BINARY", ".sys": "BINARY", ".a": "BINARY", ".lib": "BINARY",
              ".debug": "BINARY", ".pdb": "BINARY", ".h": "SOURCE", ".hpp": "SOURCE", ".c": "SOURCE",
              ".cpp": "SOURCE", ".md": "DOCUMENTATION", ".1": "DOCUMENTATION"}


def identifier_of(path):
    return "SPDXRef-File-" + re.sub(r"[^A-Za-z0-9.-]", "-", path)


def file_of(stage, path):
    return {
        "SPDXID": identifier_of(path),
        "fileName": f"./{path}",
        "fileTypes": [FILE_TYPES.get(pathlib.Path(path).suffix, "TEXT")],
        "checksums": checksums_of((stage / path).read_bytes()),
        "licenseConcluded": NOT_STATED,
        "licenseInfoInFiles": [NOT_STATED],
        "copyrightText": NOT_STATED,
    }


def verification_code(files):
    sums = sorted(entry["checksums"][0]["checksumValue"] for entry in files)
    return hashlib.sha1("".join(sums).encode()).hexdigest()


def own_package(archive, version, files):
    return {
        "SPDXID": "SPDXRef-Package-quenra",
        "name": "quenra",
        "versionInfo": version,
        "packageFileName": archive.name,
        "downloadLocation": NOT_STATED,
        "filesAnalyzed": True,
        "packageVerificationCode": {"packageVerificationCodeValue": verification_code(files)},
        "checksums": checksums_of(archive.read_bytes()),
        "licenseConcluded": NOT_STATED,
        "licenseDeclared": NOT_STATED,
        "licenseInfoFromFiles": [NOT_STATED],
        "copyrightText": NOT_STATED,
        "supplier": NOT_STATED,
        "primaryPackagePurpose": "LIBRARY",
    }


def relationships(files, parties):
    def related(one, kind, other):
        return {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}

    yield related("SPDXRef-DOCUMENT", "DESCRIBES", "SPDXRef-Package-quenra")
    for entry in files:
        yield related("SPDXRef-Package-quenra", "CONTAINS", entry["SPDXID"])
    for image, components in parties.of_image.items():
        for component in components:
            yield related(identifier_of(f"bin/{image}"), "STATIC_LINK", f"SPDXRef-Package-{component}")
    if {"quenra.dll", "quenra.exe"} <= parties.of_image.keys():
        yield related(identifier_of("bin/quenra.exe"), "DYNAMIC_LINK", identifier_of("bin/quenra.dll"))


def extracted_licenses(parties):
    """The texts of licences that SPDX has no identifier for."""
    used = sorted(set(re.findall(r"LicenseRef-[\w.-]+",
                                 " ".join(component["license"] for component in parties.components))))
    for identifier in used:
        component = next(one for one in parties.components if identifier in one["license"])
        texts = [pathlib.Path(f"/usr/share/doc/{package}/copyright").read_text(errors="replace")
                 for package in sorted(parties.owners[component["name"]])]
        yield {
            "licenseId": identifier,
            "name": f"Licences of parts of {component['name']}",
            "extractedText": "\n".join(dict.fromkeys(texts)),
        }


def document(build, stage, archive, version):
    parties = ThirdParties(build, stage)
    files = [file_of(stage, path.relative_to(stage).as_posix())
             for path in sorted(stage.rglob("*")) if path.is_file()]
    created = datetime.datetime.fromtimestamp(
        int(os.environ.get("SOURCE_DATE_EPOCH", ARCHIVE_DATE)), datetime.timezone.utc)
    content = uuid.uuid5(uuid.NAMESPACE_URL, hashlib.sha256(archive.read_bytes()).hexdigest())
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": archive.stem,
        "documentNamespace": f"https://spdx.org/spdxdocs/{archive.stem}-{content}",
        "creationInfo": {
            "created": created.strftime("%Y-%m-%dT%H:%M:%SZ"),
            "creators": [f"Tool: quenra-billofmaterials-{version}"],
        },
        "packages": [own_package(archive, version, files)]
                    + [package_of(component, parties.owners[component["name"]])
                       for component in parties.components],
        "files": files,
        "hasExtractedLicensingInfos": list(extracted_licenses(parties)),
        "relationships": list(relationships(files, parties)),
    }


def main():
    command, build, stage, *rest = sys.argv[1:]
    build, stage = pathlib.Path(build), pathlib.Path(stage)
    if command == "licenses":
        copy_licenses(build, stage)
    else:
        archive, version, output = rest
        text = json.dumps(document(build, stage, pathlib.Path(archive), version), indent=2)
        pathlib.Path(output).write_text(text + "\n")


if __name__ == "__main__":
    main()
