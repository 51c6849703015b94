/* The controller of a PXI chassis, for C11 and C++.
 *
 * Conventions:
 *
 *  1. Every function but QUENRA_closeController returns a code of quenra_status.h: 0 success,
 *     negative failure, positive warning. No function throws.
 *  2. There is one controller per machine and one session per process. All successful opens share
 *     it, and all get the same handle value, QUENRA_HANDLE. Each open is to be matched by a close.
 *  3. Any thread may call any function at any time, with one exception: the close that drops the
 *     last open must not overlap another call on the handle.
 *  4. Memory is the caller's. The library keeps no pointer after a call.
 *  5. Pointers are never followed when null: where one is needed, the function returns
 *     QUENRA_STATUS_INVALID_PARAMETER. They need not be aligned.
 *  6. On failure, what an out-argument holds is unchanged unless a function says otherwise.
 *  7. A negative code from the driver is passed on unchanged, so codes beyond those listed can
 *     appear.
 *  8. If the library could not initialise when it was loaded, every function that needs it reports
 *     the reason. A static destructor of another module may still call functions while the process
 *     ends, after the library was unloaded: they return QUENRA_STATUS_NOT_READY.
 *     QUENRA_setAttributeUTF8 returns QUENRA_STATUS_NO_CONTROLLER in both cases, and the device path
 *     attribute can be read. */
#ifndef QUENRA_H
#define QUENRA_H

#include <stdint.h>

#include "quenra_attributes.h"
#include "quenra_status.h"

/* The value of every valid handle: "QNRA" read as a number. */
#define QUENRA_HANDLE UINT64_C(0x514E5241)

#ifdef __cplusplus
extern "C" {
#endif

/* Opens the controller, or counts one more user of the open one.
 *
 * handle: out, 8 bytes; receives QUENRA_HANDLE unless the code is negative.
 *
 * The first open finds the driver's device interfaces, fetches the SMBIOS table from the driver and
 * checks the machine; a failed one leaves nothing behind and may be repeated. While the controller
 * is open, further opens cannot fail.
 *
 * Returns
 *   0                                   done
 *   positive                            done; the driver gave a warning
 *   QUENRA_STATUS_INVALID_PARAMETER     handle is null
 *   QUENRA_STATUS_NO_CONTROLLER         no controller interface is present, or the machine is not
 *                                       one that the library serves
 *   QUENRA_STATUS_GENERIC_FAILURE       more than one controller or Marten interface is present
 *   QUENRA_STATUS_NOT_SUPPORTED         the machine's memory devices cannot be read from its table
 *   QUENRA_STATUS_OUT_OF_MEMORY, QUENRA_STATUS_MEMORY_FULL
 *   QUENRA_STATUS_ACCESS_DENIED, ...    what the system or the driver reported
 */
int32_t QUENRA_openController(uint64_t* handle);

/* Drops one open; the last one closes the controller. Other handle values, and closing more often
 * than opening, are ignored. */
void QUENRA_closeController(uint64_t handle);

/* Reads a text attribute.
 *
 * attribute: an id of QUENRA_TextAttribute, with instance and selector where they apply.
 * buffer:    out; receives the text as UTF-8, and a NUL.
 * size:      in: the buffer's size in bytes; 0 to query the size needed. Out: with
 *            QUENRA_STATUS_BUFFER_TOO_SMALL the size needed, NUL included; with success or a warning
 *            from the Marten interface the bytes that the driver filled; else unchanged.
 *
 * The library terminates a text of the Marten interface that the driver returns without a NUL. When
 * such a text fills the buffer, the code is QUENRA_STATUS_BUFFER_TOO_SMALL, *size is one byte larger,
 * and the buffer holds an empty text. To read a text of any length, repeat the call with a buffer of
 * *size bytes for as long as it returns QUENRA_STATUS_BUFFER_TOO_SMALL.
 *
 * QUENRA_ATTRIBUTE_DEVICE_PATH needs no open controller and accepts any handle.
 *
 * A field that is malformed in the machine's table reads as success with the buffer unchanged: store
 * a NUL in the buffer before the call if that matters. A text that means that there is none ("Not
 * Applicable", a version that repeats the BIOS version) is not supported, and leaves an empty text in
 * the buffer.
 *
 * Returns
 *   0                                 done; without a size pointer: nothing was read
 *   positive                          done; the driver gave a warning
 *   QUENRA_STATUS_INVALID_HANDLE      bad handle, or no controller open
 *   QUENRA_STATUS_BUFFER_TOO_SMALL    *size holds the size needed (also for a null size pointer when
 *                                     the text is the device path or a location)
 *   QUENRA_STATUS_NOT_SUPPORTED       unknown id, or not on this machine
 *   QUENRA_STATUS_NO_CONTROLLER       the selected interface is not open; for the device path, no
 *                                     device is present
 *   QUENRA_STATUS_PATH_TOO_LONG       the device path needs more than 256 bytes
 *   QUENRA_STATUS_INVALID_PARAMETER   buffer is null although size is not too small
 *   others                            codes of the system or the driver
 */
int32_t QUENRA_getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer, uint64_t* size);

