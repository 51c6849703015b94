#ifndef TOOLS_QUENRA_FIRMWARE_SECTIONFAULT_H
#define TOOLS_QUENRA_FIRMWARE_SECTIONFAULT_H

#include <cstdint>
#include <string_view>

#include "zoapal/protons/status/zoerrstatus.h"

namespace nCommandLine {

// The reason why the library refuses a section of a firmware image.
struct tSectionFault {
  int32_t code = 0;
  uint32_t line = 0;        // of the site that reported the fault; 0 if unknown
  std::string_view reason;  // a sentence without its full stop
  std::string_view remedy;  // a sentence
};

// The line in the description of a status; 0 if the description has none.
[[nodiscard]] uint32_t lineOf(const zoerr::Status& status);

// `status` holds an error.
[[nodiscard]] tSectionFault faultOf(const zoerr::Status& status);

}  // namespace nCommandLine

#endif
