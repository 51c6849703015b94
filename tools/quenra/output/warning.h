#ifndef TOOLS_QUENRA_OUTPUT_WARNING_H
#define TOOLS_QUENRA_OUTPUT_WARNING_H

#include <cstdint>
#include <string>

namespace nCommandLine {

// An operation of the library that succeeded with a positive code.
struct tWarning {
  std::string about;  // the operation: "the update"
  int32_t code;
};

}  // namespace nCommandLine

#endif
