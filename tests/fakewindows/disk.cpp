// Folders and files by their wide names. Links are the symbolic links of the native system.
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <compare>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "tests/fakewindows/disk.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"

namespace fs = std::filesystem;

namespace nFakeWindows {
namespace {

constexpr char16_t kDevice[] = u"\\Device\\HarddiskVolume1";

DWORD errorOf(const std::error_code& code, const fs::path& path) {
  std::error_code ignored;
  if (code == std::errc::no_such_file_or_directory) {
    return fs::exists(path.parent_path(), ignored) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
  }
  if (code == std::errc::file_exists) {
    return ERROR_ALREADY_EXISTS;
  }
  if (code == std::errc::not_a_directory) {
    return ERROR_PATH_NOT_FOUND;
  }
  return code == std::errc::directory_not_empty ? DWORD{ERROR_DIR_NOT_EMPTY}
                                                : DWORD{ERROR_ACCESS_DENIED};
}

// A native name is UTF-8, or has one byte per character after a conversion to the fake's code page.
std::u16string wideName(const fs::path& path) {
  const std::string& bytes = path.native();
  std::u16string wide;
  try {
    wide = path.u16string();
  } catch (const std::exception&) {
    for (const char byte : bytes) {
      wide.push_back(static_cast<unsigned char>(byte));
    }
  }
  std::replace(wide.begin(), wide.end(), u'/', u'\\');
  return wide;
}

fs::path nativePath(LPCWSTR name) {
  std::u16string wide(reinterpret_cast<const char16_t*>(name));
  std::replace(wide.begin(), wide.end(), u'\\', u'/');
  fs::path path(wide);
  std::error_code ignored;
  const bool hasBytes = std::all_of(wide.begin(), wide.end(), [](char16_t c) { return c <= 0xFF; });
  if (hasBytes && !fs::exists(fs::symlink_status(path, ignored))) {
    std::string bytes;
    for (const char16_t character : wide) {
      bytes.push_back(static_cast<char>(character));
    }
    if (fs::exists(fs::symlink_status(bytes, ignored))) {
      path = bytes;
    }
  }
  return path;
}

// The bytes of a narrow name are those of the native one.
fs::path nativePath(LPCSTR name) {
  std::string path(name);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

HANDLE failToOpen(DWORD error) {
  SetLastError(error);
  return INVALID_HANDLE_VALUE;
}

// Resolves a path. With `keepsLink` the last component is not followed.
fs::path resolved(const fs::path& path, bool keepsLink, std::error_code& error) {
  if (!keepsLink || !path.has_filename()) {
    return fs::canonical(path, error);
  }
  const fs::path parent = fs::canonical(path.parent_path(), error);
  if (!error && !fs::exists(fs::symlink_status(path, error))) {
    error = std::make_error_code(std::errc::no_such_file_or_directory);
  }
  return parent / path.filename();
}

DWORD attributesOf(const fs::path& path) {
  std::error_code ignored;
  const fs::file_status status = fs::symlink_status(path, ignored);
  DWORD attributes = 0;
  if (fs::is_symlink(status)) {
    attributes |= FILE_ATTRIBUTE_REPARSE_POINT;
    attributes |= fs::is_directory(path, ignored) ? FILE_ATTRIBUTE_DIRECTORY : 0u;
  } else {
    attributes |= fs::is_directory(status) ? FILE_ATTRIBUTE_DIRECTORY : 0u;
    const bool isWritable = (status.permissions() & fs::perms::owner_write) != fs::perms::none;
    attributes |= isWritable ? 0u : FILE_ATTRIBUTE_READONLY;
  }
  return attributes == 0 ? DWORD{FILE_ATTRIBUTE_NORMAL} : attributes;
}

// The share mode, in bits of FILE_SHARE_, that other handles must grant for this access.
DWORD sharedAccess(DWORD access) {
  constexpr DWORD kRead = GENERIC_READ | FILE_READ_DATA | FILE_EXECUTE;
  constexpr DWORD kWrite = GENERIC_WRITE | FILE_WRITE_DATA | FILE_APPEND_DATA;
  return ((access & kRead) != 0 ? FILE_SHARE_READ : 0u) |
         ((access & kWrite) != 0 ? FILE_SHARE_WRITE : 0u) |
         ((access & DELETE) != 0 ? FILE_SHARE_DELETE : 0u);
}

tDiskFile openedAt(const fs::path& path, DWORD access, DWORD sharing) {
  tDiskFile file;
  file.path = path;
  file.access = access;
  file.uses = sharedAccess(access);
  file.sharing = sharing;
  return file;
}

tDiskFile& fileOf(HANDLE handle, tCall call) {
  tDiskFile* const file = objects().find<tDiskFile>(handle);
  if (file == nullptr) {
    stop(nameOf(call), "not a file or folder, or one that was closed");
  }
  return *file;
}

bool fail(DWORD error) {
  SetLastError(error);
  return false;
}

// ---- Listings ----

// Returns few names per call, so that the library must continue until the listing ends.
bool listNext(tDiskFile& folder, void* out, DWORD size) {
  if (!folder.isListed) {
    folder.names = {u".", u".."};
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder.path, ignored)) {
      folder.names.push_back(wideName(entry.path().filename()));
    }
    folder.isListed = true;
  }
  if (folder.names.empty()) {
    return fail(ERROR_NO_MORE_FILES);
  }
  // Two entries in the first block, one in each further block.
  auto* bytes = static_cast<uint8_t*>(out);
  for (size_t left = std::min<size_t>(folder.names.size(), 2); left != 0; --left) {
    const std::u16string name = folder.names.front();
    const size_t length = name.size() * sizeof(WCHAR);
    const size_t needed = (sizeof(FILE_ID_BOTH_DIR_INFO) + length + 7) / 8 * 8;
    expectSupported(needed <= size, tCall::getFileInformationEx, "a buffer for one name at least");
    FILE_ID_BOTH_DIR_INFO entry{};
    entry.FileNameLength = static_cast<DWORD>(length);
    entry.NextEntryOffset = left == 1 ? 0 : static_cast<DWORD>(needed);
    std::copy_n(reinterpret_cast<const uint8_t*>(&entry), sizeof entry, bytes);
    std::copy_n(reinterpret_cast<const uint8_t*>(name.data()), length,
                bytes + offsetof(FILE_ID_BOTH_DIR_INFO, FileName));
    folder.names.erase(folder.names.begin());
    bytes += needed;
    size -= static_cast<DWORD>(needed);
  }
  return true;
}

// ---- Removal ----

bool canBeRemoved(const tDiskFile& file, bool ignoresReadOnly) {
  const DWORD attributes = attributesOf(file.path);
  constexpr DWORD kKind = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  std::error_code ignored;
  if ((file.access & DELETE) == 0) {
    return fail(ERROR_ACCESS_DENIED);
  }
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0 && !ignoresReadOnly) {
    return fail(ERROR_ACCESS_DENIED);
  }
  if ((attributes & kKind) == FILE_ATTRIBUTE_DIRECTORY && !fs::is_empty(file.path, ignored)) {
    return fail(ERROR_DIR_NOT_EMPTY);
  }
  return true;
}

