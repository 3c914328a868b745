// Gives the formatting engine's digits every chance to be wrong: numbers of all exponents, subnormal ones,
// whole ones, ties and their neighbours, powers of ten and their neighbours, with few digits and with all
// that a number has, in each of the three notations. The language's own conversion and the C library say what
// is right.
#include "faults/Experiment.h"
#include "support/HardNumbers.h"

namespace {

constexpr size_t kNumbersAtNight = 100000000;
constexpr size_t kNumbers = 4000000;
constexpr size_t kBetweenOthers = 16;  // the C library is slower

void Try(const HardNumber& aNumber, std::string (*aCompare)(const HardNumber&), Experiment* anExperiment) {
  anExperiment->Tried();
  const std::string theDifference = aCompare(aNumber);
  if (!theDifference.empty()) {
    anExperiment->Failed(theDifference);
  }
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("formatdigits", aCount, anArguments);
  const size_t theNumbers = theExperiment.IsNight() ? kNumbersAtNight : kNumbers;
  HardNumbers theSource(20250314);
  for (size_t i = 0; i < theNumbers; ++i) {
    const HardNumber theNumber = theSource.Next();
    Try(theNumber, WrongDigits, &theExperiment);
    if (i % kBetweenOthers == 0) {
      Try(theNumber, DifferentDigits, &theExperiment);
      const std::string theDifference = DifferentLongDigits(theNumber, i * 0x9e3779b97f4a7c15);
      theExperiment.Check(theDifference.empty(), theDifference);
    }
  }
  return theExperiment.Finish();
}
