#include "tools/quenra/routing/routeoutput.h"

#include "tools/quenra/text/utf8text.h"

namespace nCommandLine {

std::string pathText(const std::vector<std::string>& path) {
  std::string text;
  for (const std::string& terminal : path) {
    text.append(text.empty() ? "" : " -> ").append(terminal.empty() ? "?" : terminal);
  }
  return printableText(text);
}

void writeRoute(tJsonDocument& document, const tRoute& route,
                const std::vector<std::string>& path) {
  document.truth("inverted", route.inverted);
  document.number("cost", route.cost);
  document.beginArray("path");
  for (const std::string& terminal : path) {
    document.textItem(terminal);
  }
  document.endArray();
}

}  // namespace nCommandLine
