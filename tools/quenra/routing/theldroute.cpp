#include "tools/quenra/routing/theldroute.h"

namespace nCommandLine {

tHeldRoute::~tHeldRoute() {
  if (failed_) {
    session_.announceFailure(ticket_);
  }
  if (stage_ == tStage::programmed) {
    session_.unprogram(ticket_);
  }
  if (stage_ != tStage::calculated) {
    session_.unreserve(ticket_);
  }
  session_.destroy(ticket_);
}

void tHeldRoute::reserve() {
  failed_ = true;  // until the step is done
  session_.reserve(ticket_);
  stage_ = tStage::reserved;
  failed_ = false;
}

void tHeldRoute::program() {
  failed_ = true;  // until the step is done
  session_.program(ticket_);
  stage_ = tStage::programmed;
  failed_ = false;
}

}  // namespace nCommandLine
