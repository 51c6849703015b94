#include "tools/quenra/tables/statustable.h"

#include <algorithm>

#include "quenra_status.h"
#include "tools/quenra/text/names.h"

namespace nCommandLine {
namespace {

// clang-format off
constexpr tStatusRow kRows[] = {
    {QUENRA_STATUS_SUCCESS, "QUENRA_STATUS_SUCCESS",
     "Done.",
     "No action is required."},

    {QUENRA_STATUS_BUFFER_TOO_SMALL, "QUENRA_STATUS_BUFFER_TOO_SMALL",
     "The caller's buffer is smaller than the text and its NUL.",
     "Call again with a buffer of the size that the function reported."},
    {QUENRA_STATUS_INVALID_HANDLE, "QUENRA_STATUS_INVALID_HANDLE",
     "The handle is not from QUENRA_openController, or the controller has been closed.",
     "Open the controller first, and close it only after the last use."},
    {QUENRA_STATUS_NO_CONTROLLER, "QUENRA_STATUS_NO_CONTROLLER",
     "No controller could be reached: no such device is present, the library does not support the machine, the requested interface is not open, or a field that determines the value cannot be read.",
     "Check in the system's device manager that the controller's driver is installed and running. Without --marten, no Marten interface is needed."},
    {QUENRA_STATUS_OUT_OF_MEMORY, "QUENRA_STATUS_OUT_OF_MEMORY",
     "Memory for the session, a value or a firmware image could not be allocated.",
     "Close other programs and try again."},
    {QUENRA_STATUS_NOT_SUPPORTED, "QUENRA_STATUS_NOT_SUPPORTED",
     "The attribute or operation is not supported on this machine: unknown id, field absent, value not usable, or instance out of range.",
     "Run 'quenra info' to list what this machine supports, and 'quenra attributes' to list all attributes."},
    {QUENRA_STATUS_INVALID_VALUE, "QUENRA_STATUS_INVALID_VALUE",
     "A value is not accepted: a text of more than 255 bytes, or an unknown update option.",
     "Shorten the text, or use update option 0 or 1."},
    {QUENRA_STATUS_UPDATE_ENVIRONMENT, "QUENRA_STATUS_UPDATE_ENVIRONMENT",
     "The environment of a firmware update failed: disk encryption could not be determined, a file could not be written, or the driver-store tool is missing.",
     "Run the update as an administrator and check that the temporary folder can be written."},
    {QUENRA_STATUS_INVALID_IMAGE, "QUENRA_STATUS_INVALID_IMAGE",
     "The firmware image is malformed, or is meant for a device that this machine does not have.",
     "Fetch the image again and compare the devices it names with this machine."},
    {QUENRA_STATUS_IMAGE_VERSION, "QUENRA_STATUS_IMAGE_VERSION",
     "The firmware image has a header version that this library does not know.",
     "Use a newer version of the library, or an older image."},
    {QUENRA_STATUS_DRIVE_PROTECTED, "QUENRA_STATUS_DRIVE_PROTECTED",
     "The system drive is protected by disk encryption.",
     "Suspend the protection, update, and resume it afterwards."},

    {QUENRA_STATUS_BAD_SELECTOR, "QUENRA_STATUS_BAD_SELECTOR",
     "An unknown selector was given to a routing function.",
     "Correct the calling program: it names a selector that the routing interface does not have."},
    {QUENRA_STATUS_MEMORY_FULL, "QUENRA_STATUS_MEMORY_FULL",
     "Memory could not be allocated, or the system has no more resources.",
     "Close other programs and try again; restart the machine if that does not help."},
    {QUENRA_STATUS_REQUEST_NOT_SUPPORTED, "QUENRA_STATUS_REQUEST_NOT_SUPPORTED",
     "The driver does not know the request.",
     "Install the driver version that belongs to this library."},
    {QUENRA_STATUS_GENERIC_FAILURE, "QUENRA_STATUS_GENERIC_FAILURE",
     "A device or system failure without a code of its own, or more than one controller is present.",
     "Make sure that exactly one controller is present, then restart the machine."},
    {QUENRA_STATUS_INVALID_PARAMETER, "QUENRA_STATUS_INVALID_PARAMETER",
     "An argument is invalid, such as a null pointer.",
     "Correct the calling program; the header documents each argument."},
    {QUENRA_STATUS_NOT_FOUND, "QUENRA_STATUS_NOT_FOUND",
     "The device or file does not exist.",
     "Check in the system's device manager that the controller is present."},
    {QUENRA_STATUS_TIME_OUT, "QUENRA_STATUS_TIME_OUT",
     "The device did not answer in time.",
     "Try again; restart the machine if the device still does not answer."},
    {QUENRA_STATUS_INTERNAL_ERROR, "QUENRA_STATUS_INTERNAL_ERROR",
     "An internal error of the library or the system.",
     "Try again; report it to the library's maintainers if it recurs."},
    {QUENRA_STATUS_ACCESS_DENIED, "QUENRA_STATUS_ACCESS_DENIED",
     "Access to the device was denied.",
     "Run the program as a user who may use the device, such as an administrator."},
    {QUENRA_STATUS_NOT_READY, "QUENRA_STATUS_NOT_READY",
     "The device is not ready.",
     "Wait until the machine has started up completely, and try again."},
    {QUENRA_STATUS_END_OF_FILE, "QUENRA_STATUS_END_OF_FILE",
     "The end of the data was reached.",
     "Check that the data is complete."},
    {QUENRA_STATUS_ALREADY_EXISTS, "QUENRA_STATUS_ALREADY_EXISTS",
     "The object already exists.",
     "Use the existing object, or remove it first."},
    {QUENRA_STATUS_PATH_TOO_LONG, "QUENRA_STATUS_PATH_TOO_LONG",
     "A device interface path or a system buffer exceeds the space of the library.",
     "Reinstall the controller's driver, so that its device gets a shorter path."},
    {QUENRA_STATUS_DEVICE_REMOVED, "QUENRA_STATUS_DEVICE_REMOVED",
     "The device was removed.",
     "Close the controller and open it again once the device is back."},
    {QUENRA_STATUS_SYSTEM_REFUSED, "QUENRA_STATUS_SYSTEM_REFUSED",
     "The system refused an update of a running component (Windows error 639).",
     "Restart the machine and try again before other programs use the component."},
    {QUENRA_STATUS_NOTIFICATION_TOO_LARGE, "QUENRA_STATUS_NOTIFICATION_TOO_LARGE",
     "The driver sent a notification of more than 32 bytes.",
     "Install the driver version that belongs to this library."},
    {QUENRA_STATUS_BUSY, "QUENRA_STATUS_BUSY",
     "The device is busy.",
     "Wait a moment and try again."},
    {QUENRA_STATUS_IO_PENDING, "QUENRA_STATUS_IO_PENDING",
     "The request is still pending.",
     "Wait for its completion before the result is used."},

    {QUENRA_STATUS_ROUTE_CONFLICT, "QUENRA_STATUS_ROUTE_CONFLICT",
     "A trigger route cannot be reserved: other routes hold its lines.",
     "Release the routes that hold its lines, or choose another trigger line."},
    {QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL, "QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL",
     "A buffer is too small for the SMBIOS table that the driver returns.",
     "Open the controller again: the table may have changed meanwhile."},
    {QUENRA_STATUS_NO_SUCH_TERMINAL, "QUENRA_STATUS_NO_SUCH_TERMINAL",
     "The router has no terminal of that name.",
     "Run 'quenra terminals' to list the terminals."},
    {QUENRA_STATUS_NO_SUCH_TICKET, "QUENRA_STATUS_NO_SUCH_TICKET",
     "No route of the session has the ticket.",
     "Calculate the route again: it was destroyed, or belongs to another session."},
    {QUENRA_STATUS_WRONG_ORDER, "QUENRA_STATUS_WRONG_ORDER",
     "The step does not follow from the state of the route.",
     "Calculate, reserve and program a route in this order, and tear it down in the reverse order."},
    {QUENRA_STATUS_TOO_MANY_ROUTES, "QUENRA_STATUS_TOO_MANY_ROUTES",
     "The router cannot hold more routes.",
     "Destroy routes that are no longer used."},

    {QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL, "QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL",
     "The caller's buffer is too small for a string of the SMBIOS table.",
     "Call again with a larger buffer; 129 bytes hold every string."},
    {QUENRA_STATUS_SMBIOS_NOT_FOUND, "QUENRA_STATUS_SMBIOS_NOT_FOUND",
     "The SMBIOS table has no such structure or instance, or the field lies beyond the structure's length.",
     "The machine's firmware does not provide this value; a firmware update may add it."},
    {QUENRA_STATUS_SMBIOS_MALFORMED, "QUENRA_STATUS_SMBIOS_MALFORMED",
     "The SMBIOS table is malformed: a structure or string runs outside it, or a string has more than 128 characters.",
     "Update the machine's firmware, which provides the table."},
    {QUENRA_STATUS_SMBIOS_NO_TABLE, "QUENRA_STATUS_SMBIOS_NO_TABLE",
     "The system's firmware-table service returned no SMBIOS table, or one of an unexpected size.",
     "Restart the machine; update its firmware if the table is still missing."},
    {QUENRA_STATUS_SMBIOS_NO_STRING, "QUENRA_STATUS_SMBIOS_NO_STRING",
     "The SMBIOS structure has no such string.",
     "The machine's firmware has no such text; no action is required."},
};
// clang-format on

constexpr std::string_view kConstantPrefix = "QUENRA_STATUS_";

std::string nameIn(std::string_view text) {
  std::string name = comparableName(text);
  const std::string prefix = comparableName(kConstantPrefix);
  return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}

tStatusExplanation foreignStatus(int32_t code) noexcept {
  const std::string_view meaning =
      code < 0
          ? "A failure that the library does not define; it is returned as the driver reported it."
          : "A warning that the library does not define; it is returned as the driver reported it.";
  return {code, "", meaning, "Look the code up in the documentation of the driver."};
}

}  // namespace

constinit const std::span<const tStatusRow> kStatuses{kRows};

std::string_view severityName(tSeverity severity) noexcept {
  switch (severity) {
    case tSeverity::success:
      return "success";
    case tSeverity::warning:
      return "warning";
    case tSeverity::failure:
      break;
  }
  return "failure";
}

tStatusExplanation explainStatus(int32_t code) noexcept {
  const auto row = std::ranges::find(kStatuses, code, &tStatusRow::code);
  return row == kStatuses.end()
             ? foreignStatus(code)
             : tStatusExplanation{row->code, row->constant, row->meaning, row->advice};
}

const tStatusRow* findStatus(std::string_view name) {
  const std::string sought = nameIn(name);
  const auto row = std::ranges::find_if(kStatuses, [&sought](const tStatusRow& candidate) {
    return nameIn(candidate.constant) == sought;
  });
  return row == kStatuses.end() ? nullptr : &*row;
}

std::vector<std::string> suggestStatuses(std::string_view name) {
  // Compare without the common prefix: it would make every name look similar.
  std::vector<std::string_view> names;
  for (const tStatusRow& row : kStatuses) {
    names.push_back(row.constant.substr(kConstantPrefix.size()));
  }
  std::vector<std::string> suggestions = suggest(nameIn(name), names);
  for (std::string& suggestion : suggestions) {
    suggestion.insert(0, kConstantPrefix);
  }
  return suggestions;
}

std::string codeAndConstant(int32_t code) {
  const tStatusExplanation status = explainStatus(code);
  std::string text = std::to_string(code);
  return status.known() ? text.append(" ").append(status.constant) : text;
}

}  // namespace nCommandLine
