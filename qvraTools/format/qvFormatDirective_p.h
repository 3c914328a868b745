/* qvFormatDirective_p.h - one directive of a format, and how it is read. */
#ifndef QVRATOOLS_FORMAT_QVFORMATDIRECTIVE_P_H
#define QVRATOOLS_FORMAT_QVFORMATDIRECTIVE_P_H

#include "qvOS/qvTypes.h"

#define kqvFormatFlag_Left        0x01 /* - */
#define kqvFormatFlag_Plus        0x02 /* + */
#define kqvFormatFlag_Space       0x04 /* blank */
#define kqvFormatFlag_Alternative 0x08 /* # */
#define kqvFormatFlag_Zero        0x10 /* 0 */

enum qvFormatLength : uint8 {
  kqvFormatLength_None,
  kqvFormatLength_Char,        // hh
  kqvFormatLength_Short,       // h
  kqvFormatLength_Long,        // l
  kqvFormatLength_LongLong,    // ll
  kqvFormatLength_LongDouble,  // L
  kqvFormatLength_IntMax,      // j
  kqvFormatLength_PtrDiff,     // t
  kqvFormatLength_Size         // z
};

enum qvFormatClass : uint8 {
  kqvFormatClass_Invalid,
  kqvFormatClass_Signed,     // d i
  kqvFormatClass_Unsigned,   // u o x X
  kqvFormatClass_Real,       // e E f F g G a A
  kqvFormatClass_Character,  // c
  kqvFormatClass_Text,       // s
  kqvFormatClass_Pointer,    // p
  kqvFormatClass_Count       // n
};

#define kqvFormat_NoPrecision (-1)

struct qvFormatDirective {
  uint8 mFlags;
  qvFormatLength mLength;
  qvFormatClass mClass;
  char mConversion;
  bool mfWidthFromArgument;
  bool mfPrecisionFromArgument;
  int mWidth;      // 0 when there is none
  int mPrecision;  // kqvFormat_NoPrecision when there is none
  // Which argument is meant, from 1 on; 0 is the next one.
  int mPosition;
  int mWidthPosition;
  int mPrecisionPosition;
};

// Reads the directive whose "%" stands before aNext. Returns 0 with aNext behind the directive, or a VEXA_
// error code with aNext at the character where it was found.
template <typename Char>
int qvFormat_ParseDirective(const Char*& aNext, qvFormatDirective* aDirective);

extern template int qvFormat_ParseDirective(const char*& aNext, qvFormatDirective* aDirective);
extern template int qvFormat_ParseDirective(const wchar_t*& aNext, qvFormatDirective* aDirective);

#endif
