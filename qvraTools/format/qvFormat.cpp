#include "qvraTools/format/qvFormat.h"

#include "qvraTools/format/qvFormatEngine_p.h"

int qv_snprintf(char* buffer, size_t max, const char* format, ...) {
  va_list theArguments;
  va_start(theArguments, format);
  int theResult = qvFormat_Write(buffer, max, format, theArguments);
  va_end(theArguments);
  return theResult;
}

int qv_vsnprintf(char* buffer, size_t max, const char* format, va_list args) {
  return qvFormat_Write(buffer, max, format, args);
}

char* qv_mnprintf(const char* format, ...) {
  va_list theArguments;
  va_start(theArguments, format);
  char* theText = qvFormat_Allocate(nullptr, format, theArguments);
  va_end(theArguments);
  return theText;
}

char* qv_vmnprintf(const char* format, va_list args) { return qvFormat_Allocate(nullptr, format, args); }

char* qv_lmnprintf(size_t* length, const char* format, ...) {
  va_list theArguments;
  va_start(theArguments, format);
  char* theText = qvFormat_Allocate(length, format, theArguments);
  va_end(theArguments);
  return theText;
}

char* qv_lvmnprintf(size_t* length, const char* format, va_list args) {
  return qvFormat_Allocate(length, format, args);
}

int qv_swprintf(vexa_wchar_t* buffer, size_t max, const vexa_wchar_t* format, ...) {
  va_list theArguments;
  va_start(theArguments, format);
  int theResult = qvFormat_Write(buffer, max, format, theArguments);
  va_end(theArguments);
  return theResult;
}

int qv_vswprintf(vexa_wchar_t* buffer, size_t max, const vexa_wchar_t* format, va_list args) {
  return qvFormat_Write(buffer, max, format, args);
}

vexa_wchar_t* qv_mwprintf(const vexa_wchar_t* format, ...) {
  va_list theArguments;
  va_start(theArguments, format);
  vexa_wchar_t* theText = qvFormat_Allocate(nullptr, format, theArguments);
  va_end(theArguments);
  return theText;
}

vexa_wchar_t* qv_vmwprintf(const vexa_wchar_t* format, va_list args) {
  return qvFormat_Allocate(nullptr, format, args);
}

vexa_wchar_t* qv_lmwprintf(size_t* length, const vexa_wchar_t* format, ...) {
  va_list theArguments;
  va_start(theArguments, format);
  vexa_wchar_t* theText = qvFormat_Allocate(length, format, theArguments);
  va_end(theArguments);
  return theText;
}

vexa_wchar_t* qv_lvmwprintf(size_t* length, const vexa_wchar_t* format, va_list args) {
  return qvFormat_Allocate(length, format, args);
}
