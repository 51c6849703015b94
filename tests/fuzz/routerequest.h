#ifndef TESTS_FUZZ_ROUTEREQUEST_H
#define TESTS_FUZZ_ROUTEREQUEST_H

#include <rapidjson/document.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

// Shared by the fuzz targets of the three documents of a route request.
namespace nRouteFuzz {

// The documents of a request. Those that are not fuzzed are valid.
struct tDocuments {
  std::string seeds = R"([{"terminal":"TRIG_SMB","cost":1,"constraints":{}}])";
  std::string destinations = R"(["PXI_Trig0","PXI_Trig1"])";
  std::string modifiers = "{}";
};

// The text of an input, up to the first NUL.
[[nodiscard]] std::string textOf(const uint8_t* data, size_t size);

// Ends the program unless the condition holds.
void require(bool condition, const char* invariant);

// Calculates routes with the documents in memory of exactly their size. The session must either
// send the request once and answer with JSON, or send nothing and fail with invalid parameter and a
// JSON description. `isSound` is true if a simple parser accepts the fuzzed document: the session
// must reject any other document, and may reject a sound one only for its depth or for text that is
// not valid Unicode.
void calculate(const tDocuments& documents, bool isSound);

// The tree of a document; none if it is not JSON. Numbers are clamped to the range of a double.
[[nodiscard]] std::optional<rapidjson::Document> treeOf(std::string document);

// The last member with this name; null if no member has it.
[[nodiscard]] const rapidjson::Value* lastMember(const rapidjson::Value& object, const char* name);

}  // namespace nRouteFuzz

#endif
