#include "tools/quenra/grammar/helpfooter.h"

#include <algorithm>
#include <cstddef>

#include "tools/quenra/grammar/verbtable.h"

namespace nCommandLine {
namespace {

constexpr size_t kCommandWidth = 42;

std::string exampleLine(const tExampleRow& example) {
  constexpr std::string_view kGap = "  ";
  std::string line = "  quenra ";
  line.append(example.command);
  if (line.size() > kCommandWidth) {
    line.append("\n").append(kCommandWidth, ' ');
  } else {
    line.resize(kCommandWidth, ' ');
  }
  return line.append(kGap).append(example.effect).append("\n");
}

std::string exitCodes() {
  std::string text = "\nExit codes:";
  for (const tExitCodeRow& row : kExitCodes) {
    text.append("\n  ").append(std::to_string(exitNumber(row.code)));
    text.append("  ").append(row.meaning);
  }
  return text;
}

}  // namespace

std::string helpFooter(const tVerbRow& verb) {
  std::string text = "Examples:\n";
  for (const tExampleRow& example : verb.examples) {
    text += exampleLine(example);
  }
  return text + exitCodes();
}

std::string helpFooter() {
  std::string text = "Examples:\n";
  for (const tVerbRow& verb : kVerbs) {
    text += exampleLine(verb.examples.front());
  }
  return text + exitCodes();
}

}  // namespace nCommandLine
