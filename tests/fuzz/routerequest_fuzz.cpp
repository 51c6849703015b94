// One document of a route request as arbitrary text. FUZZED_DOCUMENT is the document: seeds,
// destinations or modifiers.
#include <algorithm>
#include <map>
#include <string>

#include "tests/fuzz/routerequest.h"

namespace {

using nRouteFuzz::lastMember;
using tTree = std::optional<rapidjson::Document>;

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

// A missing group is empty.
bool isGroup(const rapidjson::Value* group) {
  return group == nullptr || group->IsObject();
}

// True if the document is sound: for each document a simple check of its tree.
struct tSoundness {
  static bool seeds(const tTree& tree) {
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

  static bool destinations(const tTree& tree) {
    if (!tree || !tree->IsArray()) {
      return false;
    }
    for (const auto& name : tree->GetArray()) {
      if (!name.IsString()) {
        return false;
      }
    }
    return true;
  }

  static bool modifiers(const tTree& tree) {
    if (!tree || !tree->IsObject()) {
      return false;
    }
    const auto* const required = lastMember(*tree, "required");
    if (!isGroup(required) || !isGroup(lastMember(*tree, "optional"))) {
      return false;
    }
    if (required != nullptr) {
      std::map<std::string, bool> isBoolean;  // by name; the last member of a name counts
      for (const auto& modifier : required->GetObject()) {
        isBoolean[{modifier.name.GetString(), modifier.name.GetStringLength()}] =
            modifier.value.IsBool();
      }
      return std::all_of(isBoolean.begin(), isBoolean.end(),
                         [](const auto& modifier) { return modifier.second; });
    }
    return true;
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  nRouteFuzz::tDocuments documents;
  documents.FUZZED_DOCUMENT = nRouteFuzz::textOf(data, size);
  nRouteFuzz::calculate(documents,
                        tSoundness::FUZZED_DOCUMENT(nRouteFuzz::treeOf(documents.FUZZED_DOCUMENT)));
  return 0;
}
