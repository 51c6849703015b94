// The library's verdict on each section of a firmware image, including those after a refused one.
#ifndef TOOLS_QUENRA_FIRMWARE_FIRMWAREIMAGE_H
#define TOOLS_QUENRA_FIRMWARE_FIRMWAREIMAGE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "source/user/firmware/tsectionheaders.h"
#include "tools/quenra/firmware/sectionfault.h"
#include "tools/quenra/firmware/sectionremark.h"
#include "tools/quenra/output/diagnostics.h"

namespace nCommandLine {

struct tImageSection {
  size_t position = 0;  // offset in the image, in bytes
  // A field that cannot be read, and all fields after it, are 0 or empty.
  nQUENRA1400::tSectionHeader header;
  size_t textSize = 0;  // of the encoded payload; 0 if no empty line ends the header
  // Size and CRC of the decoded payload; unset if no empty line ends the header.
  std::optional<uint64_t> byteCount;
  std::optional<uint32_t> crc;
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

[[nodiscard]] tFirmwareImage inspectImage(std::string_view bytes);

// The error for a file without sections, with its remedy. The library accepts such a file and marks
// the Marten as updated, so the command line must refuse it.
[[nodiscard]] tCommandError notAnImage(const std::string& path, const tFirmwareImage& image);

}  // namespace nCommandLine

#endif
