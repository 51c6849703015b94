/* The controller of a PXI chassis, for C11 and C++.
 *
 * Conventions:
 *
 *  1. Every function but QUENRA_closeController returns a code of quenra_status.h: 0 success,
 *     negative failure, positive warning. No function throws.
 *  2. A machine has one controller, and a process has one session with it. All successful opens share
 *     the session and receive the same handle value, QUENRA_HANDLE. Match each open by a close.
 *  3. Any thread may call any function at any time, also during an update, with one exception: the
 *     close that drops the last open must not overlap another call on the handle, which would use
 *     freed memory. A call that begins after that close returns QUENRA_STATUS_INVALID_HANDLE.
 *  4. Memory belongs to the caller. The library keeps no pointer after a call.
 *  5. A null pointer is never dereferenced: a function that needs the argument returns
 *     QUENRA_STATUS_INVALID_PARAMETER. Pointers need not be aligned.
 *  6. A failure leaves out-arguments unchanged unless a function documents otherwise.
 *  7. The library returns codes of the driver unchanged, so that codes other than those listed can
 *     appear. A positive code of the driver is a warning: the operation succeeded, and its
 *     out-arguments hold its results.
 *  8. If the library could not initialise when it was loaded, every function that needs it reports
 *     the reason. A static destructor of another module may still call functions while the process
 *     ends, after the library was unloaded: they return QUENRA_STATUS_NOT_READY.
 *     QUENRA_setAttributeUTF8 returns QUENRA_STATUS_NO_CONTROLLER in both cases, and the device path
 *     attribute can be read. */
#ifndef QUENRA_H
#define QUENRA_H

#include <stdint.h>

#include "quenra_annotations.h"
#include "quenra_attributes.h"
#include "quenra_status.h"
#include "quenra_version.h"

QUENRA_STATIC_ASSERT(sizeof(void*) == 8, "the library is for 64-bit processes");

/* The value of every valid handle: "QNRA" read as a number. */
#define QUENRA_HANDLE UINT64_C(0x514E5241)

/* The longest text that QUENRA_setAttributeUTF8 accepts, in bytes without its NUL. */
#define QUENRA_MAX_TEXT_SETTING_LENGTH 255
/* A buffer of that many bytes receives every device path. */
#define QUENRA_MAX_DEVICE_PATH_SIZE 256
/* A buffer of that many bytes receives every text that comes from the machine's SMBIOS table. */
#define QUENRA_MAX_TABLE_TEXT_SIZE 256

/* The options of QUENRA_updateFirmware2. */
enum QUENRA_UpdateOption {
  /* Skips the BIOS if its installed version is not older than that of one of the BIOS sections, and
   * the Marten likewise. */
  QUENRA_UPDATE_NEWER = 0,
  /* Skips nothing. */
  QUENRA_UPDATE_ALL = 1
};

