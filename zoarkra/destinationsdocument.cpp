#include "zoarkra/destinationsdocument.h"

namespace zoark {

bool tDestinationsDocument::value(const tJsonValue& value, size_t depth) {
  if (depth == 0) {
    return value.type == tJsonType::array || fail(kDestinationsNotArray);
  }
  if (value.type != tJsonType::string) {
    return fail(kDestinationNotString);
  }
  destinations_.push_back(terminalIdOf(topography_, value.text));
  return true;
}

}  // namespace zoark
