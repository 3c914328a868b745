/* qvFormatEngine_p.h - one body for both character widths. */
#ifndef QVRATOOLS_FORMAT_QVFORMATENGINE_P_H
#define QVRATOOLS_FORMAT_QVFORMATENGINE_P_H

#include <stdarg.h>
#include <stddef.h>

// The arguments of a call, referred to in one way on every platform (a parameter of type va_list is a pointer
// on some of them and a copy on others).
struct qvFormatList {
  va_list mList;
};

// Writes at most aMax - 1 characters and a terminator (nothing if aMax is 0). Returns the length of the whole
// output or a format error, after which the text is empty. Uses the list up.
template <typename Char>
int qvFormat_Write(Char* aBuffer, size_t aMax, const Char* aFormat, qvFormatList* aList);

// A new block of exactly the output and its terminator, null on a format error. aLength may be null. Uses the
// list up.
template <typename Char>
Char* qvFormat_Allocate(size_t* aLength, const Char* aFormat, qvFormatList* aList);

extern template int qvFormat_Write(char*, size_t, const char*, qvFormatList*);
extern template int qvFormat_Write(wchar_t*, size_t, const wchar_t*, qvFormatList*);
extern template char* qvFormat_Allocate(size_t*, const char*, qvFormatList*);
extern template wchar_t* qvFormat_Allocate(size_t*, const wchar_t*, qvFormatList*);

#endif
