#include "storage/SavedRecording.h"

#include <span>
#include <string_view>

#include "common/MessageWriter.h"
#include "recognition/Languages.h"

namespace veral3 {
namespace {

using ListOf = int (AlignedAudio::*)(int);

std::size_t Index(int i) { return static_cast<std::size_t>(i); }

template <typename Value>
void List(Message& out, const char* name, int count, Value value) {
  out << name << " = [";
  for (int i = 0; i < count; ++i) out << value(i) << " ";
  out << "]\n";
}

const char* NameOf(LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  return row == nullptr ? "Error!" : row->record_code;
}

void DumpPhonemes(Message& out, AlignedAudio& audio, const AlignInfo& info) {
  const int count = info.num_phonemes;
  out << "--- Per Phoneme ---\n"
      << "m_strPhonemes = [" << audio.GetPhonemes() << "]\n";
  for (int i = 0; i < count; ++i) {
    out << "m_strPhonemes[" << i << "] = <" << info.phonemes[Index(i)] << ">\n";
  }
  const auto call = [&](ListOf operation) {
    return [&audio, operation](int i) { return (audio.*operation)(i); };
  };
  List(out, "GetPhonemeStartSampleNum()", count, call(&AlignedAudio::GetPhonemeStartSampleNum));
  List(out, "GetPhonemeEndSampleNum()", count, call(&AlignedAudio::GetPhonemeEndSampleNum));
}

void DumpSyllablesAndWords(Message& out, AlignedAudio& audio, const AlignInfo& info) {
  const int count = info.num_syllables;
  const auto call = [&](ListOf operation) {
    return [&audio, operation](int i) { return (audio.*operation)(i); };
  };
  out << "--- Per Syllable ---\n";
  List(out, "GetSyllableStartPos()", count, call(&AlignedAudio::GetSyllableStartPosition));
  List(out, "GetSyllablePitch()", count, call(&AlignedAudio::GetSyllablePitch));
  List(out, "GetSyllableDuration()", count, call(&AlignedAudio::GetSyllableDuration));
  List(out, "m_fSyllableIntensityArry", count,
       [&](int i) { return info.syllable_intensity[Index(i)]; });
  out << "--- Per Word ---\n";
  List(out, "GetWordStartPos()", info.num_words, call(&AlignedAudio::GetWordStartPosition));
  out << "--- Chinese tones Per Syllable(=word) ---\n";
  List(out, "m_nSyllableToneOrStress", count, [&](int i) { return info.tone_or_stress[Index(i)]; });
  out << "m_nSyllableToneProb = [\n";
  for (int i = 0; i < count; ++i) {
    for (const std::int16_t hundredths : info.tone_prob[Index(i)]) out << hundredths << " ";
    out << "\n";
  }
  out << "]\n";
}

void DumpContours(Message& out, const AlignInfo& info) {
  const auto numbers = [](std::span<const std::uint8_t> bytes) {
    return [bytes](int i) { return int{bytes[Index(i)]}; };
  };
  out << "--- Contour ---\n";
  List(out, "m_cWaveY", kAlignInfoWavePoints, numbers(info.wave));
  List(out, "m_cPitchContour", kAlignInfoContourPoints, numbers(info.pitch_contour));
  List(out, "m_cIntensityContour", kAlignInfoContourPoints, numbers(info.intensity_contour));
}

}  // namespace

std::shared_ptr<const SavedRecording> MakeSavedRecording(const AlignInfo& info) {
  auto recording = std::make_shared<SavedRecording>();
  recording->info = info;
  recording->phonemes.assign(info.phonemes.data(), info.phonemes.size());
  const auto first = [](const auto& values, int count) {
    return std::vector<std::int32_t>(values.begin(), values.begin() + count);
  };
  recording->words = FindWordSpans(first(info.syllable_start, info.num_syllables),
                                   first(info.word_start, info.num_words));
  recording->syllable_pitch = first(info.syllable_pitch, info.num_syllables);
  return recording;
}

void DumpRecording(AlignedAudio& audio, const AlignInfo& info) {
  Message(MessageStream::kError) << "----- SavedAlignedAudio::DumpData() -----\n"
                                 << "Language Type = " << NameOf(audio.GetLanguageType()) << "\n";
  Message(MessageStream::kWideError)
      << "GetMatchedSentence() = [" << audio.GetMatchedSentence() << "]\n";
  Message out(MessageStream::kError);
  out << "Size of AlignInfo = " << kAlignInfoSize << " Bytes\n"
      << "--- Per Utterance ---\n"
      << "GetNumOfSamples() = " << audio.GetNumOfSamples() << "\n"
      << "GetNumOfPhonemes() = " << audio.GetNumOfPhonemes() << "\n"
      << "GetNumOfSyllables() = " << audio.GetNumOfSyllables() << "\n"
      << "GetNumOfWords() = " << audio.GetNumOfWords() << "\n"
      << "GetUttNumOfPitchSegments() = " << audio.GetUttNumOfPitchSegments() << "\n";
  DumpPhonemes(out, audio, info);
  DumpSyllablesAndWords(out, audio, info);
  DumpContours(out, info);
}

}  // namespace veral3
