#include "tests/load/processsample.h"

#include <windows.h>
// winternl.h needs windows.h first.
#include <winternl.h>

#include <algorithm>
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

// The system's list of all handles, as it is laid out.
struct tHandle {
  uint32_t process;
  uint8_t type;
  uint8_t flags;
  uint16_t value;
  void* object;
  uint32_t access;
};
struct tHandleList {
  uint32_t count;
  tHandle handles[1];  // so many as `count` says
};

std::vector<std::byte> systemInformation(SYSTEM_INFORMATION_CLASS kind) {
  constexpr NTSTATUS kLengthMismatch = static_cast<NTSTATUS>(0xC0000004);
  std::vector<std::byte> bytes(kFirstRoom);
  for (;;) {
    ULONG needed = 0;
    const NTSTATUS status =
        NtQuerySystemInformation(kind, bytes.data(), static_cast<ULONG>(bytes.size()), &needed);
    if (status >= 0) {
      return bytes;
    }
    if (status != kLengthMismatch) {
      throw std::system_error(status, std::system_category(), "what the system has");
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

// What Wine says of a process is how many handles its table has room for.
uint32_t handlesOf(uintptr_t process) {
  const std::vector<std::byte> bytes = systemInformation(SystemHandleInformation);
  const auto& list = *reinterpret_cast<const tHandleList*>(bytes.data());
  return static_cast<uint32_t>(
      std::count_if(list.handles, list.handles + list.count,
                    [process](const tHandle& handle) { return handle.process == process; }));
}

template <class Condition>
tProcessSample sumOfThose(Condition belongs) {
  tProcessSample sum{};
  const std::vector<std::byte> bytes = systemInformation(SystemProcessInformation);
  size_t offset = 0;
  for (ULONG step = 1; step != 0; offset += step) {
    const auto& process = *reinterpret_cast<const tProcess*>(bytes.data() + offset);
    if (belongs(process)) {
      sum.handles += handlesOf(reinterpret_cast<uintptr_t>(process.UniqueProcessId));
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
