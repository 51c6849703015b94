#include "tools/quenra/output/diagnostics.h"

#include "tools/quenra/catalogue/statuslookup.h"
#include "tools/quenra/catalogue/suggestion.h"
#include "tools/quenra/output/utf8text.h"

namespace nCommandLine {
namespace {

void printStatus(std::ostream& stream, int32_t code, std::string_view remedy = {}) {
  const tStatusExplanation status = explainStatus(code);
  stream << "  " << codeAndConstant(code) << '\n'
         << "  " << status.meaning << '\n'
         << "  Advice: " << (remedy.empty() ? status.advice : remedy) << '\n';
}

std::string adviceOf(const tCommandError& error) {
  if (!error.status()) {
    return error.advice();
  }
  const std::string advice =
      error.remedy().empty() ? std::string(explainStatus(*error.status()).advice) : error.remedy();
  return error.advice().empty() ? advice : advice + " " + error.advice();
}

std::string_view causeOf(const tCommandError& error) {
  if (error.status()) {
    return "status";
  }
  return error.exitCode() == tExitCode::wrongUsage ? "usage" : "program";
}

void writeCause(tJsonDocument& document, const tCommandError& error) {
  document.text("cause", causeOf(error));
  document.text("message", error.what());
  if (error.status()) {
    document.number("code", *error.status());
    document.optionalText("constant", explainStatus(*error.status()).constant);
    document.text("meaning", explainStatus(*error.status()).meaning);
  } else {
    document.null("code");
    document.null("constant");
    document.null("meaning");
  }
  document.optionalText("advice", adviceOf(error));
}

void writeHolders(tJsonDocument& document, std::span<const tRouteHolder> holders) {
  document.beginArray("holders");
  for (const tRouteHolder& holder : holders) {
    document.beginObject();
    document.unsignedNumber("session", holder.session);
    document.number("ticket", holder.ticket);
    document.endObject();
  }
  document.endArray();
}

}  // namespace

void printError(std::ostream& stream, const tCommandError& error) {
  stream << "quenra: " << printableText(error.what()) << '\n';
  if (error.status()) {
    printStatus(stream, *error.status(), error.remedy());
  }
  if (!error.suggestions().empty()) {
    stream << "  Did you mean " << alternatives(error.suggestions()) << "?\n";
  }
  if (!error.advice().empty()) {
    stream << "  " << error.advice() << '\n';
  }
}

void printWarnings(std::ostream& stream, std::span<const tWarning> warnings) {
  for (const tWarning& warning : warnings) {
    stream << "quenra: warning: " << warning.about << '\n';
    printStatus(stream, warning.code);
  }
}

void writeErrorDocument(std::ostream& stream, const tCommandError& error,
                        std::string_view command) {
  tJsonDocument document("error", error.exitCode());
  document.optionalText("command", command);
  document.beginObject("error");
  writeCause(document, error);
  document.beginArray("suggestions");
  for (const std::string& suggestion : error.suggestions()) {
    document.textItem(suggestion);
  }
  document.endArray();
  writeHolders(document, error.holders());
  document.endObject();
  document.writeTo(stream);
}

}  // namespace nCommandLine
