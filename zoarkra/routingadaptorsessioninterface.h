#ifndef ZOARKRA_ROUTINGADAPTORSESSIONINTERFACE_H
#define ZOARKRA_ROUTINGADAPTORSESSIONINTERFACE_H

#include <cstdint>
#include <memory>

#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/routerequest.h"

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

// A session with a routing device. The order of the operations is part of the interface.
//
// Operations throw zoerr::Exception when they fail, and std::bad_alloc. The status receives warnings;
// its code is sent to the driver. `output`: the client's output argument.
class RoutingAdaptorSessionInterface : public nQUENRA1400::nZOAPAL000::tQuarantinedStorage {
 public:
  RoutingAdaptorSessionInterface() = default;
  RoutingAdaptorSessionInterface(const RoutingAdaptorSessionInterface&) = delete;
  RoutingAdaptorSessionInterface& operator=(const RoutingAdaptorSessionInterface&) = delete;
  virtual ~RoutingAdaptorSessionInterface() = default;

  virtual void getHandledConstraints(char** output, zoerr::Status& status) = 0;

  // Returns the value of the driver's calculation.
  virtual uint32_t calculateRoute(const zoark::tRequestTexts& texts, char** output,
                                  zoerr::Status& status) = 0;
  // Writes an answer only when routes conflict.
  virtual void reserveRoute(uint32_t ticket, char** output, zoerr::Status& status) = 0;
  virtual void programRoute(uint32_t ticket, zoerr::Status& status) = 0;

  // The steps of a teardown. The two words of the client are ignored.
  virtual void unprogramRoute(uint32_t ticket, uint64_t first, uint64_t second) = 0;
  virtual void unreserveRoute(uint32_t ticket, uint64_t first, uint64_t second) = 0;
  virtual void beginExceptionalRouteDestruction(uint32_t ticket, uint64_t first,
                                                uint64_t second) = 0;
  virtual void destroyRoute(uint32_t ticket, uint64_t first, uint64_t second) = 0;

  virtual void getRouteTerminalPath(uint32_t ticket, char** output, zoerr::Status& status) = 0;

  [[nodiscard]] virtual std::unique_ptr<TerminalIteratorInterface> getAllTerminals(
      zoerr::Status& status, uint64_t reserved) = 0;
  // The id of the terminal from which a reset would drive the iterator's terminal.
  virtual uint32_t calculateResetTerminal(const TerminalIteratorInterface& iterator,
                                          const char* mode, zoerr::Status& status) = 0;
};

}  // namespace zoroco

#endif
