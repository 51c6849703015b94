#include "tools/quenra/helptext.h"

#include <algorithm>
#include <cstddef>

#include "tools/quenra/exitcode.h"

namespace nCommandLine {
namespace {

struct tExample {
  std::string_view verb;
  std::string_view command;
  std::string_view effect;
};

constexpr tExample kExamples[] = {
    {"info", "quenra info", "everything that this machine tells"},
    {"info", "quenra info --json", "the same for a program"},
    {"get", "quenra get product-name", "one attribute by its name"},
    {"get", "quenra get 0x10000100", "... and by its id"},
    {"get", "quenra get memory-size --instance 1", "the second populated memory module"},
    {"get", "quenra get firmware-version --controller", "the BIOS, not the Marten"},
    {"attributes", "quenra attributes", "what can be asked for"},
    {"explain", "quenra explain -26934", "what a code means and what to do"},
    {"explain", "quenra explain QUENRA_STATUS_BUSY", "... by its constant"},
};

constexpr size_t kCommandWidth = 42;

std::string padded(std::string_view text, size_t width) {
  std::string result(text);
  result.resize(std::max(width, result.size()), ' ');
  return result;
}

std::string examples(std::string_view verb) {
  std::string text = "Examples:\n";
  for (const tExample& example : kExamples) {
    if (verb.empty() || example.verb == verb) {
      text.append("  ").append(padded(example.command, kCommandWidth));
      text.append(example.effect).append("\n");
    }
  }
  return text;
}

std::string exitCodes() {
  std::string text = "Exit codes:";
  for (const tExitCodeRow& row : kExitCodes) {
    text.append("\n  ").append(std::to_string(exitNumber(row.code)));
    text.append("  ").append(row.meaning);
  }
  return text;
}

}  // namespace

std::string helpFooter(std::string_view verb) {
  return examples(verb) + "\n" + exitCodes();
}

}  // namespace nCommandLine
