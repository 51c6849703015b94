// The modifiers of a route request as arbitrary text.
#include "tests/fuzz/routerequest.h"

namespace {

using nRouteFuzz::lastMember;

// One that is missing is an empty object.
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
    for (const auto& modifier : required->GetObject()) {
      if (!modifier.value.IsBool()) {
        return false;
      }
    }
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
