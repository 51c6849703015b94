#include "tools/quenra/firmware/files.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "tools/quenra/output/utf8text.h"
#include "tools/quenra/tcommanderror.h"

namespace nCommandLine {
namespace {

[[noreturn]] void fail(const std::string& path, const char* what) {
  throw tCommandError(tExitCode::failure, "'" + path + "' cannot be " + what, std::nullopt);
}

// No word of a command line that is not Unicode is the name of a file.
std::filesystem::path nativePath(const std::string& path, const char* what) {
  if (!isUtf8(path)) {
    fail(path, what);
  }
  return {std::u8string(path.begin(), path.end())};
}

class tTemporaryFile {
 public:
  explicit tTemporaryFile(std::filesystem::path path) : path_(std::move(path)) {}
  tTemporaryFile(const tTemporaryFile&) = delete;
  tTemporaryFile& operator=(const tTemporaryFile&) = delete;
  ~tTemporaryFile() {
    std::error_code ignored;  // it is gone already where all went well
    std::filesystem::remove(path_, ignored);
  }

  [[nodiscard]] bool write(std::string_view content) const {
    std::ofstream file(path_, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    return !file.fail();
  }

  [[nodiscard]] bool becomes(const std::filesystem::path& path) const {
    std::error_code error;
    std::filesystem::rename(path_, path, error);
    return !error;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace

std::string readFile(const std::string& path) {
  std::ifstream file(nativePath(path, "read"), std::ios::binary | std::ios::ate);
  const std::streamoff size = file.is_open() ? std::streamoff(file.tellg()) : -1;
  // A folder opens on some systems, and then has an absurd size or none.
  if (size < 0 || size == std::numeric_limits<std::streamoff>::max()) {
    fail(path, "read");
  }
  std::string content(static_cast<size_t>(size), '\0');
  file.seekg(0);
  file.read(content.data(), size);
  if (file.fail()) {
    fail(path, "read");
  }
  return content;
}

void writeFile(const std::string& path, std::string_view content) {
  const std::filesystem::path target = nativePath(path, "written");
  std::filesystem::path unfinished = target;
  unfinished += ".unfinished";
  const tTemporaryFile file(unfinished);
  if (!file.write(content) || !file.becomes(target)) {
    fail(path, "written");
  }
}

}  // namespace nCommandLine
