#ifndef ZOAPAL_PROTONS_CPPNEWDELETE_TQUARANTINEDSTORAGE_H
#define ZOAPAL_PROTONS_CPPNEWDELETE_TQUARANTINEDSTORAGE_H

#include <cstddef>

namespace nQUENRA1400::nZOAPAL000 {

// The base of classes whose objects' addresses are handles of clients. The storage of a destroyed object
// stays allocated for a while, so that the heap does not reuse the address soon and a stale handle stays
// invalid. Any thread.
struct tQuarantinedStorage {
  // The storage of that many destroyed objects of the process is kept; one more releases the oldest.
  static constexpr size_t kCapacity = 256;

  // Throws std::bad_alloc. Not inline: compilers would compare the global operator with the delete below.
  static void* operator new(size_t size);
  static void operator delete(void* storage) noexcept;

  // Releases the storage of all destroyed objects. Takes no lock, since the loader calls it when threads
  // that held one no longer exist: no other call may overlap.
  static void releaseAll() noexcept;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
