#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "recognition/AlignerCases.h"
#include "recognition/ViterbiAligner.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

// Networks, scores and alignments computed by an implementation that shares no code with ours.
namespace veral3 {
namespace {

using nlohmann::json;

WordSequence SentenceOf(const json& words) {
  std::vector<std::shared_ptr<const OwnedWordEntry>> entries;
  for (const json& word : words) {
    std::vector<OwnedWordEntry::Variant> variants;
    for (const json& variant : word["variants"]) {
      variants.push_back({variant["phonemes"], variant["marks"], variant["starts"]});
    }
    const CString text(word["text"].get<std::string>());
    entries.push_back(std::make_shared<const OwnedWordEntry>(text.GetString(), variants));
  }
  return test::Sentence(std::move(entries));
}

std::vector<double> ScoresOf(const std::string& name) {
  if (name.ends_with(".f64")) return test::LoadVector<double>(name);
  const std::vector<float> values = test::LoadVector<float>(name);
  return {values.begin(), values.end()};
}

template <typename T>
std::vector<std::int32_t> First(const T& array, std::size_t count) {
  return {array.begin(), array.begin() + static_cast<std::ptrdiff_t>(count)};
}

void ExpectNear(const std::vector<double>& got, const json& want, double tolerance) {
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    const double value = want[i];
    EXPECT_LE(std::abs(got[i] - value), tolerance * std::abs(value)) << i;
  }
}

void Check(int answer, const std::string& messages, AlignmentResult& got, const json& want,
           double tolerance) {
  EXPECT_EQ(answer, want["result"].get<int>());
  EXPECT_EQ(messages, want["stderr"].get<std::string>());
  if (answer < 0) return;
  EXPECT_EQ(got.matched_sentence_index, want["matched"].get<int>());
  EXPECT_NEAR(got.log_probability, want["log_prob"].get<double>(),
              tolerance * std::abs(want["log_prob"].get<double>()));
  EXPECT_EQ(got.phonemes, want["phonemes"].get<std::string>());
  const std::size_t phonemes = got.phonemes.size();
  EXPECT_EQ(json(First(got.phoneme_start, phonemes)), want["start"]);
  EXPECT_EQ(json(First(got.phoneme_end, phonemes)), want["end"]);
  ASSERT_EQ(got.num_syllables, want["num_syllables"].get<int>());
  const auto syllables = static_cast<std::size_t>(got.num_syllables);
  EXPECT_EQ(json(First(got.syllable_start, syllables)), want["syl_start"]);
  EXPECT_EQ(json(First(got.syllable_mark, syllables)), want["syl_mark"]);
  EXPECT_EQ(got.num_words, want["num_words"].get<int>());
  std::vector<std::string> words;
  for (const CString& word : got.words) words.push_back(word.Utf8());
  EXPECT_EQ(json(words), want["words"]);
  EXPECT_EQ(json(First(got.word_start, words.size())), want["word_start"]);
  EXPECT_EQ(got.num_frames, want["num_frames"].get<int>());
  EXPECT_EQ(got.path.size(), want["history_len"].get<std::size_t>());

  ASSERT_EQ(got.path_posterior.size(), static_cast<std::size_t>(got.num_frames));
  EXPECT_EQ(got.path_posterior.back(), 0.0);
  got.path_posterior.pop_back();
  ExpectNear(got.path_posterior, want["path_posterior"], tolerance);
  if (phonemes == 0) return;
  ExpectNear(got.phoneme_mfcc_prob, want["phon_prob"], tolerance);
  ExpectNear(got.pause_mfcc_prob, want["pause_prob"], tolerance);
}

TEST(ViterbiAlignerVectors, AllNetworks) {
  const json cases = test::LoadVectorJson("aligner.json")["cases"];
  EXPECT_EQ(cases.size(), 97u);
  for (const json& entry : cases) {
    SCOPED_TRACE(entry["name"].get<std::string>());
    const CPhonemeSet& set = *PhonemeSetOf(static_cast<LanguageType>(entry["language"].get<int>()));
    const std::vector<double> scores = ScoresOf(entry["scores"]);
    const json expected =
        entry["expected"].is_array() ? entry["expected"] : json::array({entry["expected"]});

    // One alignment, or several with sentences added before each.
    ViterbiAligner aligner;
    for (const json& want : expected) {
      while (aligner.NumSentences() < want["sentences_added"].get<int>()) {
        aligner.AddSentence(
            SentenceOf(entry["sentences"][static_cast<std::size_t>(aligner.NumSentences())]));
      }
      AlignmentResult result = test::WithScores(set, scores);
      ASSERT_EQ(result.score_columns, entry["columns"].get<int>());
      ASSERT_EQ(result.num_frames, entry["frames"].get<int>());
      const test::MessageCapture capture;
      const int answer = aligner.AlignScores(set, result);
      Check(answer, capture.StandardError(), result, want, entry["rel_tol"]);
    }
  }
}

}  // namespace
}  // namespace veral3
