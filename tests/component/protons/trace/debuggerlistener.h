#ifndef TESTS_COMPONENT_PROTONS_TRACE_DEBUGGERLISTENER_H
#define TESTS_COMPONENT_PROTONS_TRACE_DEBUGGERLISTENER_H

#include <memory>
#include <string>
#include <vector>

namespace nTests {

// Collects the texts that the process writes to the debugger output during the object's life.
class tDebuggerListener {
 public:
  tDebuggerListener();
  tDebuggerListener(const tDebuggerListener&) = delete;
  tDebuggerListener& operator=(const tDebuggerListener&) = delete;
  ~tDebuggerListener();

  // Returns and removes the texts collected since the last call.
  [[nodiscard]] std::vector<std::string> take();

 private:
  struct tState;
  std::unique_ptr<tState> state_;
};

}  // namespace nTests

#endif
