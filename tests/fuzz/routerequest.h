#ifndef TESTS_FUZZ_ROUTEREQUEST_H
#define TESTS_FUZZ_ROUTEREQUEST_H

#include <rapidjson/document.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

// What the targets of the three documents of a route request share.
namespace nRouteFuzz {

// The documents of a request. Those that are not fuzzed are sound.
struct tDocuments {
  std::string seeds = R"([{"terminal":"TRIG_SMB","cost":1,"constraints":{}}])";
  std::string destinations = R"(["PXI_Trig0","PXI_Trig1"])";
  std::string modifiers = "{}";
};

// What an input is taken for: its text up to the first NUL.
[[nodiscard]] std::string textOf(const uint8_t* data, size_t size);

// Ends the program when a promise is broken.
void require(bool holds, const char* promise);

// Asks a session for routes, with the documents in memory of exactly their size. A request is
// either sent once and answered with JSON, or refused as an invalid parameter, with a description
// that is JSON, and not sent. `isSound` tells whether the document that is fuzzed is good as far as
// a plain reading of it can tell; one that is not is refused, and one that is may only be refused
// for its depth or for texts that are no Unicode.
void calculate(const tDocuments& documents, bool isSound);

// A document as a plain tree; none when it is not JSON. Numbers beyond a double are the largest one.
[[nodiscard]] std::optional<rapidjson::Document> treeOf(std::string document);

// The last of the members with a name; null without one.
[[nodiscard]] const rapidjson::Value* lastMember(const rapidjson::Value& object, const char* name);

}  // namespace nRouteFuzz

#endif
