#ifndef _BENCHMARKS_SETTINGS_WORKLOAD_H
#define _BENCHMARKS_SETTINGS_WORKLOAD_H

#include <cstring>
#include <string>
#include <vector>

#include "Contender.h"

/*
  Settings of a device in INI text, and what is looked up in them. The text is what all contenders read alike:
  names of at most 30 bytes, no quotes, no comments behind a value.
*/
struct Setting {
  std::string mSection;
  std::string mKey;
  std::string mJoined;  // "section:key"
  std::string mValue;
};

struct Settings {
  std::string mText;
  std::vector<Setting> mOrder;  // in which they are looked up: at random, each one once
};

// The settings with aCount keys, twenty in a section; made at the first call.
const Settings& SettingsWith(int64_t aCount);

// What a contender found, as text without an owner.
inline bool IsValue(const Setting& aSetting, const char* aFound) {
  return aFound != nullptr && aSetting.mValue == aFound;
}
inline bool IsValue(const Setting& aSetting, const std::string& aFound) { return aSetting.mValue == aFound; }

/*
  A contender is a class: its constructor takes the text, its destructor frees everything, and Read(setting)
  gives the value. A few settings are compared first, so that nobody wins by doing less.
*/
template <class Store>
bool HoldsAll(const Settings& aSettings) {
  Store theStore(aSettings.mText);
  for (size_t i = 0; i < aSettings.mOrder.size(); i += 1 + aSettings.mOrder.size() / 200) {
    if (!IsValue(aSettings.mOrder[i], theStore.Read(aSettings.mOrder[i]))) {
      return false;
    }
  }
  return true;
}

template <class Store>
void TimeLoad(benchmark::State& aState) {
  const Settings& theSettings = SettingsWith(aState.range(0));
  if (!HoldsAll<Store>(theSettings)) {
    aState.SkipWithError("a value is not the one in the text");
    return;
  }
  for (auto _ : aState) {
    Store theStore(theSettings.mText);
    benchmark::DoNotOptimize(&theStore);
  }
}

template <class Store>
void TimeLookUp(benchmark::State& aState) {
  const Settings& theSettings = SettingsWith(aState.range(0));
  Store theStore(theSettings.mText);
  size_t theNext = 0;
  for (auto _ : aState) {
    benchmark::DoNotOptimize(theStore.Read(theSettings.mOrder[theNext]));
    theNext = theNext + 1 < theSettings.mOrder.size() ? theNext + 1 : 0;
  }
}

#define SETTINGS_ROWS(NAME, STORE, SIZE) \
  Contender("load", SIZE, NAME, TimeLoad<STORE>), Contender("look up", SIZE, NAME, TimeLookUp<STORE>)

#define SETTINGS_CONTENDER(NAME, STORE)                                                              \
  static const Contender sRows[] = {SETTINGS_ROWS(NAME, STORE, 20), SETTINGS_ROWS(NAME, STORE, 200), \
                                    SETTINGS_ROWS(NAME, STORE, 2000), SETTINGS_ROWS(NAME, STORE, 20000)}

#endif
