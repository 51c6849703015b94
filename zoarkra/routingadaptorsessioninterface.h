#ifndef ZOARKRA_ROUTINGADAPTORSESSIONINTERFACE_H
#define ZOARKRA_ROUTINGADAPTORSESSIONINTERFACE_H

#include <cstdint>
#include <memory>

#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/routerequest.h"
#include "zoarkra/terminaliteratorinterface.h"

namespace zoroco {

// A session with a routing device. The order of the operations is part of the interface.
//
// Operations throw zoerr::Exception when they fail, and std::bad_alloc; the status takes warnings,
// and its code goes to the driver. `output` is the client's place for an answer.
class RoutingAdaptorSessionInterface {
 public:
  RoutingAdaptorSessionInterface() = default;
  RoutingAdaptorSessionInterface(const RoutingAdaptorSessionInterface&) = delete;
  RoutingAdaptorSessionInterface& operator=(const RoutingAdaptorSessionInterface&) = delete;
  virtual ~RoutingAdaptorSessionInterface() = default;

  virtual void getHandledConstraints(char** output, zoerr::Status& status) = 0;

  // Returns what the driver's calculation gives.
  virtual uint32_t calculateRoute(const zoark::tRequestTexts& texts, char** output,
                                  zoerr::Status& status) = 0;
  // Answers only when routes are in the way.
  virtual void reserveRoute(uint32_t ticket, char** output, zoerr::Status& status) = 0;
  virtual void programRoute(uint32_t ticket, zoerr::Status& status) = 0;

  // The steps of taking a route down. The words are the client's and are not looked at.
  virtual void unprogramRoute(uint32_t ticket, uint64_t first, uint64_t second) = 0;
  virtual void unreserveRoute(uint32_t ticket, uint64_t first, uint64_t second) = 0;
  virtual void beginExceptionalRouteDestruction(uint32_t ticket, uint64_t first,
                                                uint64_t second) = 0;
  virtual void destroyRoute(uint32_t ticket, uint64_t first, uint64_t second) = 0;

  virtual void getRouteTerminalPath(uint32_t ticket, char** output, zoerr::Status& status) = 0;

  [[nodiscard]] virtual std::unique_ptr<TerminalIteratorInterface> getAllTerminals(
      zoerr::Status& status, uint64_t reserved) = 0;
  // The id of the terminal that the iterator's would be driven from in a state of rest.
  virtual uint32_t calculateResetTerminal(const TerminalIteratorInterface& iterator,
                                          const char* mode, zoerr::Status& status) = 0;
};

}  // namespace zoroco

#endif
