// Callers that pass invalid arguments. docs/robustness.md documents the behaviour.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "quenra_routing.h"
#include "tests/contract/callsonhandle.h"
#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

constexpr size_t kUnended = 257;
constexpr size_t kTenMebibytes = size_t{10} * 1024 * 1024;

// Characters without a NUL, at the end of an allocation.
std::unique_ptr<char[]> unended(size_t length = kUnended) {
  auto text = std::make_unique<char[]>(length);
  std::memset(text.get(), 'x', length);
  return text;
}

// Storage for a number at a misaligned address.
template <class Number>
class tMisaligned {
 public:
  explicit tMisaligned(Number number) { std::memcpy(bytes_.data() + 1, &number, sizeof number); }

  [[nodiscard]] Number* pointer() {
    return reinterpret_cast<Number*>(reinterpret_cast<uintptr_t>(bytes_.data()) + 1);
  }
  [[nodiscard]] Number number() const {
    Number number{};
    std::memcpy(&number, bytes_.data() + 1, sizeof number);
    return number;
  }

 private:
  alignas(Number) std::array<char, sizeof(Number) + 1> bytes_{};
};

// ---- The controller ----

class HostileCaller : public ContractTest {};

TEST_F(HostileCaller, WrongHandle_IsRefusedByEveryFunction) {
  open();
  for (const tCallOnHandle& function : kCallsOnHandle) {
    for (const uint64_t handle : kWrongHandles) {
      EXPECT_EQ(function.call(handle), QUENRA_STATUS_INVALID_HANDLE) << function.name << handle;
    }
  }
}

TEST_F(HostileCaller, StaleHandle_IsRefusedByEveryFunction) {
  open();
  QUENRA_closeController(QUENRA_HANDLE);
  for (const tCallOnHandle& function : kCallsOnHandle) {
    const bool isTextWrite = std::string_view(function.name) == "setAttributeUTF8";
    EXPECT_EQ(function.call(QUENRA_HANDLE),
              isTextWrite ? QUENRA_STATUS_NO_CONTROLLER : QUENRA_STATUS_INVALID_HANDLE)
        << function.name;
  }
}

TEST_F(HostileCaller, WrongOrStaleHandle_IsIgnoredByClosing) {
  open();
  for (const uint64_t handle : kWrongHandles) {
    QUENRA_closeController(handle);
  }
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), 0) << "still open";
  QUENRA_closeController(QUENRA_HANDLE);
  QUENRA_closeController(QUENRA_HANDLE);
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), QUENRA_STATUS_INVALID_HANDLE);
}

TEST_F(HostileCaller, MisalignedHandlePointer_IsWritten) {
  tMisaligned<uint64_t> handle(17);
  EXPECT_EQ(QUENRA_openController(handle.pointer()), 0);
  EXPECT_EQ(handle.number(), QUENRA_HANDLE);
}

TEST_F(HostileCaller, MisalignedSize_IsReadAndWritten) {
  open();
  char text[64] = "";
  for (const uint32_t attribute :
       {uint32_t{QUENRA_ATTRIBUTE_PRODUCT_NAME}, uint32_t{QUENRA_ATTRIBUTE_DEVICE_PATH}}) {
    tMisaligned<uint64_t> size(1);
    EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, text, size.pointer()),
              QUENRA_STATUS_BUFFER_TOO_SMALL);
    EXPECT_GT(size.number(), 1u);
  }
}

TEST_F(HostileCaller, MisalignedValue_IsWritten) {
  open();
  tMisaligned<uint32_t> value(kUntouchedValue);
  EXPECT_EQ(
      QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, value.pointer()),
      0);
  EXPECT_EQ(value.number(), 2u);
  tMisaligned<int32_t> number(-5);
  EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, 0, number.pointer()),
            QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(number.number(), -5);
  tMisaligned<double> floating(-5);
  EXPECT_EQ(QUENRA_getAttributeDBL(QUENRA_HANDLE, 0, floating.pointer()),
            QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(floating.number(), -5);
}

