// The work of a parse, counted in bytes that its kernels read, on images made to be expensive.
#include "source/user/firmware/tsectionheaders.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/component/user/firmware/parsertest.h"

namespace nTests {
namespace {

using nQUENRA1400::nFirmwareDecoding::kPlainKernels;
using nQUENRA1400::nFirmwareDecoding::tDecodedPayload;
using nQUENRA1400::nFirmwareDecoding::tKernels;

// Readings: seven keys with a line end each, four texts with two quotes each, the extension of
// driver packages, the end of the header, and the payload.
constexpr size_t kMaxReadings = 25;

size_t bytesRead = 0;

tDecodedPayload countingDecode(const uint8_t* text, size_t length, uint8_t* data) noexcept {
  bytesRead += length;
  return kPlainKernels.decode(text, length, data);
}

const uint8_t* countingFind(const uint8_t* text, const uint8_t* end, uint8_t byte) noexcept {
  const uint8_t* const found = kPlainKernels.findByteOrNul(text, end, byte);
  bytesRead += static_cast<size_t>(found - text) + 1;
  return found;
}

constexpr tKernels kCountingKernels{"counting", &countingDecode, &countingFind};

class ParserCost : public ParserTest, public testing::WithParamInterface<tExpensiveImage> {
 protected:
  size_t readToParse(const std::string& image) {
    bytesRead = 0;
    zoerr::tOwnedStatus status;
    nQUENRA1400::tFirmwareImageParser(kCountingKernels)
        .Parse(records, image.data(), image.size(), status);
    EXPECT_EQ(status.code, 0) << lineOf(status);
    return bytesRead;
  }
};

TEST_P(ParserCost, BytesRead_AreProportionalToTheImage) {
  for (const size_t sections : {250u, 500u, 1000u}) {
    const std::string image = GetParam().build(sections);
    EXPECT_LE(readToParse(image), kMaxReadings * image.size()) << sections << " sections";
    EXPECT_GT(records.size(), sections);
    freePayloads(records);
    records.clear();
  }
}

INSTANTIATE_TEST_SUITE_P(Of, ParserCost,
                         testing::ValuesIn(expensiveImages().begin(), expensiveImages().end()),
                         [](const auto& test) { return test.param.name; });

// The command line lists every section, also those after a fault. Only then can all keys of an
// image be on one line.
TEST(HeaderCost, BytesReadOnOneLineOfKeys_AreProportionalToTheImage) {
  constexpr std::string_view kKeys =
      "HeaderVersion::1\nVersion::1UpdateType::\"TargetDevice::CRC::ByteCount::";
  for (const size_t sections : {250u, 500u, 1000u}) {
    std::string image;
    for (size_t i = 0; i < sections; ++i) {
      image += kKeys;
    }
    image += "\"\r\n";
    bytesRead = 0;
    const nQUENRA1400::tImageText text(image.data(), image.size(), kCountingKernels);
    nQUENRA1400::tSectionHeaders headers(text);
    size_t found = 0;
    for (size_t at = headers.findSection(0); at != nQUENRA1400::tImageText::kNotFound;
         at = headers.findSection(at + 1)) {
      zoerr::tOwnedStatus status;
      const auto header = headers.read(at, status);
      EXPECT_EQ(header.headerVersion, 1u);
      ++found;
    }
    EXPECT_EQ(found, sections);
    EXPECT_LE(bytesRead, kMaxReadings * image.size()) << sections << " sections";
  }
}

}  // namespace
}  // namespace nTests
