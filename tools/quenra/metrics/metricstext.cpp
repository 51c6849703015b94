// The formats: https://prometheus.io/docs/instrumenting/exposition_formats
#include "tools/commandline/utf8text.h"
#include "tools/quenra/metrics/metrics.h"

namespace nCommandLine {
namespace {

bool isOpenMetrics(tMetricFormat format) noexcept {
  return format == tMetricFormat::openMetrics;
}

// Both formats escape a backslash, a quote and a line end. printableText leaves no line end, and writes
// other control characters as \x1B.
std::string quoted(std::string_view bytes) {
  std::string text = "\"";
  for (const char character : printableText(bytes)) {
    if (character == '\\' || character == '"') {
      text += '\\';
    }
    text += character;
  }
  return text + '"';
}

std::string_view suffixOf(tMetricType type) noexcept {
  switch (type) {
    case tMetricType::counter:
      return "_total";
    case tMetricType::info:
      return "_info";
    case tMetricType::gauge:
      break;
  }
  return "";
}

// The text format has no infos.
std::string_view typeNameIn(tMetricFormat format, tMetricType type) noexcept {
  switch (type) {
    case tMetricType::counter:
      return "counter";
    case tMetricType::info:
      return isOpenMetrics(format) ? "info" : "gauge";
    case tMetricType::gauge:
      break;
  }
  return "gauge";
}

void addLabels(std::string& text, std::span<const tMetricLabel> labels) {
  for (const tMetricLabel& label : labels) {
    if (!label.value.empty()) {
      text.append(text.empty() ? "" : ",").append(label.name).append("=");
      text += quoted(label.value);
    }
  }
}

class tMetricsText {
 public:
  tMetricsText(std::span<const tMetricLabel> labels, tMetricFormat format)
      : labels_(labels), format_(format) {}

  void add(const tMetricFamily& family) {
    const std::string sampleName = std::string(family.name).append(suffixOf(family.type));
    // OpenMetrics describes the family, the text format its samples.
    const std::string& described = isOpenMetrics(format_) ? std::string(family.name) : sampleName;
    addDescription("HELP", described, family.help);
    addDescription("TYPE", described, typeNameIn(format_, family.type));
    if (isOpenMetrics(format_) && !family.unit.empty()) {
      addDescription("UNIT", described, family.unit);
    }
    for (const tMetricSample& sample : family.samples) {
      addSample(sampleName, sample);
    }
  }

  [[nodiscard]] std::string finish() && {
    if (isOpenMetrics(format_)) {
      text_ += "# EOF\n";
    }
    return std::move(text_);
  }

 private:
  void addDescription(std::string_view keyword, std::string_view name, std::string_view value) {
    text_.append("# ").append(keyword).append(" ").append(name).append(" ").append(value) += '\n';
  }

  void addSample(const std::string& name, const tMetricSample& sample) {
    std::string labels;
    addLabels(labels, labels_);
    addLabels(labels, sample.labels);
    text_ += name;
    if (!labels.empty()) {
      text_.append("{").append(labels).append("}");
    }
    text_.append(" ").append(sample.value) += '\n';
  }

  std::span<const tMetricLabel> labels_;
  tMetricFormat format_;
  std::string text_;
};

}  // namespace

std::string metricsText(std::span<const tMetricFamily> families,
                        std::span<const tMetricLabel> labels, tMetricFormat format) {
  tMetricsText text(labels, format);
  for (const tMetricFamily& family : families) {
    if (!family.samples.empty()) {
      text.add(family);
    }
  }
  return std::move(text).finish();
}

}  // namespace nCommandLine
