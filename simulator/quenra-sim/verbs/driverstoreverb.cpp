#include <windows.h>

#include <iostream>

#include "simulator/quenra-sim/installation/driverstoretool.h"
#include "simulator/quenra-sim/verbs/json.h"
#include "simulator/quenra-sim/verbs/verb.h"
#include "simulator/scenario/driverstore.h"
#include "tools/quenra/text/utf8text.h"

namespace nSimulator {
namespace {

struct tArguments {
  bool asJson = false;
  bool clear = false;
  tDriverStoreBehaviour behaviour;
};
tArguments theArguments;

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

void showAsJson(const std::vector<tDriverStoreRun>& runs) {
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

void show(const tArguments& arguments) {
  const std::vector<tDriverStoreRun> runs = driverStoreRuns();
  if (arguments.asJson) {
    showAsJson(runs);
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
    action = [state] { putDriverStoreTool(state); };
  });
}

}  // namespace

void addDriverStore(CLI::App& app, tAction& action) {
  CLI::App* const verb = app.add_subcommand(
      "driver-store", "Show the runs of the driver-store tool, or change its behaviour");
  verb->require_subcommand(0, 1);
  verb->add_flag("--json", theArguments.asJson, "Print one JSON document");
  verb->add_flag("--clear", theArguments.clear, "Forget what it was asked afterwards");
  verb->callback([&action] {
    if (!action) {
      action = [] { show(theArguments); };
    }
  });
  addState(verb, action, tDriverStoreTool::missing, "From now on the tool is not there");
  addState(verb, action, tDriverStoreTool::broken,
           "From now on the tool is a file that is no program");
  CLI::App* const working = verb->add_subcommand("working", "From now on the tool can be started");
  working->add_option("--seconds", theArguments.behaviour.seconds, "How long it takes")
      ->check(between(0, 3600))
      ->capture_default_str();
  working
      ->add_option("--exit-code", theArguments.behaviour.exitCode, "How it ends; 0: as it should")
      ->capture_default_str();
  working->callback([&action] {
    action = [] {
      setDriverStoreBehaviour(theArguments.behaviour);
      putDriverStoreTool(tDriverStoreTool::working);
    };
  });
}

}  // namespace nSimulator
