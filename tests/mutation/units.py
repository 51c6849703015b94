"""The units whose tests have to notice every change, and the tests that have to."""

import dataclasses


@dataclasses.dataclass(frozen=True)
class Unit:
    name: str
    sources: tuple  # glob patterns
    tests: tuple  # targets of the build; one that notices a change spares the others
    test_folders: tuple  # where their sources are


UNITS = (
    Unit("merge rule",
         ("zoapal/protons/status/mergerule.h", "zoapal/protons/status/tstatus.cpp",
          "zoapal/protons/status/tstatus.h", "zoapal/protons/status/zoerrstatus.cpp"),
         ("status_test", "status_memory_test"), ("tests/component/protons/status/",)),
    Unit("marshalling core", ("codegen/apalcodegen/*.cpp", "codegen/apalcodegen/*.h"),
         ("apalcodegen_test",), ("tests/component/apalcodegen/",)),
    Unit("attribute tables", ("source/user/attributes/*.cpp", "source/user/attributes/*.h"),
         ("user_test", "contract_test"),
         ("tests/component/user/", "tests/contract/", "tests/builders/")),
    Unit("SMBIOS provider", ("zosmbios/*.cpp", "zosmbios/*.h"),
         ("zosmbios_test", "zosmbios_loader_test"), ("tests/component/zosmbios/", "tests/builders/")),
    Unit("firmware parser",
         ("source/user/firmware/*.cpp", "source/user/firmware/*.h"),
         ("firmware_test",), ("tests/component/user/firmware/", "tests/builders/")),
    Unit("payload decoding",
         ("source/user/firmware/decoding/*.cpp", "source/user/firmware/decoding/*.h"),
         ("firmware_test",), ("tests/component/user/firmware/", "tests/builders/")),
)
