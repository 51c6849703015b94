#ifndef TOOLS_QUENRA_OUTPUT_WARNING_H
#define TOOLS_QUENRA_OUTPUT_WARNING_H

#include <cstdint>
#include <string>

namespace nCommandLine {

// The library did its work and answered with a positive code.
struct tWarning {
  std::string about;  // what it was asked for
  int32_t code;
};

}  // namespace nCommandLine

#endif
