#ifndef ZOARKRA_ARKTERMINALITERATOR_H
#define ZOARKRA_ARKTERMINALITERATOR_H

#include "codegen/apalcodegen/iinterfaceproxy_routing.h"
#include "zoarkra/routingadaptorsessioninterface.h"
#include "zoarkra/topography.h"

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
