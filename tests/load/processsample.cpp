#include "tests/load/processsample.h"

#include <windows.h>
// winternl.h needs windows.h first.
#include <winternl.h>

#include <cstddef>
#include <string_view>
#include <system_error>
#include <vector>

namespace nTests {
namespace {

constexpr std::wstring_view kDriverProcess = L"winedevice.exe";
constexpr uint64_t kBytesOfAKib = 1024;
constexpr size_t kFirstRoom = 64 * 1024;

using tProcess = SYSTEM_PROCESS_INFORMATION;

// Of all processes, one behind another. Wine tells handles and memory there and nowhere else.
std::vector<std::byte> processInformation() {
  constexpr NTSTATUS kLengthMismatch = static_cast<NTSTATUS>(0xC0000004);
  std::vector<std::byte> bytes(kFirstRoom);
  for (;;) {
    ULONG needed = 0;
    const NTSTATUS status = NtQuerySystemInformation(SystemProcessInformation, bytes.data(),
                                                     static_cast<ULONG>(bytes.size()), &needed);
    if (status >= 0) {
      return bytes;
    }
    if (status != kLengthMismatch) {
      throw std::system_error(status, std::system_category(), "the list of processes");
    }
    bytes.resize(bytes.size() * 2);
  }
}

bool isDriver(const tProcess& process) {
  const std::wstring_view name(process.ImageName.Buffer,
                               process.ImageName.Length / sizeof(wchar_t));
  return name.size() >= kDriverProcess.size() &&
         name.substr(name.size() - kDriverProcess.size()) == kDriverProcess;
}

template <class Condition>
tProcessSample sumOfThose(Condition belongs) {
  tProcessSample sum{};
  const std::vector<std::byte> bytes = processInformation();
  size_t offset = 0;
  for (ULONG step = 1; step != 0; offset += step) {
    const auto& process = *reinterpret_cast<const tProcess*>(bytes.data() + offset);
    if (belongs(process)) {
      sum.handles += process.HandleCount;
      sum.privateKib += process.VirtualMemoryCounters.PagefileUsage / kBytesOfAKib;
      sum.workingSetKib += process.VirtualMemoryCounters.WorkingSetSize / kBytesOfAKib;
    }
    step = process.NextEntryOffset;
  }
  return sum;
}

}  // namespace

tProcessSample sampleThisProcess() {
  const auto own = static_cast<uintptr_t>(GetCurrentProcessId());
  return sumOfThose([own](const tProcess& process) {
    return reinterpret_cast<uintptr_t>(process.UniqueProcessId) == own;
  });
}

tProcessSample sampleDriverProcesses() {
  return sumOfThose(isDriver);
}

}  // namespace nTests