#ifdef __cplusplus
extern "C" {
#endif

/* Opens the controller, or counts one more user of the open one.
 *
 * handle: out, 8 bytes; receives QUENRA_HANDLE unless the code is negative.
 *
 * The first open finds the driver's device interfaces, fetches the SMBIOS table from the driver and
 * checks the machine; after a failure nothing remains open, and the call may be repeated. While the
 * controller is open, further opens cannot fail.
 *
 * Returns
 *   0                                   done
 *   positive                            done; the driver reported a warning
 *   QUENRA_STATUS_INVALID_PARAMETER     handle is null
 *   QUENRA_STATUS_NO_CONTROLLER         no controller interface is present, or the library does not
 *                                       support the machine
 *   QUENRA_STATUS_GENERIC_FAILURE       more than one controller or Marten interface is present
 *   QUENRA_STATUS_NOT_SUPPORTED         the machine's memory devices cannot be read from its table
 *   QUENRA_STATUS_OUT_OF_MEMORY, QUENRA_STATUS_MEMORY_FULL
 *   QUENRA_STATUS_ACCESS_DENIED, ...    a code of the system or the driver */
QUENRA_RETURNS_STATUS int32_t QUENRA_openController(QUENRA_OUT uint64_t* handle);

/* Drops one open; the last one closes the controller. Other handle values, and closing more often
 * than opening, are ignored. */
void QUENRA_closeController(uint64_t handle);

/* Reads a text attribute.
 *
 * attribute: an id of QUENRA_TextAttribute, with instance and selector where they apply.
 * buffer:    out; receives the text as UTF-8, and a NUL. The library does not check that a text of
 *            the machine or the driver is valid UTF-8. After a failure the content is unspecified.
 * size:      in: the buffer's size in bytes; 0 to query the size needed.
 *            out: with QUENRA_STATUS_BUFFER_TOO_SMALL the size needed, NUL included; for a text of the
 *            Marten interface, with success or a warning, the bytes that the driver filled; otherwise
 *            unchanged.
 *
 * To read a text of any length, repeat the call with a buffer of *size bytes for as long as it returns
 * QUENRA_STATUS_BUFFER_TOO_SMALL.
 *
 * A query of the size does not show that the text is available. A placeholder in the machine's table
 * ("Not Applicable", or a version that repeats the BIOS version) has a size, but the read that follows
 * returns QUENRA_STATUS_NOT_SUPPORTED and leaves an empty text in the buffer. For a field that is
 * malformed in the table, query and read return 0 and leave size and buffer unchanged: store a NUL in
 * the buffer before the call.
 *
 * The library adds the NUL that is missing from a text of the Marten interface. If the buffer has no
 * byte left for it, the call returns QUENRA_STATUS_BUFFER_TOO_SMALL, increases *size by one, and leaves
 * an empty text in the buffer.
 *
 * QUENRA_ATTRIBUTE_DEVICE_PATH needs no open controller and accepts any handle. With a selector or an
 * instance it is an unknown id.
 *
 * Returns
 *   0                                 done; without a size pointer: nothing was read
 *   positive                          done; the driver reported a warning
 *   QUENRA_STATUS_INVALID_HANDLE      invalid handle, or no controller open
 *   QUENRA_STATUS_BUFFER_TOO_SMALL    *size holds the size needed (also for a null size pointer when
 *                                     the text is the device path or a location)
 *   QUENRA_STATUS_NOT_SUPPORTED       unknown id, or not available on this machine
 *   QUENRA_STATUS_NO_CONTROLLER       the Marten interface is selected and not open; for the device
 *                                     path, no device is present
 *   QUENRA_STATUS_PATH_TOO_LONG       the device path needs more than QUENRA_MAX_DEVICE_PATH_SIZE bytes
 *   QUENRA_STATUS_INVALID_PARAMETER   buffer is null and *size is not too small; for a text of the
 *                                     Marten interface, buffer is null and *size is not 0
 *   others                            codes of the system or the driver */
QUENRA_RETURNS_STATUS int32_t QUENRA_getAttributeUTF8(uint64_t handle, uint32_t attribute,
                                                      QUENRA_OUT_TEXT_OPT(*size) char* buffer,
                                                      QUENRA_INOUT_OPT uint64_t* size);

/* Reads an unsigned attribute.
 *
 * attribute: an id of QUENRA_UnsignedAttribute, with instance and selector where they apply.
 * value:     out, 4 bytes; unchanged when the handle is invalid or no controller is open. Every other
 *            failure stores 0, with two exceptions: QUENRA_ATTRIBUTE_CONTROLLER_KIND and
 *            QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT store the value of instance 0 when they refuse
 *            another instance, and a driver that fails may have stored a value.
 *
 * A field that is malformed in the machine's table reads as 0 with success.
 *
 * Returns
 *   0                                 done
 *   positive                          done; the driver reported a warning
 *   QUENRA_STATUS_INVALID_HANDLE      invalid handle, or no controller open
 *   QUENRA_STATUS_INVALID_PARAMETER   value is null
 *   QUENRA_STATUS_NOT_SUPPORTED       unknown id, or not available on this machine
 *   QUENRA_STATUS_NO_CONTROLLER       the Marten interface is selected, and it is not open or the
 *                                     instance is not 0; or a field that decides the value cannot be
 *                                     read
 *   others                            codes of the driver */
QUENRA_RETURNS_STATUS int32_t QUENRA_getAttributeU32(uint64_t handle, uint32_t attribute,
                                                     QUENRA_OUT uint32_t* value);

/* No attribute is signed; value is unchanged.
 *
 * Returns QUENRA_STATUS_INVALID_HANDLE for an invalid handle or when no controller is open, else
 * QUENRA_STATUS_NOT_SUPPORTED. */
QUENRA_RETURNS_STATUS int32_t QUENRA_getAttributeI32(uint64_t handle, uint32_t attribute,
                                                     QUENRA_INOUT_OPT int32_t* value);

/* No attribute is a floating-point number. Returns as QUENRA_getAttributeI32. */
QUENRA_RETURNS_STATUS int32_t QUENRA_getAttributeDBL(uint64_t handle, uint32_t attribute,
                                                     QUENRA_INOUT_OPT double* value);

/* Writes a text attribute. The driver decides which attributes it accepts.
 *
 * attribute: with QUENRA_TEXT_SETTING_OF_BOTH the library writes the text to the controller interface
 *            and then to the Marten interface; with QUENRA_SELECTOR_MARTEN as well, to the Marten
 *            interface alone. If the controller interface fails, or the machine's table permits no text
 *            settings, the call fails and the Marten interface receives nothing. A Marten interface that
 *            is not present or does not support the setting is not a failure.
 *            Any other id, with any selector, goes to the controller interface. If that does not support
 *            it, or the machine's table permits no text settings, it goes to the Marten interface.
 * text:      at most QUENRA_MAX_TEXT_SETTING_LENGTH bytes and a NUL, sent to the driver as they are: the
 *            library does not check that they are valid UTF-8.
 *
 * Returns
 *   0                                 done
 *   positive                          done; the driver reported a warning
 *   QUENRA_STATUS_INVALID_HANDLE      invalid handle
 *   QUENRA_STATUS_NO_CONTROLLER       no controller open, or the machine's table does not state whether
 *                                     it permits text settings
 *   QUENRA_STATUS_INVALID_PARAMETER   text is null
 *   QUENRA_STATUS_INVALID_VALUE       text is longer than 255 bytes; nothing was written
 *   QUENRA_STATUS_NOT_SUPPORTED       neither interface supports the attribute
 *   others                            codes of the driver */
QUENRA_RETURNS_STATUS int32_t QUENRA_setAttributeUTF8(uint64_t handle, uint32_t attribute,
                                                      QUENRA_IN_TEXT const char* text);

/* Writes an unsigned attribute: with QUENRA_SELECTOR_MARTEN to the Marten interface, with any other
 * selector to the controller interface. The driver decides which attributes it accepts.
 *
 * Returns
 *   0                                 done
 *   positive                          done; the driver reported a warning
 *   QUENRA_STATUS_INVALID_HANDLE      invalid handle, or no controller open
 *   QUENRA_STATUS_NO_CONTROLLER       the Marten interface is selected and not open
 *   others                            codes of the driver */
QUENRA_RETURNS_STATUS int32_t QUENRA_setAttributeU32(uint64_t handle, uint32_t attribute,
                                                     uint32_t value);

/* The self-test succeeds if a controller is open; it sends no request.
 *
 * Returns 0, or QUENRA_STATUS_INVALID_HANDLE for an invalid handle or when no controller is open. */
QUENRA_RETURNS_STATUS int32_t QUENRA_performSelfTest(uint64_t handle);

/* Applies a firmware image regardless of the installed versions: QUENRA_updateFirmware2 with
 * QUENRA_UPDATE_ALL. */
QUENRA_RETURNS_STATUS int32_t QUENRA_updateFirmware(uint64_t handle,
                                                    QUENRA_IN_BYTES_OPT(size) const void* image,
                                                    uint64_t size);

/* Applies a firmware image. The call can take minutes. The calling thread must not use COM in a
 * single-threaded apartment. The library does not serialise updates: two that overlap, in one process
 * or in several, mix their effects.
 *
 * A failure restores the Marten's version marker; the driver keeps the firmware that it has accepted by
 * then.
 *
 * The library writes the files of an image to a new folder in the temporary directory. Its owner, the
 * system and administrators alone have access to the folder, and until the call returns, other processes
 * can read the files but not change them. A folder that cannot be protected like that counts as one that
 * cannot be created, and a file that another process has open for writing as one that cannot be opened.
 * The files stay, after a failure too; only if one of them cannot be opened, or a driver package cannot be
 * installed, the library removes the folder with its contents. A file name in the image may be absolute or
 * contain "..": the library then writes outside the folder, to any file that the caller may write.
 *
 * On a machine with a Marten, every update that returns 0 or a warning sets the version marker of the
 * Marten (see QUENRA_ATTRIBUTE_FIRMWARE_VERSION) to "0.0.0f0", which is older than any other version, even
 * if the image has no section or the bytes are not an image. The exception is an update with
 * QUENRA_UPDATE_NEWER that finds both devices current: it changes nothing.
 *
 * QUENRA_UPDATE_NEWER compares a version of the form 1.4.2f7: major.minor.update, a phase letter (d, a, b,
 * f, in this order) and a build number; at most 255.15.15 and 16383. Any other text counts as the oldest
 * version, in the image and on the machine. The library compares every section of a device, those
 * that are files included. If one section is not newer, the device counts as current and the library sends
 * none of its sections. It writes all files and installs all driver packages regardless.
 *
 * The library starts the system's driver-store tool for a driver package and waits for its end, at most
 * five minutes. It does not evaluate the result: an update that returns 0 does not show that the package
 * was installed.
 *
 * The update refuses a machine whose system drive is encrypted. If the management service knows no such
 * drive or does not return its state, the drive counts as not encrypted.
 *
 * image:   `size` bytes, which the library only reads, and only during the call. Null or 0 bytes: an
 *          image without sections.
 * options: one of QUENRA_UpdateOption.
 *
 * Returns
 *   0                                 done, or nothing to do
 *   positive                          done; the driver reported a warning
 *   QUENRA_STATUS_INVALID_HANDLE      invalid handle, or no controller open
 *   QUENRA_STATUS_DRIVE_PROTECTED     the system drive is encrypted
 *   QUENRA_STATUS_UPDATE_ENVIRONMENT  the management service cannot be queried, or the calling thread
 *                                     is in a single-threaded apartment; the system has no random bytes
 *                                     or no temporary directory; a folder or file cannot be created, or
 *                                     its name not converted; the tool for driver packages is missing
 *   QUENRA_STATUS_NO_CONTROLLER       the machine's table does not state whether it accepts updates
 *   QUENRA_STATUS_NOT_SUPPORTED       the machine does not accept updates
 *   QUENRA_STATUS_INVALID_VALUE       options is neither 0 nor 1; the image was not read
 *   QUENRA_STATUS_INVALID_PARAMETER   image plus size wraps around the address space; it was not read
 *   QUENRA_STATUS_INVALID_IMAGE       the image is malformed, or has a Marten section for a machine
 *                                     without a Marten; the tool for driver packages cannot be started
 *   QUENRA_STATUS_IMAGE_VERSION       a section has a header of an unknown version
 *   QUENRA_STATUS_OUT_OF_MEMORY       memory is short; a header lacks a number, the end of its line or
 *                                     its empty line
 *   others                            codes of the driver */
QUENRA_RETURNS_STATUS int32_t QUENRA_updateFirmware2(uint64_t handle,
                                                     QUENRA_IN_BYTES_OPT(size) const void* image,
                                                     uint64_t size, uint32_t options);

#ifdef __cplusplus
}
#endif

#endif
