// Natively the fake Windows keeps the texts.
#include "tests/component/protons/trace/debuggerlistener.h"
#include "tests/fakewindows/debugger.h"

namespace nTests {

struct tDebuggerListener::tState {};

tDebuggerListener::tDebuggerListener() {
  static_cast<void>(nFakeWindows::takeDebuggerOutput());
}

tDebuggerListener::~tDebuggerListener() = default;

std::vector<std::string> tDebuggerListener::take() {
  return nFakeWindows::takeDebuggerOutput();
}

}  // namespace nTests
