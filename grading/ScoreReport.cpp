#include "grading/ScoreReport.h"

#include <ostream>

#include "common/MessageWriter.h"
#include "common/TextLines.h"

namespace veral3 {
namespace {

void List(Message& out, const char* name, const std::vector<int>& scores) {
  out << name << " =[";
  for (const int score : scores) out << score << " ";
  out << "]\n";
}

template <typename T>
T At(const std::vector<T>& values, int index) {
  const auto at = static_cast<std::size_t>(index);
  return at < values.size() ? values[at] : T{};
}

}  // namespace

void PrintScores(const ReportHead& head, const GradedResult& graded) {
  Message out(MessageStream::kWideOutput);
  if (graded.prob_good_timing < 1.0) {
    out << "// m_dProbOfGoodTiming = " << graded.prob_good_timing << "\n";
  }
  if (head.language == kLanguageEnglish) {
    out << "Sentence Text=[";
    for (const CString& word : head.words) out << word << " ";
    out << "]\n";
  }
  out << "================== Scores ==================\n"
      << "** UGC Penalty (m_dProbOfGoodUtt) = " << graded.goodness_factor << "\n"
      << "** S/N Ratio = " << head.signal_noise_ratio << "\n"
      << "Total Score =[" << graded.total << "]\n"
      << "Pronunciation Score =[" << graded.components.pronunciation << "]\n"
      << "Pitch Score =[" << graded.components.pitch << "]\n"
      << "Timing Score =[" << graded.components.timing << "]\n"
      << "Intensity Score =[" << graded.components.intensity << "]\n"
      << "---\n";
  List(out, "Pronun Score of Phoneme", graded.phoneme_pronunciation);
  List(out, "Pronun Score of Syllable", graded.syllable_pronunciation);
  List(out, "Pitch Score of Syllable", graded.syllable_pitch);
  List(out, "Timing Score of Syllable", graded.syllable_timing);
  List(out, "Intensity Score of Syllable", graded.syllable_intensity);
  out << "---\n";
  List(out, "Pronun Score of Word", graded.words.pronunciation);
  List(out, "Pitch Score of Word", graded.words.pitch);
  List(out, "Timing Score of Word", graded.words.timing);
  List(out, "Intensity Score of Word", graded.words.intensity);
  List(out, "Total Score of Word", graded.words.total);
}

void WriteUttMismatchTraits(std::ostream& out, std::string_view phonemes, int num_syllables,
                            int num_pitch_segments, const GradedResult& graded) {
  const double ratio = graded.pitch_segment_ratio;
  TextLines lines(out);
  lines << phonemes << "," << graded.timing_traits[0] << "," << graded.timing_traits[1] << ","
        << graded.timing_traits[2] << "," << num_syllables << ","
        << (ratio == 0.0 ? 0.0 : num_pitch_segments / ratio) << "," << num_pitch_segments;
  lines.End();
  out.flush();
}

void WriteSylMismatchTraits(std::ostream& out, int num_syllables, const GradedResult& graded) {
  TextLines lines(out);
  for (int s = 0; s < num_syllables; ++s) {
    lines << (s == 0                   ? "H,"
              : s == num_syllables - 1 ? "T,"
                                       : "-,")
          << At(graded.syllable_timing_percent, s) << ","
          << At(graded.syllable_intensity_percent, s);
    lines.End();
    out.flush();
  }
}

void WriteWordMismatchTraits(std::ostream& out, int num_words, const GradedResult& graded) {
  TextLines lines(out);
  for (int w = 0; w < num_words; ++w) {
    lines << At(graded.word_pitch_contrast, w) << "," << At(graded.word_timing_contrast, w) << ","
          << At(graded.word_intensity_contrast, w);
    lines.End();
    out.flush();
  }
}

}  // namespace veral3
