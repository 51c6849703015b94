// One document of a route request as arbitrary text. FUZZED_DOCUMENT is the document: seeds,
// destinations or modifiers.
#include <rapidjson/document.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quenra_status.h"
#include "tests/component/zoarkra/scriptedrouter.h"
#include "tests/fakewindows/debugger.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/arkroutingadaptorsession.h"

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

namespace {

using rapidjson::Document;
using rapidjson::SizeType;
using zoark::ARKRoutingAdaptorSession;

// The buffer of the answer, of exactly the requested size.
std::unique_ptr<char[]> answer;

char* supplyBuffer(char*, size_t required, const char*, size_t) {
  answer = std::make_unique<char[]>(required);
  return answer.get();
}

// A session on a router that answers every calculation with two routes.
struct tSession {
  tSession() {
    script.router.calls.clear();
    script.router.routes = {{1, 4, 2, 0, 0, {}}, {2, 5, 3, 1, 1, {}}};
  }

  nTests::tRoutingDeviceScript script;
  zoerr::tOwnedStatus status;
  ARKRoutingAdaptorSession session{std::make_unique<nTests::tScriptedRoutingDevice>(script),
                                   "device",
                                   {&supplyBuffer, nullptr, nullptr},
                                   status};
};

// Receives numbers as texts, since RapidJSON's own conversion is undefined for some of them. The
// names of the methods are RapidJSON's.
class tTreeBuilder {
 public:
  explicit tTreeBuilder(Document& to) : to_(to) {}

  bool Null() { return to_.Null(); }
  bool Bool(bool value) { return to_.Bool(value); }
  bool Int(int) { return false; }
  bool Uint(unsigned) { return false; }
  bool Int64(int64_t) { return false; }
  bool Uint64(uint64_t) { return false; }
  bool Double(double) { return false; }
  bool RawNumber(const char* text, SizeType, bool) {
    return to_.Double(std::strtod(text, nullptr));
  }
  bool String(const char* text, SizeType length, bool) { return to_.String(text, length, true); }
  bool StartObject() { return to_.StartObject(); }
  bool Key(const char* text, SizeType length, bool) { return to_.Key(text, length, true); }
  bool EndObject(SizeType members) { return to_.EndObject(members); }
  bool StartArray() { return to_.StartArray(); }
  bool EndArray(SizeType elements) { return to_.EndArray(elements); }

 private:
  Document& to_;
};

// Replaces a number that RapidJSON rejects for its many digits or its large exponent by a short one
// with the same value as a double, clamped to the range of a double.
void shortenNumber(std::string& document, size_t offset) {
  const char* const begin = document.c_str() + offset;
  char* end = nullptr;
  const double value = std::clamp(std::strtod(begin, &end), std::numeric_limits<double>::lowest(),
                                  std::numeric_limits<double>::max());
  std::array<char, 32> text;
  const int length = std::snprintf(text.data(), text.size(), "%.17g", value);
  document.replace(offset, static_cast<size_t>(end - begin), text.data(),
                   static_cast<size_t>(length));
}

// A copy of exactly the text and its NUL, so that the address sanitizer reports a read past it.
std::unique_ptr<char[]> exactCopy(const std::string& text) {
  auto copy = std::make_unique<char[]>(text.size() + 1);
  std::memcpy(copy.get(), text.c_str(), text.size() + 1);
  return copy;
}

void checkRejection(const zoerr::Status& status, bool isSound) {
  require(status.code == QUENRA_STATUS_INVALID_PARAMETER,
          "a rejected request fails with INVALID_PARAMETER");
  const auto description = treeOf(status.description);
  require(description && description->IsObject(), "the description is a JSON object");
  const std::string_view message = (*description)["zoroco_debug"].GetString();
  require(!isSound || message == "malformed JSON" || message == "JSON nested too deeply",
          "a sound document is rejected for its depth or its texts only");
}

}  // namespace

std::string textOf(const uint8_t* data, size_t size) {
  const std::string text(data, data + size);
  return text.substr(0, text.find('\0'));
}

void require(bool condition, const char* invariant) {
  if (!condition) {
    std::fprintf(stderr, "violated: %s\n", invariant);
    std::abort();
  }
}

std::optional<Document> treeOf(std::string document) {
  constexpr unsigned kFlags =
      rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag;
  for (;;) {
    rapidjson::Reader reader;
    Document tree;
    const auto build = [&](Document& to) {
      rapidjson::StringStream stream(document.c_str());
      tTreeBuilder builder(to);
      return !reader.Parse<kFlags>(stream, builder).IsError();
    };
    tree.Populate(build);
    if (!reader.HasParseError()) {
      return tree;
    }
    if (reader.GetParseErrorCode() != rapidjson::kParseErrorNumberTooBig) {
      return std::nullopt;
    }
    shortenNumber(document, reader.GetErrorOffset());
  }
}

const rapidjson::Value* lastMember(const rapidjson::Value& object, const char* name) {
  const rapidjson::Value* last = nullptr;
  for (const auto& member : object.GetObject()) {
    const std::string_view itsName(member.name.GetString(), member.name.GetStringLength());
    if (itsName == name) {
      last = &member.value;
    }
  }
  return last;
}

void calculate(const tDocuments& documents, bool isSound) {
  static tSession fuzzed;
  const auto seeds = exactCopy(documents.seeds);
  const auto destinations = exactCopy(documents.destinations);
  const auto modifiers = exactCopy(documents.modifiers);
  char* output = nullptr;
  try {
    fuzzed.session.calculateRoute({seeds.get(), destinations.get(), modifiers.get()}, &output,
                                  fuzzed.status);
    require(isSound, "an unsound document is rejected");
    require(fuzzed.script.router.calls.size() == 1, "a request is sent once");
    const auto routes = treeOf(output);
    require(routes && routes->IsArray(), "the answer is a JSON array");
  } catch (const zoerr::ExceptionBase& exception) {
    require(fuzzed.script.router.calls.empty(), "a rejected request is not sent");
    require(output == nullptr, "a rejected request has no answer");
    checkRejection(exception.status(), isSound);
  }
  // Releases all memory: libFuzzer would otherwise run a leak check after every input.
  fuzzed.script.router.calls = {};
  answer.reset();
  static_cast<void>(nFakeWindows::takeDebuggerOutput());
}

}  // namespace nRouteFuzz

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
