#include "tests/fakewindows/processes.h"

#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"

namespace nFakeWindows {

tPrograms& programs() {
  static tPrograms thePrograms;
  return thePrograms;
}

void tPrograms::reset() {
  const std::lock_guard lock(mutex_);
  programs_.clear();
  started_.clear();
}

void tPrograms::install(const std::string& path, DWORD milliseconds, DWORD attributes) {
  const std::lock_guard lock(mutex_);
  programs_[path] = {milliseconds, attributes};
}

std::vector<tStartedProgram> tPrograms::started() {
  const std::lock_guard lock(mutex_);
  return started_;
}

DWORD tPrograms::attributesOf(const std::string& path) {
  const std::lock_guard lock(mutex_);
  const auto found = programs_.find(path);
  return found == programs_.end() ? INVALID_FILE_ATTRIBUTES : found->second.attributes;
}

DWORD tPrograms::durationOf(const std::string& path) {
  const std::lock_guard lock(mutex_);
  return programs_.at(path).milliseconds;
}

void tPrograms::noteStart(const tStartedProgram& program) {
  const std::lock_guard lock(mutex_);
  started_.push_back(program);
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

DWORD WINAPI GetFileAttributesA(LPCSTR path) {
  const tInside inside;
  constexpr auto kCall = tCall::getFileAttributes;
  expectSupported(path != nullptr, kCall, "no path");
  if (const auto error = faultPlan().enter(kCall, path)) {
    SetLastError(*error);
    return INVALID_FILE_ATTRIBUTES;
  }
  const DWORD attributes = programs().attributesOf(path);
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    SetLastError(ERROR_FILE_NOT_FOUND);
  }
  return attributes;
}

BOOL WINAPI CreateProcessA(LPCSTR path, LPSTR commandLine, LPSECURITY_ATTRIBUTES processSecurity,
                           LPSECURITY_ATTRIBUTES threadSecurity, BOOL inherit, DWORD flags,
                           LPVOID environment, LPCSTR folder, LPSTARTUPINFOA startup,
                           LPPROCESS_INFORMATION started) {
  const tInside inside;
  constexpr auto kCall = tCall::createProcess;
  expectSupported(path != nullptr && commandLine != nullptr, kCall,
                  "a program and its command line");
  expectSupported(processSecurity == nullptr && threadSecurity == nullptr &&
                      environment == nullptr && folder == nullptr &&
                      startup->cb == sizeof *startup && startup->dwFlags == 0,
                  kCall, "everything else is the caller's own");
  if (const auto error = faultPlan().enter(kCall, path)) {
    SetLastError(*error);
    return FALSE;
  }
  if (programs().attributesOf(path) == INVALID_FILE_ATTRIBUTES) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return FALSE;
  }
  programs().noteStart({path, commandLine, inherit != FALSE, flags});
  // The contract permits the system to modify the command line.
  *commandLine = '\0';
  const std::lock_guard lock(objects().mutex);
  started->hProcess = objects().add(tProcess{programs().durationOf(path)});
  started->hThread = objects().add(tProgramThread{});
  return TRUE;
}
