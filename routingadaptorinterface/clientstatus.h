#ifndef ROUTINGADAPTORINTERFACE_CLIENTSTATUS_H
#define ROUTINGADAPTORINTERFACE_CLIENTSTATUS_H

#include "quenra_routing.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace zoroco {

// Copies code and description of `source` as zoerr::Status::mergeFrom does, into the client's memory.
// The client's record has the layout of zoerr::Status, but its reallocation function has a type of its
// own and is called as such. The code is stored without a description when that function supplies no
// buffer. When it throws, kInternalError is merged after the code: it replaces a warning, not an error.
void mergeIntoClient(zoerr_Status& client, const zoerr::Status& source) noexcept;

}  // namespace zoroco

#endif
