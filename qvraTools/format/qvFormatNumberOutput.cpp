#include "qvraTools/format/qvFormatNumberOutput_p.h"

#include "qvraTools/format/qvFormatNumber_p.h"

// An output that has room for the whole number, and needs not count.
template <typename Char>
class qvFormatRoomyOutput {
 public:
  explicit qvFormatRoomyOutput(Char* aNext) : mNext(aNext) {}

  void Put(Char aChar) { *mNext++ = aChar; }
  void AppendASCII(const char* aText, uint32 aLength) {
    for (uint32 theIndex = 0; theIndex < aLength; ++theIndex) {
      mNext[theIndex] = static_cast<Char>(aText[theIndex]);
    }
    mNext += aLength;
  }
  void Fill(Char aChar, uint32 aLength) {
    for (; aLength > 0; --aLength) {
      *mNext++ = aChar;
    }
  }

 private:
  Char* mNext;
};

template <typename Output>
static void qvFormat_S_WriteParts(const qvFormatNumber& aNumber, Output* anOutput) {
  anOutput->Fill(' ', aNumber.mBlanksBefore);
  anOutput->AppendASCII(aNumber.mPrefix, aNumber.mPrefixLength);
  anOutput->Fill('0', aNumber.mZerosBefore);
  anOutput->AppendASCII(aNumber.mDigits, aNumber.mDigitCount);
  if (aNumber.mfPoint) {
    anOutput->Put('.');
    anOutput->Fill('0', aNumber.mZerosBehindPoint);
    anOutput->AppendASCII(aNumber.mFraction, aNumber.mFractionCount);
    anOutput->Fill('0', aNumber.mZerosAfter);
  }
  anOutput->AppendASCII(aNumber.mSuffix + sizeof aNumber.mSuffix - aNumber.mSuffixLength,
                        aNumber.mSuffixLength);
  anOutput->Fill(' ', aNumber.mBlanksAfter);
}

template <typename Char>
static void qvFormat_S_WriteNumber(const qvFormatNumber& aNumber, qvFormatOutput<Char>* anOutput) {
  Char* theNext = anOutput->Reserve(aNumber.mLength);
  if (theNext != nullptr) {
    qvFormatRoomyOutput<Char> theOutput(theNext);
    qvFormat_S_WriteParts(aNumber, &theOutput);
    anOutput->Wrote(aNumber.mLength);
  } else {
    qvFormat_S_WriteParts(aNumber, anOutput);
  }
}

template <typename Char>
void qvFormatNumber_WriteInteger(const qvFormatDirective& aDirective, uint64 aValue,
                                 qvFormatOutput<Char>* anOutput) {
  char theBuffer[kqvFormatInteger_BufferSize];
  qvFormatNumber theNumber;
  qvFormatNumber_SetInteger(aDirective, aValue, theBuffer, &theNumber);
  qvFormat_S_WriteNumber(theNumber, anOutput);
}

template <typename Char>
void qvFormatNumber_WritePointer(const qvFormatDirective& aDirective, const void* aValue,
                                 qvFormatOutput<Char>* anOutput) {
  char theBuffer[kqvFormatInteger_BufferSize];
  qvFormatNumber theNumber;
  qvFormatNumber_SetPointer(aDirective, aValue, theBuffer, &theNumber);
  qvFormat_S_WriteNumber(theNumber, anOutput);
}

template <typename Char>
void qvFormatNumber_WriteDouble(const qvFormatDirective& aDirective, double aValue,
                                qvFormatOutput<Char>* anOutput) {
  qvFormatDigitsRoom<kqvFormatDouble_MaxWords> theRoom;
  qvFormatNumber theNumber;
  qvFormatNumber_SetDouble(aDirective, aValue, qvFormatDigitsPlace(&theRoom), &theNumber);
  qvFormat_S_WriteNumber(theNumber, anOutput);
}

template <typename Char>
void qvFormatNumber_WriteLongDouble(const qvFormatDirective& aDirective, long double aValue,
                                    qvFormatOutput<Char>* anOutput) {
  qvFormatDigitsRoom<kqvFormatLongDouble_MaxWords> theRoom;
  qvFormatNumber theNumber;
  qvFormatNumber_SetLongDouble(aDirective, aValue, qvFormatDigitsPlace(&theRoom), &theNumber);
  qvFormat_S_WriteNumber(theNumber, anOutput);
}

template void qvFormatNumber_WriteInteger(const qvFormatDirective&, uint64, qvFormatOutput<char>*);
template void qvFormatNumber_WriteInteger(const qvFormatDirective&, uint64, qvFormatOutput<wchar_t>*);
template void qvFormatNumber_WritePointer(const qvFormatDirective&, const void*, qvFormatOutput<char>*);
template void qvFormatNumber_WritePointer(const qvFormatDirective&, const void*, qvFormatOutput<wchar_t>*);
template void qvFormatNumber_WriteDouble(const qvFormatDirective&, double, qvFormatOutput<char>*);
template void qvFormatNumber_WriteDouble(const qvFormatDirective&, double, qvFormatOutput<wchar_t>*);
template void qvFormatNumber_WriteLongDouble(const qvFormatDirective&, long double, qvFormatOutput<char>*);
template void qvFormatNumber_WriteLongDouble(const qvFormatDirective&, long double, qvFormatOutput<wchar_t>*);
