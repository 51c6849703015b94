// Readings as text and as JSON. `row` is null for an attribute that is not in the table.
#ifndef TOOLS_QUENRA_READING_READINGOUTPUT_H
#define TOOLS_QUENRA_READING_READINGOUTPUT_H

#include <string>
#include <string_view>

#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/tables/attributetable.h"

namespace nCommandLine {

// The value alone, for scripts: a text, or a decimal number.
[[nodiscard]] std::string plainValue(const tAttributeValue& value);

// The value for people: with its unit, and with the name that the table has for a number.
[[nodiscard]] std::string shownValue(const tAttributeRow* row, const tAttributeValue& value);

// The unit of the number itself; empty if it has none.
[[nodiscard]] std::string_view unitOf(const tAttributeRow* row, const tAttributeValue& value);

// Each function writes members into the open object.
void writeAddress(tJsonDocument& document, const tAttributeRow* row,
                  const tAttributeAddress& address);
void writeValue(tJsonDocument& document, const tAttributeRow* row, const tAttributeValue& value);
void writeReading(tJsonDocument& document, const tAttributeRow* row, const tReading& reading);

}  // namespace nCommandLine

#endif
