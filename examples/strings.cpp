// strings.cpp - the shared string: copies cost one increment, a write to a shared text copies it first.
#include <qv/CString.h>
#include <stdio.h>

int main() {
  qvCString thePath("/media/disk 1/Night Train.ts");
  qvCString theCopy = thePath;  // the same text, counted twice
  theCopy.Replace(" ", "_", true);
  printf("%s\n%s\n", thePath.c_str(), theCopy.c_str());

  qvCString theName = thePath.AfterLast('/');
  printf("name '%s', without extension '%s', extension '%s'\n", theName.c_str(),
         theName.BeforeLast('.').c_str(), theName.AfterLast('.').c_str());

  qvCString theLine = qvCString::Format("%-12s|%5.1f %%|%06d", theName.Left(5).c_str(), 12.34, 42);
  theLine += "|\xC3\xA9";
  printf("%s has %lu bytes and %s UTF-8\n", theLine.c_str(), static_cast<unsigned long>(theLine.length()),
         theLine.IsValidUTF8() ? "is" : "is not");

  int32 theNumber = 0;
  if (qvCString("0x1F").ToInt32(&theNumber, 16)) {
    printf("number %ld\n", static_cast<long>(theNumber));
  }
  printf("'%s' '%s'\n", qvCString("  too   many blanks  ").TrimTo1Space().c_str(), theName.Upper().c_str());
  return 0;
}
