#include "tools/quenra/verbs/explain.h"

#include "tools/quenra/grammar/words.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/text/numbertext.h"

namespace nCommandLine {
namespace {

int32_t codeByNumber(const std::string& text) {
  const auto code = parseStatusCode(text);
  if (!code) {
    throw tCommandError(numberFault(text, "a status code", INT32_MIN),
                        "Codes are 32-bit numbers, decimal or hexadecimal after 0x.", {});
  }
  return *code;
}

int32_t codeByConstant(const std::string& text) {
  const tStatusRow* const row = findStatus(text);
  if (row == nullptr) {
    throw tCommandError("unknown status '" + text + "'",
                        "Give a code, such as -26934, or a constant of quenra_status.h.",
                        suggestStatuses(text));
  }
  return row->code;
}

void printDocument(std::ostream& stream, const tStatusExplanation& status) {
  tJsonDocument document("explain", tExitCode::done);
  document.beginObject("status");
  document.number("code", status.code);
  document.optionalText("constant", status.constant);
  document.truth("known", status.known());
  document.text("severity", severityName(severityOf(status.code)));
  document.text("meaning", status.meaning);
  document.text("advice", status.advice);
  document.endObject();
  document.writeTo(stream);
}

void printTable(const tStreams& streams, const tStatusExplanation& status) {
  tTable table;
  table.addHeading(codeAndConstant(status.code));
  table.addRow({"  severity", std::string(severityName(severityOf(status.code)))});
  table.addRow({"  meaning", std::string(status.meaning)});
  table.addRow({"  advice", std::string(status.advice)});
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

}  // namespace

tExitCode runExplain(const tArguments& arguments, const tVerbContext& context) {
  const std::string codeOrConstant = arguments.text(nWords::kCode);
  const tStatusExplanation status =
      explainStatus(looksLikeNumber(codeOrConstant) ? codeByNumber(codeOrConstant)
                                                    : codeByConstant(codeOrConstant));
  if (context.json) {
    printDocument(context.streams.out, status);
  } else {
    printTable(context.streams, status);
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
