#include "qv/StringBuffer.h"

qvCStringBuffer::qvCStringBuffer(qvCString& aString, size_t aLength)
    : mString(aString), mBuffer(aString.GetWriteBuf(aLength)) {}

qvCStringBuffer::~qvCStringBuffer() { mString.UngetWriteBuf(); }
