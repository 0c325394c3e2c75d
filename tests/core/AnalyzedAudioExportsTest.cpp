// The operations of AnalyzedAudio that write: what they refuse, and that they write what the
// functions behind them do. The lines themselves are in TrainingExportsTest.cpp.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "core/MadeAudio.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"

namespace veral3 {
namespace {

using test::MadeAudio;
using testing::HasSubstr;
using testing::StartsWith;

struct Operation {
  const char* name;
  std::function<int(AnalyzedAudio&, std::ostream&, std::ostream&)> run;
  bool needs_analysis;
  bool two_streams;
};

const std::vector<Operation>& Operations() {
  using Audio = AnalyzedAudio;
  using Stream = std::ostream;
  static const std::vector<Operation> operations = {
      {"SaveUttGoodnessTrainData",
       [](Audio& a, Stream& f, Stream& l) { return a.SaveUttGoodnessTrainData(true, f, l); }, true,
       true},
      {"SaveSylCTToneData",
       [](Audio& a, Stream& f, Stream& l) { return a.SaveSylCTToneData(f, l); }, true, true},
      {"SavePhonMFCCDataToFiles",
       [](Audio& a, Stream& f, Stream& l) { return a.SavePhonMFCCDataToFiles(f, l); }, false, true},
      {"SaveFrameMFCCDataToFiles",
       [](Audio& a, Stream& f, Stream& l) { return a.SaveFrameMFCCDataToFiles(f, l, 0.0); }, true,
       true},
      {"SaveAdjustedFrameMFCCDataToFiles",
       [](Audio& a, Stream& f, Stream& l) { return a.SaveAdjustedFrameMFCCDataToFiles(f, l); },
       false, true},
      {"SaveSylBadTraits", [](Audio& a, Stream& f, Stream&) { return a.SaveSylBadTraits(f); }, true,
       false},
      {"SavePhonBadTraits", [](Audio& a, Stream& f, Stream&) { return a.SavePhonBadTraits(f); },
       false, false},
      {"SaveSylPauseBadTraits",
       [](Audio& a, Stream& f, Stream&) { return a.SaveSylPauseBadTraits(f); }, true, false},
  };
  return operations;
}

class AnalyzedAudioExports : public testing::Test {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }

  void Align(AnalyzedAudio& audio, const char* recording, const wchar_t* sentence) {
    audio.AddPossibleSentence(sentence);
    m_samples = test::ChainRecording(recording);
    ASSERT_GE(audio.Align(Count(), m_samples.data()), 0);
  }
  void Analyse(AnalyzedAudio& audio) { ASSERT_EQ(audio.Analyze(Count(), m_samples.data()), 0); }
  std::uint32_t Count() const { return static_cast<std::uint32_t>(m_samples.size()); }

  // Each operation refuses, writes one message and nothing else.
  void ExpectRefused(AnalyzedAudio& audio, const char* what, bool only_those_of_an_analysis) {
    for (const Operation& operation : Operations()) {
      if (only_those_of_an_analysis && !operation.needs_analysis) continue;
      std::ostringstream features, labels;
      m_messages.Clear();
      EXPECT_EQ(operation.run(audio, features, labels), -1) << operation.name;
      EXPECT_EQ(m_messages.All(),
                std::string("ERROR in AnalyzedAudio::") + operation.name + "(), " + what + "\n");
      EXPECT_EQ(features.str() + labels.str(), "");
    }
  }