bool changeAttributes(const tDiskFile& file, DWORD attributes) {
  if ((file.access & FILE_WRITE_ATTRIBUTES) == 0) {
    return fail(ERROR_ACCESS_DENIED);
  }
  std::error_code ignored;
  fs::permissions(file.path, fs::perms::owner_write,
                  (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? fs::perm_options::remove
                                                              : fs::perm_options::add,
                  ignored);
  return true;
}

}  // namespace

void tDisk::reset() {
  const std::lock_guard lock(mutex_);
  integrityLevel_ = SECURITY_MANDATORY_HIGH_RID;
  knowsExtendedDisposition_ = true;
  protections_.clear();
}

void tDisk::useIntegrityLevel(DWORD level) {
  const std::lock_guard lock(mutex_);
  integrityLevel_ = level;
}

DWORD tDisk::integrityLevel() {
  const std::lock_guard lock(mutex_);
  return integrityLevel_;
}

void tDisk::refuseExtendedDisposition() {
  const std::lock_guard lock(mutex_);
  knowsExtendedDisposition_ = false;
}

bool tDisk::knowsExtendedDisposition() {
  const std::lock_guard lock(mutex_);
  return knowsExtendedDisposition_;
}

std::vector<tProtection> tDisk::protections() {
  const std::lock_guard lock(mutex_);
  return protections_;
}

void tDisk::noteProtection(const tProtection& protection) {
  const std::lock_guard lock(mutex_);
  protections_.push_back(protection);
}

