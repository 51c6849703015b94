// A driver that misbehaves in replies, counts, notices and completions. The address sanitizer ends
// the program on an access outside a buffer.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstring>
#include <functional>
#include <random>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"
#include "protocol/routingrequests.h"
#include "quenra.h"
#include "quenra_routing.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/component/misbehavingdriver/misbehavingdriver.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::machine;
using nFakeWindows::objects;
using nFakeWindows::tDriverRequest;

// Answers requests with this code by these bytes, and other requests as the model does.
template <class Reply>
auto answering(uint32_t code, const Reply& reply) {
  return [code, reply](const tDriverRequest& request) {
    if (request.code != code) {
      return request.byModel();
    }
    std::memcpy(request.output.data(), &reply, std::min(sizeof reply, request.output.size()));
    return tModelReply{0, static_cast<uint32_t>(request.output.size())};
  };
}

char* reallocate(char* current, size_t required, const char*, size_t) {
  return static_cast<char*>(std::realloc(current, required));
}

// Whole clients, each in a run of its own.
class ClientOfAMisbehavingDriver : public nFakeWindows::FakeWindowsTest {
 protected:
  void SetUp() override {
    FakeWindowsTest::SetUp();
    prepareMachine();
  }
};

// Single calls.
class MisbehavingDriver : public ClientOfAMisbehavingDriver {
 protected:
  void SetUp() override {
    ClientOfAMisbehavingDriver::SetUp();
    useVirtualTime();
  }
  void TearDown() override {
    closeSession();
    std::free(output);
    machine().useDriver(nullptr);
    ClientOfAMisbehavingDriver::TearDown();
  }

  static void open() {
    uint64_t handle = 0;
    ASSERT_EQ(QUENRA_openController(&handle), 0);
  }
  static void close() { QUENRA_closeController(QUENRA_HANDLE); }

  void openSession() {
    char name[256] = {};
    uint64_t size = sizeof name;
    ASSERT_EQ(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, name, &size), 0);
    zoerr_Status status = zoerr_Status_initial();
    session = zoroco_ra_quenra_createSessionWithDemotionFunc(
        name, reallocate,
        [](void* context, int32_t, zoerr_Status*, void*) {
          ++*static_cast<std::atomic<int>*>(context);
        },
        &demotions, &status);
    ASSERT_EQ(status.code, 0);
  }
  void closeSession() {
    zoroco_ra_quenra_destroySession(session);
    session = nullptr;
  }
  // The code of one call on the session.
  int32_t codeOf(const std::function<void(zoerr_Status*)>& call) {
    zoerr_Status status = zoerr_Status_initial();
    call(&status);
    zoerr_Status_release(&status);
    return status.code;
  }
  int32_t calculate() {
    return codeOf([this](zoerr_Status* status) {
      zoroco_ra_quenra_calculateRoute(session,
                                      R"([{"terminal":"TRIG_SMB","cost":5,"constraints":{}}])",
                                      R"(["PXI_Trig0","PXI_Trig1"])", "{}", &output, status);
    });
  }
  int32_t reserve() {
    return codeOf([this](zoerr_Status* status) {
      zoroco_ra_quenra_reserveRoute(session, 1, &output, status);
    });
  }
  int32_t path() {
    return codeOf([this](zoerr_Status* status) {
      zoroco_ra_quenra_getRouteTerminalPath(session, 1, &output, status);
    });
  }
  static void notify(uint32_t payloadSize, uint64_t notification = 0) {
    tSimulatorNotice notice{};
    notice.mask = 0x80000000;
    notice.payloadSize = payloadSize;
    notice.notification = notification;
    nSimulator::tSimulatedMachine().notify(notice);
  }
  // Lets the other threads run until they wait.
  [[nodiscard]] static bool isReached(const std::atomic<int>& counter, int count) {
    nFakeWindows::scheduler().settle();
    return counter >= count;
  }
  [[nodiscard]] bool isDelivered(int times = 1) const { return isReached(demotions, times); }

  zoroco_RoutingAdaptorSession* session = nullptr;
  char* output = nullptr;
  std::atomic<int> demotions = 0;
};

// ---- Replies ----

TEST_F(ClientOfAMisbehavingDriver, TruncatedReplies_AreHandled) {
  for (uint32_t length = 0; length < 13; ++length) {
    SCOPED_TRACE(length);
    tByteSource notices;
    runClient(
        [length](const tDriverRequest& request) {
          tModelReply reply = request.byModel();
          reply.size = std::min(reply.size, length);
          return reply;
        },
        notices);
  }
}

TEST_F(MisbehavingDriver, StatusOfAnyValue_IsReturnedUnchanged) {
  open();
  for (const int32_t code : {INT32_MIN, -1, 1, INT32_MAX}) {
    machine().useDriver(answering(REQUEST_GET_ATTRIBUTE, tGetAttributeReply{4, code}));
    uint32_t value = 0;
    EXPECT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_PROCESSOR_SETTING, &value),
              code);
  }
  close();
}

TEST_F(MisbehavingDriver, TextLongerThanItsBuffer_KeepsTheSizeOfTheBuffer) {
  open();
  machine().useDriver(answering(REQUEST_GET_ATTRIBUTE, tGetAttributeReply{0xFFFFFFFF, 0}));
  char text[8] = "";
  uint64_t size = sizeof text;
  EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, text, &size),
            0);
  EXPECT_EQ(size, sizeof text);
  machine().useDriver(answering(REQUEST_GET_ATTRIBUTE,
                                tGetAttributeReply{0xFFFFFFFF, QUENRA_STATUS_BUFFER_TOO_SMALL}));
  EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, text, &size),
            QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 0xFFFFFFFFu) << "the driver reports the size needed";
  close();
}

