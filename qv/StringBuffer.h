/* StringBuffer.h - write access to the characters of a qvCString for the length of a scope. */
#ifndef QV_STRINGBUFFER_H
#define QV_STRINGBUFFER_H

#include "qv/CString.h"

/* Takes the write buffer of a string and gives it back in its destructor. The string must outlive this
 * object and must not be used in between. */
class QVLOG_API qvCStringBuffer {
 public:
  /* A buffer for aLength characters and their terminator; a length of 0 fails an assertion. */
  qvCStringBuffer(qvCString& aString, size_t aLength);

  /* The string's length becomes the number of characters before the first terminator. */
  ~qvCStringBuffer();

  qvCStringBuffer(const qvCStringBuffer&) = delete;
  qvCStringBuffer& operator=(const qvCStringBuffer&) = delete;

  /* The room to write into. */
  operator char*() { return mBuffer; }

  qvCString& mString; /* the string that lends its room */
  char* mBuffer;      /* belongs to mString */
};

#endif
