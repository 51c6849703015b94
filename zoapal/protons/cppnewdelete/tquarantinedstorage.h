#ifndef ZOAPAL_PROTONS_CPPNEWDELETE_TQUARANTINEDSTORAGE_H
#define ZOAPAL_PROTONS_CPPNEWDELETE_TQUARANTINEDSTORAGE_H

#include <cstddef>

namespace nQUENRA1400::nZOAPAL000 {

// The base of classes whose objects' addresses are handles: the storage of a destroyed object passes to
// the storageQuarantine(), whose header this one does not include, to keep windows.h out of interfaces.
struct tQuarantinedStorage {
  // Throws std::bad_alloc. Not inline: compilers would compare the global operator with the delete below.
  static void* operator new(size_t size);
  static void operator delete(void* storage) noexcept;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
