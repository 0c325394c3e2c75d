#include "storage/HLYFile.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

namespace {

TEST(HLYFile, ConstructorTakesAllFields) {
  std::vector<std::int16_t> samples = {1, 2, 3};
  std::vector<unsigned char> record(2544, 7);
  const HLYFile file(HLYFile::kAudioWave, HLYFile::kL2Chinese, HLYFile::kSubL2Taiwan, 11, 12,
                     L"teacher", L"\u4F60\u597D", "nihao", 20261121, samples.data(), 3, 5, 2544,
                     record.data());
  EXPECT_EQ(file.GetOriginalAudioType(), HLYFile::kAudioWave);
  EXPECT_EQ(file.GetL2Type(), HLYFile::kL2Chinese);
  EXPECT_EQ(file.GetSubL2Type(), HLYFile::kSubL2Taiwan);
  EXPECT_EQ(file.GetTeacherID(), L"teacher");
  EXPECT_EQ(file.GetSentence(), L"\u4F60\u597D");
  EXPECT_STREQ(file.GetMBCSSentence(), "nihao");
  EXPECT_EQ(file.GetDate(), 20261121u);
  EXPECT_EQ(file.GetSamples(), samples.data());
  EXPECT_EQ(file.GetNumOfSamples(), 3u);
  EXPECT_EQ(file.GetHLYVersion(), 5);
  EXPECT_EQ(file.GetAlignInfoSize(), 2544);
  EXPECT_EQ(file.GetAlignInfo(), record.data());
}

TEST(HLYFile, ThereIsASetterForEachField) {
  std::int16_t sample = 1;
  unsigned char byte = 2;
  HLYFile file;
  file.SetOriginalAudioType(static_cast<HLYFile::AudioFileType>(77));
  file.SetL2Type(HLYFile::kL2Japanese);
  file.SetSubL2Type(HLYFile::kSubL2Tokyo);
  file.SetReserved(1, 2);
  file.SetTeacherID(L"t");
  file.SetSentence(L"s");
  file.SetMBCSSentence("m");
  file.SetDate(4);
  file.SetSamples(&sample, 1);
  file.SetHLYVersion(200);
  file.SetAlignInfo(&byte, -3);
  EXPECT_EQ(file.GetOriginalAudioType(), 77);  // values of an application's own
  EXPECT_EQ(file.GetL2Type(), HLYFile::kL2Japanese);
  EXPECT_EQ(file.GetSubL2Type(), HLYFile::kSubL2Tokyo);
  EXPECT_EQ(file.GetTeacherID(), L"t");
  EXPECT_EQ(file.GetSentence(), L"s");
  EXPECT_STREQ(file.GetMBCSSentence(), "m");
  EXPECT_EQ(file.GetDate(), 4u);
  EXPECT_EQ(file.GetSamples(), &sample);
  EXPECT_EQ(file.GetNumOfSamples(), 1u);
  EXPECT_EQ(file.GetHLYVersion(), 200);
  EXPECT_EQ(file.GetAlignInfo(), &byte);
  EXPECT_EQ(file.GetAlignInfoSize(), -3);
}

TEST(HLYFile, AnEmptyOneHoldsNothing) {
  const HLYFile file;
  EXPECT_EQ(file.GetSamples(), nullptr);
  EXPECT_EQ(file.GetAlignInfo(), nullptr);
  EXPECT_EQ(file.GetAlignInfoSize(), 0);
  EXPECT_EQ(file.GetHLYVersion(), 0);
  EXPECT_STREQ(file.GetMBCSSentence(), "");
  EXPECT_TRUE(file.GetSentence().IsEmpty());
}

TEST(HLYFile, CopiesReferToTheSameSamplesAndRecord) {
  std::vector<std::int16_t> samples = {1, 2, 3};
  std::vector<unsigned char> record(2544, 7);
  HLYFile file;
  file.SetSamples(samples.data(), 3);
  file.SetAlignInfo(record.data(), 2544);
  file.SetSentence(L"first");
  file.SetMBCSSentence("first");
  HLYFile copy(file);
  HLYFile assigned;
  assigned = file;
  file.SetSentence(L"second");
  file.SetMBCSSentence("second");
  samples[0] = 9;
  record[0] = 9;
  for (HLYFile* other : {&copy, &assigned}) {
    EXPECT_EQ(other->GetSamples()[0], 9);
    EXPECT_EQ(other->GetAlignInfo()[0], 9);
    EXPECT_EQ(other->GetSentence(), L"first");
    EXPECT_STREQ(other->GetMBCSSentence(), "first");
  }
}

// Nobody reads the two reserved words, which stand behind the three kinds; copies carry them along.
TEST(HLYFile, ReservedWordsTravelWithCopies) {
  const auto reserved = [](const HLYFile& file) {
    std::array<std::uint32_t, 5> words{};
    std::memcpy(words.data(), static_cast<const void*>(&file), sizeof(words));
    return std::pair{words[3], words[4]};
  };
  const HLYFile made(HLYFile::kAudioWave, HLYFile::kL2Chinese, HLYFile::kSubL2Taiwan, 11, 12, L"",
                     L"", "", 0, nullptr, 0, 5, 0, nullptr);
  EXPECT_EQ(reserved(made), (std::pair{11u, 12u}));
  HLYFile file;
  EXPECT_EQ(reserved(file), (std::pair{0u, 0u}));
  file.SetReserved(0x12345678u, 0x9ABCDEF0u);
  const HLYFile copy(file);
  HLYFile assigned;
  assigned = file;
  file.SetReserved(1, 2);
  EXPECT_EQ(reserved(file), (std::pair{1u, 2u}));
  EXPECT_EQ(reserved(copy), (std::pair{0x12345678u, 0x9ABCDEF0u}));
  EXPECT_EQ(reserved(assigned), (std::pair{0x12345678u, 0x9ABCDEF0u}));
}

TEST(HLYFile, AMultibyteSentenceIsCutToItsArray) {
  HLYFile file;
  file.SetMBCSSentence(std::string(5000, 'x').c_str());
  EXPECT_EQ(std::string(file.GetMBCSSentence()), std::string(2047, 'x'));
  file.SetMBCSSentence(file.GetMBCSSentence() + 2040);
  EXPECT_EQ(std::string(file.GetMBCSSentence()), std::string(7, 'x'));
  file.SetMBCSSentence(nullptr);
  EXPECT_STREQ(file.GetMBCSSentence(), "");
  for (int i = 0; i < HLYFile::kMBCSSize; ++i) EXPECT_EQ(file.GetMBCSSentence()[i], '\0');
}

}  // namespace
