// The kernels of every instruction set give the same results, and the choice between them.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "source/user/firmware/decoding/plainsteps.h"
#include "source/user/firmware/decoding/selection.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/component/user/firmware/plainimage.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nFirmwareDecoding;

struct tResult {
  std::vector<uint8_t> data;
  uint32_t crc;
};

// A text at the end of an allocation, `offset` bytes past a multiple of 64.
class tExactText {
 public:
  explicit tExactText(std::string_view text, size_t offset = 0)
      : length_(text.size()), memory_(new (std::align_val_t{64}) uint8_t[offset + text.size()]) {
    text_ = memory_.get() + offset;
    std::copy(text.begin(), text.end(), text_);
  }
  [[nodiscard]] const uint8_t* begin() const { return text_; }
  [[nodiscard]] const uint8_t* end() const { return text_ + length_; }
  [[nodiscard]] size_t length() const { return length_; }

 private:
  struct tDelete {
    void operator()(uint8_t* memory) const { operator delete[](memory, std::align_val_t{64}); }
  };
  size_t length_;
  std::unique_ptr<uint8_t[], tDelete> memory_;
  uint8_t* text_;
};

tResult decode(const tKernels& kernels, const tExactText& text) {
  const auto data = std::make_unique<uint8_t[]>(text.length());
  const tDecodedPayload decoded = kernels.decode(text.begin(), text.length(), data.get());
  return {{data.get(), data.get() + decoded.byteCount}, decoded.crc};
}

class Kernels : public testing::TestWithParam<tChoice> {
 protected:
  void SetUp() override {
    if (!GetParam().isSupported()) {
      GTEST_SKIP() << "this processor has no " << kernels().name;
    }
  }
  [[nodiscard]] const tKernels& kernels() const { return GetParam().kernels; }

  void expectAsPlain(std::string_view text, size_t offset = 0) {
    const std::vector<uint8_t> expected = plainDecode(text);
    const tResult result = decode(kernels(), tExactText(text, offset));
    ASSERT_EQ(result.data, expected) << "of " << text.size() << " characters at " << offset;
    ASSERT_EQ(result.crc, firmwareCrc(expected));
  }

  std::mt19937 random{7};
  [[nodiscard]] size_t upTo(size_t limit) { return random() % (limit + 1); }
  [[nodiscard]] char noise() {
    char character = 0;
    do {
      character = static_cast<char>(random());
    } while (!plainDecode(std::string(2, character)).empty());
    return character;
  }
  [[nodiscard]] std::string cleanText(size_t length) {
    std::string text = encodeBase64(firmwareBytes(length, static_cast<uint32_t>(random())));
    text.resize(length);
    return text;
  }
};

TEST_P(Kernels, EveryLengthUpTo3000_DecodesAsThePlainRule) {
  const std::string text = cleanText(3000);
  for (size_t length = 0; length <= text.size(); ++length) {
    expectAsPlain(std::string_view(text).substr(0, length), length % 64);
  }
}

TEST_P(Kernels, EveryAlignment_DecodesAsThePlainRule) {
  const std::string text = encodeBase64(firmwareBytes(3000), 76);
  for (size_t offset = 0; offset < 64; ++offset) {
    expectAsPlain(text, offset);
  }
}

TEST_P(Kernels, EveryLineLength_DecodesAsThePlainRule) {
  const std::vector<uint8_t> data = firmwareBytes(1500);
  for (size_t lineLength = 1; lineLength <= 300; ++lineLength) {
    expectAsPlain(encodeBase64(data, lineLength), lineLength % 64);
  }
}

TEST_P(Kernels, OneNoiseCharacterAnywhere_IsSkipped) {
  const std::string clean = cleanText(400);
  for (size_t place = 0; place <= clean.size(); ++place) {
    expectAsPlain(std::string(clean).insert(place, 1, noise()));
  }
}

TEST_P(Kernels, EveryByteValue_IsACharacterOrSkipped) {
  for (unsigned value = 0; value < 256; ++value) {
    for (const size_t length : {4u, 76u, 300u}) {
      std::string text = cleanText(length);
      text[length / 2] = static_cast<char>(value);
      expectAsPlain(text);
      expectAsPlain(std::string(length, static_cast<char>(value)));
    }
  }
}

TEST_P(Kernels, NoiseOfEveryDensity_IsSkipped) {
  for (int round = 0; round < 3000; ++round) {
    const size_t period = 1 + upTo(40);
    std::string text = cleanText(upTo(3000));
    for (char& character : text) {
      if (upTo(period) == 0) {
        character = noise();
      }
    }
    expectAsPlain(text, upTo(63));
  }
}

TEST_P(Kernels, LongRunsOfNoise_AreSkipped) {
  for (int round = 0; round < 200; ++round) {
    std::string text;
    while (text.size() < 6000) {
      text += cleanText(upTo(300)) + std::string(upTo(600), noise());
    }
    expectAsPlain(text, upTo(63));
  }
}

