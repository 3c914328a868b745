// FormatInput.h - a format and arguments of the types that it names, made from the bytes of a fuzz input.
#ifndef FUZZ_FORMATINPUT_H
#define FUZZ_FORMATINPUT_H

#include <string>
#include <vector>

#include "FuzzInput.h"

struct FormatArgument {
  enum Type { kInt, kLongLong, kDouble, kText };

  Type mType;
  long long mInteger;
  double mDouble;
  std::string mText;
};

// At most kMaxArguments arguments, in the order in which the format takes them or named by positions. The
// conversions, and what modifies them, are those that mean the same to every printf.
class FormatInput {
 public:
  static const size_t kMaxArguments = 4;

  // afPlainText: texts and what stands between the directives are ASCII.
  FormatInput(FuzzInput* anInput, bool afPlainText);

  const std::string& Format() const { return mFormat; }
  const std::vector<FormatArgument>& Arguments() const { return mArguments; }

 private:
  void AddLiteral();
  void AddDirective();
  std::string MakeSize(int aMax);
  std::string Position() const;
  void AddInteger(FormatArgument::Type aType, long long aNumber);
  std::string MakeText(size_t aMaxLength);

  FuzzInput* mInput;
  bool mfPlainText;
  bool mfPositions;
  std::string mFormat;
  std::vector<FormatArgument> mArguments;
};

// Calls aCall with the arguments from anIndex on behind those that are there already.
template <typename Call, typename... Values>
void CallWithArguments(const std::vector<FormatArgument>& anArguments, const Call& aCall, Values... aValues) {
  if constexpr (sizeof...(aValues) < FormatInput::kMaxArguments) {
    if (sizeof...(aValues) < anArguments.size()) {
      const FormatArgument& theArgument = anArguments[sizeof...(aValues)];
      switch (theArgument.mType) {
        case FormatArgument::kInt:
          return CallWithArguments(anArguments, aCall, aValues..., static_cast<int>(theArgument.mInteger));
        case FormatArgument::kLongLong:
          return CallWithArguments(anArguments, aCall, aValues..., theArgument.mInteger);
        case FormatArgument::kDouble:
          return CallWithArguments(anArguments, aCall, aValues..., theArgument.mDouble);
        case FormatArgument::kText:
          return CallWithArguments(anArguments, aCall, aValues..., theArgument.mText.c_str());
      }
    }
  }
  aCall(aValues...);
}

#endif
