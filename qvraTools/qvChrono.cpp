#include "qvraTools/qvChrono.h"

#include "qvraTools/qvLongLong_p.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvTime.h"
#include "qvraTools/qvTime_p.h"

void qvChrono_S_Init(qvChrono* aChrono) {
  aChrono->mStartTime = *qvULongLong_0;
  aChrono->mPauseTime = *qvULongLong_0;
  aChrono->mfPaused = 0;
}

void qvChrono_S_GetTimeMS(qvULongLong* aResult) {
  qvtimeval theNow;
  qvTimeVal_Time(&theNow);
  qvTimeVal_S_GetMilliSeconds(&theNow, aResult);
}

qvChrono* qvChrono_New(void) {
  qvChrono* theChrono = static_cast<qvChrono*>(qvMalloc(sizeof(qvChrono)));
  qvChrono_S_Init(theChrono);
  return theChrono;
}

void qvChrono_Delete(qvChrono* aChrono) { qvFree(aChrono); }

void qvChrono_Start(qvChrono* aChrono, const qvULongLong* anOffset) {
  qvULongLong theStartTime;  // apart, because the offset may be a field of the watch
  qvChrono_S_GetTimeMS(&theStartTime);
  if (anOffset != nullptr) {
    qvULongLong_Sub(&theStartTime, anOffset);
  }
  aChrono->mStartTime = theStartTime;
  aChrono->mfPaused = 0;
}

void qvChrono_Start_S(qvChrono* aChrono, uint32 aSeconds) {
  qvULongLong theOffset = qvULongLong_Init(0, aSeconds);
  qvULongLong_Mult(&theOffset, &_1000ULL);
  qvChrono_Start(aChrono, &theOffset);
}

void qvChrono_Pause(qvChrono* aChrono) {
  if (!aChrono->mfPaused) {
    qvChrono_GetTime(aChrono, &aChrono->mPauseTime);
    aChrono->mfPaused = 1;
  }
}

void qvChrono_Resume(qvChrono* aChrono) {
  if (aChrono->mfPaused) {
    qvChrono_Start(aChrono, &aChrono->mPauseTime);
  }
}

void qvChrono_GetTime(qvChrono* aChrono, qvULongLong* aResult) {
  if (aChrono->mfPaused) {
    *aResult = aChrono->mPauseTime;
    return;
  }
  qvChrono_S_GetTimeMS(aResult);
  qvULongLong_Sub(aResult, &aChrono->mStartTime);
}

uint32 qvChrono_GetTime_S(qvChrono* aChrono) {
  uint32 theSeconds = 0;
  uint32 theMilliSeconds = 0;
  qvChrono_GetTime_S_MS(aChrono, &theSeconds, &theMilliSeconds);
  return theSeconds;
}

void qvChrono_GetTime_S_MS(qvChrono* aChrono, uint32* aSeconds, uint32* aMilliSeconds) {
  qvULongLong theTime;
  qvChrono_GetTime(aChrono, &theTime);
  qvULongLong theSeconds;
  qvULongLong theMilliSeconds;
  qvULongLong_S_Divide(&theTime, &_1000ULL, &theSeconds, &theMilliSeconds);
  *aSeconds = theSeconds.mLow;
  *aMilliSeconds = theMilliSeconds.mLow;
}
