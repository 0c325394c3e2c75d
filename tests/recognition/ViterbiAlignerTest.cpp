#include "recognition/ViterbiAligner.h"

#include <gmock/gmock.h>

#include <cmath>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "recognition/AlignerCases.h"
#include "recognition/FrameScores.h"
#include "recognition/Models.h"
#include "signal/Mfcc.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using test::Sentence;
using test::Spoken;
using test::Track;
using test::Word;
using testing::HasSubstr;

const CPhonemeSet& Japanese() { return *PhonemeSetOf(kLanguageJapanese); }

// Says each phoneme in three frames, then the end node's frame.
AlignmentResult Say(const std::string& phonemes) {
  return Spoken(Japanese(), Track(phonemes) + "-0");
}

ViterbiAligner Aligner(const std::vector<WordSequence>& sentences) {
  ViterbiAligner aligner;
  for (const WordSequence& sentence : sentences) aligner.AddSentence(sentence);
  return aligner;
}

WordSequence WithSyllables(std::wstring text, std::vector<OwnedWordEntry::Variant> variants) {
  return Sentence({std::make_shared<const OwnedWordEntry>(std::move(text), std::move(variants))});
}

TEST(ViterbiAligner, FindsPhonemesSyllablesAndWords) {
  const ViterbiAligner aligner = Aligner({Sentence({Word(L"KA", {"ka"}), Word(L"TE", {"te"})})});
  AlignmentResult result = Say("-ka-te-");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 0);
  EXPECT_EQ(result.matched_sentence_index, 0);
  EXPECT_EQ(result.phonemes, "kate");
  EXPECT_EQ(result.num_syllables, 2);
  EXPECT_EQ(result.num_words, 2);
  EXPECT_EQ(result.word_start[1], 2);
  EXPECT_EQ(result.syllable_start[1], 2);
  EXPECT_EQ(result.phoneme_start[0], 3 * 220);
  EXPECT_EQ(result.phoneme_end[0], 6 * 220);
  EXPECT_EQ(result.phoneme_start[2], 12 * 220);
  EXPECT_EQ(result.phoneme_end[1], 9 * 220);
  EXPECT_EQ(result.path.front().phoneme, '*');
  EXPECT_EQ(result.path.back().phoneme, '$');
  EXPECT_EQ(result.path.back().time, 21 * 220);
  EXPECT_EQ(result.phoneme_mfcc_prob.size(), 4u);
  EXPECT_EQ(result.pause_mfcc_prob.size(), 5u);
  EXPECT_NEAR(result.log_probability, 1.0 + 21 * std::log(0.9), 1e-12);
}

TEST(ViterbiAligner, SentencesThatDifferInTheLastWord) {
  const auto first = Word(L"KA", {"ka"});
  const ViterbiAligner aligner =
      Aligner({Sentence({first, Word(L"TE", {"te"})}), Sentence({first, Word(L"SU", {"su"})})});
  AlignmentResult result = Say("kasu");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 1);
  EXPECT_EQ(result.words[1], L"SU");
  result = Say("kate");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 0);
}

TEST(ViterbiAligner, SentenceThatBeginsAnotherIsTheFallback) {
  const auto ka = Word(L"KA", {"ka"});
  const ViterbiAligner aligner = Aligner({Sentence({ka, Word(L"TE", {"te"})}), Sentence({ka})});
  AlignmentResult result = Say("ka");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 1);
  EXPECT_EQ(result.num_words, 1);
  result = Say("kate");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 0);
}

TEST(ViterbiAligner, SpokenVariantDecidesTheSyllables) {
  const ViterbiAligner aligner =
      Aligner({WithSyllables(L"W", {{"kate", {1, 2}, {0, 2}}, {"kas", {5}, {0}}})});
  AlignmentResult result = Say("kas");
  ASSERT_EQ(aligner.AlignScores(Japanese(), result), 0);
  EXPECT_EQ(result.num_syllables, 1);
  EXPECT_EQ(result.syllable_mark[0], 5);
  result = Say("kate");
  ASSERT_EQ(aligner.AlignScores(Japanese(), result), 0);
  EXPECT_EQ(result.num_syllables, 2);
  EXPECT_EQ(result.syllable_start[1], 2);
  EXPECT_EQ(result.syllable_mark[1], 2);
}