  std::vector<std::int16_t> m_samples;
  test::MessageCapture m_messages;
};

TEST_F(AnalyzedAudioExports, NothingAligned) {
  AnalyzedAudio fresh(kLanguageEnglish);
  ExpectRefused(fresh, "nothing is aligned", false);
  m_messages.Clear();
  EXPECT_EQ(fresh.PrintAlignmentResult(), -1);
  EXPECT_EQ(m_messages.StandardOutput(), "");
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in AnalyzedAudio::PrintAlignmentResult(), nothing is aligned\n");
  AnalyzedAudio unknown(static_cast<LanguageType>(4));
  ExpectRefused(unknown, "nothing is aligned", false);
}

TEST_F(AnalyzedAudioExports, AFailedAlignmentIsNone) {
  AnalyzedAudio audio(kLanguageEnglish);
  Align(audio, "en_learner", L"I READ THE CAT");
  Analyse(audio);
  ASSERT_LT(audio.Align(100, m_samples.data()), 0);
  ExpectRefused(audio, "nothing is aligned", false);
  m_messages.Clear();
  std::vector<unsigned char> buffer(2544, 0xAA);
  EXPECT_EQ(audio.GetAlignInfo(buffer.data()), -1);
  EXPECT_EQ(buffer, std::vector<unsigned char>(2544, 0xAA));
}

TEST_F(AnalyzedAudioExports, NothingAnalysed) {
  AnalyzedAudio audio(kLanguageChinese);
  Align(audio, "zh_learner", L"你好 東 是");
  ExpectRefused(audio, "nothing is analysed", true);
  for (const Operation& operation : Operations()) {
    if (operation.needs_analysis) continue;
    std::ostringstream features, labels;
    EXPECT_EQ(operation.run(audio, features, labels), 0) << operation.name;
    EXPECT_NE(features.str(), "") << operation.name;
  }
}

TEST_F(AnalyzedAudioExports, AnAnalysisOfThePronunciationAloneHasNoPitch) {
  AnalyzedAudio audio(kLanguageChinese);
  Align(audio, "zh_learner", L"你好 東 是");
  ASSERT_EQ(audio.AnalyzePronunOnly(m_samples.data()), 0);
  std::ostringstream features, labels;
  EXPECT_EQ(audio.SaveSylCTToneData(features, labels), -1);
  EXPECT_EQ(audio.SaveSylBadTraits(features), -1);
  EXPECT_EQ(features.str() + labels.str(), "");
  EXPECT_EQ(audio.SaveFrameMFCCDataToFiles(features, labels, 0.0), 0);
  EXPECT_EQ(audio.SaveSylPauseBadTraits(features), 0);
  EXPECT_EQ(audio.SaveUttGoodnessTrainData(false, features, labels), 0);
}

TEST_F(AnalyzedAudioExports, EveryExampleHasItsLabel) {
  AnalyzedAudio audio(kLanguageChinese);
  Align(audio, "zh_learner", L"你好 東 是");
  Analyse(audio);
  const auto lines = [](const std::ostringstream& out) {
    const std::string text = out.str();
    return std::count(text.begin(), text.end(), '\n');
  };
  const long syllables = audio.GetNumOfSyllables();
  const long phonemes = audio.GetNumOfPhonemes();
  const long frames = (static_cast<long>(m_samples.size()) - 551) / 220 + 1;
  for (const Operation& operation : Operations()) {
    std::ostringstream features, labels;
    EXPECT_EQ(operation.run(audio, features, labels), 0) << operation.name;
    EXPECT_EQ(lines(labels), operation.two_streams ? lines(features) : 0) << operation.name;
    const std::string name = operation.name;
    if (name == "SaveSylCTToneData" || name == "SaveSylBadTraits") {
      EXPECT_EQ(lines(features), syllables) << name;
    } else if (name == "SavePhonMFCCDataToFiles" || name == "SavePhonBadTraits") {
      EXPECT_EQ(lines(features), phonemes) << name;
    } else if (name == "SaveSylPauseBadTraits") {
      EXPECT_EQ(lines(features), syllables - 1) << name;
    } else if (name == "SaveAdjustedFrameMFCCDataToFiles") {
      EXPECT_EQ(lines(features), frames - 1) << name;
    } else if (name == "SaveFrameMFCCDataToFiles") {
      EXPECT_GT(lines(features), 0) << name;
      EXPECT_LT(lines(features), frames) << name;
    } else {
      EXPECT_EQ(lines(features), 1) << name;
    }
  }
}

TEST_F(AnalyzedAudioExports, ExportsChangeNothing) {
  AnalyzedAudio audio(kLanguageChinese);
  Align(audio, "zh_learner", L"你好 東 是");
  Analyse(audio);
  std::vector<unsigned char> before(2544), after(2544);
  ASSERT_EQ(audio.GetAlignInfo(before.data()), 0);
  std::ostringstream first, second, labels;
  for (const Operation& operation : Operations()) operation.run(audio, first, labels);
  audio.PrintAlignmentResult();
  for (const Operation& operation : Operations()) operation.run(audio, second, labels);
  EXPECT_EQ(first.str(), second.str());
  ASSERT_EQ(audio.GetAlignInfo(after.data()), 0);
  EXPECT_EQ(before, after);
}

TEST_F(AnalyzedAudioExports, ARaisedThresholdKeepsFewerFrames) {
  AnalyzedAudio audio(kLanguageEnglish);
  Align(audio, "en_learner", L"I READ THE CAT");
  Analyse(audio);
  std::ostringstream all, some, none, labels;
  EXPECT_EQ(audio.SaveFrameMFCCDataToFiles(all, labels, 0.0), 0);
  EXPECT_EQ(audio.SaveFrameMFCCDataToFiles(some, labels, 1e-4), 0);
  EXPECT_EQ(audio.SaveFrameMFCCDataToFiles(none, labels, 3.5), 0);
  EXPECT_LT(some.str().size(), all.str().size());
  EXPECT_GT(some.str().size(), 0u);
  EXPECT_EQ(none.str(), "");
}

TEST_F(AnalyzedAudioExports, AStreamThatFailsIsReported) {
  AnalyzedAudio audio(kLanguageEnglish);
  Align(audio, "en_learner", L"I READ THE CAT");
  Analyse(audio);
  for (const Operation& operation : Operations()) {
    std::ostringstream failed, fine;
    failed.setstate(std::ios::badbit);
    m_messages.Clear();
    EXPECT_EQ(operation.run(audio, failed, fine), -1) << operation.name;
    EXPECT_EQ(m_messages.All(), std::string("ERROR in AnalyzedAudio::") + operation.name +
                                    "(), a stream does not take what is written\n");
    std::ostream throwing(nullptr);  // nowhere to write to
    EXPECT_THROW(throwing.exceptions(std::ios::badbit), std::ios::failure);
    m_messages.Clear();
    EXPECT_EQ(operation.run(audio, throwing, fine), -1) << operation.name;
    EXPECT_EQ(m_messages.Entries().size(), 1u) << operation.name;
  }
}

TEST_F(AnalyzedAudioExports, ASentenceWithoutWords) {
  AnalyzedAudio audio(kLanguageEnglish);
  audio.AddPossibleSentence(L"");
  m_samples = test::NoiseBursts(4000, 3);
  ASSERT_GE(audio.Align(Count(), m_samples.data()), 0);
  Analyse(audio);
  ASSERT_EQ(audio.GetNumOfSyllables(), 0);
  for (const Operation& operation : Operations()) {
    std::ostringstream features, labels;
    EXPECT_EQ(operation.run(audio, features, labels), 0) << operation.name;
  }
  m_messages.Clear();
  EXPECT_EQ(audio.PrintAlignmentResult(), 0);
  EXPECT_THAT(m_messages.StandardOutput(), HasSubstr("Syllable_start_position=[]\n"));
}

std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST_F(AnalyzedAudioExports, PrintedToTheLetter) {
  MadeAudio audio(kLanguageEnglish);
  test::RecordingArrays arrays;
  arrays.phonemes = "k{t";
  arrays.start = {440, 660, 1100};
  arrays.end = {660, 1100, 1540};
  arrays.syllable_start = {0, 2};
  arrays.syllable_pitch = {200, 100};
  arrays.syllable_duration = {660, 440};
  arrays.syllable_mark = {1, 0};
  arrays.syllable_intensity = {1, 2};
  arrays.tone_prob.resize(2);
  arrays.word_start = {0};
  arrays.num_samples = 5000;
  arrays.wave.fill(29490);
  arrays.pitch_contour.fill(229);
  arrays.intensity_contour.fill(7);
  Fill(audio, arrays);
  auto pronunciation = std::make_shared<PronunciationResult>();
  pronunciation->phonemes.sounds_like = "k@t";
  audio.Hand().pronunciation = pronunciation;
  auto goodness = std::make_shared<GoodnessResult>();
  goodness->loud_gaps = {0, 0, 0};
  goodness->good_syllable = {1.0, 0.123456789};
  audio.Hand().goodness = goodness;
  EXPECT_EQ(audio.PrintAlignmentResult(), 0);
  EXPECT_EQ(m_messages.Of(MessageStream::kOutput),
            "----- AnalyzedAudio::PrintAlignmentResult() -----\n"
            "// m_dProbOfGoodSyllable[1]=0.123457\n"
            "Phonemes =\t[k{t]\n"
            "SoundsLike=\t[k@t]\n"
            "Number_of_Phonemes=[3]\n"
            "Number_of_syllable=[2]\n"
            "Number_of_word=[1]\n"
            "Syllable_start_position=[0 2 ]\n"
            "Word_start_position=[0 ]\n"
            "Number_of_samples=[5000]\n"
            "Audio_head_offset=[440]\n"
            "Audio_tail_offset=[1540]\n"
            "Phoneme_position=[440 660 660 1100 1100 1540 ]\n"
            "S_wave_y=[" +
                Repeated("29490 ", 100) +
                "]\n"
                "S_pitch_contour=[" +
                Repeated("229 ", 128) +
                "]\n"
                "S_volume_contour=[" +
                Repeated("7 ", 128) + "]\n");
}

// The probability of a good alignment is asked for first, and says what it lacks.
TEST_F(AnalyzedAudioExports, PrintingSaysWhatTheGoodnessLacks) {
  MadeAudio audio(static_cast<LanguageType>(9));
  Fill(audio, test::RecordingArrays());
  m_messages.Clear();
  EXPECT_EQ(audio.PrintAlignmentResult(), 0);
  EXPECT_EQ(m_messages.StandardError(),
            "Error in AnalyzedAudio::PrepareUttGoodnessFeatures(), unknown LanguageType.\n");
}

TEST_F(AnalyzedAudioExports, PrintingAnAlignmentThatIsNotAnalysed) {
  AnalyzedAudio audio(kLanguageEnglish);
  Align(audio, "en_learner", L"I READ THE CAT");
  m_messages.Clear();
  EXPECT_EQ(audio.PrintAlignmentResult(), 0);
  EXPECT_THAT(m_messages.StandardOutput(),
              StartsWith("----- AnalyzedAudio::PrintAlignmentResult() -----\n"
                         "// m_dProbOfGoodSyllable[0]=0\n"));
  EXPECT_THAT(m_messages.StandardOutput(), HasSubstr("SoundsLike=\t[]\n"));
}

}  // namespace
}  // namespace veral3
