#include "tools/quenra/output/streams.h"

#include <algorithm>
#include <utility>

namespace nCommandLine {
namespace {

struct tReasonRow {
  std::errc condition;
  std::string_view text;
};

constexpr tReasonRow kReasons[] = {
    {std::errc::no_such_file_or_directory, "no such file"},
    {std::errc::is_a_directory, "is a directory"},
    {std::errc::file_exists, "the file exists"},
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
    {std::errc::broken_pipe, "the pipe is closed"},
};

// Windows errors that the C++ library maps to no condition, or to one with a different meaning.
struct tWindowsReasonRow {
  int number;
  std::string_view text;
};

constexpr tWindowsReasonRow kWindowsReasons[] = {
    {15, "no such drive"},              // ERROR_INVALID_DRIVE
    {19, "the disk is read-only"},      // ERROR_WRITE_PROTECT
    {21, "the drive is not ready"},     // ERROR_NOT_READY
    {32, "in use by another program"},  // ERROR_SHARING_VIOLATION
    {33, "in use by another program"},  // ERROR_LOCK_VIOLATION
    {53, "no such network path"},       // ERROR_BAD_NETPATH
    {67, "no such network path"},       // ERROR_BAD_NET_NAME
    {80, "the file exists"},            // ERROR_FILE_EXISTS
    {109, "the pipe is closed"},        // ERROR_BROKEN_PIPE
    {123, "the path is invalid"},       // ERROR_INVALID_NAME
    {161, "the path is invalid"},       // ERROR_BAD_PATHNAME
    {183, "the file exists"},           // ERROR_ALREADY_EXISTS
    {193, "it is not a program"},       // ERROR_BAD_EXE_FORMAT
    {232, "the pipe is closed"},        // ERROR_NO_DATA
    {233, "the pipe is closed"},        // ERROR_PIPE_NOT_CONNECTED
};

// ERROR_BROKEN_PIPE, ERROR_NO_DATA, ERROR_PIPE_NOT_CONNECTED
constexpr int kClosedPipes[] = {109, 232, 233};

#ifdef _WIN32
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

bool isWindowsError(const std::error_code& error) noexcept {
  return kIsWindows && error.category() == std::system_category();
}

}  // namespace

tOutputBuffer::tOutputBuffer(tWrite write) : write_(std::move(write)) {
  setp(bytes_.data(), bytes_.data() + bytes_.size());
}

tOutputBuffer::int_type tOutputBuffer::overflow(int_type character) {
  if (sync() != 0) {
    return traits_type::eof();
  }
  if (!traits_type::eq_int_type(character, traits_type::eof())) {
    *pptr() = traits_type::to_char_type(character);
    pbump(1);
  }
  return traits_type::not_eof(character);
}

int tOutputBuffer::sync() {
  const std::string_view pending(pbase(), static_cast<size_t>(pptr() - pbase()));
  if (!failure_ && !pending.empty()) {
    failure_ = write_(pending);
  }
  setp(bytes_.data(), bytes_.data() + bytes_.size());
  return failure_ ? -1 : 0;
}

std::string reasonOf(const std::error_code& error) {
  if (isWindowsError(error)) {
    const auto* const row =
        std::ranges::find(kWindowsReasons, error.value(), &tWindowsReasonRow::number);
    if (row != std::ranges::end(kWindowsReasons)) {
      return std::string(row->text);
    }
  }
  const auto* const row = std::ranges::find_if(
      kReasons, [&error](const tReasonRow& reason) { return error == reason.condition; });
  return row == std::ranges::end(kReasons) ? error.message() : std::string(row->text);
}

bool isClosedPipe(const std::error_code& error) noexcept {
  return error == std::errc::broken_pipe ||
         (isWindowsError(error) && std::ranges::count(kClosedPipes, error.value()) != 0);
}

}  // namespace nCommandLine
