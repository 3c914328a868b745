#include "support/ElfImage.h"

void PutNumber(std::string* aBytes, size_t anOffset, size_t aSize, uint64_t aValue) {
  for (size_t i = 0; i < aSize; ++i) {
    aBytes->at(anOffset + i) = static_cast<char>(aValue >> (8 * i) & 0xFF);
  }
}

std::string ElfImage::Bytes() const {
  std::string theNames(1, '\0');
  std::string theData;
  const size_t theDataOffset = HeaderAt(NamesIndex() + 1);
  std::string theBytes(theDataOffset, '\0');
  theBytes.replace(0, 7, std::string("\177ELF") + (mf64 ? '\2' : '\1') + "\1\1");
  PutNumber(&theBytes, SectionTableField(), WordSize(), FileHeaderSize());
  PutNumber(&theBytes, EntrySizeField(), 2, SectionHeaderSize());
  PutNumber(&theBytes, EntryCountField(), 2, NamesIndex() + 1);
  PutNumber(&theBytes, NamesIndexField(), 2, NamesIndex());

  std::vector<Section> theSections = mSections;
  theSections.push_back({".shstrtab", "", 3});
  for (const Section& theSection : theSections) {
    theNames += theSection.mName + '\0';
  }
  theSections.back().mData = theNames;
  size_t theName = 1;
  for (size_t i = 0; i < theSections.size(); ++i) {
    PutNumber(&theBytes, NameField(i + 1), 4, theName);
    PutNumber(&theBytes, TypeField(i + 1), 4, theSections[i].mType);
    PutNumber(&theBytes, OffsetField(i + 1), WordSize(), theDataOffset + theData.size());
    PutNumber(&theBytes, SizeField(i + 1), WordSize(), theSections[i].mData.size());
    theName += theSections[i].mName.size() + 1;
    theData += theSections[i].mData;
  }
  return theBytes + theData;
}
