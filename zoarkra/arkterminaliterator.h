#ifndef ZOARKRA_ARKTERMINALITERATOR_H
#define ZOARKRA_ARKTERMINALITERATOR_H

#include <cstdint>

#include "codegen/apalcodegen/tinterfaceproxy_routing.h"
#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/topography.h"

namespace zoroco {

// A walk over the terminals of a session. The order of the operations is part of the interface.
//
// Operations throw zoerr::Exception when they fail, and std::bad_alloc. The status receives warnings;
// its code is sent to the driver.
class TerminalIteratorInterface : public nQUENRA1400::nZOAPAL000::tQuarantinedStorage {
 public:
  TerminalIteratorInterface() = default;
  TerminalIteratorInterface(const TerminalIteratorInterface&) = delete;
  TerminalIteratorInterface& operator=(const TerminalIteratorInterface&) = delete;
  virtual ~TerminalIteratorInterface() = default;

  virtual void next(zoerr::Status& status) = 0;
  [[nodiscard]] virtual bool isEnd() const = 0;

  // An attribute of the current terminal. A text is a constant, or null when absent.
  [[nodiscard]] virtual const char* getStringAttribute(const char* name,
                                                       zoerr::Status& status) const = 0;
  [[nodiscard]] virtual bool getBoolAttribute(const char* name, zoerr::Status& status) const = 0;
  [[nodiscard]] virtual uint32_t getU32Attribute(const char* name, zoerr::Status& status) const = 0;

  // Resets the current terminal; the mode is "default" or "floating".
  virtual void resetTerminal(const char* mode, zoerr::Status& status) = 0;
};

}  // namespace zoroco

namespace zoark {

// Walks the terminals of a topography in its order. Past the last one, reading and resetting fail with
// kInvalidParameter. Only resetTerminal uses the session's interface, which has to exist then.
class ARKTerminalIterator final : public zoroco::TerminalIteratorInterface {
 public:
  ARKTerminalIterator(const tTopography& topography,
                      nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing& proxy) noexcept
      : topography_(topography), proxy_(proxy) {}

  void next(zoerr::Status& status) override;
  [[nodiscard]] bool isEnd() const override;
  [[nodiscard]] const char* getStringAttribute(const char* name,
                                               zoerr::Status& status) const override;
  [[nodiscard]] bool getBoolAttribute(const char* name, zoerr::Status& status) const override;
  [[nodiscard]] uint32_t getU32Attribute(const char* name, zoerr::Status& status) const override;
  void resetTerminal(const char* mode, zoerr::Status& status) override;

 private:
  [[nodiscard]] const tTerminal& current() const;

  uint64_t index_ = 0;
  const tTopography& topography_;
  nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing& proxy_;
};

}  // namespace zoark

#endif
