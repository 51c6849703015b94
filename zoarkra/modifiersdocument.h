#ifndef ZOARKRA_MODIFIERSDOCUMENT_H
#define ZOARKRA_MODIFIERSDOCUMENT_H

#include <memory_resource>
#include <set>
#include <string>

#include "protocol/routingrequests.h"
#include "zoarkra/memory.h"
#include "zoarkra/requestdocument.h"

namespace zoark {

// The modifiers of a request: an object of "required" and "optional", objects of modifiers that are
// true or false. Judged at its end; of several members with one name the last counts.
class tModifiersDocument final : public tRequestDocument {
 public:
  bool value(const tJsonValue& value, size_t depth) override;
  bool key(std::string_view key, size_t depth) override;
  bool end(size_t depth) override;

  [[nodiscard]] tRouteModifiers modifiers() const noexcept {
    return {required_.constraints, optional_.constraints};
  }
  [[nodiscard]] uint32_t options() const noexcept { return required_.options | optional_.options; }

 private:
  struct tGroup {
    bool isObject = true;  // a missing group is empty
    uint32_t constraints = 0;
    uint32_t options = 0;
  };

  void readGroup(const tJsonValue& value);
  void readModifier(const tJsonValue& value);
  void recordType(bool isBoolean);
  [[nodiscard]] bool judge();

  tGroup required_;
  tGroup optional_;
  // The required modifiers whose latest value is neither true nor false; a later member of the name
  // can still be. Empty for a sound request, and never larger than the names of the document.
  std::pmr::set<std::pmr::string, std::less<>> unrecognised_{heapResource()};
  tGroup* group_ = nullptr;    // the group of the current member; null for any other member
  std::string_view modifier_;  // the name of the current modifier
};

}  // namespace zoark

#endif