TEST_F(HostileCaller, HugeSize_IsNoMoreThanTheTextNeeds) {
  open();
  for (const uint32_t attribute :
       {uint32_t{QUENRA_ATTRIBUTE_PRODUCT_NAME}, uint32_t{QUENRA_ATTRIBUTE_BUS_LOCATION},
        uint32_t{QUENRA_ATTRIBUTE_FIRMWARE_VERSION}, uint32_t{QUENRA_ATTRIBUTE_DEVICE_PATH}}) {
    std::array<char, 256> text{};
    uint64_t size = ~uint64_t{0};
    EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, text.data(), &size), 0);
    EXPECT_NE(text[0], '\0');
  }
}

// Ids that are not attributes, of the wrong type, and with an instance that does not exist.
constexpr uint32_t kForeignIds[] = {0, 1, 0x30000000, 0x10FFFF00, 0x20FFFF00, 0x100001FF, ~0u};

TEST_F(HostileCaller, ForeignIds_AreNotSupported) {
  tReferenceTable table;
  table.structure(0x9D) = tSmbiosStructure(0x9D, 0x06).byte(0x04, 1);
  useTable(table);
  open();
  for (const uint32_t id : kForeignIds) {
    SCOPED_TRACE(id);
    const uint32_t onController = (id & ~0x00F00000u) | QUENRA_SELECTOR_CONTROLLER;
    EXPECT_EQ(readText(onController), noText(QUENRA_STATUS_NOT_SUPPORTED));
    EXPECT_EQ(readUnsigned(onController), noValue(QUENRA_STATUS_NOT_SUPPORTED));
    int32_t number = 0;
    EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, id, &number), QUENRA_STATUS_NOT_SUPPORTED);
    double floating = 0;
    EXPECT_EQ(QUENRA_getAttributeDBL(QUENRA_HANDLE, id, &floating), QUENRA_STATUS_NOT_SUPPORTED);
    EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, onController, "text"),
              QUENRA_STATUS_NOT_SUPPORTED);
    EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, onController, 5), QUENRA_STATUS_NOT_SUPPORTED);
  }
}

TEST_F(HostileCaller, NullForANumber_IsRefusedWhereThereIsOne) {
  open();
  EXPECT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_MEMORY_SIZE, nullptr),
            QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, 0, nullptr), QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(QUENRA_getAttributeDBL(QUENRA_HANDLE, 0, nullptr), QUENRA_STATUS_NOT_SUPPORTED);
}

TEST_F(HostileCaller, NullForAText_IsRefused) {
  open();
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_TEXT_SETTING_OF_BOTH, nullptr),
            QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(HostileCaller, TextWithoutAnEnd_IsRefusedAndReadNoFurtherThanItMayGo) {
  open();
  machine().clearLog();
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_TEXT_SETTING_OF_BOTH, unended().get()),
            QUENRA_STATUS_INVALID_VALUE);
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_TEXT_SETTING_OF_BOTH, unended(256).get()),
            QUENRA_STATUS_INVALID_VALUE);
  EXPECT_TRUE(machine().log().empty());
}

// ---- Firmware ----

TEST_F(HostileCaller, ImageOnAMachineThatTakesNone_IsNotLookedAt) {
  tReferenceTable table;
  table.structure(0x9E) = tSmbiosStructure(0x9E, 0x06).byte(4, 0).byte(5, 0);
  useTable(table);
  open();
  const void* const nowhere = reinterpret_cast<const void*>(uintptr_t{1});
  for (const uint32_t options : {0u, 1u, 2u, ~0u}) {
    const int32_t code = QUENRA_updateFirmware2(QUENRA_HANDLE, nowhere, ~uint64_t{0}, options);
    EXPECT_LT(code, 0);
    EXPECT_EQ(QUENRA_updateFirmware(QUENRA_HANDLE, nowhere, ~uint64_t{0}), code);
  }
}