// Kernels keep what does not fill a group until the next round, so a sparse round precedes a full one.
TEST_P(Kernels, NoiseWithAnyNumberOfCharactersBeforeCleanText_DecodesAsThePlainRule) {
  const std::string clean = cleanText(5000);
  for (size_t count = 0; count <= 300; count += 10) {
    std::string text(2048, noise());
    for (size_t i = 0; i < count; ++i) {
      text[i * text.size() / 301] = clean[i];
    }
    expectAsPlain(text + clean);
  }
}

TEST_P(Kernels, ArbitraryBytes_DecodeAsThePlainRule) {
  for (int round = 0; round < 1000; ++round) {
    std::string text(upTo(5000), '\0');
    for (char& character : text) {
      character = static_cast<char>(random());
    }
    expectAsPlain(text, upTo(63));
  }
}

TEST_P(Kernels, PaddingInTheMiddle_IsSkippedLikeAnyNoise) {
  EXPECT_EQ(decode(kernels(), tExactText("QQ==QQ==")).data, plainDecode("QQQQ"));
}

TEST_P(Kernels, BitsThatFillNoByte_AreDropped) {
  EXPECT_EQ(decode(kernels(), tExactText("/")).data.size(), 0u);
  EXPECT_EQ(decode(kernels(), tExactText("//")).data, (std::vector<uint8_t>{0xFF}));
  EXPECT_EQ(decode(kernels(), tExactText("///")).data, (std::vector<uint8_t>{0xFF, 0xFF}));
  EXPECT_EQ(decode(kernels(), tExactText("/////")).data, (std::vector<uint8_t>{0xFF, 0xFF, 0xFF}));
}

TEST_P(Kernels, Crc_HasTheGoldenValues) {
  const auto crcOf = [&](std::string_view base64) {
    return decode(kernels(), tExactText(base64)).crc;
  };
  EXPECT_EQ(crcOf("MTIzNDU2Nzg5"), 0x05440F15u) << "of the digits 1 to 9";
  EXPECT_EQ(crcOf("AA=="), 0x8ACABE4Au) << "of one zero byte";
  EXPECT_EQ(crcOf(""), 0u) << "of no byte";
}

TEST_P(Kernels, CrcOfAMillionBytes_IsThatOfThePlainRule) {
  expectAsPlain(encodeBase64(firmwareBytes(1000003), 76));
}

TEST_P(Kernels, Search_FindsTheFirstByteOrNul) {
  EXPECT_EQ(kernels().findByteOrNul(nullptr, nullptr, ':'), nullptr);
  for (size_t length = 0; length < 700; length += 1 + upTo(3)) {
    const std::string clean = cleanText(length);
    const size_t offset = upTo(63);
    const tExactText without(clean, offset);
    ASSERT_EQ(kernels().findByteOrNul(without.begin(), without.end(), ':'), without.end());
    for (int hits = 0; hits < 4 && length > 0; ++hits) {
      const size_t place = upTo(length - 1);
      std::string text = clean;
      text[place] = hits % 2 == 0 ? ':' : '\0';
      text[place + upTo(length - 1 - place)] = hits % 3 == 0 ? '\0' : ':';
      const tExactText exact(text, offset);
      const uint8_t* const found = kernels().findByteOrNul(exact.begin(), exact.end(), ':');
      ASSERT_EQ(found - exact.begin(), static_cast<ptrdiff_t>(text.find_first_of({":\0", 2})));
    }
  }
}

TEST_P(Kernels, Search_ForAnyByte_SkipsEveryOther) {
  for (unsigned wanted = 0; wanted < 256; ++wanted) {
    const auto byte = static_cast<uint8_t>(wanted);
    for (unsigned value = 1; value < 256; ++value) {
      const tExactText text(std::string(300, static_cast<char>(value)));
      ASSERT_EQ(kernels().findByteOrNul(text.begin(), text.end(), byte),
                value == wanted ? text.begin() : text.end())
          << value << " while searching for " << wanted;
    }
  }
}

TEST_P(Kernels, Search_ForNul_FindsTheFirst) {
  std::string text = cleanText(300);
  for (size_t place = text.size(); place-- > 0;) {
    text[place] = '\0';
    const tExactText exact(text);
    ASSERT_EQ(kernels().findByteOrNul(exact.begin(), exact.end(), '\0') - exact.begin(),
              static_cast<ptrdiff_t>(place));
  }
}

INSTANTIATE_TEST_SUITE_P(Of, Kernels, testing::ValuesIn(allKernels().begin(), allKernels().end()),
                         [](const auto& test) {
                           std::string name = test.param.kernels.name;
                           std::erase(name, '-');
                           return name;
                         });

