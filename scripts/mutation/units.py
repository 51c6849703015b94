"""The units under mutation, and the tests that must detect every change of them."""

import dataclasses


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


# These take a minute, so they run last, on changes that no other test detects.
ARBITRARY_TABLES = "DamagedTable.*:TruncatedTable.*:Index.OnThousands*:Index.OnLarge*"

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
         (Test("firmware_test"),), ("tests/component/user/firmware/", "tests/builders/")),
)
