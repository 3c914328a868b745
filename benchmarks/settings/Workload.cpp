#include "Workload.h"

#include <algorithm>
#include <map>
#include <random>

static const char* const kSections[] = {"Tuner", "Network", "Display", "Recorder", "Audio", "Log", "Portal"};
static const char* const kKeys[] = {"Enabled",         "SymbolRate",    "StartFrequency",
                                    "DefaultLanguage", "ServerAddress", "RetryIntervalSeconds",
                                    "CachePath",       "UserAgent",     "Volume",
                                    "AspectRatio",     "BufferSize",    "TimeOut",
                                    "FriendlyName",    "Modulation",    "LastChannel",
                                    "Resolution",      "SubtitleFont",  "UpdateUrl",
                                    "PinCode",         "Brightness"};
static const char* const kValues[] = {"1",
                                      "27500",
                                      "10714.25",
                                      "eng,ger,fra",
                                      "192.168.17.42",
                                      "Living room box",
                                      "/var/cache/media/thumbnails",
                                      "Mozilla/5.0 (Linux armv7l) MediaBox/4.2",
                                      "50",
                                      "16:9",
                                      "http://update.example.com/firmware/stable/manifest.xml",
                                      "true",
                                      "1920x1080p50"};
static const size_t kKeysInASection = 20;

template <size_t Count>
static const char* Pick(const char* const (&aTexts)[Count], size_t anIndex) {
  return aTexts[anIndex % Count];
}

static Settings MakeSettings(size_t aCount) {
  Settings theSettings;
  std::string theSection;
  for (size_t i = 0; i < aCount; ++i) {
    if (i % kKeysInASection == 0) {
      const size_t theNumber = i / kKeysInASection;
      theSection = Pick(kSections, theNumber) + std::to_string(theNumber);
      theSettings.mText += (i > 0 ? "\n[" : "# Written by the set-up assistant\n[") + theSection + "]\n";
    }
    const std::string theKey = Pick(kKeys, i);
    const std::string theValue = Pick(kValues, i * 5 + i / 7);
    theSettings.mText += i % 10 == 3 ? "# as in the manual, chapter 4\n" : "";
    theSettings.mText += theKey + " = " + theValue + "\n";
    theSettings.mOrder.push_back({theSection, theKey, theSection + ":" + theKey, theValue});
  }
  std::shuffle(theSettings.mOrder.begin(), theSettings.mOrder.end(), std::mt19937(1));
  return theSettings;
}

const Settings& SettingsWith(int64_t aCount) {
  static std::map<int64_t, Settings> sMade;
  auto theFound = sMade.find(aCount);
  if (theFound == sMade.end()) {
    theFound = sMade.emplace(aCount, MakeSettings(static_cast<size_t>(aCount))).first;
  }
  return theFound->second;
}
