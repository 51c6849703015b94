#include "tools/quenra/verbs/routeholding.h"

#include <algorithm>

#include "tools/commandline/utf8text.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/verbs/routes.h"

namespace nCommandLine {
namespace {

using std::chrono::milliseconds;

// The polling interval for interruptions.
constexpr milliseconds kPollInterval{100};
// ... and for the end of a program, which delays the exit of quenra.
constexpr milliseconds kProgramInterval{20};

// The library documents only the reason 101.
std::string reasonText(int32_t reason) {
  constexpr int32_t kHigherPriority = 101;
  return reason == kHigherPriority ? "the line was taken by a route of higher priority (101)"
                                   : "the library reports the reason " + std::to_string(reason);
}

std::string limitText(const tHoldLimits& limits) {
  if (!limits.program.empty()) {
    return "while the program runs";
  }
  if (limits.untilDemoted) {
    return "until a demotion";
  }
  return limits.time == milliseconds::max() ? "until Ctrl-C" : "for " + elapsedText(limits.time);
}

// Records the demotions of a route from its connection on.
class tDemotionLog {
 public:
  tDemotionLog(tDemotions& demotions, tHolding& holding, tRouteReporter& reporter)
      : demotions_(demotions), holding_(holding), reporter_(reporter) {}

  // Waits at most `time` for a demotion.
  void take(milliseconds time) {
    if (const auto reason = demotions_.take(time)) {
      holding_.demotions.push_back({*reason, elapsed()});
      reporter_.demoted(holding_.demotions.back());
    }
  }
  [[nodiscard]] milliseconds elapsed() const noexcept { return stopwatch_.elapsed(); }

 private:
  tDemotions& demotions_;
  tHolding& holding_;
  tRouteReporter& reporter_;
  const tStopwatch stopwatch_;
};

void holdForTime(tHolding& holding, const tHoldLimits& limits, iInterruption& interruption,
                 tDemotionLog& log) {
  bool isOver = false;
  while (!isOver) {
    const milliseconds rest = std::max(limits.time - log.elapsed(), milliseconds(0));
    log.take(std::min(rest, kPollInterval));
    holding.interrupted = interruption.hasOccurred();
    isOver = holding.interrupted || log.elapsed() >= limits.time ||
             (limits.untilDemoted && !holding.demotions.empty());
  }
}

// ---- A program ----

// Ends a program: asks it first, and terminates it when its time is over.
class tEnding {
 public:
  explicit tEnding(iProgram& program) : program_(program) {}

  void request(milliseconds grace) {
    isRequested_ = true;
    grace_ = program_.requestEnd() ? grace : milliseconds(0);
    stopwatch_ = tStopwatch();
  }
  void terminate() {
    isTerminated_ = true;
    program_.terminate();
  }
  void poll() {
    if (isRequested_ && !isTerminated_ && stopwatch_.elapsed() >= grace_) {
      terminate();
    }
  }
  [[nodiscard]] bool isRequested() const noexcept { return isRequested_; }
  [[nodiscard]] bool isTerminated() const noexcept { return isTerminated_; }

