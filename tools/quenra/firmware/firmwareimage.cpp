#include "tools/quenra/firmware/firmwareimage.h"

#include <rapidjson/document.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <deque>
#include <iterator>
#include <memory>

#include "source/user/failuresites.h"
#include "source/user/firmware/decoding/plainsteps.h"
#include "source/user/firmware/decoding/selection.h"
#include "source/user/firmware/imageformat.h"
#include "source/user/firmware/tfirmwareimageparser.h"
#include "source/user/firmware/timagetext.h"
#include "source/user/update/updateplan.h"
#include "tools/commandline/argumenttext.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

namespace nImageFormat = nQUENRA1400::nImageFormat;
namespace nImageSites = nQUENRA1400::nImageSites;
using nQUENRA1400::tFirmwareImageParser;
using nQUENRA1400::tFirmwarePayloads;
using nQUENRA1400::tImageText;
using nQUENRA1400::tSectionHeaders;
using nQUENRA1400::nFirmwareDecoding::bestKernels;

// Runs the parser and owns its records.
class tParserRun {
 public:
  explicit tParserRun(std::string_view bytes) {
    tFirmwareImageParser().Parse(records_, bytes.data(), bytes.size(), status_);
  }
  tParserRun(const tParserRun&) = delete;
  tParserRun& operator=(const tParserRun&) = delete;
  ~tParserRun() { nQUENRA1400::freePayloads(records_); }

  // In the order of application.
  [[nodiscard]] const tFirmwarePayloads& records() const noexcept { return records_; }
  [[nodiscard]] const zoerr::Status& status() const noexcept { return status_; }

 private:
  tFirmwarePayloads records_;
  zoerr::tOwnedStatus status_;
};

// One row for each error that docs/firmware-image.md lists.
struct tFaultText {
  const nQUENRA1400::tFailureSite& site;
  std::string_view reason;
  std::string_view remedy;
};
// clang-format off
constexpr tFaultText kFaults[] = {
    {nImageSites::kUnknownHeaderVersion, "HeaderVersion is not 1",
     "Use a newer version of the library, or an older image."},
    {nImageSites::kUnknownUpdateType, "UpdateType is neither FWUpdate nor CapsuleUpdate",
     "Values are case-sensitive, and nothing may follow them."},
    {nImageSites::kUnknownTargetDevice, "TargetDevice is not BIOS, MARTEN or SAFEMODE",
     "Values are case-sensitive, and nothing may follow them."},
    {nImageSites::kPayloadNotAllocated, "the empty line that ends the header is missing, or memory for the payload is short",
     "End the header with an empty line; lines end in CR LF."},
    {nImageSites::kByteCountDiffers, "the payload does not decode to ByteCount bytes",
     "Fetch the image again: it was truncated or changed, or its header is not terminated."},
    {nImageSites::kCrcDiffers, "CRC mismatch",
     "Fetch the image again: it was changed, or built with another CRC."},
    {nImageSites::kNumberEmpty, "a number of the header is empty",
     "Give HeaderVersion, CRC and ByteCount a number."},
    {nImageSites::kNumberNotDelimited, "a number of the header is missing, or its line does not end",
     "Give the section HeaderVersion, CRC and ByteCount; lines end in CR LF."},
    {nImageSites::kTextMissing, "a text of the header is missing",
     "Give the section UpdateType, Version and TargetDevice, and a BIOS capsule TargetFileName."},
    {nImageSites::kTextEmpty, "a text of the header is empty",
     "Give UpdateType, Version, TargetDevice and TargetFileName a value."},
    {nImageSites::kQuoteNotClosed, "a double quote of the header is not closed",
     "Close it, or remove both."},
};
// clang-format on

// `status` holds an error.
tSectionFault faultOf(const zoerr::Status& status) {
  const uint32_t line = lineOf(status);
  const auto* const row = std::ranges::find_if(kFaults, [&](const tFaultText& fault) {
    return fault.site.code == status.code && fault.site.location.line == line;
  });
  if (row != std::end(kFaults)) {
    return {status.code, line, row->reason, row->remedy};
  }
  const tStatusExplanation explanation = explainStatus(status.code);
  return {status.code, line, explanation.meaning, explanation.advice};
}

constexpr tSectionFault kLineFeeds{0, 0, "header lines end in LF; CR LF is required",
                                   "Convert the line ends of the image to CR LF."};

