// Messages for the error stream, and the error document that --json prints.
#ifndef TOOLS_QUENRA_OUTPUT_DIAGNOSTICS_H
#define TOOLS_QUENRA_OUTPUT_DIAGNOSTICS_H

#include <ostream>
#include <span>
#include <string_view>

#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/output/warning.h"
#include "tools/quenra/tcommanderror.h"

namespace nCommandLine {

void printError(std::ostream& stream, const tCommandError& error);
void printWarnings(std::ostream& stream, std::span<const tWarning> warnings);

// Writes the members of an error document. `command` is the verb, empty if none was recognised.
void writeError(tJsonDocument& document, const tCommandError& error, std::string_view command);
// Writes a complete document that has only these members.
void writeErrorDocument(std::ostream& stream, const tCommandError& error, std::string_view command);

}  // namespace nCommandLine

#endif
