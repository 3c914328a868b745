// Logs at every moment of the life of programs and libraries: behind the library's own end, from plug-ins
// that know nothing of each other, while plug-ins are unloaded, and after the library itself was unloaded and
// loaded again. Every line must be in the file, in order, and no program may crash or hang.
#include <unistd.h>

#include <algorithm>

#include "faults/Experiment.h"
#include "faults/OwnProgram.h"

namespace {

constexpr unsigned int kHangSeconds = 20;
constexpr int kMergeTurns = 50;
constexpr int kNightTurns = 2000;

#if defined(LIBRARY)

// A program, what it does, and the lines that must be in the file.
struct Life {
  const char* mProgram;
  std::vector<std::string> mSteps;  // for HOST: see PluginHost.c
  std::vector<std::string> mLines;
  bool mfSorted;  // the system chooses the order: they are compared sorted
};

const std::vector<std::string> kLateLines = {"main", "an exit handler", "an object",
                                             "the object that was made before all else",
                                             "the handler that was registered before all else"};
const std::string kLoadA = "+" PLUGIN_A;
const std::string kLoadB = "+" PLUGIN_B;
const std::string kLoadLibrary = "+" LIBRARY;
const std::string kIsGone = "=" LIBRARY;

const Life kLives[] = {
    {LATE_SHARED, {}, kLateLines, false},
    {LATE_ARCHIVE, {}, kLateLines, false},
    // Plug-ins that are never unloaded, or one of two, or both.
    {HOST,
     {kLoadA, "0", kLoadB, "1", "0"},
     {"a is unloaded", "a logs", "a logs", "b is unloaded", "b logs"},
     true},
    {HOST,
     {kLoadA, kLoadB, "1", "-1", "0", "fork"},
     {"b logs", "b is unloaded", "a logs", "a is unloaded", "a is unloaded"},
     false},
    {HOST,
     {kLoadA, kLoadB, "0", "-0", "1", "-1", kIsGone, "fork", "twice"},
     {"a logs", "a is unloaded", "b logs", "b is unloaded", "a logs", "a is unloaded", "b logs",
      "b is unloaded"},
     false},
    {HOST, {kLoadA, "-0", kIsGone, "fork", "twice"}, {"a is unloaded", "a is unloaded"}, false},
    // The library itself: alone, and under a plug-in that still needs it.
    {HOST, {kLoadLibrary, "0", "-0", kIsGone, "fork", "twice"}, {"the host logs", "the host logs"}, false},
    {HOST,
     {kLoadLibrary, "0", kLoadA, "-0", "1", "-1", kIsGone, "twice"},
     {"the host logs", "a logs", "a is unloaded", "the host logs", "a logs", "a is unloaded"},
     false},
};

// What the file holds, without headers and prefixes.
std::vector<std::string> LinesOf(const std::string& aText) {
  const size_t kPrefix = sizeof("L 00:00:00:000|xxxxxxxx|mmmmmmmmmm ") - 1;
  std::vector<std::string> theLines;
  for (size_t theStart = 0, theEnd; theStart < aText.size(); theStart = theEnd + 1) {
    theEnd = aText.find('\n', theStart);
    std::string theLine = aText.substr(theStart, theEnd - theStart);
    if (theLine != "NAME: box (log started)") {
      theLines.push_back(theLine.size() > kPrefix ? theLine.substr(kPrefix) : "damaged: " + theLine);
    }
    if (theEnd == std::string::npos) {
      break;
    }
  }
  return theLines;
}

std::string Joined(const std::vector<std::string>& aLines) {
  std::string theText;
  for (const std::string& theLine : aLines) {
    theText += "[" + theLine + "]";
  }
  return theText;
}

void Live(Experiment* anExperiment, size_t anIndex, int aTurns) {
  const Life& theLife = kLives[anIndex];
  OwnProgram theProgram("[file]\nlevel=all\nfile=out.txt\nappend=1\n[qvlogd]\nlevel=off\n", theLife.mProgram);
  for (int i = 0; i < aTurns; ++i) {
    std::string theEnd = theProgram.Run(theLife.mSteps, kHangSeconds);
    std::vector<std::string> theLines = LinesOf(theProgram.Read("out.txt"));
    if (theLife.mfSorted) {
      std::sort(theLines.begin(), theLines.end());
    }
    anExperiment->Check(theEnd.empty() && theLines == theLife.mLines,
                        "life " + std::to_string(anIndex) + " " + theEnd + " with " + Joined(theLines));
    unlink(theProgram.File("out.txt").c_str());
  }
}

void LiveAll(Experiment* anExperiment) {
  for (size_t i = 0; i < sizeof(kLives) / sizeof(kLives[0]); ++i) {
    Live(anExperiment, i, anExperiment->IsNight() ? kNightTurns : kMergeTurns);
  }
}

#else

void LiveAll(Experiment* anExperiment) { anExperiment->Impossible("there is no shared library"); }

#endif

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("staticlife", aCount, anArguments);
  LiveAll(&theExperiment);
  return theExperiment.Finish();
}
