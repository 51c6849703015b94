// Sections of firmware images as text and as JSON.
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
