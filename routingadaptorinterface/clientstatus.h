#ifndef ROUTINGADAPTORINTERFACE_CLIENTSTATUS_H
#define ROUTINGADAPTORINTERFACE_CLIENTSTATUS_H

#include "quenra_routing.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace zoroco {

// Takes over code and description of `source` as zoerr::Status::mergeFrom does, in the client's
// memory. The client's record lies in memory as zoerr::Status does, but its reallocation function
// has another type, and a function is only called as what it is. When the client gives no room, the
// code arrives alone.
void mergeIntoClient(zoerr_Status& client, const zoerr::Status& source) noexcept;

}  // namespace zoroco

#endif
