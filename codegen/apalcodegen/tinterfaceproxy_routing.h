#ifndef CODEGEN_APALCODEGEN_TINTERFACEPROXY_ROUTING_H
#define CODEGEN_APALCODEGEN_TINTERFACEPROXY_ROUTING_H

#include "codegen/apalcodegen/iinterfaceproxy_routing.h"
#include "codegen/apalcodegen/tforwardinginterfaceproxy.h"

namespace nQUENRA1400::nZOAPAL000 {

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
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
