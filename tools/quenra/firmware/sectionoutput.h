// How sections of firmware images are shown.
#ifndef TOOLS_QUENRA_FIRMWARE_SECTIONOUTPUT_H
#define TOOLS_QUENRA_FIRMWARE_SECTIONOUTPUT_H

#include <ostream>
#include <string>

#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/output/tjsondocument.h"

namespace nCommandLine {

// "3 sections", "1 section"
[[nodiscard]] std::string countOf(size_t count, std::string_view one);

void printSections(const tStreams& streams, const tFirmwareImage& image);

// A message for every section that is refused.
void printFaults(std::ostream& stream, const std::string& path, const tFirmwareImage& image);

// The member "image".
void writeImage(tJsonDocument& document, const std::string& path, const tFirmwareImage& image);

}  // namespace nCommandLine

#endif
