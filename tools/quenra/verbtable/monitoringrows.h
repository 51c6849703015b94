// The rows of the verbs that describe the machine for other programs and readers.
#ifndef TOOLS_QUENRA_VERBTABLE_MONITORINGROWS_H
#define TOOLS_QUENRA_VERBTABLE_MONITORINGROWS_H

#include "tools/quenra/commandline.h"

namespace nCommandLine::nRows {

// ---- metrics ----

inline constexpr tOptionRow kMetricsOptions[] = {
    {nWords::kOutput, "FILE", "Write to FILE, which other programs only see complete"},
    {nWords::kWatch, "SECONDS", "Rewrite FILE every SECONDS until Ctrl-C"},
    {nWords::kFormat,
     "openmetrics|prometheus",
     "openmetrics (the default), or prometheus for text file collectors",
     {},
     false,
     &kFormatWords},
    {nWords::kLabel,
     "NAME=VALUE",
     "Add a label to every metric, such as rack=7",
     {},
     false,
     nullptr,
     true},
};
inline constexpr tExampleRow kMetricsExamples[] = {
    {"metrics", "the metrics of this machine"},
    {"metrics --format prometheus --label rack=7 --output rack7.prom --watch 60",
     "for the folder of a text file collector"},
};

// ---- report ----

inline constexpr tPositionalRow kReportPositionals[] = {
    {nWords::kFile, "FILE", "File of the report; must not exist"},
};
inline constexpr tOptionRow kReportOptions[] = {
    {nWords::kImageOption, "IMAGE", "Add the plan of an update with this firmware image"},
    {nWords::kHolders, "", "Name the holders of trigger lines, by attempts to reserve held lines",
     "machine"},
    {nWords::kFrom, "CAPTURE", "Describe the machine of a capture file instead of this one",
     "machine"},
    {nWords::kForce, "", "Replace an existing file"},
};
inline constexpr tExampleRow kReportExamples[] = {
    {"report rack7.html", "a page about this machine"},
    {"report rack7.html --image update.fwi --force", "... with the plan of an update"},
    {"report rack7.html --from rack7.json", "a page about a captured machine"},
};

// clang-format off
inline constexpr tVerbRow kMonitoringVerbs[] = {
    {"metrics", "Print metrics of this machine for Prometheus",
     "Firmware versions, update support, memory, the self-test, and the durations of opening and "
     "testing. A controller that cannot be opened is a metric as well, with exit code 0. With --watch, "
     "a file that cannot be written is reported once, and tried again every second until it can be.",
     {}, kMetricsOptions, kMetricsExamples},

    {"report", "Write a page that describes this machine",
     "One HTML file without scripts and references to other files: warnings first, then identity, a drawing "
     "of the chassis, memory, trigger lines, firmware and every attribute. A controller that cannot be "
     "opened is reported in the page, with exit code 0. Without --holders nothing is reserved.",
     kReportPositionals, kReportOptions, kReportExamples},
};
// clang-format on

}  // namespace nCommandLine::nRows

#endif
