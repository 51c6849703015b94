#include "zosmbios/czosmbioswindowsprovider.h"

#include <windows.h>

#include <array>
#include <charconv>
#include <cstring>

namespace nQUENRA1400::nZOSMBIOS_1_1 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr const char* kFile = "dep_mirror\\deps\\zosmbios\\includes\\czosmbioswindowsprovider";
constexpr tSourceLocation kNoTableFromService{kFile, 48};
constexpr tSourceLocation kUnexpectedTableSize{kFile, 69};
constexpr DWORD kRawSmbios = 0x52534D42;  // 'RSMB'

// The bytes before the structures in the service's answer.
struct tRawHeader {
  uint8_t callingMethod;
  uint8_t majorVersion;
  uint8_t minorVersion;
  uint8_t dmiRevision;
  uint32_t length;
};
static_assert(sizeof(tRawHeader) == 8);

struct tVersion {
  std::array<char, 8> text;  // "255.255"
  size_t length;
};

tVersion versionOf(const tRawHeader& header) noexcept {
  tVersion version{};
  char* const last = version.text.data() + version.text.size();
  char* end = std::to_chars(version.text.data(), last, header.majorVersion).ptr;
  *end++ = '.';
  end = std::to_chars(end, last, header.minorVersion).ptr;
  version.length = static_cast<size_t>(end - version.text.data());
  return version;
}

}  // namespace

void cZoSmBiosWindowsProvider::load(tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  clear();
  const UINT size = GetSystemFirmwareTable(kRawSmbios, 0, nullptr, 0);
  if (size == 0) {
    setLastOsError(GetLastError());
    mergeStatus(status, kNoTable, kNoTableFromService);
    return;
  }
  const nZOAPAL000::tByteBuffer raw = nZOAPAL000::allocateBytes(size, status);
  if (raw == nullptr) {
    return;
  }
  const UINT received = GetSystemFirmwareTable(kRawSmbios, 0, raw.get(), size);
  const DWORD error = GetLastError();
  tRawHeader header{};
  if (received == size && size >= sizeof header) {
    std::memcpy(&header, raw.get(), sizeof header);
  }
  if (received != size || size < sizeof header || header.length > size - sizeof header) {
    setLastOsError(error);
    mergeStatus(status, kNoTable, kUnexpectedTableSize);
    return;
  }
  const tVersion version = versionOf(header);
  install({raw.get() + sizeof header, header.length}, {version.text.data(), version.length},
          status);
}

}  // namespace nQUENRA1400::nZOSMBIOS_1_1
