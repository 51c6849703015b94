#ifndef TOOLS_QUENRA_OUTPUT_VALUETEXT_H
#define TOOLS_QUENRA_OUTPUT_VALUETEXT_H

#include <string>
#include <string_view>

#include "tools/quenra/catalogue/attributerow.h"
#include "tools/quenra/reading/reading.h"

namespace nCommandLine {

// `row` is null for an attribute that is not in the catalogue.

// The value alone, for scripts: a text, or a decimal number.
[[nodiscard]] std::string plainValue(const tAttributeValue& value);

// The value for people: with its unit, and with the name that the catalogue has for a number.
[[nodiscard]] std::string shownValue(const tAttributeRow* row, const tAttributeValue& value);

// The unit of the number itself; empty if it has none.
[[nodiscard]] std::string_view unitOf(const tAttributeRow* row, const tAttributeValue& value);

}  // namespace nCommandLine

#endif
