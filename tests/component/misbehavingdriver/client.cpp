// A client of the exports, run with a misbehaving driver.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "protocol/controllerrequests.h"
#include "quenra.h"
#include "quenra_routing.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/misbehavingdriver/misbehavingdriver.h"
#include "tests/fakewindows/com.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::machine;
using nFakeWindows::objects;
using nFakeWindows::tOffTheRecord;

void require(bool condition, const char* failure) {
  if (!condition) {
    std::fprintf(stderr, "a client of a misbehaving driver: %s\n", failure);
    std::abort();
  }
}

// ---- Attributes ----

void readText(uint32_t attribute, uint64_t capacity) {
  const std::unique_ptr<char[]> buffer(capacity == 0 ? nullptr : new char[capacity]());
  uint64_t size = capacity;
  const int32_t code = QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, buffer.get(), &size);
  require(code < 0 || size <= capacity, "a text is reported as longer than its buffer");
  require(code < 0 || capacity == 0 || std::memchr(buffer.get(), 0, capacity) != nullptr,
          "a text has no NUL");
}

void useController() {
  uint64_t handle = 0;
  if (QUENRA_openController(&handle) < 0) {
    return;
  }
  constexpr uint32_t kMartenText = QUENRA_ATTRIBUTE_FIRMWARE_VERSION + QUENRA_SELECTOR_MARTEN;
  for (const unsigned capacity : {0u, 1u, 7u, 64u}) {
    readText(kMartenText, capacity);
    readText(QUENRA_ATTRIBUTE_PRODUCT_NAME, capacity);
    readText(QUENRA_ATTRIBUTE_BRIDGE_MEMBERS, capacity);
  }
  for (const uint32_t attribute :
       {uint32_t{QUENRA_ATTRIBUTE_PROCESSOR_SETTING}, uint32_t{QUENRA_ATTRIBUTE_DRIVER_SETTING_1},
        QUENRA_ATTRIBUTE_DRIVER_SETTING_2 + QUENRA_SELECTOR_MARTEN,
        uint32_t{QUENRA_ATTRIBUTE_MEMORY_SIZE}, uint32_t{QUENRA_ATTRIBUTE_CAPABILITY_2}}) {
    uint32_t value = 0;
    static_cast<void>(QUENRA_getAttributeU32(handle, attribute, &value));
  }
  static_cast<void>(QUENRA_setAttributeUTF8(handle, QUENRA_TEXT_SETTING_OF_BOTH, "text"));
  static_cast<void>(QUENRA_setAttributeU32(handle, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 5));
  QUENRA_closeController(handle);
}

// ---- Routes ----

char* reallocate(char* current, size_t required, const char*, size_t) {
  std::free(current);
  return static_cast<char*>(std::malloc(required));
}

// Calls on a session, each with a status of its own.
class tClient {
 public:
  tClient() {
    std::array<char, 256> name{};
    uint64_t size = name.size();
    require(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, name.data(), &size) == 0,
            "the device path is not read");
    with([&](zoerr_Status* status) {
      session = zoroco_ra_quenra_createSessionWithDemotionFunc(
          name.data(), reallocate,
          [](void* context, int32_t, zoerr_Status*, void*) {
            ++*static_cast<std::atomic<int>*>(context);
          },
          &demotions_, status);
    });
  }
  tClient(const tClient&) = delete;
  tClient& operator=(const tClient&) = delete;
  ~tClient() {
    zoroco_ra_quenra_destroySession(session);
    std::free(answer);
  }

  template <class Call>
  void with(Call call) {
    zoerr_Status status = zoerr_Status_initial();
    call(&status);
    zoerr_Status_release(&status);
  }

  zoroco_RoutingAdaptorSession* session = nullptr;
  char* answer = nullptr;

 private:
  std::atomic<int> demotions_ = 0;
};

void useTerminals(tClient& client) {
  zoroco_TerminalIterator* terminals = nullptr;
  client.with([&](zoerr_Status* status) {
    terminals = zoroco_ra_quenra_getAllTerminals(client.session, status, 0);
  });
  client.with([&](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(client.session, terminals, "default",
                                                             status);
  });
  client.with([&](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_resetTerminal(terminals, "floating", status);
  });
  zoroco_ra_quenra_TerminalIterator_destroy(terminals);
}

