#include "quenra_attributes.h"
#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/routing/troutingsession.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using tWords = std::vector<std::string>;

constexpr const char* kDevice = R"(\\?\root#quenra#0000)";

// The arguments of a route verb between two terminals, followed by `more`.
tWords routeWords(const char* action, const tWords& more = {}) {
  tWords words{"route", action, "--from", "TRIG_SMB", "--to", "PXI_Trig0"};
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

class Routing : public CommandLineTest {
 protected:
  void SetUp() override { library_.text(QUENRA_ATTRIBUTE_DEVICE_PATH, kDevice); }

  // The calls to the router after the calculation, without the end of the session.
  std::vector<std::string> callsAfterCalculation() const {
    std::vector<std::string> calls;
    for (size_t i = 2; i + 1 < routing_.calls.size(); ++i) {
      calls.push_back(routing_.calls[i]);
    }
    return calls;
  }

  static constexpr const char* kTwoRoutes =
      R"([{"ticket":7,"cost":1,"constraints":{}},)"
      R"({"ticket":8,"cost":2,"constraints":{"inversionNeeded":true}}])";
  static constexpr const char* kInvertedRoute =
      R"([{"ticket":8,"cost":2,"constraints":{"inversionNeeded":true}}])";
};

using Terminals = Routing;
using RoutePlan = Routing;
using RouteConnect = Routing;

TEST_F(Terminals, AreATable) {
  const tRun result = run({"terminals"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_EQ(result.out,
            "Terminal   Id  For             External  Owned  Bus line\n"
            "FLOAT      1   the controller  no        yes    -\n"
            "TRIG_SMB   2   everybody       no        yes    -\n"
            "PXI_Trig0  4   everybody       yes       no     PXI_Trig 0\n");
  EXPECT_THAT(routing_.calls, ElementsAre("open " + std::string(kDevice), "close"));
  EXPECT_EQ(library_.opens, 0) << "the device path needs no open controller";
}

TEST_F(Terminals, Document_HasThePromisedMembers) {
  const auto document = run({"terminals", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "terminals"));
  const rapidjson::Value& line = itemWith(document["terminals"], "name", "PXI_Trig0");
  EXPECT_THAT(memberNames(line),
              ElementsAre("name", "id", "visibility", "external", "owned", "busType", "busName",
                          "busLine", "alias", "canonicalName", "maskedOut"));
  EXPECT_EQ(line["busLine"].GetInt(), 0);
  EXPECT_STREQ(line["busType"].GetString(), "PXI_Trig");
  EXPECT_TRUE(line["external"].GetBool());
  EXPECT_TRUE(itemWith(document["terminals"], "name", "FLOAT")["busLine"].IsNull());
}

TEST_F(Routing, WithoutADevice_NoVerbHasAController) {
  library_.code(QUENRA_ATTRIBUTE_DEVICE_PATH, QUENRA_STATUS_NO_CONTROLLER);
  for (const tWords& words : {tWords{"terminals"}, routeWords("plan"), routeWords("connect")}) {
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.error, HasSubstr("cannot find the trigger routing device\n"
                                        "  -26932 QUENRA_STATUS_NO_CONTROLLER\n"));
  }
  EXPECT_THAT(routing_.calls, IsEmpty());
}

TEST_F(Routing, DeviceThatCannotBeNamed_IsNotOpened) {
  library_.text(QUENRA_ATTRIBUTE_DEVICE_PATH, std::string(257, 'x'));
  EXPECT_EQ(run({"terminals"}).exitCode, 1);
  EXPECT_THAT(routing_.calls, IsEmpty());
  library_.code(QUENRA_ATTRIBUTE_DEVICE_PATH, QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(run({"terminals"}).exitCode, 3);
  library_.code(QUENRA_ATTRIBUTE_DEVICE_PATH, QUENRA_STATUS_GENERIC_FAILURE);
  EXPECT_EQ(run({"terminals"}).exitCode, 1);
}

TEST_F(Routing, UnknownTerminals_AreNotSupported) {
  routing_.codes["open"] = QUENRA_STATUS_BAD_SELECTOR;
  routing_.description = R"({"code":1,"zoark_debug":"Topography not found: other\n"})";
  const tRun result = run({"terminals"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.error, HasSubstr("this version does not support the router of this machine "
                                      "(other\\x0A)\n"
                                      "  -50003 "));
  EXPECT_THAT(result.error, HasSubstr("  Advice: Install a version of quenra"));
  EXPECT_THAT(result.error, testing::Not(HasSubstr("Correct the calling program")));
}

TEST_F(Routing, EveryFailingStep_IsReportedAndClosesTheSession) {
  const std::pair<const char*, const char*> steps[] = {
      {"open", "cannot open a routing session"},
      {"terminals", "cannot list the terminals"},
      {"calculate", "cannot calculate the route"},
      {"reserve", "cannot reserve the route"},
      {"program", "cannot program the route"},
      {"path", "cannot read the terminals of the route"}};
  for (const auto& [step, message] : steps) {
    routing_.codes = {{step, QUENRA_STATUS_DEVICE_REMOVED}};
    const auto document = run(routeWords("connect", {"--json"})).document();
    EXPECT_EQ(document["exitCode"].GetInt(), 1) << step;
    EXPECT_STREQ(document["kind"].GetString(), "error") << step;
    EXPECT_STREQ(document["command"].GetString(), "route connect") << step;
    EXPECT_STREQ(document["error"]["message"].GetString(), message);
    EXPECT_EQ(document["error"]["code"].GetInt(), QUENRA_STATUS_DEVICE_REMOVED) << step;
    EXPECT_EQ(routing_.sessions, 0) << step;
  }
}

TEST_F(Routing, TerminalInAnotherCase_IsTheTerminal) {
  const tRun result = run({"route", "plan", "--from", "trig_smb", "--to", "PXI_TRIG0", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  const auto document = result.document();
  EXPECT_STREQ(document["from"].GetString(), "TRIG_SMB");
  EXPECT_STREQ(document["to"].GetString(), "PXI_Trig0");
}

TEST_F(Routing, MisspeltTerminal_GetsASuggestion) {
  const tRun result = run({"route", "plan", "--from", "TRIG_SMB", "--to", "PXI_Trg0"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.error, HasSubstr("unknown terminal 'PXI_Trg0'\n  Did you mean PXI_Trig0?"));
  EXPECT_THAT(result.error, HasSubstr("Run 'quenra terminals' to list the terminals."));
  EXPECT_EQ(run({"route", "connect", "--from", "", "--to", "FLOAT"}).exitCode, 2);
}

TEST_F(Routing, MissingTerminal_IsWrongUsage) {
  EXPECT_EQ(run({"route", "plan", "--from", "TRIG_SMB"}).exitCode, 2);
  EXPECT_EQ(run({"route", "connect", "--to", "TRIG_SMB"}).exitCode, 2);
  EXPECT_EQ(run({"route"}).exitCode, 2);
}

TEST_F(Routing, Warnings_GoToTheErrorStreamAndTheDocument) {
  routing_.codes["calculate"] = 77;
  const tRun result = run(routeWords("plan", {"--json"}));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, HasSubstr("warning: a step of the routing session\n  77"));
  EXPECT_EQ(result.document()["warnings"][0]["code"].GetInt(), 77);
}

TEST_F(RoutePlan, Routes_AreATableAndAreDestroyed) {
  routing_.routes = kTwoRoutes;
  const tRun result = run(routeWords("plan"));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out,
            "Path                   Inverted  Cost\n"
            "TRIG_SMB -> PXI_Trig0  no        1\n"
            "TRIG_SMB -> PXI_Trig0  yes       2\n");
  EXPECT_THAT(callsAfterCalculation(), ElementsAre("path 7", "destroy 7", "path 8", "destroy 8"));
}

TEST_F(RoutePlan, Request_ContainsTheArguments) {
  static_cast<void>(run(routeWords("plan")));
  EXPECT_EQ(routing_.calls[1],
            R"(calculate [{"terminal":"TRIG_SMB","cost":0,"constraints":{}}] ["PXI_Trig0"] )"
            R"({"required":{}})");
  routing_.calls.clear();
  static_cast<void>(run(routeWords("plan", {"--invert"})));
  EXPECT_THAT(routing_.calls[1], testing::EndsWith(R"( {"required":{"inversionNeeded":true}})"));
}

TEST_F(RoutePlan, UnknownTerminal_IsAQuestionMark) {
  routing_.path = R"(["TRIG_SMB","","PXI_Trig0"])";
  EXPECT_THAT(run(routeWords("plan")).out, HasSubstr("TRIG_SMB -> ? -> PXI_Trig0"));
}

TEST_F(RoutePlan, Document_HasThePromisedMembers) {
  const auto document = run(routeWords("plan", {"--json"})).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "from", "to", "routes"));
  EXPECT_STREQ(document["kind"].GetString(), "route-plan");
  EXPECT_THAT(memberNames(document["routes"][0]), ElementsAre("inverted", "cost", "path"));
  EXPECT_STREQ(document["routes"][0]["path"][1].GetString(), "PXI_Trig0");
}

TEST_F(RoutePlan, NoRoute_IsNotSupported) {
  routing_.routes = "[]";
  for (const char* const action : {"plan", "connect"}) {
    const tRun result = run(routeWords(action, {"--invert"}));
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(
        result.error,
        HasSubstr("there is no route from TRIG_SMB to PXI_Trig0 that inverts the signal\n"));
  }
}

TEST_F(RouteConnect, Route_IsConnectedHeldAndReleasedInOrder) {
  const tRun result = run(routeWords("connect", {"--for", "0"}));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, StartsWith("connected: TRIG_SMB -> PXI_Trig0, for 0.0 s\n"
                                     "released after "));
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_THAT(callsAfterCalculation(), ElementsAre("reserve 7", "program 7", "path 7",
                                                   "unprogram 7", "unreserve 7", "destroy 7"));
  EXPECT_TRUE(interruption_.isIntercepted);
}

TEST_F(RouteConnect, CtrlC_ReleasesTheRouteAndIsNoFailure) {
  interruption_.isPressed = true;
  const tRun result = run(routeWords("connect"));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, StartsWith("connected: TRIG_SMB -> PXI_Trig0, until Ctrl-C\n"));
  EXPECT_THAT(result.out, HasSubstr("\n"
                                    "released after "));
  EXPECT_EQ(callsAfterCalculation().back(), "destroy 7");
}

TEST_F(RouteConnect, Time_IsKept) {
  const auto document = run(routeWords("connect", {"--for", "1", "--json"})).document();
  EXPECT_GE(document["heldMilliseconds"].GetInt(), 1000);
  EXPECT_FALSE(document["interrupted"].GetBool());
}

TEST_F(RouteConnect, FractionOfASecond_IsKept) {
  const tRun result = run(routeWords("connect", {"--for", "0.25", "--json"}));
  const auto document = result.document();
  EXPECT_GE(document["heldMilliseconds"].GetInt(), 250);
  EXPECT_THAT(result.error, HasSubstr("for 0.2 s\n"));
}

TEST_F(RouteConnect, Demotions_AreReportedAndMakeItAFailure) {
  routing_.afterProgramming = [this] { routing_.demoteOnItsThread({101, 102}); };
  const tRun result = run(routeWords("connect", {"--for", "1"}));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, StartsWith("quenra: the route was demoted after "));
  EXPECT_THAT(result.error, HasSubstr(" s: the line was taken by a route of higher priority (101); "
                                      "it no longer carries a signal\n"));
  EXPECT_THAT(result.error, HasSubstr("the library reports the reason 102;"));
  EXPECT_THAT(result.out, HasSubstr("\n"
                                    "released after "));
  const std::vector<std::string> calls = callsAfterCalculation();
  EXPECT_THAT(std::vector(calls.begin() + 3, calls.end()),
              ElementsAre("failed 7", "unprogram 7", "unreserve 7", "destroy 7"));
}

