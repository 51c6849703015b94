// Invalid arguments of the routing exports. docs/robustness.md documents the behaviour.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "quenra_routing.h"
#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

constexpr size_t kTenMebibytes = size_t{10} * 1024 * 1024;

char* reallocate(char* current, size_t required, const char*, size_t) {
  return static_cast<char*>(std::realloc(current, required));
}

using tStatusCall = std::function<void(zoerr_Status*)>;

class RoutingArguments : public ContractTest {
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
    auto* const created =
        zoroco_ra_quenra_createSession(deviceName().c_str(), &reallocate, &status);
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
  static void tearDown(zoroco_RoutingAdaptorSession* on, uint32_t ticket) {
    constexpr uint64_t kHuge = ~uint64_t{0};
    zoroco_ra_quenra_beginExceptionalRouteDestruction(on, ticket, kHuge, kHuge);
    zoroco_ra_quenra_unprogramRoute(on, ticket, kHuge, kHuge);
    zoroco_ra_quenra_unreserveRoute(on, ticket, kHuge, kHuge);
    zoroco_ra_quenra_destroyRoute(on, ticket, kHuge, kHuge);
  }
  void expectAllRejected(const std::vector<tStatusCall>& calls) {
    for (size_t i = 0; i < calls.size(); ++i) {
      EXPECT_EQ(codeOf(calls[i]), QUENRA_STATUS_INVALID_PARAMETER) << "call " << i;
    }
    EXPECT_EQ(output, nullptr);
    EXPECT_TRUE(machine().log().empty()) << "the driver was asked";
  }
  // Handles that the library did not create.
  static zoroco_RoutingAdaptorSession* foreignSession() {
    static std::array<char, 256> memory{};
    return reinterpret_cast<zoroco_RoutingAdaptorSession*>(memory.data());
  }
  static zoroco_TerminalIterator* foreignIterator() {
    return reinterpret_cast<zoroco_TerminalIterator*>(foreignSession());
  }

  zoroco_RoutingAdaptorSession* session = nullptr;
  zoroco_TerminalIterator* terminals = nullptr;
  char* output = nullptr;
};

TEST_F(RoutingArguments, NullSession_IsRejectedByEveryFunction) {
  expectAllRejected(callsOnSession(nullptr));
}

TEST_F(RoutingArguments, InvalidSession_IsRejectedByEveryFunction) {
  expectAllRejected(callsOnSession(foreignSession()));
  expectAllRejected(callsOnSession(reinterpret_cast<zoroco_RoutingAdaptorSession*>(terminals)));
  expectAllRejected(callsOnSession(reinterpret_cast<zoroco_RoutingAdaptorSession*>(uintptr_t{1})));
}

TEST_F(RoutingArguments, StaleSession_IsRejectedByEveryFunction) {
  zoroco_RoutingAdaptorSession* const stale = createSession();
  zoroco_ra_quenra_destroySession(stale);
  machine().clearLog();
  expectAllRejected(callsOnSession(stale));
}

TEST_F(RoutingArguments, NullWrongOrStaleSession_IsIgnoredByTeardown) {
  zoroco_RoutingAdaptorSession* const stale = createSession();
  zoroco_ra_quenra_destroySession(stale);
  machine().clearLog();
  for (zoroco_RoutingAdaptorSession* const on :
       {stale, foreignSession(), static_cast<zoroco_RoutingAdaptorSession*>(nullptr)}) {
    tearDown(on, 1);
    zoroco_ra_quenra_destroySession(on);
  }
  EXPECT_TRUE(machine().log().empty());
}

TEST_F(RoutingArguments, NullIterator_IsRejectedByEveryFunction) {
  expectAllRejected(callsOnIterator(nullptr));
  EXPECT_TRUE(zoroco_ra_quenra_TerminalIterator_isEnd(nullptr));
}

TEST_F(RoutingArguments, InvalidIterator_IsRejectedByEveryFunction) {
  expectAllRejected(callsOnIterator(foreignIterator()));
  expectAllRejected(callsOnIterator(reinterpret_cast<zoroco_TerminalIterator*>(session)));
  EXPECT_TRUE(zoroco_ra_quenra_TerminalIterator_isEnd(foreignIterator()));
}