HANDLE createNewFile(LPCSTR name, DWORD access, DWORD sharing, DWORD flags) {
  constexpr auto kCall = tCall::createNewFile;
  expectSupported(access == GENERIC_WRITE && sharing == (FILE_SHARE_READ | FILE_SHARE_WRITE) &&
                      flags == FILE_ATTRIBUTE_NORMAL,
                  kCall, "a new file is written only, and shared");
  if (const auto error = faultPlan().enter(kCall, name)) {
    return failToOpen(*error);
  }
  const fs::path given = nativePath(name);
  std::error_code error;
  const fs::path path = fs::weakly_canonical(fs::absolute(given), error);
  if (fs::is_directory(path, error) ||
      (fs::exists(path, error) && (attributesOf(path) & FILE_ATTRIBUTE_READONLY) != 0)) {
    return failToOpen(ERROR_ACCESS_DENIED);
  }
  tDiskFile file = openedAt(path, access, sharing);
  const std::lock_guard lock(objects().mutex);
  if (!objects().mayOpen(path, file.uses, sharing)) {
    return failToOpen(ERROR_SHARING_VIOLATION);
  }
  std::FILE* const content = std::fopen(given.c_str(), "wb");
  if (content == nullptr) {
    return failToOpen(errorOf({errno, std::generic_category()}, given));
  }
  std::setbuf(content, nullptr);  // each write reaches the disk, or fails
  file.content.reset(content, std::fclose);
  return objects().add(std::move(file));
}

BOOL writeToDisk(tDiskFile& file, LPCVOID in, DWORD size, LPDWORD bytes) {
  expectSupported(file.content != nullptr, tCall::writeFile, "a file opened for writing");
  *bytes = static_cast<DWORD>(std::fwrite(in, 1, size, file.content.get()));
  return *bytes == size || fail(ERROR_DISK_FULL);
}

tDisk& disk() {
  // Never destroyed: the library under test may still call it while the program ends.
  static tDisk& theDisk = *new tDisk;
  return theDisk;
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

BOOL WINAPI CreateDirectoryW(LPCWSTR name, LPSECURITY_ATTRIBUTES security) {
  const tInside inside;
  constexpr auto kCall = tCall::createDirectory;
  expectSupported(
      name != nullptr && (security == nullptr ||
                          (security->nLength == sizeof *security && !security->bInheritHandle)),
      kCall, "a folder is created with a security descriptor, or inherits it");
  if (const auto error = faultPlan().enter(kCall)) {
    return fail(*error);
  }
  const fs::path path = nativePath(name);
  std::error_code error;
  if (!fs::create_directory(path, error)) {
    return fail(error ? errorOf(error, path) : DWORD{ERROR_ALREADY_EXISTS});
  }
  if (security != nullptr) {
    disk().noteProtection({path.string(), textOf(security->lpSecurityDescriptor), true, 0});
  }
  return TRUE;
}

DWORD WINAPI GetTempPathW(DWORD capacity, LPWSTR out) {
  const tInside inside;
  constexpr auto kCall = tCall::getTempPath;
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return 0;
  }
  const char* const variable = std::getenv("TMPDIR");
  const std::u16string name = wideName(fs::path(variable == nullptr ? "/tmp" : variable) / "");
  if (name.size() >= capacity) {
    return static_cast<DWORD>(name.size() + 1);  // including the NUL
  }
  std::copy(name.begin(), name.end(), reinterpret_cast<char16_t*>(out));
  out[name.size()] = 0;
  return static_cast<DWORD>(name.size());
}

DWORD WINAPI GetFileAttributesW(LPCWSTR name) {
  const tInside inside;
  constexpr auto kCall = tCall::getDiskAttributes;
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return INVALID_FILE_ATTRIBUTES;
  }
  std::error_code error;
  fs::path given = nativePath(name);
  if (!given.has_filename()) {
    given = given.parent_path();  // without the separator at the end
  }
  const fs::path path = resolved(given, true, error);
  if (error) {
    SetLastError(errorOf(error, given));
    return INVALID_FILE_ATTRIBUTES;
  }
  return attributesOf(path);
}

