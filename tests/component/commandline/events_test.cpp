// The lines that --json-lines prints.
#include <set>
#include <sstream>

#include "quenra_attributes.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/component/commandline/commandlinetest.h"
#include "tests/component/commandline/updateverbtest.h"
#include "tools/quenra/output/tjsondocument.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<rapidjson::Document> linesIn(const std::string& text) {
  std::vector<rapidjson::Document> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.emplace_back().Parse(line.data(), line.size());
    EXPECT_FALSE(lines.back().HasParseError()) << line;
  }
  return lines;
}

std::vector<std::string> eventsIn(const std::vector<rapidjson::Document>& lines) {
  std::vector<std::string> events;
  for (const auto& line : lines) {
    EXPECT_EQ(line["format"].GetInt(), 1);
    EXPECT_TRUE(line["sinceStartMilliseconds"].IsInt64());
    const std::vector<std::string> names = memberNames(line);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
    events.emplace_back(line["event"].GetString());
  }
  return events;
}

// ---- Lines ----

TEST(EventLine, AnyText_StaysInOneLine) {
  std::ostringstream stream;
  nCommandLine::tEventLines(stream).write("connected", [](nCommandLine::tJsonDocument& line) {
    line.text("text", "a\n  b \\n \"c\"  \r\n");
    line.beginArray("empty");
    line.endArray();
  });
  const std::string text = stream.str();
  EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
  EXPECT_STREQ(linesIn(text)[0]["text"].GetString(), "a\n  b \\n \"c\"  \r\n");
}

TEST(EventLine, Line_IsFlushed) {
  size_t writes = 0;
  nCommandLine::tOutputBuffer buffer([&writes](std::string_view) {
    ++writes;
    return std::error_code();
  });
  std::ostream stream(&buffer);
  nCommandLine::tEventLines lines(stream);
  lines.write("one", [](nCommandLine::tJsonDocument&) {});
  EXPECT_EQ(writes, 1u);
  lines.write("two", [](nCommandLine::tJsonDocument&) {});
  EXPECT_EQ(writes, 2u);
}

// ---- Routes ----

class RouteEvents : public CommandLineTest {
 protected:
  void SetUp() override { library_.text(QUENRA_ATTRIBUTE_DEVICE_PATH, "router"); }
  std::vector<rapidjson::Document> connect(const std::vector<std::string>& more, int exitCode) {
    std::vector<std::string> words{"route", "connect",   "--from",      "TRIG_SMB",
                                   "--to",  "PXI_Trig0", "--json-lines"};
    words.insert(words.end(), more.begin(), more.end());
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, exitCode) << result.error;
    return linesIn(result.out);
  }
};

TEST_F(RouteEvents, Program_HasAnEventForEachStep) {
  programs_.exitCode = 5;
  programs_.polls = 1 << 20;
  programs_.onStart = [this] { routing_.demote(101); };
  const auto lines = connect({"--", "measure.exe", "-n"}, 124);
  ASSERT_THAT(eventsIn(lines), ElementsAre("connected", "program-started", "demoted",
                                           "program-ended", "released", "result"));
  EXPECT_EQ(lines[0]["route"]["ticket"].GetInt(), 7);
  EXPECT_STREQ(lines[1]["words"][1].GetString(), "-n");
  EXPECT_EQ(lines[2]["reason"].GetInt(), 101);
  EXPECT_EQ(lines[3]["programExitCode"].GetInt(), 5);
  EXPECT_STREQ(lines[5]["kind"].GetString(), "route-connect");
  EXPECT_EQ(lines[5]["exitCode"].GetInt(), 124);
  EXPECT_EQ(programs_.output, nCommandLine::tProgramOutput::toErrorStream);
}