void useRoute(tClient& client) {
  uint32_t ticket = 1;
  client.with([&](zoerr_Status* status) {
    zoroco_ra_quenra_calculateRoute(client.session,
                                    R"([{"terminal":"TRIG_SMB","cost":5,"constraints":{}}])",
                                    R"(["PXI_Trig0","PXI_Trig1"])", "{}", &client.answer, status);
    if (status->code >= 0 && client.answer != nullptr) {
      const std::string text = client.answer;
      const size_t number = text.find_first_of("0123456789");
      ticket = number == std::string::npos
                   ? 1
                   : static_cast<uint32_t>(std::strtoul(&text[number], nullptr, 10));
    }
  });
  client.with([&](zoerr_Status* status) {
    zoroco_ra_quenra_reserveRoute(client.session, ticket, &client.answer, status);
  });
  client.with(
      [&](zoerr_Status* status) { zoroco_ra_quenra_programRoute(client.session, ticket, status); });
  client.with([&](zoerr_Status* status) {
    zoroco_ra_quenra_getRouteTerminalPath(client.session, ticket, &client.answer, status);
  });
  zoroco_ra_quenra_unprogramRoute(client.session, ticket, 0, 0);
  zoroco_ra_quenra_unreserveRoute(client.session, ticket, 0, 0);
  zoroco_ra_quenra_destroyRoute(client.session, ticket, 0, 0);
}

// A notice that may name an object that does not exist, or claim a payload that was not sent.
void sendNotice(tByteSource& bytes) {
  const tOffTheRecord offTheRecord;
  tSimulatorNotice notice{};
  notice.mask = 0x80000000;
  notice.notification = bytes.byte() % 2 == 0 ? 0 : uint64_t{bytes.word()} << 16 | bytes.word();
  notice.payloadSize = bytes.byte() % 2 == 0 ? bytes.byte() : bytes.word();
  bytes.fill(notice.payload);
  try {
    nSimulator::tSimulatedMachine().notify(notice);
  } catch (const nSimulator::tControlError&) {
    // No registration exists: the misbehaving driver did not make it.
  }
}

// Makes the sizes in a reply small: filling and indexing megabytes takes a hundred times as long as the
// rest of a client's life. Sizes that the library refuses stay.
void limitSizes(std::span<uint8_t> output) {
  constexpr uint32_t kSmall = 1 << 14;
  constexpr uint32_t kRefused = 1 << 24;
  tExchangeValuesReply reply{};
  if (output.size() != sizeof reply) {
    return;
  }
  std::memcpy(&reply, output.data(), sizeof reply);
  for (uint32_t* const size : {&reply.textSize, &reply.tableSize}) {
    *size = *size > kSmall && *size <= kRefused ? *size % kSmall : *size;
  }
  std::memcpy(output.data(), &reply, sizeof reply);
}

void useRoutes(tByteSource& notices) {
  tClient client;
  useTerminals(client);
  for (int i = 0; i < 3; ++i) {
    sendNotice(notices);
  }
  useRoute(client);
}

}  // namespace

void prepareMachine() {
  faultPlan().reset();
  machine().reset();
  nFakeWindows::com()->reset();
  nSimulator::tSimulatedMachine().setTable(tReferenceTable().build());
}

void runClient(nFakeWindows::tDriver driver, tByteSource& notices) {
  std::optional<nFakeWindows::tVirtualTime> virtualTime(std::in_place);
  machine().useDriver(std::move(driver));
  useController();
  useRoutes(notices);
  machine().useDriver(nullptr);
  virtualTime.reset();
  require(objects().open().empty(), "an object is left open");
}

void runClientWithFaults(std::span<const uint8_t> bytes) {
  constexpr size_t kBytesOfNotices = 64;
  faultPlan().reset();
  const uint8_t variant = bytes.empty() ? 0 : bytes[0];
  faultPlan().complete(variant % 4 == 1 ? nFakeWindows::tCompletion::later
                                        : nFakeWindows::tCompletion::atOnce);
  objects().repeatCompletions(variant / 32 % 3 + 1u);
  const size_t bytesOfNotices = std::min(bytes.size(), kBytesOfNotices);
  tByteSource notices(bytes.first(bytesOfNotices));
  const auto driver = std::make_shared<tMisbehavingDriver>(bytes.subspan(bytesOfNotices));
  // One input in 256 may have tables of any size.
  const bool limitsSizes = variant != 0xFF;
  runClient(
      [driver, limitsSizes](const nFakeWindows::tDriverRequest& request) {
        const tModelReply reply = driver->answer(request);
        if (limitsSizes && request.code == REQUEST_EXCHANGE_VALUES) {
          limitSizes(request.output.first(reply.size));
        }
        return reply;
      },
      notices);
  objects().repeatCompletions(1);
  // The next input starts with the same memory in use.
  faultPlan().reset();
}

}  // namespace nTests
