#ifndef CODEGEN_APALCODEGEN_TINTERFACEPROXY_ROUTING_H
#define CODEGEN_APALCODEGEN_TINTERFACEPROXY_ROUTING_H

#include <cstdint>

#include "codegen/apalcodegen/marshalling.h"

namespace nQUENRA1400::nZOAPAL000 {

// The trigger-routing interface. The rules are those of iInterfaceProxy_hostControllerBase. A
// method that returns a value returns 0 when nothing was sent or the request itself failed.
class iInterfaceProxy_routing : public virtual iInterfaceProxy {
 public:
  // Reserves the slot of an operation that the library does not use.
  virtual void method0(uint32_t& result, nZOAPALS100::tStatus& status) noexcept = 0;

  // Records and options: protocol/routingrequests.h. `routeCount`: in the capacity of `routes` in
  // records, out the number of routes calculated.
  virtual uint32_t calculateRoute(uint64_t modifiers, uint64_t seeds, uint32_t seedCount,
                                  uint64_t destinations, uint32_t destinationCount,
                                  uint32_t options, uint64_t routes, uint32_t& routeCount,
                                  nZOAPALS100::tStatus& status) noexcept = 0;
  virtual void destroyRoute(uint32_t ticket, nZOAPALS100::tStatus& status) noexcept = 0;

  // `count`: in the capacity of `conflicts` in records, out the number of conflicts.
  virtual void reserveRoute(uint32_t ticket, uint64_t conflicts, uint32_t& count,
                            nZOAPALS100::tStatus& status) noexcept = 0;
  virtual void programRoute(uint32_t ticket, nZOAPALS100::tStatus& status) noexcept = 0;
  virtual void unreserveRoute(uint32_t ticket, nZOAPALS100::tStatus& status) noexcept = 0;
  virtual void unprogramRoute(uint32_t ticket, nZOAPALS100::tStatus& status) noexcept = 0;

  // `count`: in the capacity of `terminals` in ids, out the length of the path.
  virtual void getRouteTerminalPath(uint32_t ticket, uint64_t terminals, uint32_t& count,
                                    nZOAPALS100::tStatus& status) noexcept = 0;

  // `size` in bytes. A name that fills the buffer has no NUL.
  virtual void getTopographyName(uint64_t buffer, uint32_t size,
                                 nZOAPALS100::tStatus& status) noexcept = 0;

  // `floating`: 0 for the default state, 1 for the floating one.
  virtual void resetTerminal(uint32_t terminal, uint32_t floating,
                             nZOAPALS100::tStatus& status) noexcept = 0;
  virtual uint32_t calculateResetTerminal(uint64_t reserved, uint32_t terminal, int32_t floating,
                                          nZOAPALS100::tStatus& status) noexcept = 0;
};

class tInterfaceProxy_routing final : public iInterfaceProxy_routing,
                                      public tForwardingInterfaceProxy {
 public:
  using tForwardingInterfaceProxy::tForwardingInterfaceProxy;

  void method0(uint32_t& result, nZOAPALS100::tStatus& status) noexcept override;
  uint32_t calculateRoute(uint64_t modifiers, uint64_t seeds, uint32_t seedCount,
                          uint64_t destinations, uint32_t destinationCount, uint32_t options,
                          uint64_t routes, uint32_t& routeCount,
                          nZOAPALS100::tStatus& status) noexcept override;
  void destroyRoute(uint32_t ticket, nZOAPALS100::tStatus& status) noexcept override;
  void reserveRoute(uint32_t ticket, uint64_t conflicts, uint32_t& count,
                    nZOAPALS100::tStatus& status) noexcept override;
  void programRoute(uint32_t ticket, nZOAPALS100::tStatus& status) noexcept override;
  void unreserveRoute(uint32_t ticket, nZOAPALS100::tStatus& status) noexcept override;
  void unprogramRoute(uint32_t ticket, nZOAPALS100::tStatus& status) noexcept override;
  void getRouteTerminalPath(uint32_t ticket, uint64_t terminals, uint32_t& count,
                            nZOAPALS100::tStatus& status) noexcept override;
  void getTopographyName(uint64_t buffer, uint32_t size,
                         nZOAPALS100::tStatus& status) noexcept override;
  void resetTerminal(uint32_t terminal, uint32_t floating,
                     nZOAPALS100::tStatus& status) noexcept override;
  uint32_t calculateResetTerminal(uint64_t reserved, uint32_t terminal, int32_t floating,
                                  nZOAPALS100::tStatus& status) noexcept override;

 private:
  void callOnTicket(uint32_t code, uint32_t ticket, const nZOAPALS100::tSourceLocation& site,
                    nZOAPALS100::tStatus& status) noexcept;
  void callForListOfTicket(uint32_t code, uint32_t ticket, uint64_t buffer, uint32_t& count,
                           const nZOAPALS100::tSourceLocation& site,
                           nZOAPALS100::tStatus& status) noexcept;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
