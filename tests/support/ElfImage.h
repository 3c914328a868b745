// ElfImage.h - builds the bytes of an ELF file, sound ones and broken ones.
#ifndef TESTS_SUPPORT_ELFIMAGE_H
#define TESTS_SUPPORT_ELFIMAGE_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

// A little-endian file of the 32-bit or the 64-bit class with a null section, the sections that are added,
// and the section of their names as the last one:
//
//   file header | section header 0 | 1 | ... | names | data of section 1 | ... | the names
class ElfImage {
 public:
  static constexpr uint32_t kProgramData = 1;
  static constexpr uint32_t kNoBits = 8;
  static constexpr uint32_t kNote = 7;

  explicit ElfImage(int aBits) : mf64(aBits == 64) {}

  ElfImage& Add(const std::string& aName, const std::string& aData, uint32_t aType = kProgramData) {
    mSections.push_back({aName, aData, aType});
    return *this;
  }
  std::string Bytes() const;

  // Where fields stand in the bytes. anIndex counts the null section as 0; the names have the last one.
  size_t NamesIndex() const { return mSections.size() + 1; }
  size_t FileHeaderSize() const { return mf64 ? 64 : 52; }
  size_t SectionHeaderSize() const { return mf64 ? 64 : 40; }
  size_t SectionTableField() const { return mf64 ? 40 : 32; }
  size_t EntrySizeField() const { return mf64 ? 58 : 46; }
  size_t EntryCountField() const { return mf64 ? 60 : 48; }
  size_t NamesIndexField() const { return mf64 ? 62 : 50; }
  size_t NameField(size_t anIndex) const { return HeaderAt(anIndex); }
  size_t TypeField(size_t anIndex) const { return HeaderAt(anIndex) + 4; }
  size_t OffsetField(size_t anIndex) const { return HeaderAt(anIndex) + (mf64 ? 24 : 16); }
  size_t SizeField(size_t anIndex) const { return HeaderAt(anIndex) + (mf64 ? 32 : 20); }
  // Bytes of an address, an offset or a size.
  size_t WordSize() const { return mf64 ? 8 : 4; }

 private:
  struct Section {
    std::string mName;
    std::string mData;
    uint32_t mType;
  };
  size_t HeaderAt(size_t anIndex) const { return FileHeaderSize() + anIndex * SectionHeaderSize(); }

  bool mf64;
  std::vector<Section> mSections;
};

// Writes a little-endian number of aSize bytes over the bytes at anOffset.
void PutNumber(std::string* aBytes, size_t anOffset, size_t aSize, uint64_t aValue);

#endif
