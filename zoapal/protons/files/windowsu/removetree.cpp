#include "zoapal/protons/files/windowsu/folders.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <new>
#include <string_view>
#include <vector>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/text/windowsu/codepage.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

constexpr char16_t kSeparator = u'\\';
// Bounds the stack and the handles of the descent. The library itself creates no folder in a folder.
constexpr unsigned kMaxDepth = 64;

// The names of a folder as opened, with the links of the path resolved. The form with the name of the device
// exists for every volume, also for one without a drive letter.
constexpr DWORD kResolvedName = FILE_NAME_OPENED | VOLUME_NAME_NT;

std::u16string joined(const std::u16string& folder, std::u16string_view name) {
  std::u16string path = folder;
  if (!path.ends_with(kSeparator) && !path.ends_with(u'/')) {
    path.push_back(kSeparator);
  }
  return path.append(name);
}

// Empty when the system has no such name.
std::u16string resolvedName(HANDLE entry) {
  std::u16string name(MAX_PATH, u'\0');
  const auto capacity = [&name] { return static_cast<DWORD>(name.size()); };
  DWORD length = GetFinalPathNameByHandleW(entry, wideText(name.data()), capacity(), kResolvedName);
  if (length >= capacity()) {
    name.resize(length);
    length = GetFinalPathNameByHandleW(entry, wideText(name.data()), capacity(), kResolvedName);
  }
  name.resize(length < capacity() ? length : 0);
  return name;
}

// Without regard to case, as file systems compare: a handle may resolve to another case than was opened.
bool isNamed(HANDLE entry, const std::u16string& expected) {
  const std::u16string name = resolvedName(entry);
  const auto lengthOf = [](const std::u16string& text) { return static_cast<int>(text.size()); };
  return CompareStringOrdinal(wideText(name.data()), lengthOf(name), wideText(expected.data()),
                              lengthOf(expected), TRUE) == CSTR_EQUAL;
}

// While the handle is open, no other process renames or removes the entry.
tUniqueFile openEntry(const std::u16string& path) noexcept {
  return tUniqueFile(
      CreateFileW(wideText(path.c_str()), DELETE | FILE_LIST_DIRECTORY | FILE_WRITE_ATTRIBUTES,
                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                  FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

bool isFolder(const BY_HANDLE_FILE_INFORMATION& entry) noexcept {
  constexpr DWORD kKind = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  return (entry.dwFileAttributes & kKind) == FILE_ATTRIBUTE_DIRECTORY;
}

void clearReadOnly(HANDLE entry, DWORD attributes) noexcept {
  FILE_BASIC_INFO changed{};  // a time of 0 stays as it is
  changed.FileAttributes = attributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
  if (changed.FileAttributes == 0) {
    changed.FileAttributes = FILE_ATTRIBUTE_NORMAL;
  }
  SetFileInformationByHandle(entry, FileBasicInfo, &changed, sizeof changed);
}

// Removes the name at once, also that of a read-only file, and while another process has the file open.
bool removeExtended(HANDLE entry) noexcept {
  // FileDispositionInfoEx and FILE_DISPOSITION_INFO_EX, which not every set of Windows headers has.
  constexpr auto kDispositionEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
  constexpr DWORD kDelete = 0x1;
  constexpr DWORD kPosixSemantics = 0x2;
  constexpr DWORD kIgnoreReadOnly = 0x10;
  DWORD flags = kDelete | kPosixSemantics | kIgnoreReadOnly;
  return SetFileInformationByHandle(entry, kDispositionEx, &flags, sizeof flags) != FALSE;
}

void removeOpened(HANDLE entry, const BY_HANDLE_FILE_INFORMATION& information) noexcept {
  if (removeExtended(entry)) {
    return;
  }
  // Older systems, and file systems other than NTFS. A file with further names keeps its attributes: they
  // are those of a file elsewhere too.
  if ((information.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0 &&
      information.nNumberOfLinks <= 1) {
    clearReadOnly(entry, information.dwFileAttributes);
  }
  FILE_DISPOSITION_INFO disposition{TRUE};
  SetFileInformationByHandle(entry, FileDispositionInfo, &disposition, sizeof disposition);
}

// Adds the names of one block of a listing.
void addNames(const uint8_t* block, std::vector<std::u16string>& names) {
  for (bool isLast = false; !isLast;) {
    const auto& entry = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(block);
    const std::u16string name(reinterpret_cast<const char16_t*>(entry.FileName),
                              entry.FileNameLength / sizeof(WCHAR));
    if (name != u"." && name != u"..") {
      names.push_back(name);
    }
    isLast = entry.NextEntryOffset == 0;
    block += entry.NextEntryOffset;
  }
}

// Listed to the end before any entry is removed: a listing need not survive changes of the folder.
std::vector<std::u16string> namesIn(HANDLE folder) {
  constexpr size_t kBlock = 4096;
  alignas(FILE_ID_BOTH_DIR_INFO) std::array<uint8_t, kBlock> block{};
  std::vector<std::u16string> names;
  while (GetFileInformationByHandleEx(folder, FileIdBothDirectoryInfo, block.data(), kBlock)) {
    addNames(block.data(), names);
  }
  return names;
}

// A folder with entries to remove: its path, and the name that its handle resolves to.
struct tParent {
  std::u16string path;
  std::u16string resolved;
};

void removeContents(HANDLE folder, const tParent& names, unsigned depth);

void removeEntry(const tParent& parent, std::u16string_view name, unsigned depth) {
  const tParent names{joined(parent.path, name), joined(parent.resolved, name)};
  const tUniqueFile entry = openEntry(names.path);
  BY_HANDLE_FILE_INFORMATION information{};
  // A handle under another name is that of a link's target: the entry, or a folder above it, became a link.
  if (!entry || !GetFileInformationByHandle(entry.get(), &information) ||
      !isNamed(entry.get(), names.resolved)) {
    return;
  }
  if (isFolder(information)) {
    removeContents(entry.get(), names, depth);
  }
  removeOpened(entry.get(), information);
}

void removeContents(HANDLE folder, const tParent& names, unsigned depth) {
  if (depth == kMaxDepth) {
    return;
  }
  for (const std::u16string& name : namesIn(folder)) {
    removeEntry(names, name, depth + 1);
  }
}

// Opened along its links, for its resolved name only.
tUniqueFile openParent(const std::u16string& path) noexcept {
  return tUniqueFile(CreateFileW(wideText(path.c_str()), FILE_READ_ATTRIBUTES,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                 OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

void removeBelow(const std::u16string& path) {
  const size_t name = path.find_last_of(u"\\/") + 1;
  const std::u16string parentPath = path.substr(0, name);
  const tUniqueFile parent = openParent(parentPath);
  if (!parent) {
    return;
  }
  const std::u16string resolved = resolvedName(parent.get());
  if (!resolved.empty()) {
    removeEntry({parentPath, resolved}, std::u16string_view(path).substr(name), 0);
  }
}

}  // namespace

void removeTree(const std::u16string& path) noexcept {
  try {
    removeBelow(path);
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): the rest stays
  }
}

}  // namespace nQUENRA1400::nZOAPAL000
