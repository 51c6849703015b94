#ifndef TESTS_LOAD_WORKERPROCESS_H
#define TESTS_LOAD_WORKERPROCESS_H

#include <windows.h>

#include <string>

namespace nTests {

// Another process of this program.
class tWorkerProcess {
 public:
  // `arguments` follow the program's name; standard output and error are this process's own.
  explicit tWorkerProcess(const std::string& arguments);
  tWorkerProcess(const tWorkerProcess&) = delete;
  tWorkerProcess& operator=(const tWorkerProcess&) = delete;
  // Kills the process if it still runs.
  ~tWorkerProcess();

  // Kills the process and waits for its end.
  void kill();
  [[nodiscard]] bool hasEnded() const;
  // The process must have ended.
  [[nodiscard]] DWORD exitCode() const;

 private:
  PROCESS_INFORMATION process_{};
};

}  // namespace nTests

#endif