// ---- Routes ----

char* giveRoom(char* current, size_t required, const char*, size_t) {
  return static_cast<char*>(std::realloc(current, required));
}

using tStatusCall = std::function<void(zoerr_Status*)>;

class HostileClient : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    session = createSession();
    terminals = terminalsOf(session);
    ASSERT_NE(session, nullptr);
    ASSERT_NE(terminals, nullptr);
    machine().clearLog();
  }
  void TearDown() override {
    zoroco_ra_quenra_TerminalIterator_destroy(terminals);
    zoroco_ra_quenra_destroySession(session);
    std::free(output);
    ContractTest::TearDown();
  }

  static std::string deviceName() { return readText(QUENRA_ATTRIBUTE_DEVICE_PATH, 256).text; }
  static zoroco_RoutingAdaptorSession* createSession() {
    zoerr_Status status = zoerr_Status_initial();
    auto* const created = zoroco_ra_quenra_createSession(deviceName().c_str(), &giveRoom, &status);
    EXPECT_EQ(status.code, 0);
    zoerr_Status_release(&status);
    return created;
  }
  static zoroco_TerminalIterator* terminalsOf(zoroco_RoutingAdaptorSession* of) {
    zoerr_Status status = zoerr_Status_initial();
    auto* const iterator = zoroco_ra_quenra_getAllTerminals(of, &status, 0);
    zoerr_Status_release(&status);
    return iterator;
  }
  static int32_t codeOf(const tStatusCall& call) {
    zoerr_Status status = zoerr_Status_initial();
    call(&status);
    zoerr_Status_release(&status);
    return status.code;
  }
  int32_t calculate(const char* seeds, const char* destinations, const char* modifiers) {
    return codeOf([&](zoerr_Status* status) {
      EXPECT_EQ(
          zoroco_ra_quenra_calculateRoute(session, seeds, destinations, modifiers, &output, status),
          0u);
    });
  }

  // Every function on a session, with valid other arguments. Those that report nothing do not use
  // the status.
  std::vector<tStatusCall> callsOnSession(zoroco_RoutingAdaptorSession* on) {
    return {
        [=, this](zoerr_Status* s) { zoroco_ra_quenra_getHandledConstraints(on, &output, s); },
        [=, this](zoerr_Status* s) {
          zoroco_ra_quenra_calculateRoute(on, "[]", "[]", "{}", &output, s);
        },
        [=, this](zoerr_Status* s) { zoroco_ra_quenra_reserveRoute(on, 1, &output, s); },
        [=](zoerr_Status* s) { zoroco_ra_quenra_programRoute(on, 1, s); },
        [=, this](zoerr_Status* s) { zoroco_ra_quenra_getRouteTerminalPath(on, 1, &output, s); },
        [=](zoerr_Status* s) { EXPECT_EQ(zoroco_ra_quenra_getAllTerminals(on, s, 0), nullptr); },
        [=, this](zoerr_Status* s) {
          zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(on, terminals, "default", s);
        },
    };
  }
  std::vector<tStatusCall> callsOnIterator(zoroco_TerminalIterator* on) {
    return {
        [=](zoerr_Status* s) { zoroco_ra_quenra_TerminalIterator_next(on, s); },
        [=](zoerr_Status* s) {
          EXPECT_EQ(zoroco_ra_quenra_TerminalIterator_getStringAttribute(on, "name", s), nullptr);
        },
        [=](zoerr_Status* s) {
          EXPECT_FALSE(zoroco_ra_quenra_TerminalIterator_getBoolAttribute(on, "isOwned", s));
        },
        [=](zoerr_Status* s) {
          EXPECT_EQ(zoroco_ra_quenra_TerminalIterator_getU32Attribute(on, "id", s), 0u);
        },
        [=](zoerr_Status* s) { zoroco_ra_quenra_TerminalIterator_resetTerminal(on, "default", s); },
        [=, this](zoerr_Status* s) {
          zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(session, on, "default", s);
        },
    };
  }
  // The teardown functions, which report nothing.
  static void takeDown(zoroco_RoutingAdaptorSession* on, uint32_t ticket) {
    constexpr uint64_t kHuge = ~uint64_t{0};
    zoroco_ra_quenra_beginExceptionalRouteDestruction(on, ticket, kHuge, kHuge);
    zoroco_ra_quenra_unprogramRoute(on, ticket, kHuge, kHuge);
    zoroco_ra_quenra_unreserveRoute(on, ticket, kHuge, kHuge);
    zoroco_ra_quenra_destroyRoute(on, ticket, kHuge, kHuge);
  }
  void expectAllRefused(const std::vector<tStatusCall>& calls) {
    for (size_t i = 0; i < calls.size(); ++i) {
      EXPECT_EQ(codeOf(calls[i]), QUENRA_STATUS_INVALID_PARAMETER) << "call " << i;
    }
    EXPECT_EQ(output, nullptr);
    EXPECT_TRUE(machine().log().empty()) << "the driver was asked";
  }
  // Handles that the library did not create.
  static zoroco_RoutingAdaptorSession* strangeSession() {
    static std::array<char, 256> memory{};
    return reinterpret_cast<zoroco_RoutingAdaptorSession*>(memory.data());
  }
  static zoroco_TerminalIterator* strangeIterator() {
    return reinterpret_cast<zoroco_TerminalIterator*>(strangeSession());
  }

  zoroco_RoutingAdaptorSession* session = nullptr;
  zoroco_TerminalIterator* terminals = nullptr;
  char* output = nullptr;
};

