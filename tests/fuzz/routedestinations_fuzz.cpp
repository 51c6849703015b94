// The destinations of a route request as arbitrary text.
#include "tests/fuzz/routerequest.h"

namespace {

bool areDestinations(const std::optional<rapidjson::Document>& tree) {
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  nRouteFuzz::tDocuments documents;
  documents.destinations = nRouteFuzz::textOf(data, size);
  nRouteFuzz::calculate(documents, areDestinations(nRouteFuzz::treeOf(documents.destinations)));
  return 0;
}
