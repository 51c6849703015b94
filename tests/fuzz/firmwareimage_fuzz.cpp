// The parser of firmware images on arbitrary bytes. The input is the image, in memory of exactly its
// size. For every input, the parser and the plain implementation agree on records and failure, with
// every kernel that this processor supports, and the cost is proportional to the size.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "source/user/firmware/decoding/selection.h"
#include "source/user/firmware/tfirmwareimageparser.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/component/user/firmware/plainimage.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace {

using namespace nQUENRA1400;
using nTests::tPlainImage;
using nTests::tPlainRecord;

void require(bool condition, const char* invariant) {
  if (!condition) {
    std::fprintf(stderr, "violated: %s\n", invariant);
    std::abort();
  }
}

void requireLine(const zoerr::Status& status, uint32_t line) {
  const std::string_view description = status.description == nullptr ? "" : status.description;
  const std::string expected = "\"line\":" + std::to_string(line);
  require(!status.isError() || description.find(expected) != std::string_view::npos,
          "a failure reports its line");
}

void checkParse(const nFirmwareDecoding::tKernels& kernels, std::string_view image,
                const tPlainImage& expected) {
  tFirmwarePayloads records;
  zoerr::tOwnedStatus status;
  tFirmwareImageParser(kernels).Parse(records, image.data(), image.size(), status);
  require(status.code == expected.code, "the code");
  requireLine(status, expected.line);
  require(records.size() == expected.records.size(), "the number of records");
  for (size_t i = 0; i < records.size(); ++i) {
    const tFirmwarePayload& record = records[i];
    const tPlainRecord found{{record.data, record.data + record.byteCount},
                             record.targetDevice,
                             record.version,
                             record.targetFileName};
    require(found == expected.records[i], "a record");
  }
  freePayloads(records);
}

size_t searched = 0;

const uint8_t* countingFind(const uint8_t* text, const uint8_t* end, uint8_t byte) noexcept {
  const uint8_t* const found = nFirmwareDecoding::kPlainKernels.findByteOrNul(text, end, byte);
  searched += static_cast<size_t>(found - text) + 1;
  return found;
}

// All searches together read the image at most kMaxReadings times, however sections share headers.
void checkCost(std::string_view image) {
  constexpr size_t kMaxReadings = 32;
  const nFirmwareDecoding::tKernels counting{"counting", nFirmwareDecoding::kPlainKernels.decode,
                                             &countingFind};
  tFirmwarePayloads records;
  zoerr::tOwnedStatus status;
  searched = 0;
  tFirmwareImageParser(counting).Parse(records, image.data(), image.size(), status);
  freePayloads(records);
  require(searched <= kMaxReadings * image.size(), "the cost is proportional to the image");
}

// Every input is also a text to decode and to search.
void checkKernels(const nFirmwareDecoding::tKernels& kernels, std::string_view text,
                  const std::vector<uint8_t>& decoded, uint32_t crc) {
  const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
  const auto data = std::make_unique<uint8_t[]>(text.size());
  const auto result = kernels.decode(bytes, text.size(), data.get());
  require(std::equal(decoded.begin(), decoded.end(), data.get(), data.get() + result.byteCount),
          "the decoded bytes");
  require(result.crc == crc, "the CRC");
  const auto* const found = kernels.findByteOrNul(bytes, bytes + text.size(), ':');
  require(static_cast<size_t>(found - bytes) ==
              std::min(text.find_first_of(std::string_view(":\0", 2)), text.size()),
          "the first colon or NUL");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* input, size_t size) {
  const auto exact = std::make_unique<char[]>(size);
  std::copy_n(input, size, exact.get());
  const std::string_view image(exact.get(), size);
  const tPlainImage expected = nTests::plainParse(image);
  const std::vector<uint8_t> decoded = nTests::plainDecode(image);
  const uint32_t crc = nTests::firmwareCrc(decoded);
  checkCost(image);
  for (const auto& choice : nFirmwareDecoding::allKernels()) {
    if (choice.isSupported()) {
      checkParse(choice.kernels, image, expected);
      checkKernels(choice.kernels, image, decoded, crc);
    }
  }
  return 0;
}
