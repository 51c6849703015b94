#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "tests/contract/updateworld.h"
#include "tests/fakewindows/com.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/processes.h"

namespace nTests {
namespace {

std::optional<uint32_t> randomError;

}  // namespace

void resetUpdateWorld() {
  nFakeWindows::com()->reset();
  nFakeWindows::programs().reset();
  nFakeWindows::programs().install("C:\\Windows\\Sysnative\\pnputil.exe");
  randomError.reset();
}

void encryptDrive() {
  nFakeWindows::com()->useVolumes({{VT_I4, 1}});
}

void breakEncryptionTest() {
  nFakeWindows::faultPlan().failEveryCall(nFakeWindows::tCall::coInitializeEx, 0x8007000E);
}

std::vector<std::string> packageCommandLines() {
  std::vector<std::string> lines;
  for (const nFakeWindows::tStartedProgram& program : nFakeWindows::programs().started()) {
    std::string line = program.commandLine;
    std::replace(line.begin(), line.end(), '\\', '/');  // paths as the native system writes them
    lines.push_back(std::move(line));
  }
  return lines;
}

void loseTool(std::function<void()> hook) {
  nFakeWindows::faultPlan().beforeCall(nFakeWindows::tCall::getFileAttributes, 1, std::move(hook));
  nFakeWindows::faultPlan().failEveryCall(nFakeWindows::tCall::getFileAttributes,
                                          ERROR_FILE_NOT_FOUND);
}

void beforeToolStart(std::function<void()> hook) {
  nFakeWindows::faultPlan().beforeCall(nFakeWindows::tCall::createProcess, 1, std::move(hook));
}

void useTemporaryDirectory(const std::filesystem::path& path) {
  setenv("TMPDIR", path.c_str(), 1);
}

void moveAside(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::filesystem::rename(from, to);
}

void plantLink(const std::filesystem::path& link, const std::filesystem::path& target) {
  std::filesystem::create_symlink(target, link);
}

void removeLink(const std::filesystem::path& link) {
  std::filesystem::remove(link);
}

bool removesLinks() {
  return true;
}

bool canOpen(const std::filesystem::path& path, tOpening opening) {
  constexpr DWORD kAccess[] = {GENERIC_READ, GENERIC_WRITE, DELETE};
  constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const nFakeWindows::tOffTheRecord offTheRecord;
  const std::u16string name = path.u16string();
  const HANDLE file =
      CreateFileW(reinterpret_cast<LPCWSTR>(name.c_str()), kAccess[static_cast<size_t>(opening)],
                  opening == tOpening::reading ? DWORD{FILE_SHARE_READ} : kAll, nullptr,
                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return false;
  }
  CloseHandle(file);
  return true;
}

// The native generator calls getrandom only; on Windows it makes two calls.
std::vector<tRandomFault> randomFaults() {
  return {{"getrandom", ERROR_ACCESS_DENIED, ERROR_NOT_ENOUGH_MEMORY}};
}

void failRandom(const std::string&, uint32_t error) {
  randomError = error;
  nFakeWindows::faultPlan().decide([](nFakeWindows::tCall call, const std::string&) {
    return call == nFakeWindows::tCall::getRandom ? randomError : std::nullopt;
  });
}

std::string nameOfFullDevice() {
  return "//dev/full";
}

}  // namespace nTests
