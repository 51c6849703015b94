#ifndef TESTS_COMPONENT_PROTONS_STATUS_DESCRIPTIONTEXT_H
#define TESTS_COMPONENT_PROTONS_STATUS_DESCRIPTIONTEXT_H

#include <string>
#include <string_view>

#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {

// The unparsed description of a status. The test fails unless the buffer is well-formed: one JSON
// text, a NUL, zero bytes, and the marker as its last byte.
std::string descriptionOf(const zoerr::Status& status);

bool isJson(std::string_view text);

}  // namespace nTests

#endif
