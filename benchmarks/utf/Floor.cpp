// The least that a conversion can cost: copying as many bytes as the larger of its two sides has, into the
// room or, where the library gives a block of its own, into a new block.

#include "Workload.h"

#include <cstdlib>
#include <cstring>

static void CopyWide(const Sample& aSample, Result& aResult) {
  memcpy(aResult.Room(), aSample.mWide.data(), aSample.mWide.size() * sizeof(wchar_t));
  aResult.Show(aResult.Room(), 0);
}

static void CopyUTF8(const Sample& aSample, Result& aResult) {
  memcpy(aResult.Room(), aSample.mUTF8.data(), aSample.mUTF8.size());
  aResult.Show(aResult.Room(), 0);
}

static void CopyToBlock(const std::string& aBytes, Result& aResult) {
  char* theBlock = static_cast<char*>(malloc(aBytes.size() + 1));
  memcpy(theBlock, aBytes.data(), aBytes.size() + 1);
  aResult.Show(theBlock, 0);
  free(theBlock);
}

static void CopyFromUTF16(const Sample& aSample, Result& aResult) {
  bool theUTF16Flag = aSample.mUTF16Big.size() > aSample.mUTF8.size();
  CopyToBlock(theUTF16Flag ? aSample.mUTF16Big : aSample.mUTF8, aResult);
}

static void CopyUTF8ToBlock(const Sample& aSample, Result& aResult) { CopyToBlock(aSample.mUTF8, aResult); }

static const TextRow sRows[] = {
    UTF_ROWS(ROW_UTF8_TO_WIDE, "floor: memcpy", CopyWide, NothingOf),
    UTF_ROWS(ROW_WIDE_TO_UTF8, "floor: memcpy", CopyWide, NothingOf),
    UTF_ROWS(ROW_VALIDATE, "floor: memcpy", CopyUTF8, NothingOf),
    UTF_ROWS(ROW_LITTLE, "floor: memcpy", CopyFromUTF16, NothingOf),
    UTF_ROWS(ROW_BIG, "floor: memcpy", CopyFromUTF16, NothingOf),
    ISO_ROWS(ROW_ISO_TO_UTF8, "floor: memcpy", CopyUTF8ToBlock, NothingOf),
    ISO_ROWS(ROW_UTF8_TO_ISO, "floor: memcpy", CopyUTF8ToBlock, NothingOf),
};