TEST_F(HostileClient, NullSession_IsRefusedByEveryFunction) {
  expectAllRefused(callsOnSession(nullptr));
}

TEST_F(HostileClient, InvalidSession_IsRefusedByEveryFunction) {
  expectAllRefused(callsOnSession(strangeSession()));
  expectAllRefused(callsOnSession(reinterpret_cast<zoroco_RoutingAdaptorSession*>(terminals)));
  expectAllRefused(callsOnSession(reinterpret_cast<zoroco_RoutingAdaptorSession*>(uintptr_t{1})));
}

TEST_F(HostileClient, StaleSession_IsRefusedByEveryFunction) {
  zoroco_RoutingAdaptorSession* const stale = createSession();
  zoroco_ra_quenra_destroySession(stale);
  machine().clearLog();
  expectAllRefused(callsOnSession(stale));
}

TEST_F(HostileClient, NullWrongOrStaleSession_IsIgnoredByTakingDown) {
  zoroco_RoutingAdaptorSession* const stale = createSession();
  zoroco_ra_quenra_destroySession(stale);
  machine().clearLog();
  for (zoroco_RoutingAdaptorSession* const on :
       {stale, strangeSession(), static_cast<zoroco_RoutingAdaptorSession*>(nullptr)}) {
    takeDown(on, 1);
    zoroco_ra_quenra_destroySession(on);
  }
  EXPECT_TRUE(machine().log().empty());
}

TEST_F(HostileClient, NullIterator_IsRefusedByEveryFunction) {
  expectAllRefused(callsOnIterator(nullptr));
  EXPECT_TRUE(zoroco_ra_quenra_TerminalIterator_isEnd(nullptr));
}

TEST_F(HostileClient, InvalidIterator_IsRefusedByEveryFunction) {
  expectAllRefused(callsOnIterator(strangeIterator()));
  expectAllRefused(callsOnIterator(reinterpret_cast<zoroco_TerminalIterator*>(session)));
  EXPECT_TRUE(zoroco_ra_quenra_TerminalIterator_isEnd(strangeIterator()));
}

