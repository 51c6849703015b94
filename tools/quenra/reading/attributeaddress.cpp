#include "tools/quenra/reading/attributeaddress.h"

namespace nCommandLine {

std::string_view interfaceName(tInterface which) noexcept {
  switch (which) {
    case tInterface::controller:
      return "controller";
    case tInterface::marten:
      return "marten";
    case tInterface::both:
      return "both";
    case tInterface::byDefault:
      break;
  }
  return "default";
}

}  // namespace nCommandLine
