#ifndef ZOARKRA_SEEDSDOCUMENT_H
#define ZOARKRA_SEEDSDOCUMENT_H

#include <iterator>
#include <memory_resource>
#include <optional>
#include <vector>

#include "protocol/routingrequests.h"
#include "zoarkra/requestdocument.h"
#include "zoarkra/topography.h"

namespace zoark {

// The seeds of a request: an array of objects. A seed is judged at its end, member by member in a fixed
// order, so that the order in the document does not matter; of several members with one name the last
// counts.
class tSeedsDocument final : public tRequestDocument {
 public:
  tSeedsDocument(const tTopography& topography, std::pmr::vector<tRouteSeed>& seeds) noexcept
      : topography_(topography), seeds_(seeds) {}

  bool value(const tJsonValue& value, size_t depth) override;
  bool key(std::string_view key, size_t depth) override;
  bool end(size_t depth) override;

 private:
  enum class tMember : uint8_t {
    terminal,
    srcDeviceToken,
    cost,
    constraints,
    unknown
  };

  // The value of a member, as far as it matters.
  struct tSeen {
    std::optional<tJsonType> type;
    double number = 0;

    [[nodiscard]] bool is(tJsonType expected) const noexcept { return type == expected; }
  };
  // A seed as the document has it.
  struct tSeed {
    tSeen terminal;
    tSeen token;
    tSeen cost;
    tSeen constraints;
    std::optional<tJsonValue> handled[std::size(kHandledConstraints)];
    uint32_t terminalId = ROUTE_NO_TERMINAL;
  };

  void readMember(const tJsonValue& value);
  void readConstraint(const tJsonValue& value);
  [[nodiscard]] bool judge();
  [[nodiscard]] bool judgeCost();
  [[nodiscard]] bool judgeConstraints(uint32_t& constraints);

  const tTopography& topography_;
  std::pmr::vector<tRouteSeed>& seeds_;
  tSeed seed_;
  tMember member_ = tMember::unknown;        // the current member of the seed
  const tConstraint* constraint_ = nullptr;  // the current constraint; null for one not handled
};

}  // namespace zoark

#endif
