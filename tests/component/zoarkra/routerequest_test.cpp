// Route requests that the reader accepts, and the faults of others.
#include "zoarkra/routerequest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <memory>
#include <string>
#include <vector>

#include "tests/component/protons/trace/debuggerlistener.h"
#include "tests/component/zoarkra/sessiontest.h"
#include "zoarkra/topography.h"

namespace nTests {
namespace {

using zoark::readRouteRequest;
using zoark::tRouteRequest;

const std::string kSeeds = R"([{"terminal":"TRIG_SMB","cost":1,"constraints":{}}])";
const std::string kDestinations = R"(["PXI_Trig0"])";
const std::string kModifiers = R"({"required":{},"optional":{}})";

tRouteRequest readRequest(const std::string& seeds, const std::string& destinations,
                          const std::string& modifiers) {
  tRouteRequest request(std::pmr::get_default_resource());
  readRouteRequest({seeds.c_str(), destinations.c_str(), modifiers.c_str()},
                   zoark::findTopography("pxiContTriggerRouter"), request);
  return request;
}

// The seeds as "terminal/cost/constraints", each with a blank after it.
std::string seedsOf(const std::string& document) {
  std::string text;
  for (const tRouteSeed& seed : readRequest(document, kDestinations, kModifiers).seeds) {
    text += std::to_string(seed.terminal) + "/" + std::to_string(seed.cost) + "/" +
            std::to_string(seed.constraints) + " ";
  }
  return text;
}

std::string seedWithCost(const std::string& cost) {
  return R"([{"terminal":"TRIG_SMB","cost":)" + cost + R"(,"constraints":{}}])";
}

std::string seedWithConstraints(const std::string& constraints) {
  return R"([{"terminal":"TRIG_SMB","cost":1,"constraints":)" + constraints + "}]";
}

std::string seedOfTerminal(const std::string& name) {
  return R"([{"terminal":)" + name + R"(,"cost":1,"constraints":{}}])";
}

std::vector<uint32_t> destinationsOf(const std::string& document) {
  const tRouteRequest request = readRequest(kSeeds, document, kModifiers);
  return {request.destinations.begin(), request.destinations.end()};
}

// The modifiers as "required/optional/options".
std::string modifiersOf(const std::string& document) {
  const tRouteRequest request = readRequest(kSeeds, kDestinations, document);
  return std::to_string(request.modifiers.required) + "/" +
         std::to_string(request.modifiers.optional) + "/" + std::to_string(request.options);
}

// A text as a description holds it.
std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    out += c == '"' ? "\\\"" : c == '\\' ? "\\\\" : c == '\v' ? "\\u000b" : std::string(1, c);
  }
  return out;
}

tFailure requestFailure(uint32_t line, const std::string& message, const std::string& document,
                        const std::string& more = {}) {
  return {QUENRA_STATUS_INVALID_PARAMETER,
          R"({"error_constant":"zoapalerr_invalidParameter","file":"RoCoUtils","line":)" +
              std::to_string(line) + R"(,"component":"quenra","zoroco_debug":")" + message +
              R"(","json":")" + escaped(document) + "\"" + more + "}"};
}

void expectSeedsRefused(const std::string& document, uint32_t line, const std::string& message,
                        const std::string& more = {}) {
  EXPECT_EQ(failureOf([&] { readRequest(document, kDestinations, kModifiers); }),
            requestFailure(line, message, document, more));
}

void expectDestinationsRefused(const std::string& document, uint32_t line,
                               const std::string& message, const std::string& more = {}) {
  EXPECT_EQ(failureOf([&] { readRequest(kSeeds, document, kModifiers); }),
            requestFailure(line, message, document, more));
}

void expectModifiersRefused(const std::string& document, uint32_t line, const std::string& message,
                            const std::string& more = {}) {
  EXPECT_EQ(failureOf([&] { readRequest(kSeeds, kDestinations, document); }),
            requestFailure(line, message, document, more));
}

// ---- Seeds ----

TEST(Seeds, OfEveryField_AreRead) {
  EXPECT_EQ(seedsOf(R"([{"terminal":"TRIG_SMB","srcDeviceToken":"dev","cost":7,)"
                    R"("constraints":{"inversionNeeded":true}},)"
                    R"({"terminal":"PXI_Trig7","cost":0,"constraints":{}}])"),
            "2/7/1 11/0/0 ");
}

TEST(Seeds, EmptyArray_HasNone) {
  EXPECT_EQ(seedsOf("[]"), "");
  EXPECT_EQ(seedsOf(" \t\r\n[ \t\r\n] \t\r\n"), "");
}

