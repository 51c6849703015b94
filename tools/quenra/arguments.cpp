#include "tools/quenra/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <map>
#include <vector>

#include "tools/quenra/catalogue/suggestion.h"
#include "tools/quenra/helptext.h"
#include "tools/quenra/tcommanderror.h"

namespace nCommandLine {
namespace {

constexpr std::array<std::string_view, 5> kVerbs{"info", "get", "attributes", "explain", "help"};
constexpr std::string_view kJsonOption = "--json";
constexpr std::string_view kEndOfOptions = "--";

bool isVerb(std::string_view word) noexcept {
  return std::ranges::find(kVerbs, word) != kVerbs.end();
}

[[noreturn]] void refuse(const std::string& what, std::string_view verb,
                         std::vector<std::string> suggestions = {}) {
  std::string advice = "'quenra ";
  advice.append(verb).append(verb.empty() ? "--help' tells how." : " --help' tells how.");
  throw tCommandError(what, std::move(advice), std::move(suggestions));
}

// The command line as CLI11 knows it.
class tGrammar {
 public:
  tGrammar() : program_("Shows the controller of a PXI chassis.", "quenra") {
    program_.get_formatter()->label("SUBCOMMAND", "VERB");
    prepare(program_, "");
    program_.set_version_flag("--version", "", "Print the version and exit");
    program_.require_subcommand(0, 1);
    addVerb("info", "Show all attributes of this machine, by subject");
    describeGet(addVerb("get", "Show one attribute"));
    addVerb("attributes", "List every attribute with its id, type and unit");
    describeExplain(addVerb("explain", "Say what a status code means and what to do"));
    CLI::App& help = addVerb("help", "Show the help of the program or of a verb");
    help.add_option("verb", helpVerb_, "The verb")->type_name("VERB");
  }

  tArguments parse(std::span<const char* const> words) {
    try {
      // CLI11 takes the words from the end of a vector.
      program_.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp&) {
      return help(program_.help());
    } catch (const CLI::CallForVersion&) {
      arguments_.verb = tVerb::version;
      return arguments_;
    }
    return chosen();
  }

 private:
  void prepare(CLI::App& app, std::string_view verb) {
    // The same words mean the same on every system.
    app.allow_windows_style_options(false);
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.add_flag(std::string(kJsonOption))
        ->description("Print one JSON document, whatever happens")
        ->disable_flag_override();
    app.footer(helpFooter(verb));
  }

  CLI::App& addVerb(const std::string& verb, const std::string& description) {
    CLI::App& app = *program_.add_subcommand(verb, description);
    app.group("Verbs");
    prepare(app, verb == "help" ? "" : verb);
    return app;
  }

  void describeGet(CLI::App& get) {
    get.add_option("attribute", arguments_.get.attribute,
                   "Name of the attribute, or its id in decimal or in hexadecimal after 0x")
        ->required()
        ->type_name("NAME|ID");
    get.add_option("--instance", instance_,
                   "Which memory module, processor or list position, from 0")
        ->type_name("N");
    CLI::Option* const controller =
        get.add_flag("--controller", arguments_.get.controller, "Ask the controller interface");
    controller->disable_flag_override();
    get.add_flag("--marten", arguments_.get.marten, "Ask the Marten interface")
        ->disable_flag_override()
        ->excludes(controller);
  }

  void describeExplain(CLI::App& explain) {
    explain
        .add_option("code", arguments_.code,
                    "The code in decimal or in hexadecimal after 0x, or its constant")
        ->required()
        ->type_name("CODE");
  }

  tArguments chosen() {
    const auto verbs = program_.get_subcommands();
    if (verbs.empty()) {
      refuse("say what to do: info, get, attributes, explain or help", "");
    }
    static const std::map<std::string, tVerb, std::less<>> kMeanings{
        {"info", tVerb::info},
        {"get", tVerb::get},
        {"attributes", tVerb::attributes},
        {"explain", tVerb::explain}};
    const CLI::App& verb = *verbs.front();
    const auto meaning = kMeanings.find(verb.get_name());
    if (meaning == kMeanings.end()) {
      return help(helpOn(helpVerb_));
    }
    arguments_.verb = meaning->second;
    if (verb.get_name() == "get" && verb.count("--instance") > 0) {
      arguments_.get.instance = instance_;
    }
    return arguments_;
  }

  tArguments help(std::string text) {
    arguments_.verb = tVerb::help;
    arguments_.helpText = std::move(text);
    return arguments_;
  }

  std::string helpOn(const std::string& verb) {
    if (verb.empty()) {
      // Of the program: it would else delegate to the verb `help` that was parsed.
      return tGrammar().program_.help();
    }
    if (!isVerb(verb)) {
      refuse("there is no verb '" + verb + "'", "", suggest(verb, {kVerbs.begin(), kVerbs.end()}));
    }
    return program_.get_subcommand(verb)->help("quenra");
  }

  CLI::App program_;
  tArguments arguments_;
  std::string instance_;
  std::string helpVerb_;
};

std::string_view firstWord(std::span<const char* const> words) noexcept {
  for (const std::string_view word : words) {
    if (!word.starts_with('-')) {
      return word;
    }
  }
  return {};
}

}  // namespace

tArguments parseArguments(std::span<const char* const> words) {
  const std::string word(firstWord(words));
  if (!word.empty() && !isVerb(word)) {
    refuse("there is no verb '" + word + "'", "", suggest(word, {kVerbs.begin(), kVerbs.end()}));
  }
  try {
    return tGrammar().parse(words);
  } catch (const CLI::Error& error) {
    refuse(error.what(), word);
  }
}

bool wantsJson(std::span<const char* const> words) noexcept {
  for (const std::string_view word : words) {
    if (word == kJsonOption || word == kEndOfOptions) {
      return word == kJsonOption;
    }
  }
  return false;
}

std::string_view verbIn(std::span<const char* const> words) noexcept {
  const std::string_view word = firstWord(words);
  return isVerb(word) ? word : std::string_view{};
}

}  // namespace nCommandLine