// True if the first line of a section ends in LF alone. The parser then reports a missing number or
// a wrong value, which would mislead the user.
bool endsInLineFeed(std::string_view section) {
  const size_t end = section.find('\n');
  return end != std::string_view::npos && end > 0 && section[end - 1] != '\r';
}

tSectionFault faultIn(std::string_view section, const zoerr::Status& status) {
  tSectionFault fault = faultOf(status);
  if (endsInLineFeed(section)) {
    fault.reason = kLineFeeds.reason;
    fault.remedy = kLineFeeds.remedy;
  }
  return fault;
}

std::vector<tImageSection> readHeaders(const tImageText& text, std::string_view bytes) {
  std::vector<tImageSection> sections;
  tSectionHeaders headers(text);
  for (size_t position = headers.findSection(0); position != tImageText::kNotFound;
       position = headers.findSection(position + 1)) {
    zoerr::tOwnedStatus unreadable;
    tImageSection section;
    section.position = position;
    section.header = headers.read(position, unreadable);
    if (unreadable.isError()) {
      section.fault = faultIn(bytes.substr(position), unreadable);
    }
    sections.push_back(std::move(section));
  }
  return sections;
}

// The indices of `count` sections from `first` on, in the order of application.
std::deque<size_t> orderOf(const std::vector<tImageSection>& sections, size_t first, size_t count) {
  std::deque<size_t> order;
  for (size_t i = first; i < first + count; ++i) {
    order.insert(sections[i].header.isAppliedFirst() ? order.begin() : order.end(), i);
  }
  return order;
}

// The parser stops at the first fault; run it again on the rest of the image. It only looks ahead,
// so it reads a section in the same way without the sections before it.
void judge(std::vector<tImageSection>& sections, std::string_view bytes,
           const tVisitPayload& visit) {
  size_t next = 0;
  while (next < sections.size()) {
    if (sections[next].fault) {
      ++next;
      continue;
    }
    const tParserRun run(bytes.substr(sections[next].position));
    const std::deque<size_t> accepted = orderOf(sections, next, run.records().size());
    for (size_t i = 0; visit && i < accepted.size(); ++i) {
      visit(accepted[i], {run.records()[i].data, run.records()[i].byteCount});
    }
    next += accepted.size();
    if (!run.status().isError()) {
      return;
    }
    sections[next].fault = faultIn(bytes.substr(sections[next].position), run.status());
    ++next;
  }
}

// Decodes the payload of a refused section, which the decoder accepts nevertheless.
void decode(std::vector<tImageSection>& sections, size_t index, const tImageText& text,
            const tVisitPayload& visit) {
  tImageSection& section = sections[index];
  const size_t end = index + 1 < sections.size() ? sections[index + 1].position : text.size();
  const size_t headerEnd = text.find(nImageFormat::kHeaderEnd, section.position);
  if (headerEnd == tImageText::kNotFound || headerEnd + nImageFormat::kHeaderEnd.size() > end) {
    return;
  }
  const size_t start = headerEnd + nImageFormat::kHeaderEnd.size();
  section.textSize = end - start;
  if (!section.fault) {
    section.byteCount = section.header.byteCount;
    section.crc = section.header.crc;
    return;
  }
  // The decoder may write as many bytes as the text has characters.
  const auto data = std::make_unique_for_overwrite<uint8_t[]>(section.textSize + 1);
  const auto decoded = bestKernels().decode(text.bytes() + start, section.textSize, data.get());
  section.byteCount = decoded.byteCount;
  section.crc = decoded.crc;
  if (visit) {
    visit(index, {data.get(), decoded.byteCount});
  }
}

void setOrder(std::vector<tImageSection>& sections) {
  const std::deque<size_t> order = orderOf(sections, 0, sections.size());
  for (size_t i = 0; i < order.size(); ++i) {
    sections[order[i]].order = i + 1;
  }
}

constexpr std::string_view kUtf16 = "the file appears to be UTF-16; an image is plain ASCII text";

bool isUtf16(std::string_view bytes) {
  using namespace std::string_view_literals;
  return bytes.starts_with("\xFF\xFE"sv) || bytes.starts_with("\xFE\xFF"sv) ||
         bytes.find("H\0e\0a\0d\0e\0r\0"sv) != std::string_view::npos;
}

