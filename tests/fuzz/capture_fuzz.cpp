// Arbitrary text as a capture file: it is rejected with a reason, or it is a machine that the library's code
// reads, whatever it is. A capture comes from a stranger.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tools/capture/capturefile.h"
#include "tools/quenra/capture/capturing.h"
#include "tools/quenra/capture/pseudonyms.h"

namespace {

using nCapture::captureText;
using nCapture::parseCapture;

void require(bool condition) noexcept {
  if (!condition) {
    std::abort();
  }
}

void examine(std::string_view text) {
  nCapture::tMachineRecord record = parseCapture(text);
  // Texts that are not UTF-8 or contain control characters are written with escapes, once and for all.
  const std::string written = captureText(record);
  require(captureText(parseCapture(written)) == written);
  static_cast<void>(nCommandLine::deviationsOf(record));

  const size_t tableSize = record.handover.table.size();
  nCommandLine::replaceSerialNumbers(record, "key");
  require(record.handover.table.size() == tableSize);
  static_cast<void>(nCommandLine::deviationsOf(record));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const void* const bytes = data;
  try {
    examine({static_cast<const char*>(bytes), size});
  } catch (const nCapture::tCaptureFault& fault) {
    require(*fault.what() != '\0');
  }
  return 0;
}
