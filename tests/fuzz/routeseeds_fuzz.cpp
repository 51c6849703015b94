// The seeds of a route request as arbitrary text.
#include "tests/fuzz/routerequest.h"

namespace {

using nRouteFuzz::lastMember;

bool isCost(const rapidjson::Value* cost) {
  return cost != nullptr && cost->IsNumber() && cost->GetDouble() > -1 &&
         cost->GetDouble() < 4294967296.0;
}

bool isSeed(const rapidjson::Value& seed) {
  if (!seed.IsObject()) {
    return false;
  }
  const auto* const terminal = lastMember(seed, "terminal");
  const auto* const token = lastMember(seed, "srcDeviceToken");
  const auto* const constraints = lastMember(seed, "constraints");
  if (terminal == nullptr || !terminal->IsString() || (token != nullptr && !token->IsString()) ||
      !isCost(lastMember(seed, "cost")) || constraints == nullptr || !constraints->IsObject()) {
    return false;
  }
  const auto* const inversion = lastMember(*constraints, "inversionNeeded");
  return inversion == nullptr || inversion->IsBool();
}

bool areSeeds(const std::optional<rapidjson::Document>& tree) {
  if (!tree || !tree->IsArray()) {
    return false;
  }
  for (const auto& seed : tree->GetArray()) {
    if (!isSeed(seed)) {
      return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  nRouteFuzz::tDocuments documents;
  documents.seeds = nRouteFuzz::textOf(data, size);
  nRouteFuzz::calculate(documents, areSeeds(nRouteFuzz::treeOf(documents.seeds)));
  return 0;
}
