#include "tools/TutorFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "SoundFiles.h"
#include "core/AlignInfo.h"
#include "storage/SavedAlignedAudio.h"
#include "support/Vectors.h"
#include "tools/AudioFile.h"
#include "tools/Checksum.h"

namespace veral3::tools {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using veral3::test::ReadFile;
using veral3::test::WriteFile;

TutorFile MakeTutor(std::size_t num_samples = 1300) {
  TutorFile tutor;
  tutor.language = kLanguageChinese;
  tutor.variety = HLYFile::kSubL2Taiwan;
  tutor.teacher = "Lín";
  tutor.sentence = "你好";
  tutor.date = 20261121;
  for (std::size_t i = 0; i < num_samples; ++i) {
    tutor.samples.push_back(static_cast<std::int16_t>(i * 7919));
  }
  AlignInfo info;
  info.num_samples = static_cast<std::int32_t>(num_samples);
  info.num_phonemes = 2;
  info.num_syllables = 1;
  info.num_words = 1;
  info.phonemes[0] = 'n';
  info.phonemes[1] = 'i';
  info.phoneme_end = {2, 4};
  info.phoneme_start = {0, 2};
  info.syllable_duration[0] = 880;
  info.syllable_intensity[0] = 1e9F;
  tutor.record = EncodeAlignInfo(info);
  return tutor;
}

bool Same(const TutorFile& a, const TutorFile& b) {
  return a.language == b.language && a.variety == b.variety && a.teacher == b.teacher &&
         a.sentence == b.sentence && a.date == b.date && a.samples == b.samples &&
         a.record == b.record;
}

std::uint32_t NumberAt(const std::string& bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes.at(offset + i));
  }
  return value;
}

void PutNumber(std::string& bytes, std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) {
    bytes.at(offset + i) = static_cast<char>(value >> 8 * i & 255);
  }
}

// Where each chunk of a RIFF file has its content, by id.
std::map<std::string, std::pair<std::size_t, std::size_t>> Chunks(const std::string& bytes) {
  std::map<std::string, std::pair<std::size_t, std::size_t>> chunks;
  std::size_t offset = 12;
  while (offset + 8 <= bytes.size()) {
    const std::size_t size = NumberAt(bytes, offset + 4);
    chunks[bytes.substr(offset, 4)] = {offset + 8, size};
    offset += 8 + size + size % 2;
  }
  EXPECT_EQ(offset, bytes.size());
  return chunks;
}

std::string DigestText(const std::string& bytes) {
  const Sha256Digest digest = Sha256(bytes);
  return std::string(digest.begin(), digest.end());
}

class TutorFileTest : public testing::Test {
 protected:
  // The bytes of a tutor's file.
  std::string Written(const TutorFile& tutor) {
    EXPECT_EQ(WriteTutor(m_path, tutor), "");
    return ReadFile(m_path);
  }

  // Loads these bytes as a file.
  Result<TutorFile> Load(const std::string& bytes) {
    WriteFile(m_path, bytes);
    return LoadTutor(m_path);
  }

  std::string ErrorOf(const std::string& bytes) {
    const auto result = Load(bytes);
    EXPECT_FALSE(result);
    return result ? "" : result.Error();
  }

  // The file with another chunk, whose checksum is right.
  std::string WithChunk(const std::string& bytes, const std::function<void(std::string&)>& change) {
    const auto [begin, size] = Chunks(bytes).at("vrl3");
    std::string chunk = bytes.substr(begin, size);
    const std::size_t end = NumberAt(chunk, 4) - 32;
    change(chunk);
    chunk.replace(end, 32, DigestText(chunk.substr(0, end)));
    std::string changed = bytes;
    return changed.replace(begin, size, chunk);
  }

  veral3::test::ScratchFolder m_folder;
  std::filesystem::path m_path = m_folder.Path() / "tutor.wav";
};

TEST_F(TutorFileTest, WhatWasWrittenIsRead) {
  for (const std::size_t samples : {551u, 552u, 1300u, 200000u}) {
    TutorFile tutor = MakeTutor(samples);
    tutor.sentence.append(samples % 7, '!');
    Written(tutor);
    const auto read = LoadTutor(m_path);
    ASSERT_TRUE(read) << read.Error();
    EXPECT_TRUE(Same(*read, tutor));
  }
}

