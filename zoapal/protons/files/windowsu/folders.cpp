#include "zoapal/protons/files/windowsu/folders.h"

#include <windows.h>
// After windows.h.
#include <sddl.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <system_error>

#include "zoapal/protons/text/windowsu/codepage.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

struct tLocalMemoryPolicy {
  using tHandle = PSECURITY_DESCRIPTOR;
  static tHandle none() noexcept { return nullptr; }
  static void close(tHandle handle) noexcept { LocalFree(handle); }
};
using tUniqueDescriptor = tUniqueHandle<tLocalMemoryPolicy>;

[[noreturn]] void fail(DWORD error, const char* call) {
  throw std::system_error(static_cast<int>(error), std::system_category(), call);
}

void require(bool isDone, const char* call) {
  if (!isDone) {
    fail(GetLastError(), call);
  }
}

// Of the thread, which may act for another user.
DWORD integrityLevel() {
  constexpr size_t kSize = sizeof(TOKEN_MANDATORY_LABEL) + SECURITY_MAX_SID_SIZE;
  alignas(TOKEN_MANDATORY_LABEL) std::array<uint8_t, kSize> bytes{};
  DWORD size = 0;
  require(GetTokenInformation(GetCurrentThreadEffectiveToken(), TokenIntegrityLevel, bytes.data(),
                              kSize, &size) != FALSE,
          "GetTokenInformation");
  const auto& label = *reinterpret_cast<const TOKEN_MANDATORY_LABEL*>(bytes.data());
  const SID& sid = *static_cast<const SID*>(label.Label.Sid);
  return sid.SubAuthority[sid.SubAuthorityCount - 1];
}

// Full access for the owner, the system and administrators, inherited by files (OI) and folders (CI), and
// nothing inherited from above (P).
std::string protection(DWORD level) {
  std::string text = "D:P(A;OICI;FA;;;OW)(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";
  if (level > SECURITY_MANDATORY_MEDIUM_RID) {
    // The level of administrators at most, so that they can remove what a service has left.
    const DWORD written = std::min<DWORD>(level, SECURITY_MANDATORY_HIGH_RID);
    text += "S:(ML;OICI;NW;;;S-1-16-" + std::to_string(written) + ")";
  }
  return text;
}

tUniqueDescriptor descriptorOf(const std::string& text) {
  const std::u16string wide(text.begin(), text.end());
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  require(ConvertStringSecurityDescriptorToSecurityDescriptorW(
              wideText(wide.c_str()), SDDL_REVISION_1, &descriptor, nullptr) != FALSE,
          "ConvertStringSecurityDescriptorToSecurityDescriptorW");
  return tUniqueDescriptor(descriptor);
}

// Opened for listing: a handle without access to the contents would not keep the folder from being renamed.
tUniqueFile openFolder(const std::u16string& path, DWORD access) {
  tUniqueFile folder(CreateFileW(
      wideText(path.c_str()), FILE_LIST_DIRECTORY | access, FILE_SHARE_READ | FILE_SHARE_WRITE,
      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  require(static_cast<bool>(folder), "CreateFileW");
  BY_HANDLE_FILE_INFORMATION information{};
  require(GetFileInformationByHandle(folder.get(), &information) != FALSE,
          "GetFileInformationByHandle");
  constexpr DWORD kKind = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  if ((information.dwFileAttributes & kKind) != FILE_ATTRIBUTE_DIRECTORY) {
    fail(ERROR_DIRECTORY, "GetFileInformationByHandle");
  }
  return folder;
}

tUniqueFile openNewFolder(const std::u16string& path) {
  try {
    return openFolder(path, 0);
  } catch (...) {
    removeTree(path);
    throw;
  }
}

tUniqueFile openExistingFolder(const std::u16string& path, PSECURITY_DESCRIPTOR descriptor,
                               bool hasLabel) {
  tUniqueFile folder = openFolder(path, WRITE_DAC | WRITE_OWNER);
  constexpr SECURITY_INFORMATION kProtectedDacl =
      0x80000000;  // not in every set of Windows headers
  const SECURITY_INFORMATION label = hasLabel ? DWORD{LABEL_SECURITY_INFORMATION} : 0;
  const SECURITY_INFORMATION protectedParts = DACL_SECURITY_INFORMATION | kProtectedDacl | label;
  require(SetKernelObjectSecurity(folder.get(), protectedParts, descriptor) != FALSE,
          "SetKernelObjectSecurity");
  return folder;
}

bool isFolder(const std::u16string& path) noexcept {
  const DWORD attributes = GetFileAttributesW(wideText(path.c_str()));
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

tUniqueFile createProtectedFolder(const std::u16string& path) {
  const DWORD level = integrityLevel();
  const tUniqueDescriptor descriptor = descriptorOf(protection(level));
  SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor.get(), FALSE};
  if (CreateDirectoryW(wideText(path.c_str()), &attributes)) {
    return openNewFolder(path);
  }
  const DWORD error = GetLastError();
  if (error != ERROR_ALREADY_EXISTS) {
    fail(error, "CreateDirectoryW");
  }
  return openExistingFolder(path, descriptor.get(), level > SECURITY_MANDATORY_MEDIUM_RID);
}

std::u16string temporaryDirectory() {
  constexpr const char* kName = "temp_directory_path";
  std::u16string path;
  DWORD length = MAX_PATH + 1;
  do {
    path.resize(length);
    length = GetTempPathW(static_cast<DWORD>(path.size()), wideText(path.data()));
    require(length != 0, kName);
  } while (length > path.size());
  path.resize(length);
  const DWORD attributes = GetFileAttributesW(wideText(path.c_str()));
  require(attributes != INVALID_FILE_ATTRIBUTES, kName);
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    fail(ERROR_DIRECTORY, kName);
  }
  return path;
}

void createParentFolders(const std::u16string& path) {
  const std::u16string parent = path.substr(0, std::min(path.find_last_of(u"\\/"), path.size()));
  if (parent.empty() || parent.size() == path.size() || isFolder(parent)) {
    return;
  }
  createParentFolders(parent);
  if (!CreateDirectoryW(wideText(parent.c_str()), nullptr)) {
    require(GetLastError() == ERROR_ALREADY_EXISTS, "CreateDirectoryW");
  }
}

tUniqueFile createFile(const std::string& path) noexcept {
  return tUniqueFile(CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                 nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool writeBytes(const tUniqueFile& file, const uint8_t* bytes, uint64_t byteCount) noexcept {
  constexpr uint64_t kMaxBlock = 1 << 20;  // file systems of other machines may refuse large ones
  while (byteCount != 0) {
    const auto block = static_cast<DWORD>(std::min(byteCount, kMaxBlock));
    DWORD written = 0;
    if (!WriteFile(file.get(), bytes, block, &written, nullptr) || written == 0) {
      return false;
    }
    bytes += written;
    byteCount -= written;
  }
  return true;
}

tUniqueFile holdFile(const std::u16string& path) noexcept {
  return tUniqueFile(CreateFileW(wideText(path.c_str()), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace nQUENRA1400::nZOAPAL000
