#include "zoarkra/routeanswers.h"

#include <rapidjson/writer.h>

#include <cstring>

#include "zoarkra/failure.h"
#include "zoarkra/memory.h"
#include "zoarkra/routerequest.h"

namespace zoark {
namespace {

constexpr auto kOutputMissing = adaptorLocation(118, kInvalidParameterConstant);
constexpr auto kNoBuffer = adaptorLocation(127, kMemoryFullConstant);
constexpr auto kReallocationThrew = adaptorLocation(131);

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

void tClientOutput::requireOutput() const {
  if (output_ == nullptr || !isAligned(output_)) {
    raise(nZOAPALS100::kInvalidParameter, kOutputMissing);
  }
}

char* tClientOutput::requestBuffer(std::string_view text, size_t size) const {
  try {
    return reallocate_ == nullptr ? nullptr : reallocate_(*output_, size, text.data(), size);
  } catch (...) {
    raise(nZOAPALS100::kInternalError, kReallocationThrew);
  }
}

void tClientOutput::write(std::string_view text) const {
  requireOutput();
  const size_t size = text.size() + 1;
  char* const buffer = requestBuffer(text, size);
  if (buffer == nullptr) {
    raise(nZOAPALS100::kMemoryFull, kNoBuffer);
  }
  *output_ = buffer;
  std::memcpy(buffer, text.data(), size);
}

}  // namespace zoark
