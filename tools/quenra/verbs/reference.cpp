// The verbs that show the tables of attributes and of status codes.
#include <algorithm>

#include "tools/commandline/argumenttext.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

// ---- attributes ----

constexpr int kIdDigits = 8;

// Appends the settings: their subject is the last one.
template <class Visitor>
void forEachAttribute(Visitor visit) {
  std::ranges::for_each(kAttributes, visit);
  std::ranges::for_each(kSettings, visit);
}

std::string descriptionOf(const tAttributeRow& row) {
  const std::string instances = instancesText(row);
  return std::string(row.description) + (instances.empty() ? "" : "; " + instances);
}

void printAttributeTable(const tStreams& streams) {
  tTable table;
  table.addRow({"Name", "Id", "Type", "Access", "Unit", "Meaning"});
  const tSubjectRow* subject = nullptr;
  forEachAttribute([&](const tAttributeRow& row) {
    if (row.subject != subject) {
      subject = row.subject;
      table.addHeading(subject->title);
    }
    table.addRow({"  " + std::string(row.name), hexadecimalText(row.id, kIdDigits),
                  std::string(typeName(row.type())), std::string(accessName(row.access)),
                  std::string(row.unit), descriptionOf(row)});
  });
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

void writeInstanceCount(tJsonDocument& document, const tInstanceRow& instances) {
  const tAttributeRow* const counter = countingAttribute(instances);
  document.beginObject("instanceCount");
  document.number("maximum", instances.maximum);
  document.optionalText("attribute", counter == nullptr ? "" : counter->name);
  document.endObject();
}

void writeAttribute(tJsonDocument& document, const tAttributeRow& row) {
  document.beginObject();
  document.text("name", row.name);
  document.text("constant", constantOf(row));
  document.text("id", hexadecimalText(row.id, kIdDigits));
  document.text("type", typeName(row.type()));
  document.text("subject", row.subject->key);
  document.optionalText("instances", row.instances->meaning);
  document.optionalText("unit", row.unit);
  document.text("description", row.description);
  document.text("source", row.source);
  document.truth("readable", row.isReadable());
  document.truth("writable", row.isWritable());
  writeInstanceCount(document, *row.instances);
  document.endObject();
}

void printAttributes(std::ostream& stream) {
  tJsonDocument document("attributes", tExitCode::done);
  document.beginArray("attributes");
  forEachAttribute([&document](const tAttributeRow& row) { writeAttribute(document, row); });
  document.endArray();
  document.writeTo(stream);
}

// ---- explain ----

int32_t codeByNumber(const std::string& text) {
  const auto code = parseStatusCode(text);
  if (!code) {
    throw tUsageError(numberFault(text, "a status code", INT32_MIN),
                      "Codes are 32-bit numbers, decimal or hexadecimal after 0x.", {});
  }
  return *code;
}

int32_t codeByConstant(const std::string& text) {
  const tStatusRow* const row = findStatus(text);
  if (row == nullptr) {
    throw tUsageError("unknown status '" + text + "'",
                      "Give a code, such as -26934, or a constant of quenra_status.h.",
                      suggestStatuses(text));
  }
  return row->code;
}

void printStatus(std::ostream& stream, const tStatusExplanation& status) {
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

void printStatusTable(const tStreams& streams, const tStatusExplanation& status) {
  tTable table;
  table.addHeading(codeAndConstant(status.code));
  table.addRow({"  severity", std::string(severityName(severityOf(status.code)))});
  table.addRow({"  meaning", std::string(status.meaning)});
  table.addRow({"  advice", std::string(status.advice)});
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

}  // namespace

tExitCode runAttributes(const tArguments& /*arguments*/, const tVerbContext& context) {
  if (context.json) {
    printAttributes(context.streams.out);
  } else {
    printAttributeTable(context.streams);
  }
  return tExitCode::done;
}

tExitCode runExplain(const tArguments& arguments, const tVerbContext& context) {
  const std::string codeOrConstant = arguments.text(nWords::kCode);
  const tStatusExplanation status =
      explainStatus(looksLikeNumber(codeOrConstant) ? codeByNumber(codeOrConstant)
                                                    : codeByConstant(codeOrConstant));
  if (context.json) {
    printStatus(context.streams.out, status);
  } else {
    printStatusTable(context.streams, status);
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