TEST(ViterbiAligner, SyllablesOfSharedWordsAreTheMatchedSentences) {
  // Both begin with the word W, each with its own entry; the first one's nodes serve both.
  const auto shared = [](std::vector<OwnedWordEntry::Variant> variants) {
    return std::make_shared<const OwnedWordEntry>(L"W", std::move(variants));
  };
  const std::vector<OwnedWordEntry::Variant> two = {{"ka", {1}, {0}}, {"kote", {2, 3}, {0, 2}}};
  const ViterbiAligner aligner =
      Aligner({Sentence({shared(two), Word(L"A", {"a"})}),
               Sentence({shared({{"ka", {8}, {0}}}), Word(L"O", {"o"})})});
  AlignmentResult result = Say("kao");
  ASSERT_EQ(aligner.AlignScores(Japanese(), result), 1);
  EXPECT_EQ(result.syllable_mark[0], 8);
  // The second sentence's W lacks the second variant: then the entry it was made for counts.
  result = Say("koteo");
  ASSERT_EQ(aligner.AlignScores(Japanese(), result), 1);
  EXPECT_EQ(result.num_syllables, 3);
  EXPECT_EQ(result.syllable_mark[0], 2);
  EXPECT_EQ(result.syllable_mark[1], 3);
  EXPECT_EQ(result.word_start[1], 4);
}

TEST(ViterbiAligner, VanishingScoresCountLikeCertainties) {
  const ViterbiAligner aligner =
      Aligner({Sentence({Word(L"KA", {"ka"})}), Sentence({Word(L"TE", {"te"})})});
  AlignmentResult result = Say("ka");
  for (const char phoneme : {'t', 'e'}) {
    for (int state = 0; state < 3; ++state) {
      for (int t = 0; t < result.num_frames; ++t) {
        const int place = t * result.score_columns + Japanese().GetStateIndex(phoneme, state);
        result.frame_scores[static_cast<std::size_t>(place)] = 9e-201;
      }
    }
  }
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 1);
  EXPECT_EQ(result.log_probability, 1.0);
}

TEST(ViterbiAligner, SentencesAddedAfterAnAlignment) {
  ViterbiAligner aligner = Aligner({Sentence({Word(L"KA", {"ka"})})});
  AlignmentResult result = Say("ka");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 0);
  EXPECT_EQ(aligner.AddSentence(Sentence({Word(L"TE", {"te"})})), 2);
  result = Say("te");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 1);

  // The first sentence is there twice, and the older path wins the tie: it names no sentence.
  const test::MessageCapture capture;
  result = Say("ka");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), -2);
  EXPECT_EQ(capture.StandardError(), "Error in ViterbiAligner::Align(): No Sentence matched.");
}

TEST(ViterbiAligner, SentenceWithoutWords) {
  const ViterbiAligner aligner = Aligner({Sentence({})});
  AlignmentResult result = Say("-");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 0);
  EXPECT_EQ(result.phonemes, "");
  EXPECT_EQ(result.num_words, 0);
  EXPECT_EQ(result.num_syllables, 0);
  EXPECT_TRUE(result.phoneme_mfcc_prob.empty());

  // One frame leads from the start to the end.
  result = Spoken(Japanese(), "-0");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 0);
  EXPECT_EQ(result.path.size(), 2u);
  EXPECT_EQ(result.log_probability, 1.0);
}

TEST(ViterbiAligner, TooFewFrames) {
  const ViterbiAligner aligner = Aligner({Sentence({Word(L"KA", {"ka"})})});
  test::MessageCapture capture;
  AlignmentResult result = Say("k");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), -1);
  EXPECT_EQ(capture.StandardError(), "ERROR! No Winner Token  in VTokenList::GetWinnerToken().\n");
  result = Say("ka");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 0) << "the aligner stays usable";
}

TEST(ViterbiAligner, NinthSentenceIsRefused) {
  ViterbiAligner aligner;
  for (int i = 1; i <= 8; ++i) EXPECT_EQ(aligner.AddSentence(Sentence({})), i);
  const test::MessageCapture capture;
  EXPECT_EQ(aligner.AddSentence(Sentence({})), -1);
  EXPECT_EQ(aligner.NumSentences(), 8);
  EXPECT_EQ(capture.StandardError(),
            "ERROR in ViterbiAligner::AddSentence(): Too many sentences!\n");
}

