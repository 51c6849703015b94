#ifndef SOURCE_USER_ATTRIBUTES_ATTRIBUTEID_H
#define SOURCE_USER_ATTRIBUTES_ATTRIBUTEID_H

#include <cstdint>

#include "quenra_attributes.h"

namespace nQUENRA1400 {

// The parts of an attribute id.
class tAttributeId {
 public:
  explicit constexpr tAttributeId(uint32_t id) noexcept : id_(id) {}

  [[nodiscard]] constexpr uint32_t value() const noexcept { return id_; }
  // The id without selector and instance, by which the tables are searched.
  [[nodiscard]] constexpr uint32_t base() const noexcept {
    return id_ & ~(QUENRA_ATTRIBUTE_SELECTOR_MASK | QUENRA_ATTRIBUTE_INSTANCE_MASK);
  }
  [[nodiscard]] constexpr uint32_t withoutSelector() const noexcept {
    return id_ & ~QUENRA_ATTRIBUTE_SELECTOR_MASK;
  }
  [[nodiscard]] constexpr tAttributeId onMarten() const noexcept {
    return tAttributeId(withoutSelector() | QUENRA_SELECTOR_MARTEN);
  }
  [[nodiscard]] constexpr bool isPrivate() const noexcept {
    return (id_ & QUENRA_ATTRIBUTE_PRIVATE_MASK) != 0;
  }
  [[nodiscard]] constexpr uint32_t number() const noexcept {
    return (id_ & QUENRA_ATTRIBUTE_NUMBER_MASK) >> 8;
  }
  [[nodiscard]] constexpr uint32_t instance() const noexcept {
    return id_ & QUENRA_ATTRIBUTE_INSTANCE_MASK;
  }
  [[nodiscard]] constexpr bool selectsController() const noexcept {
    return (id_ & QUENRA_ATTRIBUTE_SELECTOR_MASK) == QUENRA_SELECTOR_CONTROLLER;
  }
  [[nodiscard]] constexpr bool selectsMarten() const noexcept {
    return (id_ & QUENRA_ATTRIBUTE_SELECTOR_MASK) == QUENRA_SELECTOR_MARTEN;
  }

 private:
  uint32_t id_;
};

}  // namespace nQUENRA1400

#endif
