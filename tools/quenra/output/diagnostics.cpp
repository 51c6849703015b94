#include "tools/quenra/output/diagnostics.h"

#include "tools/commandline/utf8text.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

tSiteExplanation explanationOf(int32_t code, const std::optional<tSiteExplanation>& site) {
  const tStatusExplanation status = explainStatus(code);
  tSiteExplanation explanation = site.value_or(tSiteExplanation());
  if (explanation.meaning.empty()) {
    explanation.meaning = status.meaning;
  }
  if (explanation.advice.empty()) {
    explanation.advice = status.advice;
  }
  return explanation;
}

void printStatus(std::ostream& stream, int32_t code,
                 const std::optional<tSiteExplanation>& site = std::nullopt) {
  const tSiteExplanation explanation = explanationOf(code, site);
  stream << "  " << codeAndConstant(code) << '\n'
         << "  " << printableText(explanation.meaning) << '\n'
         << "  Advice: " << printableText(explanation.advice) << '\n';
}

std::string adviceOf(const tCommandError& error) {
  if (!error.status()) {
    return error.advice();
  }
  const std::string advice = explanationOf(*error.status(), error.site()).advice;
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
    document.text("meaning", explanationOf(*error.status(), error.site()).meaning);
  } else {
    document.null("code");
    document.null("constant");
    document.null("meaning");
  }
  document.optionalText("advice", adviceOf(error));
}

}  // namespace

void printError(std::ostream& stream, const tCommandError& error) {
  printFault(stream, "quenra", error.what());
  if (error.status()) {
    printStatus(stream, *error.status(), error.site());
  }
  printRemedy(stream, error.suggestions(), error.advice());
}

void printWarnings(std::ostream& stream, std::span<const tWarning> warnings) {
  for (const tWarning& warning : warnings) {
    stream << "quenra: warning: " << warning.about << '\n';
    printStatus(stream, warning.code);
  }
}

void writeError(tJsonDocument& document, const tCommandError& error, std::string_view command) {
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

}  // namespace nCommandLine