TEST(ViterbiAligner, RefusesBadScores) {
  ViterbiAligner aligner;
  test::MessageCapture capture;
  AlignmentResult result = Say("ka");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), -1);
  aligner.AddSentence(Sentence({Word(L"KA", {"ka"})}));
  AlignmentResult none;
  EXPECT_EQ(aligner.AlignScores(Japanese(), none), -1);
  EXPECT_EQ(aligner.AlignScores(*PhonemeSetOf(kLanguageEnglish), result), -1);
  result.frame_scores.pop_back();
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), -1);
  EXPECT_EQ(capture.StandardError(),
            "ERROR in ViterbiAligner::Align(), no sentence was added\n"
            "ERROR in ViterbiAligner::Align(), no frames\n"
            "ERROR in ViterbiAligner::Align(), incorrect number of frame scores\n"
            "ERROR in ViterbiAligner::Align(), incorrect number of frame scores\n");
}

TEST(ViterbiAligner, RefusesBadRecordings) {
  ViterbiAligner aligner;
  test::MessageCapture capture;
  const std::vector<std::int16_t> samples(551);
  AlignmentResult result = Say("ka");  // what it held is gone
  EXPECT_EQ(aligner.Align(nullptr, 551, samples.data(), result), -1);
  EXPECT_EQ(result.num_frames, 0);
  EXPECT_EQ(aligner.Align(&Japanese(), 551, samples.data(), result), -1);
  aligner.AddSentence(Sentence({}));
  EXPECT_EQ(aligner.Align(&Japanese(), 551, nullptr, result), -1);
  EXPECT_EQ(aligner.Align(&Japanese(), 550, samples.data(), result), -1);
  EXPECT_EQ(aligner.Align(&Japanese(), 0, samples.data(), result), -1);
  EXPECT_EQ(aligner.Align(&Japanese(), 0x80000000u, samples.data(), result), -1);
  EXPECT_EQ(capture.StandardError(),
            "ERROR in ViterbiAligner::Align(), no phoneme set\n"
            "ERROR in ViterbiAligner::Align(), no sentence was added\n"
            "ERROR in ViterbiAligner::Align(), no samples\n"
            "ERROR in ViterbiAligner::Align(), fewer samples than one frame\n"
            "ERROR in ViterbiAligner::Align(), fewer samples than one frame\n"
            "ERROR in ViterbiAligner::Align(), too many samples\n");
}

std::vector<std::int16_t> Hum(int num_samples) {
  std::vector<std::int16_t> samples(static_cast<std::size_t>(num_samples));
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double t = static_cast<double>(i);
    samples[i] = static_cast<std::int16_t>(4000 * std::sin(t * (0.05 + t * 2e-6)));
  }
  return samples;
}

TEST(ViterbiAligner, RecordingGoesThroughFeaturesAndFrameScores) {
  test::MessageCapture capture;
  ASSERT_GE(LoadModelFile(test::VectorPath("models/frame_ja.bin").c_str(), kFrameModelJapanese), 0);
  const ViterbiAligner aligner =
      Aligner({Sentence({Word(L"KA", {"ka"})}), Sentence({Word(L"TE", {"te"})})});
  const std::vector<std::int16_t> samples = Hum(22050);
  AlignmentResult result;
  const int answer = aligner.Align(&Japanese(), 22050, samples.data(), result);
  EXPECT_GE(answer, 0);

  AlignmentResult by_hand;
  by_hand.num_frames = 98;
  by_hand.score_columns = 78;
  by_hand.frame_scores.resize(98 * 78);
  const std::vector<float> mfcc = ComputeMfcc(samples.data(), 22050);
  ASSERT_EQ(ComputeFrameScores(Japanese(), mfcc, by_hand.frame_scores), 0);
  EXPECT_EQ(aligner.AlignScores(Japanese(), by_hand), answer);
  EXPECT_EQ(result.num_samples, 22050);
  EXPECT_EQ(result.num_frames, 98);
  EXPECT_EQ(result.mfcc, mfcc);
  EXPECT_EQ(result.frame_scores, by_hand.frame_scores);
  EXPECT_EQ(result.log_probability, by_hand.log_probability);
  EXPECT_EQ(result.phoneme_start, by_hand.phoneme_start);
  EXPECT_EQ(result.phoneme_end, by_hand.phoneme_end);
}

