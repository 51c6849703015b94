#include <cstdlib>

#include "tests/contract/updateworld.h"
#include "tests/fakewindows/com.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/processes.h"

namespace nTests {

void resetUpdateWorld() {
  nFakeWindows::com()->reset();
  nFakeWindows::programs().reset();
  nFakeWindows::programs().install("C:\\Windows\\Sysnative\\pnputil.exe");
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

}  // namespace nTests
