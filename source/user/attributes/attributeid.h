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
    return id_ & ~(kSelectorMask | kInstanceMask);
  }
  [[nodiscard]] constexpr uint32_t withoutSelector() const noexcept { return id_ & ~kSelectorMask; }
  [[nodiscard]] constexpr tAttributeId onMarten() const noexcept {
    return tAttributeId(withoutSelector() | QUENRA_SELECTOR_MARTEN);
  }
  [[nodiscard]] constexpr bool isPrivate() const noexcept { return (id_ & kPrivateBit) != 0; }
  [[nodiscard]] constexpr uint32_t number() const noexcept { return id_ >> 8 & 0xFFF; }
  [[nodiscard]] constexpr uint32_t instance() const noexcept { return id_ & kInstanceMask; }
  [[nodiscard]] constexpr bool selectsController() const noexcept {
    return (id_ & kSelectorMask) == QUENRA_SELECTOR_CONTROLLER;
  }
  [[nodiscard]] constexpr bool selectsMarten() const noexcept {
    return (id_ & kSelectorMask) == QUENRA_SELECTOR_MARTEN;
  }

 private:
  static constexpr uint32_t kPrivateBit = 0x08000000;
  static constexpr uint32_t kSelectorMask = 0x00F00000;
  static constexpr uint32_t kInstanceMask = 0x000000FF;

  uint32_t id_;
};

}  // namespace nQUENRA1400

#endif
