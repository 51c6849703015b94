#include <iterator>

#include "source/user/firmware/imageformat.h"
#include "tools/quenra/grammar/generatedtexts.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/verbtable.h"

namespace nCommandLine {
namespace {

using tWords = std::vector<tOfferedWord>;

template <class Rows, class Row>
void append(tWords& words, const Rows& rows, std::string_view Row::*word,
            std::string_view Row::*meaning) {
  for (const Row& row : rows) {
    words.push_back({row.*word, row.*meaning});
  }
}

tWords readable() {
  tWords words;
  append(words, kAttributes, &tAttributeRow::name, &tAttributeRow::description);
  return words;
}

tWords writable() {
  tWords words;
  for (const auto rows : {kAttributes, kSettings}) {
    for (const tAttributeRow& row : rows) {
      if (row.isWritable()) {
        words.push_back({row.name, row.description});
      }
    }
  }
  return words;
}

tWords statuses() {
  tWords words;
  append(words, kStatuses, &tStatusRow::constant, &tStatusRow::meaning);
  return words;
}

// The first words of all verbs, in the order of the table.
tWords verbs() {
  tWords words;
  for (const tVerbRow& verb : kGrammar.verbs) {
    const std::string_view first = verb.name.substr(0, verb.name.find(' '));
    const tVerbGroupRow* const group = kGrammar.findGroup(first);
    if (words.empty() || words.back().word != first) {
      words.push_back({first, group == nullptr ? verb.summary : group->summary});
    }
  }
  return words;
}

tWords actionsOf(std::string_view group) {
  tWords words;
  for (const tVerbRow& verb : kGrammar.verbs) {
    if (const std::string_view action = verb.actionIn(group); !action.empty()) {
      words.push_back({action, verb.summary});
    }
  }
  return words;
}

tWords firmwareActions() {
  return actionsOf("firmware");
}

tWords routeActions() {
  return actionsOf("route");
}

tWords shells() {
  tWords words;
  append(words, kShells, &tShellRow::name, &tShellRow::use);
  return words;
}

tWords devices() {
  namespace nImageFormat = nQUENRA1400::nImageFormat;
  return {{nImageFormat::kBios, "The BIOS of the controller"},
          {nImageFormat::kMarten, "The Marten"},
          {nImageFormat::kSafeMode, "The safe mode"}};
}

tWords terminals() {
  return {std::begin(kTerminalNames), std::end(kTerminalNames)};
}

}  // namespace

constinit const tWordSet kReadableWords{"attributes", readable};
constinit const tWordSet kWritableWords{"writable", writable};
constinit const tWordSet kStatusWords{"statuses", statuses};
constinit const tWordSet kVerbWords{"verbs", verbs};
constinit const tWordSet kFirmwareWords{"firmware", firmwareActions};
constinit const tWordSet kRouteWords{"route", routeActions};
constinit const tWordSet kShellWords{"shells", shells};
constinit const tWordSet kDeviceWords{"devices", devices};
constinit const tWordSet kTerminalWords{"terminals", terminals};

}  // namespace nCommandLine