TEST(ViterbiAligner, WithoutAFrameModel) {
  test::MessageCapture capture;
  LoadModelFile("/nowhere/there.bin", kFrameModelJapanese);  // leaves the classifier empty
  const ViterbiAligner aligner = Aligner({Sentence({Word(L"KA", {"ka"})})});
  const std::vector<std::int16_t> samples = Hum(5510);
  capture.Clear();
  AlignmentResult result;
  EXPECT_EQ(aligner.Align(&Japanese(), 5510, samples.data(), result), -1);
  EXPECT_NE(capture.StandardError(), "");
  EXPECT_EQ(result.matched_sentence_index, -1);
  ASSERT_GE(LoadModelFile(test::VectorPath("models/frame_ja.bin").c_str(), kFrameModelJapanese), 0);
  EXPECT_EQ(aligner.Align(&Japanese(), 5510, samples.data(), result), 0) << "usable as before";
}

TEST(ViterbiAligner, PhonemesThatTheSetLacks) {
  const ViterbiAligner aligner =
      Aligner({Sentence({Word(L"KA", {"k{", "ka", "{"}), Word(L"TE", {"te"})})});
  test::MessageCapture capture;
  AlignmentResult result = Say("kate");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 0);
  EXPECT_EQ(result.phonemes, "kate");
  EXPECT_EQ(capture.StandardError(),
            "ERROR in ViterbiAligner::Align(), pronunciation 0 of word [KA] has the unknown "
            "phoneme [{]\n"
            "ERROR in ViterbiAligner::Align(), pronunciation 2 of word [KA] has the unknown "
            "phoneme [{]\n");

  // The same words read with a set that has it.
  capture.Clear();
  result = Spoken(*PhonemeSetOf(kLanguageEnglish), Track("k{tE") + "-0");
  EXPECT_EQ(aligner.AlignScores(*PhonemeSetOf(kLanguageEnglish), result), -1);
  EXPECT_THAT(capture.StandardError(), HasSubstr("pronunciation 0 of word [TE] has the unknown"));
  EXPECT_THAT(capture.StandardError(), HasSubstr("No Winner Token"));
}

TEST(ViterbiAligner, WordWithoutUsablePronunciationBlocksItsSentence) {
  const ViterbiAligner aligner =
      Aligner({Sentence({Word(L"X", {"", ""})}), Sentence({Word(L"KA", {"ka"})})});
  test::MessageCapture capture;
  AlignmentResult result = Say("ka");
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), 1);
  EXPECT_THAT(capture.StandardError(), HasSubstr("pronunciation 1 of word [X] cannot be used\n"));

  const ViterbiAligner alone = Aligner({Sentence({Word(L"X", {})})});
  result = Say("ka");
  EXPECT_EQ(alone.AlignScores(Japanese(), result), -1);
}

TEST(ViterbiAligner, LimitOfPhonemes) {
  const auto read = [](int words) {
    std::string phonemes;
    WordSequence sentence;
    for (int i = 0; i < words; ++i) {
      sentence.AppendOwned(Word(L"KA", {"ka"}));
      phonemes += "ka";
    }
    AlignmentResult result = Say(phonemes);
    const int answer = Aligner({sentence}).AlignScores(Japanese(), result);
    return std::pair(answer, result.NumPhonemes());
  };
  EXPECT_EQ(read(256), std::pair(0, 512));

  WordSequence long_words;
  std::string phonemes;
  for (int i = 0; i < 171; ++i) {
    long_words.AppendOwned(Word(L"KAN", {"kan"}));
    phonemes += "kan";
  }
  const test::MessageCapture capture;
  AlignmentResult result = Say(phonemes);
  const ViterbiAligner aligner = Aligner({long_words});
  EXPECT_EQ(aligner.AlignScores(Japanese(), result), -1);
  EXPECT_EQ(capture.StandardError(), "ERROR in ViterbiAligner::Align(), more than 512 phonemes\n");
}

