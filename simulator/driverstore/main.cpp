// Replaces the operating system's driver-store tool: records its command line and the package
// passed to it, and follows the machine's scenario.
#include <windows.h>

#include <array>
#include <exception>
#include <fstream>
#include <string>

#include "sha256/sha256.h"
#include "simulator/scenario/servicescenarios.h"
#include "simulator/scenario/wine.h"

namespace nSimulator {
namespace {

std::string hexadecimal(const std::array<uint8_t, SHA256_SIZE>& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
}

// The file between the two options. Blanks do not end it, so that an unquoted path stays complete.
std::string fileOf(const std::string& commandLine) {
  constexpr std::string_view kBefore = "/add-driver ";
  constexpr std::string_view kAfter = " /install";
  const size_t before = commandLine.find(kBefore);
  const size_t after = commandLine.rfind(kAfter);
  if (before == std::string::npos || after == std::string::npos ||
      after < before + kBefore.size()) {
    return "";
  }
  const size_t first = before + kBefore.size();
  return commandLine.substr(first, after - first);
}

void readFile(tDriverStoreRun& run) {
  std::ifstream file(run.file, std::ios::binary);
  if (!file) {
    return;
  }
  run.isReadable = true;
  tSha256 hash;
  sha256Start(&hash);
  std::array<char, 4096> piece{};
  while (file.read(piece.data(), piece.size()), file.gcount() > 0) {
    run.size += static_cast<uint64_t>(file.gcount());
    sha256Add(&hash, piece.data(), static_cast<uint32_t>(file.gcount()));
  }
  std::array<uint8_t, SHA256_SIZE> result{};
  sha256Finish(&hash, result.data());
  run.sha256 = hexadecimal(result);
}

int run() {
  tDriverStoreRun run;
  run.commandLine = GetCommandLineA();
  run.file = fileOf(run.commandLine);
  readFile(run);
  recordDriverStoreRun(run);
  const tDriverStoreBehaviour behaviour = driverStoreBehaviour();
  Sleep(behaviour.seconds * 1000);
  if (behaviour.exitCode != 0) {
    return static_cast<int>(behaviour.exitCode);
  }
  return run.isReadable ? 0 : ERROR_FILE_NOT_FOUND;
}

}  // namespace
}  // namespace nSimulator

int main() {
  try {
    return nSimulator::answerUnderWine(nSimulator::runsUnderWine(), int{ERROR_NOT_SUPPORTED},
                                       nSimulator::run);
  } catch (const std::exception&) {
    return ERROR_GEN_FAILURE;
  }
}