TEST_F(RouteConnect, Document_HasThePromisedMembers) {
  routing_.afterProgramming = [this] { routing_.demote(101); };
  interruption_.isPressed = true;
  const tRun result = run(routeWords("connect", {"--json"}));
  EXPECT_EQ(result.exitCode, 1);
  const auto document = result.document();
  EXPECT_THAT(memberNames(document), ElementsAre("format", "kind", "exitCode", "warnings", "from",
                                                 "to", "route", "heldMilliseconds", "interrupted",
                                                 "demotions", "waitedMilliseconds", "program"));
  EXPECT_TRUE(document["program"].IsNull());
  EXPECT_THAT(memberNames(document["route"]), ElementsAre("inverted", "cost", "path", "ticket"));
  EXPECT_EQ(document["route"]["ticket"].GetInt(), 7);
  EXPECT_TRUE(document["interrupted"].GetBool());
  EXPECT_THAT(memberNames(document["demotions"][0]), ElementsAre("reason", "afterMilliseconds"));
  EXPECT_EQ(document["demotions"][0]["reason"].GetInt(), 101);
  EXPECT_THAT(result.error, StartsWith("quenra: connected: TRIG_SMB -> PXI_Trig0, until Ctrl-C\n"));
}

TEST_F(RouteConnect, Conflict_NamesTheHolders) {
  routing_.codes["reserve"] = QUENRA_STATUS_ROUTE_CONFLICT;
  routing_.conflicts = R"([{"sessionId":4,"ticket":9},{"sessionId":2,"ticket":3}])";
  const tRun result = run(routeWords("connect"));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, HasSubstr("cannot reserve the route: held by ticket 9 (session 4), "
                                      "ticket 3 (session 2)\n"
                                      "  -89137 QUENRA_STATUS_ROUTE_CONFLICT\n"));
  EXPECT_THAT(result.error,
              HasSubstr("  Advice: End the programs that hold these routes, or choose "
                        "another trigger line. The driver does not reveal which "
                        "program a session belongs to.\n"));
  EXPECT_THAT(callsAfterCalculation(), ElementsAre("reserve 7", "failed 7", "destroy 7"));
}

