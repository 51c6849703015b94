/* The definition of `tModel`. Only the model accesses the members; the host needs the size. */
#ifndef SIMULATOR_MODEL_MODELSTATE_H
#define SIMULATOR_MODEL_MODELSTATE_H

#include "simulator/model/attributes.h"
#include "simulator/model/firmware.h"
#include "simulator/model/model.h"
#include "simulator/model/notificationlist.h"
#include "simulator/model/pendinglist.h"
#include "simulator/model/requestlog.h"
#include "simulator/model/routelist.h"
#include "simulator/model/scripts.h"
#include "simulator/model/smbioshandover.h"

/* About 320 KB: too large for a stack. modelInitialise does not require zeroed memory. */
struct tModel {
  tModelHost host;
  uint64_t filesOpened;
  uint64_t filesClosed;
  tSimulatorPresence presence;
  tSmbiosHandover handover;
  tAttributeStore attributes;
  tScriptList scripts;
  tPendingList pending;
  tNotificationList notifications;
  tRouter router;
  tRequestLog log;
  tFirmwareSink firmware;
};

#endif
