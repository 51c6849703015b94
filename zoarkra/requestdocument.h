#ifndef ZOARKRA_REQUESTDOCUMENT_H
#define ZOARKRA_REQUESTDOCUMENT_H

#include "zoarkra/jsonreader.h"
#include "zoarkra/requestfault.h"

namespace zoark {

// The handler of one document of a request. It ends the reading at the first fault.
class tRequestDocument : public iJsonHandler {
 public:
  [[nodiscard]] const tFoundFault& found() const noexcept { return found_; }

  // What is wrong where the reading has stopped at a number that is too large for any type.
  [[nodiscard]] virtual const tRequestFault& faultOfLargeNumber() const noexcept {
    return kMalformed;
  }

 protected:
  // Notes a fault. Gives false, which ends the reading.
  bool fail(const tRequestFault& fault) noexcept {
    found_.fault = &fault;
    return false;
  }
  bool fail(const tRequestFault& fault, const tConstraintMismatch& mismatch) noexcept {
    found_.mismatch = mismatch;
    return fail(fault);
  }

 private:
  tFoundFault found_;
};

// Reads a document; a fault is thrown.
void readRequestDocument(const char* text, tRequestDocument& document);

}  // namespace zoark

#endif
