#include "core/Pronunciation.h"

#include <gtest/gtest.h>

#include <array>
#include <map>

#include "core/Alignments.h"
#include "core/BadSpaces.h"
#include "core/BadSyllables.h"
#include "core/Goodness.h"
#include "core/ModelScorers.h"
#include "core/SyllableSpans.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using Ints = std::vector<std::int32_t>;
using Doubles = std::vector<double>;

void ExpectNear(const Doubles& actual, const Doubles& expected, double relative) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], relative * std::abs(expected[i])) << i;
  }
}

class PronunciationVectors : public testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    static const nlohmann::json json = test::LoadVectorJson("pronun.json");
    ASSERT_EQ(json.at("cases").size(), 18U);
    m_case = json.at("cases").at(static_cast<std::size_t>(GetParam()));
    m_language = static_cast<LanguageType>(m_case.at("language").get<int>());
    m_alignment = test::MakeAlignment(m_case.at("frames"), m_case.at("alignment"));
    m_alignment.mfcc = test::LoadVector<float>(m_case.at("mfcc"));
    m_alignment.path_posterior = m_case.at("path_posterior").get<Doubles>();
    m_alignment.phoneme_mfcc_prob = m_case.at("phon_mfcc_prob").get<Doubles>();
    m_alignment.pause_mfcc_prob = m_case.at("pause_mfcc_prob").get<Doubles>();
    m_rel_tol = m_case.at("rel_tol");
  }

  nlohmann::json m_case;
  LanguageType m_language{};
  AlignmentResult m_alignment;
  double m_rel_tol = 0.0;
};

TEST_P(PronunciationVectors, UtteranceProbabilitiesMatch) {
  const UtteranceProbabilities result = CalculateUtteranceProbabilities(m_alignment);
  ExpectNear({result.by_syllable, result.by_phoneme},
             {m_case.at("utt_syl_prob"), m_case.at("utt_phon_prob")}, m_rel_tol);
}

TEST_P(PronunciationVectors, DistributionsMatch) {
  static const std::map<LanguageType, std::string> kModels = {{kLanguageEnglish, "phon_en.bin"},
                                                              {kLanguageChinese, "phon_zh.bin"},
                                                              {kLanguageJapanese, "phon_ja.bin"}};
  const test::MessageCapture messages;
  DLPhonClassifier classifier;
  ASSERT_GE(classifier.LoadFromFile(test::VectorPath("models/" + kModels.at(m_language)).c_str()),
            0);
  const CPhonemeSet& set = *PhonemeSetOf(m_language);
  const PronunciationResult result =
      AnalyzePronunciation(set, m_alignment, ScorerOf(&classifier), {});
  EXPECT_EQ(result.phonemes.sounds_like, m_case.at("sounds_like").get<std::string>());
  ExpectNear(result.phonemes.sounds_like_prob, m_case.at("sounds_like_prob"),
             m_case.at("distr_rel_tol"));
  const auto distributions = m_case.at("distr").get<std::vector<Doubles>>();
  for (std::size_t i = 0; i < distributions.size(); ++i) {
    const auto row = result.phonemes.Row(static_cast<int>(i)).first(distributions[i].size());
    ExpectNear({row.begin(), row.end()}, distributions[i], m_case.at("distr_rel_tol"));
  }

  // Each phoneme scored for itself: the same bits.
  for (int i = 0; i < m_alignment.NumPhonemes(); ++i) {
    std::array<float, kPhonemeInputSize> input;
    AssemblePhonemeInput(m_alignment.mfcc, FramesOfPhonemes(m_alignment, {i, i}), input);
    Doubles alone(static_cast<std::size_t>(set.GetSize()));
    ASSERT_EQ(classifier.ClassifyPhon(input.data(), static_cast<int>(input.size()), alone.data(),
                                      set.GetSize()),
              0);
    const auto row = result.phonemes.Row(i).first(alone.size());
    EXPECT_EQ(Doubles(row.begin(), row.end()), alone);
  }
}

TEST_P(PronunciationVectors, LoudGapsMatch) {
  const Ints pitch = m_case.at("pitch");
  const Doubles intensity = m_case.at("intensity");
  EXPECT_EQ(CountLoudGaps(m_alignment, pitch, intensity, m_case.at("mean_speech")),
            m_case.at("loud_gaps").get<Ints>());
  EXPECT_EQ(CountLoudGapsPronunOnly(m_alignment, intensity, m_case.at("mean_speech")),
            m_case.at("loud_gaps_pronun_only").get<Ints>());
}

TEST_P(PronunciationVectors, SyllableGoodnessMatches) {
  const auto& input = m_case.at("syl_input");
  m_alignment.pause_mfcc_prob = input.at("pause_prob").get<Doubles>();
  ProsodyResult prosody;
  prosody.pitch.frame = m_case.at("pitch").get<Ints>();
  for (const int count : input.at("segments")) prosody.pitch.segments.push_back({count, 0, 0});
  prosody.intensity.frame = m_case.at("intensity").get<Doubles>();
  prosody.intensity.mean_speech = m_case.at("mean_speech");
  prosody.intensity.convexity = input.at("convexity").get<Doubles>();

  const GoodnessResult whole = MarkBadSyllables(m_language, m_alignment, prosody);
  ExpectNear(whole.good_syllable, m_case.at("good_syllable"), m_rel_tol);
  EXPECT_EQ(whole.loud_gaps, m_case.at("loud_gaps").get<Ints>());
  const GoodnessResult pronunciation =
      MarkBadSyllablesPronunOnly(m_language, m_alignment, prosody.intensity);
  ExpectNear(pronunciation.good_syllable, m_case.at("good_syllable_pronun_only"), m_rel_tol);
  EXPECT_EQ(pronunciation.loud_gaps, m_case.at("loud_gaps_pronun_only").get<Ints>());
}

TEST_P(PronunciationVectors, GoodnessFeaturesMatch) {
  const auto& input = m_case.at("feature_input");
  m_alignment.log_probability = input.at("log_prob");
  IntensityMeasures intensity;
  intensity.loud_frames_before = input.at("loud_before");
  intensity.loud_frames_after = input.at("loud_after");
  intensity.speech_to_utterance = input.at("energy_ratio");
  PronunciationResult pronunciation;
  pronunciation.utterance = CalculateUtteranceProbabilities(m_alignment);
  GoodnessResult goodness;
  goodness.loud_gaps = m_case.at("loud_gaps").get<Ints>();
  const GoodnessFeatures features =
      PrepareGoodnessFeatures(m_language, m_alignment, intensity, pronunciation, goodness);
  ExpectNear({features.begin(), features.end()}, m_case.at("goodness_features"), m_rel_tol);

  const test::MessageCapture messages;
  UGClassifier classifier;
  ASSERT_GE(classifier.LoadFromFile(test::VectorPath("models/good.bin").c_str()), 0);
  ExpectNear({ProbabilityOfGoodAlignment(features, ScorerOf(classifier))}, {m_case.at("goodness")},
             m_rel_tol);
}

INSTANTIATE_TEST_SUITE_P(Pronunciation, PronunciationVectors, testing::Range(0, 18));

}  // namespace
}  // namespace veral3