/* Reads an unsigned attribute.
 *
 * attribute: an id of QUENRA_UnsignedAttribute, with instance and selector where they apply.
 * value:     out, 4 bytes; 0 on most failures (see the ids for exceptions), untouched when the
 *            handle is bad or no controller is open.
 *
 * A field that is malformed in the machine's table reads as 0 with success.
 *
 * Returns
 *   0                                 done
 *   QUENRA_STATUS_INVALID_HANDLE      bad handle, or no controller open
 *   QUENRA_STATUS_INVALID_PARAMETER   value is null
 *   QUENRA_STATUS_NOT_SUPPORTED       unknown id, or not on this machine
 *   QUENRA_STATUS_NO_CONTROLLER       the interface selected is not open, or a field that decides
 *                                     the answer cannot be read
 *   others                            what the driver reported
 */
int32_t QUENRA_getAttributeU32(uint64_t handle, uint32_t attribute, uint32_t* value);

/* There is no signed attribute. value is untouched.
 *
 * Returns QUENRA_STATUS_INVALID_HANDLE for a bad handle or when no controller is open, else
 * QUENRA_STATUS_NOT_SUPPORTED. */
int32_t QUENRA_getAttributeI32(uint64_t handle, uint32_t attribute, int32_t* value);

/* There is no floating-point attribute. Returns as QUENRA_getAttributeI32. */
int32_t QUENRA_getAttributeDBL(uint64_t handle, uint32_t attribute, double* value);

/* Writes a text attribute. The driver decides which attributes it takes.
 *
 * attribute: an ordinary id is offered to the controller interface, whatever its selector, and what
 *            that does not take to the Marten interface. QUENRA_TEXT_SETTING_OF_BOTH goes to both, or
 *            with QUENRA_SELECTOR_MARTEN to the Marten interface alone; that the Marten interface is
 *            not there or does not take it is then no failure.
 * text:      at most 255 bytes of UTF-8 and a NUL.
 *
 * Returns
 *   0                                 done
 *   QUENRA_STATUS_INVALID_HANDLE      bad handle
 *   QUENRA_STATUS_NO_CONTROLLER       no controller open, or the machine's table does not say whether
 *                                     texts can be written
 *   QUENRA_STATUS_INVALID_PARAMETER   text is null
 *   QUENRA_STATUS_INVALID_VALUE       text is longer than 255 bytes; nothing was written
 *   QUENRA_STATUS_NOT_SUPPORTED       neither interface takes the attribute
 *   others                            what the driver reported */
int32_t QUENRA_setAttributeUTF8(uint64_t handle, uint32_t attribute, const char* text);

/* Writes an unsigned attribute: with QUENRA_SELECTOR_MARTEN to the Marten interface, else to the
 * controller interface. The driver decides which attributes it takes.
 *
 * Returns
 *   0                                 done
 *   QUENRA_STATUS_INVALID_HANDLE      bad handle, or no controller open
 *   QUENRA_STATUS_NO_CONTROLLER       the interface selected is not open
 *   others                            what the driver reported */
int32_t QUENRA_setAttributeU32(uint64_t handle, uint32_t attribute, uint32_t value);

/* The self-test: that a controller is open is all there is to test.
 *
 * Returns 0, or QUENRA_STATUS_INVALID_HANDLE for a bad handle or when no controller is open. */
int32_t QUENRA_performSelfTest(uint64_t handle);

/* Applies a firmware image, whatever versions are installed. Same as QUENRA_updateFirmware2 with option 1. */
int32_t QUENRA_updateFirmware(uint64_t handle, const void* image, uint64_t size);

/* Applies a firmware image. The call can take minutes. The calling thread must not use COM in a
 * single-threaded apartment.
 *
 * A failure restores the Marten's version marker; the driver keeps the firmware that it has accepted by
 * then. The files of an image stay in a folder of their own in the temporary directory, unless one of
 * them cannot be opened or a driver package cannot be installed.
 *
 * image:   `size` bytes, which the library only reads, and only during the call. Null or 0 bytes: an
 *          image without sections.
 * options: 0 skips BIOS firmware if the installed version is not older than one of the BIOS sections,
 *          and Marten firmware likewise; 1 skips nothing.
 *
 * Returns
 *   0                                 done, or nothing to do
 *   QUENRA_STATUS_INVALID_HANDLE      bad handle, or no controller open
 *   QUENRA_STATUS_DRIVE_PROTECTED     the system drive is encrypted
 *   QUENRA_STATUS_UPDATE_ENVIRONMENT  the state of disk encryption cannot be read; the system has no
 *                                     random bytes or no temporary directory; a folder or file cannot
 *                                     be created, or its name not converted; the tool for driver
 *                                     packages is missing
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
int32_t QUENRA_updateFirmware2(uint64_t handle, const void* image, uint64_t size, uint32_t options);

#ifdef __cplusplus
}
#endif

#endif
