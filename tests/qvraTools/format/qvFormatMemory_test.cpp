// What the formatting functions allocate: nothing, or one block of the right size.
#include <float.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <stddef.h>

#include <string>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvMalloc.h"
#include "support/CountedMalloc.h"
#include "support/HeapUse.h"
#include "support/Sanitizers.h"

// The formats are cut or changed on purpose.
#pragma GCC diagnostic ignored "-Wformat"

TEST(qvFormatMemory, BoundedOutputAllocatesNothing) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizers have their own malloc";
  }
  char theBuffer[64];
  wchar_t theWideBuffer[64];
  int theCount = 0;
  size_t theBefore = sAllocations;
  qv_snprintf(theBuffer, 64, "%d %5llx %s %ls %c %lc %p%n", 1, 2LL, "a", L"\u20ac", 'b', L'c', theBuffer,
              &theCount);
  qv_snprintf(theBuffer, 64, "%.1000f %.800e %g %a", 1e300, 5e-324, 0.1, 0.1);
  qv_snprintf(theBuffer, 64, "%.17000Lf %.12000Le %Lg %La", LDBL_TRUE_MIN, LDBL_TRUE_MIN, 0.1L, 0.1L);
  qv_snprintf(theBuffer, 64, "%2147483647d", 1);
  qv_snprintf(theBuffer, 64, "%64$d", 1);
  qv_swprintf(theWideBuffer, 64, L"%2$.3f %1$100s", "\xe2\x82\xac", 0.1);
  EXPECT_EQ(theBefore, sAllocations);
  qvFree(qv_mnprintf("%d", 1));
  EXPECT_EQ(theBefore + 1, sAllocations) << "one block, and the count sees it";
}

TEST(qvFormatMemory, TheBlockHasTheSizeOfTheTextAndItsTerminator) {
  char* theText = qv_mnprintf("%5000d", 1);
  EXPECT_LE(5001u, malloc_usable_size(theText));
  EXPECT_GT(5001u + 32, malloc_usable_size(theText)) << "but for what the allocator rounds up";
  qvFree(theText);
  wchar_t* theWideText = qv_mwprintf(L"%5000d", 1);
  EXPECT_LE(4 * 5001u, malloc_usable_size(theWideText));
  EXPECT_GT(4 * 5001u + 32, malloc_usable_size(theWideText));
  qvFree(theWideText);
}

TEST(qvFormatMemory, TheBlockIsFreedWhenThePassThatFillsItFails) {
  // The pass that measures stores its count, 300 or in a byte ',', over the 'd' of its own format.
  ExpectNoHeapGrowth([] {
    char theFormat[] = "%300d%hhn";
    size_t theLength = 99;
    EXPECT_EQ(nullptr, qv_lmnprintf(&theLength, theFormat, 1, theFormat + 4));
    EXPECT_STREQ("%300,%hhn", theFormat);
    EXPECT_EQ(0u, theLength);
  });
}

TEST(qvFormatMemory, TheBlockIsFilledUpToTheMeasuredLength) {
  // The pass that measures stores its count over the end of the text that it has read: the pass that fills
  // finds a longer one, and counts 303, in a byte '/'.
  char theText[] = "a\0b";
  size_t theLength = 0;
  char* theOutput = qv_lmnprintf(&theLength, "%300d%s%hhn", 1, theText, theText + 1);
  EXPECT_STREQ("a/b", theText);
  EXPECT_EQ(301u, theLength);
  EXPECT_EQ(std::string(299, ' ') + "1a", theOutput);
  qvFree(theOutput);
}
