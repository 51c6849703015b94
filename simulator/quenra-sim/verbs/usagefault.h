#ifndef SIMULATOR_QUENRA_SIM_VERBS_USAGEFAULT_H
#define SIMULATOR_QUENRA_SIM_VERBS_USAGEFAULT_H

#include <CLI/CLI.hpp>
#include <string>

namespace nSimulator {

// The message for a command line that the parser of `app` rejected with `error`.
[[nodiscard]] std::string usageFault(const CLI::App& app, const CLI::ParseError& error,
                                     int argumentCount, const char* const* arguments);

}  // namespace nSimulator

#endif
