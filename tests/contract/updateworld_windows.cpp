#include <gtest/gtest.h>
#include <windows.h>

#include <utility>

#include "simulator/environment/driverstore.h"
#include "simulator/environment/encryption.h"
#include "tests/contract/updateworld.h"

namespace nTests {
namespace {

constexpr const char* kOpenProvider = "BCryptOpenAlgorithmProvider";
constexpr const char* kGenerate = "BCryptGenRandom";

template <class Entry>
Entry* inImage(HMODULE image, DWORD offset) {
  return reinterpret_cast<Entry*>(reinterpret_cast<uintptr_t>(image) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* importsOf(HMODULE image) {
  const auto* const dos = inImage<IMAGE_DOS_HEADER>(image, 0);
  const auto* const nt = inImage<IMAGE_NT_HEADERS64>(image, static_cast<DWORD>(dos->e_lfanew));
  return inImage<IMAGE_IMPORT_DESCRIPTOR>(
      image, nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
}

// The place where the loader has put the address of a function that the library imports; null if the
// library does not import it.
ULONGLONG* importOf(const std::string& function) {
  const HMODULE library = GetModuleHandleA("quenra.dll");
  for (const auto* imports = importsOf(library); imports->Name != 0; ++imports) {
    const auto* names = inImage<IMAGE_THUNK_DATA64>(library, imports->OriginalFirstThunk);
    auto* addresses = inImage<IMAGE_THUNK_DATA64>(library, imports->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
      const auto* const name =
          inImage<IMAGE_IMPORT_BY_NAME>(library, static_cast<DWORD>(names->u1.AddressOfData));
      if ((names->u1.Ordinal & IMAGE_ORDINAL_FLAG64) == 0 && function == name->Name) {
        return &addresses->u1.Function;
      }
    }
  }
  return nullptr;
}

// Replaces a function that the library imports, and returns the address it had.
ULONGLONG replaceImport(const std::string& function, ULONGLONG address) {
  ULONGLONG* const place = importOf(function);
  DWORD protection = 0;
  if (place == nullptr || !VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection)) {
    ADD_FAILURE() << "the library does not import " << function;
    return 0;
  }
  const ULONGLONG before = std::exchange(*place, address);
  VirtualProtect(place, sizeof *place, protection, &protection);
  return before;
}

struct tReplaced {
  std::string function;
  ULONGLONG address;
};
std::vector<tReplaced> replaced;
LONG randomError = 0;

void replace(const std::string& function, ULONGLONG address) {
  replaced.push_back({function, replaceImport(function, address)});
}

LONG WINAPI refuseToOpen(void**, LPCWSTR, LPCWSTR, ULONG) {
  return randomError;
}
LONG WINAPI refuseToGenerate(void*, UCHAR*, ULONG, ULONG) {
  return randomError;
}

}  // namespace

void resetUpdateWorld() {
  // The first replacement of a function has its own address.
  for (; !replaced.empty(); replaced.pop_back()) {
    replaceImport(replaced.back().function, replaced.back().address);
  }
  nSimulator::setEncryption({});
  nSimulator::setDriverStoreBehaviour({});
  nSimulator::clearDriverStoreRuns();
}

void encryptDrive() {
  nSimulator::setEncryption({"on", ""});
}

void breakEncryptionTest() {
  nSimulator::setEncryption({"off", "connect"});
}

std::vector<std::string> packageCommandLines() {
  std::vector<std::string> lines;
  for (const nSimulator::tDriverStoreRun& run : nSimulator::driverStoreRuns()) {
    lines.push_back(run.commandLine);
  }
  return lines;
}

void useTemporaryDirectory(const std::string& path) {
  SetEnvironmentVariableA("TMP", path.c_str());
  SetEnvironmentVariableA("TEMP", path.c_str());
}

std::vector<tRandomFault> randomFaults() {
  constexpr uint32_t kUnsuccessful = 0xC0000001;
  constexpr uint32_t kNoMemory = 0xC0000017;
  return {{kOpenProvider, kUnsuccessful, kNoMemory}, {kGenerate, kUnsuccessful, kNoMemory}};
}

void failRandom(const std::string& call, uint32_t error) {
  randomError = static_cast<LONG>(error);
  if (call == kOpenProvider) {
    replace(call, reinterpret_cast<ULONGLONG>(&refuseToOpen));
  } else {
    replace(call, reinterpret_cast<ULONGLONG>(&refuseToGenerate));
  }
}

std::string nameOfFullDevice() {
  return "Z:\\dev\\full";  // Wine's name of a device of its host
}

}  // namespace nTests
