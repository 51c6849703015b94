#include "tools/quenra/firmware/sectionoutput.h"

#include "tools/quenra/catalogue/numbertext.h"
#include "tools/quenra/catalogue/statuslookup.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/output/utf8text.h"

namespace nCommandLine {
namespace {

constexpr int kCrcDigits = 8;

std::string orDash(const std::string& text) {
  return text.empty() ? "-" : printableText(text);
}

std::string crcText(uint32_t crc) {
  return hexadecimalText(crc, kCrcDigits);
}

// What the header says and what the payload is, where they differ.
std::string difference(const tImageSection& section) {
  if (!section.byteCount || !section.crc) {
    return "";
  }
  if (*section.byteCount != section.header.byteCount) {
    return ": " + std::to_string(*section.byteCount) + ", not " +
           std::to_string(section.header.byteCount);
  }
  if (*section.crc != section.header.crc) {
    return ": " + crcText(*section.crc) + ", not " + crcText(section.header.crc);
  }
  return "";
}

bool isAboutThePayload(const tSectionFault& fault) noexcept {
  constexpr uint32_t kByteCountDiffers = 241;
  constexpr uint32_t kCrcDiffers = 258;
  return fault.line == kByteCountDiffers || fault.line == kCrcDiffers;
}

std::string reasonOf(const tImageSection& section) {
  std::string reason(section.fault->reason);
  return isAboutThePayload(*section.fault) ? reason + difference(section) : reason;
}

std::string codeAndLine(const tSectionFault& fault) {
  const std::string code = codeAndConstant(fault.code);
  return fault.line == 0 ? code : code + ", line " + std::to_string(fault.line);
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
      section.fault ? "refused: " + reasonOf(section) : "good",
  };
}

void writeFault(tJsonDocument& document, const tImageSection& section) {
  if (!section.fault) {
    document.null("fault");
    return;
  }
  document.beginObject("fault");
  document.text("reason", reasonOf(section));
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
  writeFault(document, section);
  document.endObject();
}

}  // namespace

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

void printFaults(std::ostream& stream, const std::string& path, const tFirmwareImage& image) {
  for (size_t i = 0; i < image.sections.size(); ++i) {
    const tImageSection& section = image.sections[i];
    if (section.fault) {
      stream << "quenra: " << printableText(path) << ", section " << i + 1 << ": "
             << reasonOf(section) << "\n  " << codeAndLine(*section.fault)
             << "\n  Advice: " << section.fault->remedy << '\n';
    }
  }
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
