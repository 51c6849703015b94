// The plan and the result of an update as text and as JSON.
#ifndef TOOLS_QUENRA_UPDATE_PLANOUTPUT_H
#define TOOLS_QUENRA_UPDATE_PLANOUTPUT_H

#include <ostream>
#include <vector>

#include "tools/quenra/output/streams.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/update/obstacles.h"
#include "tools/quenra/update/updateplan.h"
#include "tools/quenra/update/updateresult.h"

namespace nCommandLine {

// The installed versions, and the action for each section in a column with that heading.
void printPlan(const tStreams& streams, const tUpdateMachine* machine,
               const std::vector<tPlannedSection>& plan, std::string_view heading);

// Each with its code and remedy.
void printObstacles(std::ostream& stream, const std::vector<tObstacle>& obstacles);

// The remarks on sections that are no obstacles.
void printRemarks(std::ostream& stream, const std::vector<tPlannedSection>& plan,
                  const tUpdateOptions& options);

// A line for each section that was planned to be applied.
void printResults(std::ostream& stream, const std::vector<tPlannedSection>& plan,
                  const tUpdateResult& result);

// The members "installed", "sections" and "obstacles".
void writeInstalled(tJsonDocument& document, const tUpdateMachine* machine);
void writePlan(tJsonDocument& document, const std::vector<tPlannedSection>& plan);
// ... with the result of each section.
void writePlan(tJsonDocument& document, const std::vector<tPlannedSection>& plan,
               const tUpdateResult& result);
void writeObstacles(tJsonDocument& document, const std::vector<tObstacle>& obstacles);

}  // namespace nCommandLine

#endif
