#ifndef ZOARKRA_REQUESTDOCUMENT_H
#define ZOARKRA_REQUESTDOCUMENT_H

#include "zoarkra/jsonreader.h"
#include "zoarkra/requestfault.h"

namespace zoark {

// The handler of one document of a request. It ends the reading at the first fault.
class tRequestDocument : public iJsonHandler {
 public:
  [[nodiscard]] const tFoundFault& found() const noexcept { return found_; }

 protected:
  // Records a fault. Returns false, which ends the reading.
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

// Reads a document; a null one is a fault. Throws a fault as a zoerr::Exception, and std::bad_alloc.
void readRequestDocument(const char* text, tRequestDocument& document);

}  // namespace zoark

#endif
