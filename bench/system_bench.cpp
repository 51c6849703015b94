// system_bench: loading the library, a process of the command line, and reading the BIOS version through
// the system's management service instead of the library. Windows only.
#include <windows.h>
// These need windows.h first.
#include <objbase.h>
#include <oleauto.h>
#include <wbemcli.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/measurement.h"
#include "quenra.h"

namespace {

using nBench::repeated;
using nBench::require;
using nBench::tBound;
using nBench::tReport;

// The path of a file beside this program.
std::string besideProgram(const std::string& name) {
  std::array<char, MAX_PATH> path{};
  const DWORD length = GetModuleFileNameA(nullptr, path.data(), path.size());
  require(length != 0 && length < path.size(), "the program's path is too long");
  const std::string program(path.data(), length);
  return program.substr(0, program.find_last_of("\\/") + 1) + name;
}

// ---- Loading ----

class tLoadedLibrary {
 public:
  explicit tLoadedLibrary(const std::string& path) : module_(LoadLibraryA(path.c_str())) {
    require(module_ != nullptr, "cannot load '" + path + "'");
  }
  tLoadedLibrary(const tLoadedLibrary&) = delete;
  tLoadedLibrary& operator=(const tLoadedLibrary&) = delete;
  ~tLoadedLibrary() { FreeLibrary(module_); }

  template <class Function>
  [[nodiscard]] Function* function(const char* name) const {
    const FARPROC address = GetProcAddress(module_, name);
    require(address != nullptr, std::string("no function ") + name);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
  }

