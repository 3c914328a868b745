/* CString.h - the shared string: a byte string that copies by counting and is copied when it is written.
 *
 * qvCString holds 8-bit characters, normally UTF-8, and a length, so zero bytes may stand inside. Copying
 * one adds to a counter; the first write to a text with several owners copies it. All strings without
 * characters share one static text, so an empty string allocates nothing. Text that exists already can be
 * wrapped without copying (FromStaticString, FromAllocatedString).
 *
 * What holds for every function:
 *   - A null `const char*` counts as "" unless the function says that it fails an assertion. The bare NULL is
 *     a number for some compilers: qvCString(NULL) may be the text "0", qvCString(nullptr) is empty.
 *   - Arguments may point into the string that is being changed.
 *   - Positions and lengths count bytes. A position that was not found is qvCString::npos.
 *   - An empty needle is never found.
 *   - Allocation never fails: the process ends instead. A text longer than about 4 GB fails an assertion.
 *   - Counters are plain integers. Copies that share a text belong to one thread at a time, together. */
#ifndef QV_CSTRING_H
#define QV_CSTRING_H

#include <string.h>

#include "qv/CharBuffer.h"
#include "qvOS/qvTypes.h"
#include "qvraTools/qvAssert.h"

/* Values of qvCStringData::mAllocatedLength that mark a text whose characters are kept elsewhere. */
#define kqvCStringData_MaxAllocatedLength 0xFFFFFFFDU /* the largest value that is a capacity */
#define kqvCStringData_StaticText         0xFFFFFFFEU /* the characters are not owned         */
#define kqvCStringData_AllocatedText      0xFFFFFFFFU /* the characters are owned: free       */

/* Characters that a block made for a text of aLength characters holds beyond them: 4 to 19. */
#define qvxString_Extra(aLength) (19 - ((aLength) % 16))

QV_BEGIN_DECLS

/* The characters of the shared empty text. Read only. */
extern QVLOG_API const char* qvEmptyCString;

QV_END_DECLS

/* The header of a text. The characters, or a pointer to them, stand right behind it:
 *
 *   ordinary:  | mRefCount | mStringLength | mAllocatedLength | characters ... NUL ... |
 *   special:   | mRefCount | mStringLength | sentinel         | pointer |  ->  characters ... NUL
 *
 * A special text starts with the count 2, so it always counts as shared and a write copies it; the count 1
 * means that no owner is left. The pointer is not aligned on 64-bit machines. */
struct QVLOG_API qvCStringData {
  int32 mRefCount;         /* owners; -1: the shared empty text; 0: the write buffer is out   */
  uint32 mStringLength;    /* characters, terminator not counted                              */
  uint32 mAllocatedLength; /* capacity in characters, terminator not counted, or the sentinel */

  /* The header of the shared empty text, which is never written. */
  static qvCStringData* OfEmptyText() {
    return reinterpret_cast<qvCStringData*>(const_cast<char*>(qvEmptyCString)) - 1;
  }

  /* Where the characters are: behind the header, or where a static text is. */
  char* StringPtr() {
    if (mAllocatedLength > kqvCStringData_MaxAllocatedLength) {
      char* thePtr;
      memcpy(&thePtr, this + 1, sizeof(thePtr));
      return thePtr;
    }
    return reinterpret_cast<char*>(this + 1);
  }

  /* True for the shared empty text only, not for every text of length 0. */
  bool IsEmpty() const { return mRefCount == -1; }
  bool IsShared() const { return mRefCount > 1; }

  /* Adds an owner. */
  void Lock() {
    if (mRefCount != -1) {
      ++mRefCount;
    }
  }

  /* Takes an owner away and frees the text with the last one. */
  void Unlock() {
    if (mAllocatedLength > kqvCStringData_MaxAllocatedLength) {
      if (--mRefCount <= 1) {
        Free();
      }
    } else if (mRefCount != -1 && --mRefCount <= 0) {
      Free();
    }
  }

  /* Marks the text as whole (one owner) or as being written. */
  void Validate(bool afValid) { mRefCount = afValid ? 1 : 0; }
  bool IsValid() const { return mRefCount != 0; }

 private:
  void Free();
};

/* A text of bytes that its copies share until one of them is changed. */
class QVLOG_API qvCString {
 public:
  /* No position; as a length, all that is there. */
  static const size_t npos = static_cast<size_t>(-1);

