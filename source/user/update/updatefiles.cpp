#include "source/user/update/updatefiles.h"

#include <algorithm>
#include <system_error>

#include "source/user/failuresites.h"
#include "source/user/update/environmentstep.h"
#include "zoapal/protons/files/windowsu/folders.h"
#include "zoapal/protons/text/windowsu/codepage.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kCannotBeOpened = sessionLocation(2978);
constexpr auto kFolderNotCreated = sessionLocation(2979);
constexpr auto kNameNotConverted = sessionLocation(2980);

// ---- Names of files ----

constexpr char16_t kSeparator = u'\\';

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

// ---- Files ----

std::u16string widePath(const tFirmwarePayload& payload, const tUpdateFolder& folder,
                        zoerr::Status& status) {
  std::u16string path;
  runEnvironmentStep(kNameNotConverted, status, [&] {
    path = folder.pathOf(nZOAPAL000::utf16FromCodePage(payload.targetFileName));
  });
  return path;
}

std::string narrowPath(const std::u16string& path, zoerr::Status& status) {
  std::string narrow;
  runEnvironmentStep(kNameNotConverted, status,
                     [&] { narrow = nZOAPAL000::codePageFromUtf16(path); });
  return narrow;
}

// Returns false when the file cannot be opened.
bool writeFile(const tFirmwarePayload& payload, const std::string& path) {
  const nZOAPAL000::tUniqueFile file = nZOAPAL000::createFile(path);
  if (!file) {
    return false;
  }
  // A file that cannot be written to its end is not reported.
  static_cast<void>(nZOAPAL000::writeBytes(file, payload.data, payload.byteCount));
  return true;
}

// Returns false when the file cannot be opened, or another process writes to it too.
bool writeAndHold(const tFirmwarePayload& payload, const std::u16string& path,
                  const std::string& narrow, tUpdateFolder& folder) {
  // Two sections may name the same file, which the folder holds since the first of them. The system treats
  // names of different forms as the same, so only a failed attempt reveals it.
  const bool isWritten =
      writeFile(payload, narrow) || (folder.deferHolding() && writeFile(payload, narrow));
  return isWritten && folder.hold(path);
}

void reportFile(tUpdateFolder& folder, zoerr::Status& status) noexcept {
  folder.remove();
  status.set(QUENRA_STATUS_UPDATE_ENVIRONMENT, kCannotBeOpened);
}

void writePayloadFile(const tFirmwarePayload& payload, tUpdateFolder& folder,
                      zoerr::Status& status) {
  const std::u16string path = widePath(payload, folder, status);
  runEnvironmentStep(kFolderNotCreated, status, [&] { folder.create(); });
  const std::string narrow = narrowPath(path, status);
  if (!status.isError() && !writeAndHold(payload, path, narrow, folder)) {
    reportFile(folder, status);
  }
}

}  // namespace

tUpdateFolder::tUpdateFolder(const std::string& name)
    : path_(nZOAPAL000::temporaryDirectory().append(name.begin(), name.end())) {}

std::u16string tUpdateFolder::pathOf(std::u16string_view fileName) const {
  if (isAbsolute(fileName)) {
    return std::u16string(fileName);
  }
  // A name with one leading separator stays in the folder, too.
  std::u16string joined = path_;
  joined.push_back(kSeparator);
  joined.append(fileName);
  return joined;
}

void tUpdateFolder::create() {
  if (folder_) {
    return;
  }
  try {
    nZOAPAL000::createParentFolders(path_);
    folder_ = nZOAPAL000::createProtectedFolder(path_);
  } catch (const std::system_error& error) {
    throw std::system_error(error.code(), "create_directories");
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

std::string payloadFilePath(const tFirmwarePayload& payload, const tUpdateFolder& folder,
                            zoerr::Status& status) {
  return narrowPath(widePath(payload, folder, status), status);
}

void writePayloadFiles(const tFirmwarePayloads& payloads, tUpdateFolder& folder,
                       zoerr::Status& status) {
  for (const tFirmwarePayload& payload : payloads) {
    if (status.isError()) {
      return;
    }
    if (!payload.targetFileName.empty()) {
      writePayloadFile(payload, folder, status);
    }
  }
  if (!status.isError() && !folder.holdDeferred()) {
    reportFile(folder, status);
  }
}

}  // namespace nQUENRA1400
