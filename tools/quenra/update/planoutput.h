// The plan and the result of an update as text and as JSON.
#ifndef TOOLS_QUENRA_UPDATE_PLANOUTPUT_H
#define TOOLS_QUENRA_UPDATE_PLANOUTPUT_H

#include <ostream>
#include <vector>

#include "tools/quenra/output/streams.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/update/updateplan.h"

namespace nCommandLine {

// Prints the installed versions, and the action for each section in a column headed `heading`.
void printPlan(const tStreams& streams, const tUpdateMachine* machine,
               const std::vector<tPlannedSection>& plan, std::string_view heading);

// Prints each obstacle with its code and remedy.
void printObstacles(std::ostream& stream, const std::vector<tObstacle>& obstacles);

// Prints the remarks that are not obstacles.
void printRemarks(std::ostream& stream, const std::vector<tPlannedSection>& plan,
                  const tUpdateOptions& options);

// Prints a line for each section that the plan applies.
void printResults(std::ostream& stream, const std::vector<tPlannedSection>& plan,
                  const tUpdateResult& result);

// Writes the members "installed", "sections" and "obstacles".
void writeInstalled(tJsonDocument& document, const tUpdateMachine* machine);
void writePlan(tJsonDocument& document, const std::vector<tPlannedSection>& plan);
// As above, with the result of each section.
void writePlan(tJsonDocument& document, const std::vector<tPlannedSection>& plan,
               const tUpdateResult& result);
void writeObstacles(tJsonDocument& document, const std::vector<tObstacle>& obstacles);

}  // namespace nCommandLine

#endif
