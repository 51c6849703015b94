// Holding a route while a program runs, until a demotion, and waiting for a held line; the command line of a
// program.
#include "tools/quenra/programs/programs.h"

#include "quenra_attributes.h"
#include "tests/component/commandline/commandlinetest.h"
#ifdef _WIN32
#include <windows.h>
// Needs the types of windows.h.
#include <shellapi.h>

#include "tools/commandline/utf8text.h"
#endif

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using tWords = std::vector<std::string>;

class Connection : public CommandLineTest {
 protected:
  void SetUp() override { library_.text(QUENRA_ATTRIBUTE_DEVICE_PATH, "router"); }

  tRun connect(const tWords& more) {
    tWords words{"route", "connect", "--from", "TRIG_SMB", "--to", "PXI_Trig0"};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
  }
  // The first words of the calls to the router after the calculation: "reserve", "program", ...
  std::vector<std::string> steps() const {
    std::vector<std::string> steps;
    for (size_t i = 2; i + 1 < routing_.calls.size(); ++i) {
      steps.push_back(routing_.calls[i].substr(0, routing_.calls[i].find(' ')));
    }
    return steps;
  }

  const std::vector<std::string> teardown_{"unprogram", "unreserve", "destroy"};
};

using RouteProgram = Connection;
using RouteUntilDemoted = Connection;
using RouteWait = Connection;

// ---- A program ----

TEST_F(RouteProgram, ExitCode_IsThatOfTheProgram) {
  for (const uint32_t code : {0U, 7U, 255U, 0xC0000005U}) {
    programs_.exitCode = code;
    const tRun result = connect({"--", "measure.exe", "--runs", "5", "--json", "--help", "--"});
    EXPECT_EQ(static_cast<uint32_t>(result.exitCode), code);
    EXPECT_THAT(programs_.words,
                ElementsAre("measure.exe", "--runs", "5", "--json", "--help", "--"));
    EXPECT_EQ(programs_.output, nCommandLine::tProgramOutput::inherited);
  }
}

TEST_F(RouteProgram, Messages_LeaveTheStandardOutputToTheProgram) {
  programs_.exitCode = 3;
  const tRun result = connect({"--", "measure.exe"});
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, testing::StartsWith("quenra: connected: TRIG_SMB -> PXI_Trig0, while "
                                                "the program runs\n"
                                                "quenra: the program has ended, exit code 3\n"
                                                "quenra: released after "));
}

TEST_F(RouteProgram, Program_RunsWhileTheRouteIsProgrammed) {
  programs_.onStart = [this] { EXPECT_EQ(routing_.calls.back(), "path 7"); };
  programs_.polls = 3;
  EXPECT_EQ(connect({"--", "x"}).exitCode, 0);
  EXPECT_THAT(programs_.calls, ElementsAre("start", "end", "release"));
  EXPECT_THAT(steps(),
              ElementsAre("reserve", "program", "path", "unprogram", "unreserve", "destroy"));
}

TEST_F(RouteProgram, Demotion_AsksTheProgramToEnd) {
  programs_.polls = 1 << 20;
  programs_.exitCode = 5;
  programs_.onStart = [this] { routing_.demote(101); };
  const tRun result = connect({"--", "x"});
  EXPECT_EQ(result.exitCode, 124);
  EXPECT_THAT(programs_.calls, ElementsAre("start", "request", "end", "terminate", "release"))
      << "processes that the program has started are terminated";
  EXPECT_THAT(result.error, HasSubstr("quenra: the route was demoted after "));
  EXPECT_THAT(result.error, HasSubstr("quenra: the program has ended, exit code 5\n"));
  EXPECT_EQ(steps()[3], "failed");
}

TEST_F(RouteProgram, ProgramThatStays_IsTerminatedAfterItsTime) {
  programs_.polls = 1 << 20;
  programs_.endsOnRequest = false;
  programs_.onStart = [this] { routing_.demote(101); };
  const nCommandLine::tStopwatch stopwatch;
  const tRun result = connect({"--grace", "0.15", "--", "x"});
  EXPECT_GE(stopwatch.elapsed().count(), 150);
  EXPECT_EQ(result.exitCode, 124);
  EXPECT_THAT(programs_.calls,
              ElementsAre("start", "request", "terminate", "end", "terminate", "release"));
  EXPECT_THAT(result.error, HasSubstr("quenra: the program was terminated, exit code "));
}

