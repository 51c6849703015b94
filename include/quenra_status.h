/* Status codes of the library: 0 is success, a negative code is a failure, a positive code is a warning
 * with which the operation succeeded. The QUENRA_ functions return them, except for
 * QUENRA_closeController; the zoroco_ra_quenra_ functions report them in a status record. The library
 * passes codes of the driver on unchanged, so that other codes can appear. */
#ifndef QUENRA_STATUS_H
#define QUENRA_STATUS_H

enum QUENRA_Status {
  /* Done. */
  QUENRA_STATUS_SUCCESS = 0,

  /* ---- The controller ---- */

  /* The caller's buffer is smaller than the text plus its NUL. The caller's size holds the size needed
   * in bytes; call again with a buffer of that size. */
  QUENRA_STATUS_BUFFER_TOO_SMALL = -26930,
  /* The handle is not QUENRA_HANDLE, or no controller is open. */
  QUENRA_STATUS_INVALID_HANDLE = -26931,
  /* No controller could be reached: no such device is present, the library does not support the
   * machine, the selected interface is not open, or a field that decides the result cannot be read. */
  QUENRA_STATUS_NO_CONTROLLER = -26932,
  /* Memory for the session, a value or a firmware image could not be allocated. */
  QUENRA_STATUS_OUT_OF_MEMORY = -26933,
  /* The attribute or operation is not supported on this machine: unknown id, field absent, value
   * not usable, instance out of range. */
  QUENRA_STATUS_NOT_SUPPORTED = -26934,
  /* A value is not accepted: a text of more than 255 bytes, an unknown update option. */
  QUENRA_STATUS_INVALID_VALUE = -26935,
  /* A firmware update lacks something of the system: the state of disk encryption cannot be read,
   * there are no random bytes or no temporary directory, a folder or file cannot be created, a file
   * name cannot be converted, or the driver-store tool is missing. */
  QUENRA_STATUS_UPDATE_ENVIRONMENT = -26937,
  /* The firmware image is malformed or has a section for a device that this machine does not have, or the
   * driver-store tool cannot be started. */
  QUENRA_STATUS_INVALID_IMAGE = -26938,
  /* The firmware image has a header version that this library does not support. */
  QUENRA_STATUS_IMAGE_VERSION = -26941,
  /* The system drive is protected by disk encryption; suspend the protection before an update. */
  QUENRA_STATUS_DRIVE_PROTECTED = -26942,

  /* ---- Access to the driver ---- */

  /* An unknown selector was given to a routing function. */
  QUENRA_STATUS_BAD_SELECTOR = -50003,
  /* Memory could not be allocated, or the system has no more resources. */
  QUENRA_STATUS_MEMORY_FULL = -52000,
  /* The driver does not know the request. */
  QUENRA_STATUS_REQUEST_NOT_SUPPORTED = -52002,
  /* A device or system failure without a code of its own, or more than one controller. */
  QUENRA_STATUS_GENERIC_FAILURE = -52003,
  /* An invalid argument, such as a null pointer. */
  QUENRA_STATUS_INVALID_PARAMETER = -52005,
  /* The device or file does not exist. */
  QUENRA_STATUS_NOT_FOUND = -52006,
  /* The device did not reply in time. */
  QUENRA_STATUS_TIME_OUT = -52007,
  /* An internal error of the library or the system. */
  QUENRA_STATUS_INTERNAL_ERROR = -52008,
  /* Access to the device was denied. */
  QUENRA_STATUS_ACCESS_DENIED = -52009,
  /* The device is not ready. */
  QUENRA_STATUS_NOT_READY = -52010,
  /* The end of the data was reached. */
  QUENRA_STATUS_END_OF_FILE = -52012,
  /* The object exists already. */
  QUENRA_STATUS_ALREADY_EXISTS = -52013,
  /* A device interface path does not fit its buffer, or a buffer is too small for the system. */
  QUENRA_STATUS_PATH_TOO_LONG = -52019,
  /* The device was removed. */
  QUENRA_STATUS_DEVICE_REMOVED = -52020,
  /* The system refused an update of a running component (Windows error 639). */
  QUENRA_STATUS_SYSTEM_REFUSED = -52021,
  /* The driver sent a notification of more than 32 bytes. */
  QUENRA_STATUS_NOTIFICATION_TOO_LARGE = -52024,
  /* The device is busy. */
  QUENRA_STATUS_BUSY = -52031,
  /* Warning: the request is still pending. */
  QUENRA_STATUS_IO_PENDING = 52011,

  /* ---- Codes of the driver ---- */

  /* A trigger route cannot be reserved: other routes hold its lines. */
  QUENRA_STATUS_ROUTE_CONFLICT = -89137,
  /* A buffer is too small for the SMBIOS table that the driver returns. */
  QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL = -240563,

  /* ---- Codes of the simulated machine's driver; another driver can report others ---- */

  /* The router has no terminal of that name. */
  QUENRA_STATUS_NO_SUCH_TERMINAL = -240601,
  /* No route of the session has the ticket. */
  QUENRA_STATUS_NO_SUCH_TICKET = -240602,
  /* The step does not follow from the state of the route. */
  QUENRA_STATUS_WRONG_ORDER = -240603,
  /* The router cannot hold more routes. */
  QUENRA_STATUS_TOO_MANY_ROUTES = -240604,

  /* ---- The SMBIOS table ---- */

  /* The caller's buffer is too small for the string. */
  QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL = -240051,
  /* No such structure or instance, or a field beyond the structure's length. */
  QUENRA_STATUS_SMBIOS_NOT_FOUND = -240052,
  /* The table is malformed: a structure or string runs outside it, or a string has more than 128
   * characters. */
  QUENRA_STATUS_SMBIOS_MALFORMED = -240053,
  /* The system's firmware-table service returns no table, or one of an unexpected size. */
  QUENRA_STATUS_SMBIOS_NO_TABLE = -240060,
  /* Warning: the structure has no such string. */
  QUENRA_STATUS_SMBIOS_NO_STRING = 240050
};

#endif