TEST_F(RouteEvents, Failure_IsTheLastLine) {
  routing_.codes["program"] = QUENRA_STATUS_BUSY;
  const auto lines = connect({}, 1);
  ASSERT_THAT(eventsIn(lines), ElementsAre("result"));
  EXPECT_STREQ(lines[0]["kind"].GetString(), "error");
  EXPECT_EQ(lines[0]["error"]["code"].GetInt(), QUENRA_STATUS_BUSY);
}

TEST_F(RouteEvents, WrongUsage_IsALine) {
  EXPECT_STREQ(connect({"--for", "x"}, 2)[0]["kind"].GetString(), "error");
  EXPECT_STREQ(connect({"--json"}, 2)[0]["error"]["message"].GetString(),
               "--json and --json-lines cannot be used together");
  EXPECT_THAT(run({"info", "--json-lines"}).error, HasSubstr("unknown option '--json-lines'"));
}

// ---- Updates ----

class UpdateEvents : public UpdateVerb {
 protected:
  std::vector<rapidjson::Document> update(const tWords& more, int exitCode) {
    tWords words{"update", "--json-lines", fileOf({section("MARTEN", "9.0.0f0")})};
    words.insert(words.end(), more.begin(), more.end());
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, exitCode) << result.error;
    return linesIn(result.out);
  }
};

TEST_F(UpdateEvents, Update_HasItsPlanItsStartAndItsEnd) {
  const auto lines = update({}, 0);
  ASSERT_THAT(eventsIn(lines), ElementsAre("plan", "update-started", "update-ended", "result"));
  EXPECT_STREQ(lines[0]["sections"][0]["action"].GetString(), "send-to-marten");
  EXPECT_EQ(lines[1]["sections"][0].GetInt(), 1);
  EXPECT_EQ(lines[2]["status"]["code"].GetInt(), 0);
  EXPECT_STREQ(lines[3]["outcome"].GetString(), "done");
}

TEST_F(UpdateEvents, StartOfAnUpdate_NamesTheSectionsThatChangeTheMachine) {
  const std::string path = fileOf({section("SAFEMODE", "9.0.0f0"), section("MARTEN", "9.0.0f0")});
  const auto lines = linesIn(run({"update", "--json-lines", path}).out);
  ASSERT_THAT(eventsIn(lines), ElementsAre("plan", "update-started", "update-ended", "result"));
  ASSERT_EQ(lines[1]["sections"].Size(), 1u);
  EXPECT_EQ(lines[1]["sections"][0].GetInt(), 2);
}

TEST_F(UpdateEvents, FailedUpdate_HasItsCode) {
  library_.updateCode = -333;
  const auto lines = update({}, 1);
  ASSERT_THAT(eventsIn(lines), ElementsAre("plan", "update-started", "update-ended", "result"));
  EXPECT_EQ(lines[2]["status"]["code"].GetInt(), -333);
  EXPECT_TRUE(lines[3]["update"]["started"].GetBool());
}

TEST_F(UpdateEvents, UpdateWithAnObstacle_IsNotStarted) {
  facts_.protection = {true, 0, 0};
  const auto lines = update({}, 1);
  ASSERT_THAT(eventsIn(lines), ElementsAre("plan", "result"));
  EXPECT_EQ(lines[0]["obstacles"].Size(), 1u);
  EXPECT_FALSE(lines[1]["update"]["started"].GetBool());
  EXPECT_TRUE(library_.updates.empty());
}

TEST_F(UpdateEvents, OtherUpdate_IsWaitedFor) {
  lock_.states = {nCommandLine::tLockState::busy, nCommandLine::tLockState::acquired};
  EXPECT_THAT(eventsIn(update({}, 0)),
              ElementsAre("waiting", "plan", "update-started", "update-ended", "result"));
}

TEST_F(UpdateEvents, Plan_IsTheOnlyLine) {
  const auto lines = update({"--plan"}, 0);
  ASSERT_THAT(eventsIn(lines), ElementsAre("result"));
  EXPECT_STREQ(lines[0]["kind"].GetString(), "update-plan");
}

}  // namespace
}  // namespace nTests
