#ifndef SOURCE_USER_UPDATE_PAYLOADFILES_H
#define SOURCE_USER_UPDATE_PAYLOADFILES_H

#include "source/user/firmware/tfirmwarepayload.h"
#include "source/user/update/tupdatefolder.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Writes each payload that has a file name to its file. When a file cannot be opened, the folder is
// removed and kUpdateEnvironment reported; that one cannot be written to the end is not. Does nothing
// when the status holds an error. Throws what making the folder throws, and std::bad_alloc.
void writePayloadFiles(const tFirmwarePayloads& payloads, const tUpdateFolder& folder,
                       zoerr::Status& status);

// The path of a payload's file in the code page of the process. Throws std::bad_alloc.
[[nodiscard]] std::string payloadFilePath(const tFirmwarePayload& payload,
                                          const tUpdateFolder& folder);

}  // namespace nQUENRA1400

#endif
