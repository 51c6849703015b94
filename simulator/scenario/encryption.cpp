#include "simulator/scenario/encryption.h"

#include "simulator/scenario/tvolatilekey.h"

namespace nSimulator {
namespace {

constexpr const char* kKey = "Encryption";
constexpr const char* kProtection = "Protection";
constexpr const char* kFailingStep = "FailingStep";

}  // namespace

tEncryption encryption() {
  const tVolatileKey key(kKey);
  tEncryption found;
  found.protection = key.text(kProtection).value_or(found.protection);
  found.failingStep = key.text(kFailingStep).value_or(found.failingStep);
  return found;
}

void setEncryption(const tEncryption& encryption) {
  tVolatileKey key(kKey);
  key.setText(kProtection, encryption.protection);
  key.setText(kFailingStep, encryption.failingStep);
}

}  // namespace nSimulator
