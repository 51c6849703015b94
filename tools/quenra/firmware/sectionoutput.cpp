#include "tools/quenra/firmware/firmwareimage.h"

#include "source/user/failuresites.h"
#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

constexpr int kCrcDigits = 8;

std::string orDash(const std::string& text) {
  return text.empty() ? "-" : printableText(text);
}

std::string crcText(uint32_t crc) {
  return hexadecimalText(crc, kCrcDigits);
}

// The values of the header and of the payload if they differ, else empty.
std::string difference(const tImageSection& section) {
  if (!section.byteCount || !section.crc) {
    return "";
  }
  if (*section.byteCount != section.header.byteCount) {
    return ": header " + std::to_string(section.header.byteCount) + ", payload " +
           std::to_string(*section.byteCount);
  }
  if (*section.crc != section.header.crc) {
    return ": header " + crcText(section.header.crc) + ", payload " + crcText(*section.crc);
  }
  return "";
}

// True if the payload does not match the size or the CRC of the header.
bool isAboutThePayload(const tSectionFault& fault) noexcept {
  using namespace nQUENRA1400::nImageSites;
  return fault.line == kByteCountDiffers.location.line || fault.line == kCrcDiffers.location.line;
}

std::string codeAndLine(const tSectionFault& fault) {
  const std::string code = codeAndConstant(fault.code);
  return fault.line == 0 ? code : code + ", line " + std::to_string(fault.line);
}

std::string verdictOn(const tImageSection& section) {
  if (section.fault) {
    return "refused: " + faultText(section);
  }
  std::string verdict;
  for (const tSectionRemark& remark : section.remarks) {
    verdict += verdict.empty() ? "" : "; ";
    verdict += (remark.isRefused ? "unsafe: " : "good, but ") + printableText(remark.fact);
  }
  return verdict.empty() ? "good" : verdict;
}

std::vector<std::string> cellsOf(const tImageSection& section, size_t number) {
  return {
      std::to_string(number),
      section.order == 0 ? "-" : std::to_string(section.order),
      orDash(section.header.targetDevice),
      orDash(section.header.updateType),
      orDash(section.header.version),
      orDash(section.header.targetFileName),
      section.byteCount ? std::to_string(*section.byteCount) : "-",
      section.crc ? crcText(*section.crc) : "-",
      verdictOn(section),
  };
}

void writeFault(tJsonDocument& document, const tImageSection& section) {
  if (!section.fault) {
    document.null("fault");
    return;
  }
  document.beginObject("fault");
  document.text("reason", faultText(section));
  document.text("remedy", section.fault->remedy);
  document.status("status", section.fault->code);
  document.number("line", section.fault->line);
  document.endObject();
}

template <class Number>
void writeOptional(tJsonDocument& document, std::string_view name, std::optional<Number> value) {
  if (value) {
    document.number(name, static_cast<int64_t>(*value));
  } else {
    document.null(name);
  }
}

void writeSection(tJsonDocument& document, const tImageSection& section) {
  document.beginObject();
  document.number("position", static_cast<int64_t>(section.position));
  if (section.order == 0) {
    document.null("order");
  } else {
    document.number("order", static_cast<int64_t>(section.order));
  }
  document.number("headerVersion", section.header.headerVersion);
  document.optionalText("device", section.header.targetDevice);
  document.optionalText("updateType", section.header.updateType);
  document.optionalText("version", section.header.version);
  document.optionalText("fileName", section.header.targetFileName);
  document.number("declaredByteCount", section.header.byteCount);
  document.number("declaredCrc", section.header.crc);
  document.number("textSize", static_cast<int64_t>(section.textSize));
  writeOptional(document, "byteCount", section.byteCount);
  writeOptional(document, "crc", section.crc);
  document.optionalText("sha256", section.sha256);
  writeFault(document, section);
  writeRemarks(document, section.remarks);
  document.endObject();
}

}  // namespace

std::string faultText(const tImageSection& section) {
  std::string reason(section.fault->reason);
  return isAboutThePayload(*section.fault) ? reason + difference(section) : reason;
}

std::string countOf(size_t count, std::string_view one) {
  return std::to_string(count) + " " + std::string(one) + (count == 1 ? "" : "s");
}

void printSections(const tStreams& streams, const tFirmwareImage& image) {
  tTable table;
  table.addRow(
      {"Section", "Order", "Device", "Type", "Version", "File", "Bytes", "CRC", "Verdict"});
  for (size_t i = 0; i < image.sections.size(); ++i) {
    table.addRow(cellsOf(image.sections[i], i + 1));
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

void printDigests(const tStreams& streams, const tFirmwareImage& image) {
  tTable table;
  table.addHeading("SHA-256 of the decoded payloads");
  for (size_t i = 0; i < image.sections.size(); ++i) {
    table.addRow({"  " + std::to_string(i + 1), orDash(image.sections[i].sha256)});
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

void printFaults(std::ostream& stream, const std::string& path, const tFirmwareImage& image) {
  for (size_t i = 0; i < image.sections.size(); ++i) {
    const tImageSection& section = image.sections[i];
    if (section.fault) {
      stream << "quenra: " << printableText(path) << ", section " << i + 1 << ": "
             << faultText(section) << "\n  " << codeAndLine(*section.fault)
             << "\n  Advice: " << section.fault->remedy << '\n';
    }
    for (const tSectionRemark& remark : section.remarks) {
      stream << "quenra: " << (remark.isRefused ? "" : "warning: ") << printableText(path)
             << ", section " << i + 1 << ": " << printableText(remark.fact)
             << "\n  Advice: " << remark.remedy << '\n';
    }
  }
}

void writeRemarks(tJsonDocument& document, const std::vector<tSectionRemark>& remarks) {
  document.beginArray("remarks");
  for (const tSectionRemark& remark : remarks) {
    document.beginObject();
    document.text("fact", remark.fact);
    document.text("remedy", remark.remedy);
    document.truth("refused", remark.isRefused);
    document.endObject();
  }
  document.endArray();
}

void writeImage(tJsonDocument& document, const std::string& path, const tFirmwareImage& image) {
  document.beginObject("image");
  document.text("path", path);
  document.number("size", static_cast<int64_t>(image.size));
  document.truth("valid", image.isValid());
  document.beginArray("sections");
  for (const tImageSection& section : image.sections) {
    writeSection(document, section);
  }
  document.endArray();
  document.endObject();
}

}  // namespace nCommandLine
