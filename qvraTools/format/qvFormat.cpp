#include "qvraTools/format/qvFormat.h"

#include "qvraTools/format/qvFormatEngine_p.h"

int qv_snprintf(char* buffer, size_t max, const char* format, ...) {
  qvFormatList theList;
  va_start(theList.mList, format);
  int theResult = qvFormat_Write(buffer, max, format, &theList);
  va_end(theList.mList);
  return theResult;
}

int qv_vsnprintf(char* buffer, size_t max, const char* format, va_list args) {
  qvFormatList theList;
  va_copy(theList.mList, args);
  int theResult = qvFormat_Write(buffer, max, format, &theList);
  va_end(theList.mList);
  return theResult;
}

char* qv_mnprintf(const char* format, ...) {
  qvFormatList theList;
  va_start(theList.mList, format);
  char* theText = qvFormat_Allocate(nullptr, format, &theList);
  va_end(theList.mList);
  return theText;
}

char* qv_vmnprintf(const char* format, va_list args) {
  qvFormatList theList;
  va_copy(theList.mList, args);
  char* theText = qvFormat_Allocate(nullptr, format, &theList);
  va_end(theList.mList);
  return theText;
}

char* qv_lmnprintf(size_t* length, const char* format, ...) {
  qvFormatList theList;
  va_start(theList.mList, format);
  char* theText = qvFormat_Allocate(length, format, &theList);
  va_end(theList.mList);
  return theText;
}

char* qv_lvmnprintf(size_t* length, const char* format, va_list args) {
  qvFormatList theList;
  va_copy(theList.mList, args);
  char* theText = qvFormat_Allocate(length, format, &theList);
  va_end(theList.mList);
  return theText;
}

int qv_swprintf(vexa_wchar_t* buffer, size_t max, const vexa_wchar_t* format, ...) {
  qvFormatList theList;
  va_start(theList.mList, format);
  int theResult = qvFormat_Write(buffer, max, format, &theList);
  va_end(theList.mList);
  return theResult;
}

int qv_vswprintf(vexa_wchar_t* buffer, size_t max, const vexa_wchar_t* format, va_list args) {
  qvFormatList theList;
  va_copy(theList.mList, args);
  int theResult = qvFormat_Write(buffer, max, format, &theList);
  va_end(theList.mList);
  return theResult;
}

vexa_wchar_t* qv_mwprintf(const vexa_wchar_t* format, ...) {
  qvFormatList theList;
  va_start(theList.mList, format);
  vexa_wchar_t* theText = qvFormat_Allocate(nullptr, format, &theList);
  va_end(theList.mList);
  return theText;
}

vexa_wchar_t* qv_vmwprintf(const vexa_wchar_t* format, va_list args) {
  qvFormatList theList;
  va_copy(theList.mList, args);
  vexa_wchar_t* theText = qvFormat_Allocate(nullptr, format, &theList);
  va_end(theList.mList);
  return theText;
}

vexa_wchar_t* qv_lmwprintf(size_t* length, const vexa_wchar_t* format, ...) {
  qvFormatList theList;
  va_start(theList.mList, format);
  vexa_wchar_t* theText = qvFormat_Allocate(length, format, &theList);
  va_end(theList.mList);
  return theText;
}

vexa_wchar_t* qv_lvmwprintf(size_t* length, const vexa_wchar_t* format, va_list args) {
  qvFormatList theList;
  va_copy(theList.mList, args);
  vexa_wchar_t* theText = qvFormat_Allocate(length, format, &theList);
  va_end(theList.mList);
  return theText;
}
