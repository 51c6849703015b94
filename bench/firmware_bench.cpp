// firmware_bench [MEBIBYTES]: measures decoding (payloads of 64 MiB by default), the search for
// sections and the parsing of images, and the growth of the parse time for expensive images.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/measurement.h"
#include "bench/peers.h"
#include "source/user/firmware/decoding/selection.h"
#include "source/user/firmware/tfirmwareimageparser.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace {

using nBench::fail;
using nBench::tDecoder;
using nBench::tGoal;
using nBench::tReport;
using nBench::tTable;
using nQUENRA1400::nFirmwareDecoding::tKernels;

constexpr int kRounds = 11;
constexpr const char* kCopy = "memcpy";
constexpr const char* kBytewise = "byte-wise";
constexpr const char* kOthers = "OpenSSL + Boost.CRC";
constexpr const char* kReading = "reading";

// Stores results, so that the compiler cannot optimise the work away.
volatile uint64_t seen = 0;

std::vector<const tKernels*> supportedKernels() {
  std::vector<const tKernels*> supported;
  for (const auto& choice : nQUENRA1400::nFirmwareDecoding::allKernels()) {
    if (choice.isSupported()) {
      supported.push_back(&choice.kernels);
    }
  }
  return supported;
}

// The goals apply to this size; a smaller payload may fit into a cache and be faster.
constexpr size_t kMebibytesOfGoals = 64;

// Returns a goal that only the selected kernels must reach.
std::optional<tGoal> goalOfBest(const tKernels* kernels, size_t bytes, tGoal goal) {
  const bool counts = bytes == kMebibytesOfGoals << 20 && kernels == supportedKernels().front();
  return counts ? std::optional(std::move(goal)) : std::nullopt;
}

tDecoder decoderOf(const tKernels& kernels) {
  return {kernels.name, [&kernels](const uint8_t* text, size_t length, uint8_t* data) {
            return kernels.decode(text, length, data).crc;
          }};
}

const uint8_t* bytesOf(std::string_view text) {
  return reinterpret_cast<const uint8_t*>(text.data());
}

struct tPayload {
  std::vector<uint8_t> data;
  uint32_t crc;

  explicit tPayload(size_t count)
      : data(nTests::firmwareBytes(count)), crc(nTests::firmwareCrc(data)) {}
};

// Inserts a character outside the Base64 alphabet, on average before every eighth character.
std::string withNoise(std::string_view text) {
  std::mt19937 random(5);
  std::string noisy;
  for (const char character : text) {
    if (random() % 8 == 0) {
      noisy += '!';
    }
    noisy += character;
  }
  return noisy;
}

using tGoals = std::map<std::string, tGoal>;

// Decodes into memory that was touched before, so that no page faults are measured.
void measureDecoding(tReport& report, const std::string& title, const tPayload& payload,
                     const std::string& text, bool isClean, const tGoals& goals) {
  std::vector<uint8_t> buffer(text.size());
  std::vector<tDecoder> decoders = {nBench::bytewisePair()};
  for (const tDecoder& other : nBench::otherLibraries()) {
    if (isClean || other.skipsNoise) {
      decoders.push_back(other);
    }
  }
  for (const tKernels* kernels : supportedKernels()) {
    decoders.push_back(decoderOf(*kernels));
  }
  tTable table{title, payload.data.size(), {kBytewise, kOthers, kCopy}, {}};
  table.rows.push_back({kCopy,
                        [&] {
                          std::memcpy(buffer.data(), payload.data.data(), payload.data.size());
                          seen = buffer[payload.data.size() / 2];
                        },
                        {}});
  for (const tDecoder& decoder : decoders) {
    const auto run = [&buffer, &text, decode = decoder.decode] {
      return decode(bytesOf(text), text.size(), buffer.data());
    };
    if (run() != payload.crc) {
      fail(decoder.name + " gives another CRC");
    }
    const auto goal = goals.find(decoder.name);
    const bool counts = payload.data.size() == kMebibytesOfGoals << 20 && goal != goals.end();
    table.rows.push_back({decoder.name, [run] { seen = run(); },
                          counts ? std::optional(goal->second) : std::nullopt});
  }
  report.measure(table, kRounds);
}

void measureSearch(tReport& report, const tPayload& payload, const std::string& text) {
  const uint8_t* const begin = bytesOf(text);
  const uint8_t* const end = begin + text.size();
  tTable table{"Search for the next section, wrapped text", text.size(), {kReading, "strstr"}, {}};
  table.rows.push_back({kReading, [&] { seen = nBench::readAll(begin, text.size()); }, {}});
  table.rows.push_back(
      {"strstr", [&] { seen = std::strstr(text.c_str(), "HeaderVersion::") == nullptr; }, {}});
  for (const tKernels* kernels : supportedKernels()) {
    table.rows.push_back(
        {kernels->name,
         [begin, end, kernels] { seen = kernels->findByteOrNul(begin, end, ':') == end ? 1 : 0; },
         goalOfBest(kernels, payload.data.size(), {kReading, 0.5})});
  }
  report.measure(table, kRounds);
}

