// The calculation of routes, and the answer that describes them.
#include <cstring>

#include "tests/component/zoarkra/sessiontest.h"

namespace nTests {
namespace {

constexpr const char* kSeeds =
    R"([{"terminal":"TRIG_SMB","cost":1,"constraints":{"inversionNeeded":true}},)"
    R"({"terminal":"PXI_Trig7","cost":2,"constraints":{}}])";
constexpr const char* kDestinations = R"(["PXI_Trig0","PXI_Trig1"])";
constexpr const char* kModifiers =
    R"({"required":{"inversionNeeded":true},)"
    R"("optional":{"inversionNeeded":true,"calculateIgnoresReservations":true}})";
constexpr const char* kCalculation =
    "calculateRoute([2/1/1 11/2/0] -> [4 5], required 1, optional 1, options 1, capacity 4)";

class Calculation : public SessionTest {
 protected:
  uint32_t calculate(const char* seeds = kSeeds, const char* destinations = kDestinations,
                     const char* modifiers = kModifiers) {
    return session_->calculateRoute({seeds, destinations, modifiers}, answer_.output(), status_);
  }
};

TEST_F(Calculation, Request_ReachesTheDriverAsRecords) {
  calculate();
  EXPECT_EQ(calls(), tStrings{kCalculation});
}

TEST_F(Calculation, Routes_AreWrittenInTheirOrder) {
  router().routes = {
      {7, 4, 1, 0, 1, {}}, {4294967295, 5, 4294967295, 1, 0, {}}, {8, 11, 3, 2, 255, {}}};
  router().value = 77;
  EXPECT_EQ(calculate(), 77u);
  EXPECT_EQ(answer_.text(),
            R"([{"ticket":7,"destination":"PXI_Trig0","cost":1,"indexOfStartingSeed":0,)"
            R"("constraints":{"inversionNeeded":true}},)"
            R"({"ticket":4294967295,"destination":"PXI_Trig1","cost":4294967295,)"
            R"("indexOfStartingSeed":1,"constraints":{}},)"
            R"({"ticket":8,"destination":"PXI_Trig7","cost":3,"indexOfStartingSeed":2,)"
            R"("constraints":{"inversionNeeded":true}}])");
  EXPECT_EQ(status_.code, 0);
}

TEST_F(Calculation, NoRoute_IsWrittenAsAnEmptyArray) {
  EXPECT_EQ(calculate(), 0u);
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(Calculation, RouteToAnUnknownTerminal_HasAnEmptyName) {
  router().routes = {{7, 99, 1, 0, 0, {}}};
  calculate();
  EXPECT_EQ(answer_.text(),
            R"([{"ticket":7,"destination":"","cost":1,"indexOfStartingSeed":0,"constraints":{}}])");
}

TEST_F(Calculation, MoreRoutesThanTheCapacity_AreCutOff) {
  router().routes.assign(3, {7, 4, 1, 0, 0, {}});
  router().reportedRouteCount = 0xFFFFFFFF;
  calculate(kSeeds, R"(["PXI_Trig0"])", "{}");
  const std::string route =
      R"({"ticket":7,"destination":"PXI_Trig0","cost":1,"indexOfStartingSeed":0,"constraints":{}})";
  EXPECT_EQ(answer_.text(), "[" + route + "," + route + "]");
}

TEST_F(Calculation, EmptyRequest_IsSent) {
  calculate("[]", "[]", "{}");
  EXPECT_EQ(calls(), tStrings{"calculateRoute([] -> [], required 0, optional 0, options 0, "
                              "capacity 0)"});
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(Calculation, UnknownTerminals_AreSentAsZero) {
  calculate(R"([{"terminal":"nothing","cost":1,"constraints":{}}])", R"(["nowhere"])", "{}");
  EXPECT_EQ(calls(), tStrings{"calculateRoute([0/1/0] -> [0], required 0, optional 0, options 0, "
                              "capacity 2)"});
}

TEST_F(Calculation, BadRequest_IsNotSent) {
  EXPECT_EQ(failureOf([&] { calculate(kSeeds, "[5]"); }),
            (tFailure{-52005, R"({"error_constant":"zoapalerr_invalidParameter",)"
                              R"("file":"RoCoUtils","line":142,"component":"quenra",)"
                              R"("zoroco_debug":"Terminals must be strings","json":"[5]"})"}));
  EXPECT_TRUE(calls().empty());
  EXPECT_EQ(answer_.text(), "(none)");
}

TEST_F(Calculation, RefusedByTheDriver_HasNoAnswer) {
  router().codes = {-7};
  router().routes = {{7, 4, 1, 0, 0, {}}};
  EXPECT_EQ(failureOf([&] { calculate(); }), failureOfRouter(-7));
  EXPECT_EQ(answer_.text(), "(none)");
  EXPECT_TRUE(tAnswer::requests().empty());
}

TEST_F(Calculation, WarningOfTheDriver_ComesWithTheAnswer) {
  router().codes = {7};
  router().value = 5;
  EXPECT_EQ(calculate(), 5u);
  EXPECT_EQ(status_.code, 7);
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(Calculation, RequestUnderAWarning_SendsTheWarning) {
  status_.code = 5;
  calculate();
  EXPECT_EQ(calls(), tStrings{std::string(kCalculation) + " st=5"});
}

TEST_F(Calculation, ClientWithoutABuffer_FailsAfterTheCalculation) {
  create({&tAnswer::refuse, nullptr, nullptr});
  EXPECT_EQ(failureOf([&] { calculate(); }), kNoBuffer);
  EXPECT_EQ(answer_.text(), "(none)");
  EXPECT_EQ(calls().back(), kCalculation);
}

TEST_F(Calculation, ClientWithoutAReallocationFunction_FailsWithMemoryFull) {
  create({nullptr, nullptr, nullptr});
  EXPECT_EQ(failureOf([&] { calculate(); }), kNoBuffer);
}

TEST_F(Calculation, RequestWithoutAnOutput_IsNotSent) {
  EXPECT_EQ(failureOf([&] {
              session_->calculateRoute({kSeeds, kDestinations, kModifiers}, nullptr, status_);
            }),
            kOutputMissing);
  EXPECT_TRUE(calls().empty());
}

// ---- Answers of any operation ----

TEST_F(Calculation, ReallocationFunction_IsCalledOnceWithTheSizeOfTheAnswer) {
  calculate();
  ASSERT_EQ(tAnswer::requests().size(), 1u);
  EXPECT_EQ(tAnswer::requests()[0].required, 3u);
  EXPECT_EQ(tAnswer::requests()[0].requiredAgain, 3u);
  EXPECT_EQ(tAnswer::requests()[0].text, "[]");
}

TEST_F(Calculation, SecondAnswer_ReplacesTheFirst) {
  calculate();
  router().routes = {{7, 4, 1, 0, 0, {}}};
  calculate();
  EXPECT_EQ(answer_.text().substr(0, 12), R"([{"ticket":7)");
  EXPECT_EQ(tAnswer::requests().size(), 2u);
}

TEST_F(Calculation, ReallocationFunctionThatCopiesTheText_ReceivesItAgain) {
  create({[](char*, size_t required, const char* text, size_t) {
            char* const buffer = new char[required];
            std::memcpy(buffer, text, required);
            return buffer;
          },
          nullptr, nullptr});
  calculate();
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(Calculation, HandledConstraints_AreInversionNeededAlone) {
  session_->getHandledConstraints(answer_.output(), status_);
  EXPECT_EQ(answer_.text(), R"(["inversionNeeded"])");
  EXPECT_TRUE(calls().empty());
  EXPECT_EQ(failureOf([&] { session_->getHandledConstraints(nullptr, status_); }), kOutputMissing);
}

}  // namespace
}  // namespace nTests
