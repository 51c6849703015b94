// scenarios                lists the scenarios: name, repetitions, description, separated by tabs
// scenarios --toolchain    prints the compiler and the C and C++ library
// scenarios NAME           prepares a scenario, then runs it inside measuredWork
//
// ./dev bench --check counts the instructions of measuredWork. Everything here is deterministic: fixed
// data, one thread that works, and the kernels that every processor runs.
#include <gnu/libc-version.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quenra.h"
#include "quenra_routing.h"
#include "simulator/control/tsimulatedmachine.h"
#include "source/user/firmware/decoding/kernels.h"
#include "source/user/firmware/tfirmwareimageparser.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/smbiostablebuilder.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace {

using tWork = std::function<void()>;

void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "scenarios: %s\n", what);
    std::exit(1);
  }
}

// ---- The controller ----

// An open controller on a machine with this table.
class tController {
 public:
  explicit tController(const nTests::tReferenceTable& table = {}) {
    nSimulator::tSimulatedMachine().setTable(table.build());
    open();
  }
  tController(const tController&) = delete;
  tController& operator=(const tController&) = delete;
  ~tController() { close(); }

  void open() { require(QUENRA_openController(&handle_) == 0, "the controller cannot be opened"); }
  void close() const { QUENRA_closeController(handle_); }

  void readNumber(uint32_t attribute, int32_t expected) const {
    uint32_t value = 0;
    require(QUENRA_getAttributeU32(handle_, attribute, &value) == expected,
            "reading a number has another result");
  }
  void readText(uint32_t attribute) const {
    char text[128] = "";
    uint64_t size = sizeof text;
    require(QUENRA_getAttributeUTF8(handle_, attribute, text, &size) == 0, "a text cannot be read");
  }

 private:
  uint64_t handle_ = 0;
};

template <uint32_t Attribute>
tWork readingNumber() {
  return [controller = std::make_shared<tController>()] {
    controller->readNumber(Attribute, QUENRA_STATUS_SUCCESS);
  };
}

// A table without the structures of the buses: the attributes that read them search for all of them.
template <uint32_t Attribute, int32_t Expected>
tWork readingNumberWithoutBuses() {
  nTests::tReferenceTable table;
  table.remove(0x97).remove(0x98).remove(0x9F);
  return [controller = std::make_shared<tController>(table)] {
    controller->readNumber(Attribute, Expected);
  };
}

tWork readingText() {
  return [controller = std::make_shared<tController>()] {
    controller->readText(QUENRA_ATTRIBUTE_PRODUCT_NAME);
  };
}

tWork openingAndClosing() {
  const auto controller = std::make_shared<tController>();
  controller->close();
  return [controller] {
    controller->open();
    controller->close();
  };
}

// ---- SMBIOS tables ----

class tInstalledTables final : public nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosProvider {
 public:
  void load(nZOAPALS100::tStatus&) noexcept override {}
};

// The reference table, and port connectors up to this size.
std::vector<uint8_t> tableOfSize(size_t bytes) {
  nTests::tSmbiosTableBuilder builder;
  builder.bytes(nTests::tReferenceTable().build());
  for (unsigned i = 0; builder.build().size() < bytes; ++i) {
    builder.structure(8, {1, 0, 2, 0x12, 0x10},
                      {"J" + std::to_string(i), "Port " + std::to_string(i)});
  }
  return builder.build();
}

tWork installingTables() {
  static constexpr std::string_view kVersion = "3.4";
  constexpr size_t kSizeOfWorkstations = 4096;
  constexpr size_t kLargeSize = 65536;
  return [small = tableOfSize(kSizeOfWorkstations), large = tableOfSize(kLargeSize),
          provider = std::make_shared<tInstalledTables>()] {
    nZOAPALS100::tStatus status;
    provider->install(small, kVersion, status);
    provider->install(large, kVersion, status);
    require(status.code == 0, "a table cannot be installed");
  };
}

// ---- Trigger routes ----

char* supplyBuffer(char* current, size_t required, const char*, size_t) {
  return static_cast<char*>(std::realloc(current, required));
}

class tRoutingClient {
 public:
  tRoutingClient() {
    char path[ZOROCO_MAX_DEVICE_NAME_LENGTH + 1] = "";
    uint64_t size = sizeof path;
    const int32_t found =
        QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DEVICE_PATH, path, &size);
    require(found == 0, "there is no routing device");
    session_ = zoroco_ra_quenra_createSession(path, &supplyBuffer, &status_);
    requireSuccess();
  }
  tRoutingClient(const tRoutingClient&) = delete;
  tRoutingClient& operator=(const tRoutingClient&) = delete;
  ~tRoutingClient() {
    zoroco_ra_quenra_destroySession(session_);
    zoerr_Status_release(&status_);
    std::free(output_);
  }

  // Returns the ticket of the route.
  uint32_t plan() {
    zoroco_ra_quenra_calculateRoute(
        session_,
        R"([{"terminal":"TRIG_SMB","srcDeviceToken":"slot 2","cost":5,"constraints":{}},)"
        R"({"terminal":"WD_Terminal","cost":7,"constraints":{"inversionNeeded":false}}])",
        R"(["PXI_Trig0"])",
        R"({"required":{"inversionNeeded":false,"calculateIgnoresReservations":true}})", &output_,
        &status_);
    requireSuccess();
    constexpr std::string_view kBeforeTicket = R"([{"ticket":)";
    require(std::string_view(output_).starts_with(kBeforeTicket), "no route was found");
    return static_cast<uint32_t>(std::strtoul(output_ + kBeforeTicket.size(), nullptr, 10));
  }
  void destroy(uint32_t ticket) { zoroco_ra_quenra_destroyRoute(session_, ticket, 0, 0); }
  void programAndRelease(uint32_t ticket) {
    zoroco_ra_quenra_reserveRoute(session_, ticket, &output_, &status_);
    zoroco_ra_quenra_programRoute(session_, ticket, &status_);
    requireSuccess();
    zoroco_ra_quenra_unprogramRoute(session_, ticket, 0, 0);
    zoroco_ra_quenra_unreserveRoute(session_, ticket, 0, 0);
  }

 private:
  void requireSuccess() const {
    require(status_.code == 0,
            status_.description == nullptr ? "a route call failed" : status_.description);
  }

  zoerr_Status status_ = zoerr_Status_initial();
  char* output_ = nullptr;
  zoroco_RoutingAdaptorSession* session_ = nullptr;
};