TEST_F(RouteProgram, ProgramThatCannotBeAsked_IsTerminatedAtOnce) {
  programs_.polls = 1 << 20;
  programs_.acceptsRequests = false;
  programs_.onStart = [this] { routing_.demote(101); };
  EXPECT_EQ(connect({"--grace", "3600", "--", "x"}).exitCode, 124);
  EXPECT_THAT(programs_.calls, testing::Contains("terminate"));
}

TEST_F(RouteProgram, DemotionJustBeforeTheEnd_IsADemotion) {
  programs_.onStart = [this] { routing_.demote(102); };
  EXPECT_EQ(connect({"--", "x"}).exitCode, 124);
}

TEST_F(RouteProgram, CtrlC_IsPassedOnAndTheProgramDecides) {
  programs_.polls = 1 << 20;
  programs_.exitCode = 130;
  interruption_.isPressed = true;
  const tRun result = connect({"--", "x"});
  EXPECT_EQ(result.exitCode, 130);
  EXPECT_THAT(programs_.calls, ElementsAre("start", "request", "end", "release"));
  EXPECT_THAT(steps(), testing::IsSupersetOf(teardown_));
}

TEST_F(RouteProgram, ProgramThatStaysAfterCtrlC_IsNotTerminated) {
  programs_.polls = 5;
  programs_.endsOnRequest = false;
  interruption_.isPressed = true;
  static_cast<void>(connect({"--grace", "0", "--", "x"}));
  EXPECT_THAT(programs_.calls, ElementsAre("start", "request", "end", "release"));
}

TEST_F(RouteProgram, SecondCtrlC_TerminatesTheProgram) {
  programs_.polls = 1 << 20;
  programs_.endsOnRequest = false;
  interruption_.isPressed = true;
  interruption_.furtherPresses = 1;
  static_cast<void>(connect({"--", "x"}));
  EXPECT_THAT(programs_.calls, ElementsAre("start", "request", "terminate", "end", "release"));
}

TEST_F(RouteProgram, ProgramThatCannotBeStarted_HasItsExitCodeAndReleasesTheRoute) {
  programs_.startFailure = std::make_error_code(std::errc::no_such_file_or_directory);
  const tRun result = connect({"--", "measure.exe"});
  EXPECT_EQ(result.exitCode, 126);
  EXPECT_THAT(result.error, HasSubstr("quenra: cannot start 'measure.exe': no such file\n"
                                      "  Give the program after --"));
  EXPECT_THAT(steps(), testing::IsSupersetOf(teardown_));
}

TEST_F(RouteProgram, NameThatCannotBeStarted_ConnectsNothing) {
  const std::pair<const char*, const char*> names[] = {
      {"run.CMD", "it is a batch file, which only cmd.exe runs"},
      {"run.bat. .", "it is a batch file, which only cmd.exe runs"},
      {"a\"b", "its name has a quote"},
      {"", "its name is empty"},
      {"\xFF", "its name is not valid Unicode"}};
  for (const auto& [name, reason] : names) {
    const tRun result = connect({"--", name});
    EXPECT_EQ(result.exitCode, 126) << name;
    EXPECT_THAT(result.error, HasSubstr(reason));
  }
  EXPECT_THAT(routing_.calls, IsEmpty());
}

