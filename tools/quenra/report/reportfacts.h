// Everything that a report shows, gathered from a machine or from a capture of one.
#ifndef TOOLS_QUENRA_REPORT_REPORTFACTS_H
#define TOOLS_QUENRA_REPORT_REPORTFACTS_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/routing/troutingsession.h"
#include "tools/quenra/update/updateplan.h"

namespace nCommandLine {

// Something that the reader should act on. Texts may contain any bytes.
struct tReportWarning {
  std::string fact;    // a sentence without its full stop
  std::string detail;  // its code; often empty
  std::string remedy;  // a sentence; may be empty
};

enum class tTerminalUse : uint8_t {
  unknown,  // not a destination of routes, or not determined
  free,
  held,  // another route drives it
};

struct tTerminalFacts {
  tTerminal terminal;
  tTerminalUse use = tTerminalUse::unknown;
  std::vector<tRouteHolder> holders = {};  // of a held terminal, if they were requested
};

// The plan of an update. Not movable: the sections refer to the image, and the image to its bytes.
struct tReportPlan {
  tReportPlan(std::string imagePath, std::string imageBytes)
      : path(std::move(imagePath)), bytes(std::move(imageBytes)), image(inspectImage(bytes)) {}
  tReportPlan(const tReportPlan&) = delete;
  tReportPlan& operator=(const tReportPlan&) = delete;
  ~tReportPlan() = default;

  std::string path;
  std::string bytes;
  tFirmwareImage image;
  std::vector<tPlannedSection> sections;
  std::vector<tObstacle> obstacles;
};

struct tReportFacts {
  std::string origin;  // "this machine on 2026-03-01 14:05 UTC", "the capture rack7.json"
  std::vector<tAttributeReadings> machine;  // empty if the controller could not be opened
  std::optional<tUpdateMachine> updateMachine;
  std::vector<tTerminalFacts> terminals;  // empty if they could not be listed
  std::string whyNoTerminals;             // a sentence
  bool holdersAreKnown = false;           // they were requested
  std::unique_ptr<tReportPlan> plan;      // null without an image
  std::vector<tReportWarning> warnings;   // the most important first

  // The reading of instance 0 as a text for people; empty if it has no value.
  [[nodiscard]] std::string shown(uint32_t attribute) const;
};

// The parts of a machine that a report describes.
struct tReportSources {
  iQuenra& library;
  iUpdateFacts& updateFacts;
  iRouting* routing;  // null for a machine that is not present
  // Its terminals, as far as they are known; otherwise the routing device lists them.
  std::vector<tTerminal> terminals = {};
};

struct tReportOptions {
  std::string origin;
  // Requests the holders of held lines by attempts to reserve them. Otherwise nothing is reserved.
  bool namesHolders = false;
};

// `plan` is null without an image; it has its image only, and receives its sections and obstacles. A machine
// that cannot be opened or read is described as far as possible; the function throws nothing for it.
[[nodiscard]] tReportFacts gatherReport(const tReportSources& sources,
                                        const tReportOptions& options,
                                        std::unique_ptr<tReportPlan> plan);

// The complete page.
[[nodiscard]] std::string reportPage(const tReportFacts& facts);

}  // namespace nCommandLine

#endif
