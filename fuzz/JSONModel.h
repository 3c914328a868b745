// JSONModel.h - reads a flat JSON object, strictly: what breaks the grammar anywhere is none.
#ifndef FUZZ_JSONMODEL_H
#define FUZZ_JSONMODEL_H

#include <string>
#include <string_view>
#include <vector>

enum JSONModelKind { JSONModelKind_Text, JSONModelKind_Number, JSONModelKind_Word };

struct JSONModelMember {
  std::string mKey;  // as it is written
  JSONModelKind mKind;
  std::string mValue;  // of a text: what it stands for, with U+FFFD for half a pair of surrogates
};

// The members in their order; false when aLine is not one object, or a value is an object or an array.
// Whether texts are UTF-8 is not looked at.
bool JSONModel_Read(std::string_view aLine, std::vector<JSONModelMember>* aMembers);

#endif
