#ifndef ZOARKRA_TERMINALITERATORINTERFACE_H
#define ZOARKRA_TERMINALITERATORINTERFACE_H

#include <cstdint>

#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"
#include "zoapal/protons/status/zoerrstatus.h"

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

#endif
