// The modifiers of a route request as arbitrary text.
#include <algorithm>
#include <map>
#include <string>

#include "tests/fuzz/routerequest.h"

namespace {

using nRouteFuzz::lastMember;

// A missing group is empty.
bool isGroup(const rapidjson::Value* group) {
  return group == nullptr || group->IsObject();
}

bool areModifiers(const std::optional<rapidjson::Document>& tree) {
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  nRouteFuzz::tDocuments documents;
  documents.modifiers = nRouteFuzz::textOf(data, size);
  nRouteFuzz::calculate(documents, areModifiers(nRouteFuzz::treeOf(documents.modifiers)));
  return 0;
}