HANDLE WINAPI CreateFileW(LPCWSTR name, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security,
                          DWORD creation, DWORD flags, HANDLE templateFile) {
  const tInside inside;
  constexpr auto kCall = tCall::createDiskFile;
  expectSupported(name != nullptr && security == nullptr && templateFile == nullptr &&
                      creation == OPEN_EXISTING,
                  kCall, "only what exists is opened");
  const bool mayBeFolder = (flags & FILE_FLAG_BACKUP_SEMANTICS) != 0;
  const bool keepsLink = (flags & FILE_FLAG_OPEN_REPARSE_POINT) != 0;
  if (const auto error = faultPlan().enter(kCall, mayBeFolder ? "folder" : "file")) {
    return failToOpen(*error);
  }
  std::error_code error;
  const fs::path given = nativePath(name);
  const fs::path path = resolved(given, keepsLink, error);
  if (error || (!mayBeFolder && fs::is_directory(path))) {
    return failToOpen(error ? errorOf(error, given) : DWORD{ERROR_ACCESS_DENIED});
  }
  const std::lock_guard lock(objects().mutex);
  if (!objects().mayOpen(path, sharedAccess(access), sharing)) {
    return failToOpen(ERROR_SHARING_VIOLATION);
  }
  return objects().add(openedAt(path, access, sharing));
}

BOOL WINAPI GetFileInformationByHandle(HANDLE handle, BY_HANDLE_FILE_INFORMATION* information) {
  const tInside inside;
  constexpr auto kCall = tCall::getFileInformation;
  if (const auto error = faultPlan().enter(kCall)) {
    return fail(*error);
  }
  const std::lock_guard lock(objects().mutex);
  const fs::path& path = fileOf(handle, kCall).path;
  std::error_code ignored;
  const bool isFile = fs::is_regular_file(fs::symlink_status(path, ignored));
  *information = {};
  information->dwFileAttributes = attributesOf(path);
  information->nNumberOfLinks = isFile ? static_cast<DWORD>(fs::hard_link_count(path, ignored)) : 1;
  return TRUE;
}

BOOL WINAPI GetFileInformationByHandleEx(HANDLE handle, FILE_INFO_BY_HANDLE_CLASS information,
                                         LPVOID out, DWORD size) {
  const tInside inside;
  constexpr auto kCall = tCall::getFileInformationEx;
  expectSupported(information == FileIdBothDirectoryInfo, kCall, "only folders are listed");
  if (const auto error = faultPlan().enter(kCall)) {
    return fail(*error);
  }
  const std::lock_guard lock(objects().mutex);
  return listNext(fileOf(handle, kCall), out, size);
}

BOOL WINAPI SetFileInformationByHandle(HANDLE handle, FILE_INFO_BY_HANDLE_CLASS information,
                                       LPVOID in, DWORD size) {
  const tInside inside;
  constexpr auto kCall = tCall::setFileInformation;
  constexpr auto kDispositionEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
  constexpr DWORD kIgnoresReadOnly = 0x10;
  if (const auto error = faultPlan().enter(kCall)) {
    return fail(*error);
  }
  const std::lock_guard lock(objects().mutex);
  tDiskFile& file = fileOf(handle, kCall);
  if (information == FileBasicInfo && size == sizeof(FILE_BASIC_INFO)) {
    return changeAttributes(file, static_cast<const FILE_BASIC_INFO*>(in)->FileAttributes);
  }
  const bool isExtended = information == kDispositionEx;
  expectSupported((isExtended && size == sizeof(DWORD)) ||
                      (information == FileDispositionInfo && size == sizeof(FILE_DISPOSITION_INFO)),
                  kCall, "attributes and deletion only");
  if (isExtended && !disk().knowsExtendedDisposition()) {
    return fail(ERROR_INVALID_PARAMETER);
  }
  const bool ignoresReadOnly =
      isExtended && (*static_cast<const DWORD*>(in) & kIgnoresReadOnly) != 0;
  if (!canBeRemoved(file, ignoresReadOnly)) {
    return FALSE;
  }
  file.isRemovedOnClose = true;
  return TRUE;
}

DWORD WINAPI GetFinalPathNameByHandleW(HANDLE handle, LPWSTR out, DWORD capacity, DWORD flags) {
  const tInside inside;
  constexpr auto kCall = tCall::getFinalPathName;
  expectSupported(flags == (FILE_NAME_OPENED | VOLUME_NAME_NT), kCall, "the name below the device");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return 0;
  }
  const std::lock_guard lock(objects().mutex);
  const std::u16string name = kDevice + wideName(fileOf(handle, kCall).path);
  if (name.size() >= capacity) {
    return static_cast<DWORD>(name.size() + 1);  // including the NUL
  }
  std::copy(name.begin(), name.end(), reinterpret_cast<char16_t*>(out));
  out[name.size()] = 0;
  return static_cast<DWORD>(name.size());
}
