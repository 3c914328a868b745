/* CharBuffer.h - owners of one NUL-terminated string from the heap, narrow and wide.
 *
 * A buffer owns at most one string and releases it with free. There is only ever one owner: copying a
 * buffer, by construction or by assignment, moves the string and leaves the source null. A buffer belongs
 * to one thread at a time. */
#ifndef QV_CHARBUFFER_H
#define QV_CHARBUFFER_H

#include <wchar.h>

#include <type_traits>

#include "qvOS/qvTypes.h"

/* What qvCharBuffer and qvWCharBuffer share; use it through these two. */
template <class Char>
class QVLOG_API qvCharBuffer_Base {
 public:
  /* Holds a copy of aStr, or, when afCopy is false, takes aStr itself, which was allocated with qvMalloc.
   * A null aStr gives a null buffer. */
  qvCharBuffer_Base(const Char* aStr, bool afCopy = true);

  /* Holds a new block of aLength + 1 characters: a terminator at index aLength, nothing defined before it. */
  explicit qvCharBuffer_Base(size_t aLength);

  /* The same from any integer, so that a literal 0 is a length and not the null text as well. */
  template <class Int, class = typename std::enable_if<std::is_integral<Int>::value>::type>
  explicit qvCharBuffer_Base(Int aLength) : qvCharBuffer_Base(static_cast<size_t>(aLength)) {}

  /* Moves the string out of aBuffer, which is null afterwards. */
  qvCharBuffer_Base(const qvCharBuffer_Base& aBuffer);

  ~qvCharBuffer_Base();

  /* Frees the string held and holds a copy of aStr, which may be part of the old string; null for null. */
  qvCharBuffer_Base& operator=(const Char* aStr);

  /* Frees the string held and moves the one of aBuffer here; nothing happens when both are one buffer. */
  qvCharBuffer_Base& operator=(const qvCharBuffer_Base& aBuffer);

  /* The string, or null; valid as long as the buffer holds it. */
  const Char* c_str() const { return mStr; }

  /* Gives the string away: the caller releases it with qvFree, the buffer is null. It is const because
   * copying takes the string out of a source that is passed as const. */
  Char* release() const;

  mutable Char* mStr; /* owned; null for a null buffer */
};

extern template class qvCharBuffer_Base<char>;
extern template class qvCharBuffer_Base<wchar_t>;

class QVLOG_API qvCharBuffer : public qvCharBuffer_Base<char> {
 public:
  using qvCharBuffer_Base<char>::qvCharBuffer_Base;
  using qvCharBuffer_Base<char>::operator=;
};

/* Lengths count wide characters. */
class QVLOG_API qvWCharBuffer : public qvCharBuffer_Base<wchar_t> {
 public:
  using qvCharBuffer_Base<wchar_t>::qvCharBuffer_Base;
  using qvCharBuffer_Base<wchar_t>::operator=;
};

#endif
