// The names of positionals and options, shared by the rows and the verbs that read them.
#ifndef TOOLS_QUENRA_GRAMMAR_WORDS_H
#define TOOLS_QUENRA_GRAMMAR_WORDS_H

#include <string_view>

namespace nCommandLine {

inline constexpr std::string_view kEndOfOptions = "--";

namespace nWords {
inline constexpr std::string_view kAction = "action";
inline constexpr std::string_view kAttribute = "attribute";
inline constexpr std::string_view kCode = "code";
inline constexpr std::string_view kImage = "image";
inline constexpr std::string_view kPayload = "payload";
inline constexpr std::string_view kShell = "shell";
inline constexpr std::string_view kValue = "value";
inline constexpr std::string_view kVerb = "verb";

inline constexpr std::string_view kAllowAnyPath = "--allow-any-path";
inline constexpr std::string_view kAppend = "--append";
inline constexpr std::string_view kBoth = "--both";
inline constexpr std::string_view kController = "--controller";
inline constexpr std::string_view kDevice = "--device";
inline constexpr std::string_view kFileName = "--file-name";
inline constexpr std::string_view kFirmwareVersion = "--firmware-version";
inline constexpr std::string_view kFor = "--for";
inline constexpr std::string_view kForce = "--force";
inline constexpr std::string_view kFrom = "--from";
inline constexpr std::string_view kHelp = "--help";
inline constexpr std::string_view kInstance = "--instance";
inline constexpr std::string_view kInvert = "--invert";
inline constexpr std::string_view kJson = "--json";
inline constexpr std::string_view kLineLength = "--line-length";
inline constexpr std::string_view kManual = "--manual";
inline constexpr std::string_view kMarten = "--marten";
inline constexpr std::string_view kNoWait = "--no-wait";
inline constexpr std::string_view kOnlyNewer = "--only-newer";
inline constexpr std::string_view kOutput = "--output";
inline constexpr std::string_view kPlan = "--plan";
inline constexpr std::string_view kTo = "--to";
inline constexpr std::string_view kVersion = "--version";
}  // namespace nWords

}  // namespace nCommandLine

#endif
