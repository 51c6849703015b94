#ifndef SOURCE_USER_UPDATE_PAYLOADFILES_H
#define SOURCE_USER_UPDATE_PAYLOADFILES_H

#include <string>

#include "source/user/firmware/tfirmwarepayload.h"
#include "source/user/update/tupdatefolder.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Writes each payload that has a file name to its file, and has the folder hold it. Reports
// kUpdateEnvironment when the folder cannot be created, a name cannot be converted, a file cannot be opened
// or another process has it open for writing; removes the folder only for the last two. A file that cannot
// be written to its end is not reported. Does nothing when the status holds an error. Throws std::bad_alloc.
void writePayloadFiles(const tFirmwarePayloads& payloads, tUpdateFolder& folder,
                       zoerr::Status& status);

// Returns the path of a payload's file in the code page of the process. Reports kUpdateEnvironment when the
// name cannot be converted. Does nothing when the status holds an error. Throws std::bad_alloc.
[[nodiscard]] std::string payloadFilePath(const tFirmwarePayload& payload,
                                          const tUpdateFolder& folder, zoerr::Status& status);

}  // namespace nQUENRA1400

#endif