TEST_F(TutorFileTest, TextsOfEveryLength) {
  TutorFile tutor = MakeTutor();
  for (const std::size_t length : {1u, 2u, 3u, 4u, 5u, 16384u}) {
    tutor.sentence.assign(length, 'x');
    tutor.teacher.assign(std::min<std::size_t>(length - 1, 1024), 'y');
    Written(tutor);
    const auto read = LoadTutor(m_path);
    ASSERT_TRUE(read) << read.Error();
    EXPECT_TRUE(Same(*read, tutor));
  }
}

TEST_F(TutorFileTest, IsARecordingThatAnyProgramReads) {
  const TutorFile tutor = MakeTutor();
  Written(tutor);
  const auto recording = ReadAudioFile(m_path);
  ASSERT_TRUE(recording) << recording.Error();
  EXPECT_EQ(recording->samples, tutor.samples);
  EXPECT_EQ(recording->source_rate, 22050);
  EXPECT_EQ(recording->source_channels, 1);
}

// To the byte, as docs/formats/tutor-file.md says.
TEST_F(TutorFileTest, Layout) {
  const TutorFile tutor = MakeTutor();
  const std::string bytes = Written(tutor);
  EXPECT_EQ(bytes, Written(tutor));
  EXPECT_EQ(bytes.substr(0, 4) + bytes.substr(8, 4), "RIFFWAVE");
  EXPECT_EQ(NumberAt(bytes, 4), bytes.size() - 8);
  const auto chunks = Chunks(bytes);
  ASSERT_EQ(chunks.size(), 3u);
  const std::string format("\x01\x00\x01\x00\x22\x56\x00\x00\x44\xAC\x00\x00\x02\x00\x10\x00", 16);
  EXPECT_EQ(bytes.substr(chunks.at("fmt ").first, chunks.at("fmt ").second), format);

  std::string sound;
  for (const std::int16_t sample : tutor.samples) {
    sound += static_cast<char>(sample & 255);
    sound += static_cast<char>(sample >> 8 & 255);
  }
  EXPECT_EQ(bytes.substr(chunks.at("data").first, chunks.at("data").second), sound);
  EXPECT_LT(chunks.at("vrl3").first, chunks.at("data").first);

  const std::string chunk = bytes.substr(chunks.at("vrl3").first, chunks.at("vrl3").second);
  const std::size_t size = 64 + 2544 + tutor.teacher.size() + tutor.sentence.size() + 32;
  const std::uint32_t head[] = {1, static_cast<std::uint32_t>(size), 2, 2, 20261121, 1300, 4, 6};
  for (std::size_t i = 0; i < std::size(head); ++i) EXPECT_EQ(NumberAt(chunk, 4 * i), head[i]) << i;
  EXPECT_EQ(chunk.substr(32, 32), DigestText(sound));
  EXPECT_EQ(chunk.substr(64, 2544), std::string(tutor.record.begin(), tutor.record.end()));
  EXPECT_EQ(chunk.substr(2608, 4 + 6), "Lín你好");
  EXPECT_EQ(chunk.substr(2618, 32), DigestText(chunk.substr(0, 2618)));
  EXPECT_EQ(chunk.substr(2650), std::string(2, '\0'));
}

TEST_F(TutorFileTest, AsTheEngineTakesIt) {
  TutorFile tutor = MakeTutor();
  HLYFile file = AsHLYFile(tutor);
  EXPECT_EQ(file.GetOriginalAudioType(), HLYFile::kAudioWave);
  EXPECT_EQ(file.GetL2Type(), HLYFile::kL2Chinese);
  EXPECT_EQ(file.GetSubL2Type(), HLYFile::kSubL2Taiwan);
  EXPECT_EQ(file.GetTeacherID().Utf8(), tutor.teacher);
  EXPECT_EQ(file.GetSentence(), L"你好");
  EXPECT_STREQ(file.GetMBCSSentence(), "你好");
  EXPECT_EQ(file.GetDate(), 20261121u);
  EXPECT_EQ(file.GetSamples(), tutor.samples.data());
  EXPECT_EQ(file.GetNumOfSamples(), 1300u);
  SavedAlignedAudio saved(tutor.language);
  EXPECT_EQ(saved.LoadFromHLY(&file), 0);
  EXPECT_STREQ(saved.GetPhonemes(), "ni");
  EXPECT_EQ(saved.GetSyllableDuration(0), 880);
}