TEST(PlainSteps, ChangeNoBytePastTheirCapacity) {
  const std::string text = encodeBase64(firmwareBytes(90));
  for (size_t length = 0; length <= text.size(); ++length) {
    const tExactText exact(std::string_view(text).substr(0, length));
    const auto sextets = std::make_unique<uint8_t[]>(length);
    const size_t count = extractSextets(exact.begin(), length, sextets.get());
    const size_t bytes = count * 6 / 8;
    const auto data = std::make_unique<uint8_t[]>(bytes);
    ASSERT_EQ(packSextets(sextets.get(), count, data.get()), bytes);
    const std::vector<uint8_t> expected = plainDecode(std::string_view(text).substr(0, length));
    ASSERT_EQ(std::vector<uint8_t>(data.get(), data.get() + bytes), expected);
    ASSERT_EQ(~updateRegister(0xFFFFFFFF, data.get(), bytes), firmwareCrc(expected));
  }
}

// ---- The choice ----

constexpr tProcessorFeatures kEverything{.popcnt = true,
                                         .pclmul = true,
                                         .avx2 = true,
                                         .avx512f = true,
                                         .avx512bw = true,
                                         .avx512vbmi = true,
                                         .avx512vbmi2 = true,
                                         .vpclmulqdq = true};

tProcessorFeatures without(bool tProcessorFeatures::*feature) {
  tProcessorFeatures features = kEverything;
  features.*feature = false;
  return features;
}

TEST(KernelSelection, ProcessorWithEveryFeature_GetsAvx512) {
  EXPECT_EQ(&kernelsFor(kEverything), &kAvx512Kernels);
}

TEST(KernelSelection, ProcessorWithoutAnyPartOfAvx512_GetsAvx2WithWideMultiplication) {
  for (const auto feature : {&tProcessorFeatures::avx512f, &tProcessorFeatures::avx512bw,
                             &tProcessorFeatures::avx512vbmi, &tProcessorFeatures::avx512vbmi2}) {
    EXPECT_EQ(&kernelsFor(without(feature)), &kAvx2WideKernels);
  }
}

TEST(KernelSelection, Avx512WithoutWideMultiplication_GetsAvx2) {
  EXPECT_EQ(&kernelsFor(without(&tProcessorFeatures::vpclmulqdq)), &kAvx2Kernels);
}

TEST(KernelSelection, Avx512WithoutAnyPartOfAvx2_GetsPlain) {
  for (const auto feature :
       {&tProcessorFeatures::avx2, &tProcessorFeatures::pclmul, &tProcessorFeatures::popcnt}) {
    EXPECT_EQ(&kernelsFor(without(feature)), &kPlainKernels);
  }
}

TEST(KernelSelection, ProcessorOfAvx2Only_GetsAvx2) {
  EXPECT_EQ(&kernelsFor({.popcnt = true, .pclmul = true, .avx2 = true}), &kAvx2Kernels);
}

TEST(KernelSelection, ProcessorWithoutFeatures_GetsPlain) {
  EXPECT_EQ(&kernelsFor({}), &kPlainKernels);
}

TEST(KernelSelection, Features_AreAbsentByDefault) {
  constexpr tProcessorFeatures kNone;
  for (const auto feature : {&tProcessorFeatures::popcnt, &tProcessorFeatures::pclmul,
                             &tProcessorFeatures::avx2, &tProcessorFeatures::avx512f,
                             &tProcessorFeatures::avx512bw, &tProcessorFeatures::avx512vbmi,
                             &tProcessorFeatures::avx512vbmi2, &tProcessorFeatures::vpclmulqdq}) {
    EXPECT_FALSE(kNone.*feature);
  }
}

TEST(KernelSelection, LastKernels_RunOnEveryProcessor) {
  EXPECT_EQ(&allKernels().back().kernels, &kPlainKernels);
  EXPECT_TRUE(allKernels().back().runsWith({}));
}

#ifdef __linux__
TEST(KernelSelection, ReportedFeatures_AreThoseThatTheSystemLists) {
  std::ifstream list("/proc/cpuinfo");
  std::string line;
  while (std::getline(list, line) && !line.starts_with("flags")) {
  }
  std::istringstream words(line);
  const std::set<std::string> listed(std::istream_iterator<std::string>(words), {});
  ASSERT_TRUE(listed.contains("fpu")) << "the list of features: " << line;
  const tProcessorFeatures reported = reportedFeatures();
  EXPECT_EQ(reported.popcnt, listed.contains("popcnt"));
  EXPECT_EQ(reported.pclmul, listed.contains("pclmulqdq"));
  EXPECT_EQ(reported.avx2, listed.contains("avx2"));
  EXPECT_EQ(reported.avx512f, listed.contains("avx512f"));
  EXPECT_EQ(reported.avx512bw, listed.contains("avx512bw"));
  EXPECT_EQ(reported.avx512vbmi, listed.contains("avx512vbmi"));
  EXPECT_EQ(reported.avx512vbmi2, listed.contains("avx512_vbmi2"));
  EXPECT_EQ(reported.vpclmulqdq, listed.contains("vpclmulqdq"));
}
#endif

TEST(KernelSelection, ThisMachine_GetsTheFirstSupported) {
  for (const tChoice& choice : allKernels()) {
    if (choice.isSupported()) {
      EXPECT_EQ(&bestKernels(), &choice.kernels);
      return;
    }
  }
  FAIL() << "the last ones run on every processor";
}

}  // namespace
}  // namespace nTests
