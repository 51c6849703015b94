#include "tools/quenra/verbs/attributes.h"

#include <algorithm>

#include "tools/quenra/output/table.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/text/numbertext.h"

namespace nCommandLine {
namespace {

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

void printTable(const tStreams& streams) {
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
  document.number("maximum", instances.most);
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

void printDocument(std::ostream& stream) {
  tJsonDocument document("attributes", tExitCode::done);
  document.beginArray("attributes");
  forEachAttribute([&document](const tAttributeRow& row) { writeAttribute(document, row); });
  document.endArray();
  document.writeTo(stream);
}

}  // namespace

tExitCode runAttributes(const tArguments& /*arguments*/, const tVerbContext& context) {
  if (context.json) {
    printDocument(context.streams.out);
  } else {
    printTable(context.streams);
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
