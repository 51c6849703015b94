// The words that completion offers.
#include <iterator>

#include "source/user/firmware/imageformat.h"
#include "tools/quenra/commandline.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/tables/statustable.h"

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

tWords subjects() {
  tWords words;
  for (const tSubjectRow* const subject : kSubjects) {
    words.push_back({subject->key, subject->title});
  }
  return words;
}

tWords statuses() {
  tWords words;
  append(words, kStatuses, &tStatusRow::constant, &tStatusRow::meaning);
  return words;
}

tWords verbs() {
  return kGrammar.verbWords();
}

tWords firmwareActions() {
  return kGrammar.actionWords("firmware");
}

tWords routeActions() {
  return kGrammar.actionWords("route");
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

tWords formats() {
  return {{kOpenMetrics, "OpenMetrics 1.0.0"},
          {kPrometheusText, "The text format of Prometheus, for text file collectors"}};
}

}  // namespace

constinit const tWordSet kReadableWords{"attributes", readable};
constinit const tWordSet kWritableWords{"writable", writable};
constinit const tWordSet kSubjectWords{"subjects", subjects};
constinit const tWordSet kStatusWords{"statuses", statuses};
constinit const tWordSet kVerbWords{"verbs", verbs};
constinit const tWordSet kFirmwareWords{"firmware", firmwareActions};
constinit const tWordSet kRouteWords{"route", routeActions};
constinit const tWordSet kDeviceWords{"devices", devices};
constinit const tWordSet kTerminalWords{"terminals", terminals};
constinit const tWordSet kFormatWords{"formats", formats};

}  // namespace nCommandLine
