// A double of the routing interface: it notes what it is asked and answers as it is told.
#ifndef TESTS_COMPONENT_ZOARKRA_TSCRIPTEDROUTER_H
#define TESTS_COMPONENT_ZOARKRA_TSCRIPTEDROUTER_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "codegen/apalcodegen/iinterfaceproxy_routing.h"
#include "protocol/routingrecords.h"
#include "tests/component/twithoutchannel.h"

namespace nTests {

class tScriptedRouter final
    : public tWithoutChannel<nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing> {
 public:
  using tStatus = nZOAPALS100::tStatus;

  // What was asked, as text: "programRoute(7)", and "programRoute(7) st=5" under a warning. Nothing
  // is asked with an error.
  std::vector<std::string> calls;

  // Notes nothing, and so allocates nothing.
  bool isQuiet = false;

  // With which codes the next calls of any method end; then with success. They are located at
  // component "driver", file "router", line 9.
  std::vector<int32_t> codes;

  // The answer to a calculation: the routes there are, also those that find no room, and a value.
  std::vector<tRouteRecord> routes;
  uint32_t value = 0;
  // How many routes it says there are, where that is a lie.
  uint32_t routeCountTold = 0;

  // The conflicts that a reservation fills in, and how many it says there are, where not as many.
  std::vector<tRouteConflict> conflicts;
  uint32_t conflictCountTold = 0;

  // The path of every route, and how long it says it is, where that is a lie.
  std::vector<uint32_t> path;
  uint32_t pathLengthTold = 0;

  std::string topographyName = "pxiContTriggerRouter";

  void method0(uint32_t& result, tStatus& status) noexcept override;
  uint32_t calculateRoute(uint64_t modifiers, uint64_t seeds, uint32_t seedCount,
                          uint64_t destinations, uint32_t destinationCount, uint32_t options,
                          uint64_t routeBuffer, uint32_t& routeCount,
                          tStatus& status) noexcept override;
  void destroyRoute(uint32_t ticket, tStatus& status) noexcept override;
  void reserveRoute(uint32_t ticket, uint64_t conflictBuffer, uint32_t& count,
                    tStatus& status) noexcept override;
  void programRoute(uint32_t ticket, tStatus& status) noexcept override;
  void unreserveRoute(uint32_t ticket, tStatus& status) noexcept override;
  void unprogramRoute(uint32_t ticket, tStatus& status) noexcept override;
  void getRouteTerminalPath(uint32_t ticket, uint64_t terminals, uint32_t& count,
                            tStatus& status) noexcept override;
  void getTopographyName(uint64_t buffer, uint32_t size, tStatus& status) noexcept override;
  void resetTerminal(uint32_t terminal, uint32_t floating, tStatus& status) noexcept override;
  uint32_t calculateResetTerminal(uint64_t reserved, uint32_t terminal, int32_t floating,
                                  tStatus& status) noexcept override;

 private:
  // Notes a call, of which `describe` gives the text. False when it is not made, because the status
  // holds an error.
  template <class Describe>
  bool enter(Describe describe, const tStatus& status);
  // Gives the code with which it ends.
  void leave(tStatus& status);
};

}  // namespace nTests

#endif
