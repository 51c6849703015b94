#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <utility>

#include "simulator/scenario/servicescenarios.h"
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

std::function<void()> toolHook;

DWORD WINAPI loseToolAfterHook(LPCSTR) {
  toolHook();
  SetLastError(ERROR_FILE_NOT_FOUND);
  return INVALID_FILE_ATTRIBUTES;
}
BOOL WINAPI startToolAfterHook(LPCSTR path, LPSTR commandLine, LPSECURITY_ATTRIBUTES process,
                               LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags,
                               LPVOID environment, LPCSTR folder, LPSTARTUPINFOA startup,
                               LPPROCESS_INFORMATION started) {
  toolHook();
  return CreateProcessA(path, commandLine, process, thread, inherit, flags, environment, folder,
                        startup, started);
}

// The path of a file on Wine's host.
std::string hostName(const std::filesystem::path& path) {
  using tUnixName = char*(CDECL*)(LPCWSTR);
  const auto unixName = reinterpret_cast<tUnixName>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name")));
  char* const name = unixName == nullptr ? nullptr : unixName(path.c_str());
  EXPECT_NE(name, nullptr) << "links are planted with Wine only";
  std::string copy = name == nullptr ? "" : name;
  HeapFree(GetProcessHeap(), 0, name);
  return copy;
}

// Runs a program of Wine's host. Wine does not wait for its end.
void runOnHost(std::string commandLine) {
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started{};
  ASSERT_TRUE(CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                             nullptr, &startup, &started));
  CloseHandle(started.hThread);
  CloseHandle(started.hProcess);
}

bool isPresent(const std::filesystem::path& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Waits until a program of the host has created or removed the path.
void expectExistence(const std::filesystem::path& path, bool isExpected) {
  constexpr int kTries = 500;
  for (int tries = 0; tries < kTries && isPresent(path) != isExpected; ++tries) {
    Sleep(10);
  }
  EXPECT_EQ(isPresent(path), isExpected) << path;
}

}  // namespace

void resetUpdateWorld() {
  // In reverse: the first replacement of a function recorded its original address.
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

void loseTool(std::function<void()> hook) {
  toolHook = std::move(hook);
  replace("GetFileAttributesA", reinterpret_cast<ULONGLONG>(&loseToolAfterHook));
}

void beforeToolStart(std::function<void()> hook) {
  toolHook = std::move(hook);
  replace("CreateProcessA", reinterpret_cast<ULONGLONG>(&startToolAfterHook));
}

void useTemporaryDirectory(const std::filesystem::path& path) {
  SetEnvironmentVariableW(L"TMP", path.c_str());
  SetEnvironmentVariableW(L"TEMP", path.c_str());
}

void moveAside(const std::filesystem::path& from, const std::filesystem::path& to) {
  runOnHost("Z:\\bin\\mv \"" + hostName(from) + "\" \"" + hostName(to) + "\"");
  expectExistence(from, false);
}

void plantLink(const std::filesystem::path& link, const std::filesystem::path& target) {
  runOnHost("Z:\\bin\\ln -s \"" + hostName(target) + "\" \"" + hostName(link) + "\"");
  expectExistence(link, true);
}

void removeLink(const std::filesystem::path& link) {
  if (!isPresent(link)) {
    return;
  }
  runOnHost("Z:\\bin\\rm -f \"" + hostName(link) + "\"");
  expectExistence(link, false);
}

bool removesLinks() {
  return false;
}

bool canOpen(const std::filesystem::path& path, tOpening opening) {
  constexpr DWORD kAccess[] = {GENERIC_READ, GENERIC_WRITE, DELETE};
  constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = CreateFileW(path.c_str(), kAccess[static_cast<size_t>(opening)],
                                  opening == tOpening::reading ? DWORD{FILE_SHARE_READ} : kAll,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return false;
  }
  CloseHandle(file);
  return true;
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
