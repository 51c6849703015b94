#!/usr/bin/env python3
"""Writes the kept inputs of firmwareimage_fuzz into corpus/firmwareimage: each is an image."""
import base64
import pathlib

FOLDER = pathlib.Path(__file__).parent / "corpus" / "firmwareimage"


def crc(data):
    register = 0xFFFFFFFF
    for byte in data:
        register ^= byte << 24
        for _ in range(8):
            register = (register << 1) ^ (0x1EDC6F41 if register >> 31 else 0)
            register &= 0xFFFFFFFF
    return register ^ 0xFFFFFFFF


def section(device, update_type="FWUpdate", data=b"123456789", wrap=76, end="\r\n", **changes):
    header = {"HeaderVersion": "1", "UpdateType": update_type, "Version": "1.2.3f4",
              "TargetDevice": device, "CRC": str(crc(data)), "ByteCount": str(len(data))}
    header.update(changes)
    lines = "".join(f"{key}::{value}\r\n" for key, value in header.items() if value is not None)
    text = base64.b64encode(data).decode()
    return lines + end + "".join(text[i:i + wrap] + "\r\n" for i in range(0, len(text), wrap))


def capsule(name, **changes):
    return section("BIOS", "CapsuleUpdate", TargetFileName=name, **changes)


def images():
    long_data = bytes(range(256)) * 3
    yield "firmware", section("BIOS")
    yield "order", section("BIOS") + capsule('"driver.inf"') + section("MARTEN") + section("BIOS")
    yield "long", section("MARTEN", data=long_data, wrap=60) + section("SAFEMODE", data=long_data)
    yield "emptypayload", section("MARTEN", data=b"", CRC="0x0")
    yield "sharedkey", section("MARTEN", CRC=None) + section("MARTEN", Version=None) + section("MARTEN")
    yield "noemptyline", section("MARTEN", end="")
    yield "emptylinelater", section("MARTEN", end="") + section("MARTEN")
    yield "openquote", capsule('"driver.inf')
    yield "innerquotes", capsule('a"b"c') + capsule('""')
    yield "nulinpayload", section("MARTEN") + "\0" + section("BIOS")
    yield "wrongversion", section("BIOS") + section("BIOS", HeaderVersion="2")
    yield "wrongcrc", section("BIOS", CRC="-1")
    yield "wrongcount", section("BIOS", ByteCount="99999999999")
    yield "nolineend", "HeaderVersion::1"
    yield "colons", "::HeaderVersion:::1:\r\n::"


def main():
    FOLDER.mkdir(parents=True, exist_ok=True)
    for name, image in images():
        (FOLDER / name).write_bytes(image.encode("latin-1"))


if __name__ == "__main__":
    main()
