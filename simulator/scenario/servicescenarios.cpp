#include "simulator/scenario/servicescenarios.h"

#include <array>
#include <cstdio>

#include "simulator/scenario/tvolatilekey.h"

namespace nSimulator {
namespace {

constexpr const char* kEncryption = "Encryption";
constexpr const char* kProtection = "Protection";
constexpr const char* kFailingStep = "FailingStep";

constexpr const char* kBehaviour = "DriverStore";
constexpr const char* kSeconds = "Seconds";
constexpr const char* kExitCode = "ExitCode";
constexpr const char* kRuns = "DriverStoreRuns";
constexpr const char* kCommandLine = "CommandLine";
constexpr const char* kFile = "File";
constexpr const char* kSize = "Size";
constexpr const char* kSha256 = "Sha256";

std::string runKey(const std::string& name) {
  return std::string(kRuns) + '\\' + name;
}

// Zero-padded, so that names sort numerically.
std::string nameOf(unsigned number) {
  std::array<char, 16> name{};
  std::snprintf(name.data(), name.size(), "%08u", number);
  return name.data();
}

// Tools that run concurrently create one key each.
tVolatileKey newRun() {
  for (unsigned number = 1;; ++number) {
    tVolatileKey key(runKey(nameOf(number)));
    if (key.isNew()) {
      return key;
    }
  }
}

}  // namespace

tEncryption encryption() {
  const tVolatileKey key(kEncryption);
  tEncryption found;
  found.protection = key.text(kProtection).value_or(found.protection);
  found.failingStep = key.text(kFailingStep).value_or(found.failingStep);
  return found;
}

void setEncryption(const tEncryption& encryption) {
  tVolatileKey key(kEncryption);
  key.setText(kProtection, encryption.protection);
  key.setText(kFailingStep, encryption.failingStep);
}

tDriverStoreBehaviour driverStoreBehaviour() {
  const tVolatileKey key(kBehaviour);
  return {static_cast<uint32_t>(key.number(kSeconds).value_or(0)),
          static_cast<uint32_t>(key.number(kExitCode).value_or(0))};
}

void setDriverStoreBehaviour(const tDriverStoreBehaviour& behaviour) {
  tVolatileKey key(kBehaviour);
  key.setNumber(kSeconds, behaviour.seconds);
  key.setNumber(kExitCode, behaviour.exitCode);
}

void recordDriverStoreRun(const tDriverStoreRun& run) {
  tVolatileKey key = newRun();
  key.setText(kCommandLine, run.commandLine);
  key.setText(kFile, run.file);
  if (run.isReadable) {
    key.setNumber(kSize, run.size);
    key.setText(kSha256, run.sha256);
  }
}

std::vector<tDriverStoreRun> driverStoreRuns() {
  std::vector<tDriverStoreRun> runs;
  for (const std::string& name : tVolatileKey(kRuns).children()) {
    const tVolatileKey key(runKey(name));
    tDriverStoreRun run;
    run.commandLine = key.text(kCommandLine).value_or("");
    run.file = key.text(kFile).value_or("");
    run.isReadable = key.number(kSize).has_value();
    run.size = key.number(kSize).value_or(0);
    run.sha256 = key.text(kSha256).value_or("");
    runs.push_back(run);
  }
  return runs;
}

void clearDriverStoreRuns() {
  tVolatileKey::remove(kRuns);
}

}  // namespace nSimulator
