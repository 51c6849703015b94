#include "tools/quenra/reading/readattribute.h"

#include <cstddef>

namespace nCommandLine {
namespace {

constexpr uint64_t kFirstBufferSize = 256;
// More than any real text needs. A greater size is a misbehaving driver: do not allocate it.
constexpr uint64_t kLargestBufferSize = uint64_t{1024} * 1024;
// The text may grow between two calls; the limit ends the loop under a misbehaving driver.
constexpr int kMostAttempts = 8;

// The library leaves the buffer unchanged if the SMBIOS table is malformed, so it must hold an
// empty text before the call. The byte beyond `size` stays NUL if the library fills the rest.
int32_t readTextOnce(iQuenra& library, uint64_t handle, uint32_t id, std::string& text,
                     uint64_t& size) {
  text.assign(static_cast<size_t>(size) + 1, '\0');
  const int32_t code = library.getAttributeUTF8(handle, id, text.data(), &size);
  text.resize(text.find('\0'));
  return code;
}

int32_t readText(iQuenra& library, uint64_t handle, uint32_t id, std::string& text) {
  uint64_t size = kFirstBufferSize;
  int32_t code = QUENRA_STATUS_SUCCESS;
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    const uint64_t given = size;
    code = readTextOnce(library, handle, id, text, size);
    if (code != QUENRA_STATUS_BUFFER_TOO_SMALL || size <= given || size > kLargestBufferSize) {
      break;
    }
  }
  return code;
}

}  // namespace

tReading readAttribute(iQuenra& library, uint64_t handle, const tAttributeAddress& address) {
  tReading reading{address, QUENRA_STATUS_SUCCESS, uint32_t{0}};
  if (address.type() == tAttributeType::text) {
    std::string text;
    reading.code = readText(library, handle, address.id(), text);
    reading.value = std::move(text);
  } else {
    uint32_t value = 0;
    reading.code = library.getAttributeU32(handle, address.id(), &value);
    reading.value = value;
  }
  return reading;
}

}  // namespace nCommandLine
