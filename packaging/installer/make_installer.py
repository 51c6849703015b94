#!/usr/bin/env python3
"""Makes the Windows installer package of a staged tree.

Usage: make_installer.py STAGE VERSION OUTPUT.msi

STAGE is the tree to install, VERSION has three numbers. Equal trees and versions result in equal bytes.
Requires wixl and msitools.
"""

import hashlib
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import uuid
from xml.sax.saxutils import quoteattr

HERE = pathlib.Path(__file__).resolve().parent
# Never change the namespace: Windows recognises older versions and their files by these codes.
CODES = uuid.UUID("2f1c5e0a-7d0b-4c55-9a5e-3c8a6f1b9d42")
NO_CODE = uuid.UUID(int=0)

# The features of a path: the first prefix that matches. A component can belong to several features:
# the command line requires the library, also where only the command line is selected.
FEATURES = [
    ("bin/quenra.dll", ("Library", "CommandLine")),
    ("bin/", ("CommandLine",)),
    ("include/", ("Development",)),
    ("lib/", ("Development",)),
    ("share/doc/quenra/examples/", ("Development",)),
    ("share/doc/", ("Library",)),
    ("share/", ("CommandLine",)),
]
LIBRARY, COMMAND_LINE = "bin/quenra.dll", "bin/quenra.exe"

# Sequence numbers of the actions that wixl does not schedule for the tables added here. Removing
# the older version is a part of the transaction: an upgrade that fails restores it.
ADDED_ACTIONS = {
    "AppSearch": 50,
    "KeepInstallFolder": 60,
    "SetInstallLocation": 1050,
    "RemoveRegistryValues": 2600,
    "RemoveEnvironmentStrings": 3300,
    "RemoveFolders": 3600,
    "CreateFolders": 3700,
    "WriteRegistryValues": 5000,
    "WriteEnvironmentStrings": 5200,
}
REMOVE_OLDER_VERSION = 1501
REGISTRY_KEY = r"Software\quenra"


class Refused(Exception):
    """A message to the user."""


def code(*subject):
    return "{%s}" % str(uuid.uuid5(CODES, " ".join(subject))).upper()


def identifier(kind, path):
    """Identifiers of the tables have letters, digits, '_' and '.' and at most 72 characters."""
    readable = re.sub(r"[^A-Za-z0-9.]", "_", path)[-50:]
    return f"{kind}_{hashlib.sha256(path.encode()).hexdigest()[:8]}_{readable}"


def features_of(path):
    for prefix, features in FEATURES:
        if path.startswith(prefix):
            return features
    raise Refused(f"no feature contains '{path}': add its folder to FEATURES in make_installer.py")


def folders_of(path):
    """The folders below the installation folder that contain a path, the outermost first."""
    parents = [str(parent) for parent in pathlib.PurePosixPath(path).parents]
    return [parent for parent in reversed(parents) if parent != "."]


def folder_identifier(folder):
    return identifier("folder", folder) if folder else "INSTALLFOLDER"


def staged_files(stage):
    files = sorted(str(file.relative_to(stage)) for file in stage.rglob("*") if file.is_file())
    for required in (LIBRARY, COMMAND_LINE):
        if required not in files:
            raise Refused(f"'{stage}' does not contain {required}")
    return files


def copy_without_times(stage, files, copy):
    """The cabinet contains the times of the files."""
    for name in files:
        target = copy / name
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(stage / name, target)
        os.utime(target, (build_time(), build_time()))


def build_time():
    """Seconds since 1970; by default the start of 1980, the date of the files in the archives."""
    return int(os.environ.get("SOURCE_DATE_EPOCH", "315532800"))


def file_version(image):
    """The version in the resources of a Windows image, or None for another file."""
    signature = struct.pack("<II", 0xFEEF04BD, 0x00010000)  # of VS_FIXEDFILEINFO
    start = image.find(signature) if image.startswith(b"MZ") else -1
    if start < 0:
        return None
    high, low = struct.unpack_from("<II", image, start + len(signature))
    return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}"


