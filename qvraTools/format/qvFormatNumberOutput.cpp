#include "qvraTools/format/qvFormatNumberOutput_p.h"

#include "qvraTools/format/qvFormatNumber_p.h"

template <typename Char>
static void qvFormat_S_Fill(Char aChar, uint32 aCount, qvFormatOutput<Char>* anOutput) {
  if (aCount > 0) {
    anOutput->Fill(aChar, aCount);
  }
}

template <typename Char>
static void qvFormat_S_WriteNumber(const qvFormatNumber& aNumber, qvFormatOutput<Char>* anOutput) {
  qvFormat_S_Fill<Char>(' ', aNumber.mBlanksBefore, anOutput);
  for (uint32 theIndex = 0; theIndex < aNumber.mPrefixLength; ++theIndex) {
    anOutput->Put(aNumber.mPrefix[theIndex]);
  }
  qvFormat_S_Fill<Char>('0', aNumber.mZerosBefore, anOutput);
  anOutput->AppendASCII(aNumber.mDigits, aNumber.mDigitCount);
  if (aNumber.mfPoint) {
    anOutput->Put('.');
    qvFormat_S_Fill<Char>('0', aNumber.mZerosBehindPoint, anOutput);
    anOutput->AppendASCII(aNumber.mFraction, aNumber.mFractionCount);
    qvFormat_S_Fill<Char>('0', aNumber.mZerosAfter, anOutput);
  }
  if (aNumber.mSuffixLength > 0) {
    anOutput->AppendASCII(aNumber.mSuffix + sizeof aNumber.mSuffix - aNumber.mSuffixLength,
                          aNumber.mSuffixLength);
  }
  qvFormat_S_Fill<Char>(' ', aNumber.mBlanksAfter, anOutput);
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
