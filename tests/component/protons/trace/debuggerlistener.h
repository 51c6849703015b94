#ifndef TESTS_COMPONENT_PROTONS_TRACE_DEBUGGERLISTENER_H
#define TESTS_COMPONENT_PROTONS_TRACE_DEBUGGERLISTENER_H

#include <memory>
#include <string>
#include <vector>

namespace nTests {

// Hears what the process writes to the debugger output while the object lives.
class tDebuggerListener {
 public:
  tDebuggerListener();
  tDebuggerListener(const tDebuggerListener&) = delete;
  tDebuggerListener& operator=(const tDebuggerListener&) = delete;
  ~tDebuggerListener();

  // The texts since the last call.
  [[nodiscard]] std::vector<std::string> take();

 private:
  struct tState;
  std::unique_ptr<tState> state_;
};

}  // namespace nTests

#endif