TEST_F(TutorFileTest, EveryCutIsNoticed) {
  const TutorFile tutor = MakeTutor(600);
  const std::string bytes = Written(tutor);
  for (std::size_t size = bytes.size(); size-- > 0;) {
    std::filesystem::resize_file(m_path, size);
    const auto result = LoadTutor(m_path);
    ASSERT_FALSE(result) << size << " of " << bytes.size();
    ASSERT_NE(result.Error(), "");
  }
}

TEST_F(TutorFileTest, AFlippedBitIsNoticedOrDoesNoHarm) {
  const TutorFile tutor = MakeTutor(600);
  const std::string bytes = Written(tutor);
  std::mt19937 random(20261121);
  int noticed = 0;
  for (int round = 0; round < 5000; ++round) {
    std::string damaged = bytes;
    for (auto i = random() % 3; i < 3; ++i) {
      damaged[random() % damaged.size()] ^= static_cast<char>(1 << random() % 8);
    }
    const auto result = Load(damaged);
    if (!result) {
      ++noticed;
    } else {
      ASSERT_TRUE(Same(*result, tutor)) << "round " << round;
    }
  }
  EXPECT_GT(noticed, 4900);  // the rest hit bytes that nothing depends on, or each other
}

TEST_F(TutorFileTest, BytesInPlaceOfOthersAreNoticed) {
  const TutorFile tutor = MakeTutor(600);
  const std::string bytes = Written(tutor);
  std::mt19937 random(3);
  for (int round = 0; round < 2000; ++round) {
    std::string damaged = bytes;
    const std::size_t begin = random() % bytes.size();
    switch (random() % 3) {
      case 0:  // numbers of any size where sizes stand
        PutNumber(damaged, 4 * (random() % 30), static_cast<std::uint32_t>(random()));
        break;
      case 1:
        damaged.erase(begin, random() % 2000);
        break;
      default:
        damaged.insert(begin, random() % 2000, static_cast<char>(random()));
    }
    const auto result = Load(damaged);
    ASSERT_TRUE(!result || Same(*result, tutor)) << "round " << round;
  }
}

TEST_F(TutorFileTest, AbsurdSizes) {
  const TutorFile tutor = MakeTutor();
  const std::string bytes = Written(tutor);
  const auto chunks = Chunks(bytes);
  for (const std::uint32_t size : {0xFFFFFFFFu, 0xFFFFFFF0u, 0x7FFFFFFFu, 0x80000000u, 0u}) {
    for (const char* id : {"vrl3", "fmt "}) {
      std::string changed = bytes;
      PutNumber(changed, chunks.at(id).first - 4, size);
      EXPECT_NE(ErrorOf(changed), "") << id << " " << size;
    }
    for (const std::size_t field : {4u, 20u, 24u, 28u}) {
      EXPECT_NE(
          ErrorOf(WithChunk(bytes, [&](std::string& chunk) { PutNumber(chunk, field, size); })),
          "");
    }
    // The sound's size may be whatever it likes as long as the sound is there.
    std::string changed = bytes;
    PutNumber(changed, chunks.at("data").first - 4, size);
    const auto result = Load(changed);
    EXPECT_TRUE(!result || Same(*result, tutor));
  }
}

TEST_F(TutorFileTest, ALaterVersion) {
  const std::string bytes = Written(MakeTutor());
  EXPECT_EQ(ErrorOf(WithChunk(bytes, [](std::string& chunk) { PutNumber(chunk, 0, 2); })),
            "is a tutor file of format version 2, made by a later veral3 (or damaged); this one "
            "reads version 1");
  EXPECT_EQ(ErrorOf(WithChunk(bytes, [](std::string& chunk) { PutNumber(chunk, 0, 0); })),
            "is a damaged tutor file");
}

