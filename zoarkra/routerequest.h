#ifndef ZOARKRA_ROUTEREQUEST_H
#define ZOARKRA_ROUTEREQUEST_H

#include <array>
#include <cstdint>
#include <iterator>
#include <memory_resource>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "protocol/routingrequests.h"
#include "zoarkra/jsonreader.h"
#include "zoarkra/memory.h"
#include "zoarkra/topography.h"

namespace zoark {

// A constraint that requests can contain.
struct tConstraint {
  const char* name;
  uint32_t id;  // from 1; the constraint's bit in the driver's records is 1 << (id - 1)
  tJsonType type;

  [[nodiscard]] constexpr uint32_t bit() const noexcept { return 1u << (id - 1); }
};

inline constexpr tConstraint kInversionNeeded{"inversionNeeded", 1, tJsonType::boolean};
static_assert(kInversionNeeded.bit() == ROUTE_CONSTRAINT_INVERSION_NEEDED);

inline constexpr tConstraint kHandledConstraints[] = {kInversionNeeded};

// A fault of a request. The messages are part of the interface.
struct tRequestFault {
  uint32_t line;
  const char* message;
};

inline constexpr tRequestFault kMalformed{71, "malformed JSON"};
inline constexpr tRequestFault kTooDeep{72, "JSON nested too deeply"};
inline constexpr tRequestFault kDocumentMissing{73, "document missing"};
inline constexpr tRequestFault kTooLarge{74, "document too large"};

inline constexpr tRequestFault kSeedsNotArray{101, "seeds must be an array"};
inline constexpr tRequestFault kSeedNotObject{102, "seed must be an object"};
inline constexpr tRequestFault kTerminalMissing{103, "terminal field missing"};
inline constexpr tRequestFault kTerminalNotString{104, "terminal name must be a string"};
inline constexpr tRequestFault kTokenNotString{105, "srcDeviceToken name must be a string"};
inline constexpr tRequestFault kCostMissingOrInvalid{106, "cost field missing or invalid"};
inline constexpr tRequestFault kCostNotNumber{107, "cost must be a number"};
inline constexpr tRequestFault kConstraintsMissing{108, "constraints field missing"};
inline constexpr tRequestFault kConstraintType{109, "Unexpected constraint type"};

inline constexpr tRequestFault kDestinationsNotArray{141, "destinations must be an array"};
inline constexpr tRequestFault kDestinationNotString{142, "Terminals must be strings"};

inline constexpr tRequestFault kModifiersNotObject{171, "modifiers type must be object"};
inline constexpr tRequestFault kRequiredType{172, "Required route modifier has unrecognized type"};

// A constraint whose value has an unexpected type.
struct tConstraintMismatch {
  const char* constraint;
  tJsonType expected;
  tJsonType actual;
};

// A fault, and its particulars.
struct tFoundFault {
  const tRequestFault* fault = nullptr;
  std::optional<tConstraintMismatch> mismatch;
  std::optional<uint64_t> offset;  // of the byte that breaks the grammar of JSON
};

// The handler of one document of a request. It ends the reading at the first fault: a syntax error
// later in the document does not hide the fault. A tree of the document would lose that order, and take
// up to 16 times the memory of its text in the same time.
class tRequestDocument : public iJsonHandler {
 public:
  [[nodiscard]] const tFoundFault& found() const noexcept { return found_; }

 protected:
  // Records a fault. Returns false, which ends the reading.
  bool fail(const tRequestFault& fault) noexcept {
    found_.fault = &fault;
    return false;
  }
  bool fail(const tRequestFault& fault, const tConstraintMismatch& mismatch) noexcept {
    found_.mismatch = mismatch;
    return fail(fault);
  }

 private:
  tFoundFault found_;
};

// The seeds of a request: an array of objects. A seed is checked at its end, member by member in a fixed
// order, so that the order in the document does not matter; of several members with one name the last
// counts.
class tSeedsDocument final : public tRequestDocument {
 public:
  tSeedsDocument(const tTopography& topography, std::pmr::vector<tRouteSeed>& seeds) noexcept
      : topography_(topography), seeds_(seeds) {}

