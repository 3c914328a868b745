// HeapUse.h - tells whether code gives all memory back.
#ifndef TESTS_SUPPORT_HEAPUSE_H
#define TESTS_SUPPORT_HEAPUSE_H

#include <gtest/gtest.h>
#include <malloc.h>
#include <stddef.h>

// Runs aBody many times and expects that the heap does not grow. The first runs fill the allocator's own
// stock of free blocks, which counts as used. Under a sanitizer the leak check does the work instead.
template <class Body>
void ExpectNoHeapGrowth(const Body& aBody) {
  size_t theBytes[2];
  for (size_t& theCount : theBytes) {
    for (int i = 0; i < 100; ++i) {
      aBody();
    }
    const struct mallinfo2 theUse = mallinfo2();
    theCount = theUse.uordblks + theUse.hblkhd;  // large blocks are mapped one by one
  }
  EXPECT_EQ(theBytes[0], theBytes[1]);
}

#endif
