#include "source/user/update/tupdatefolder.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "zoapal/protons/files/windowsu/folders.h"

namespace nQUENRA1400 {
namespace {

namespace fs = std::filesystem;

constexpr char16_t kSeparator = static_cast<char16_t>(fs::path::preferred_separator);

constexpr bool isLetter(char16_t character) noexcept {
  return (character >= u'A' && character <= u'Z') || (character >= u'a' && character <= u'z');
}

constexpr bool isSeparator(char16_t character) noexcept {
  return character == u'\\' || character == u'/';
}

// The name of another machine or of a device. Windows accepts both kinds of separator.
constexpr bool isRemoteOrDevice(std::u16string_view name) noexcept {
  return name.size() >= 2 && isSeparator(name[0]) && isSeparator(name[1]);
}

constexpr bool isAbsolute(std::u16string_view name) noexcept {
  const bool hasDriveLetter = name.size() >= 2 && isLetter(name[0]) && name[1] == u':';
  return hasDriveLetter || isRemoteOrDevice(name);
}

}  // namespace

tUpdateFolder::tUpdateFolder(const std::string& name)
    : path_((fs::temp_directory_path() / name).u16string()) {}

std::u16string tUpdateFolder::pathOf(std::u16string_view fileName) const {
  if (isAbsolute(fileName)) {
    return std::u16string(fileName);
  }
  // The operator of std::filesystem::path would leave the folder for a name with one leading separator.
  std::u16string joined = path_;
  joined.push_back(kSeparator);
  joined.append(fileName);
  return joined;
}

void tUpdateFolder::create() {
  if (folder_) {
    return;
  }
  const fs::path path(path_);
  try {
    fs::create_directories(path.parent_path());
    folder_ = nZOAPAL000::createProtectedFolder(path_);
  } catch (const std::system_error& error) {
    throw fs::filesystem_error("create_directories", path, error.code());
  }
}

bool tUpdateFolder::hold(const std::u16string& path) {
  // Opening a device or a pipe a second time would have effects there. The temporary directory may well be
  // on another machine.
  if (isRemoteOrDevice(path) && !path.starts_with(path_)) {
    return true;
  }
  files_.push_back({path, {}});
  return isDeferred_ || open(files_.back());
}

bool tUpdateFolder::open(tHeldFile& file) noexcept {
  file.handle = nZOAPAL000::holdFile(file.path);
  return file.handle || GetLastError() != ERROR_SHARING_VIOLATION;
}

bool tUpdateFolder::deferHolding() noexcept {
  if (isDeferred_ || files_.empty()) {
    return false;
  }
  for (tHeldFile& file : files_) {
    file.handle.reset();
  }
  isDeferred_ = true;
  return true;
}

bool tUpdateFolder::holdDeferred() noexcept {
  if (!isDeferred_) {
    return true;
  }
  isDeferred_ = false;
  return std::all_of(files_.begin(), files_.end(), open);
}

void tUpdateFolder::remove() noexcept {
  // The system removes no file that is held.
  files_.clear();
  folder_.reset();
  nZOAPAL000::removeTree(path_);
}

}  // namespace nQUENRA1400
