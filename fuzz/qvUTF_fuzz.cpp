// Every converter takes every input, and valid text survives the way there and back.
#include "qvraTools/qvUTF.h"

#include <vector>

#include "FuzzInput.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUnicode.h"
#include "qvraTools/qvWString.h"

static void CheckWide(const std::string& aText) {
  size_t theCount = qvUnicode_UTF8ToWide(nullptr, aText.c_str(), 0);
  wchar_t* theWide = qvWString_S_FromUTF8(aText.c_str());
  FUZZ_REQUIRE((theWide != nullptr) == (theCount != static_cast<size_t>(-1)));
  if (theWide != nullptr) {
    FUZZ_REQUIRE(wcslen(theWide) == theCount);
    char* theBack = qvWString_S_ToUTF8(theWide);
    FUZZ_REQUIRE(aText == theBack);
    qvFree(theBack);
    qvFree(theWide);
  }
}

static void CheckLatin(const std::string& aText) {
  char* theUTF8 = qvUTF_ISO88591ToUTF8(aText.data(), aText.size());
  char* theBack = qvUTF_UTF8ToISO88591(theUTF8, strlen(theUTF8));
  if (aText.find('\0') == std::string::npos) {
    FUZZ_REQUIRE(aText == theBack);
  }
  qvFree(theBack);
  qvFree(theUTF8);
}

static void CheckModified(const std::string& aText) {
  int theLength = static_cast<int>(aText.size());
  int theSize = qvUTF_ModifiedUTF8LengthOfUTF8(aText.data(), theLength, 0);
  // The two bytes C0 80 are no UTF-8; meeting them ends the process on purpose.
  if (theSize < 0 || aText.find("\xC0\x80") != std::string::npos) {
    return;
  }
  std::vector<char> theModified(static_cast<size_t>(theSize));
  FUZZ_REQUIRE(qvUTF_UTF8ToModifiedUTF8(aText.data(), theLength, theModified.data(), theModified.size()) ==
               1);
  std::vector<char> theBack(theModified.size() + 1);
  qvUTF_ModifiedUTF8ToUTF8(theModified.data(), theSize - 1, theBack.data(), theBack.size());
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  std::string theText(reinterpret_cast<const char*>(aBytes), aLength);
  CheckWide(theText.c_str());
  CheckLatin(theText);
  CheckModified(theText);
  qvFree(qvUTF_UTF8ToISO88591(theText.data(), theText.size()));
  qvFree(qvUTF_UTF16BEToUTF8(theText.data(), theText.size()));
  qvFree(qvUTF_UTF16LEToUTF8(theText.data(), theText.size()));
  qvFree(qvUTF_UTF16BOMToUTF8(theText.data(), theText.size()));
  std::vector<char> theSmall(theText.size() / 2 + 1);
  qvUTF_ModifiedUTF8ToUTF8(theText.data(), static_cast<int>(theText.size()), theSmall.data(),
                           theSmall.size());
  std::string theCopy = theText;
  int theValid = qvUTF_MakeValidUTF8(theCopy.data(), static_cast<int>(theCopy.size()));
  FUZZ_REQUIRE(theValid >= 0 && static_cast<size_t>(theValid) <= theCopy.size());
  return 0;
}