TEST_F(HostileClient, StaleIterator_IsRefusedByEveryFunction) {
  zoroco_TerminalIterator* const stale = terminalsOf(session);
  zoroco_ra_quenra_TerminalIterator_destroy(stale);
  expectAllRefused(callsOnIterator(stale));
  EXPECT_TRUE(zoroco_ra_quenra_TerminalIterator_isEnd(stale));
}

TEST_F(HostileClient, NullWrongOrStaleIterator_IsIgnoredByDestroying) {
  zoroco_TerminalIterator* const stale = terminalsOf(session);
  zoroco_ra_quenra_TerminalIterator_destroy(stale);
  zoroco_ra_quenra_TerminalIterator_destroy(stale);
  zoroco_ra_quenra_TerminalIterator_destroy(strangeIterator());
  zoroco_ra_quenra_TerminalIterator_destroy(nullptr);
  EXPECT_FALSE(zoroco_ra_quenra_TerminalIterator_isEnd(terminals)) << "others live on";
}

TEST_F(HostileClient, IteratorWhoseSessionIsGone_TellsItsTerminalsAndAsksNoDriver) {
  zoroco_RoutingAdaptorSession* const gone = createSession();
  zoroco_TerminalIterator* const orphan = terminalsOf(gone);
  zoroco_ra_quenra_destroySession(gone);
  // A session that replaces it is a different one.
  zoroco_RoutingAdaptorSession* const next = createSession();
  machine().clearLog();
  EXPECT_EQ(codeOf([&](zoerr_Status* s) {
              EXPECT_STREQ(zoroco_ra_quenra_TerminalIterator_getStringAttribute(orphan, "name", s),
                           "FLOAT");
            }),
            0);
  EXPECT_EQ(codeOf([&](zoerr_Status* s) {
              zoroco_ra_quenra_TerminalIterator_resetTerminal(orphan, "default", s);
            }),
            QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_TRUE(machine().log().empty());
  zoroco_ra_quenra_TerminalIterator_destroy(orphan);
  zoroco_ra_quenra_destroySession(next);
}

TEST_F(HostileClient, NullOrMisalignedStatus_HasNothingDone) {
  alignas(zoerr_Status) std::array<char, sizeof(zoerr_Status) + 1> memory{};
  auto* const misaligned =
      reinterpret_cast<zoerr_Status*>(reinterpret_cast<uintptr_t>(memory.data()) + 1);
  for (zoerr_Status* const status : {static_cast<zoerr_Status*>(nullptr), misaligned}) {
    for (const tStatusCall& call : callsOnSession(session)) {
      call(status);
    }
    for (const tStatusCall& call : callsOnIterator(terminals)) {
      call(status);
    }
    EXPECT_EQ(zoroco_ra_quenra_createSession(deviceName().c_str(), &giveRoom, status), nullptr);
    EXPECT_EQ(zoroco_ra_quenra_createSessionWithDemotionFunc(deviceName().c_str(), &giveRoom,
                                                             nullptr, nullptr, status),
              nullptr);
  }
  EXPECT_EQ(output, nullptr);
  EXPECT_TRUE(machine().log().empty());
  EXPECT_TRUE(std::all_of(memory.begin(), memory.end(), [](char byte) { return byte == 0; }));
}

TEST_F(HostileClient, NullOrMisalignedOutput_IsRefused) {
  alignas(char*) std::array<char, sizeof(char*) + 1> memory{};
  auto** const misaligned =
      reinterpret_cast<char**>(reinterpret_cast<uintptr_t>(memory.data()) + 1);
  for (char** const place : {static_cast<char**>(nullptr), misaligned}) {
    EXPECT_EQ(
        codeOf([&](zoerr_Status* s) { zoroco_ra_quenra_getHandledConstraints(session, place, s); }),
        QUENRA_STATUS_INVALID_PARAMETER);
    EXPECT_EQ(codeOf([&](zoerr_Status* s) {
                zoroco_ra_quenra_calculateRoute(session, "[]", "[]", "{}", place, s);
              }),
              QUENRA_STATUS_INVALID_PARAMETER);
    EXPECT_EQ(codeOf([&](zoerr_Status* s) {
                zoroco_ra_quenra_getRouteTerminalPath(session, 1, place, s);
              }),
              QUENRA_STATUS_INVALID_PARAMETER);
  }
  EXPECT_TRUE(machine().log().empty());
  EXPECT_TRUE(std::all_of(memory.begin(), memory.end(), [](char byte) { return byte == 0; }));
}

TEST_F(HostileClient, NullOutputOfAReservation_IsRefusedOnlyWhenThereIsAnAnswer) {
  EXPECT_EQ(
      codeOf([&](zoerr_Status* s) { zoroco_ra_quenra_reserveRoute(session, 4711, nullptr, s); }),
      SIMULATOR_STATUS_NO_SUCH_TICKET);
  tSimulatorScript conflict{};
  conflict.interfaceKind = kSimulatorInterfaceDevicePath;
  conflict.action = kSimulatorActionAnswerCode;
  conflict.driverStatus = QUENRA_STATUS_ROUTE_CONFLICT;
  machine().addScript(conflict);
  EXPECT_EQ(
      codeOf([&](zoerr_Status* s) { zoroco_ra_quenra_reserveRoute(session, 4711, nullptr, s); }),
      QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(HostileClient, NullName_HasNoSession) {
  EXPECT_EQ(codeOf([](zoerr_Status* s) {
              EXPECT_EQ(zoroco_ra_quenra_createSession(nullptr, &giveRoom, s), nullptr);
            }),
            QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(codeOf([](zoerr_Status* s) {
              EXPECT_EQ(zoroco_ra_quenra_createSessionWithDemotionFunc(nullptr, &giveRoom, nullptr,
                                                                       nullptr, s),
                        nullptr);
            }),
            QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(HostileClient, ForeignName_HasNoSession) {
  const std::string longest(256, 'x');
  for (const char* name : {R"(\\?\nothing)", longest.c_str()}) {
    EXPECT_EQ(codeOf([name](zoerr_Status* s) {
                EXPECT_EQ(zoroco_ra_quenra_createSession(name, &giveRoom, s), nullptr);
              }),
              QUENRA_STATUS_NOT_FOUND)
        << name;
  }
}

TEST_F(HostileClient, NullReallocation_MakesEveryAnswerShortOfMemory) {
  zoroco_RoutingAdaptorSession* poor = nullptr;
  EXPECT_EQ(codeOf([&poor](zoerr_Status* s) {
              poor = zoroco_ra_quenra_createSession(deviceName().c_str(), nullptr, s);
            }),
            0);
  EXPECT_EQ(
      codeOf([&](zoerr_Status* s) { zoroco_ra_quenra_getHandledConstraints(poor, &output, s); }),
      QUENRA_STATUS_MEMORY_FULL);
  zoroco_ra_quenra_destroySession(poor);
}

TEST_F(HostileClient, ForeignTicket_IsTheDriversToRefuse) {
  for (const uint32_t ticket : {0u, 4711u, ~0u}) {
    EXPECT_EQ(codeOf([&](zoerr_Status* s) {
                zoroco_ra_quenra_reserveRoute(session, ticket, &output, s);
              }),
              SIMULATOR_STATUS_NO_SUCH_TICKET);
    EXPECT_EQ(codeOf([&](zoerr_Status* s) { zoroco_ra_quenra_programRoute(session, ticket, s); }),
              SIMULATOR_STATUS_NO_SUCH_TICKET);
    EXPECT_EQ(codeOf([&](zoerr_Status* s) {
                zoroco_ra_quenra_getRouteTerminalPath(session, ticket, &output, s);
              }),
              SIMULATOR_STATUS_NO_SUCH_TICKET);
    takeDown(session, ticket);
  }
  EXPECT_EQ(output, nullptr);
}

// ---- Documents ----

TEST_F(HostileClient, NullDocument_IsRefused) {
  EXPECT_EQ(calculate(nullptr, "[]", "{}"), QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(calculate("[]", nullptr, "{}"), QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(calculate("[]", "[]", nullptr), QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(HostileClient, DocumentOf10Mebibytes_IsRefusedWithItsReason) {
  const std::string blanks(kTenMebibytes, ' ');
  for (const auto& [seeds, destinations, modifiers] :
       {std::array<std::string, 3>{blanks + "[]", "[]", "{}"},
        {"[]", blanks + "[]", "{}"},
        {"[]", "[]", blanks + "{}"}}) {
    zoerr_Status status = zoerr_Status_initial();
    zoroco_ra_quenra_calculateRoute(session, seeds.c_str(), destinations.c_str(), modifiers.c_str(),
                                    &output, &status);
    EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
    EXPECT_STREQ(status.description,
                 R"({"error_constant":"zoapalerr_invalidParameter","file":"RoCoUtils","line":74,)"
                 R"("component":"quenra","zoroco_debug":"document too large","json":"",)"
                 R"("offset":4194304})");
    zoerr_Status_release(&status);
  }
  EXPECT_TRUE(machine().log().empty());
}

TEST_F(HostileClient, DocumentOfTheLargestSize_IsRead) {
  const std::string blanks(size_t{4} * 1024 * 1024 - 2, ' ');
  EXPECT_EQ(calculate((blanks + "[]").c_str(), "[]", "{}"), 0);
  EXPECT_EQ(calculate((blanks + " []").c_str(), "[]", "{}"), QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(HostileClient, DeepNesting_IsRefusedWithItsReason) {
  for (const size_t levels : {size_t{65}, size_t{100'000}}) {
    const std::string deep = std::string(levels, '[') + std::string(levels, ']');
    zoerr_Status status = zoerr_Status_initial();
    const std::string modifiers = R"({"x":)" + deep + "}";
    zoroco_ra_quenra_calculateRoute(session, "[]", "[]", modifiers.c_str(), &output, &status);
    EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
    EXPECT_THAT(status.description,
                testing::HasSubstr(R"("zoroco_debug":"JSON nested too deeply")"));
    zoerr_Status_release(&status);
  }
}

// ---- Names of attributes and modes ----

TEST_F(HostileClient, NullForeignOrUnendedName_IsAnUnknownSelector) {
  const auto text = unended();
  for (const char* name : {static_cast<const char*>(nullptr), "", "Name", "name ",
                           static_cast<const char*>(text.get())}) {
    EXPECT_EQ(codeOf([=, this](zoerr_Status* s) {
                zoroco_ra_quenra_TerminalIterator_getStringAttribute(terminals, name, s);
              }),
              QUENRA_STATUS_BAD_SELECTOR);
    EXPECT_EQ(codeOf([=, this](zoerr_Status* s) {
                zoroco_ra_quenra_TerminalIterator_getBoolAttribute(terminals, name, s);
              }),
              QUENRA_STATUS_BAD_SELECTOR);
    EXPECT_EQ(codeOf([=, this](zoerr_Status* s) {
                zoroco_ra_quenra_TerminalIterator_getU32Attribute(terminals, name, s);
              }),
              QUENRA_STATUS_BAD_SELECTOR);
    EXPECT_EQ(codeOf([=, this](zoerr_Status* s) {
                zoroco_ra_quenra_TerminalIterator_resetTerminal(terminals, name, s);
              }),
              QUENRA_STATUS_BAD_SELECTOR);
    EXPECT_EQ(codeOf([=, this](zoerr_Status* s) {
                zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(session, terminals, name,
                                                                         s);
              }),
              QUENRA_STATUS_BAD_SELECTOR);
  }
  EXPECT_TRUE(machine().log().empty());
}

}  // namespace
}  // namespace nTests
