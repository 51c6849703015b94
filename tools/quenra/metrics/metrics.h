// The state of this machine as metrics, and their text in the formats that Prometheus reads.
#ifndef TOOLS_QUENRA_METRICS_METRICS_H
#define TOOLS_QUENRA_METRICS_METRICS_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/reading/iquenra.h"

namespace nCommandLine {

enum class tMetricType : uint8_t {
  gauge,
  counter,
  info,  // its labels are the content; its value is 1
};

struct tMetricLabel {
  std::string name;
  std::string value;  // any bytes; a label without a value is left out
};

struct tMetricSample {
  std::vector<tMetricLabel> labels;
  std::string value;  // a decimal number
};

// Samples with one meaning. The text of a counter or an info appends `_total` or `_info` to the name.
struct tMetricFamily {
  std::string_view name;  // with its unit: "quenra_memory_module_size_bytes"
  tMetricType type;
  std::string_view unit;  // empty for none
  std::string_view help;
  std::vector<tMetricSample> samples;
};

// Opens the controller, tests and reads it. A controller that cannot be opened and attributes that cannot
// be read leave their samples out; quenra_status has their codes.
[[nodiscard]] std::vector<tMetricFamily> collectMetrics(iQuenra& library);

enum class tMetricFormat : uint8_t {
  openMetrics,  // 1.0.0
  prometheus,   // the text format 0.0.4, which text file collectors read
};

// `labels` are added to every sample. Families without samples are left out.
[[nodiscard]] std::string metricsText(std::span<const tMetricFamily> families,
                                      std::span<const tMetricLabel> labels, tMetricFormat format);

// True if a family may have a label of this name.
[[nodiscard]] bool isMetricLabel(std::string_view name) noexcept;

}  // namespace nCommandLine

#endif
