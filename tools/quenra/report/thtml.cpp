#include "tools/quenra/report/thtml.h"

#include "tools/commandline/utf8text.h"

namespace nCommandLine {
namespace {

// Escapes the characters of tags, of references and of both kinds of quote: one function for texts and for
// values of attributes.
std::string escaped(std::string_view text) {
  std::string html;
  for (const char character : text) {
    switch (character) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += character;
    }
  }
  return html;
}

}  // namespace

tHtml& tHtml::operator<<(tShown shown) {
  html_ += escaped(printableText(shown.bytes));
  return *this;
}

}  // namespace nCommandLine
