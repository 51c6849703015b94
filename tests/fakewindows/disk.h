// The folders and files of the fake Windows: those of the system that runs the tests.
#ifndef TESTS_FAKEWINDOWS_DISK_H
#define TESTS_FAKEWINDOWS_DISK_H

#include <windows.h>

#include <mutex>
#include <string>
#include <vector>

namespace nFakeWindows {

// A security descriptor that a folder received.
struct tProtection {
  std::string path;        // as the native system has it
  std::string descriptor;  // in the security descriptor definition language
  bool isNew;              // at its creation, or later through a handle
  SECURITY_INFORMATION parts;
};

// The security of the disk. Any thread.
class tDisk {
 public:
  // Forgets the protections. The process has the integrity level of an administrator again, and the disk
  // knows deletion with POSIX semantics.
  void reset();

  void useIntegrityLevel(DWORD level);
  [[nodiscard]] DWORD integrityLevel();
  // Makes the disk one that refuses FileDispositionInfoEx, as every file system but NTFS does.
  void refuseExtendedDisposition();
  [[nodiscard]] bool knowsExtendedDisposition();

  [[nodiscard]] std::vector<tProtection> protections();
  void noteProtection(const tProtection& protection);

 private:
  std::mutex mutex_;
  DWORD integrityLevel_ = SECURITY_MANDATORY_HIGH_RID;
  bool knowsExtendedDisposition_ = true;
  std::vector<tProtection> protections_;
};

[[nodiscard]] tDisk& disk();

// The text that a security descriptor was made from.
[[nodiscard]] std::string textOf(PSECURITY_DESCRIPTOR descriptor);

}  // namespace nFakeWindows

#endif
