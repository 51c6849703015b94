// A client's status: the record of the routing header in programs in C and C++, the merge of the
// library's status into it, and the exceptions that an export reports in it.
#include <gtest/gtest.h>

#include <array>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "routingadaptorinterface/clientstatus.h"
#include "tests/component/protons/status/descriptiontext.h"
#include "tests/component/routingadaptorinterface/routingclient.h"
#include "tests/component/routingadaptorinterface/routingheader.h"
#include "zoapal/protons/status/descriptionwriter.h"

namespace nTests {
namespace {

using zoroco::mergeIntoClient;
using zoroco::runSilently;
using zoroco::runWithoutThrowing;

// ---- The record of the header ----

constexpr tStatusFunctions kStatusFunctionsOfCpp{&zoerr_Status_initial, &zoerr_Status_reallocate,
                                                 &zoerr_Status_release};

struct tLanguage {
  const char* name;
  const tStatusFunctions* functions;
};

class ClientStatus : public testing::TestWithParam<tLanguage> {
 protected:
  ClientStatus() : status_(functions().initial()) {}
  ~ClientStatus() override { functions().release(&status_); }

  [[nodiscard]] static const tStatusFunctions& functions() { return *GetParam().functions; }
  [[nodiscard]] std::string description() const { return descriptionOf(recordOf(status_)); }

