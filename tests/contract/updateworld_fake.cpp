#include <cstdlib>
#include <optional>

#include "tests/contract/updateworld.h"
#include "tests/fakewindows/com.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/processes.h"

namespace nTests {
namespace {

std::optional<uint32_t> randomError;

}  // namespace

void resetUpdateWorld() {
  nFakeWindows::com()->reset();
  nFakeWindows::programs().reset();
  nFakeWindows::programs().install("C:\\Windows\\Sysnative\\pnputil.exe");
  randomError.reset();
}

void encryptDrive() {
  nFakeWindows::com()->useVolumes({{VT_I4, 1}});
}

void breakEncryptionTest() {
  nFakeWindows::faultPlan().failEveryCall(nFakeWindows::tCall::coInitializeEx, 0x8007000E);
}

std::vector<std::string> packageCommandLines() {
  std::vector<std::string> lines;
  for (const nFakeWindows::tStartedProgram& program : nFakeWindows::programs().started()) {
    lines.push_back(program.commandLine);
  }
  return lines;
}

void useTemporaryDirectory(const std::string& path) {
  setenv("TMPDIR", path.c_str(), 1);
}

// The generator reads another source natively than on Windows, where it makes two calls.
std::vector<tRandomFault> randomFaults() {
  return {{"getrandom", ERROR_ACCESS_DENIED, ERROR_NOT_ENOUGH_MEMORY}};
}

void failRandom(const std::string&, uint32_t error) {
  randomError = error;
  nFakeWindows::faultPlan().decide([](nFakeWindows::tCall call, const std::string&) {
    return call == nFakeWindows::tCall::getRandom ? randomError : std::nullopt;
  });
}

std::string nameOfFullDevice() {
  return "//dev/full";
}

}  // namespace nTests
