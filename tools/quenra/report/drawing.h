#ifndef TOOLS_QUENRA_REPORT_DRAWING_H
#define TOOLS_QUENRA_REPORT_DRAWING_H

#include "tools/quenra/report/reportfacts.h"
#include "tools/quenra/report/thtml.h"

namespace nCommandLine {

// Drawings as SVG with a title and a description. They are 360 units wide, so that their texts are legible on
// a telephone; their classes are those of the style sheet.

// The chassis: the controller, its slots and the trigger lines.
[[nodiscard]] tHtml chassisDrawing(const tReportFacts& facts);
// The memory modules. Empty without modules.
[[nodiscard]] tHtml memoryDrawing(const tReportFacts& facts);

}  // namespace nCommandLine

#endif
