#include "tools/quenra/firmware/firmwareimage.h"

#include <rapidjson/document.h>

#include <algorithm>
#include <iterator>
#include <memory>

#include "source/user/failuresites.h"
#include "source/user/firmware/decoding/selection.h"
#include "source/user/firmware/imageformat.h"
#include "source/user/firmware/tfirmwareimageparser.h"
#include "source/user/firmware/timagetext.h"
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

  [[nodiscard]] size_t accepted() const noexcept { return records_.size(); }
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

// The parser stops at the first fault; run it again on the rest of the image. It only looks ahead,
// so it reads a section in the same way without the sections before it.
void judge(std::vector<tImageSection>& sections, std::string_view bytes) {
  size_t next = 0;
  while (next < sections.size()) {
    if (sections[next].fault) {
      ++next;
      continue;
    }
    const tParserRun run(bytes.substr(sections[next].position));
    next += run.accepted();
    if (!run.status().isError()) {
      return;
    }
    sections[next].fault = faultIn(bytes.substr(sections[next].position), run.status());
    ++next;
  }
}

void decode(tImageSection& section, const tImageText& text, size_t end) {
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
}

void setOrder(std::vector<tImageSection>& sections) {
  std::vector<tImageSection*> order;
  for (tImageSection& section : sections) {
    order.insert(section.header.isAppliedFirst() ? order.begin() : order.end(), &section);
  }
  for (size_t i = 0; i < order.size(); ++i) {
    order[i]->order = i + 1;
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

tFirmwareImage inspectImage(std::string_view bytes) {
  const tImageText text(bytes.data(), bytes.size(), bestKernels());
  tFirmwareImage image{bytes.size(), {}, readHeaders(text, bytes)};
  std::vector<tImageSection>& sections = image.sections;
  judge(sections, bytes);
  for (size_t i = 0; i < sections.size(); ++i) {
    decode(sections[i], text, i + 1 < sections.size() ? sections[i + 1].position : bytes.size());
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

}  // namespace nCommandLine
