#include "tools/qvlogd/SyslogText.h"

#include "tools/logstream/LogEscape.h"

void SyslogText_AppendName(std::string_view aName, size_t aMax, std::string& aOut) {
  if (aName.empty()) {
    aOut += '-';
  }
  for (char theChar : aName.substr(0, aMax)) {
    aOut += theChar > ' ' && theChar < '\x7F' ? theChar : '_';
  }
}

void SyslogText_AppendData(const char* aName, std::string_view aValue, size_t aMax, std::string& aOut) {
  if (aValue.empty()) {
    return;
  }
  std::string theValue;
  LogEscape_AppendText(aValue.substr(0, aMax), theValue);
  aOut.append(" ").append(aName).append("=\"");
  for (char theChar : theValue) {
    if (theChar == '"' || theChar == '\\' || theChar == ']') {
      aOut += '\\';
    }
    aOut += theChar;
  }
  aOut += '"';
}