  /* What ValidateUTF8 does; combined with |. */
  enum {
    kqvEmpty = 1,        /* an invalid text becomes empty                               */
    kqvKeep = 2,         /* an invalid text stays as it is                              */
    kqvKeepValid = 4,    /* an invalid text is cut before its first bad sequence        */
    kqvKeepPrintable = 8 /* afterwards, control characters and bad sequences are erased */
  };

  /* --- Construction and assignment --- */

  qvCString() : mStringPtr(const_cast<char*>(qvEmptyCString)), mCStringData(qvCStringData::OfEmptyText()) {}

  /* A copy of the text; null is the empty text. */
  qvCString(const char* aStr);

  /* The first aLength bytes of aStr, zero bytes included. */
  qvCString(const char* aStr, size_t aLength);

  /* aLength bytes from aStr + aPos. With npos everything from aPos on; then aStr must not be null and aPos
   * not behind its end, else an assertion fails. */
  qvCString(const char* aStr, size_t aPos, size_t aLength);

  /* Shares the text. A source whose write buffer is out fails an assertion. */
  qvCString(const qvCString& aCString) {
    qvAssert(aCString.mCStringData->IsValid());
    Share(aCString);
  }

  /* Exactly this one character, '\0' included. */
  explicit qvCString(char aChar);

  /* The decimal text of the number. */
  explicit qvCString(int aValue);
  explicit qvCString(long aValue);

  /* A copy of the characters; a null buffer gives the empty string. The buffer keeps its string. */
  qvCString(const qvCharBuffer& aBuffer);

  ~qvCString() { mCStringData->Unlock(); }

  /* Shares the text. A source whose write buffer is out fails an assertion. */
  qvCString& operator=(const qvCString& aCString);
  qvCString& operator=(const char* aStr);

  /* Becomes exactly this one character; '\0' gives the length 1 as well. */
  qvCString& operator=(char aChar);

  /* Exchanges the texts of two strings; nothing is copied. */
  void Swap(qvCString& aCString) {
    char* theStringPtr = mStringPtr;
    qvCStringData* theCStringData = mCStringData;
    mStringPtr = aCString.mStringPtr;
    mCStringData = aCString.mCStringData;
    aCString.mStringPtr = theStringPtr;
    aCString.mCStringData = theCStringData;
  }

  /* Wraps a text that stays in place, unchanged, for as long as a string refers to it. Its characters are
   * never written. */
  static qvCString FromStaticString(const char* aStr);

  /* Wraps a text from malloc (or qvMalloc) and owns it from now on; an empty one is freed at once. */
  static qvCString FromAllocatedString(const char* aStr);

  /* --- Access --- */

  /* The characters and a terminator; valid until the string is changed or destroyed. */
  const char* c_str() const { return mStringPtr; }
  operator const char*() const { return mStringPtr; }

  /* Bytes, the terminator not counted. */
  size_t length() const { return mCStringData->mStringLength; }
  bool IsEmpty() const { return mCStringData->mStringLength == 0; }

  /* The first and the last character; '\0' for an empty string. */
  char First() const { return IsEmpty() ? '\0' : mStringPtr[0]; }
  char Last() const { return IsEmpty() ? '\0' : mStringPtr[length() - 1]; }

  /* Stores aChar at anIndex; false, and no change, when that is not below the length. Every string that
   * shares the text sees the change, because the text is written in place; only a text wrapped by
   * FromStaticString is copied first. */
  bool SetCharAt(char aChar, int anIndex);

  /* --- Writing through a raw buffer --- */

  /* Gives room for aLength characters and a terminator, to be filled by the caller and given back with
   * UngetWriteBuf. Until then the string's length is 0 and copying it or searching for it fails an
   * assertion. What the characters are before the caller writes them is not defined, but a terminator stands
   * at aLength. A length of 0, or a buffer that is out already, fails an assertion. */
  char* GetWriteBuf(size_t aLength);

  /* Takes the buffer back. The length becomes that of the text up to its first terminator, or aLength, which
   * must not exceed the room asked for; a terminator is stored there. */
  void UngetWriteBuf();
  void UngetWriteBuf(size_t aLength);

  /* Makes room for aLength characters and keeps the text; does nothing when there is more room already.
   * For an empty string a length of 0 fails an assertion. */
  void Alloc(size_t aLength);

