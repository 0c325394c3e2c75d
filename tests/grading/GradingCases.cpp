#include "grading/GradingCases.h"

#include "recognition/CPhonemeSet.h"

namespace veral3::test {
namespace {

constexpr std::size_t kWidth = 64;

void Fill(const nlohmann::json& from, RecordingView& view) {
  view.language = static_cast<LanguageType>(from["language"].get<int>());
  view.phonemes = from["phonemes"];
  view.phoneme_start = from["start"].get<std::vector<int>>();
  view.phoneme_end = from["end"].get<std::vector<int>>();
  view.syllable_start = from["syl_start"].get<std::vector<int>>();
  view.syllable_pitch = from["syl_pitch"].get<std::vector<int>>();
  view.syllable_duration = from["syl_duration"].get<std::vector<int>>();
  view.syllable_intensity = from["syl_intensity"].get<std::vector<double>>();
  if (from.contains("tone_prob") && !from["tone_prob"].is_null()) {
    view.tone_probability = from["tone_prob"].get<std::vector<ToneRow>>();
  }
  view.pitch_segments = from["utt_segments"];
}

}  // namespace

RecordingView TutorOf(const nlohmann::json& tutor) {
  RecordingView view;
  Fill(tutor, view);
  return view;
}

LearnerView LearnerOf(const nlohmann::json& learner) {
  LearnerView view;
  Fill(learner, view);
  view.words.first_syllable = learner["word_first_syl"].get<std::vector<std::int32_t>>();
  view.words.num_syllables = learner["syl_per_word"].get<std::vector<std::int32_t>>();
  view.goodness = learner["prob_good_syl"].get<std::vector<double>>();
  view.distribution_width = kWidth;
  view.distributions.assign(view.phonemes.size() * kWidth, 0.0);
  const CPhonemeSet& set = *PhonemeSetOf(view.language);
  for (std::size_t i = 0; i < view.phonemes.size(); ++i) {
    const int index = std::max(set.GetPhonemeIndex(view.phonemes[i]), 0);
    view.distributions[i * kWidth + static_cast<std::size_t>(index)] = learner["phon_prob"][i];
  }
  return view;
}

}  // namespace veral3::test
