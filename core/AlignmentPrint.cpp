#include "core/AlignmentPrint.h"

#include <new>

#include "common/MessageWriter.h"
#include "core/AlignInfo.h"
#include "core/FrameSpan.h"

namespace veral3 {
namespace {

template <typename Value>
void List(Message& out, const char* name, int count, Value value) {
  out << name << "=[";
  for (int i = 0; i < count; ++i) out << value(i) << " ";
  out << "]\n";
}

}  // namespace

void PrintAlignment(AlignedAudio& audio, std::string_view sounds_like,
                    std::span<const double> good_syllable) {
  Message out(MessageStream::kOutput);
  out << "----- AnalyzedAudio::PrintAlignmentResult() -----\n";
  for (int i = 0; i < audio.GetNumOfSyllables(); ++i) {
    const double goodness = ReadOr(good_syllable, i);
    if (goodness < 1.0) out << "// m_dProbOfGoodSyllable[" << i << "]=" << goodness << "\n";
  }
  out << "Phonemes =\t[" << audio.GetPhonemes() << "]\n"
      << "SoundsLike=\t[" << sounds_like << "]\n"
      << "Number_of_Phonemes=[" << audio.GetNumOfPhonemes() << "]\n"
      << "Number_of_syllable=[" << audio.GetNumOfSyllables() << "]\n"
      << "Number_of_word=[" << audio.GetNumOfWords() << "]\n";
  List(out, "Syllable_start_position", audio.GetNumOfSyllables(),
       [&](int i) { return audio.GetSyllableStartPosition(i); });
  List(out, "Word_start_position", audio.GetNumOfWords(),
       [&](int i) { return audio.GetWordStartPosition(i); });
  out << "Number_of_samples=[" << audio.GetNumOfSamples() << "]\n"
      << "Audio_head_offset=[" << audio.GetUttStartSampleNum() << "]\n"
      << "Audio_tail_offset=[" << audio.GetUttEndSampleNum() << "]\n"
      << "Phoneme_position=[";
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    out << audio.GetPhonemeStartSampleNum(i) << " " << audio.GetPhonemeEndSampleNum(i) << " ";
  }
  out << "]\n";
  List(out, "S_wave_y", kAlignInfoWavePoints, [&](int i) { return audio.GetWaveY(i); });
  List(out, "S_pitch_contour", kAlignInfoContourPoints,
       [&](int i) { return audio.GetPitchContour(i); });
  List(out, "S_volume_contour", kAlignInfoContourPoints,
       [&](int i) { return audio.GetIntensityContour(i); });
  if (!out.IsWhole()) throw std::bad_alloc();
}

}  // namespace veral3
