#ifndef ZOARKRA_MODIFIERSDOCUMENT_H
#define ZOARKRA_MODIFIERSDOCUMENT_H

#include "protocol/routingrecords.h"
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
    bool isObject = true;  // one that is missing is empty
    bool hasUnrecognisedType = false;
    uint32_t constraints = 0;
    uint32_t options = 0;
  };
  // The bit that a modifier's value sets; one that is not known sets none.
  struct tTarget {
    uint32_t* word = nullptr;
    uint32_t bit = 0;
  };

  [[nodiscard]] static tTarget targetOf(std::string_view name, tGroup& group) noexcept;
  [[nodiscard]] bool judge();

  tGroup required_;
  tGroup optional_;
  tGroup* group_ = nullptr;  // whose value comes, or is read; null for another member
  tTarget target_;
};

}  // namespace zoark

#endif
