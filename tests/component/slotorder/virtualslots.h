#ifndef TESTS_COMPONENT_SLOTORDER_VIRTUALSLOTS_H
#define TESTS_COMPONENT_SLOTORDER_VIRTUALSLOTS_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

// Both compilers of the project follow the Itanium C++ ABI, on Windows as well. Its pointer to a member
// function is a pair {ptr, adj}; on x86-64 the ptr of a virtual function is 1 plus the offset in bytes
// of the function's entry in the virtual table of its class.
#if !defined(__x86_64__) || !defined(__GXX_ABI_VERSION)
#error "reading virtual tables needs the Itanium C++ ABI on x86-64"
#endif

namespace nTests {

// The result for a member function that is not virtual.
inline constexpr size_t kNotVirtual = ~size_t{0};

// The index of a virtual member function's entry in the virtual table of its class.
template <class Member>
[[nodiscard]] size_t entryOf(Member member) {
  static_assert(sizeof member == 2 * sizeof(void*));
  uintptr_t pointer = 0;
  std::memcpy(&pointer, &member, sizeof pointer);
  return (pointer & 1) == 0 ? kNotVirtual : (pointer - 1) / sizeof(void*);
}

// An operation with the slot that its interface fixes and the entry that the compiler assigned.
struct tOperation {
  size_t slot;
  const char* name;
  size_t entry;
};
using tOperations = std::vector<tOperation>;

// A destructor counts as one slot and has two entries: complete and deleting. With the destructor in
// slot 0, slot n is entry n + 1.
inline constexpr size_t kEntryOfSlot0 = 1;

// The class adds its operations, counted from slot 0, to those of iInterfaceProxy, whose destructor and
// six operations have eight entries.
inline constexpr size_t kEntryOfAddedSlot0 = 8;

}  // namespace nTests

#endif