TEST(ViterbiAligner, LimitOfSyllables) {
  const auto read = [](std::size_t syllables) {
    AlignmentResult result = Say("ka");
    const std::vector<std::int32_t> starts(syllables, 0);
    const int answer =
        Aligner({WithSyllables(L"KA", {{"ka", starts, starts}})}).AlignScores(Japanese(), result);
    return std::pair(answer, result.num_syllables);
  };
  const test::MessageCapture capture;
  EXPECT_EQ(read(512), std::pair(0, 512));
  EXPECT_EQ(capture.All(), "");
  EXPECT_EQ(read(513).first, -1);
  EXPECT_EQ(capture.StandardError(), "ERROR in ViterbiAligner::Align(), more than 512 syllables\n");
}

TEST(ViterbiAligner, CopiesAreIndependent) {
  ViterbiAligner original = Aligner({Sentence({Word(L"KA", {"ka"})})});
  AlignmentResult result = Say("ka");
  EXPECT_EQ(original.AlignScores(Japanese(), result), 0);

  ViterbiAligner copy = original;
  EXPECT_EQ(copy.AddSentence(Sentence({Word(L"TE", {"te"})})), 2);
  EXPECT_EQ(original.NumSentences(), 1);
  result = Say("te");
  EXPECT_EQ(copy.AlignScores(Japanese(), result), 1);
  result = Say("ka");
  EXPECT_EQ(original.AlignScores(Japanese(), result), 0) << "the copy's network is its own";
  EXPECT_EQ(result.phonemes, "ka");

  ViterbiAligner assigned = Aligner({Sentence({Word(L"SU", {"su"})})});
  result = Say("su");
  EXPECT_EQ(assigned.AlignScores(Japanese(), result), 0);
  assigned = copy;
  EXPECT_EQ(assigned.NumSentences(), 2);
  result = Say("te");
  EXPECT_EQ(assigned.AlignScores(Japanese(), result), 1);
  const ViterbiAligner& itself = assigned;
  assigned = itself;
  EXPECT_EQ(assigned.AlignScores(Japanese(), result), 1);
}

TEST(ViterbiAligner, CopyOutlivesItsSource) {
  auto original = std::make_unique<ViterbiAligner>(Aligner({Sentence({Word(L"KA", {"ka"})})}));
  AlignmentResult result = Say("ka");
  EXPECT_EQ(original->AlignScores(Japanese(), result), 0);
  const ViterbiAligner copy = *original;
  original.reset();
  EXPECT_EQ(copy.AlignScores(Japanese(), result), 0);
  EXPECT_EQ(result.phonemes, "ka");
}

TEST(ViterbiAligner, ThreadsShareOneAligner) {
  const auto first = Word(L"KA", {"ka", "ko"});
  const ViterbiAligner shared =
      Aligner({Sentence({first, Word(L"TE", {"te"})}), Sentence({first, Word(L"SU", {"su"})})});
  const auto scores = [](int reading) {
    const test::Chooser choose = test::RandomChooser(static_cast<std::uint64_t>(reading));
    std::vector<double> values(static_cast<std::size_t>(60 * 3 * Japanese().GetSize()));
    for (double& value : values) value = (1 + choose(100)) / 100.0;
    return test::WithScores(Japanese(), std::move(values));
  };
  constexpr int kReadings = 24;
  std::vector<AlignmentResult> results(kReadings);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&, thread] {
      for (int reading = thread; reading < kReadings; reading += 4) {
        AlignmentResult& result = results[static_cast<std::size_t>(reading)];
        result = scores(reading);
        shared.AlignScores(Japanese(), result);
        const ViterbiAligner copy = shared;
        EXPECT_EQ(copy.NumSentences(), 2);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  for (int reading = 0; reading < kReadings; ++reading) {
    AlignmentResult alone = scores(reading);
    const int answer =
        Aligner({Sentence({first, Word(L"TE", {"te"})}), Sentence({first, Word(L"SU", {"su"})})})
            .AlignScores(Japanese(), alone);
    const AlignmentResult& result = results[static_cast<std::size_t>(reading)];
    EXPECT_EQ(result.matched_sentence_index, answer);
    EXPECT_EQ(result.log_probability, alone.log_probability);
    EXPECT_EQ(result.phoneme_start, alone.phoneme_start);
    EXPECT_EQ(result.pause_mfcc_prob, alone.pause_mfcc_prob);
  }
}

}  // namespace
}  // namespace veral3
