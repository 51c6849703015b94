"""The fields of 64-bit PE images that the scripts after linking read and change."""

import struct

SECTION_HEADER_SIZE = 40
LOAD_CONFIGURATION = 10


def unpack(layout, image, offset):
    return struct.unpack_from("<" + layout, image, offset)


class Headers:
    """File offsets of the fields."""

    def __init__(self, image):
        (self.file_header,) = unpack("I", image, 0x3C)
        if image[self.file_header:self.file_header + 4] != b"PE\0\0":
            raise ValueError("this is not an image")
        self.file_header += 4
        self.time = self.file_header + 4
        optional_header = self.file_header + 20
        (magic,) = unpack("H", image, optional_header)
        if magic != 0x20B:
            raise ValueError("this is not a 64-bit image")
        self.checksum = optional_header + 64
        self.load_configuration = optional_header + 112 + 8 * LOAD_CONFIGURATION
        (size,) = unpack("H", image, self.file_header + 16)
        (count,) = unpack("H", image, self.file_header + 2)
        first = optional_header + size
        self.sections = range(first, first + count * SECTION_HEADER_SIZE, SECTION_HEADER_SIZE)


def section_name(image, section):
    """A slash begins the number of a name that is longer than eight characters."""
    return bytes(image[section:section + 8]).rstrip(b"\0")


def section_flags(section):
    """The file offset of the flags."""
    return section + 36


def update_checksum(image):
    """Sets the checksum: the 16-bit words without the checksum field, plus the size."""
    place = Headers(image).checksum
    image[place:place + 4] = bytes(4)
    padded = bytes(image) + bytes(len(image) % 2)
    total = sum(struct.unpack(f"<{len(padded) // 2}H", padded))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    struct.pack_into("<I", image, place, total + len(image))