TEST_F(RoutingArguments, StaleIterator_IsRejectedByEveryFunction) {
  zoroco_TerminalIterator* const stale = terminalsOf(session);
  zoroco_ra_quenra_TerminalIterator_destroy(stale);
  expectAllRejected(callsOnIterator(stale));
  EXPECT_TRUE(zoroco_ra_quenra_TerminalIterator_isEnd(stale));
}

TEST_F(RoutingArguments, NullWrongOrStaleIterator_IsIgnoredByDestroying) {
  zoroco_TerminalIterator* const stale = terminalsOf(session);
  zoroco_ra_quenra_TerminalIterator_destroy(stale);
  zoroco_ra_quenra_TerminalIterator_destroy(stale);
  zoroco_ra_quenra_TerminalIterator_destroy(foreignIterator());
  zoroco_ra_quenra_TerminalIterator_destroy(nullptr);
  EXPECT_FALSE(zoroco_ra_quenra_TerminalIterator_isEnd(terminals)) << "others live on";
}

TEST_F(RoutingArguments, IteratorOfADestroyedSession_SendsNoRequest) {
  zoroco_RoutingAdaptorSession* const destroyed = createSession();
  zoroco_TerminalIterator* const orphan = terminalsOf(destroyed);
  zoroco_ra_quenra_destroySession(destroyed);
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

TEST_F(RoutingArguments, NullOrMisalignedStatus_HasNoEffect) {
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
    EXPECT_EQ(zoroco_ra_quenra_createSession(deviceName().c_str(), &reallocate, status), nullptr);
    EXPECT_EQ(zoroco_ra_quenra_createSessionWithDemotionFunc(deviceName().c_str(), &reallocate,
                                                             nullptr, nullptr, status),
              nullptr);
  }
  EXPECT_EQ(output, nullptr);
  EXPECT_TRUE(machine().log().empty());
  EXPECT_TRUE(std::all_of(memory.begin(), memory.end(), [](char byte) { return byte == 0; }));
}

TEST_F(RoutingArguments, NullOrMisalignedOutput_IsRejected) {
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

TEST_F(RoutingArguments, NullOutputOfAReservation_IsRejectedForAConflictOnly) {
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

TEST_F(RoutingArguments, NullName_HasNoSession) {
  EXPECT_EQ(codeOf([](zoerr_Status* s) {
              EXPECT_EQ(zoroco_ra_quenra_createSession(nullptr, &reallocate, s), nullptr);
            }),
            QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(codeOf([](zoerr_Status* s) {
              EXPECT_EQ(zoroco_ra_quenra_createSessionWithDemotionFunc(nullptr, &reallocate,
                                                                       nullptr, nullptr, s),
                        nullptr);
            }),
            QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(RoutingArguments, ForeignName_HasNoSession) {
  const std::string longest(256, 'x');
  for (const char* name : {R"(\\?\nothing)", longest.c_str()}) {
    EXPECT_EQ(codeOf([name](zoerr_Status* s) {
                EXPECT_EQ(zoroco_ra_quenra_createSession(name, &reallocate, s), nullptr);
              }),
              QUENRA_STATUS_NOT_FOUND)
        << name;
  }
}

TEST_F(RoutingArguments, NullReallocation_FailsWithMemoryFull) {
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

TEST_F(RoutingArguments, UnknownTicket_IsRejectedByTheDriver) {
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
    tearDown(session, ticket);
  }
  EXPECT_EQ(output, nullptr);
}

// ---- Documents ----

TEST_F(RoutingArguments, NullDocument_IsRejected) {
  EXPECT_EQ(calculate(nullptr, "[]", "{}"), QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(calculate("[]", nullptr, "{}"), QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(calculate("[]", "[]", nullptr), QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(RoutingArguments, DocumentOf10Mebibytes_IsRejectedWithItsReason) {
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

TEST_F(RoutingArguments, DocumentOfTheLargestSize_IsRead) {
  const std::string blanks(size_t{4} * 1024 * 1024 - 2, ' ');
  EXPECT_EQ(calculate((blanks + "[]").c_str(), "[]", "{}"), 0);
  EXPECT_EQ(calculate((blanks + " []").c_str(), "[]", "{}"), QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(RoutingArguments, DeepNesting_IsRejectedWithItsReason) {
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

TEST_F(RoutingArguments, NullUnknownOrUnterminatedName_FailsWithBadSelector) {
  const auto text = unterminatedText(257);
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
