#ifndef TOOLS_QUENRA_FIRMWARE_IMAGEBUILDER_H
#define TOOLS_QUENRA_FIRMWARE_IMAGEBUILDER_H

#include <cstddef>
#include <string>
#include <string_view>

namespace nCommandLine {

struct tNewSection {
  std::string device;
  std::string version;
  std::string fileName;  // empty for a firmware update, else a capsule
  std::string_view payload;
  size_t lineLength = 0;  // 0: the payload in one line
};

// The text of a section, with a line end at its end.
[[nodiscard]] std::string sectionText(const tNewSection& section);

}  // namespace nCommandLine

#endif