TEST_F(RouteConnect, ConflictWithJson_HasTheHoldersAsNumbers) {
  routing_.codes["reserve"] = QUENRA_STATUS_ROUTE_CONFLICT;
  routing_.conflicts = R"([{"sessionId":18446744073709551615,"ticket":9}])";
  const auto document = run(routeWords("connect", {"--json"})).document();
  const rapidjson::Value& holders = document["error"]["holders"];
  ASSERT_EQ(holders.Size(), 1u);
  EXPECT_EQ(holders[0]["session"].GetUint64(), 18446744073709551615u);
  EXPECT_EQ(holders[0]["ticket"].GetUint(), 9u);
}

TEST_F(RouteConnect, TimeOutOfRange_IsNamedWithTheRange) {
  EXPECT_THAT(run(routeWords("connect", {"--for", "4294967296"})).error,
              HasSubstr("quenra: 4294967296 is out of range (0 to 4294967295)\n"));
  EXPECT_THAT(run(routeWords("connect", {"--for", "1.5s"})).error,
              HasSubstr("quenra: '1.5s' is not a number of seconds\n"));
}

TEST_F(RouteConnect, FailingStep_UndoesTheStepsBefore) {
  routing_.codes["program"] = QUENRA_STATUS_BUSY;
  EXPECT_EQ(run(routeWords("connect")).exitCode, 1);
  EXPECT_THAT(callsAfterCalculation(),
              ElementsAre("reserve 7", "program 7", "failed 7", "unreserve 7", "destroy 7"));
}

