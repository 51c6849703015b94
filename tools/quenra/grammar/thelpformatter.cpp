#include "tools/quenra/grammar/thelpformatter.h"

#include <sstream>

#include "tools/quenra/grammar/parsername.h"
#include "tools/quenra/grammar/synopsis.h"

namespace nCommandLine {

std::string tHelpFormatter::make_usage(const CLI::App* app, std::string name) const {
  const tVerbRow* const verb =
      app->get_parent() == nullptr ? nullptr : verbOfParserName(app->get_name());
  return verb == nullptr ? Formatter::make_usage(app, std::move(name))
                         : "Usage: " + synopsis(*verb) + "\n";
}

std::string tHelpFormatter::make_subcommand(const CLI::App* app) const {
  std::ostringstream text;
  CLI::detail::format_help(text, std::string(verbOfParserName(app->get_name())->name),
                           app->get_description(), column_width_);
  return text.str();
}

std::string tHelpFormatter::make_option_name(const CLI::Option* option, bool isPositional) const {
  return isPositional ? option->get_type_name() : Formatter::make_option_name(option, false);
}

// Omits which options exclude each other or are optional: the usage line shows that.
std::string tHelpFormatter::make_option_opts(const CLI::Option* option) const {
  const bool takesValue = option->get_type_size() != 0 && !option->get_positional();
  return takesValue ? " " + option->get_type_name() : "";
}

}  // namespace nCommandLine
