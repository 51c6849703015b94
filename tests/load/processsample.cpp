#include "tests/load/processsample.h"

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

namespace nTests {
namespace {

constexpr std::wstring_view kDriverProcess = L"winedevice.exe";
constexpr uint64_t kBytesOfAKib = 1024;
constexpr size_t kFirstRoom = 64 * 1024;

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
  alignas(UNICODE_STRING) std::array<std::byte, 1024> room{};
  ULONG needed = 0;
  if (NtQueryObject(handle, kObjectTypeInformation, room.data(), room.size(), &needed) < 0) {
    return "unknown";
  }
  const auto& name = *reinterpret_cast<const UNICODE_STRING*>(room.data());
  // Type names are ASCII.
  const std::wstring_view wide(name.Buffer, name.Length / sizeof(wchar_t));
  std::string kind(wide.size(), ' ');
  std::transform(wide.begin(), wide.end(), kind.begin(),
                 [](wchar_t letter) { return static_cast<char>(letter); });
  return kind;
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

tHeapSample sampleHeaps() {
  constexpr DWORD kMostHeaps = 64;
  std::array<HANDLE, kMostHeaps> heaps{};
  const DWORD count = std::min(GetProcessHeaps(kMostHeaps, heaps.data()), kMostHeaps);
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
  return sumOfThose(isDriver);
}

}  // namespace nTests
