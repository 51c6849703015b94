#ifndef TESTS_FAKEWINDOWS_PROCESSES_H
#define TESTS_FAKEWINDOWS_PROCESSES_H

#include <windows.h>

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace nFakeWindows {

// A started program.
struct tStartedProgram {
  std::string path;
  std::string commandLine;
  bool inheritsHandles = false;
  DWORD flags = 0;
};

// The programs of the fake Windows, and a record of those started. Any thread.
class tPrograms {
 public:
  // Removes all programs and clears the record.
  void reset();

  // Creates a program with a run time, or another entry with these attributes, at the path.
  void install(const std::string& path, DWORD milliseconds = 0,
               DWORD attributes = FILE_ATTRIBUTE_NORMAL);
  [[nodiscard]] std::vector<tStartedProgram> started();

  // Called by the functions of the fake.
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