  /* --- Appending --- */

  /* The argument may be the string itself or a part of its text; null adds nothing. */
  qvCString& operator+=(const qvCString& aCString) {
    Append(aCString.length(), aCString.mStringPtr);
    return *this;
  }
  qvCString& operator+=(const char* aStr) {
    Append(LengthOf(aStr), aStr);
    return *this;
  }
  /* One byte, '\0' included. */
  qvCString& operator+=(char aChar) {
    if (HasRoomToAppend(1)) {
      char* theEnd = mStringPtr + mCStringData->mStringLength++;
      theEnd[0] = aChar;
      theEnd[1] = '\0';
    } else {
      const char theChar = aChar;  // aChar itself stays in a register, having no address
      ConcatSelf(1, &theChar, npos);
    }
    return *this;
  }

  /* --- Editing --- */

  /* Removes aLength characters from aPos on, fewer at the end of the text. An aPos behind the end fails an
   * assertion. */
  qvCString& Erase(size_t aPos, size_t aLength = npos);

  /* Keeps the first aLength characters. More than there are fails an assertion. */
  qvCString& Truncate(size_t aLength);

  /* Makes the string empty. */
  qvCString& Empty();
  qvCString& clear();

  /* Inserts aLength bytes of aStr before aPos; npos: up to its terminator. An aPos behind the end fails an
   * assertion. */
  qvCString& Insert(size_t aPos, const char* aStr, size_t aLength = npos);

  /* Replaces the first occurrence of anOldStr, or every one, from left to right; text that was put in is not
   * searched again. Returns how many were replaced. */
  size_t Replace(const char* anOldStr, const char* aNewStr, bool afReplaceAll = true);

  /* Replaces aLength characters from aPos on by aStrLength bytes of aStr; npos: up to its terminator. What
   * lies behind the end of the text is left out of both aPos and aLength. */
  qvCString& Replace(size_t aPos, size_t aLength, const char* aStr, size_t aStrLength = npos);

  /* Removes the white space (see qvConvert_isspace) at the right end, or at the left end. */
  qvCString& Trim(bool afFromRight = true);
  qvCString& TrimLeftRight();

  /* Adds aCount times aChar, at the right end or at the left end. */
  qvCString& Pad(size_t aCount, char aChar = ' ', bool afRight = true);

  /* --- Derived strings: new ones, this one stays as it is --- */

  /* Behind the first occurrence; empty without one. */
  qvCString AfterFirst(char aChar) const;
  qvCString AfterFirst(const qvCString& aCString) const;

  /* Before the first occurrence; the whole string without one. */
  qvCString BeforeFirst(char aChar) const;
  qvCString BeforeFirst(const qvCString& aCString) const;
  qvCString BeforeFirst(const char* aStr) const;

  /* Behind the last occurrence; the whole string without one. */
  qvCString AfterLast(char aChar) const;
  qvCString AfterLast(const qvCString& aCString) const;

  /* Before the last occurrence; empty without one. */
  qvCString BeforeLast(char aChar) const;
  qvCString BeforeLast(const qvCString& aCString) const;
  qvCString BeforeLast(const char* aStr) const;

  /* aLength characters from aPos on, as far as there are that many; empty when aPos is behind the end. */
  qvCString Mid(size_t aPos, size_t aLength = npos) const;

  /* The first and the last aLength characters, as far as there are that many. */
  qvCString Left(size_t aLength) const;
  qvCString Right(size_t aLength) const;

  /* toupper and tolower applied to every byte; in the "C" locale these change ASCII letters only. */
  qvCString Upper() const;
  qvCString Lower() const;

  /* Every run of white space (see qvConvert_isspace) as one ' ', at both ends too. */
  qvCString TrimTo1Space() const;

  /* --- Searching --- */

  /* The first occurrence at or behind aStartPos; npos from the end of the text on. An aCString whose write
   * buffer is out fails an assertion. */
  size_t Find(const qvCString& aCString, size_t aStartPos = 0) const;
  size_t FindFirstStr(const char* aStr, size_t aStartPos = 0) const;

  /* The last occurrence that begins at or before aStartPos; npos: anywhere. Another aStartPos behind the end
   * fails an assertion. */
  size_t FindLastStr(const char* aStr, size_t aStartPos = npos) const;

