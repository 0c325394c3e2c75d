#include "storage/SavedAlignedAudio.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <new>
#include <span>
#include <string>

#include "common/Guarded.h"
#include "common/MessageWriter.h"
#include "core/AlignInfo.h"
#include "core/WordSpans.h"
#include "recognition/AlignmentResult.h"
#include "storage/SavedRecording.h"

namespace {

using veral3::AlignInfo;
using veral3::Message;
using veral3::MessageStream;
using veral3::SavedRecording;

constexpr int kFirstVersionWithRecord = 5;

// The value at `index` of the first `count`, 0 outside.
template <typename T, std::size_t n>
T At(const std::array<T, n>& values, int index, int count) {
  if (index < 0 || index >= count || static_cast<std::size_t>(index) >= n) return T{};
  return values[static_cast<std::size_t>(index)];
}

template <typename T, std::size_t n>
T At(const std::array<T, n>& values, int index) {
  return At(values, index, static_cast<int>(n));
}

Message Say() { return Message(MessageStream::kError); }

}  // namespace

SavedAlignedAudio::SavedAlignedAudio(LanguageType language) : m_nLanguage(language) {}
SavedAlignedAudio::SavedAlignedAudio(const SavedAlignedAudio& other) = default;
SavedAlignedAudio& SavedAlignedAudio::operator=(const SavedAlignedAudio& other) = default;
SavedAlignedAudio::~SavedAlignedAudio() = default;

const SavedRecording& SavedAlignedAudio::Recording() const {
  static const SavedRecording none;
  return m_recording ? *m_recording : none;
}

int SavedAlignedAudio::LoadFromHLY(HLYFile* file) {
  return veral3::Guarded("SavedAlignedAudio", "LoadFromHLY", [&] {
    if (!file) {
      Say() << "AlignedAudio::LoadFromHLY(): Error, no HLY file.\n";
      return -1;
    }
    const std::uint8_t version = file->GetHLYVersion();
    if (version < kFirstVersionWithRecord) {
      // The version goes out as the character of that code.
      Say() << "AlignedAudio::LoadFromHLY(): Error, cannot load alined data from an old HLY file "
               "with Version = ["
            << static_cast<char>(version) << "]\n";
      return -1;
    }
    m_strMatchedSentence = file->GetSentence();
    if (m_strMatchedSentence.IsLost()) throw std::bad_alloc();
    const int size = file->GetAlignInfoSize();
    constexpr int kSize = static_cast<int>(veral3::kAlignInfoSize);
    if (size < kSize) {
      Say() << "AlignedAudio::LoadFromHLY(): Error, incorrect size of align info in HLY file.\n";
      return -1;
    }
    if (size > kSize) {
      Say() << "AlignedAudio::LoadFromHLY(): Warning, larger align info in the HLY file. Is this a "
               "new version of HLY file format?\n";
    }
    if (!file->GetAlignInfo()) {
      Say() << "AlignedAudio::LoadFromHLY(): Error, no align info in HLY file.\n";
      return -1;
    }
    const AlignInfo info =
        veral3::DecodeAlignInfo(std::span<const std::uint8_t, veral3::kAlignInfoSize>(
            file->GetAlignInfo(), veral3::kAlignInfoSize));
    if (!veral3::HasSoundCounts(info)) {
      Say() << "AlignedAudio::LoadFromHLY(): Error, damaged align info in HLY file: "
            << info.num_phonemes << " phonemes, " << info.num_syllables << " syllables, "
            << info.num_words << " words.\n";
      return -1;
    }
    for (int i = 0; i < info.num_syllables; ++i) {
      if (std::isfinite(At(info.syllable_intensity, i))) continue;
      Say()
          << "AlignedAudio::LoadFromHLY(): Error, damaged align info in HLY file: the intensity of "
             "syllable "
          << i << " is not a finite number.\n";
      return -1;
    }
    m_recording = veral3::MakeSavedRecording(info);
    return 0;
  });
}

void SavedAlignedAudio::DumpData() {
  veral3::Guarded("SavedAlignedAudio", "DumpData", [&] {
    veral3::DumpRecording(*this, Recording().info);
    return 0;
  });
}

LanguageType SavedAlignedAudio::GetLanguageType() { return m_nLanguage; }

const char* SavedAlignedAudio::GetPhonemes() { return Recording().phonemes.c_str(); }

CString SavedAlignedAudio::GetMatchedSentence() { return m_strMatchedSentence; }

int SavedAlignedAudio::GetNumOfSamples() { return Recording().info.num_samples; }

int SavedAlignedAudio::GetNumOfPhonemes() { return Recording().info.num_phonemes; }

int SavedAlignedAudio::GetNumOfSyllables() { return Recording().info.num_syllables; }

int SavedAlignedAudio::GetNumOfWords() { return Recording().info.num_words; }

int SavedAlignedAudio::GetPhonemeStartSampleNum(int phon) {
  const AlignInfo& info = Recording().info;
  return At(info.phoneme_start, phon, info.num_phonemes) * veral3::kFrameShift;
}

int SavedAlignedAudio::GetPhonemeEndSampleNum(int phon) {
  const AlignInfo& info = Recording().info;
  return At(info.phoneme_end, phon, info.num_phonemes) * veral3::kFrameShift;
}

int SavedAlignedAudio::GetUttStartSampleNum() { return GetPhonemeStartSampleNum(0); }

int SavedAlignedAudio::GetUttEndSampleNum() {
  return GetPhonemeEndSampleNum(GetNumOfPhonemes() - 1);
}

int SavedAlignedAudio::GetSyllableStartPosition(int syl) {
  const AlignInfo& info = Recording().info;
  return At(info.syllable_start, syl, info.num_syllables);
}

int SavedAlignedAudio::GetWordStartPosition(int word) {
  const AlignInfo& info = Recording().info;
  return At(info.word_start, word, info.num_words);
}

int SavedAlignedAudio::GetSyllablePitch(int syl) {
  const AlignInfo& info = Recording().info;
  return At(info.syllable_pitch, syl, info.num_syllables);
}

double SavedAlignedAudio::GetSylToneProb(int syl, int tone) {
  const AlignInfo& info = Recording().info;
  return At(At(info.tone_prob, syl, info.num_syllables), tone) * 0.01;
}

int SavedAlignedAudio::GetSyllableToneOrStress(int syl) {
  const AlignInfo& info = Recording().info;
  return At(info.tone_or_stress, syl, info.num_syllables);
}

int SavedAlignedAudio::GetSyllableDuration(int syl) {
  const AlignInfo& info = Recording().info;
  return At(info.syllable_duration, syl, info.num_syllables);
}

double SavedAlignedAudio::GetSyllableIntensity(int syl) {
  const AlignInfo& info = Recording().info;
  return static_cast<double>(At(info.syllable_intensity, syl, info.num_syllables));
}

int SavedAlignedAudio::GetUttNumOfPitchSegments() { return Recording().info.num_pitch_segments; }

int SavedAlignedAudio::GetWaveY(int i) {
  return At(Recording().info.wave, i) * veral3::kAlignInfoWaveScale;
}

int SavedAlignedAudio::GetPitchContour(int i) { return At(Recording().info.pitch_contour, i); }

int SavedAlignedAudio::GetIntensityContour(int i) {
  return At(Recording().info.intensity_contour, i);
}

int SavedAlignedAudio::GetWordPitch(int word) {
  const SavedRecording& recording = Recording();
  return veral3::WordPitch(recording.words, recording.syllable_pitch, word);
}