  zoerr_Status status_;
};

TEST_P(ClientStatus, Initially_IsSuccessWithoutADescription) {
  EXPECT_EQ(status_.code, 0);
  EXPECT_EQ(status_.capacity, 0u);
  EXPECT_EQ(status_.description, nullptr);
  EXPECT_NE(status_.reallocate, nullptr);
}

TEST_P(ClientStatus, FirstBuffer_IsAnEmptyObjectOf512Bytes) {
  EXPECT_TRUE(status_.reallocate(&status_, 4));
  EXPECT_EQ(status_.capacity, 512u);
  EXPECT_EQ(description(), "{}");
}

TEST_P(ClientStatus, Growth_GoesToTheNextPowerOfTwoAndKeepsTheText) {
  ASSERT_TRUE(status_.reallocate(&status_, 512));
  std::string_view(R"({"line":7})").copy(status_.description, 10);
  EXPECT_TRUE(status_.reallocate(&status_, 513));
  EXPECT_EQ(status_.capacity, 1024u);
  EXPECT_EQ(description(), R"({"line":7})");
}

TEST_P(ClientStatus, SufficientCapacity_ChangesNothing) {
  ASSERT_TRUE(status_.reallocate(&status_, 512));
  const char* const before = status_.description;
  EXPECT_TRUE(status_.reallocate(&status_, 512));
  EXPECT_EQ(status_.description, before);
}

TEST_P(ClientStatus, ImpossibleCapacity_IsRefused) {
  ASSERT_TRUE(status_.reallocate(&status_, 1));
  EXPECT_FALSE(status_.reallocate(&status_, 0x80000000));
  EXPECT_EQ(status_.capacity, 512u);
  EXPECT_EQ(description(), "{}");
}

TEST_P(ClientStatus, Released_KeepsItsCode) {
  status_.code = -5;
  ASSERT_TRUE(status_.reallocate(&status_, 1));
  functions().release(&status_);
  functions().release(&status_);
  EXPECT_EQ(status_.code, -5);
  EXPECT_EQ(status_.capacity, 0u);
  EXPECT_EQ(status_.description, nullptr);
}

TEST_P(ClientStatus, WithoutAReallocationFunction_CanBeReleased) {
  status_.reallocate = nullptr;
  functions().release(&status_);
  EXPECT_EQ(status_.description, nullptr);
}

INSTANTIATE_TEST_SUITE_P(In, ClientStatus,
                         testing::Values(tLanguage{"C", &kStatusFunctionsOfC},
                                         tLanguage{"Cpp", &kStatusFunctionsOfCpp}),
                         [](const auto& language) { return std::string(language.param.name); });

// ---- The merge into a client's record ----

struct tSource : zoerr::tOwnedStatus {
  explicit tSource(int32_t newCode, const char* file = "file") {
    EXPECT_TRUE(set(newCode, {file, 7}));
  }
};

constexpr const char* kDescription = R"({"file":"file","line":7,"component":"quenra"})";

TEST(MergeIntoClient, Error_ArrivesWithItsDescription) {
  tClientStatus client;
  mergeIntoClient(client, tSource(-5));
  EXPECT_EQ(client.code, -5);
  EXPECT_EQ(descriptionOf(recordOf(client)), kDescription);
}

TEST(MergeIntoClient, Success_ChangesNothing) {
  tClientStatus client;
  mergeIntoClient(client, zoerr::Status());
  EXPECT_EQ(client.code, 0);
  EXPECT_EQ(client.description, nullptr);
}

TEST(MergeIntoClient, WarningOnAWarning_KeepsTheFirst) {
  tClientStatus client;
  mergeIntoClient(client, tSource(5));
  mergeIntoClient(client, tSource(7, "other"));
  EXPECT_EQ(client.code, 5);
  EXPECT_EQ(descriptionOf(recordOf(client)), kDescription);
}

TEST(MergeIntoClient, ErrorOnAWarning_ReplacesItWithItsText) {
  tClientStatus client;
  mergeIntoClient(client, tSource(5, "a file with a longer name"));
  mergeIntoClient(client, tSource(-7));
  EXPECT_EQ(client.code, -7);
  EXPECT_EQ(descriptionOf(recordOf(client)), kDescription);
}

TEST(MergeIntoClient, ErrorOnAnError_KeepsTheFirst) {
  tClientStatus client;
  mergeIntoClient(client, tSource(-5));
  mergeIntoClient(client, tSource(-7, "other"));
  EXPECT_EQ(client.code, -5);
  EXPECT_EQ(descriptionOf(recordOf(client)), kDescription);
}

TEST(MergeIntoClient, SourceWithoutADescription_EmptiesThatOfTheClient) {
  tClientStatus client;
  mergeIntoClient(client, tSource(5));
  zoerr::Status bare;
  bare.code = -7;
  mergeIntoClient(client, bare);
  EXPECT_EQ(client.code, -7);
  EXPECT_EQ(descriptionOf(recordOf(client)), "{}");
}

TEST(MergeIntoClient, LongDescription_GrowsTheBuffer) {
  const std::string name(600, 'x');
  tClientStatus client;
  mergeIntoClient(client, tSource(5));
  mergeIntoClient(client, tSource(-7, name.c_str()));
  EXPECT_EQ(client.capacity, 1024u);
  EXPECT_EQ(descriptionOf(recordOf(client)),
            R"({"file":")" + name + R"(","line":7,"component":"quenra"})");
}

TEST(MergeIntoClient, ClientWithoutAReallocationFunction_ReceivesTheCodeAlone) {
  zoerr_Status client{0, 0, nullptr, nullptr};
  mergeIntoClient(client, tSource(-7));
  EXPECT_EQ(client.code, -7);
  EXPECT_EQ(client.description, nullptr);
}

TEST(MergeIntoClient, ReallocationThatFails_StoresTheCodeAlone) {
  zoerr_Status client{0, 0, [](zoerr_Status*, uint32_t) { return false; }, nullptr};
  mergeIntoClient(client, tSource(-7));
  EXPECT_EQ(client.code, -7);
  EXPECT_EQ(client.description, nullptr);
}

TEST(MergeIntoClient, ReallocationThatSucceedsWithoutABuffer_StoresTheCodeAlone) {
  zoerr_Status client{0, 0, [](zoerr_Status*, uint32_t) { return true; }, nullptr};
  mergeIntoClient(client, tSource(-7));
  EXPECT_EQ(client.code, -7);
  EXPECT_EQ(client.description, nullptr);
}

TEST(MergeIntoClient, BufferThatCannotGrow_IsEmptied) {
  std::array<char, 10> buffer{};
  zoerr::resetDescription(buffer.data(), buffer.size());
  zoerr_Status client{0, buffer.size(), nullptr, buffer.data()};
  mergeIntoClient(client, tSource(-7));
  EXPECT_EQ(client.code, -7);
  EXPECT_EQ(descriptionOf(recordOf(client)), "{}");
}

bool throwException(zoerr_Status*, uint32_t) {
  throw std::runtime_error("client");
}

TEST(MergeIntoClient, ReallocationThatThrows_StoresTheErrorAlone) {
  zoerr_Status client{0, 0, &throwException, nullptr};
  mergeIntoClient(client, tSource(-7));
  EXPECT_EQ(client.code, -7);
  EXPECT_EQ(client.description, nullptr);
}

TEST(MergeIntoClient, ReallocationThatThrows_LeavesAnEmptyDescriptionInTheBuffer) {
  std::array<char, 10> buffer{};
  zoerr::resetDescription(buffer.data(), buffer.size());
  zoerr_Status client{5, buffer.size(), &throwException, buffer.data()};
  mergeIntoClient(client, tSource(-7));
  EXPECT_EQ(client.code, -7);
  EXPECT_EQ(descriptionOf(recordOf(client)), "{}");
  EXPECT_EQ(client.capacity, buffer.size());
}

TEST(MergeIntoClient, ReallocationThatThrowsForAWarning_FailsWithInternalError) {
  zoerr_Status client{0, 0, &throwException, nullptr};
  mergeIntoClient(client, tSource(7));
  EXPECT_EQ(client.code, QUENRA_STATUS_INTERNAL_ERROR);
  EXPECT_EQ(client.description, nullptr);
}

TEST(MergeIntoClient, ReallocationThatThrowsForShortMemory_FailsWithInternalError) {
  zoerr_Status client{0, 0, [](zoerr_Status*, uint32_t) -> bool { throw std::bad_alloc(); },
                      nullptr};
  mergeIntoClient(client, tSource(7));
  EXPECT_EQ(client.code, QUENRA_STATUS_INTERNAL_ERROR);
}

TEST(MergeIntoClient, ReallocationThatThrows_IsNotCalledWhereNothingIsStored) {
  zoerr_Status client{5, 0, &throwException, nullptr};
  mergeIntoClient(client, tSource(7));
  EXPECT_EQ(client.code, 5);
}

TEST(MergeIntoClient, Reallocation_IsCalledWithTheBytesNeeded) {
  static std::vector<uint32_t> requested;
  static std::array<char, 64> buffer;
  requested.clear();
  zoerr_Status client{0, 0,
                      [](zoerr_Status* status, uint32_t newCapacity) {
                        requested.push_back(newCapacity);
                        status->description = buffer.data();
                        status->capacity = newCapacity;
                        return true;
                      },
                      nullptr};
  mergeIntoClient(client, tSource(-7));
  const auto needed = static_cast<uint32_t>(std::string_view(kDescription).size() + 2);
  EXPECT_EQ(requested, std::vector<uint32_t>{needed});
  EXPECT_EQ(descriptionOf(recordOf(client)), kDescription);
}

// ---- Exceptions of an operation ----

TEST(RoutingBoundary, Success_ReturnsTheResultAndKeepsTheStatus) {
  tClientStatus client;
  EXPECT_EQ(runWithoutThrowing(&client, 7, [](zoerr::Status&) { return 8; }), 8);
  EXPECT_EQ(client.code, 0);
  EXPECT_EQ(client.description, nullptr);
}

TEST(RoutingBoundary, StatusWithAnError_RunsNothing) {
  tClientStatus client;
  client.code = -1;
  bool hasRun = false;
  EXPECT_EQ(runWithoutThrowing(&client, 7,
                               [&](zoerr::Status&) {
                                 hasRun = true;
                                 return 8;
                               }),
            7);
  EXPECT_FALSE(hasRun);
  EXPECT_EQ(client.code, -1);
}

TEST(RoutingBoundary, NoStatus_RunsNothing) {
  bool hasRun = false;
  EXPECT_EQ(runWithoutThrowing(nullptr, 7,
                               [&](zoerr::Status&) {
                                 hasRun = true;
                                 return 8;
                               }),
            7);
  EXPECT_FALSE(hasRun);
}

TEST(RoutingBoundary, Warning_ReachesTheOperationAndIsKept) {
  tClientStatus client;
  client.code = 5;
  EXPECT_EQ(runWithoutThrowing(&client, 7, [](zoerr::Status& own) { return own.code; }), 5);
  EXPECT_EQ(client.code, 5);
}

TEST(RoutingBoundary, ShortMemory_BecomesMemoryFull) {
  tClientStatus client;
  EXPECT_EQ(runWithoutThrowing(&client, 7, [](zoerr::Status&) -> int { throw std::bad_alloc(); }),
            7);
  EXPECT_EQ(client.code, QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(descriptionOf(recordOf(client)),
            R"({"error_constant":"nZOAPALS100::tStatus::kMemoryFull",)"
            R"("file":"routingadaptorinterface\\routingadaptorexports","line":61,)"
            R"("component":"quenra"})");
}

TEST(RoutingBoundary, ShortMemoryUnderAWarning_ReplacesIt) {
  tClientStatus client;
  client.code = 5;
  runWithoutThrowing(&client, 7, [](zoerr::Status&) -> int { throw std::bad_alloc(); });
  EXPECT_EQ(client.code, QUENRA_STATUS_MEMORY_FULL);
}

TEST(RoutingBoundary, ExceptionWithAStatus_IsThatStatus) {
  tClientStatus client;
  zoerr::tOwnedStatus raised;
  raised.set(-77, {"file", 5});
  EXPECT_EQ(runWithoutThrowing(&client, 7,
                               [&](zoerr::Status&) -> int { throw zoerr::Exception(raised); }),
            7);
  EXPECT_EQ(client.code, -77);
  EXPECT_EQ(descriptionOf(recordOf(client)), R"({"file":"file","line":5,"component":"quenra"})");
}

TEST(RoutingBoundary, WarningOfTheOperation_ArrivesWithItsDescription) {
  tClientStatus client;
  runWithoutThrowing(&client, 7, [](zoerr::Status& own) {
    own.set(5, {"file", 5});
    return 8;
  });
  EXPECT_EQ(client.code, 5);
  EXPECT_EQ(descriptionOf(recordOf(client)), R"({"file":"file","line":5,"component":"quenra"})");
}

TEST(RoutingBoundary, AnyOtherException_BecomesInternalError) {
  tClientStatus first;
  runWithoutThrowing(&first, 7, [](zoerr::Status&) -> int { throw std::runtime_error("fault"); });
  EXPECT_EQ(first.code, QUENRA_STATUS_INTERNAL_ERROR);
  EXPECT_EQ(descriptionOf(recordOf(first)),
            R"({"file":"routingadaptorinterface\\routingadaptorexports","line":74,)"
            R"("component":"quenra"})");
  tClientStatus second;
  runWithoutThrowing(&second, 7, [](zoerr::Status&) -> int { throw 5; });
  EXPECT_EQ(second.code, QUENRA_STATUS_INTERNAL_ERROR);
}

TEST(RoutingBoundary, ClientThatThrowsForTheDescriptionOfAWarning_HasNoResult) {
  zoerr_Status client{
      0, 0, [](zoerr_Status*, uint32_t) -> bool { throw std::runtime_error("client"); }, nullptr};
  EXPECT_EQ(runWithoutThrowing(&client, 7,
                               [](zoerr::Status& own) {
                                 own.set(5, {"file", 5});
                                 return 8;
                               }),
            7);
  EXPECT_EQ(client.code, QUENRA_STATUS_INTERNAL_ERROR);
}

TEST(RoutingBoundary, RunSilently_DropsEveryException) {
  EXPECT_EQ(runSilently(7, [] { return 8; }), 8);
  EXPECT_EQ(runSilently(7, []() -> int { throw std::bad_alloc(); }), 7);
  EXPECT_EQ(runSilently(7, []() -> int { throw zoerr::Exception(); }), 7);
  EXPECT_EQ(runSilently(7, []() -> int { throw 5; }), 7);
}

}  // namespace
}  // namespace nTests