TEST(Seeds, MembersInEveryOrder_ReadTheSame) {
  const std::vector<std::string> members{R"("terminal":"PXI_Trig0")", R"("cost":3)",
                                         R"("constraints":{"inversionNeeded":true})",
                                         R"("srcDeviceToken":"t")"};
  std::vector<size_t> order{0, 1, 2, 3};
  do {
    std::string seed;
    for (const size_t i : order) {
      seed += (seed.empty() ? "" : ",") + members[i];
    }
    EXPECT_EQ(seedsOf("[{" + seed + "}]"), "4/3/1 ");
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(Seeds, UnknownMembers_AreIgnoredWithTheirContents) {
  EXPECT_EQ(seedsOf(R"([{"more":{"terminal":5,"inversionNeeded":5,"deeper":[{"cost":"x"}]},)"
                    R"("terminal":"PXI_Trig0","cost":3,"list":[1,[2,{"constraints":1}]],)"
                    R"("constraints":{"other":{"inversionNeeded":7},"another":3},"last":null}])"),
            "4/3/0 ");
}

TEST(Seeds, DuplicateMembers_CountAsTheLast) {
  EXPECT_EQ(seedsOf(R"([{"terminal":5,"terminal":"PXI_Trig0","cost":"x","cost":3,)"
                    R"("srcDeviceToken":1,"srcDeviceToken":"t",)"
                    R"("constraints":{"inversionNeeded":1},"constraints":{}}])"),
            "4/3/0 ");
  EXPECT_EQ(seedsOf(seedWithConstraints(R"({"inversionNeeded":1,"inversionNeeded":true})")),
            "2/1/1 ");
  EXPECT_EQ(seedsOf(seedWithConstraints(R"({"inversionNeeded":true,"inversionNeeded":false})")),
            "2/1/0 ");
}

TEST(Seeds, UnknownTerminal_BecomesZero) {
  EXPECT_EQ(seedsOf(seedOfTerminal(R"("PXI_Trig8")")), "0/1/0 ");
  EXPECT_EQ(seedsOf(seedOfTerminal(R"("")")), "0/1/0 ");
  EXPECT_EQ(seedsOf(seedOfTerminal(R"("PXI_Trig0\u0000")")), "0/1/0 ");
}

TEST(Seeds, EscapesInATerminalsName_AreDecoded) {
  EXPECT_EQ(seedsOf(seedOfTerminal(R"("PXI\u005fTrig\u0030")")), "4/1/0 ");
  EXPECT_EQ(seedsOf(seedOfTerminal(R"("\ud83d\ude00")")), "0/1/0 ");
}

TEST(Seeds, CostOfEveryForm_IsTruncated) {
  const std::vector<std::pair<std::string, std::string>> costs{
      {"0", "0"},
      {"4294967295", "4294967295"},
      {"1.9", "1"},
      {"1e3", "1000"},
      {"-0", "0"},
      {"4294967295.9", "4294967295"},
      {"-0.5", "0"},
      {"0.9", "0"},
      {"1E+3", "1000"},
      {"12345e-3", "12"},
      {"0e40", "0"},
      {"0e400", "0"},
      {"1" + std::string(400, '0') + "e-400", "1"},
      {"1" + std::string(700000, '0') + "e-700000", "1"},
      {"0.000000000000000000000e-2147483639", "0"},
      {"2.99999999999999999999", "3"},
      {"1e-99999999999999999999", "0"},
      {"0.00001e-320", "0"},
      {"-1e-9999", "0"},
      {"0." + std::string(400, '0') + "1", "0"},
      {"1e-400", "0"}};
  for (const auto& [cost, expected] : costs) {
    EXPECT_EQ(seedsOf(seedWithCost(cost)), "2/" + expected + "/0 ") << cost;
  }
}

TEST(Seeds, CostOutsideItsRange_IsInvalid) {
  for (const char* cost : {"-1", "4294967296", "1e20", "-1e20", "18446744073709551616", "1e400",
                           "-1e400", "-1.5", "1e999"}) {
    expectSeedsRefused(seedWithCost(cost), 106, "cost field missing or invalid");
  }
}

TEST(Seeds, DecimalCommaOfTheLocale_ChangesNothing) {
  for (const char* name : {"de_DE.UTF-8", "de_DE", "German_Germany"}) {
    std::setlocale(LC_ALL, name);
  }
  EXPECT_EQ(seedsOf(seedWithCost("1234.5")), "2/1234/0 ");
  std::setlocale(LC_ALL, "C");
}

TEST(Seeds, OfAnotherType_AreRefused) {
  for (const char* document : {"{}", "5", "null", "true", R"("text")"}) {
    expectSeedsRefused(document, 101, "seeds must be an array");
  }
  for (const char* document : {"[5]", "[[]]", "[null]", R"(["PXI_Trig0"])"}) {
    expectSeedsRefused(document, 102, "seed must be an object");
  }
}

TEST(Seeds, WithoutATerminal_AreRefused) {
  expectSeedsRefused("[{}]", 103, "terminal field missing");
  expectSeedsRefused(R"([{"cost":1,"constraints":{}}])", 103, "terminal field missing");
}

TEST(Seeds, TerminalOfAnotherType_IsRefusedBeforeAnythingElse) {
  expectSeedsRefused(R"([{"terminal":5}])", 104, "terminal name must be a string");
  expectSeedsRefused(R"([{"cost":"x","constraints":1,"terminal":null}])", 104,
                     "terminal name must be a string");
}

TEST(Seeds, TokenOfAnotherType_IsRefused) {
  for (const char* token : {"5", "null", "{}", "[]", "true"}) {
    expectSeedsRefused(R"([{"terminal":"PXI_Trig0","srcDeviceToken":)" + std::string(token) +
                           R"(,"cost":1,"constraints":{}}])",
                       105, "srcDeviceToken name must be a string");
  }
}

TEST(Seeds, WithoutACost_AreRefused) {
  expectSeedsRefused(R"([{"terminal":"PXI_Trig0","constraints":{}}])", 106,
                     "cost field missing or invalid");
}

TEST(Seeds, CostOfAnotherType_IsRefused) {
  for (const char* cost : {R"("5")", "true", "null", "{}", "[1]"}) {
    expectSeedsRefused(seedWithCost(cost), 107, "cost must be a number");
  }
}

TEST(Seeds, WithoutConstraints_AreRefused) {
  expectSeedsRefused(R"([{"terminal":"PXI_Trig0","srcDeviceToken":"t","cost":1}])", 108,
                     "constraints field missing");
  for (const char* constraints : {"1", "[]", "null", R"(["inversionNeeded"])"}) {
    expectSeedsRefused(seedWithConstraints(constraints), 108, "constraints field missing");
  }
}

TEST(Seeds, ConstraintOfAnotherType_IsRefusedWithBothTypes) {
  const std::vector<std::pair<const char*, const char*>> values{{"1", "number"},
                                                                {R"("true")", "string"},
                                                                {"null", "null"},
                                                                {"{}", "object"},
                                                                {"[true]", "array"}};
  for (const auto& [value, type] : values) {
    expectSeedsRefused(seedWithConstraints(R"({"inversionNeeded":)" + std::string(value) + "}"),
                       109, "Unexpected constraint type",
                       R"(,"constraint":"inversionNeeded","expected_type":"bool","actual_type":")" +
                           std::string(type) + "\"");
  }
}

TEST(Seeds, FaultOfTheSecondSeed_IsReported) {
  expectSeedsRefused(R"([{"terminal":"PXI_Trig0","cost":1,"constraints":{}},{"cost":1}])", 103,
                     "terminal field missing");
}

// ---- Destinations ----

TEST(Destinations, NamesInTheirOrder_BecomeIds) {
  EXPECT_EQ(destinationsOf(R"([ "PXI_Trig7" , "FLOAT","PXI_Trig7","nothing" ])"),
            (std::vector<uint32_t>{11, 1, 11, 0}));
  EXPECT_EQ(destinationsOf("[]"), std::vector<uint32_t>());
}

TEST(Destinations, OfAnotherType_AreRefused) {
  for (const char* document : {"{}", R"("PXI_Trig0")", "null", "7"}) {
    expectDestinationsRefused(document, 141, "destinations must be an array");
  }
  for (const char* document : {"[5]", R"(["PXI_Trig0",null])", "[{}]", R"([["PXI_Trig0"]])"}) {
    expectDestinationsRefused(document, 142, "Terminals must be strings");
  }
}

// ---- Modifiers ----

TEST(Modifiers, MissingGroups_AreEmpty) {
  EXPECT_EQ(modifiersOf("{}"), "0/0/0");
  EXPECT_EQ(modifiersOf(kModifiers), "0/0/0");
}

TEST(Modifiers, InversionNeeded_IsSetInItsGroup) {
  EXPECT_EQ(modifiersOf(R"({"required":{"inversionNeeded":true}})"), "1/0/0");
  EXPECT_EQ(modifiersOf(R"({"optional":{"inversionNeeded":true}})"), "0/1/0");
  EXPECT_EQ(modifiersOf(R"({"optional":{"inversionNeeded":true},)"
                        R"("required":{"inversionNeeded":false}})"),
            "0/1/0");
}

TEST(Modifiers, IgnoringReservations_IsAnOptionOfEitherGroup) {
  EXPECT_EQ(modifiersOf(R"({"required":{"calculateIgnoresReservations":true}})"), "0/0/1");
  EXPECT_EQ(modifiersOf(R"({"optional":{"calculateIgnoresReservations":true}})"), "0/0/1");
  EXPECT_EQ(modifiersOf(R"({"required":{"calculateIgnoresReservations":false}})"), "0/0/0");
}

TEST(Modifiers, UnknownMembers_AreIgnored) {
  EXPECT_EQ(modifiersOf(R"({"required":{"other":true},"optional":{"other":[{"required":5}]},)"
                        R"("more":{"inversionNeeded":true,"required":7},"another":1})"),
            "0/0/0");
}

TEST(Modifiers, DuplicateMembers_CountAsTheLast) {
  EXPECT_EQ(modifiersOf(R"({"required":{"inversionNeeded":true,"inversionNeeded":false}})"),
            "0/0/0");
  EXPECT_EQ(modifiersOf(R"({"required":5,"required":{"x":5},"required":{"inversionNeeded":true}})"),
            "1/0/0");
  EXPECT_EQ(modifiersOf(R"({"required":{"inversionNeeded":true},"required":{}})"), "0/0/0");
}

TEST(Modifiers, OfAnotherType_AreRefused) {
  for (const char* document : {"[]", "5", "null", R"({"required":5})", R"({"required":[true]})",
                               R"({"optional":null})", R"({"required":{},"optional":"x"})"}) {
    expectModifiersRefused(document, 171, "modifiers type must be object");
  }
}

TEST(Modifiers, RequiredOfAnUnrecognisedType_AreRefused) {
  for (const char* value : {"1", R"("true")", "null", "{}", "[]"}) {
    expectModifiersRefused(R"({"required":{"inversionNeeded":)" + std::string(value) + "}}", 172,
                           "Required route modifier has unrecognized type");
    expectModifiersRefused(R"({"required":{"other":)" + std::string(value) + "}}", 172,
                           "Required route modifier has unrecognized type");
    EXPECT_EQ(modifiersOf(R"({"optional":{"inversionNeeded":)" + std::string(value) + "}}"),
              "0/0/0");
  }
}

TEST(Modifiers, DuplicateRequired_IsJudgedByTheTypeOfTheLast) {
  const auto expectRefused = [](const std::string& required) {
    expectModifiersRefused(R"({"required":)" + required + "}", 172,
                           "Required route modifier has unrecognized type");
  };
  EXPECT_EQ(modifiersOf(R"({"required":{"inversionNeeded":5,"inversionNeeded":true}})"), "1/0/0");
  expectRefused(R"({"inversionNeeded":true,"inversionNeeded":5})");
  EXPECT_EQ(modifiersOf(R"({"required":{"other":5,"other":true}})"), "0/0/0");
  expectRefused(R"({"other":true,"other":5})");
  EXPECT_EQ(
      modifiersOf(R"({"required":{"a":5,"b":{"a":true},"c":[5],"b":false,"a":true,"c":true}})"),
      "0/0/0");
  expectRefused(R"({"a":5,"b":{"a":true},"c":[5],"b":false,"c":true})");
  expectRefused(R"({"a":5,"A":true})");
  expectRefused(R"({"a":5,"a":true,"a":"x"})");
  expectRefused(R"({"a":5,"":true})");
  EXPECT_EQ(modifiersOf(R"({"required":{"":5,"":true}})"), "0/0/0");
}

TEST(Modifiers, DuplicateRequiredWithEscapes_IsOneMember) {
  EXPECT_EQ(modifiersOf(R"({"required":{"\u0061":"\u0062","a":true}})"), "0/0/0");
  EXPECT_EQ(modifiersOf(R"({"required":{"a":"\u0062","\u0061":true}})"), "0/0/0");
  expectModifiersRefused(R"({"required":{"a":true,"\u0061":"\u0062"}})", 172,
                         "Required route modifier has unrecognized type");
}

TEST(Modifiers, DuplicateRequiredGroup_ForgetsTheModifiersOfTheFirst) {
  EXPECT_EQ(modifiersOf(R"({"required":{"other":5},"required":{}})"), "0/0/0");
  EXPECT_EQ(modifiersOf(R"({"required":{"other":5},"required":{"inversionNeeded":true}})"),
            "1/0/0");
}

TEST(Modifiers, DuplicateOptional_CountsAsTheLastOfAnyType) {
  EXPECT_EQ(modifiersOf(R"({"optional":{"inversionNeeded":5,"inversionNeeded":true}})"), "0/1/0");
  EXPECT_EQ(modifiersOf(R"({"optional":{"inversionNeeded":true,"inversionNeeded":5}})"), "0/0/0");
}

TEST(Modifiers, ManyDuplicateRequired_AreEachJudgedByTheLast) {
  std::string wrong;
  std::string right;
  for (int i = 0; i < 50'000; ++i) {
    const std::string name = "\"" + std::to_string(i) + "\":";
    wrong += name + "5,";
    right += name + "true,";
  }
  EXPECT_EQ(modifiersOf(R"({"required":{)" + wrong + right + R"("x":true}})"), "0/0/0");
  EXPECT_EQ(failureOf([&] {
              readRequest(kSeeds, kDestinations,
                          R"({"required":{)" + right + wrong + R"("x":true}})");
            }).code,
            QUENRA_STATUS_INVALID_PARAMETER);
}

// ---- All documents ----

TEST(Request, SeveralBadDocuments_ReportTheFirst) {
  EXPECT_EQ(failureOf([] { readRequest("5", "6", "7"); }),
            requestFailure(101, "seeds must be an array", "5"));
  EXPECT_EQ(failureOf([] { readRequest("[]", "6", "7"); }),
            requestFailure(141, "destinations must be an array", "6"));
  EXPECT_EQ(failureOf([] { readRequest("[]", "[]", "7"); }),
            requestFailure(171, "modifiers type must be object", "7"));
}

TEST(Request, MissingDocument_IsRefused) {
  tRouteRequest request(std::pmr::get_default_resource());
  const auto& topography = zoark::findTopography("pxiContTriggerRouter");
  const tFailure expected = requestFailure(73, "document missing", "");
  EXPECT_EQ(failureOf([&] {
              readRouteRequest({nullptr, "[]", "{}"}, topography, request);
            }),
            expected);
  EXPECT_EQ(failureOf([&] {
              readRouteRequest({"[]", nullptr, "{}"}, topography, request);
            }),
            expected);
  EXPECT_EQ(failureOf([&] {
              readRouteRequest({"[]", "[]", nullptr}, topography, request);
            }),
            expected);
}

TEST(Request, MalformedDocument_IsRefusedWithTheOffsetOfItsFault) {
  expectSeedsRefused("", 71, "malformed JSON", R"(,"offset":0)");
  expectSeedsRefused("[] x", 71, "malformed JSON", R"(,"offset":3)");
  expectSeedsRefused("[],", 71, "malformed JSON", R"(,"offset":2)");
  expectSeedsRefused("[}", 71, "malformed JSON", R"(,"offset":1)");
  expectSeedsRefused("[1,]", 102, "seed must be an object");
  expectDestinationsRefused(R"(["FLOAT",])", 71, "malformed JSON", R"(,"offset":9)");
  expectDestinationsRefused("[\"FLOAT\"]\v", 71, "malformed JSON", R"(,"offset":9)");
  expectModifiersRefused("{'required':{}}", 71, "malformed JSON", R"(,"offset":1)");
  expectModifiersRefused("/**/{}", 71, "malformed JSON", R"(,"offset":0)");
  expectModifiersRefused(R"({"a":01})", 71, "malformed JSON", R"(,"offset":6)");
  expectModifiersRefused(R"({"a":NaN})", 71, "malformed JSON", R"(,"offset":5)");
}

TEST(Request, NumberBeyondADouble_IsANumber) {
  expectSeedsRefused("1e999", 101, "seeds must be an array");
  expectSeedsRefused("[1e999]", 102, "seed must be an object");
  expectSeedsRefused(R"([{"terminal":1e999}])", 104, "terminal name must be a string");
  expectSeedsRefused(R"([{"cost":1e999}])", 103, "terminal field missing");
  expectSeedsRefused(R"([{"cost":1e999,"terminal":5}])", 104, "terminal name must be a string");
  expectSeedsRefused(seedWithConstraints(R"({"inversionNeeded":1e999})"), 109,
                     "Unexpected constraint type",
                     R"(,"constraint":"inversionNeeded","expected_type":"bool",)"
                     R"("actual_type":"number")");
  expectDestinationsRefused("[1e999]", 142, "Terminals must be strings");
  expectModifiersRefused(R"({"required":{"inversionNeeded":1e999}})", 172,
                         "Required route modifier has unrecognized type");
}

TEST(Request, UnknownMemberBeyondADouble_IsSkipped) {
  EXPECT_EQ(seedsOf(R"([{"more":1e999,"terminal":"PXI_Trig0","cost":3,)"
                    R"("constraints":{"other":-1e999}}])"),
            "4/3/0 ");
  EXPECT_EQ(modifiersOf(R"({"more":1e999,"optional":{"other":[1e999]}})"), "0/0/0");
}

TEST(Request, LoneSurrogate_IsMalformedAtItsEscape) {
  expectDestinationsRefused(R"(["FLOAT","\udc00"])", 71, "malformed JSON", R"(,"offset":10)");
  expectDestinationsRefused(R"(["FLOAT","\ud800"])", 71, "malformed JSON", R"(,"offset":10)");
  expectModifiersRefused(R"({"x\udc00":1})", 71, "malformed JSON", R"(,"offset":3)");
}

TEST(Request, TextThatIsNotUnicode_IsMalformed) {
  for (const char* name :
       {R"("\ud800")", R"("\udc00")", R"("\ud800x")", R"("\ude00\ud83d")", "\"\xFF\"",
        "\"\xED\xA0\x80\"", "\"\xC3\"", R"("\u00g0")", R"("\x41")", "\"a\nb\""}) {
    const tFailure failure =
        failureOf([&] { readRequest(seedOfTerminal(name), kDestinations, kModifiers); });
    EXPECT_EQ(failure.code, QUENRA_STATUS_INVALID_PARAMETER) << name;
    EXPECT_NE(failure.description.find(R"("zoroco_debug":"malformed JSON")"), std::string::npos)
        << failure.description;
  }
}

TEST(Request, DocumentEndingWithinACharacter_IsReadNoFurther) {
  for (const std::string bytes : {"\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xF4"}) {
    const std::string text = R"(["x)" + bytes;
    // Of exactly its size, so that the address sanitizer reports a read past it.
    const auto document = std::make_unique<char[]>(text.size() + 1);
    text.copy(document.get(), text.size());
    tRouteRequest request(std::pmr::get_default_resource());
    EXPECT_EQ(failureOf([&] {
                readRouteRequest({"[]", document.get(), "{}"},
                                 zoark::findTopography("pxiContTriggerRouter"), request);
              }).code,
              QUENRA_STATUS_INVALID_PARAMETER);
  }
}

