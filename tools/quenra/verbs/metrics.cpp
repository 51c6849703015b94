// The verb that prints metrics, or keeps a file of them current.
#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tools/commandline/argumenttext.h"
#include "tools/quenra/firmware/files.h"
#include "tools/quenra/metrics/metrics.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

using std::chrono::milliseconds;

struct tMetricsRequest {
  std::optional<std::string> path;
  std::optional<milliseconds> interval;
  tMetricFormat format = tMetricFormat::openMetrics;
  std::vector<tMetricLabel> labels;
};

// ---- Arguments ----

std::optional<milliseconds> parseInterval(const tArguments& arguments) {
  const auto given = arguments.optional(nWords::kWatch);
  if (!given) {
    return std::nullopt;
  }
  const auto interval = parseSeconds(*given);
  if (!interval || interval->count() == 0) {
    throw tUsageError(interval ? "--watch 0 leaves no time between two collections"
                               : numberFault(*given, "a number of seconds"),
                      "Give a decimal number of seconds such as 60 or 0.5.", {});
  }
  if (!arguments.has(nWords::kOutput)) {
    throw tUsageError("--watch has no file to rewrite", "Add --output FILE.", {});
  }
  return interval;
}

tMetricFormat parseFormat(const tArguments& arguments) {
  const std::string name = arguments.optional(nWords::kFormat).value_or(std::string(kOpenMetrics));
  if (name != kOpenMetrics && name != kPrometheusText) {
    throw tUsageError("unknown format '" + name + "'", "Run 'quenra metrics --help'.",
                      suggest(name, {kOpenMetrics, kPrometheusText}));
  }
  return name == kOpenMetrics ? tMetricFormat::openMetrics : tMetricFormat::prometheus;
}

// Prometheus reserves names that begin with two underscores.
bool isLabelName(std::string_view name) {
  constexpr std::string_view kAllowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_0123456789";
  return !name.empty() && !name.starts_with("__") && (name.front() < '0' || name.front() > '9') &&
         name.find_first_not_of(kAllowed) == std::string_view::npos;
}

tMetricLabel parseLabel(const std::string& text) {
  const size_t equals = text.find('=');
  tMetricLabel label{text.substr(0, equals), ""};
  if (equals == std::string::npos || !isLabelName(label.name)) {
    throw tUsageError(
        "'" + text + "' is not a label",
        "Give NAME=VALUE, such as rack=7. A name has letters, digits and underscores, "
        "and begins with a letter or a single underscore.",
        {});
  }
  label.value = text.substr(equals + 1);
  return label;
}

std::vector<tMetricLabel> parseLabels(const tArguments& arguments) {
  std::vector<tMetricLabel> labels;
  for (const std::string& text : arguments.all(nWords::kLabel)) {
    tMetricLabel label = parseLabel(text);
    const bool isRepeated = std::ranges::count(labels, label.name, &tMetricLabel::name) != 0;
    if (isRepeated || isMetricLabel(label.name)) {
      throw tUsageError(isRepeated ? "the label '" + label.name + "' is given twice"
                                   : "metrics have a label '" + label.name + "' of their own",
                        "Give the label another name.", {});
    }
    labels.push_back(std::move(label));
  }
  return labels;
}

// ---- Output ----

std::string collectedText(const tMetricsRequest& request, const tVerbContext& context) {
  return metricsText(collectMetrics(context.ports.library), request.labels, request.format);
}

// `text` is empty if the metrics were written to the file.
void printDocument(std::ostream& stream, const tMetricsRequest& request, tExitCode exitCode,
                   const std::string& text, int64_t writes) {
  tJsonDocument document("metrics", exitCode);
  document.text("metricFormat",
                request.format == tMetricFormat::openMetrics ? kOpenMetrics : kPrometheusText);
  document.optionalText("path", request.path.value_or(""));
  document.optionalText("text", text);
  document.number("writes", writes);
  document.writeTo(stream);
}

// Rewrites the file until the user interrupts. A failure to write is reported once, until a write
// succeeds again.
class tWatch {
 public:
  tWatch(const tMetricsRequest& request, const tVerbContext& context)
      : request_(request), context_(context) {}

  void run() {
    context_.ports.interruption.intercept();
    (context_.json ? context_.streams.error : context_.streams.out)
        << (context_.json ? "quenra: " : "") << "writing '" << *request_.path << "' every "
        << elapsedText(*request_.interval) << ", until Ctrl-C" << std::endl;
    do {
      write();
    } while (!isInterruptedWithin(isFailing_ ? std::min(kRetryInterval, *request_.interval)
                                             : *request_.interval));
  }

  // False if the file is older than the last collection.
  [[nodiscard]] bool isCurrent() const noexcept { return !isFailing_; }
  [[nodiscard]] int64_t writes() const noexcept { return writes_; }

 private:
  static constexpr milliseconds kRetryInterval{1000};

  void write() {
    try {
      writeFile(*request_.path, collectedText(request_, context_), tExistingFile::replace);
      ++writes_;
      if (isFailing_) {
        context_.streams.error << "quenra: '" << *request_.path << "' is written again"
                               << std::endl;
      }
      isFailing_ = false;
    } catch (const tCommandError& error) {
      if (!isFailing_) {
        printError(context_.streams.error, error);
        context_.streams.error << "  Trying again until it succeeds." << std::endl;
      }
      isFailing_ = true;
    }
  }

  [[nodiscard]] bool isInterruptedWithin(milliseconds time) const {
    constexpr milliseconds kPollInterval{100};
    const tStopwatch stopwatch;
    while (!context_.ports.interruption.hasOccurred()) {
      const milliseconds rest = time - stopwatch.elapsed();
      if (rest.count() <= 0) {
        return false;
      }
      std::this_thread::sleep_for(std::min(rest, kPollInterval));
    }
    return true;
  }

  const tMetricsRequest& request_;
  const tVerbContext& context_;
  bool isFailing_ = false;
  int64_t writes_ = 0;
};

tExitCode watch(const tMetricsRequest& request, const tVerbContext& context) {
  tWatch watch(request, context);
  watch.run();
  const tExitCode exitCode = watch.isCurrent() ? tExitCode::done : tExitCode::failure;
  if (context.json) {
    printDocument(context.streams.out, request, exitCode, "", watch.writes());
  }
  return exitCode;
}

tExitCode printOnce(const tMetricsRequest& request, const tVerbContext& context) {
  const std::string text = collectedText(request, context);
  if (request.path) {
    writeFile(*request.path, text, tExistingFile::replace);
  }
  if (context.json) {
    printDocument(context.streams.out, request, tExitCode::done, request.path ? "" : text,
                  request.path ? 1 : 0);
  } else if (!request.path) {
    context.streams.out << text;
  }
  return tExitCode::done;
}

}  // namespace

tExitCode runMetrics(const tArguments& arguments, const tVerbContext& context) {
  const tMetricsRequest request{arguments.optional(nWords::kOutput), parseInterval(arguments),
                                parseFormat(arguments), parseLabels(arguments)};
  return request.interval ? watch(request, context) : printOnce(request, context);
}

}  // namespace nCommandLine