std::string_view reasonOfNoSection(std::string_view bytes) {
  return bytes.empty()    ? "the file is empty"
         : isUtf16(bytes) ? kUtf16
                          : "the file has no 'HeaderVersion::'";
}

constexpr std::string_view kDevices[] = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$", "CLOCK$"};
constexpr std::string_view kNumberedDevices[] = {"COM", "LPT"};
// Windows also accepts the superscript digits 1 to 3: here in the system code page and in UTF-8.
constexpr std::string_view kDeviceNumbers[] = {
    "0", "1", "2",    "3",    "4",    "5",        "6",        "7",
    "8", "9", "\xB9", "\xB2", "\xB3", "\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};

bool isControl(char character) noexcept {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F;
}

// The part that Windows compares with device names: "nul.txt" and "NUL .x" also open the device.
std::string stemOf(std::string_view name) {
  std::string stem(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  std::ranges::transform(stem, stem.begin(),
                         [](unsigned char character) { return std::toupper(character); });
  return stem;
}

bool isDeviceName(std::string_view name) {
  const std::string stem = stemOf(name);
  const bool isNumbered =
      std::ranges::count(kNumberedDevices, stem.substr(0, 3)) != 0 &&
      std::ranges::count(kDeviceNumbers,
                         std::string_view(stem).substr(std::min<size_t>(3, stem.size()))) != 0;
  return isNumbered || std::ranges::count(kDevices, stem) != 0;
}

bool isDigit(char character) noexcept {
  return character >= '0' && character <= '9';
}

namespace nImageFormat = nQUENRA1400::nImageFormat;
using nImageFormat::kLineEnd;

constexpr size_t kGroupBytes = 3;
constexpr size_t kGroupCharacters = 4;

void appendGroup(std::string& text, std::string_view group) {
  uint32_t bits = 0;
  for (size_t i = 0; i < kGroupBytes; ++i) {
    bits = bits << 8 | (i < group.size() ? static_cast<uint8_t>(group[i]) : 0U);
  }
  for (size_t i = 0; i < kGroupCharacters; ++i) {
    const uint32_t sextet = bits >> (18 - 6 * i) & 0x3F;
    text += i <= group.size() ? nQUENRA1400::nFirmwareDecoding::kBase64Alphabet[sextet] : '=';
  }
}

std::string base64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() / kGroupBytes + 1) * kGroupCharacters);
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kGroupBytes, bytes.size()))) {
    appendGroup(text, bytes.substr(0, kGroupBytes));
  }
  return text;
}

std::string wrapped(std::string_view text, size_t lineLength) {
  const size_t length = lineLength == 0 ? std::max<size_t>(text.size(), 1) : lineLength;
  std::string lines;
  lines.reserve(text.size() + (text.size() / length + 1) * kLineEnd.size());
  for (; !text.empty(); text.remove_prefix(std::min(length, text.size()))) {
    lines.append(text.substr(0, length)).append(kLineEnd);
  }
  return lines;
}

// The CRC of the decoded payload, computed by the library's own decoder.
uint32_t crcOf(std::string_view encoded) {
  const auto data = std::make_unique_for_overwrite<uint8_t[]>(encoded.size() + 1);
  const auto* const text = reinterpret_cast<const uint8_t*>(encoded.data());
  return nQUENRA1400::nFirmwareDecoding::bestKernels().decode(text, encoded.size(), data.get()).crc;
}

}  // namespace

uint32_t lineOf(const zoerr::Status& status) {
  rapidjson::Document description;
  description.Parse(status.description == nullptr ? "" : status.description);
  const bool hasLine = !description.HasParseError() && description.IsObject() &&
                       description.HasMember("line") && description["line"].IsUint();
  return hasLine ? description["line"].GetUint() : 0;
}

size_t tFirmwareImage::faults() const noexcept {
  return static_cast<size_t>(std::ranges::count_if(
      sections, [](const tImageSection& section) { return section.fault.has_value(); }));
}

bool tFirmwareImage::isValid() const noexcept {
  const auto isRefused = [](const tImageSection& section) {
    return section.fault || std::ranges::any_of(section.remarks, &tSectionRemark::isRefused);
  };
  return !sections.empty() && std::ranges::none_of(sections, isRefused);
}

