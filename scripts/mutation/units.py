"""The units under mutation, and the tests that must detect every change of them."""

import dataclasses
import pathlib


@dataclasses.dataclass(frozen=True)
class Test:
    target: str  # of the build
    filter: str = "*"  # in the form of --gtest_filter


@dataclasses.dataclass(frozen=True)
class Unit:
    name: str
    sources: tuple  # glob patterns
    tests: tuple  # run in order until one detects the change
    test_folders: tuple  # with the sources of the tests


def processor_features():
    """The features of this processor."""
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("flags"):
            return set(line.split(":")[1].split())
    return set()


def missing_features(path):
    """The features that this processor lacks to run a source."""
    return PROCESSOR_FEATURES.get(path, set()) - processor_features()


# These take a minute, so they run last, on changes that no other test detects.
ARBITRARY_TABLES = "DamagedTable.*:TruncatedTable.*:Index.OnThousands*:Index.OnLarge*"

# The tests of decoding. The first ones take a second and detect most changes, and those that make a loop
# endless soon; the others run on what they leave.
FIRST_DECODING = ("*/Kernels.EveryAlignment*:*/Kernels.EveryByteValue*:*/Kernels.OneNoise*:"
                  "*/Kernels.Padding*:*/Kernels.Bits*:*/Kernels.Crc_*:*/Kernels.Search_F*:"
                  "PlainSteps.*:KernelSelection.*")
LONG_DECODING = "*/Kernels.*-" + FIRST_DECODING

# The features, as Linux names them, of the processors that run a source. On others, no test can detect
# a change.
PROCESSOR_FEATURES = {
    "source/user/firmware/decoding/avx2kernels.cpp": {"avx2", "pclmulqdq", "popcnt", "vpclmulqdq"},
    "source/user/firmware/decoding/avx512kernels.cpp": {
        "avx512f", "avx512bw", "avx512vbmi", "avx512_vbmi2", "vpclmulqdq"},
}

UNITS = (
    Unit("merge rule",
         ("zoapal/protons/status/tstatus.cpp", "zoapal/protons/status/tstatus.h",
          "zoapal/protons/status/zoerrstatus.cpp"),
         (Test("status_test"), Test("status_memory_test")), ("tests/component/protons/status/",)),
    Unit("marshalling core", ("codegen/apalcodegen/*.cpp", "codegen/apalcodegen/*.h"),
         (Test("apalcodegen_test"),), ("tests/component/apalcodegen/",)),
    Unit("attribute tables",
         ("source/user/attributes/*.cpp", "source/user/attributes/*.h",
          "source/user/machine/*.cpp", "source/user/machine/*.h"),
         (Test("user_test"), Test("contract_test")),
         ("tests/component/user/", "tests/contract/", "tests/builders/")),
    Unit("SMBIOS provider", ("zosmbios/*.cpp", "zosmbios/*.h"),
         (Test("zosmbios_test", "-" + ARBITRARY_TABLES), Test("zosmbios_loader_test"),
          Test("zosmbios_test", ARBITRARY_TABLES)),
         ("tests/component/zosmbios/", "tests/builders/")),
    Unit("firmware parser",
         ("source/user/firmware/*.cpp", "source/user/firmware/*.h"),
         (Test("firmware_test"), Test("firmware_allocation_test")),
         ("tests/component/user/firmware/", "tests/builders/")),
    Unit("payload decoding",
         ("source/user/firmware/decoding/*.cpp", "source/user/firmware/decoding/*.h"),
         (Test("firmware_test", FIRST_DECODING), Test("firmware_test", LONG_DECODING)),
         ("tests/component/user/firmware/", "tests/builders/")),
)