TEST_F(MisbehavingDriver, ImplausibleTableSize_FailsWithMemoryFull) {
  for (const auto& [text, table] : {std::pair<uint32_t, uint32_t>{0xFFFFFFFF, 0x7FFFFFFF},
                                    {0xFFFFFFFF, 16},
                                    {16, 0x7FFFFFFF},
                                    {16, 0x01000001}}) {
    machine().useDriver(
        answering(REQUEST_EXCHANGE_VALUES,
                  tExchangeValuesReply{text, table, DRIVER_STATUS_BUFFER_TOO_SMALL}));
    uint64_t handle = 0;
    EXPECT_EQ(QUENRA_openController(&handle), QUENRA_STATUS_MEMORY_FULL) << text << " " << table;
  }
}

// ---- Counts ----

TEST_F(MisbehavingDriver, MoreRoutesThanTheCapacity_AreTruncated) {
  openSession();
  machine().useDriver(answering(REQUEST_CALCULATE_ROUTE, tCalculateRouteReply{7, 0xFFFFFFFF, 0}));
  EXPECT_EQ(calculate(), 0);
  const std::string answer = output;
  EXPECT_EQ(std::count(answer.begin(), answer.end(), '{'), 8) << "four routes, each with a set";
}

TEST_F(MisbehavingDriver, ImplausibleConflictCount_FailsWithMemoryFull) {
  openSession();
  for (const uint32_t count : {1025u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    machine().useDriver(
        answering(REQUEST_RESERVE_ROUTE, tTicketListReply{count, DRIVER_STATUS_ROUTE_CONFLICT}));
    EXPECT_EQ(reserve(), QUENRA_STATUS_MEMORY_FULL) << count;
    EXPECT_EQ(output, nullptr);
  }
}

TEST_F(MisbehavingDriver, PathThatGrowsBetweenRequests_FailsAfterTwoRequests) {
  openSession();
  int requests = 0;
  machine().useDriver([&requests](const tDriverRequest& request) {
    if (request.code != REQUEST_GET_ROUTE_TERMINAL_PATH) {
      return request.byModel();
    }
    const tTicketListReply reply{40u << ++requests, DRIVER_STATUS_PATH_TOO_LONG};
    std::memcpy(request.output.data(), &reply, sizeof reply);
    return tModelReply{0, sizeof reply};
  });
  EXPECT_EQ(path(), DRIVER_STATUS_PATH_TOO_LONG);
  EXPECT_EQ(requests, 2);
  EXPECT_EQ(output, nullptr);
}

TEST_F(MisbehavingDriver, PathLongerThanItsBuffer_IsTruncated) {
  openSession();
  machine().useDriver(answering(REQUEST_GET_ROUTE_TERMINAL_PATH, tTicketListReply{0xFFFFFFFF, 0}));
  EXPECT_EQ(path(), 0);
  EXPECT_LT(std::strlen(output), 4096u);
}

TEST_F(MisbehavingDriver, ImplausiblePathLength_FailsWithMemoryFull) {
  openSession();
  machine().useDriver(answering(REQUEST_GET_ROUTE_TERMINAL_PATH,
                                tTicketListReply{0xFFFFFFFF, DRIVER_STATUS_PATH_TOO_LONG}));
  EXPECT_EQ(path(), QUENRA_STATUS_MEMORY_FULL);
}

// ---- Notices ----

TEST_F(MisbehavingDriver, NoticeForAnUnknownObject_IsDropped) {
  openSession();
  for (const uint64_t address : {uint64_t{1}, uint64_t{0x10000}, ~uint64_t{0},
                                 uint64_t{reinterpret_cast<uintptr_t>(this)}}) {
    notify(0, address);
  }
  notify(0);
  EXPECT_TRUE(isDelivered());
  EXPECT_EQ(demotions, 1);
}

TEST_F(MisbehavingDriver, PayloadLargerThanItsBuffer_EndsTheNotices) {
  for (const uint32_t size : {33u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    demotions = 0;
    openSession();
    notify(size);
    notify(0);
    // Joins the session's thread: no notice can arrive after that.
    closeSession();
    EXPECT_EQ(demotions, 0) << size;
  }
}

TEST_F(MisbehavingDriver, RepeatedCompletion_IsDeliveredOnce) {
  objects().repeatCompletions(2);
  openSession();
  notify(0);
  EXPECT_TRUE(isDelivered());
  closeSession();
  objects().repeatCompletions(1);
  EXPECT_EQ(demotions, 1);
}

TEST_F(MisbehavingDriver, DeliveryShorterThanANotice_IsDropped) {
  openSession();
  notify(0);
  EXPECT_TRUE(isDelivered());
  // The next three requests for a delivery complete immediately, without the bytes of a notice; the
  // fourth is armed.
  std::atomic<int> answered = 0;
  machine().useDriver([&answered](const tDriverRequest& request) {
    const bool isDelivery = request.code == REQUEST_ARM_DELIVERY;
    return isDelivery && ++answered < 4 ? tModelReply{0, 0} : request.byModel();
  });
  notify(0);
  EXPECT_TRUE(isDelivered(2));
  // The callback runs before the session's thread has read the short deliveries. Closing the session
  // now would leave them unread.
  EXPECT_TRUE(isReached(answered, 4));
  closeSession();
  EXPECT_EQ(answered, 4);
  EXPECT_EQ(demotions, 2) << "an old notice is not delivered again";
}

// ---- Random replies ----

TEST_F(ClientOfAMisbehavingDriver, RandomFaults_CauseNoHarm) {
  for (uint32_t seed = 1; seed <= 3000; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(random() % 2048);
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<uint8_t>(random()); });
    runClientWithFaults(bytes);
  }
}

}  // namespace
}  // namespace nTests
