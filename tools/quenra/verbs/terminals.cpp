#include "tools/quenra/verbs/terminals.h"

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/routing/routingdevice.h"
#include "tools/quenra/routing/troutingsession.h"
#include "tools/quenra/text/utf8text.h"

namespace nCommandLine {
namespace {

std::string yesOrNo(bool truth) {
  return truth ? "yes" : "no";
}

std::string busLineOf(const tTerminal& terminal) {
  return terminal.busLine == tTerminal::kNoBusLine
             ? "-"
             : printableText(terminal.busType) + " " + std::to_string(terminal.busLine);
}

void printTable(const tStreams& streams, const std::vector<tTerminal>& terminals) {
  tTable table;
  table.addRow({"Terminal", "Id", "For", "External", "Owned", "Bus line"});
  for (const tTerminal& terminal : terminals) {
    table.addRow({printableText(terminal.name), std::to_string(terminal.id),
                  terminal.visibility == "public" ? "everybody" : "the controller",
                  yesOrNo(terminal.isExternal), yesOrNo(terminal.isOwned), busLineOf(terminal)});
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

void writeTerminal(tJsonDocument& document, const tTerminal& terminal) {
  document.beginObject();
  document.text("name", terminal.name);
  document.number("id", terminal.id);
  document.text("visibility", terminal.visibility);
  document.truth("external", terminal.isExternal);
  document.truth("owned", terminal.isOwned);
  document.optionalText("busType", terminal.busType);
  document.optionalText("busName", terminal.busName);
  if (terminal.busLine == tTerminal::kNoBusLine) {
    document.null("busLine");
  } else {
    document.number("busLine", terminal.busLine);
  }
  document.truth("alias", terminal.isAlias);
  document.text("canonicalName", terminal.canonicalName);
  document.truth("maskedOut", terminal.isMaskedOut);
  document.endObject();
}

void printDocument(std::ostream& stream, const std::vector<tTerminal>& terminals,
                   const std::vector<tWarning>& warnings) {
  tJsonDocument document("terminals", tExitCode::done, warnings);
  document.beginArray("terminals");
  for (const tTerminal& terminal : terminals) {
    writeTerminal(document, terminal);
  }
  document.endArray();
  document.writeTo(stream);
}

}  // namespace

tExitCode runTerminals(const tArguments& /*arguments*/, const tVerbContext& context) {
  tDemotions demotions;
  tRoutingSession session(context.ports.routing, routingDevice(context.ports.library), demotions);
  const std::vector<tTerminal> terminals = session.terminals();
  printWarnings(context.streams.error, session.warnings());
  if (context.json) {
    printDocument(context.streams.out, terminals, session.warnings());
  } else {
    printTable(context.streams, terminals);
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
