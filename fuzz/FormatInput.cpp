#include "FormatInput.h"

#include <math.h>

#include "qvraTools/qvUTF.h"

FormatInput::FormatInput(FuzzInput* anInput, bool afPlainText)
    : mInput(anInput), mfPlainText(afPlainText), mfPositions((anInput->Byte() & 1) != 0) {
  do {
    AddLiteral();
    AddDirective();
    // A directive takes up to three arguments.
  } while (mInput->BytesLeft() > 0 && mArguments.size() + 3 <= kMaxArguments);
  AddLiteral();
}

// Valid UTF-8 without zero bytes, so that no directive cuts a character in two by accident.
std::string FormatInput::MakeText(size_t aMaxLength) {
  std::string theText = mInput->Bytes(mInput->Byte() % (aMaxLength + 1)).c_str();
  for (char& theChar : theText) {
    theChar = mfPlainText ? static_cast<char>(theChar & 0x7F) : theChar;
  }
  theText.resize(static_cast<size_t>(qvUTF_MakeValidUTF8(theText.data(), static_cast<int>(theText.size()))));
  return theText.c_str();
}

void FormatInput::AddLiteral() {
  for (char theChar : MakeText(8)) {
    mFormat += theChar == '%' ? "%%" : std::string(1, theChar);
  }
}

// The position of the argument that was added last, if the format names positions.
std::string FormatInput::Position() const {
  return mfPositions ? std::to_string(mArguments.size()) + "$" : "";
}

void FormatInput::AddInteger(FormatArgument::Type aType, long long aNumber) {
  mArguments.push_back({aType, aNumber, 0.0, ""});
}

// A width or a precision: nothing, digits, or an argument, which may be negative.
std::string FormatInput::MakeSize(int aMax) {
  int theNumber = mInput->Byte() * 256 + mInput->Byte();
  int theSize = theNumber / 4 % (aMax + 1);
  switch (theNumber % 4) {
    case 0:
      return "";
    case 1:
      // With positions, the platform's printf forgets that a negative width turns the flag 0 off.
      AddInteger(FormatArgument::kInt, mfPositions || theNumber % 8 == 1 ? theSize : -theSize);
      return "*" + Position();
    default:
      return std::to_string(theSize);
  }
}

void FormatInput::AddDirective() {
  static const char kFlags[] = "-+ #0";
  static const char* const kIntModifiers[] = {"", "h", "hh"};
  static const char* const kLongModifiers[] = {"ll", "j", "l", "z", "t"};
  uint8_t theKind = mInput->Byte();
  std::string theParts;
  for (uint8_t i = 0, theFlags = mInput->Byte(); i < 5; ++i) {
    theParts += (theFlags >> i & 1) != 0 ? std::string(1, kFlags[i]) : "";
  }
  std::string theWidth = MakeSize(300);
  theParts += theWidth == "0" ? "" : theWidth;
  std::string thePrecision = MakeSize(120);
  theParts += thePrecision.empty() ? "" : "." + thePrecision;
  uint8_t theChoice = mInput->Byte();
  // Which kinds of long integers have 64 bits depends on the target.
  size_t theLongModifiers = sizeof(long) == sizeof(long long) ? 5 : 2;
  switch (theKind % 5) {
    case 0:
      AddInteger(FormatArgument::kInt, static_cast<int>(mInput->Number()));
      theParts += kIntModifiers[theKind / 5 % 3];
      theParts += "diuoxX"[theChoice % 6];
      break;
    case 1:
      AddInteger(FormatArgument::kLongLong, static_cast<long long>(mInput->Number()));
      theParts += kLongModifiers[theKind / 5 % theLongModifiers];
      theParts += "diuoxX"[theChoice % 6];
      break;
    case 2: {
      uint64_t theBits = mInput->Number();
      double theDouble;
      memcpy(&theDouble, &theBits, sizeof(theDouble));
      // Of a NaN the library prints no sign.
      mArguments.push_back({FormatArgument::kDouble, 0, isnan(theDouble) ? 1.0 : theDouble, ""});
      theParts += "eEfFgGaA"[theChoice % 8];
      break;
    }
    case 3:
      mArguments.push_back({FormatArgument::kText, 0, 0.0, MakeText(64)});
      theParts += "s";
      break;
    default:
      AddInteger(FormatArgument::kInt, mfPlainText ? theChoice % 128 : theChoice % 127 + 1);
      theParts += "c";
  }
  mFormat += "%" + Position() + theParts;
}
