#include "Workload.h"

#include <qv/CString.h>
#include <qvraTools/qvCStringParser.h>

#include <memory>

static std::string Shown(const qvCString& aText) { return std::string(aText.c_str(), aText.length()); }

struct DeleteTokens {
  void operator()(qvCStringParser_TokenList* aList) const { qvCStringParser_Delete(aList); }
};
using Tokens = std::unique_ptr<qvCStringParser_TokenList, DeleteTokens>;

static std::string Shown(const Tokens& aTokens) {
  std::string theText = std::to_string(aTokens->mTokenCount) + " ";
  for (const qvCStringParser_Token* theToken = aTokens->mFirstToken; theToken != nullptr;
       theToken = theToken->mNextToken) {
    theText.append(theToken->mData, theToken->mDataLength);
  }
  return theText;
}

static StringContender sRows =
    StringContender("qvLog")
        .Row("copy", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               const qvCString theSource(theText.c_str());
               Repeat(aState, theText, [&] { return qvCString(theSource); });
             })
        .Row("from text", kAllSizesAndLonger,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] { return qvCString(theText.c_str()); });
             })
        .Row("append characters", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] {
                 qvCString theResult;
                 for (char theChar : theText) {
                   theResult += theChar;
                 }
                 return theResult;
               });
             })
        .Row("append characters, room made", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] {
                 qvCString theResult;
                 theResult.Alloc(theText.size());
                 for (char theChar : theText) {
                   theResult += theChar;
                 }
                 return theResult;
               });
             })
        .Row("append pieces", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = PiecesText(aState.range(0));
               Repeat(aState, theText, [&] {
                 qvCString theResult;
                 while (theResult.length() < theText.size()) {
                   theResult += kPiece;
                 }
                 return theResult;
               });
             })
        .Row("append pieces, room made", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = PiecesText(aState.range(0));
               Repeat(aState, theText, [&] {
                 qvCString theResult;
                 theResult.Alloc(theText.size());
                 while (theResult.length() < theText.size()) {
                   theResult += kPiece;
                 }
                 return theResult;
               });
             })
        .Row("concatenate", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0) / 2);
               const qvCString theLeft(theText.c_str());
               const qvCString theRight(theText.c_str());
               Repeat(aState, theText + theText, [&] { return theLeft + theRight; });
             })
        .Row("find", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = HaystackText(aState.range(0));
               const qvCString theHaystack(theText.c_str());
               Repeat(aState, std::to_string(theText.size() - 8),
                      [&] { return theHaystack.FindFirstStr(kNeedle); });
             })
        .Row("replace all", kLongSizes,
             [](benchmark::State& aState) {
               const qvCString theSource(EscapedText(aState.range(0)).c_str());
               Repeat(aState, UnescapedText(aState.range(0)), [&] {
                 qvCString theResult(theSource);
                 theResult.Replace(kEscaped, kUnescaped);
                 return theResult;
               });
             })
        .Row("split", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theList = ListText(aState.range(0));
               Repeat(aState, TokensOf(theList), [&] {
                 return Tokens(qvCStringParser_Tokenize(theList.data(), 0, theList.size(), ",", 1));
               });
             })
        .Row("trim", kLongSizes,
             [](benchmark::State& aState) {
               const qvCString theSource(PaddedText(aState.range(0)).c_str());
               Repeat(aState, TrimmedText(aState.range(0)), [&] {
                 qvCString theResult(theSource);
                 theResult.TrimLeftRight();
                 return theResult;
               });
             })
        .Row("compare without case", kAllSizes, [](benchmark::State& aState) {
          const qvCString theLeft(PlainText(aState.range(0)).c_str());
          const qvCString theRight(CapitalText(aState.range(0)).c_str());
          Repeat(aState, "0", [&] { return static_cast<size_t>(theLeft.CompareNoCase(theRight)); });
        });
