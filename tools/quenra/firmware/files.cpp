#include "tools/quenra/firmware/files.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>
#include <random>
#include <system_error>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#endif

#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"

namespace nCommandLine {
namespace {

using tPath = std::filesystem::path;

[[noreturn]] void fail(const char* verb, const std::string& path, const std::string& reason) {
  throw tCommandError(tExitCode::failure,
                      std::string("cannot ") + verb + " '" + path + "': " + reason, std::nullopt);
}

// Fails for an argument that is not valid Unicode: it cannot name a file.
tPath nativePath(const char* verb, const std::string& path) {
  if (!isUtf8(path)) {
    fail(verb, path, "the path is not valid Unicode");
  }
  return {std::u8string(path.begin(), path.end())};
}

// ---- Files of the C library, which report the reason of a failure; C++ streams do not ----

struct tCloseFile {
  void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};
using tFile = std::unique_ptr<std::FILE, tCloseFile>;

void clearReason() noexcept {
  errno = 0;
#ifdef _WIN32
  _doserrno = 0;
#endif
}

// The reason of the last failed call. Prefers the Windows error, which is more specific than errno.
std::error_code lastReason() noexcept {
#ifdef _WIN32
  if (_doserrno != 0) {
    return {static_cast<int>(_doserrno), std::system_category()};
  }
#endif
  return {errno == 0 ? EIO : errno, std::generic_category()};
}

tFile openToRead(const tPath& path) noexcept {
  clearReason();
#ifdef _WIN32
  return tFile(_wfopen(path.c_str(), L"rb"));
#else
  return tFile(std::fopen(path.c_str(), "rb"));
#endif
}

bool isDirectory(const tPath& path) noexcept {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

// Windows reports a directory as access denied.
std::error_code reasonAt(const tPath& path, const std::error_code& reason) noexcept {
  return isDirectory(path) ? std::make_error_code(std::errc::is_a_directory) : reason;
}

// Adds the rest of the file to `content`.
std::error_code readRest(std::FILE* file, std::string& content) {
  constexpr size_t kBlock = size_t{1} << 20;
  for (;;) {
    const size_t before = content.size();
    content.resize(before + kBlock);
    clearReason();
    const size_t size = std::fread(content.data() + before, 1, kBlock, file);
    content.resize(before + size);
    if (size < kBlock) {
      return std::ferror(file) != 0 ? lastReason() : std::error_code();
    }
  }
}

std::error_code writeAll(std::FILE* file, std::string_view content) noexcept {
  clearReason();
  // Flush before closing: not every C library keeps the reason when closing fails.
  const bool isWritten = std::fwrite(content.data(), 1, content.size(), file) == content.size() &&
                         std::fflush(file) == 0;
  return isWritten ? std::error_code() : lastReason();
}

// With `keep`, fails if the target exists, even if another process created it a moment ago.
std::error_code renameFile(const tPath& from, const tPath& to, tExistingFile existing) noexcept {
  const bool replaces = existing == tExistingFile::replace;
#ifdef _WIN32
  if (MoveFileExW(from.c_str(), to.c_str(), replaces ? MOVEFILE_REPLACE_EXISTING : 0)) {
    return {};
  }
  return {static_cast<int>(GetLastError()), std::system_category()};
#else
  const unsigned flags = replaces ? 0 : RENAME_NOREPLACE;
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) == 0) {
    return {};
  }
  return {errno, std::generic_category()};
#endif
}

// A new file beside the target, removed by the destructor unless it was renamed. The random name
// avoids a collision with a file of the user.
class tNewFile {
 public:
  tNewFile(const tPath& target, const tCreateFile& create) {
    constexpr int kTries = 10;
    for (int i = 0; i < kTries && !file_; ++i) {
      path_ = target;
      path_ += randomSuffix();
      clearReason();
      file_.reset(create(path_));
      reason_ = file_ ? std::error_code() : lastReason();
      if (reason_ != std::errc::file_exists) {
        return;
      }
    }
  }
  tNewFile(const tNewFile&) = delete;
  tNewFile& operator=(const tNewFile&) = delete;
  ~tNewFile() {
    if (isCreated_) {
      file_.reset();
      std::error_code ignored;  // a successful rename leaves nothing to remove
      std::filesystem::remove(path_, ignored);
    }
  }

  [[nodiscard]] std::error_code write(std::string_view content) {
    isCreated_ = file_ != nullptr;
    if (isCreated_) {
      reason_ = writeAll(file_.get(), content);
      file_.reset();
    }
    return reason_;
  }
  [[nodiscard]] std::error_code renameTo(const tPath& path, tExistingFile existing) const noexcept {
    return renameFile(path_, path, existing);
  }

 private:
  static std::string randomSuffix() {
    std::random_device random;
    constexpr int kDigits = 8;
    return "." + hexadecimalText(random(), kDigits).substr(2) + ".tmp";
  }

  tPath path_;
  tFile file_;
  std::error_code reason_;
  bool isCreated_ = false;
};

std::string reasonOfWriting(const std::error_code& reason) {
  return reason == std::errc::no_such_file_or_directory ? "no such directory" : reasonOf(reason);
}

}  // namespace

std::string readFile(const std::string& path) {
  constexpr const char* kVerb = "read";
  const tPath native = nativePath(kVerb, path);
  const tFile file = openToRead(native);
  std::error_code reason = file ? std::error_code() : lastReason();
  std::string content;
  try {
    if (file) {
      reason = readRest(file.get(), content);
    }
  } catch (const std::bad_alloc&) {
    reason = std::make_error_code(std::errc::not_enough_memory);
  }
  if (reason) {
    fail(kVerb, path, reasonOf(reasonAt(native, reason)));
  }
  return content;
}

std::FILE* createFile(const tPath& path) noexcept {
#ifdef _WIN32
  const int descriptor =
      _wopen(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY, _S_IREAD | _S_IWRITE);
  return descriptor < 0 ? nullptr : _fdopen(descriptor, "wb");
#else
  constexpr mode_t kReadAndWrite = 0666;  // the umask clears bits of it
  const int descriptor = open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kReadAndWrite);
  return descriptor < 0 ? nullptr : fdopen(descriptor, "wb");
#endif
}

void writeFile(const std::string& path, std::string_view content, tExistingFile existing,
               const tCreateFile& create) {
  constexpr const char* kVerb = "write";
  const tPath target = nativePath(kVerb, path);
  tNewFile file(target, create);
  if (const std::error_code reason = file.write(content)) {
    fail(kVerb, path, reasonOfWriting(reason));
  }
  if (const std::error_code reason = file.renameTo(target, existing)) {
    fail(kVerb, path, reasonOf(reasonAt(target, reason)));
  }
}

bool fileExists(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(nativePath("write", path), ignored);
}

bool isSameFile(const std::string& path, const std::string& other) {
  std::error_code ignored;
  return std::filesystem::equivalent(nativePath("read", path), nativePath("write", other), ignored);
}

}  // namespace nCommandLine
