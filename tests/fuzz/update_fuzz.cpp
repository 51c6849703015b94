// Complete updates: an arbitrary machine, arbitrary options, an image of arbitrary sections, and
// injected failures. FuzzedDataProvider consumes the input from both ends.
//
// Checks after each update: the version marker is unchanged unless the update succeeded; new files
// exist only in the update's folder and where a file name itself leads elsewhere; unknown options
// are refused without any effect; a machine that accepts no update is refused without any effect.
// The leak checker covers memory.
#include <fuzzer/FuzzedDataProvider.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "protocol/controllerrequests.h"
#include "quenra.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/fakewindows/com.h"
#include "tests/fakewindows/disk.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/machine.h"
#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/processes.h"

namespace {

namespace fs = std::filesystem;
using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nTests::tFirmwareSection;
using tProvider = FuzzedDataProvider;

constexpr uint32_t kMarker = 0x10000400;
constexpr const char* kMarkerBefore = "1.4.0f7";
constexpr std::string_view kMarkerMeanwhile = "0.0.0f0";
constexpr const char* kTool = "C:\\Windows\\Sysnative\\pnputil.exe";

void require(bool condition, const char* invariant) {
  if (!condition) {
    std::fprintf(stderr, "violated: %s\n", invariant);
    std::abort();
  }
}

// The folder of TMPDIR. Otherwise in memory, if the system has /dev/shm: a disk is slow.
fs::path placeForFiles() {
  const fs::path memory = "/dev/shm";
  const bool isChosen = std::getenv("TMPDIR") != nullptr;
  return !isChosen && fs::is_directory(memory) ? memory : fs::temp_directory_path();
}

// A folder of this process: the temporary directory and the current one are in it.
const fs::path& root() {
  static const fs::path path = placeForFiles() / ("quenra.fuzz." + std::to_string(getpid()));
  return path;
}

// ---- The machine ----

struct tMachine {
  uint32_t martens;
  uint8_t updatable;
  uint8_t protection;
  int32_t encrypted;
  bool hasTool;
};

tMachine anyMachine(tProvider& input) {
  // Mostly a machine that accepts updates: a refused update ends early and tests little.
  const uint8_t manner = input.ConsumeIntegral<uint8_t>();
  return {manner % 8 == 0 ? 0u : 1u, static_cast<uint8_t>(manner % 16 == 1 ? 0 : 1),
          static_cast<uint8_t>(manner % 16 == 2 ? 2 : 1), manner % 16 == 3 ? 1 : 0,
          manner % 16 != 4};
}

bool takesUpdates(const tMachine& made) {
  return made.updatable != 0 && made.protection < 2 && made.encrypted != 1;
}

// A drive whose protection cannot be read counts as not encrypted.
bool hidesProtection(const std::optional<tCall>& failing) {
  return failing == tCall::next || failing == tCall::get;
}

// The SMBIOS table of a machine. Kept: building one takes a fifth of the time of an input.
const std::vector<uint8_t>& tableOf(const tMachine& wanted) {
  static std::map<std::pair<uint8_t, uint8_t>, std::vector<uint8_t>> tables;
  std::vector<uint8_t>& table = tables[{wanted.updatable, wanted.protection}];
  if (table.empty()) {
    nTests::tReferenceTable reference;
    reference.structure(0x9E) =
        nTests::tSmbiosStructure(0x9E, 0x06).byte(4, wanted.updatable).byte(5, wanted.protection);
    table = reference.build();
  }
  return table;
}

void make(const tMachine& wanted) {
  nFakeWindows::machine().useDriver(nullptr);
  faultPlan().reset();
  nFakeWindows::com()->reset();
  nFakeWindows::com()->useVolumes({{VT_I4, wanted.encrypted}});
  nFakeWindows::disk().reset();
  nFakeWindows::programs().reset();
  if (wanted.hasTool) {
    nFakeWindows::programs().install(kTool);
  }
  nSimulator::tSimulatedMachine machine;
  machine.setPresence({1, wanted.martens, 1});
  machine.clearFirmware();
  machine.setAttributeText(kSimulatorInterfaceMarten, kMarker, kMarkerBefore);
  machine.allowWrites(kSimulatorInterfaceMarten, kMarker);
  machine.setTable(tableOf(wanted));
}

// ---- Injected failures ----

// Calls that do not reach the driver.
constexpr std::array kFailingCalls = {
    tCall::coInitializeEx,
    tCall::coInitializeSecurity,
    tCall::coCreateInstance,
    tCall::sysAllocString,
    tCall::connectServer,
    tCall::execQuery,
    tCall::next,
    tCall::get,
    tCall::getFileAttributes,
    tCall::createProcess,
    tCall::waitForSingleObject,
    tCall::multiByteToWideChar,
    tCall::wideCharToMultiByte,
};

std::optional<tCall> planFailure(tProvider& input) {
  constexpr uint32_t kRefused = 0x80070005;  // an error for Windows, and for COM
  const auto call = input.ConsumeIntegralInRange<size_t>(0, kFailingCalls.size() * 2);
  if (call >= kFailingCalls.size()) {
    return std::nullopt;
  }
  faultPlan().failCall(kFailingCalls[call], input.ConsumeIntegralInRange<unsigned>(1, 4), kRefused);
  return kFailingCalls[call];
}

// Calls that create, write, guard or remove the folder of the update and its files.
constexpr std::array kDiskCalls = {
    tCall::getTokenInformation, tCall::convertSecurityDescriptor, tCall::createDirectory,
    tCall::createDiskFile,      tCall::getFileInformation,        tCall::getFileInformationEx,
    tCall::setFileInformation,  tCall::getFinalPathName,          tCall::compareStringOrdinal,
    tCall::getTempPath,         tCall::getDiskAttributes,         tCall::createNewFile,
    tCall::writeFile,
};

// Runs last, on the remaining input: an input without remaining bytes fails none of these calls.
void planDiskFailure(tProvider& input) {
  constexpr uint32_t kSharingViolation = 32;
  const auto call = input.ConsumeIntegralInRange<size_t>(0, kDiskCalls.size());
  if (call != 0) {
    faultPlan().failCall(kDiskCalls[call - 1], input.ConsumeIntegralInRange<unsigned>(1, 8),
                         kSharingViolation);
  }
}

// The driver may refuse every request except the one that restores the marker.
bool writesMarkerBack(const nFakeWindows::tDriverRequest& request) {
  if (request.code != REQUEST_SET_ATTRIBUTE) {
    return false;
  }
  tSetAttributeRequest asked{};
  std::memcpy(&asked, request.input.data(), sizeof asked);
  const auto* const text = reinterpret_cast<const char*>(static_cast<uintptr_t>(asked.buffer));
  return std::string_view(text, static_cast<size_t>(asked.size)) != kMarkerMeanwhile;
}

void planRefusal(tProvider& input) {
  const auto nth = input.ConsumeIntegralInRange<unsigned>(0, 15);
  if (nth == 0 || nth > 8) {
    return;
  }
  // Errors only: after a false success, the update would restore a wrong marker.
  const auto code = input.ConsumeIntegralInRange<int32_t>(std::numeric_limits<int32_t>::min(), -1);
  const auto size = input.ConsumeIntegral<uint32_t>();
  nFakeWindows::machine().useDriver(
      [nth, code, size, count = 0u](const nFakeWindows::tDriverRequest& request) mutable {
        if (writesMarkerBack(request) || ++count != nth) {
          return request.byModel();
        }
        // The status is the last word of a reply; the reply to a text read begins with the size.
        const tGetAttributeReply reply{size, code};
        const size_t length = std::min(sizeof reply, request.output.size());
        std::memcpy(request.output.data(), &reply, length);
        std::memcpy(request.output.data() + length - sizeof code, &code, sizeof code);
        return tModelReply{0, static_cast<uint32_t>(length)};
      });
}

// ---- The image ----

// The maximum number of changed bytes of an image.
constexpr unsigned kMostChanges = 3;
// The prefix of a file name that leads out of the update's folder.
constexpr std::string_view kBeside = "beside.";

// A file name that does not lead out of the folder of this process.
std::string anyName(tProvider& input) {
  constexpr std::array<const char*, 8> kBeginnings = {"",           "",   "/",  "missing/",
                                                      "../beside.", "D:", "\"", "b\xE9 c"};
  constexpr std::array<const char*, 4> kEndings = {"", ".inf", ".cap", ".inf.old\""};
  std::string name = input.PickValueInArray(kBeginnings);
  name += std::string(input.ConsumeIntegralInRange<size_t>(1, 300) % 301, 'n');
  return name + input.PickValueInArray(kEndings);
}

tFirmwareSection anySection(tProvider& input) {
  constexpr std::array<const char*, 4> kDevices = {"BIOS", "MARTEN", "SAFEMODE", "OTHER"};
  constexpr std::array<const char*, 6> kVersions = {"9.0.0f0", "0.0.0d0", "1.2.3f4",
                                                    "1.4.0f7", "999.0.0", "\"2.0.0b1\""};
  tFirmwareSection section(input.PickValueInArray(kDevices),
                           input.ConsumeBool() ? "CapsuleUpdate" : "FWUpdate");
  section.version(input.PickValueInArray(kVersions));
  if (input.ConsumeBool()) {
    section.with("TargetFileName", anyName(input));
  }
  const std::vector<uint8_t> payload = nTests::firmwareBytes(
      input.ConsumeIntegralInRange<size_t>(0, 600), input.ConsumeIntegral<uint8_t>());
  return section.payload(payload, input.ConsumeIntegralInRange<size_t>(0, 80));
}

std::string anyImage(tProvider& input) {
  std::vector<tFirmwareSection> sections;
  const auto count = input.ConsumeIntegralInRange<size_t>(0, 5);
  for (size_t i = 0; i < count; ++i) {
    sections.push_back(anySection(input));
  }
  std::string image = nTests::firmwareImage(sections);
  // Change a few bytes, to characters that cannot make a file name lead elsewhere.
  constexpr std::string_view kCharacters = "0a:=\"\r\n \xE9";
  for (auto changes = input.ConsumeIntegralInRange<unsigned>(0, kMostChanges); changes != 0;
       --changes) {
    if (!image.empty()) {
      image[input.ConsumeIntegralInRange<size_t>(0, image.size() - 1)] =
          kCharacters[input.ConsumeIntegralInRange<size_t>(0, kCharacters.size() - 1)];
    }
  }
  return image;
}

// ---- Invariants ----

std::string marker() {
  std::array<char, 64> text{};
  uint64_t size = text.size();
  require(QUENRA_getAttributeUTF8(QUENRA_HANDLE, kMarker | QUENRA_SELECTOR_MARTEN, text.data(),
                                  &size) == 0,
          "the marker can be read");
  return text.data();
}

// A name of 8-4-4-4-12 digits.
bool isUpdateFolder(const std::string& name) {
  return name.size() == 36 && name[8] == '-' && name[13] == '-' && name[18] == '-' &&
         name[23] == '-';
}

// True if an image may have placed a file of this name beside the update's folder: kBeside with at
// most kMostChanges changed bytes, one of which may have ended the name.
bool isNamedBeside(const std::string& name) {
  const size_t length = std::min(name.size(), kBeside.size());
  unsigned changed = length < kBeside.size() ? 1 : 0;
  for (size_t i = 0; i < length; ++i) {
    changed += name[i] == kBeside[i] ? 0 : 1;
  }
  return changed <= kMostChanges;
}

void requireFilesInTheirPlaces() {
  for (const auto& entry : fs::directory_iterator(root())) {
    const std::string name = entry.path().filename().string();
    require(name == "temporary" || name == "current", "no file beside the temporary directory");
  }
  for (const auto& entry : fs::directory_iterator(root() / "temporary")) {
    const std::string name = entry.path().filename().string();
    require(entry.is_directory() ? isUpdateFolder(name) : isNamedBeside(name),
            "no file outside the update's folder");
  }
  for (const auto& entry : fs::directory_iterator(root() / "current")) {
    require(entry.path().filename().string()[1] == ':', "no file that is not named for its drive");
  }
}

bool isAnyFileThere() {
  return !fs::is_empty(root() / "temporary") || !fs::is_empty(root() / "current");
}

void requireNothingChanged(const tMachine& made) {
  require(!isAnyFileThere(), "no file");
  require(nSimulator::tSimulatedMachine().firmware().empty(), "no firmware sent");
  require(nFakeWindows::programs().started().empty(), "no tool started");
  require(made.martens == 0 || marker() == kMarkerBefore, "the marker untouched");
}

void check(const tMachine& made, uint32_t options, int32_t code) {
  const nFakeWindows::tOffTheRecord offTheRecord;
  requireFilesInTheirPlaces();
  if (code < 0 && made.martens != 0) {
    require(marker() == kMarkerBefore, "the marker is given back after a failure");
  }
  if (!takesUpdates(made) || options > 1) {
    require(code < 0, "a machine that takes no update, or options that are none, are refused");
    requireNothingChanged(made);
  }
}

void clearFolders() {
  for (const char* folder : {"temporary", "current"}) {
    fs::remove_all(root() / folder);
    fs::create_directories(root() / folder);
  }
}

// Runs the update in a current folder of its own; restores the fuzzer's current folder.
int32_t updateInItsFolder(uint64_t handle, const std::string& image, uint32_t options) {
  const fs::path before = fs::current_path();
  fs::current_path(root() / "current");
  // In memory of its exact size, so that the address sanitizer reports a read past it.
  const std::vector<char> bytes(image.begin(), image.end());
  const int32_t code = QUENRA_updateFirmware2(handle, bytes.data(), bytes.size(), options);
  fs::current_path(before);
  return code;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  static_cast<void>(root());
  clearFolders();
  setenv("TMPDIR", (root() / "temporary").c_str(), 1);
  std::atexit([] {
    std::error_code ignored;
    fs::remove_all(root(), ignored);
  });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tProvider input(data, size);
  tMachine made = anyMachine(input);
  make(made);
  const uint32_t options = input.ConsumeIntegralInRange<uint32_t>(0, 9) == 9
                               ? 2 + input.ConsumeIntegral<uint8_t>()
                               : input.ConsumeIntegral<uint8_t>() % 2u;
  uint64_t handle = 0;
  require(QUENRA_openController(&handle) == 0, "the machine can be opened");
  if (hidesProtection(planFailure(input))) {
    made.encrypted = 0;
  }
  planRefusal(input);
  const std::string image = anyImage(input);
  planDiskFailure(input);
  const int32_t code = updateInItsFolder(handle, image, options);
  nFakeWindows::machine().useDriver(nullptr);
  faultPlan().reset();
  check(made, options, code);
  QUENRA_closeController(handle);
  require(nFakeWindows::objects().open().empty(), "nothing is left open");
  require(nFakeWindows::com()->open().empty(), "COM is left alone");
  if (isAnyFileThere()) {
    clearFolders();
  }
  return 0;
}
