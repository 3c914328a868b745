// JSONLine.h - takes a flat JSON object that fills one line apart, member by member, without allocating.
//
// Flat: the values are texts, numbers and the words true, false and null. Everything else is a fault.
#ifndef LOGSTREAM_JSONLINE_H
#define LOGSTREAM_JSONLINE_H

#include <string>
#include <string_view>

enum JSONKind { JSONKind_Text, JSONKind_Number, JSONKind_Word };

struct JSONMember {
  std::string_view mKey;  // as it is written: escapes in it are left alone
  JSONKind mKind;
  std::string_view mValue;  // as it is written; a text without its quotes
};

class JSONLine {
 public:
  explicit JSONLine(std::string_view aLine) : mLeft(aLine) {}

  // The next member; false behind the last one and at a fault.
  bool Next(JSONMember* aMember);
  // After Next has returned false: whether the whole line was one flat object.
  bool IsComplete() const { return mState == State_Done; }

 private:
  enum State { State_Start, State_Members, State_Done, State_Fault };

  bool Skip(char aSign);
  bool TakeText(std::string_view* aText);
  bool TakePlain(JSONMember* aMember);
  bool TakeMember(JSONMember* aMember);
  bool End(bool afWell);

  std::string_view mLeft;
  State mState = State_Start;
};

// Appends the text with its escapes resolved, in UTF-8; a surrogate without its partner becomes U+FFFD.
void JSONLine_AppendText(std::string_view aValue, std::string& aText);

#endif