tWork planning() {
  return [client = std::make_shared<tRoutingClient>()] { client->destroy(client->plan()); };
}

tWork programming() {
  const auto client = std::make_shared<tRoutingClient>();
  return [client, ticket = client->plan()] { client->programAndRelease(ticket); };
}

// ---- Firmware images ----

void parse(const std::string& image) {
  nQUENRA1400::tFirmwarePayloads records;
  zoerr::tOwnedStatus status;
  const nQUENRA1400::tFirmwareImageParser parser(nQUENRA1400::nFirmwareDecoding::kPlainKernels);
  parser.Parse(records, image.data(), image.size(), status);
  require(status.code == 0 && !records.empty(), "an image cannot be parsed");
  freePayloads(records);
}

tWork parsingWrappedText() {
  constexpr size_t kPayload = 768u << 10;  // 1 MiB of text
  constexpr size_t kLine = 76;
  nTests::tFirmwareSection section("MARTEN");
  section.payload(nTests::firmwareBytes(kPayload), kLine);
  return [image = section.text()] { parse(image); };
}

tWork parsingManySections() {
  constexpr size_t kSections = 300;
  std::vector<std::string> images;
  for (const nTests::tExpensiveImage& kind : nTests::expensiveImages()) {
    images.push_back(kind.build(kSections));
  }
  return [images = std::move(images)] {
    for (const std::string& image : images) {
      parse(image);
    }
  };
}

// ---- The scenarios ----

struct tScenario {
  const char* name;
  unsigned repetitions;
  const char* description;
  tWork (*prepare)();
};

constexpr tScenario kScenarios[] = {
    {"number", 1000, "read a number of the SMBIOS table",
     &readingNumber<QUENRA_ATTRIBUTE_PROCESSOR_MAXIMUM_SPEED>},
    {"text", 1000, "read a text of the SMBIOS table", &readingText},
    {"slowest-number", 1000, "read the unsigned attribute that takes the most instructions",
     &readingNumberWithoutBuses<QUENRA_ATTRIBUTE_CONTROLLER_KIND, QUENRA_STATUS_SUCCESS>},
    {"missing-number", 100, "read a number that the SMBIOS table does not have, which fails",
     &readingNumberWithoutBuses<QUENRA_ATTRIBUTE_CAPABILITY_1, QUENRA_STATUS_NOT_SUPPORTED>},
    {"driver-number", 200, "read a number from the driver",
     &readingNumber<QUENRA_ATTRIBUTE_DRIVER_SETTING_1>},
    {"open-close", 100, "open the controller and close it", &openingAndClosing},
    {"install-tables", 20, "install and index SMBIOS tables of 4 KiB and 64 KiB",
     &installingTables},
    {"plan-route", 100, "plan a route between two terminals and destroy it", &planning},
    {"program-route", 100, "reserve, program and release a route", &programming},
    {"parse-image", 2, "parse an image of 1 MiB in lines of 76 characters", &parsingWrappedText},
    {"many-sections", 2, "parse seven expensive images of 300 sections each", &parsingManySections},
};

void printScenarios() {
  for (const tScenario& scenario : kScenarios) {
    std::printf("%s\t%u\t%s\n", scenario.name, scenario.repetitions, scenario.description);
  }
}

void printToolchain() {
#ifdef __clang__
  std::printf("clang %d", __clang_major__);
#else
  std::printf("GCC %d", __GNUC__);
#endif
  std::printf(", libstdc++ %d, glibc %s\n", _GLIBCXX_RELEASE, gnu_get_libc_version());
}

}  // namespace

// The work whose instructions count: a function of its own, which callgrind finds by its name.
extern "C" [[gnu::noinline]] void measuredWork(const tWork& work, unsigned repetitions) {
  for (unsigned i = 0; i < repetitions; ++i) {
    work();
  }
}

int main(int argc, char** argv) {
  const std::string_view name = argc > 1 ? argv[1] : "";
  if (name.empty()) {
    printScenarios();
    return 0;
  }
  if (name == "--toolchain") {
    printToolchain();
    return 0;
  }
  const auto* const scenario =
      std::find_if(std::begin(kScenarios), std::end(kScenarios),
                   [name](const tScenario& candidate) { return candidate.name == name; });
  require(scenario != std::end(kScenarios), "no such scenario; without arguments lists them");
  const tWork work = scenario->prepare();
  work();  // differs from later ones: first pages of the heap, first use of the C library
  measuredWork(work, scenario->repetitions);
  return 0;
}
