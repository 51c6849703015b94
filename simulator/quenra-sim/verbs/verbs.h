#ifndef SIMULATOR_QUENRA_SIM_VERBS_VERBS_H
#define SIMULATOR_QUENRA_SIM_VERBS_VERBS_H

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <CLI/CLI.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/commandline/utf8text.h"

namespace nSimulator {

// Runs quenra-sim with the arguments of `main` and returns its exit code. Unless `isWine`, every
// verb fails.
[[nodiscard]] int runProgram(int argumentCount, char** arguments, bool isWine);

// The exit codes, documented in docs/simulator.md.
enum tExitCode : int {
  kDone = 0,
  kFailed = 1,        // the machine or the system rejected a request
  kWrongUsage = 2,    // the command line is invalid
  kNotInstalled = 4,  // no simulated machine is installed
};

// A command line that is well-formed but contradicts itself or the machine.
class tUsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The action of a command line, set by the verb that is parsed.
using tAction = std::function<void()>;

// machineverbs.cpp
void addInstall(CLI::App& app, tAction& action);
void addUninstall(CLI::App& app, tAction& action);
void addWait(CLI::App& app, tAction& action);
void addStatus(CLI::App& app, tAction& action);
void addReset(CLI::App& app, tAction& action);
// scenarioverb.cpp
void addScenario(CLI::App& app, tAction& action);
// answerverbs.cpp
void addAttribute(CLI::App& app, tAction& action);
void addAnswer(CLI::App& app, tAction& action);
// requestverbs.cpp
void addPending(CLI::App& app, tAction& action);
void addRoutes(CLI::App& app, tAction& action);
void addDemote(CLI::App& app, tAction& action);
// recordverbs.cpp
void addLog(CLI::App& app, tAction& action);
void addCounters(CLI::App& app, tAction& action);
void addFirmware(CLI::App& app, tAction& action);
// serviceverbs.cpp
void addEncryption(CLI::App& app, tAction& action);
void addDriverStore(CLI::App& app, tAction& action);

// Validates an option's value: a word of the list, converted to its number. The message for any
// other word ends with the list: "'foo' is not an interface: use controller or marten".
struct tNamedNumber {
  std::string name;
  uint32_t number;
};
[[nodiscard]] CLI::Validator namesOf(std::string kind, std::vector<tNamedNumber> names);
[[nodiscard]] CLI::Validator wordsOf(std::string kind, std::vector<std::string> words);
[[nodiscard]] CLI::Validator interfaceNames();
// "5 is out of range (0 to 2)"
[[nodiscard]] CLI::Validator between(int64_t least, int64_t most);
[[nodiscard]] CLI::Validator shorterThan(size_t capacity);

// The message for a command line that the parser of `app` rejected with `error`.
[[nodiscard]] std::string usageFault(const CLI::App& app, const CLI::ParseError& error,
                                     int argumentCount, const char* const* arguments);

// Two digits for each byte.
[[nodiscard]] inline std::string hexadecimal(const uint8_t* bytes, size_t size) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0xF];
  }
  return text;
}

// Writes one JSON document to standard output on destruction.
class tJsonDocument {
 public:
  tJsonDocument() = default;
  tJsonDocument(const tJsonDocument&) = delete;
  tJsonDocument& operator=(const tJsonDocument&) = delete;
  ~tJsonDocument() { std::cout << buffer_.GetString() << '\n'; }

  void begin() { writer_.StartObject(); }
  void end() { writer_.EndObject(); }
  void beginList(const char* key) {
    writer_.Key(key);
    writer_.StartArray();
  }
  void endList() { writer_.EndArray(); }
  void member(const char* key, uint64_t value) {
    writer_.Key(key);
    writer_.Uint64(value);
  }
  void member(const char* key, const std::string& value) {
    writer_.Key(key);
    const std::string text = nCommandLine::jsonText(value);
    writer_.RawValue(text.data(), text.size(), rapidjson::kStringType);
  }

 private:
  rapidjson::StringBuffer buffer_;
  rapidjson::Writer<rapidjson::StringBuffer> writer_{buffer_};
};

}  // namespace nSimulator

#endif
