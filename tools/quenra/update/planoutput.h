// How the plan of an update is shown.
#ifndef TOOLS_QUENRA_UPDATE_PLANOUTPUT_H
#define TOOLS_QUENRA_UPDATE_PLANOUTPUT_H

#include <ostream>
#include <vector>

#include "tools/quenra/output/streams.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/update/obstacles.h"
#include "tools/quenra/update/updateplan.h"

namespace nCommandLine {

// What is installed and what becomes of each section. `heading` stands over that.
void printPlan(const tStreams& streams, const tUpdateMachine* machine,
               const std::vector<tPlannedSection>& plan, std::string_view heading);

// Each with its code and remedy.
void printObstacles(std::ostream& stream, const std::vector<tObstacle>& obstacles);

// A line for each section that was applied.
void printApplied(std::ostream& stream, const std::vector<tPlannedSection>& plan);

// The members "installed", "sections" and "obstacles".
void writeInstalled(tJsonDocument& document, const tUpdateMachine* machine);
void writePlan(tJsonDocument& document, const std::vector<tPlannedSection>& plan);
void writeObstacles(tJsonDocument& document, const std::vector<tObstacle>& obstacles);

}  // namespace nCommandLine

#endif
