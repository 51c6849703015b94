#ifndef ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_COMPLETIONPORT_H
#define ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_COMPLETIONPORT_H

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

// A port for a notification reader, which one thread reads. None when the status holds an error or
// the system refuses, which is located at "tionotification" line 31.
[[nodiscard]] tUniquePort createCompletionPort(nZOAPALS100::tStatus& status) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
