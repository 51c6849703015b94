// The sections of a firmware image: the library's verdict on each, including those after a refused one,
// the remarks on those that it accepts, and the text of a new one.
#ifndef TOOLS_QUENRA_FIRMWARE_FIRMWAREIMAGE_H
#define TOOLS_QUENRA_FIRMWARE_FIRMWAREIMAGE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "source/user/firmware/tsectionheaders.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/output/tjsondocument.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nCommandLine {

// ---- Reading ----

// The reason why the library refuses a section of a firmware image.
struct tSectionFault {
  int32_t code = 0;
  uint32_t line = 0;        // of the site that reported the fault; 0 if unknown
  std::string_view reason;  // a sentence without its full stop
  std::string_view remedy;  // a sentence
};

// A property of a section that the library accepts although it can harm the user's machine.
struct tSectionRemark {
  std::string fact;        // a sentence without its full stop
  std::string remedy;      // a sentence
  bool isRefused = false;  // an update requires --allow-any-path
};

struct tImageSection {
  size_t position = 0;  // offset in the image, in bytes
  // A field that cannot be read, and all fields after it, are 0 or empty.
  nQUENRA1400::tSectionHeader header;
  size_t textSize = 0;  // of the encoded payload; 0 if no empty line ends the header
  // Size and CRC of the decoded payload; unset if no empty line ends the header.
  std::optional<uint64_t> byteCount;
  std::optional<uint32_t> crc;
  std::string
      sha256;  // of the decoded payload, in hexadecimal; empty unless inspectWithDigests ran
  std::optional<tSectionFault> fault;   // why the library refuses it
  std::vector<tSectionRemark> remarks;  // on a section that the library accepts
  // Position in the order of application, from 1; 0 if any section has a fault, since the library
  // then applies no section.
  size_t order = 0;
};

struct tFirmwareImage {
  size_t size = 0;
  std::string_view emptyReason;         // why the image has no section; empty if it has one
  std::vector<tImageSection> sections;  // in the order of the image

  [[nodiscard]] size_t faults() const noexcept;
  // True if an update applies the image without further options.
  [[nodiscard]] bool isValid() const noexcept;
};

// Receives the decoded payload of the section with this index, once for each section that has one. The
// payload of an accepted section is the one that the library's parser returns. The bytes are valid
// during the call only.
using tVisitPayload = std::function<void(size_t index, std::span<const uint8_t> payload)>;

[[nodiscard]] tFirmwareImage inspectImage(std::string_view bytes,
                                          const tVisitPayload& visit = nullptr);

// As above, with the SHA-256 of each payload.
[[nodiscard]] tFirmwareImage inspectWithDigests(std::string_view bytes);

struct tExtractedPayload {
  tImageSection section;
  std::string bytes;
};

// Extracts the payload of a section, numbered from 1. Throws tCommandError if the image has no such
// section or the library refuses it. `path` is that of the image, for messages.
[[nodiscard]] tExtractedPayload extractPayload(const std::string& path, std::string_view bytes,
                                               size_t number);

// The error for a file without sections, with its remedy. The library accepts such a file and marks
// the Marten as updated, so the command line must refuse it.
[[nodiscard]] tCommandError notAnImage(const std::string& path, const tFirmwareImage& image);

// The line in the description of a status; 0 if the description has none.
[[nodiscard]] uint32_t lineOf(const zoerr::Status& status);

// ---- Values of a header ----

// The reason why a file name of an image is not one plain path component; empty if it is one. The
// library joins the name to its folder, so any other name can write elsewhere with its rights.
[[nodiscard]] std::optional<std::string> faultOfFileName(std::string_view name);

// True if a text is a version that the library can compare: major.minor.update, a phase letter d, a, b
// or f, and a build number, as in 1.4.2f7.
[[nodiscard]] bool isFirmwareVersion(std::string_view text) noexcept;

// "'3.0' is not a version of the form 1.4.2f7"
[[nodiscard]] std::string notAVersion(std::string_view text);

[[nodiscard]] std::vector<tSectionRemark> remarksOn(std::string_view version,
                                                    std::string_view fileName);

// ---- Building ----

struct tNewSection {
  std::string device;
  std::string version;
  std::string fileName;  // empty for a firmware update, else a capsule
  std::string_view payload;
  size_t lineLength = 0;  // 0: the payload in one line
};

// The text of a section, with a line end at its end.
[[nodiscard]] std::string sectionText(const tNewSection& section);

// ---- Output, as text and as JSON ----

// "3 sections", "1 section"
[[nodiscard]] std::string countOf(size_t count, std::string_view one);

void printSections(const tStreams& streams, const tFirmwareImage& image);
// Requires inspectWithDigests.
void printDigests(const tStreams& streams, const tFirmwareImage& image);

// The reason why the library refuses a section, with the values that differ.
[[nodiscard]] std::string faultText(const tImageSection& section);

// Prints a message for every section that the library refuses, and for every remark.
void printFaults(std::ostream& stream, const std::string& path, const tFirmwareImage& image);

// The member "remarks" of a section.
void writeRemarks(tJsonDocument& document, const std::vector<tSectionRemark>& remarks);

// The member "image".
void writeImage(tJsonDocument& document, const std::string& path, const tFirmwareImage& image);

}  // namespace nCommandLine

#endif