  /* As Find, comparing tolower of both sides. An aStartPos behind the end, npos too, fails an assertion. */
  size_t FindNoCase(const qvCString& aCString, size_t aStartPos = 0) const;

  /* The first position at or behind aStartPos whose byte is in aSet. An aStartPos behind the end, npos too,
   * fails an assertion. The terminator of a set is not in it. */
  size_t FindFirstOf(const char* aSet, size_t aStartPos = 0) const;

  /* The last position at or before aStartPos whose byte is in aSet; npos: anywhere. */
  size_t FindLastOf(const char* aSet, size_t aStartPos = npos) const;

  /* The first position at or behind aStartPos whose byte is not in aSet. */
  size_t FindFirstNotOf(const char* aSet, size_t aStartPos = 0) const;

  /* The first, or the last, position of a byte; -1 without one. The second argument is no position. */
  int Find(char aChar, bool afFromEnd = false) const;
  int First(char aChar) const { return Find(aChar, false); }

  /* Whether the text occurs in the string; the empty text does not. */
  bool Contains(const char* aStr) const;
  bool Contains(const qvCString& aCString) const;

  /* How often a byte occurs. */
  int Freq(char aChar) const;

  /* --- Comparing: below 0, 0 or above 0; bytes compare as unsigned --- */

  /* Zero bytes compare like all others; when one text begins with the other, the shorter one is less: -1 or
   * +1. */
  int Compare(const qvCString& aCString) const;

  /* strcmp. Null fails an assertion. */
  int Compare(const char* aStr) const;

  /* Exactly -1, 0 or +1, comparing tolower of every byte. */
  int CompareNoCase(const qvCString& aCString) const;
  int CompareNoCase(const char* aStr) const;

  /* --- Numbers: see qvConvert.h for the syntax. True when the whole text, up to its first zero byte, is a
   * number in range. *aValue is written in any case, as the parser of that type does --- */

  bool ToInt8(int8* aValue) const;
  bool ToUInt8(uint8* aValue) const;
  bool ToInt16(int16* aValue) const;
  bool ToUInt16(uint16* aValue) const;
  bool ToInt32(int32* aValue, int aBase = 10) const;
  bool ToUInt32(uint32* aValue, int aBase = 10) const;
  bool ToInt64(qvint64_t* aValue, int aBase = 10) const;
  bool ToUInt64(qvuint64_t* aValue, int aBase = 10) const;
  bool ToDouble(double* aValue) const;

  /* True when every byte is a decimal, or hexadecimal, digit; true for the empty string. */
  bool HasOnlyNumbers() const;
  bool HasOnlyHexa() const;

  /* --- Formatting: the directives of qvraTools/format/qvFormat.h. The arguments may be the characters of
   * this string. A zero byte that is formatted ends the text. A format error leaves the string empty.
   * Printf and PrintfV return the new length --- */

  size_t Printf(const char* aFormat, ...) QV_PRINTF_FORMAT(2, 3);
  size_t PrintfV(const char* aFormat, va_list anArgs) QV_PRINTF_FORMAT(2, 0);
  static qvCString Format(const char* aFormat, ...) QV_PRINTF_FORMAT(1, 2);

  /* --- UTF-8 and wide text, up to the first zero byte --- */

  /* Sequences of up to 6 bytes are valid, see qvUnicode.h. */
  bool IsValidUTF8() const;

  /* Cleans the text as the flags kqvEmpty ... kqvKeepPrintable say; kqvEmpty goes before kqvKeepValid.
   * kqvKeepPrintable erases control characters (zero bytes too, and goes on behind them), and leads of 2 to
   * 4 bytes whose continuation bytes are not all there, together with as many bytes as the sequence should
   * have. After each such erasure as many bytes as were erased are kept without being looked at. */
  qvCString& ValidateUTF8(int aFlags);

  /* The wide text; a null buffer when this is not valid UTF-8. */
  qvWCharBuffer ToWideChar() const;
  static qvCString FromWideChar(const wchar_t* aStr);

  /* --- The text; to look at, not to change --- */

  char* mStringPtr;            /* always mCStringData->StringPtr() */
  qvCStringData* mCStringData; /* counts and lengths of the text that is shared */

 protected:
  /* What every change is made of. */

  /* Points the string at a fresh block for aLength characters, without releasing the old text; aLength must
   * not be 0. The length is set and the terminator written; the caller fills the characters. */
  void AllocBuffer(size_t aLength);

