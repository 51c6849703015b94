#ifndef TOOLS_QUENRA_GRAMMAR_THELPFORMATTER_H
#define TOOLS_QUENRA_GRAMMAR_THELPFORMATTER_H

#include <CLI/CLI.hpp>
#include <string>

namespace nCommandLine {

// Writes placeholders in the help as the manual page and the guide do, not by their internal names.
class tHelpFormatter final : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* app, std::string name) const override;
  std::string make_subcommand(const CLI::App* app) const override;
  std::string make_option_name(const CLI::Option* option, bool isPositional) const override;
  std::string make_option_opts(const CLI::Option* option) const override;
};

}  // namespace nCommandLine

#endif