tFirmwareImage inspectImage(std::string_view bytes, const tVisitPayload& visit) {
  const tImageText text(bytes.data(), bytes.size(), bestKernels());
  tFirmwareImage image{bytes.size(), {}, readHeaders(text, bytes)};
  std::vector<tImageSection>& sections = image.sections;
  judge(sections, bytes, visit);
  for (size_t i = 0; i < sections.size(); ++i) {
    decode(sections, i, text, visit);
  }
  for (tImageSection& section : sections) {
    section.remarks = remarksOn(section.header.version, section.header.targetFileName);
  }
  if (image.faults() == 0) {
    setOrder(sections);
  }
  if (sections.empty()) {
    image.emptyReason = reasonOfNoSection(bytes);
  }
  return image;
}

tCommandError notAnImage(const std::string& path, const tFirmwareImage& image) {
  return {tExitCode::failure,
          "'" + path + "' is not a firmware image: " + std::string(image.emptyReason), std::nullopt,
          image.emptyReason == kUtf16 ? "Save the image as ASCII, with line ends of CR LF."
                                      : "Check the name of the file, or fetch the image again."};
}

std::optional<std::string> faultOfFileName(std::string_view name) {
  if (name.find_first_of("/\\") != std::string_view::npos) {
    return "it has a path separator";
  }
  if (name.find(':') != std::string_view::npos) {
    return "it has a colon";
  }
  if (name == "." || name == "..") {
    return "it names a folder";
  }
  if (std::ranges::any_of(name, isControl)) {
    return "it has a control character";
  }
  if (name.find_first_of("<>\"|?*") != std::string_view::npos) {
    return "it has a character that Windows does not allow";
  }
  if (name.ends_with('.') || name.ends_with(' ')) {
    return "it ends in a dot or a blank, which Windows removes";
  }
  if (isDeviceName(name)) {
    return "it names a device of Windows";
  }
  if (name.find(nQUENRA1400::nImageFormat::kDriverPackage) != std::string_view::npos &&
      name.find(' ') != std::string_view::npos) {
    return "it has a blank, which splits the command line of the driver-store tool";
  }
  return std::nullopt;
}

bool isFirmwareVersion(std::string_view text) noexcept {
  // The library ignores characters after the build number.
  const size_t phase = text.find_first_of("dabf");
  return nQUENRA1400::packedVersion(text) != 0 &&
         std::ranges::all_of(text.substr(phase + 1), isDigit);
}

std::string notAVersion(std::string_view text) {
  return "'" + std::string(text) + "' is not a version of the form 1.4.2f7";
}

std::vector<tSectionRemark> remarksOn(std::string_view version, std::string_view fileName) {
  std::vector<tSectionRemark> remarks;
  if (const auto fault = faultOfFileName(fileName)) {
    remarks.push_back({"the file name '" + std::string(fileName) + "' is not plain: " + *fault,
                       "Use an image from a source that you trust; --allow-any-path applies it.",
                       true});
  }
  if (!version.empty() && !isFirmwareVersion(version)) {
    const bool isOldest = nQUENRA1400::packedVersion(version) == 0;
    remarks.push_back({notAVersion(version) + (isOldest ? " and counts as the oldest" : ""),
                       "Build the section with a version of the form major.minor.update, a phase "
                       "letter (d, a, b or f) and a build number."});
  }
  return remarks;
}

std::string sectionText(const tNewSection& section) {
  const std::string payload = base64(section.payload);
  std::string text;
  const auto line = [&text](std::string_view key, std::string_view value) {
    text.append(key).append(value).append(kLineEnd);
  };
  line(nImageFormat::kHeaderVersionKey, std::to_string(nImageFormat::kHeaderVersion));
  line(nImageFormat::kUpdateTypeKey,
       section.fileName.empty() ? nImageFormat::kFirmwareUpdate : nImageFormat::kCapsuleUpdate);
  line(nImageFormat::kVersionKey.substr(1), section.version);
  line(nImageFormat::kTargetDeviceKey, section.device);
  if (!section.fileName.empty()) {
    line(nImageFormat::kTargetFileNameKey, section.fileName);
  }
  line(nImageFormat::kCrcKey, hexadecimalText(crcOf(payload), 8));
  line(nImageFormat::kByteCountKey, std::to_string(section.payload.size()));
  return text.append(kLineEnd).append(wrapped(payload, section.lineLength));
}

}  // namespace nCommandLine
