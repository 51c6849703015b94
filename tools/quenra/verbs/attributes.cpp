#include "tools/quenra/verbs/attributes.h"

#include "tools/quenra/catalogue/attributelookup.h"
#include "tools/quenra/catalogue/numbertext.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/output/tjsondocument.h"

namespace nCommandLine {
namespace {

constexpr int kIdDigits = 8;

void printTable(const tStreams& streams) {
  tTable table;
  const tSubjectRow* subject = nullptr;
  for (const tAttributeRow& row : kAttributes) {
    if (row.subject != subject) {
      subject = row.subject;
      table.addHeading(subject->title);
    }
    table.addRow({"  " + std::string(row.name), hexadecimalText(row.id, kIdDigits),
                  std::string(typeName(row.type())), std::string(row.unit),
                  std::string(row.description)});
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
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
  document.endObject();
}

void printDocument(std::ostream& stream) {
  tJsonDocument document("attributes", tExitCode::done);
  document.beginArray("attributes");
  for (const tAttributeRow& row : kAttributes) {
    writeAttribute(document, row);
  }
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
