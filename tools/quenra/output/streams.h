// The streams of a command, and the reasons for which writing to one, or to a file, fails.
#ifndef TOOLS_QUENRA_OUTPUT_STREAMS_H
#define TOOLS_QUENRA_OUTPUT_STREAMS_H

#include <array>
#include <chrono>
#include <functional>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <system_error>

namespace nCommandLine {

// The buffer of the standard output. Unlike the buffers of the C++ library it keeps the system's
// reason of a failure, for the message at the end of the program.
class tOutputBuffer final : public std::streambuf {
 public:
  // Writes all bytes; returns the system's reason on failure. Must not throw.
  using tWrite = std::function<std::error_code(std::string_view bytes)>;

  explicit tOutputBuffer(tWrite write);

  // The first failure, or clear. The buffer writes nothing after a failure.
  [[nodiscard]] const std::error_code& failure() const noexcept { return failure_; }

 protected:
  int_type overflow(int_type character) override;
  int sync() override;

 private:
  static constexpr size_t kCapacity = 4096;

  tWrite write_;
  std::error_code failure_;
  std::array<char, kCapacity> bytes_{};
};

// The streams of a command: answers go to `out`, everything else to `error`.
struct tStreams {
  std::ostream& out;
  std::ostream& error;
  bool outIsTerminal = false;   // for a person: values are printed with their units
  bool outTakesStyles = false;  // the terminal supports bold and faint text
  // The buffer of `out`, which keeps the reason of a failure; null if the reason is unavailable.
  const tOutputBuffer* outBuffer = nullptr;
  // The change that a verb has made to the machine: "driver-setting-1 is set to 7"; empty for none.
  // Reported if the output fails, so that the caller does not repeat the change.
  std::string appliedChange = {};
};

// The system's reason for a failed operation on a file or a stream, to end a message with:
// "no such file". The same phrase for the same reason, on every system and for every verb.
[[nodiscard]] std::string reasonOf(const std::error_code& error);

// True if the reader of a pipe has closed its end.
[[nodiscard]] bool isClosedPipe(const std::error_code& error) noexcept;

// A request to end the program: Ctrl-C, or a closed console.
class iInterruption {
 public:
  iInterruption() = default;
  iInterruption(const iInterruption&) = delete;
  iInterruption& operator=(const iInterruption&) = delete;
  virtual ~iInterruption() = default;

  // From this call on, an interruption no longer ends the program; the program polls hasOccurred.
  virtual void intercept() noexcept = 0;
  [[nodiscard]] virtual bool hasOccurred() noexcept = 0;
  // Forgets an interruption that was answered: hasOccurred() reports the next one.
  virtual void rearm() noexcept = 0;
};

// Measures from its creation.
class tStopwatch {
 public:
  [[nodiscard]] std::chrono::milliseconds elapsed() const noexcept {
    return std::chrono::duration_cast<std::chrono::milliseconds>(tClock::now() - start_);
  }

 private:
  using tClock = std::chrono::steady_clock;

  tClock::time_point start_ = tClock::now();
};

// "0.4 s", "125.0 s"
[[nodiscard]] inline std::string elapsedText(std::chrono::milliseconds elapsed) {
  const auto tenths = elapsed / std::chrono::milliseconds(100);
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

}  // namespace nCommandLine

#endif
