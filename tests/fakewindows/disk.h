// The file system of the fake Windows: that of the system that runs the tests.
#ifndef TESTS_FAKEWINDOWS_DISK_H
#define TESTS_FAKEWINDOWS_DISK_H

#include <windows.h>

#include <mutex>
#include <string>
#include <vector>

namespace nFakeWindows {

// A security descriptor set on a folder.
struct tProtection {
  std::string path;        // on the native system
  std::string descriptor;  // in the security descriptor definition language
  bool isNew;              // true: set at creation; false: later, through a handle
  SECURITY_INFORMATION parts;
};

struct tDiskFile;

// The security features of the disk. Any thread.
class tDisk {
 public:
  // Clears the protections. Restores the integrity level of an administrator for the process, and
  // deletion with POSIX semantics for the disk.
  void reset();

  void useIntegrityLevel(DWORD level);
  [[nodiscard]] DWORD integrityLevel();
  // Makes the disk reject FileDispositionInfoEx, as every file system except NTFS does.
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

// The text from which a security descriptor was converted.
[[nodiscard]] std::string textOf(PSECURITY_DESCRIPTOR descriptor);

// CreateFileA with CREATE_ALWAYS: creates or empties a file for writing. Any thread.
[[nodiscard]] HANDLE createNewFile(LPCSTR name, DWORD access, DWORD sharing, DWORD flags);
// WriteFile to such a file.
[[nodiscard]] BOOL writeToDisk(tDiskFile& file, LPCVOID in, DWORD size, LPDWORD bytes);

}  // namespace nFakeWindows

#endif