TEST_F(RouteConnect, RouteOfTheOtherPolarity_IsNotConnected) {
  routing_.routes = kTwoRoutes;
  static_cast<void>(run(routeWords("connect", {"--for", "0", "--invert"})));
  EXPECT_THAT(callsAfterCalculation(), ElementsAre("destroy 7", "reserve 8", "program 8", "path 8",
                                                   "unprogram 8", "unreserve 8", "destroy 8"));
  routing_.routes = kInvertedRoute;
  routing_.calls.clear();
  const tRun result = run(routeWords("connect", {"--for", "0"}));
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.error, HasSubstr("inverts the signal; add --invert to connect it\n"));
  EXPECT_THAT(callsAfterCalculation(), ElementsAre("destroy 8"));
}

TEST_F(RouteConnect, InvalidTime_IsRejectedBeforeOpening) {
  for (const char* const time : {"", "x", "1.", ".5", "1.2345", "-1", "4294967296"}) {
    EXPECT_EQ(run(routeWords("connect", {"--for", time})).exitCode, 2) << time;
  }
  EXPECT_THAT(routing_.calls, IsEmpty());
}

TEST(RouteDocuments, MembersOfUnexpectedTypes_AreIgnored) {
  using namespace nCommandLine;
  for (const char* const text : {"", "{", "{}", "null", "[1]", R"([{"ticket":-1,"cost":1}])",
                                 R"([{"sessionId":-1,"ticket":1}])"}) {
    EXPECT_THAT(routesIn(text), IsEmpty()) << text;
    EXPECT_THAT(terminalsIn(text), IsEmpty()) << text;
    EXPECT_THAT(holdersIn(text), IsEmpty()) << text;
  }
}

