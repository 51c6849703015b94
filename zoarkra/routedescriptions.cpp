#include "zoarkra/routedescriptions.h"

#include <rapidjson/writer.h>

#include "zoarkra/memory.h"
#include "zoarkra/requestdocuments.h"

namespace zoark {
namespace {

// The output of the writer. The names are RapidJSON's.
class tTextStream {
 public:
  using Ch = char;

  explicit tTextStream(std::pmr::string& text) noexcept : text_(text) {}

  // NOLINTBEGIN(readability-identifier-naming)
  void Put(char character) { text_.push_back(character); }
  static void Flush() noexcept {}
  // NOLINTEND(readability-identifier-naming)

 private:
  std::pmr::string& text_;
};

// The depth of the answers.
constexpr size_t kLevels = 8;
using tMemory = tJsonMemory<kLevels * 2 * sizeof(size_t)>;
using tWriter = rapidjson::Writer<tTextStream, rapidjson::UTF8<>, rapidjson::UTF8<>, tMemory>;

// An array with the elements that `writeElements` writes.
template <class WriteElements>
void describeArray(std::pmr::string& text, WriteElements writeElements) {
  tTextStream stream(text);
  tMemory memory;
  tWriter writer(stream, &memory, kLevels);
  writer.StartArray();
  writeElements(writer);
  writer.EndArray();
}

void writeRoute(tWriter& writer, const tRouteRecord& route, const tTopography& topography) {
  writer.StartObject();
  writer.Key("ticket");
  writer.Uint(route.ticket);
  writer.Key("destination");
  writer.String(terminalNameOf(topography, route.destination));
  writer.Key("cost");
  writer.Uint(route.cost);
  writer.Key("indexOfStartingSeed");
  writer.Uint(route.seed);
  writer.Key("constraints");
  writer.StartObject();
  if (route.inverts != 0) {
    writer.Key(kInversionNeeded.name);
    writer.Bool(true);
  }
  writer.EndObject();
  writer.EndObject();
}

void writeConflict(tWriter& writer, const tRouteConflict& conflict) {
  writer.StartObject();
  writer.Key("sessionId");
  writer.Uint64(conflict.session);
  writer.Key("ticket");
  writer.Uint(conflict.ticket);
  writer.EndObject();
}

}  // namespace

void describeRoutes(std::span<const tRouteRecord> routes, const tTopography& topography,
                    std::pmr::string& text) {
  describeArray(text, [&](tWriter& writer) {
    for (const tRouteRecord& route : routes) {
      writeRoute(writer, route, topography);
    }
  });
}

void describeConflicts(std::span<const tRouteConflict> conflicts, std::pmr::string& text) {
  describeArray(text, [&](tWriter& writer) {
    for (const tRouteConflict& conflict : conflicts) {
      writeConflict(writer, conflict);
    }
  });
}

void describePath(std::span<const uint32_t> terminals, const tTopography& topography,
                  std::pmr::string& text) {
  describeArray(text, [&](tWriter& writer) {
    for (const uint32_t terminal : terminals) {
      writer.String(terminalNameOf(topography, terminal));
    }
  });
}

void describeHandledConstraints(std::pmr::string& text) {
  describeArray(text, [](tWriter& writer) {
    for (const tConstraint& constraint : kHandledConstraints) {
      writer.String(constraint.name);
    }
  });
}

}  // namespace zoark
