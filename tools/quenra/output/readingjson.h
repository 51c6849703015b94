#ifndef TOOLS_QUENRA_OUTPUT_READINGJSON_H
#define TOOLS_QUENRA_OUTPUT_READINGJSON_H

#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/tables/attributetable.h"

namespace nCommandLine {

// Each function writes members into the open object. `row` is null for an attribute that is not in
// the table.

void writeAddress(tJsonDocument& document, const tAttributeRow* row,
                  const tAttributeAddress& address);
void writeValue(tJsonDocument& document, const tAttributeRow* row, const tAttributeValue& value);
void writeReading(tJsonDocument& document, const tAttributeRow* row, const tReading& reading);

}  // namespace nCommandLine

#endif
