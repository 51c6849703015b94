#ifndef ZOAPAL_PROTONS_STATUS_TSOURCELOCATION_H
#define ZOAPAL_PROTONS_STATUS_TSOURCELOCATION_H

#include <cstdint>

namespace nZOAPALS100 {

inline constexpr const char* kComponent = "quenra";

// Identifies a site that raises an error. Users see line numbers and search for them: they are constants
// that stay when the source moves.
struct tSourceLocation {
  const char* file;
  uint32_t line;
  const char* component = kComponent;
  const char* errorConstant = nullptr;  // symbolic name of the code, if the site reports it
};

}  // namespace nZOAPALS100

#endif
