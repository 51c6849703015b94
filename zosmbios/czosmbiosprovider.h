#ifndef ZOSMBIOS_CZOSMBIOSPROVIDER_H
#define ZOSMBIOS_CZOSMBIOSPROVIDER_H

#include <cstdint>
#include <span>

#include "zoapal/protons/cppnewdelete/memoryallocation.h"
#include "zoapal/protons/status/tstatus.h"
#include "zosmbios/fieldid.h"
#include "zosmbios/tstructuretable.h"

namespace nQUENRA1400::nZOSMBIOS_1_1 {

// Codes of the provider.
inline constexpr int32_t kNoString = 240050;         // warning: the field refers to no string
inline constexpr int32_t kBufferTooSmall = -240051;  // the needed size is reported
inline constexpr int32_t kFieldNotFound = -240052;
inline constexpr int32_t kTableMalformed = -240053;
inline constexpr int32_t kNoTable = -240060;

// Read access to the machine's SMBIOS structure table: numbers at a byte offset of a structure,
// strings that a structure refers to, and the SMBIOS version.
//
// The owner installs the table; without one the first reader loads it. Readers may run concurrently
// as long as a table is present; install, clear and load must not overlap any other call.
class cZoSmBiosProvider {
 public:
  static constexpr uint32_t kVersionTextCapacity = 256;
  static constexpr uint32_t kMaxStringLength = 128;

  constexpr cZoSmBiosProvider() noexcept = default;
  cZoSmBiosProvider(const cZoSmBiosProvider&) = delete;
  cZoSmBiosProvider& operator=(const cZoSmBiosProvider&) = delete;
  virtual ~cZoSmBiosProvider() = default;

  // Replaces the table with the machine's own. Does nothing when the status holds an error; after a
  // failure the provider has no table.
  virtual void load(nZOAPALS100::tStatus& status) noexcept = 0;

  // Copies `table`, and at most 255 bytes of `version` up to its first NUL. A table of no bytes counts
  // as present: readers do not load another. When memory is short, the old table and version stay and
  // the status receives kMemoryFull.
  void install(std::span<const uint8_t> table, std::span<const char> version,
               nZOAPALS100::tStatus& status) noexcept;
  // Frees the table; the version stays.
  void clear() noexcept;

  [[nodiscard]] bool hasTable() const noexcept { return storage_ != nullptr; }
  [[nodiscard]] const tStructureTable& table() const noexcept { return table_; }
  [[nodiscard]] const char* versionText() const noexcept { return versionText_; }
  // The operating system's error of the last failed load.
  [[nodiscard]] uint32_t lastOsError() const noexcept { return lastOsError_; }

  // The numeric readers set the value and return 0. On failure they leave it unchanged and return
  //   kInvalidParameter  value is null
  //   kFieldNotFound     no such structure, the field lies beyond its end, or the field id has
  //                      another width
  //   kTableMalformed    the structure runs outside the table
  //   the code of a failed load
  [[nodiscard]] int32_t readByte(tFieldId field, uint32_t instance, uint8_t* value) noexcept;
  [[nodiscard]] int32_t readWord(tFieldId field, uint32_t instance, uint16_t* value) noexcept;
  [[nodiscard]] int32_t readQword(tFieldId field, uint32_t instance, uint64_t* value) noexcept;

  // As readWord, for the next structure of an enumeration of the field's type: kFieldNotFound after
  // the last. Reads of all instances together pass through the table once, with or without the index.
  [[nodiscard]] int32_t readNextWord(tStructuresOfType& structures, tFieldId field,
                                     uint16_t& value) const noexcept;

  // Reads a string, or with kVersionText the version. `size`: in the buffer's bytes; out, with
  // kBufferTooSmall, the bytes needed, NUL included. The buffer may be null when `size` is 0. Status
  // codes: kNoString (an empty string is stored unless `size` is 0), kBufferTooSmall, kFieldNotFound,
  // kTableMalformed, kInvalidParameter (null size, or null buffer of a sufficient size), or the code
  // of a failed load.
  void getString(tFieldId field, uint32_t instance, char* buffer, uint32_t* size,
                 nZOAPALS100::tStatus& status) noexcept;
  // As getString, with a record that exists only if there is something to report.
  void readText(tFieldId field, uint32_t instance, char* buffer, uint32_t* size,
                nZOAPALS100::tFailureRecord& failure) noexcept;

  // The steps of the readers.
  void findStructure(uint8_t type, uint32_t instance, tStructureOffset* structure,
                     nZOAPALS100::tStatus& status) const noexcept;
  void checkField(tStructureOffset structure, tFieldId field,
                  nZOAPALS100::tStatus& status) const noexcept;

 protected:
  void setLastOsError(uint32_t error) noexcept { lastOsError_ = error; }

 private:
  // The code and the location of a failure. The numeric readers report the code only: they create no
  // status record, which would take longer than the read.
  struct tRefusal;

  // Null when the structure exists.
  const tRefusal* locate(uint8_t type, uint32_t instance,
                         tStructureOffset& structure) const noexcept;
  // Null when the field lies inside the structure and the table.
  [[nodiscard]] const tRefusal* refusalOf(tStructureOffset structure,
                                          tFieldId field) const noexcept;
  template <class Value>
  int32_t readNumber(tWidthClass width, tFieldId field, uint32_t instance, Value* value) noexcept;
  template <class Value>
  int32_t readNumberAt(tStructureOffset structure, tWidthClass width, tFieldId field,
                       Value* value) const noexcept;
  void readStructureText(tFieldId field, uint32_t instance, char* buffer, uint32_t* size,
                         nZOAPALS100::tFailureRecord& failure) const noexcept;
  void readVersion(tFieldId field, uint32_t instance, char* buffer, uint32_t* size,
                   nZOAPALS100::tFailureRecord& failure) const noexcept;

  nZOAPAL000::tByteBuffer storage_;
  tStructureTable table_;
  tStructureIndex index_;
  char versionText_[kVersionTextCapacity] = {};
  uint32_t lastOsError_ = 0;
};

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
