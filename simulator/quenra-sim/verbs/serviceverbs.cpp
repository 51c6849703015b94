// encryption and driver-store: the operating system services.
#include <windows.h>

#include <array>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/quenra-sim/installation/installation.h"
#include "simulator/quenra-sim/verbs/verbs.h"
#include "simulator/scenario/servicescenarios.h"
#include "tools/commandline/utf8text.h"

namespace nSimulator {
namespace {

struct tEncryptionArguments {
  bool asJson = false;
  std::string failingStep;
};
tEncryptionArguments theEncryptionArguments;

void showEncryption(bool asJson) {
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

struct tDriverStoreArguments {
  bool asJson = false;
  bool clear = false;
  tDriverStoreBehaviour behaviour;
};
tDriverStoreArguments theDriverStoreArguments;

// Converts text of the process code page for standard output.
std::string utf8(const std::string& text) {
  const auto length = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  wide.resize(static_cast<size_t>(
      MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length)));
  std::string result(wide.size() * 3, '\0');
  result.resize(static_cast<size_t>(
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), result.data(),
                          static_cast<int>(result.size()), nullptr, nullptr)));
  return result;
}

const char* nameOf(tDriverStoreTool state) {
  constexpr const char* kNames[] = {"missing", "broken", "working"};
  return kNames[static_cast<size_t>(state)];
}

void showRunsAsJson(const std::vector<tDriverStoreRun>& runs) {
  const tDriverStoreBehaviour behaviour = driverStoreBehaviour();
  tJsonDocument document;
  document.begin();
  document.member("tool", nameOf(driverStoreTool()));
  document.member("seconds", behaviour.seconds);
  document.member("exitCode", behaviour.exitCode);
  document.beginList("runs");
  for (const tDriverStoreRun& run : runs) {
    document.begin();
    document.member("commandLine", utf8(run.commandLine));
    document.member("file", utf8(run.file));
    if (run.isReadable) {
      document.member("size", run.size);
      document.member("sha256", run.sha256);
    }
    document.end();
  }
  document.endList();
  document.end();
}

void showRuns(const tDriverStoreArguments& arguments) {
  const std::vector<tDriverStoreRun> runs = driverStoreRuns();
  if (arguments.asJson) {
    showRunsAsJson(runs);
  } else {
    std::cout << "the tool is " << nameOf(driverStoreTool()) << '\n';
    for (const tDriverStoreRun& run : runs) {
      std::cout << nCommandLine::printableText(utf8(run.file)) << ": ";
      if (run.isReadable) {
        std::cout << run.size << " bytes, sha256 " << run.sha256 << '\n';
      } else {
        std::cout << "not readable; the command line was '"
                  << nCommandLine::printableText(utf8(run.commandLine)) << "'\n";
      }
    }
  }
  if (arguments.clear) {
    clearDriverStoreRuns();
  }
}

void addState(CLI::App* verb, tAction& action, tDriverStoreTool state, const char* description) {
  verb->add_subcommand(nameOf(state), description)->callback([&action, state] {
    action = [state] { installDriverStoreTool(state); };
  });
}

}  // namespace

void addEncryption(CLI::App& app, tAction& action) {
  CLI::App* const verb = app.add_subcommand(
      "encryption",
      "Show or change the encryption of drive C: that the management service reports");
  verb->require_subcommand(0, 1);
  verb->add_flag("--json", theEncryptionArguments.asJson, "Print one JSON document");
  verb->callback([&action] {
    if (!action) {
      action = [] { showEncryption(theEncryptionArguments.asJson); };
    }
  });
  for (const std::string& protection : textsOf(kProtections)) {
    verb->add_subcommand(protection, "The encryption that the service reports")
        ->callback([&action, protection] {
          action = [protection] { setEncryption({protection, ""}); };
        });
  }
  CLI::App* const fail = verb->add_subcommand("fail", "Make a step of the query fail");
  fail->add_option("step", theEncryptionArguments.failingStep)
      ->required()
      ->check(wordsOf("a step", textsOf(kEncryptionSteps)));
  fail->callback([&action] {
    action = [] { setEncryption({tEncryption().protection, theEncryptionArguments.failingStep}); };
  });
}

void addDriverStore(CLI::App& app, tAction& action) {
  CLI::App* const verb = app.add_subcommand(
      "driver-store", "Show the runs of the driver-store tool, or change its behaviour");
  verb->require_subcommand(0, 1);
  verb->add_flag("--json", theDriverStoreArguments.asJson, "Print one JSON document");
  verb->add_flag("--clear", theDriverStoreArguments.clear, "Clear the record of runs afterwards");
  verb->callback([&action] {
    if (!action) {
      action = [] { showRuns(theDriverStoreArguments); };
    }
  });
  addState(verb, action, tDriverStoreTool::missing, "Remove the tool");
  addState(verb, action, tDriverStoreTool::broken,
           "Replace the tool with a file that is not a program");
  CLI::App* const working = verb->add_subcommand("working", "Install the tool");
  working->add_option("--seconds", theDriverStoreArguments.behaviour.seconds, "Duration of a run")
      ->check(between(0, 3600))
      ->capture_default_str();
  working
      ->add_option("--exit-code", theDriverStoreArguments.behaviour.exitCode,
                   "Exit code of a run; 0: success if the package is readable")
      ->capture_default_str();
  working->callback([&action] {
    action = [] {
      setDriverStoreBehaviour(theDriverStoreArguments.behaviour);
      installDriverStoreTool(tDriverStoreTool::working);
    };
  });
}

}  // namespace nSimulator
