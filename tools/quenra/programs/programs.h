// Starting a program while a route is connected. Tests replace the interfaces.
#ifndef TOOLS_QUENRA_PROGRAMS_PROGRAMS_H
#define TOOLS_QUENRA_PROGRAMS_PROGRAMS_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

namespace nCommandLine {

// A running program. The destructor ends it, with all processes that it has started, unless it has ended
// by itself: processes that such a program left running continue.
class iProgram {
 public:
  iProgram() = default;
  iProgram(const iProgram&) = delete;
  iProgram& operator=(const iProgram&) = delete;
  virtual ~iProgram() = default;

  // Waits at most `time`. Returns the exit code if the program has ended.
  [[nodiscard]] virtual std::optional<uint32_t> wait(std::chrono::milliseconds time) noexcept = 0;
  // Sends Ctrl-Break to the program and the processes of its group. False if the system cannot.
  [[nodiscard]] virtual bool requestEnd() noexcept = 0;
  // Ends the program and all processes that it has started, also after the program itself has ended.
  virtual void terminate() noexcept = 0;
};

enum class tProgramOutput : uint8_t {
  inherited,
  toErrorStream,  // the program's standard output goes to the error stream
};

class iPrograms {
 public:
  iPrograms() = default;
  iPrograms(const iPrograms&) = delete;
  iPrograms& operator=(const iPrograms&) = delete;
  virtual ~iPrograms() = default;

  // Starts a program with its arguments, which are UTF-8. The program inherits the standard streams and
  // no other handle. Returns null with the system's reason on failure.
  [[nodiscard]] virtual std::unique_ptr<iProgram> start(std::span<const std::string> words,
                                                        tProgramOutput output,
                                                        std::error_code& failure) = 0;
};

// The command line from which a program, by the rules of CommandLineToArgvW and of the C runtime, parses
// these words. Precondition: no quote in the first word, which has no escape for it.
[[nodiscard]] std::string commandLineOf(std::span<const std::string> words);

// Why no command line can start a program of this name; empty if one can.
[[nodiscard]] std::string_view faultOfProgramName(std::string_view name);

}  // namespace nCommandLine

#endif