def component_source(name):
    return (f'<Component Id="{identifier("component", name)}" Guid="{code("component", name)}" Win64="yes">'
            f'<File Id="{identifier("file", name)}" Name={quoteattr(pathlib.PurePosixPath(name).name)}'
            f' Source={quoteattr(name)} KeyPath="yes"/></Component>')


def folder_source(folder, files):
    """The folders and components below a folder, '' for the installation folder."""
    below = [name for name in files if name.startswith(folder + "/" if folder else "")]
    depth = len(folder.split("/")) if folder else 0
    lines = [component_source(name) for name in below if name.count("/") == depth]
    for child in sorted({"/".join(name.split("/")[:depth + 1]) for name in below if name.count("/") > depth}):
        lines += [f'<Directory Id="{folder_identifier(child)}" Name={quoteattr(child.split("/")[-1])}>',
                  *folder_source(child, files), "</Directory>"]
    return lines


def files_source(files):
    """The source of the folders, the files and a component group for each feature. Its paths are
    relative to the folder of the files: wixl does not find absolute ones."""
    lines = ['<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi"><Fragment>',
             '<DirectoryRef Id="INSTALLFOLDER">', *folder_source("", files), "</DirectoryRef>"]
    for feature in sorted({feature for name in files for feature in features_of(name)}):
        lines.append(f'<ComponentGroup Id="{feature}">')
        lines += [f'<ComponentRef Id="{identifier("component", name)}"/>'
                  for name in files if feature in features_of(name)]
        lines.append("</ComponentGroup>")
    return "\n".join([*lines, "</Fragment></Wix>\n"])


def table(name, columns, keys, rows):
    """The text of a table as msibuild imports it."""
    names, types = zip(*columns)
    lines = ["\t".join(names), "\t".join(types), "\t".join((name, *keys))]
    return "\r\n".join([*lines, *("\t".join(row) for row in rows), ""])


def search_path_table():
    # Name: create (=) the variable of all users (*), remove (-) the value on uninstallation.
    # Value: append to the present one ([~]).
    row = ("SearchPath", "=-*PATH", "[~];[INSTALLFOLDER]bin", identifier("component", COMMAND_LINE))
    return table("Environment", [("Environment", "s72"), ("Name", "l255"), ("Value", "L255"),
                                 ("Component_", "s72")], ["Environment"], [row])


def folder_table(files):
    # Removes every folder that becomes empty, in whatever order features are removed.
    rows = sorted({(folder_identifier(folder), identifier("component", name))
                   for name in files for folder in ["", *folders_of(name)]})
    return table("CreateFolder", [("Directory_", "s72"), ("Component_", "s72")],
                 ["Directory_", "Component_"], rows)


def summary_table(version, package_code):
    time = subprocess.run(["date", "-u", "-d", f"@{build_time()}", "+%Y/%m/%d %H:%M:%S"], check=True,
                          capture_output=True, text=True).stdout.strip()
    values = {1: "1252", 2: "Installation Database", 3: f"quenra {version}", 4: "quenra", 5: "Installer",
              6: "Library and command line of the controller of a PXI chassis", 7: "x64;1033",
              9: package_code, 12: time, 13: time, 14: "200", 15: "2", 18: "quenra", 19: "2"}
    return table("_SummaryInformation", [("PropertyId", "i2"), ("Value", "l255")], ["PropertyId"],
                 [(str(key), value) for key, value in values.items()])


def run(*command, folder=None):
    # Times in the cabinet are local.
    result = subprocess.run([str(word) for word in command], capture_output=True, text=True, cwd=folder,
                            env={**os.environ, "TZ": "UTC"})
    if result.returncode:
        raise Refused(f"{command[0]} failed:\n{result.stdout}{result.stderr}")


def import_table(package, text):
    name = text.split("\r\n")[2].split("\t")[0]
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder, f"{name}.idt")
        file.write_text(text, newline="")
        run("msibuild", package, "-i", file)