  /* Makes the text this string's own, with its characters. */
  void CopyBeforeWrite();

  /* Makes the text this string's own, with room for aLength (not 0) characters and length 0. The old
   * characters may be gone. */
  void AllocBeforeWrite(size_t aLength);

  /* Becomes the first aLength bytes of aStr, which may lie in the old text. */
  void AssignCopy(size_t aLength, const char* aStr);

  /* Appends the first aLength bytes of aStr, at most aMaxLength, which may lie in the text itself. */
  void ConcatSelf(size_t aLength, const char* aStr, size_t aMaxLength);

 private:
  void SetToEmptyText() {
    mStringPtr = const_cast<char*>(qvEmptyCString);
    mCStringData = qvCStringData::OfEmptyText();
  }

  void Share(const qvCString& aCString) {
    if (aCString.IsEmpty()) {
      SetToEmptyText();
    } else {
      mStringPtr = aCString.mStringPtr;
      mCStringData = aCString.mCStringData;
      mCStringData->Lock();
    }
  }

  static size_t LengthOf(const char* aStr) { return aStr != NULL ? strlen(aStr) : 0; }

  /* The sum, or npos (which no block can hold) where it does not fit. */
  static size_t JoinedLength(size_t aLength, size_t anOtherLength) {
    return anOtherLength <= npos - aLength ? aLength + anOtherLength : npos;
  }

  /* True for a text of one owner whose capacity is at least aLength above its length. */
  bool HasRoomToAppend(size_t aLength) const {
    return mCStringData->mRefCount == 1 &&
           aLength <= mCStringData->mAllocatedLength - mCStringData->mStringLength;
  }

  /* For a text of one owner with so much room. */
  void AppendInPlace(size_t aLength, const char* aStr) {
    char* theEnd = mStringPtr + mCStringData->mStringLength;
    memmove(theEnd, aStr, aLength);
    theEnd[aLength] = '\0';
    mCStringData->mStringLength += static_cast<uint32>(aLength);
  }

  void Append(size_t aLength, const char* aStr) {
    if (aLength > 0 && HasRoomToAppend(aLength)) {
      AppendInPlace(aLength, aStr);
    } else {
      ConcatSelf(aLength, aStr, npos);
    }
  }

  void GrowBlock(size_t aLength);
  void Wrap(const char* aStr, uint32 aSentinel);
  void Splice(size_t aPos, size_t aLength, const char* aStr, size_t aStrLength);
  size_t FindBytes(const char* aBytes, size_t aLength, size_t aStartPos) const;
  size_t FindLastBytes(const char* aBytes, size_t aLength, size_t aStartPos) const;
  qvCString AfterFirstBytes(const char* aBytes, size_t aLength) const;
  qvCString BeforeFirstBytes(const char* aBytes, size_t aLength) const;
  qvCString AfterLastBytes(const char* aBytes, size_t aLength) const;
  qvCString BeforeLastBytes(const char* aBytes, size_t aLength) const;
  void KeepPrintable();
};

/* The joined text, as a wrapped one: it is not copied again until it is written to. It ends at its first
 * zero byte. */
QVLOG_API qvCString operator+(const qvCString& aLeft, const qvCString& aRight);
QVLOG_API qvCString operator+(const qvCString& aLeft, char aRight);
QVLOG_API qvCString operator+(char aLeft, const qvCString& aRight);
QVLOG_API qvCString operator+(const qvCString& aLeft, const char* aRight);
QVLOG_API qvCString operator+(const char* aLeft, const qvCString& aRight);

/* Compare(...) == 0. A null text fails an assertion. */
inline bool operator==(const qvCString& aLeft, const char* aRight) { return aLeft.Compare(aRight) == 0; }
inline bool operator==(const char* aLeft, const qvCString& aRight) { return aRight.Compare(aLeft) == 0; }
inline bool operator==(const qvCString& aLeft, const qvCString& aRight) { return aLeft.Compare(aRight) == 0; }
inline bool operator!=(const qvCString& aLeft, const char* aRight) { return aLeft.Compare(aRight) != 0; }
inline bool operator!=(const char* aLeft, const qvCString& aRight) { return aRight.Compare(aLeft) != 0; }
inline bool operator!=(const qvCString& aLeft, const qvCString& aRight) { return aLeft.Compare(aRight) != 0; }

#endif
