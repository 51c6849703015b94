#include <iostream>
#include <vector>

#include "simulator/quenra-sim/verbs/json.h"
#include "simulator/quenra-sim/verbs/verb.h"
#include "simulator/scenario/encryption.h"

namespace nSimulator {
namespace {

struct tArguments {
  bool asJson = false;
  std::string failingStep;
};
tArguments theArguments;

void show(bool asJson) {
  const tEncryption now = encryption();
  if (asJson) {
    tJsonDocument document;
    document.begin();
    document.member("protection", now.protection);
    document.member("failingStep", now.failingStep);
    document.end();
  } else {
    std::cout << "protection of drive C:  " << now.protection << '\n'
              << "step that fails         " << (now.failingStep.empty() ? "none" : now.failingStep)
              << '\n';
  }
}

template <size_t Count>
std::vector<std::string> textsOf(const std::array<std::string_view, Count>& texts) {
  return {texts.begin(), texts.end()};
}

}  // namespace

void addEncryption(CLI::App& app, tAction& action) {
  CLI::App* const verb = app.add_subcommand(
      "encryption", "Show or change what the management service says about drive C:");
  verb->require_subcommand(0, 1);
  verb->add_flag("--json", theArguments.asJson, "Print one JSON document");
  verb->callback([&action] {
    if (!action) {
      action = [] { show(theArguments.asJson); };
    }
  });
  for (const std::string& protection : textsOf(kProtections)) {
    verb->add_subcommand(protection, "The answer from now on")->callback([&action, protection] {
      action = [protection] { setEncryption({protection, ""}); };
    });
  }
  CLI::App* const fail = verb->add_subcommand("fail", "Make a step of asking fail from now on");
  fail->add_option("step", theArguments.failingStep)
      ->required()
      ->check(wordsOf("a step", textsOf(kEncryptionSteps)));
  fail->callback([&action] {
    action = [] { setEncryption({tEncryption().protection, theArguments.failingStep}); };
  });
}

}  // namespace nSimulator
