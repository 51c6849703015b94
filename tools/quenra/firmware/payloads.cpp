#include <algorithm>
#include <array>

#include "sha256/sha256.h"
#include "tools/quenra/firmware/firmwareimage.h"

namespace nCommandLine {
namespace {

std::string sha256Of(std::span<const uint8_t> bytes) {
  constexpr size_t kMaxPart = size_t{1} << 30;  // the size of a part has 32 bits
  tSha256 hash;
  sha256Start(&hash);
  while (!bytes.empty()) {
    const auto part = bytes.first(std::min(bytes.size(), kMaxPart));
    sha256Add(&hash, part.data(), static_cast<uint32_t>(part.size()));
    bytes = bytes.subspan(part.size());
  }
  std::array<uint8_t, SHA256_SIZE> result{};
  sha256Finish(&hash, result.data());
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const uint8_t byte : result) {
    text.append({kDigits[byte >> 4], kDigits[byte & 0xF]});
  }
  return text;
}

}  // namespace

tFirmwareImage inspectWithDigests(std::string_view bytes) {
  std::vector<std::string> digests;
  tFirmwareImage image =
      inspectImage(bytes, [&digests](size_t index, std::span<const uint8_t> payload) {
        digests.resize(std::max(digests.size(), index + 1));
        digests[index] = sha256Of(payload);
      });
  for (size_t i = 0; i < digests.size(); ++i) {
    image.sections[i].sha256 = digests[i];
  }
  return image;
}

tExtractedPayload extractPayload(const std::string& path, std::string_view bytes, size_t number) {
  tExtractedPayload extracted;
  const tFirmwareImage image =
      inspectImage(bytes, [&](size_t index, std::span<const uint8_t> payload) {
        if (index + 1 == number) {
          extracted.bytes.assign(payload.begin(), payload.end());
          extracted.section.sha256 = sha256Of(payload);
        }
      });
  if (image.sections.empty()) {
    throw notAnImage(path, image);
  }
  if (number > image.sections.size()) {
    throw tCommandError(tExitCode::failure,
                        "'" + path + "' has no section " + std::to_string(number) + ", only " +
                            countOf(image.sections.size(), "section"),
                        std::nullopt, "Run 'quenra firmware inspect' to list the sections.");
  }
  const std::string digest = extracted.section.sha256;
  extracted.section = image.sections[number - 1];
  extracted.section.sha256 = digest;
  if (const auto& fault = extracted.section.fault) {
    throw tCommandError(
        tExitCode::failure,
        "section " + std::to_string(number) + " is refused: " + faultText(extracted.section),
        fault->code,
        tSiteExplanation{std::string(fault->reason) + ".", std::string(fault->remedy)});
  }
  return extracted;
}

}  // namespace nCommandLine