TEST(Request, DepthUpToTheLimit_IsRead) {
  const std::string opening(61, '[');
  const std::string closing(61, ']');
  EXPECT_EQ(seedsOf(R"([{"x":)" + opening + "5" + closing +
                    R"(,"terminal":"PXI_Trig0","cost":1,"constraints":{}}])"),
            "4/1/0 ");
}

TEST(Request, DeeperThanTheLimit_IsRefused) {
  const std::string document = R"({"x":)" + std::string(10000, '[');
  expectModifiersRefused(document, 72, "JSON nested too deeply", R"(,"offset":68)");
}

TEST(Request, TruncatedAtEveryByte_IsRefused) {
  const std::string seeds =
      R"([{"terminal":"TRIG_SMB","srcDeviceToken":"d","cost":1.5e1,"constraints":{"x":[true,null]}}])";
  for (size_t length = 0; length < seeds.size(); ++length) {
    const std::string cut = seeds.substr(0, length);
    EXPECT_EQ(failureOf([&] { readRequest(cut, kDestinations, kModifiers); }).code,
              QUENRA_STATUS_INVALID_PARAMETER)
        << cut;
  }
}

TEST(Request, DocumentOf1MiB_IsReportedInFull) {
  const std::string document = R"([{"x":")" + std::string(1 << 20, 'x') + R"("}])";
  expectSeedsRefused(document, 103, "terminal field missing");
}

TEST(Request, RefusedRequest_IsTraced) {
  tDebuggerListener listener;
  failureOf([] { readRequest("5", "[]", "{}"); });
  EXPECT_EQ(listener.take(), std::vector<std::string>{"[zoroco_debug] seeds must be an array\n"});
}

}  // namespace
}  // namespace nTests
