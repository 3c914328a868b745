#include "TextRecipe.h"

#include <algorithm>

#include "FuzzInput.h"
#include "UTFModel.h"

namespace {

// Characters that follow each other, or the same one again and again.
std::string Run(uint32_t aFirst, uint32_t aStep, size_t aCount) {
  std::string theText;
  for (size_t i = 0; i < aCount; ++i) {
    theText += EncodeUTF8(aFirst + aStep * static_cast<uint32_t>(i));
  }
  return theText;
}

// The upper three bits of a byte say what is added, the lower five how often.
std::string Ingredient(uint8_t aByte, FuzzInput* anInput, const std::string& aSoFar) {
  size_t theCount = 1 + (aByte & 0x1F);
  switch (aByte >> 5) {
    case 0:
      return anInput->Bytes(theCount);
    case 1:
      return Run(' ' + anInput->Byte() % 32u, 1, theCount);
    case 2:
      return Run(0x80 + anInput->Byte() * 7u, 1, theCount);
    case 3:
      return Run(0x800 + anInput->Byte() * 0xF0u, 5, theCount);
    case 4:
      return Run(0x10000 + anInput->Byte() * 0x1000u, 0, theCount % 4 + 1);
    case 5:
      return Run(0x200000 + anInput->Byte() * 0x600000u, 0, theCount % 4 + 1);
    case 6: {
      // The end once more, or again and again until nearly a whole piece is there.
      std::string theEnd = aSoFar.substr(aSoFar.size() - std::min<size_t>(aSoFar.size(), 16));
      size_t theTimes = theCount == 32 && !theEnd.empty() ? 4080 / theEnd.size() : theCount;
      std::string theText;
      while (theTimes-- > 0) {
        theText += theEnd;
      }
      return theText;
    }
    default:
      return std::string(1, static_cast<char>(anInput->Byte()));
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
    uint8_t theByte = theInput.Byte();
    theText += Ingredient(theByte, &theInput, theText);
  }
  theText.resize(std::min(theText.size(), aMaxLength));
  return theText;
}
