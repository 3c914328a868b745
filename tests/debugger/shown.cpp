// shown.cpp - one object of each kind that the debugger shows; it stops where they can be looked at.
#include <qv/CString.h>
#include <qvLog/qvLogger.h>
#include <qvraTools/qvDictionary.h>
#include <qvraTools/qvPtrList.h>

static int sStops = 0;

static void Stop() { ++sStops; }

int main() {
  qvCString theEmpty;
  qvCString theText("channel \"7\"");
  qvCString theBytes("a\0b", 3);
  qvCString theStatic = qvCString::FromStaticString("wrapped");
  qvCString theLong(qvCString("x").Pad(999, 'x'));

  qvPtrList* theNothing = qvPtrList_New();
  qvPtrList* theList = qvPtrList_New();
  qvPtrList_Append(theList, reinterpret_cast<void*>(0x10));
  qvPtrList_Append(theList, nullptr);

  qvDictionary* theDictionary = qvDictionary_New(0);
  qvDictionary_WriteKey(theDictionary, "audio/volume", "55");
  qvDictionary_WriteKey(theDictionary, "audio/output", "");

  qvLogData theRecord = {QVLOGLEVEL_WARNING, QVLOG_M_TUNER, "tuner.cpp", 12};
  qvLogData theOtherRecord = {7, 160, nullptr, 0};
  char theBuffer[] = "no lock\n";
  qvLogDataEx theFullRecord = {};
  static_cast<qvLogData&>(theFullRecord) = theRecord;
  theFullRecord.mThreadId = 0x12ab34;
  theFullRecord.mFormatted = theBuffer;
  theFullRecord.mFormattedLen = 8;
  Stop();

  qvDictionary_Delete(theDictionary);
  qvPtrList_Delete(theList);
  qvPtrList_Delete(theNothing);
  return theOtherRecord.mLevel == 7 && theFullRecord.mLine == 12 && theLong.length() == 1000 &&
                 theEmpty.IsEmpty() && theText.length() + theBytes.length() + theStatic.length() == 21
             ? 0
             : 1;
}
