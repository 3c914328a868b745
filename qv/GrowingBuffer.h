/* GrowingBuffer.h - an append-only byte buffer whose block the caller can take over.
 *
 * A buffer belongs to one thread at a time. Appending never writes a terminator. */
#ifndef QV_GROWINGBUFFER_H
#define QV_GROWINGBUFFER_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* A growth rule: the size in bytes of the new block, from the bytes used and the bytes about to be appended.
 * It must give at least the sum of both; less fails an assertion. */
typedef size_t (*qvGrowingBuffer_NewBufferSizeFunc)(size_t aUsedSize, size_t aNeededSize);

/* The usual growth rule: the used size and as many whole steps as hold the pending append and at least one
 * byte more. The step is 128 bytes up to 1023 bytes used, 1024 up to 8191, 8192 up to 131071, 32768 up to
 * 524287 and 131072 above. */
QVLOG_API size_t qvGrowingBuffer_NewBufferSize(size_t aUsedSize, size_t aNeededSize);

QV_END_DECLS

/* A block of bytes that grows at its end. */
class QVLOG_API qvGrowingBuffer {
 public:
  /* Allocates a block of aInitialSize bytes, none for 0. */
  explicit qvGrowingBuffer(size_t aInitialSize = 0);

  ~qvGrowingBuffer();

  qvGrowingBuffer(const qvGrowingBuffer&) = delete;
  qvGrowingBuffer& operator=(const qvGrowingBuffer&) = delete;

  /* Replaces the growth rule. Null fails an assertion. */
  void SetNewBufferSizeFunc(qvGrowingBuffer_NewBufferSizeFunc aNewBufferSizeFunc);

  /* Appends aLength bytes; a block that is too small grows by the growth rule. aPtr may point into the
   * buffer itself. A null aPtr fails an assertion, for length 0 too. */
  void Append(const char* aPtr, size_t aLength);

  /* Appends the characters of aStr without its terminator. Null fails an assertion. */
  qvGrowingBuffer& operator+=(const char* aStr);

  /* Appends the decimal digits of aValue. */
  qvGrowingBuffer& operator+=(unsigned long aValue);

  /* Makes aPosition the number of bytes used; a smaller block grows to exactly that. Bytes that were not
   * appended have no defined value. */
  void SetPosition(size_t aPosition);

  /* Makes the block exactly aSize bytes, larger or smaller, and all of it used. */
  void Reduce(size_t aSize);

  /* Makes the block exactly aSize bytes; the number of bytes used stays as it is, in a smaller block too. */
  void Realloc(size_t aSize);

  /* Gives the block to the caller, who releases it with qvFree, and stores the number of bytes used in
   * *aLength unless aLength is null. With afShrink the block is first cut to the bytes used. Null when there
   * is no block, and for an empty one that is cut. The buffer is empty and usable afterwards. */
  char* TakeOwnership(bool afShrink = true, size_t* aLength = NULL);

  char* mPtr;                                           /* the block, owned; null when there is none */
  size_t mSize;                                         /* bytes allocated                           */
  size_t mPos;                                          /* bytes used                                */
  qvGrowingBuffer_NewBufferSizeFunc mNewBufferSizeFunc; /* the growth rule */
};

#endif