  bool value(const tJsonValue& value, size_t depth) override;
  bool key(std::string_view key, size_t depth) override;
  bool end(size_t depth) override;

  static constexpr size_t kMemberCount = 4;

 private:
  // The latest value of a member, without its text; empty if the seed has no such member.
  using tMemberValue = std::optional<tJsonValue>;

  // A seed as the document has it, in the order of the tables of members and constraints.
  struct tSeed {
    std::array<tMemberValue, kMemberCount> members;
    std::array<tMemberValue, std::size(kHandledConstraints)> constraints;
    uint32_t terminal = ROUTE_NO_TERMINAL;
  };

  void readMember(const tJsonValue& value);
  [[nodiscard]] bool checkSeed();
  [[nodiscard]] bool checkMember(size_t index);
  [[nodiscard]] bool readConstraints(uint32_t& constraints);

  const tTopography& topography_;
  std::pmr::vector<tRouteSeed>& seeds_;
  tSeed seed_;
  // The destinations of the current member's and the current constraint's value; null for a name that
  // is in no table.
  tMemberValue* member_ = nullptr;
  tMemberValue* constraint_ = nullptr;
};

// The destinations of a request: an array of terminal names.
class tDestinationsDocument final : public tRequestDocument {
 public:
  tDestinationsDocument(const tTopography& topography,
                        std::pmr::vector<uint32_t>& destinations) noexcept
      : topography_(topography), destinations_(destinations) {}

  bool value(const tJsonValue& value, size_t depth) override;
  // value() rejects every object before its first key.
  bool key(std::string_view, size_t) override { return true; }  // GCOVR_EXCL_LINE
  bool end(size_t) override { return true; }

 private:
  const tTopography& topography_;
  std::pmr::vector<uint32_t>& destinations_;
};

// The modifiers of a request: an object of "required" and "optional", objects of modifiers that are
// true or false. Checked at its end; of several members with one name the last counts.
class tModifiersDocument final : public tRequestDocument {
 public:
  bool value(const tJsonValue& value, size_t depth) override;
  bool key(std::string_view key, size_t depth) override;
  bool end(size_t depth) override;

  [[nodiscard]] tRouteModifiers modifiers() const noexcept {
    return {required_.constraints, optional_.constraints};
  }
  [[nodiscard]] uint32_t options() const noexcept { return required_.options | optional_.options; }

  struct tGroup {
    bool isObject = true;  // a missing group is empty
    uint32_t constraints = 0;
    uint32_t options = 0;
  };

 private:
  void readGroup(const tJsonValue& value);
  void readModifier(const tJsonValue& value);
  void recordType(bool isBoolean);
  [[nodiscard]] bool check();

  tGroup required_;
  tGroup optional_;
  // The required modifiers whose latest value is neither true nor false; a later member of the name
  // can still be. Empty for a valid request, and never larger than the names of the document.
  std::pmr::set<std::pmr::string, std::less<>> unrecognised_{heapResource()};
  tGroup* group_ = nullptr;    // the group of the current member; null for any other member
  std::string_view modifier_;  // the name of the current modifier
};

// The three documents of a request.
struct tRequestTexts {
  const char* seeds;
  const char* destinations;
  const char* modifiers;
};

// A request as the records of the driver.
struct tRouteRequest {
  explicit tRouteRequest(std::pmr::memory_resource* memory) : seeds(memory), destinations(memory) {}

  std::pmr::vector<tRouteSeed> seeds;
  std::pmr::vector<uint32_t> destinations;  // terminal ids
  tRouteModifiers modifiers{};
  uint32_t options = 0;
};

// Reads a request; an unknown terminal becomes ROUTE_NO_TERMINAL. Traces the first fault and throws it
// as a zoerr::Exception with kInvalidParameter, whose description holds the fault under "zoroco_debug"
// and its document under "json". Allocates from the memory of `request`; throws std::bad_alloc.
void readRouteRequest(const tRequestTexts& texts, const tTopography& topography,
                      tRouteRequest& request);

}  // namespace zoark

#endif
