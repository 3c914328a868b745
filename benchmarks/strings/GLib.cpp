#include "Workload.h"

#include <glib.h>

#include <memory>

struct ReleaseCounted {
  void operator()(char* aText) const { g_ref_string_release(aText); }
};
struct FreeString {
  void operator()(GString* aString) const { g_string_free(aString, TRUE); }
};
struct FreeText {
  void operator()(char* aText) const { g_free(aText); }
};
struct FreeTokens {
  void operator()(char** aTokens) const { g_strfreev(aTokens); }
};
using Counted = std::unique_ptr<char, ReleaseCounted>;
using String = std::unique_ptr<GString, FreeString>;
using Text = std::unique_ptr<char, FreeText>;
using Tokens = std::unique_ptr<char*, FreeTokens>;

static std::string Shown(const Counted& aText) {
  return std::string(aText.get(), g_ref_string_length(aText.get()));
}
static std::string Shown(const String& aString) { return std::string(aString->str, aString->len); }
static std::string Shown(const Text& aText) { return aText.get(); }
static std::string Shown(const Tokens& aTokens) {
  const Text theText(g_strjoinv("", aTokens.get()));
  return std::to_string(g_strv_length(aTokens.get())) + " " + theText.get();
}

static StringContender sCountedRows =
    StringContender("GLib counted string")
        .Row("copy", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               const Counted theSource(g_ref_string_new(theText.c_str()));
               Repeat(aState, theText, [&] { return Counted(g_ref_string_acquire(theSource.get())); });
             })
        .Row("from text", kAllSizesAndLonger, [](benchmark::State& aState) {
          const std::string theText = PlainText(aState.range(0));
          Repeat(aState, theText, [&] { return Counted(g_ref_string_new(theText.c_str())); });
        });

static StringContender sStringRows =
    StringContender("GLib GString")
        .Row("copy", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               const String theSource(g_string_new(theText.c_str()));
               Repeat(aState, theText, [&] {
                 return String(g_string_new_len(theSource->str, static_cast<gssize>(theSource->len)));
               });
             })
        .Row("from text", kAllSizesAndLonger,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] { return String(g_string_new(theText.c_str())); });
             })
        .Row("append characters", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] {
                 String theResult(g_string_new(nullptr));
                 for (char theChar : theText) {
                   g_string_append_c(theResult.get(), theChar);
                 }
                 return theResult;
               });
             })
        .Row("append characters, room made", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] {
                 String theResult(g_string_sized_new(theText.size()));
                 for (char theChar : theText) {
                   g_string_append_c(theResult.get(), theChar);
                 }
                 return theResult;
               });
             })
        .Row("append pieces", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = PiecesText(aState.range(0));
               Repeat(aState, theText, [&] {
                 String theResult(g_string_new(nullptr));
                 while (theResult->len < theText.size()) {
                   g_string_append(theResult.get(), kPiece);
                 }
                 return theResult;
               });
             })
        .Row("append pieces, room made", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = PiecesText(aState.range(0));
               Repeat(aState, theText, [&] {
                 String theResult(g_string_sized_new(theText.size()));
                 while (theResult->len < theText.size()) {
                   g_string_append(theResult.get(), kPiece);
                 }
                 return theResult;
               });
             })
        .Row("replace all", kLongSizes, [](benchmark::State& aState) {
          const std::string theText = EscapedText(aState.range(0));
          Repeat(aState, UnescapedText(aState.range(0)), [&] {
            String theResult(g_string_new_len(theText.data(), static_cast<gssize>(theText.size())));
            g_string_replace(theResult.get(), kEscaped, kUnescaped, 0);
            return theResult;
          });
        });

static StringContender sTextRows =
    StringContender("GLib text")
        .Row("from text", kAllSizesAndLonger,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] { return Text(g_strdup(theText.c_str())); });
             })
        .Row("concatenate", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0) / 2);
               Repeat(aState, theText + theText,
                      [&] { return Text(g_strconcat(theText.c_str(), theText.c_str(), nullptr)); });
             })
        .Row("find", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = HaystackText(aState.range(0));
               Repeat(aState, std::to_string(theText.size() - 8), [&] {
                 const char* thePlace =
                     g_strstr_len(theText.data(), static_cast<gssize>(theText.size()), kNeedle);
                 return static_cast<size_t>(thePlace - theText.data());
               });
             })
        .Row("replace all", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = EscapedText(aState.range(0));
               Repeat(aState, UnescapedText(aState.range(0)), [&] {
                 const Tokens theParts(g_strsplit(theText.c_str(), kEscaped, 0));
                 return Text(g_strjoinv(kUnescaped, theParts.get()));
               });
             })
        .Row("split", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theList = ListText(aState.range(0));
               Repeat(aState, TokensOf(theList), [&] { return Tokens(g_strsplit(theList.c_str(), ",", 0)); });
             })
        .Row("trim", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = PaddedText(aState.range(0));
               Repeat(aState, TrimmedText(aState.range(0)),
                      [&] { return Text(g_strstrip(g_strdup(theText.c_str()))); });
             })
        .Row("compare without case", kAllSizes, [](benchmark::State& aState) {
          const std::string theLeft = PlainText(aState.range(0));
          const std::string theRight = CapitalText(aState.range(0));
          Repeat(aState, "0",
                 [&] { return static_cast<size_t>(g_ascii_strcasecmp(theLeft.c_str(), theRight.c_str())); });
        });
