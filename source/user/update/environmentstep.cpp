#include "source/user/update/environmentstep.h"

#include <boost/uuid/entropy_error.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "quenra_status.h"

namespace nQUENRA1400 {
namespace {

// The generator of random bytes reports a status of the Windows kernel, or an errno elsewhere.
bool isShortMemory(const boost::uuids::entropy_error& error) noexcept {
  constexpr uint32_t kNoMemory = 0xC0000017;
  constexpr uint32_t kInsufficientResources = 0xC000009A;
  // A status of Windows is negative there.
  const auto code = static_cast<uint32_t>(error.errcode());
  return code == kNoMemory || code == kInsufficientResources || code == ENOMEM;
}

bool isShortMemory(const std::error_code& code) noexcept {
  constexpr int kNotEnoughMemory = 8;  // Windows errors, which not every C++ library translates
  constexpr int kNoSystemResources = 1450;
  return code == std::errc::not_enough_memory ||
         (code.category() == std::system_category() &&
          (code.value() == kNotEnoughMemory || code.value() == kNoSystemResources));
}

int32_t codeFor(bool memoryIsShort) noexcept {
  return memoryIsShort ? QUENRA_STATUS_OUT_OF_MEMORY : QUENRA_STATUS_UPDATE_ENVIRONMENT;
}

}  // namespace

void reportEnvironmentFailure(const nZOAPALS100::tSourceLocation& location, zoerr::Status& status) {
  try {
    throw;
  } catch (const boost::uuids::entropy_error& error) {
    status.set(codeFor(isShortMemory(error)), location);
  } catch (const std::system_error& error) {
    status.set(codeFor(isShortMemory(error.code())), location);
  } catch (const std::length_error&) {  // a name longer than the system converts
    // GCOVR_EXCL_START: such a name has two gigabytes
    status.set(QUENRA_STATUS_UPDATE_ENVIRONMENT, location);
    // GCOVR_EXCL_STOP
  }
}

std::string randomFolderName() {
  boost::uuids::random_generator_pure generator;
  return boost::uuids::to_string(generator());
}

}  // namespace nQUENRA1400
