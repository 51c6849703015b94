// The merge of the library's status into a client's record.
#include "routingadaptorinterface/clientstatus.h"

#include <gtest/gtest.h>

#include <array>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/component/protons/status/descriptiontext.h"
#include "tests/component/routingadaptorinterface/clientrecord.h"
#include "zoapal/protons/status/descriptionwriter.h"

namespace nTests {
namespace {

using zoroco::mergeIntoClient;

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

}  // namespace
}  // namespace nTests