TEST_F(TutorFileTest, FilesThatAreNone) {
  const auto error = [&](const std::string& name) {
    const auto result = LoadTutor(m_folder.Path() / name);
    return result ? "read" : result.Error();
  };
  EXPECT_EQ(error("missing.wav"), "does not exist");
  EXPECT_EQ(error("."), "is a folder");
  WriteFile(m_folder.Path() / "empty.wav", "");
  EXPECT_EQ(error("empty.wav"), "is empty (0 bytes)");
  WriteFile(m_folder.Path() / "text.wav", "VERAL 3 EN_KEP5 0\n");
  EXPECT_THAT(error("text.wav"), StartsWith("is no tutor file: "));
  test::WriteSoundFile(m_folder.Path() / "plain.wav", test::Sine(200, 0.5, 0.1, 22050, 1), 22050, 1,
                       SF_FORMAT_WAV | SF_FORMAT_PCM_16);
  test::WriteSoundFile(m_folder.Path() / "plain.flac", test::Sine(200, 0.5, 0.1, 44100, 2), 44100,
                       2, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
  for (const char* name : {"plain.wav", "plain.flac"}) {
    EXPECT_EQ(error(name), "is a recording, no tutor file; `veral3 tutor` makes one of it");
  }
}

TEST_F(TutorFileTest, SoundThatWasChanged) {
  const std::string bytes = Written(MakeTutor());
  std::string changed = bytes;
  changed[Chunks(bytes).at("data").first + 100] ^= 1;
  EXPECT_EQ(ErrorOf(changed), "is a damaged tutor file: its sound is not the one analysed");
  changed = bytes;
  changed[Chunks(bytes).at("vrl3").first + 2610] ^= 1;
  EXPECT_EQ(ErrorOf(changed), "is a damaged tutor file: its checksum is wrong");
}

// What players add to a file, and other programs keep in it, is no damage.
TEST_F(TutorFileTest, OtherChunksAreLetBe) {
  const TutorFile tutor = MakeTutor();
  std::string bytes = Written(tutor);
  bytes += std::string("LIST\x0C\x00\x00\x00INFOICMT\x00\x00\x00\x00", 20);
  PutNumber(bytes, 4, static_cast<std::uint32_t>(bytes.size() - 8));
  const auto read = Load(bytes);
  ASSERT_TRUE(read) << read.Error();
  EXPECT_TRUE(Same(*read, tutor));
}

TEST_F(TutorFileTest, RecordsThatDoNotBelong) {
  const std::string bytes = Written(MakeTutor());
  const auto with_record = [&](const std::function<void(AlignInfo&)>& change) {
    return WithChunk(bytes, [&](std::string& chunk) {
      AlignInfo info;
      info.num_samples = 1300;
      info.num_phonemes = 1;
      change(info);
      const auto record = EncodeAlignInfo(info);
      std::copy(record.begin(), record.end(), chunk.begin() + 64);
    });
  };
  EXPECT_TRUE(Load(with_record([](AlignInfo&) {})));
  EXPECT_THAT(ErrorOf(with_record([](AlignInfo& info) { info.num_words = 65; })),
              StartsWith("is a tutor file that holds a damaged alignment: "));
  EXPECT_EQ(ErrorOf(with_record([](AlignInfo& info) { info.num_samples = 1299; })),
            "is a tutor file that holds the alignment of another recording");
  EXPECT_EQ(ErrorOf(with_record([](AlignInfo& info) { info.num_phonemes = 0; })),
            "is a tutor file that holds an alignment of nothing");
  EXPECT_EQ(ErrorOf(WithChunk(bytes, [](std::string& chunk) { PutNumber(chunk, 8, 4); })),
            "is a tutor file that holds an unknown language");
  EXPECT_EQ(ErrorOf(WithChunk(bytes, [](std::string& chunk) { chunk[2612] = '\xFF'; })),
            "is a tutor file that holds a sentence that is not UTF-8");
}

// A file whose checksums are right may still come from somebody who means harm.
TEST_F(TutorFileTest, IntensitiesThatNoRecordingHas) {
  const TutorFile tutor = MakeTutor();
  const std::string bytes = Written(tutor);
  const auto with_intensity = [&](float first, float second) {
    AlignInfo info = DecodeAlignInfo(tutor.record);
    info.num_syllables = 2;
    info.syllable_intensity[0] = first;
    info.syllable_intensity[1] = second;
    return EncodeAlignInfo(info);
  };
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  for (const auto& [value, problem] :
       {std::pair{kInfinity, "an infinite intensity of syllable 2"},
        std::pair{-kInfinity, "an infinite intensity of syllable 2"},
        std::pair{std::nanf(""), "an intensity of syllable 2 that is not a number"},
        std::pair{-1.0F, "a negative intensity of syllable 2"},
        std::pair{-1e-30F, "a negative intensity of syllable 2"}}) {
    TutorFile changed = tutor;
    changed.record = with_intensity(1e9F, value);
    EXPECT_EQ(WriteTutor(m_path, changed), std::string("is not written: it would hold ") + problem);
    EXPECT_EQ(ReadFile(m_path), bytes);
    EXPECT_EQ(ErrorOf(WithChunk(bytes,
                                [&](std::string& chunk) {
                                  std::ranges::copy(changed.record, chunk.begin() + 64);
                                })),
              std::string("is a tutor file that holds ") + problem);
    WriteFile(m_path, bytes);
  }
  for (const float value : {0.0F, -0.0F, 1e-40F, 3e38F}) {
    TutorFile changed = tutor;
    changed.record = with_intensity(value, value);
    EXPECT_EQ(WriteTutor(m_path, changed), "");
    EXPECT_TRUE(LoadTutor(m_path));
  }
}

TEST_F(TutorFileTest, WhatCannotBeATutorIsNotWritten) {
  const std::string before = Written(MakeTutor());
  const auto refused = [&](const std::function<void(TutorFile&)>& change) {
    TutorFile tutor = MakeTutor();
    change(tutor);
    return WriteTutor(m_path, tutor);
  };
  EXPECT_EQ(refused([](TutorFile& t) { t.sentence.clear(); }),
            "is not written: it would hold no sentence");
  EXPECT_EQ(refused([](TutorFile& t) { t.sentence.assign(1, '\xFF'); }),
            "is not written: it would hold a sentence that is not UTF-8");
  EXPECT_THAT(refused([](TutorFile& t) { t.sentence.assign(16385, 'x'); }),
              HasSubstr("a sentence of more than 16384 bytes"));
  EXPECT_THAT(refused([](TutorFile& t) { t.teacher.assign(1025, 'x'); }),
              HasSubstr("a teacher's name of more than 1024 bytes"));
  EXPECT_THAT(refused([](TutorFile& t) { t.samples.clear(); }), HasSubstr("no sound"));
  EXPECT_THAT(refused([](TutorFile& t) { t.samples.resize(kMaxTutorSamples + 1); }),
              HasSubstr("more than 5.4 minutes"));
  EXPECT_THAT(refused([](TutorFile& t) { t.samples.push_back(0); }),
              HasSubstr("the alignment of another recording"));
  EXPECT_THAT(refused([](TutorFile& t) { t.language = static_cast<LanguageType>(0); }),
              HasSubstr("an unknown language"));
  EXPECT_EQ(ReadFile(m_path), before);
  EXPECT_THAT(WriteTutor(m_folder.Path() / "no" / "tutor.wav", MakeTutor()),
              StartsWith("cannot be written: "));
}

TEST(Checksum, OfAStreamIsThatOfItsBytes) {
  std::string bytes;
  for (const std::size_t size : {0u, 1u, 65535u, 65536u, 65537u, 200000u}) {
    while (bytes.size() < size) bytes += static_cast<char>(bytes.size() * 7 + bytes.size() / 256);
    std::istringstream file(bytes);
    EXPECT_EQ(Sha256(file), Sha256(bytes)) << size;
  }
}

TEST(Checksum, OfKnownTexts) {
  EXPECT_EQ(Hexadecimal(Sha256("")),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(Hexadecimal(Sha256("abc")),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

}  // namespace
}  // namespace veral3::tools
