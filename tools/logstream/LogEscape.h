// LogEscape.h - makes bytes that came from anywhere fit to be shown, and to stand in JSON.
#ifndef LOGSTREAM_LOGESCAPE_H
#define LOGSTREAM_LOGESCAPE_H

#include <string>
#include <string_view>

#include "qvOS/qvTypes.h"

// Each appends aText to aOut.

// Control characters (C0 but the tab, DEL, C1) and bytes that are not UTF-8 become \xNN, two lower-case
// digits for each byte. A backslash stays as it is, so this cannot be read back with certainty.
void LogEscape_AppendText(std::string_view aText, std::string& aOut);

// The same, with blanks, tabs and backslashes escaped too: one word, which LogEscape_ReadField reads back.
// An empty text becomes "-", and a lone "-" is escaped.
void LogEscape_AppendField(std::string_view aText, std::string& aOut);

// The text of what LogEscape_AppendField wrote. False when it cannot have written it; aText is then
// undefined.
bool LogEscape_ReadField(std::string_view aField, std::string* aText);

// The inside of a JSON string. Control characters are escaped, C1 and DEL too; each byte that belongs to no
// valid UTF-8 character becomes U+FFFD.
void LogEscape_AppendJSON(std::string_view aText, std::string& aOut);

// The length of the valid UTF-8 character that aText begins with; 0 when there is none.
size_t LogEscape_CharacterLength(std::string_view aText);

#endif