 private:
  iProgram& program_;
  tStopwatch stopwatch_;
  milliseconds grace_{0};
  bool isRequested_ = false;
  bool isTerminated_ = false;
};

std::unique_ptr<iProgram> startProgram(const tHoldLimits& limits, iPrograms& programs,
                                       tProgramOutput output) {
  std::error_code failure;
  std::unique_ptr<iProgram> program = programs.start(limits.program, output, failure);
  if (program == nullptr) {
    throw notStarted(limits.program.front(), reasonOf(failure));
  }
  return program;
}

// A demotion gives the program its time to end. Ctrl-C is passed on, and the program decides when to
// end; a second one terminates it.
void holdForProgram(tHolding& holding, const tHoldLimits& limits, const tPorts& ports,
                    tProgramOutput output, tRouteReporter& reporter, tDemotionLog& log) {
  const std::unique_ptr<iProgram> program = startProgram(limits, ports.programs, output);
  reporter.programStarted();
  tEnding ending(*program);
  std::optional<uint32_t> exitCode;
  while (!exitCode) {
    log.take(milliseconds(0));
    if (!holding.demotions.empty() && !ending.isRequested()) {
      ending.request(limits.grace);
    }
    if (ports.interruption.hasOccurred()) {
      ports.interruption.rearm();
      if (holding.interrupted || !program->requestEnd()) {
        ending.terminate();
      }
      holding.interrupted = true;
    }
    ending.poll();
    exitCode = program->wait(kProgramInterval);
  }
  log.take(milliseconds(0));
  if (!holding.demotions.empty()) {
    // Processes that the program has started.
    program->terminate();
  }
  holding.program = tProgramEnd{*exitCode, ending.isTerminated()};
  reporter.programEnded(*holding.program);
}

}  // namespace

tCommandError notStarted(const std::string& name, std::string_view reason) {
  return {tExitCode::programNotStarted, "cannot start '" + name + "': " + std::string(reason),
          std::nullopt,
          "Give the program after -- with its path, or a name that the system finds. A batch file "
          "or a command of the shell requires cmd /c."};
}

// ---- Reports ----

tRouteReporter::tRouteReporter(const tVerbContext& context, const tHoldLimits& limits)
    : limits_(limits),
      stream_(context.json || !limits.program.empty() ? context.streams.error
                                                      : context.streams.out),
      error_(context.streams.error),
      prefix_(&stream_ == &error_ ? "quenra: " : ""),
      events_(context.events) {}

void tRouteReporter::print(const std::string& line) {
  stream_ << prefix_ << line << std::endl;
}

void tRouteReporter::write(std::string_view event,
                           const tEventLines::tWriteMembers& members) const {
  if (events_ != nullptr) {
    events_->write(event, members);
  }
}

void tRouteReporter::waiting(const std::vector<tRouteHolder>& holders, milliseconds time) {
  error_ << "quenra: the line is held by " << holdersText(holders) << "; waiting for at most "
         << elapsedText(time) << " (Ctrl-C ends the wait)" << std::endl;
  write("waiting", [&](tJsonDocument& line) { writeHolders(line, holders); });
}

void tRouteReporter::connected(const tHolding& holding) {
  print("connected: " + pathText(holding.path) + (holding.route.inverted ? ", inverted" : "") +
        ", " + limitText(limits_));
  write("connected", [&](tJsonDocument& line) {
    line.beginObject("route");
    writeRoute(line, holding.route, holding.path);
    line.number("ticket", holding.route.ticket);
    line.endObject();
  });
}

void tRouteReporter::programStarted() {
  write("program-started", [this](tJsonDocument& line) {
    line.beginArray("words");
    for (const std::string& word : limits_.program) {
      line.textItem(word);
    }
    line.endArray();
  });
}

void tRouteReporter::demoted(const tDemotion& demotion) {
  error_ << "quenra: the route was demoted after " << elapsedText(demotion.after) << ": "
         << reasonText(demotion.reason) << "; it no longer carries a signal" << std::endl;
  write("demoted", [&](tJsonDocument& line) {
    line.number("reason", demotion.reason);
    line.number("afterMilliseconds", demotion.after.count());
  });
}

void tRouteReporter::programEnded(const tProgramEnd& end) {
  print(std::string(end.wasTerminated ? "the program was terminated" : "the program has ended") +
        ", exit code " + std::to_string(static_cast<int32_t>(end.exitCode)));
  write("program-ended", [&](tJsonDocument& line) {
    line.number("programExitCode", static_cast<int32_t>(end.exitCode));
    line.truth("terminated", end.wasTerminated);
  });
}

void tRouteReporter::released(const tHolding& holding) {
  print("released after " + elapsedText(holding.held));
  write("released",
        [&](tJsonDocument& line) { line.number("heldMilliseconds", holding.held.count()); });
}

// ---- Holding ----

void holdRoute(tHolding& holding, const tHoldLimits& limits, tDemotions& demotions,
               const tPorts& ports, tProgramOutput output, tRouteReporter& reporter) {
  tDemotionLog log(demotions, holding, reporter);
  if (limits.program.empty()) {
    holdForTime(holding, limits, ports.interruption, log);
  } else {
    holdForProgram(holding, limits, ports, output, reporter, log);
  }
  holding.held = log.elapsed();
}

}  // namespace nCommandLine