void parse(const tKernels& kernels, const std::string& image) {
  nQUENRA1400::tFirmwarePayloads records;
  zoerr::tOwnedStatus status;
  nQUENRA1400::tFirmwareImageParser(kernels).Parse(records, image.data(), image.size(), status);
  if (status.code != 0 || records.empty()) {
    fail("the image is not parsed");
  }
  seen = records[0].data[records[0].byteCount / 2];
  freePayloads(records);
}

void measureParsing(tReport& report, const tPayload& payload, const std::string& image) {
  tTable table{
      "A complete parse, wrapped text, into fresh memory", payload.data.size(), {kCopy}, {}};
  table.rows.push_back(
      {kCopy, [&] { nBench::copyIntoFreshMemory(payload.data.data(), payload.data.size()); }, {}});
  for (const tKernels* kernels : supportedKernels()) {
    table.rows.push_back({kernels->name, [kernels, &image] { parse(*kernels, image); },
                          goalOfBest(kernels, payload.data.size(), {kCopy, 1 / 1.1})});
  }
  report.measure(table, kRounds);
}

// ---- Images of many sizes ----

// An image of sections that are as large as each other.
std::string imageOf(const tPayload& payload, size_t sections) {
  const size_t each = payload.data.size() / sections;
  std::string image;
  for (size_t i = 0; i < sections; ++i) {
    const auto begin = payload.data.begin() + static_cast<ptrdiff_t>(i * each);
    nTests::tFirmwareSection section("MARTEN");
    section.payload({begin, begin + static_cast<ptrdiff_t>(each)}, 76);
    image += section.text();
  }
  return image;
}

std::string sizeText(size_t bytes) {
  return bytes < 1 << 20 ? std::to_string(bytes >> 10) + " KiB"
                         : std::to_string(bytes >> 20) + " MiB";
}

void measureImage(tReport& report, size_t bytes, size_t sections) {
  const tPayload payload(bytes);
  const std::string image = imageOf(payload, sections);
  const bool isLarge = bytes >= 1 << 20;
  report.compare(
      {"parse of " + sizeText(bytes) + ", sections: " + std::to_string(sections),
       "copy into fresh memory",
       nBench::repeated([&image] { parse(*supportedKernels().front(), image); }),
       nBench::repeated(
           [&payload] { nBench::copyIntoFreshMemory(payload.data.data(), payload.data.size()); }),
       isLarge ? std::optional(nBench::tLimit{nBench::tBound::timeAtMost, 1.1}) : std::nullopt,
       bytes > 64 << 20 ? 5 : 31});
}

void measureImages(tReport& report) {
  report.section("Images of many sizes, wrapped text");
  for (const size_t bytes : {size_t{1} << 10, size_t{16} << 10, size_t{256} << 10, size_t{1} << 20,
                             size_t{16} << 20, size_t{256} << 20}) {
    measureImage(report, bytes, 1);
  }
  constexpr size_t kManySections = 10000;
  measureImage(report, 16 << 20, kManySections);
}

// Images whose sections share all text, and images whose sections all move to the front.
void measureExpensiveImages(tReport& report) {
  constexpr size_t kSections = 4000;
  constexpr double kLimit = 6;  // linear growth is 4, quadratic growth is 16
  constexpr int kFewRounds = 5;
  std::vector<nBench::tGrowingWork> works;
  for (const nTests::tExpensiveImage& kind : nTests::expensiveImages()) {
    works.push_back({kind.name, [build = kind.build](size_t sections) {
                       const auto image = std::make_shared<std::string>(build(sections));
                       return [image] { parse(*supportedKernels().front(), *image); };
                     }});
  }
  report.measureGrowth("Images made to be expensive; " + std::to_string(kSections) +
                           " sections and more (0.7 to 3.3 MB)",
                       works, kSections, kLimit, kFewRounds);
}

}  // namespace

int main(int argc, char** argv) {
  tReport report(argc, argv);
  const size_t mebibytes = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 64;
  if (mebibytes == 0 || mebibytes > 1024) {
    fail("usage: firmware_bench [MEBIBYTES], 1 to 1024");
  }
  const tPayload payload(mebibytes << 20);
  std::printf("Payload of %zu MiB; medians of %d interleaved rounds; GB = 10^9 decoded bytes\n",
              mebibytes, kRounds);
  const std::string plain = nTests::encodeBase64(payload.data);
  measureDecoding(report, "Base64 and CRC, text in one piece", payload, plain, true, {});
  measureDecoding(report, "Base64 and CRC, noise before every eighth character", payload,
                  withNoise(plain), false, {{"plain", {kBytewise, 1}}, {"AVX-512", {"AVX2", 1}}});
  nTests::tFirmwareSection section("MARTEN");
  section.payload(payload.data, 76);
  const std::string image = section.text();
  const std::string wrapped = nTests::encodeBase64(payload.data, 76);
  measureDecoding(report, "Base64 and CRC, lines of 76 characters", payload, wrapped, true,
                  {{"plain", {kCopy, 0.12}},
                   {"AVX2", {kCopy, 0.7}},
                   {"AVX2-VPCLMUL", {kCopy, 0.7}},
                   {"AVX-512", {kCopy, 0.9}}});
  measureSearch(report, payload, wrapped);
  measureParsing(report, payload, image);
  measureImages(report);
  measureExpensiveImages(report);
  return 0;
}
