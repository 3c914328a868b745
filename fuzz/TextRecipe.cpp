#include "TextRecipe.h"

#include <algorithm>

#include "FuzzInput.h"
#include "tests/support/UTFModel.h"

namespace {

// Characters that follow each other, or the same one again and again.
void AppendRun(uint32_t aFirst, uint32_t aStep, size_t aCount, std::string& aText) {
  for (size_t i = 0; i < aCount; ++i) {
    AppendUTF8(aFirst + aStep * static_cast<uint32_t>(i), aText);
  }
}

// The end once more, or again and again until nearly a whole piece is there.
void AppendEnd(size_t aCount, std::string& aText) {
  std::string theEnd = aText.substr(aText.size() - std::min<size_t>(aText.size(), 16));
  size_t theTimes = aCount == 32 && !theEnd.empty() ? 4080 / theEnd.size() : aCount;
  while (theTimes-- > 0) {
    aText += theEnd;
  }
}

// The upper three bits of a byte say what is added, the lower five how often.
void AppendIngredient(uint8_t aByte, FuzzInput* anInput, std::string& aText) {
  size_t theCount = 1 + (aByte & 0x1F);
  switch (aByte >> 5) {
    case 0:
      aText += anInput->Bytes(theCount);
      break;
    case 1:
      AppendRun(' ' + anInput->Byte() % 32u, 1, theCount, aText);
      break;
    case 2:
      AppendRun(0x80 + anInput->Byte() * 7u, 1, theCount, aText);
      break;
    case 3:
      AppendRun(0x800 + anInput->Byte() * 0xF0u, 5, theCount, aText);
      break;
    case 4:
      AppendRun(0x10000 + anInput->Byte() * 0x1000u, 0, theCount % 4 + 1, aText);
      break;
    case 5:
      AppendRun(0x200000 + anInput->Byte() * 0x600000u, 0, theCount % 4 + 1, aText);
      break;
    case 6:
      AppendEnd(theCount, aText);
      break;
    default:
      aText += static_cast<char>(anInput->Byte());
  }
}

}  // namespace

std::string MakeText(const std::string& anInput, size_t aMaxLength) {
  if (anInput.empty() || anInput[0] != '\x01') {
    return anInput;
  }
  FuzzInput theInput(reinterpret_cast<const uint8_t*>(anInput.data()) + 1, anInput.size() - 1);
  std::string theText;
  while (theInput.BytesLeft() > 0 && theText.size() < aMaxLength) {
    AppendIngredient(theInput.Byte(), &theInput, theText);
  }
  theText.resize(std::min(theText.size(), aMaxLength));
  return theText;
}