 private:
  HMODULE module_;
};

void measureLoading(tReport& report) {
  report.section("Loading the library");
  const auto loader = [](const char* name) {
    return repeated([path = besideProgram(name)] { const tLoadedLibrary loaded(path); });
  };
  report.compare({"load and unload",
                  "an empty library with the same imports",
                  loader("quenra.dll"),
                  loader("emptylibrary.dll"),
                  {{tBound::timeAtMost, 1.2}}});
}

// ---- Processes ----

void run(const std::string& program, const std::string& arguments) {
  std::string commandLine = "\"" + program + "\" " + arguments;
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  const HANDLE nothing =
      CreateFileA("NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  &inherited, OPEN_EXISTING, 0, nullptr);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = nothing;
  startup.hStdOutput = nothing;
  startup.hStdError = nothing;
  PROCESS_INFORMATION started{};
  require(CreateProcessA(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                         nullptr, &startup, &started) != FALSE,
          "cannot start '" + program + "'");
  WaitForSingleObject(started.hProcess, INFINITE);
  DWORD code = 1;
  GetExitCodeProcess(started.hProcess, &code);
  CloseHandle(started.hThread);
  CloseHandle(started.hProcess);
  CloseHandle(nothing);
  require(code == 0, "'" + program + " " + arguments + "' returns " + std::to_string(code));
}

void measureProcesses(tReport& report) {
  constexpr int kRounds = 31;
  report.section("Processes");
  report.compare(
      {"quenra get platform-code",
       "an empty program",
       repeated([path = besideProgram("quenra.exe")] { run(path, "get platform-code"); }),
       repeated([path = besideProgram("emptyprogram.exe")] { run(path, ""); }),
       {{tBound::timeAtMost, 1.5}},
       kRounds});
  report.compare({"an empty program with the library's imports",
                  "an empty program",
                  repeated([path = besideProgram("loadingprogram.exe")] { run(path, ""); }),
                  repeated([path = besideProgram("emptyprogram.exe")] { run(path, ""); }),
                  {},
                  kRounds});
}

// ---- The management service ----

template <class Interface>
struct tRelease {
  void operator()(Interface* object) const { object->Release(); }
};
template <class Interface>
using tObject = std::unique_ptr<Interface, tRelease<Interface>>;

struct tFreeText {
  void operator()(OLECHAR* text) const { SysFreeString(text); }
};
using tText = std::unique_ptr<OLECHAR, tFreeText>;

tText textOf(const wchar_t* text) {
  return tText(SysAllocString(text));
}

// The system's own service: another implementation may be registered for its class.
tObject<IWbemLocator> systemLocator() {
  std::array<char, MAX_PATH> folder{};
  require(GetSystemDirectoryA(folder.data(), folder.size()) != 0, "there is no system folder");
  static const tLoadedLibrary service(folder.data() + std::string("\\wbem\\wbemprox.dll"));
  constexpr CLSID kLocatorClass = {
      0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
  constexpr IID kLocatorInterface = {
      0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
  constexpr IID kClassFactory = {
      0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
  const auto getClassObject =
      service.function<HRESULT WINAPI(REFCLSID, REFIID, void**)>("DllGetClassObject");
  void* found = nullptr;
  require(SUCCEEDED(getClassObject(kLocatorClass, kClassFactory, &found)), "no class object");
  const tObject<IClassFactory> factory(static_cast<IClassFactory*>(found));
  require(SUCCEEDED(factory->CreateInstance(nullptr, kLocatorInterface, &found)), "no locator");
  return tObject<IWbemLocator>(static_cast<IWbemLocator*>(found));
}

tObject<IWbemServices> connect() {
  IWbemServices* services = nullptr;
  const tText name = textOf(L"ROOT\\CIMV2");
  require(SUCCEEDED(systemLocator()->ConnectServer(name.get(), nullptr, nullptr, nullptr, 0,
                                                   nullptr, nullptr, &services)),
          "the management service does not answer");
  return tObject<IWbemServices>(services);
}

void queryBiosVersion(IWbemServices& services) {
  const tText language = textOf(L"WQL");
  const tText query = textOf(L"SELECT SMBIOSBIOSVersion FROM Win32_BIOS");
  IEnumWbemClassObject* found = nullptr;
  require(SUCCEEDED(services.ExecQuery(language.get(), query.get(),
                                       WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY,
                                       nullptr, &found)),
          "the query fails");
  const tObject<IEnumWbemClassObject> bioses(found);
  IWbemClassObject* first = nullptr;
  ULONG count = 0;
  require(bioses->Next(static_cast<LONG>(WBEM_INFINITE), 1, &first, &count) == S_OK && count == 1,
          "the management service has no BIOS");
  const tObject<IWbemClassObject> bios(first);
  VARIANT version;
  VariantInit(&version);
  require(SUCCEEDED(bios->Get(L"SMBIOSBIOSVersion", 0, &version, nullptr, nullptr)),
          "the BIOS has no version");
  VariantClear(&version);
}

void measureManagement(tReport& report) {
  constexpr uint32_t kBiosVersion = QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_CONTROLLER;
  report.section("The management service");
  const tLoadedLibrary library(besideProgram("quenra.dll"));
  auto* const open = library.function<decltype(QUENRA_openController)>("QUENRA_openController");
  auto* const close = library.function<decltype(QUENRA_closeController)>("QUENRA_closeController");
  auto* const read = library.function<decltype(QUENRA_getAttributeUTF8)>("QUENRA_getAttributeUTF8");
  uint64_t handle = 0;
  require(open(&handle) == 0, "the controller cannot be opened");
  require(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)), "COM cannot be initialised");
  {
    const tObject<IWbemServices> services = connect();
    report.compare({"BIOS version",
                    "a query of the management service",
                    repeated([read, handle] {
                      std::array<char, 256> version{};
                      uint64_t size = version.size();
                      require(read(handle, kBiosVersion, version.data(), &size) == 0,
                              "the BIOS version cannot be read");
                    }),
                    repeated([&services] { queryBiosVersion(*services); }),
                    {{tBound::speedAtLeast, 100}}});
  }
  CoUninitialize();
  close(handle);
}

}  // namespace

int main(int argc, char** argv) {
  tReport report(argc, argv);
  measureLoading(report);
  measureProcesses(report);
  measureManagement(report);
  return 0;
}
