#include "tools/quenra/manual/roff.h"

namespace nCommandLine {
namespace {

std::string escaped(char character) {
  switch (character) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '`':
      return "\\(ga";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    default:
      return {character};
  }
}

}  // namespace

std::string roffText(std::string_view text) {
  // Roff reads a line that begins with a full stop as a request.
  std::string result = text.starts_with('.') ? "\\&" : "";
  for (const char character : text) {
    result += escaped(character);
  }
  return result;
}

std::string roffBold(std::string_view text) {
  return "\\fB" + roffText(text) + "\\fR";
}

std::string roffItalic(std::string_view text) {
  return "\\fI" + roffText(text) + "\\fR";
}

std::string roffSentences(std::string_view text) {
  constexpr std::string_view kBetween = ". ";
  std::string result;
  for (size_t end = text.find(kBetween); end != text.npos; end = text.find(kBetween)) {
    result += roffText(text.substr(0, end + 1)) + "\n";
    text.remove_prefix(end + kBetween.size());
  }
  return result + roffText(text) + "\n";
}

}  // namespace nCommandLine
