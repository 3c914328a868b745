/* qvFormatArguments_p.h - the arguments of one call, taken in order or by position. */
#ifndef QVRATOOLS_FORMAT_QVFORMATARGUMENTS_P_H
#define QVRATOOLS_FORMAT_QVFORMATARGUMENTS_P_H

#include <stdarg.h>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/format/qvFormatDirective_p.h"
#include "qvraTools/format/qvFormatEngine_p.h"

union qvFormatValue {
  uint64 mInteger;  // sign-extended when the argument is signed
  double mDouble;
  long double mLongDouble;
  void* mPointer;
};

class qvFormatArguments {
 public:
  explicit qvFormatArguments(qvFormatList* aList) : mList(aList->mList), mMode(kMode_Unused), mNamed(0) {}
  qvFormatArguments(const qvFormatArguments&) = delete;
  qvFormatArguments& operator=(const qvFormatArguments&) = delete;

  // Fills in width and precision that come from the arguments, and gives the value to be printed. Returns 0
  // or a VEXA_ error code. Until BuildTable was called, directives with a position are VEXA_EINVAL;
  // afterwards those without one.
  int Take(qvFormatDirective* aDirective, qvFormatValue* aValue);

  // Reads all arguments by the directives of a format from aNext, the first "%" with a position, to the end.
  // Returns 0, or a VEXA_ error code with aNext at the character where it was found.
  template <typename Char>
  int BuildTable(const Char*& aNext);

  // The next argument, of a directive without positions; only while IsInOrder.
  int TakeNextInt() {
    mMode = kMode_InOrder;
    return va_arg(mList, int);
  }
  uint64 TakeNextLong(bool afSigned) {
    mMode = kMode_InOrder;
    long theValue = va_arg(mList, long);
    return afSigned ? static_cast<uint64>(static_cast<int64>(theValue))
                    : static_cast<unsigned long>(theValue);
  }
  uint64 TakeNextLongLong() {
    mMode = kMode_InOrder;
    return static_cast<uint64>(va_arg(mList, long long));
  }
  double TakeNextDouble() {
    mMode = kMode_InOrder;
    return va_arg(mList, double);
  }
  const void* TakeNextPointer() {
    mMode = kMode_InOrder;
    return va_arg(mList, const void*);
  }
  bool IsInOrder() const { return mMode != kMode_ByPosition; }

  // True before the first directive was taken or the table was built.
  bool IsUnused() const { return mMode == kMode_Unused; }

 private:
  enum Mode : uint8 { kMode_Unused, kMode_InOrder, kMode_ByPosition };

  void Read(uint8 aKind, qvFormatValue* aValue);
  int TakeInt(int aPosition);
  int NameAll(const qvFormatDirective& aDirective);
  int Name(int aPosition, uint8 aKind);

  va_list& mList;
  Mode mMode;
  int mNamed;                           // the highest position named by the format
  uint8 mKinds[kqvFormat_MaxPosition];  // by position - 1; both tables are unset until BuildTable
  qvFormatValue mValues[kqvFormat_MaxPosition];
};

extern template int qvFormatArguments::BuildTable(const char*& aNext);
extern template int qvFormatArguments::BuildTable(const wchar_t*& aNext);

#endif
