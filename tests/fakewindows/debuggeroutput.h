#ifndef TESTS_FAKEWINDOWS_DEBUGGEROUTPUT_H
#define TESTS_FAKEWINDOWS_DEBUGGEROUTPUT_H

#include <string>
#include <vector>

namespace nFakeWindows {

// The texts that went to the debugger output since the last call. Any thread.
[[nodiscard]] std::vector<std::string> takeDebuggerOutput();

// From now on the texts go to the error stream as well: for a process that is about to end.
void showDebuggerOutput();

}  // namespace nFakeWindows

#endif