TEST_F(RouteProgram, RouteThatCannotBeConnected_HasItsOwnExitCode) {
  routing_.codes["reserve"] = QUENRA_STATUS_ROUTE_CONFLICT;
  EXPECT_EQ(connect({"--", "x"}).exitCode, 125);
  routing_.codes.clear();
  routing_.routes = "[]";
  EXPECT_EQ(connect({"--", "x"}).exitCode, 125);
  library_.code(QUENRA_ATTRIBUTE_DEVICE_PATH, QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_EQ(connect({"--", "x"}).exitCode, 125);
  EXPECT_THAT(programs_.calls, IsEmpty());
}

TEST_F(RouteProgram, OptionsThatContradictAProgram_AreWrongUsage) {
  for (const tWords& more :
       {tWords{"--for", "1", "--", "x"}, tWords{"--until-demoted", "--", "x"},
        tWords{"--grace", "1"}, tWords{"--"}, tWords{"x"}, tWords{"--grace", "x", "--", "x"}}) {
    EXPECT_EQ(connect(more).exitCode, 2) << testing::PrintToString(more);
  }
  EXPECT_THAT(connect({"--"}).error,
              HasSubstr("quenra: the program after -- is missing\n  Usage: "));
  EXPECT_THAT(routing_.calls, IsEmpty());
}

TEST_F(RouteProgram, Document_HasTheProgram) {
  programs_.exitCode = 0xC0000005U;
  const tRun result = connect({"--json", "--", "measure.exe", "a b"});
  EXPECT_EQ(programs_.output, nCommandLine::tProgramOutput::toErrorStream);
  const auto document = result.document();
  const auto& program = document["program"];
  EXPECT_THAT(memberNames(program), ElementsAre("words", "exitCode", "terminated"));
  EXPECT_STREQ(program["words"][1].GetString(), "a b");
  EXPECT_EQ(program["exitCode"].GetInt(), static_cast<int32_t>(0xC0000005U));
  EXPECT_EQ(document["exitCode"].GetInt(), result.exitCode);
}

// ---- Until a demotion ----

TEST_F(RouteUntilDemoted, Demotion_IsTheEndAndNoFailure) {
  routing_.afterProgramming = [this] { routing_.demoteOnItsThread({101}); };
  const tRun result = connect({"--until-demoted"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, testing::StartsWith("connected: TRIG_SMB -> PXI_Trig0, until a "
                                              "demotion\nreleased after "));
  EXPECT_THAT(result.error, testing::StartsWith("quenra: the route was demoted after "));
  EXPECT_THAT(steps(), ElementsAre("reserve", "program", "path", "failed", "unprogram", "unreserve",
                                   "destroy"));
}

TEST_F(RouteUntilDemoted, CtrlC_EndsItAsBefore) {
  interruption_.isPressed = true;
  const tRun result = connect({"--until-demoted", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  const auto document = result.document();
  EXPECT_TRUE(document["interrupted"].GetBool());
  EXPECT_EQ(document["demotions"].Size(), 0u);
}

TEST_F(RouteUntilDemoted, WithATime_IsWrongUsage) {
  EXPECT_THAT(connect({"--until-demoted", "--for", "1"}).error,
              HasSubstr("--for and --until-demoted cannot be used together\n"));
}

// ---- Waiting ----

TEST_F(RouteWait, HeldLine_IsTriedAgainUntilItIsFree) {
  routing_.codes["reserve"] = QUENRA_STATUS_ROUTE_CONFLICT;
  routing_.conflicts = R"([{"sessionId":4,"ticket":9}])";
  routing_.afterConflicts = 2;
  const tRun result = connect({"--wait", "30", "--for", "0", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, testing::StartsWith("quenra: the line is held by ticket 9 (session 4); "
                                                "waiting for at most "));
  EXPECT_THAT(steps(), ElementsAre("reserve", "reserve", "reserve", "program", "path", "unprogram",
                                   "unreserve", "destroy"));
  EXPECT_GE(result.document()["waitedMilliseconds"].GetInt(), 400);
}

TEST_F(RouteWait, TimeIsOver_IsTheConflict) {
  routing_.codes["reserve"] = QUENRA_STATUS_ROUTE_CONFLICT;
  routing_.conflicts = R"([{"sessionId":4,"ticket":9}])";
  const nCommandLine::tStopwatch stopwatch;
  const tRun result = connect({"--wait", "0.25"});
  EXPECT_GE(stopwatch.elapsed().count(), 250);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("quenra: cannot reserve the route: held by ticket 9"));
  EXPECT_THAT(steps(), ElementsAre("reserve", "reserve", "reserve", "failed", "destroy"));
}

TEST_F(RouteWait, HolderIsReportedOnceUntilItChanges) {
  routing_.codes["reserve"] = QUENRA_STATUS_ROUTE_CONFLICT;
  routing_.conflicts = R"([{"sessionId":4,"ticket":9}])";
  const std::string error = connect({"--wait", "0.5"}).error;
  EXPECT_EQ(error.find("the line is held by"), error.rfind("the line is held by"));
}

TEST_F(RouteWait, CtrlC_EndsTheWait) {
  routing_.codes["reserve"] = QUENRA_STATUS_ROUTE_CONFLICT;
  routing_.conflicts = R"([{"sessionId":4,"ticket":9}])";
  interruption_.isPressed = true;
  const tRun result = connect({"--wait", "3600"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("interrupted while another route held the line; no route was "
                                      "connected\n"));
  EXPECT_EQ(steps().back(), "destroy");
}

TEST_F(RouteWait, OtherFailures_AreNotTriedAgain) {
  routing_.codes["reserve"] = QUENRA_STATUS_TIME_OUT;
  EXPECT_EQ(connect({"--wait", "3600"}).exitCode, 1);
  EXPECT_THAT(steps(), ElementsAre("reserve", "failed", "destroy"));
}

TEST_F(RouteWait, InvalidTime_IsWrongUsage) {
  EXPECT_THAT(connect({"--wait", "x"}).error,
              HasSubstr("quenra: 'x' is not a number of seconds\n"));
  EXPECT_THAT(routing_.calls, IsEmpty());
}

// ---- The command line of a program ----

#ifdef _WIN32
tWords parsed(const std::string& commandLine) {
  const std::wstring wide([&] {
    std::wstring text(commandLine.size(), L'\0');
    const int length =
        MultiByteToWideChar(CP_UTF8, 0, commandLine.data(), static_cast<int>(commandLine.size()),
                            text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(length));
    return text;
  }());
  int count = 0;
  LPWSTR* const words = CommandLineToArgvW(wide.c_str(), &count);
  tWords result;
  for (int i = 0; i < count; ++i) {
    const std::wstring_view word = words[i];
    result.push_back(nCommandLine::utf8Word(std::u16string(word.begin(), word.end())));
  }
  LocalFree(words);
  return result;
}
#else
// The rules that the documentation of CommandLineToArgvW states: 2n backslashes and a quote are n
// backslashes and a mark; 2n+1 are n backslashes and a literal quote; others are literal. The first word
// ends at its closing quote and has no escapes.
tWords parsed(const std::string& commandLine) {
  const size_t end = commandLine.find('"', 1);
  tWords words{commandLine.substr(1, end - 1)};
  bool isQuoted = false;
  bool isOpen = false;
  size_t backslashes = 0;
  for (size_t i = end + 1; i <= commandLine.size(); ++i) {
    const char character = i < commandLine.size() ? commandLine[i] : ' ';
    const bool isBlank = character == ' ' || character == '\t';
    if (!isOpen && !isBlank) {
      words.emplace_back();
      isOpen = true;
    }
    if (character == '\\') {
      ++backslashes;
      continue;
    }
    const bool isMark = character == '"' && backslashes % 2 == 0;
    if (isOpen) {
      words.back().append(character == '"' ? backslashes / 2 : backslashes, '\\');
    }
    backslashes = 0;
    if (isMark) {
      isQuoted = !isQuoted;
    } else if (isBlank && !isQuoted) {
      isOpen = false;
    } else {
      words.back() += character;
    }
  }
  return words;
}
#endif

TEST(CommandLineText, Words_AreParsedAsTheyWere) {
  const tWords lines[] = {
      {"a.exe"},
      {"C:\\Program Files\\a.exe", "b c", ""},
      {"a", "\"", "\"\"", "\\", "\\\\", "\\\"", "\\\\\"", "a\\b", "a\\\\b\\", "a b\\", "a b\\\\"},
      {"a", "\"quoted\"", "in\"side", "a\\\"b c", "\\\\server\\share\\", "ends in \\\""},
      {"a", "tab\there", " ", "  ", "new\nline", "--json", "--", "/x", "100%", "%PATH%", "^&|<>"},
      {"a",
       "Gr\xC3\xB6\xC3\x9F"
       "e",
       "\xE6\xB8\xAC\xE5\xAE\x9A", "\xF0\x9F\x94\xA7"},
  };
  for (const tWords& words : lines) {
    const std::string text = nCommandLine::commandLineOf(words);
    EXPECT_EQ(parsed(text), words) << text;
  }
}

TEST(CommandLineText, EveryCombinationOfSpecialCharacters_IsParsedAsItWas) {
  constexpr std::string_view kCharacters = "a \\\"\t";
  for (size_t number = 0; number < 5 * 5 * 5 * 5 * 5; ++number) {
    std::string word;
    for (size_t rest = number; rest > 0; rest /= 5) {
      word += kCharacters[rest % 5];
    }
    const tWords words{"a b", word, "z", word};
    ASSERT_EQ(parsed(nCommandLine::commandLineOf(words)), words) << word;
  }
}

TEST(CommandLineText, PlainWords_AreNotQuoted) {
  EXPECT_EQ(nCommandLine::commandLineOf(tWords{"a.exe", "--runs", "C:\\x\\", "a b"}),
            "\"a.exe\" --runs C:\\x\\ \"a b\"");
}

}  // namespace
}  // namespace nTests
