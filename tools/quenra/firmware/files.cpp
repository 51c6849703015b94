#include "tools/quenra/firmware/files.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>

#include "tools/quenra/output/systemreason.h"
#include "tools/quenra/output/utf8text.h"
#include "tools/quenra/tcommanderror.h"

namespace nCommandLine {
namespace {

using tPath = std::filesystem::path;

[[noreturn]] void fail(const char* verb, const std::string& path, const std::string& reason) {
  throw tCommandError(tExitCode::failure,
                      std::string("cannot ") + verb + " '" + path + "': " + reason, std::nullopt);
}

// A word of the command line that is not Unicode cannot name a file.
tPath nativePath(const char* verb, const std::string& path) {
  if (!isUtf8(path)) {
    fail(verb, path, "the path is not valid Unicode");
  }
  return {std::u8string(path.begin(), path.end())};
}

std::string pathText(const tPath& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

// ---- The C library's files, which unlike the streams of C++ report a reason ----

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

// The reason of the last failed call. The error of Windows is the finer one, where there is one.
std::error_code lastReason() noexcept {
#ifdef _WIN32
  if (_doserrno != 0) {
    return {static_cast<int>(_doserrno), std::system_category()};
  }
#endif
  return {errno == 0 ? EIO : errno, std::generic_category()};
}

tFile open(const tPath& path, bool forWriting) noexcept {
  clearReason();
#ifdef _WIN32
  return tFile(_wfopen(path.c_str(), forWriting ? L"wb" : L"rb"));
#else
  return tFile(std::fopen(path.c_str(), forWriting ? "wb" : "rb"));
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

std::error_code writeAll(const tPath& path, std::string_view content) noexcept {
  const tFile file = open(path, true);
  if (!file) {
    return lastReason();
  }
  clearReason();
  // Flushed before it closes: not every C library keeps the reason when closing fails.
  const bool isWritten =
      std::fwrite(content.data(), 1, content.size(), file.get()) == content.size() &&
      std::fflush(file.get()) == 0;
  return isWritten ? std::error_code() : lastReason();
}

class tTemporaryFile {
 public:
  explicit tTemporaryFile(tPath path) : path_(std::move(path)) {}
  tTemporaryFile(const tTemporaryFile&) = delete;
  tTemporaryFile& operator=(const tTemporaryFile&) = delete;
  ~tTemporaryFile() {
    std::error_code ignored;  // after a success there is no such file
    if (isWritten_) {
      std::filesystem::remove(path_, ignored);
    }
  }

  [[nodiscard]] std::error_code write(std::string_view content) {
    isWritten_ = !isDirectory(path_);
    return isWritten_ ? writeAll(path_, content) : std::make_error_code(std::errc::is_a_directory);
  }
  [[nodiscard]] std::error_code renameTo(const tPath& path) const {
    std::error_code error;
    std::filesystem::rename(path_, path, error);
    return error;
  }

 private:
  tPath path_;
  bool isWritten_ = false;
};

std::string reasonOfWriting(const std::error_code& reason) {
  return reason == std::errc::no_such_file_or_directory ? "no such directory" : reasonOf(reason);
}

}  // namespace

std::string readFile(const std::string& path) {
  constexpr const char* kVerb = "read";
  const tPath native = nativePath(kVerb, path);
  const tFile file = open(native, false);
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

void writeFile(const std::string& path, std::string_view content) {
  constexpr const char* kVerb = "write";
  const tPath target = nativePath(kVerb, path);
  tPath unfinished = target;
  unfinished += ".unfinished";
  tTemporaryFile file(unfinished);
  if (const std::error_code reason = file.write(content)) {
    // The path that the user typed, unless the other one is the obstacle.
    fail(kVerb, reason == std::errc::is_a_directory ? pathText(unfinished) : path,
         reasonOfWriting(reason));
  }
  if (const std::error_code reason = file.renameTo(target)) {
    fail(kVerb, path, reasonOf(reasonAt(target, reason)));
  }
}

}  // namespace nCommandLine
