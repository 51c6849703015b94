// What the library makes of a firmware image, section by section, those behind a refused one too.
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
#include "tools/quenra/tcommanderror.h"

namespace nCommandLine {

struct tImageSection {
  size_t position = 0;  // where it starts in the image, in bytes
  // What cannot be read, and what follows it, is 0 or empty.
  nQUENRA1400::tSectionHeader header;
  size_t textSize = 0;  // of the payload as it stands in the image; 0 where it has no beginning
  // What the payload decodes to; nothing where it has no beginning.
  std::optional<uint64_t> byteCount;
  std::optional<uint32_t> crc;
  std::optional<tSectionFault> fault;   // why the library refuses it
  std::vector<tSectionRemark> remarks;  // on a section that the library accepts
  // Its place in the order of application, from 1; 0 while the image has a fault, which keeps all of
  // it from being applied.
  size_t order = 0;
};

struct tFirmwareImage {
  size_t size = 0;
  std::string_view emptyReason;         // why there is no section; empty when there is one
  std::vector<tImageSection> sections;  // as they follow each other in the image

  [[nodiscard]] size_t faults() const noexcept;
  // True if an update applies the image without further options.
  [[nodiscard]] bool isValid() const noexcept;
};

[[nodiscard]] tFirmwareImage inspectImage(std::string_view bytes);

// Why a file without sections is not an image, and what to do. The library accepts such a file, and an
// update with it marks the Marten as updated.
[[nodiscard]] tCommandError notAnImage(const std::string& path, const tFirmwareImage& image);

}  // namespace nCommandLine

#endif
