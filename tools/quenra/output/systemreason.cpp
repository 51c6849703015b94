#include "tools/quenra/output/systemreason.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace nCommandLine {
namespace {

struct tReasonRow {
  std::errc condition;
  std::string_view text;
};

constexpr tReasonRow kReasons[] = {
    {std::errc::no_such_file_or_directory, "no such file"},
    {std::errc::is_a_directory, "is a directory"},
    {std::errc::not_a_directory, "a part of the path is not a directory"},
    {std::errc::permission_denied, "access denied"},
    {std::errc::operation_not_permitted, "access denied"},
    {std::errc::read_only_file_system, "the disk is read-only"},
    {std::errc::no_space_on_device, "no space left on the disk"},
    {std::errc::device_or_resource_busy, "in use by another program"},
    {std::errc::text_file_busy, "in use by another program"},
    {std::errc::filename_too_long, "the path is too long"},
    {std::errc::invalid_argument, "the path is invalid"},
    {std::errc::io_error, "the device reports an input/output error"},
    {std::errc::not_enough_memory, "not enough memory"},
};

// Error numbers of Windows for which the C++ library has no condition, or that of another reason.
struct tWindowsReasonRow {
  int number;
  std::string_view text;
};

constexpr tWindowsReasonRow kWindowsReasons[] = {
    {15, "no such file"},               // ERROR_INVALID_DRIVE
    {32, "in use by another program"},  // ERROR_SHARING_VIOLATION
    {33, "in use by another program"},  // ERROR_LOCK_VIOLATION
    {123, "the path is invalid"},       // ERROR_INVALID_NAME
    {161, "the path is invalid"},       // ERROR_BAD_PATHNAME
};

constexpr int kBrokenPipe = 109;
constexpr int kPipeBeingClosed = 232;
constexpr int kPipeNotConnected = 233;

#ifdef _WIN32
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

bool isWindowsError(const std::error_code& error, std::initializer_list<int> numbers) noexcept {
  return kIsWindows && error.category() == std::system_category() &&
         std::find(numbers.begin(), numbers.end(), error.value()) != numbers.end();
}

}  // namespace

std::string reasonOf(const std::error_code& error) {
  for (const tWindowsReasonRow& reason : kWindowsReasons) {
    if (isWindowsError(error, {reason.number})) {
      return std::string(reason.text);
    }
  }
  const auto* const row =
      std::find_if(std::begin(kReasons), std::end(kReasons),
                   [&error](const tReasonRow& reason) { return error == reason.condition; });
  return row == std::end(kReasons) ? error.message() : std::string(row->text);
}

bool isClosedPipe(const std::error_code& error) noexcept {
  return error == std::errc::broken_pipe ||
         isWindowsError(error, {kBrokenPipe, kPipeBeingClosed, kPipeNotConnected});
}

}  // namespace nCommandLine
