#include <windows.h>
// winternl.h requires windows.h.
#include <winternl.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "tests/load/soaktable.h"

namespace nTests {
namespace {

constexpr std::wstring_view kDriverProcess = L"winedevice.exe";
constexpr uint64_t kBytesPerKib = 1024;
constexpr size_t kInitialCapacity = 64 * 1024;

using tProcess = SYSTEM_PROCESS_INFORMATION;

// The layout of the system's list of all handles.
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
  tHandle handles[1];  // `count` elements
};

std::vector<std::byte> systemInformation(SYSTEM_INFORMATION_CLASS kind) {
  constexpr NTSTATUS kLengthMismatch = static_cast<NTSTATUS>(0xC0000004);
  std::vector<std::byte> bytes(kInitialCapacity);
  for (;;) {
    ULONG needed = 0;
    const NTSTATUS status =
        NtQuerySystemInformation(kind, bytes.data(), static_cast<ULONG>(bytes.size()), &needed);
    if (status >= 0) {
      return bytes;
    }
    if (status != kLengthMismatch) {
      throw std::system_error(status, std::system_category(), "NtQuerySystemInformation");
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

template <class Visitor>
void forEachHandle(Visitor visit) {
  const std::vector<std::byte> bytes = systemInformation(SystemHandleInformation);
  const auto& list = *reinterpret_cast<const tHandleList*>(bytes.data());
  std::for_each(list.handles, list.handles + list.count, visit);
}

// Counts the list: Wine reports the capacity of the handle table as a process's handle count.
uint32_t handlesOf(uintptr_t process) {
  uint32_t count = 0;
  forEachHandle([&](const tHandle& handle) { count += handle.process == process ? 1 : 0; });
  return count;
}

// The name of the handle's type.
std::string kindOf(HANDLE handle) {
  constexpr auto kObjectTypeInformation = static_cast<OBJECT_INFORMATION_CLASS>(2);
  alignas(UNICODE_STRING) std::array<std::byte, 1024> buffer{};
  ULONG needed = 0;
  if (NtQueryObject(handle, kObjectTypeInformation, buffer.data(), buffer.size(), &needed) < 0) {
    return "unknown";
  }
  const auto& name = *reinterpret_cast<const UNICODE_STRING*>(buffer.data());
  // Type names are ASCII.
  const std::wstring_view wide(name.Buffer, name.Length / sizeof(wchar_t));
  std::string kind(wide.size(), ' ');
  std::transform(wide.begin(), wide.end(), kind.begin(),
                 [](wchar_t letter) { return static_cast<char>(letter); });
  return kind;
}

template <class Condition>
tProcessSample sumOver(Condition belongs) {
  tProcessSample sum{};
  const std::vector<std::byte> bytes = systemInformation(SystemProcessInformation);
  size_t offset = 0;
  for (ULONG step = 1; step != 0; offset += step) {
    const auto& process = *reinterpret_cast<const tProcess*>(bytes.data() + offset);
    if (belongs(process)) {
      sum.handles += handlesOf(reinterpret_cast<uintptr_t>(process.UniqueProcessId));
      sum.privateKib += process.VirtualMemoryCounters.PagefileUsage / kBytesPerKib;
    }
    step = process.NextEntryOffset;
  }
  return sum;
}

}  // namespace

tProcessSample sampleThisProcess() {
  const auto own = static_cast<uintptr_t>(GetCurrentProcessId());
  return sumOver([own](const tProcess& process) {
    return reinterpret_cast<uintptr_t>(process.UniqueProcessId) == own;
  });
}

tHeapSample sampleHeaps() {
  constexpr DWORD kMaxHeaps = 64;
  std::array<HANDLE, kMaxHeaps> heaps{};
  const DWORD count = std::min(GetProcessHeaps(kMaxHeaps, heaps.data()), kMaxHeaps);
  tHeapSample sample{};
  for (HANDLE heap : std::span(heaps).first(count)) {
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heap, &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) {
        ++sample.blocks;
        sample.bytes += entry.cbData;
      }
    }
  }
  return sample;
}

tHandleCounts countHandles() {
  tHandleCounts counts{};
  forEachHandle([&counts](const tHandle& handle) {
    if (handle.process == GetCurrentProcessId()) {
      ++counts[indexOfHandleKind(kindOf(std::bit_cast<HANDLE>(uintptr_t{handle.value})))];
    }
  });
  return counts;
}

tProcessSample sampleDriverProcesses() {
  return sumOver(isDriver);
}

}  // namespace nTests