def set_property_query(action, name, value):
    return f"INSERT INTO CustomAction (Action, Type, Source, Target) VALUES ('{action}', 51, '{name}', '{value}')"


def queries(stage, files):
    """Changes of the tables that wixl writes."""
    yield f"UPDATE InstallExecuteSequence SET Sequence = {REMOVE_OLDER_VERSION} WHERE Action = 'RemoveExistingProducts'"
    # The installation folder in the list of installed programs.
    yield set_property_query("SetInstallLocation", "ARPINSTALLLOCATION", "[INSTALLFOLDER]")
    # Upgrades and removals use the folder of the installation, unless the command line names another.
    # 2: local machine; 18: the unchanged text of a 64-bit key.
    yield ("INSERT INTO Registry (Registry, Root, `Key`, Name, Value, Component_) VALUES ('InstallFolder', 2, "
           f"'{REGISTRY_KEY}', 'InstallFolder', '[INSTALLFOLDER]', '{identifier('component', LIBRARY)}')")
    yield ("INSERT INTO RegLocator (Signature_, Root, `Key`, Name, Type) VALUES "
           f"('InstallFolder', 2, '{REGISTRY_KEY}', 'InstallFolder', 18)")
    yield "INSERT INTO AppSearch (Property, Signature_) VALUES ('PRESENTFOLDER', 'InstallFolder')"
    yield set_property_query("KeepInstallFolder", "INSTALLFOLDER", "[PRESENTFOLDER]")
    for action, sequence in ADDED_ACTIONS.items():
        yield f"INSERT INTO InstallExecuteSequence (Action, Sequence) VALUES ('{action}', {sequence})"
    # With a user interface the folder is final before the execution starts.
    for action in ("AppSearch", "KeepInstallFolder"):
        yield f"INSERT INTO InstallUISequence (Action, Sequence) VALUES ('{action}', {ADDED_ACTIONS[action]})"
    for sequence in ("InstallExecuteSequence", "InstallUISequence"):
        yield (f"UPDATE {sequence} SET Condition = 'PRESENTFOLDER AND NOT INSTALLFOLDER' "
               "WHERE Action = 'KeepInstallFolder'")
    # Without its version a file of the package does not replace an installed file that has one.
    # Hashes are for files without a version.
    for name in files:
        version = file_version((stage / name).read_bytes())
        if version:
            key = identifier("file", name)
            yield f"UPDATE File SET Version = '{version}', Language = '0' WHERE File = '{key}'"
            yield f"DELETE FROM MsiFileHash WHERE File_ = '{key}'"


def identify(package, version):
    """Gives the package a code of its own, derived from all its other bytes, and fixed times."""
    import_table(package, summary_table(version, "{%s}" % NO_CODE))
    digest = hashlib.sha256(package.read_bytes()).hexdigest()
    import_table(package, summary_table(version, code("package", digest)))


def make(stage, version, output):
    if not re.fullmatch(r"\d+\.\d+\.\d+", version):
        raise Refused(f"'{version}' is not a version of three numbers")
    files = staged_files(stage)
    with tempfile.TemporaryDirectory() as folder:
        work = pathlib.Path(folder)
        copy_without_times(stage, files, work / "files")
        (work / "files.wxs").write_text(files_source(files), encoding="utf-8")
        package = work / "quenra.msi"
        run("wixl", "-a", "x64", "-o", package, "-D", f"Version={version}",
            "-D", f"ProductCode={code('product', version)}", "-D", f"UpgradeCode={code('upgrade')}",
            HERE / "quenra.wxs", work / "files.wxs", folder=work / "files")
        import_table(package, search_path_table())
        import_table(package, folder_table(files))
        run("msibuild", package, *(word for query in queries(stage, files) for word in ("-q", query)))
        identify(package, version)
        shutil.copyfile(package, output)


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    try:
        make(pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3]))
    except Refused as refusal:
        sys.exit(f"make_installer.py: {refusal}")


if __name__ == "__main__":
    main()
