#include <algorithm>
#include <cctype>

#include "tools/commandline/utf8text.h"
#include "tools/quenra/programs/programs.h"

namespace nCommandLine {
namespace {

// Backslashes are literal unless a quote follows them: then each is doubled. The closing quote is one.
std::string quoted(std::string_view word) {
  std::string text = "\"";
  size_t backslashes = 0;
  for (const char character : word) {
    if (character == '"') {
      text.append(backslashes + 1, '\\');
    }
    backslashes = character == '\\' ? backslashes + 1 : 0;
    text += character;
  }
  return text.append(backslashes, '\\') + "\"";
}

bool requiresQuotes(std::string_view word) {
  return word.empty() || word.find_first_of(" \t\n\v\"") != std::string_view::npos;
}

// Windows ignores blanks and dots at the end of a file name.
bool isBatchFile(std::string_view name) {
  std::string file(name.substr(0, name.find_last_not_of(" .") + 1));
  std::ranges::transform(file, file.begin(),
                         [](unsigned char character) { return std::tolower(character); });
  return file.ends_with(".bat") || file.ends_with(".cmd");
}

}  // namespace

std::string commandLineOf(std::span<const std::string> words) {
  std::string text = '"' + words.front() + '"';
  for (const std::string& word : words.subspan(1)) {
    text.append(" ").append(requiresQuotes(word) ? quoted(word) : word);
  }
  return text;
}

std::string_view faultOfProgramName(std::string_view name) {
  if (name.empty()) {
    return "its name is empty";
  }
  if (!isUtf8(name)) {
    return "its name is not valid Unicode";
  }
  if (name.find('"') != std::string_view::npos) {
    return "its name has a quote";
  }
  // CreateProcess would pass the arguments to cmd.exe, which parses them by other rules.
  return isBatchFile(name) ? "it is a batch file, which only cmd.exe runs" : "";
}

}  // namespace nCommandLine
