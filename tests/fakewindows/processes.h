#ifndef TESTS_FAKEWINDOWS_PROCESSES_H
#define TESTS_FAKEWINDOWS_PROCESSES_H

#include <windows.h>

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace nFakeWindows {

// A program that was started.
struct tStartedProgram {
  std::string path;
  std::string commandLine;
  bool inheritsHandles = false;
  DWORD flags = 0;
};

// The programs that the fake Windows has, and what was started of them. Any thread.
class tPrograms {
 public:
  // No program there, nothing started.
  void reset();

  // Something is at the path: a program that runs for some time, or what other attributes say.
  void install(const std::string& path, DWORD milliseconds = 0,
               DWORD attributes = FILE_ATTRIBUTE_NORMAL);
  [[nodiscard]] std::vector<tStartedProgram> started();

  // For the functions of the fake.
  [[nodiscard]] DWORD attributesOf(const std::string& path);
  [[nodiscard]] DWORD durationOf(const std::string& path);
  void noteStart(const tStartedProgram& program);

 private:
  struct tProgram {
    DWORD milliseconds;
    DWORD attributes;
  };

  std::mutex mutex_;
  std::map<std::string, tProgram> programs_;
  std::vector<tStartedProgram> started_;
};

[[nodiscard]] tPrograms& programs();

}  // namespace nFakeWindows

#endif
