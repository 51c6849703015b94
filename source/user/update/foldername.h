#ifndef SOURCE_USER_UPDATE_FOLDERNAME_H
#define SOURCE_USER_UPDATE_FOLDERNAME_H

#include <string>

namespace nQUENRA1400 {

// Returns the text of a random UUID. Throws boost::uuids::entropy_error when the system has no random
// bytes.
[[nodiscard]] std::string randomFolderName();

}  // namespace nQUENRA1400

#endif
