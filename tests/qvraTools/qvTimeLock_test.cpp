// What the system gives away of the time zone is shared by all threads, so the library asks for it in one
// thread at a time. This file has its own calls of the system; the test steps in there.

#include <gtest/gtest.h>
#include <time.h>

#include <atomic>
#include <functional>
#include <memory>

#include "qvOS/qvTime.h"
#include "qvraTools/qvTime.h"
#include "support/SleepingThread.h"

namespace {

std::function<void()> sOnCall;

// The action runs in the first call only.
void StepIn() {
  std::function<void()> theAction;
  theAction.swap(sOnCall);
  if (theAction) {
    theAction();
  }
}

const int kMoment = 784111777;

void Localtime() {
  qvtm theTime;
  qvTime_localtime(&kMoment, &theTime);
}

void Gmtime() {
  qvtm theTime;
  qvTime_gmtime(&kMoment, &theTime);
}

void Mktime() {
  qvtm theTime = {};
  theTime.tm_mday = 1;
  theTime.tm_year = 1994;
  qvTime_mktime(&theTime);
}

void MacroDate() { qvTime_ConvertMacroDate("Nov 21 2026"); }

void Zone() {
  qvtimezone theZone;
  qvTime_GetTimeZone(&theZone);
}

}  // namespace

extern "C" struct tm* localtime(const time_t* aTime) noexcept {
  static struct tm sTime;
  StepIn();
  return localtime_r(aTime, &sTime);
}

extern "C" struct tm* gmtime(const time_t* aTime) noexcept {
  static struct tm sTime;
  StepIn();
  return gmtime_r(aTime, &sTime);
}

extern "C" time_t mktime(struct tm* aTime) noexcept {
  StepIn();
  return timegm(aTime);
}

TEST(qvTimeLock, WhileOneThreadAsksForTheZoneEveryOtherWaits) {
  const struct {
    void (*mFunction)();
    const char* mName;
  } kCalls[] = {{Localtime, "qvTime_localtime"},
                {Gmtime, "qvTime_gmtime"},
                {Mktime, "qvTime_mktime"},
                {MacroDate, "qvTime_ConvertMacroDate"},
                {Zone, "qvTime_GetTimeZone"}};
  for (const auto& theCall : kCalls) {
    std::atomic<bool> thefOtherIsThrough{false};
    bool thefOtherHasWaited = false;
    std::unique_ptr<SleepingThread> theOther;
    sOnCall = [&] {
      theOther.reset(new SleepingThread([&] {
        Localtime();
        thefOtherIsThrough = true;
      }));
      thefOtherHasWaited = !thefOtherIsThrough;
    };
    theCall.mFunction();
    theOther.reset();
    EXPECT_TRUE(thefOtherHasWaited) << theCall.mName;
    EXPECT_TRUE(thefOtherIsThrough) << theCall.mName;
  }
}