TEST(RouteDocuments, HoldersOfLargeSessions_AreComplete) {
  EXPECT_THAT(
      nCommandLine::holdersIn(R"([{"sessionId":18446744073709551615,"ticket":4294967295}])"),
      ElementsAre(nCommandLine::tRouteHolder{18446744073709551615u, 4294967295u}));
}

TEST(Demotions, AreQueuedInOrder) {
  using std::chrono::milliseconds;
  nCommandLine::tDemotions demotions;
  EXPECT_EQ(demotions.take(milliseconds(0)), std::nullopt);
  for (int32_t round = 0; round < 100; ++round) {
    demotions.add(round);
    demotions.add(-round);
    EXPECT_EQ(demotions.take(milliseconds(0)), round);
    EXPECT_EQ(demotions.take(milliseconds(0)), -round);
  }
  EXPECT_EQ(demotions.take(milliseconds(0)), std::nullopt);
}

TEST(Demotions, BeyondTheCapacity_AreDropped) {
  using std::chrono::milliseconds;
  constexpr auto kCapacity = static_cast<int32_t>(nCommandLine::tDemotions::kCapacity);
  nCommandLine::tDemotions demotions;
  for (int32_t reason = 0; reason < kCapacity + 5; ++reason) {
    demotions.add(reason);
  }
  for (int32_t reason = 0; reason < kCapacity; ++reason) {
    EXPECT_EQ(demotions.take(milliseconds(0)), reason);
  }
  EXPECT_EQ(demotions.take(milliseconds(0)), std::nullopt);
}

TEST(ElapsedText, HasTenthsOfASecond) {
  using nCommandLine::elapsedText;
  EXPECT_EQ(elapsedText(std::chrono::milliseconds(0)), "0.0 s");
  EXPECT_EQ(elapsedText(std::chrono::milliseconds(499)), "0.4 s");
  EXPECT_EQ(elapsedText(std::chrono::minutes(2)), "120.0 s");
}

}  // namespace
}  // namespace nTests
