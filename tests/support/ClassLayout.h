// ClassLayout.h - where the fields and the virtual operations of a class are, for tests of a binary
// interface.
#ifndef TESTS_SUPPORT_CLASSLAYOUT_H
#define TESTS_SUPPORT_CLASSLAYOUT_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

// The offset of a field in an object, in bytes. (offsetof is for classes without virtual operations.)
template <class Object, class Field>
size_t OffsetIn(const Object& anObject, const Field& aField) {
  return static_cast<size_t>(reinterpret_cast<const char*>(&aField) -
                             reinterpret_cast<const char*>(&anObject));
}

// The position of a virtual operation in the table of virtual operations; the two entries of the destructor
// count. A pointer to a virtual member function begins with the entry's offset, on some targets plus 1.
template <class MemberFunction>
size_t SlotOf(MemberFunction aFunction) {
  uintptr_t theOffset;
  static_assert(sizeof(aFunction) >= sizeof(theOffset), "pointer to member function");
  memcpy(&theOffset, &aFunction, sizeof(theOffset));
  return (theOffset & ~static_cast<uintptr_t>(1)) / sizeof(void*);
}

// Picks the number for the pointer size of the target.
constexpr size_t ByPointerSize(size_t a32Bit, size_t a64Bit) { return sizeof(void*) == 4 ? a32Bit : a64Bit; }

#endif
