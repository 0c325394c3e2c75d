#include "tools/EngineWords.h"

#include <gmock/gmock.h>

#include "SmallResources.h"
#include "common/Unicode.h"
#include "core/AnalyzedAudio.h"
#include "support/SmallEngine.h"
#include "tools/EngineMessages.h"
#include "tools/ShortestReading.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using test::ProcessResult;
using testing::HasSubstr;
using testing::Not;

TEST(EngineWords, SaysWhatIsMeant) {
  EXPECT_EQ(InWords("Error! nNumPitchSegments==0"), "no voice was found");
  EXPECT_EQ(InWords("ERROR! No Winner Token  in VTokenList::GetWinnerToken()."),
            "no reading of the sentence fits the recording");
  EXPECT_EQ(InWords("ERROR in ViterbiAligner::Align(), more than 512 syllables"),
            "the sentence has more than 512 syllables, the most that are aligned at once");
  EXPECT_EQ(InWords("ERROR in AnalyzedAudio::GetAlignInfo(), 130 phonemes, more than 127"),
            "it has 130 phonemes, more than 127, the most that a tutor file holds");
  for (const char* line : {"", "Error! Total score more than 100!",
                           "ERROR in AnalyzedAudio::GetAlignInfo(), nothing is aligned",
                           "*** Error: Word <X> not found in VeralDictionary::LookupWord()"}) {
    EXPECT_EQ(InWords(line), line);
  }
}

TEST(EngineWords, MissingWordsAreShortenedAndCounted) {
  EXPECT_EQ(InWords("*** Error: Word <" + std::string(100, 'X') +
                    "> not found in VeralDictionary::LookupWord()"),
            "*** Error: Word <" + std::string(60, 'X') +
                "\u2026> not found in VeralDictionary::LookupWord()");
  std::string twelve;
  for (int i = 0; i < 12; ++i) {
    twelve +=
        "*** Error: Word <W" + std::to_string(i) + "> not found in VeralDictionary::LookupWord()\n";
  }
  const std::string lines = LinesInWords(twelve + "Error! nNumPitchSegments==0\n");
  EXPECT_THAT(lines, HasSubstr("<W9>"));
  EXPECT_THAT(lines, Not(HasSubstr("<W10>")));
  EXPECT_THAT(
      lines, testing::EndsWith("no voice was found\nand 2 more words that the dictionary lacks\n"));
  EXPECT_EQ(LinesInWords(""), "");
}

TEST(EngineWords, BadPronunciationsAreShortenedAndCounted) {
  const std::string begin = "ERROR in ViterbiAligner::Align(), pronunciation 0 of word [";
  const std::string word(100, 'x');
  const std::string cut = std::string(60, 'x') + "\u2026";
  for (const std::string end : {"] cannot be used", "] has the unknown phoneme [~]"}) {
    EXPECT_EQ(InWords(begin + word + end), begin + cut + end);
    EXPECT_EQ(InWords(begin + "a" + end), begin + "a" + end);
  }
  EXPECT_EQ(InWords(begin), begin);
  std::string eleven;
  for (int i = 0; i < 11; ++i) eleven += begin + "a] cannot be used\n";
  EXPECT_THAT(LinesInWords(eleven),
              testing::EndsWith("used\nand 1 more pronunciations that cannot be aligned\n"));
}

// The shortest recording that the engine itself aligns, found by trying.
int LeastFramesTried(LanguageType language, const std::string& sentence) {
  const EngineMessages muted;
  for (int frames = 1; frames < 400; ++frames) {
    AnalyzedAudio audio(language);
    EXPECT_GT(audio.AddPossibleSentence(CString(sentence)), 0) << sentence;
    std::vector<std::int16_t> samples = veral3::test::NoiseBursts(551 + 220 * (frames - 1), 3);
    if (audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data()) >= 0) return frames;
  }
  return -1;
}

TEST(ShortestReading, IsWhatTheEngineAligns) {
  veral3::test::LoadSmallEngine();
  for (const std::string sentence :
       {"a", "apple", "I read the cat", "hello", "|1 1 ? 1 1 0 hYt|zyx a", "an apple and a dog"}) {
    const auto least = LeastFramesOfSentence(sentence, kLanguageEnglish);
    ASSERT_TRUE(least) << sentence;
    EXPECT_EQ(*least, LeastFramesTried(kLanguageEnglish, sentence)) << sentence;
  }
  EXPECT_EQ(SamplesOfFrames(1), 551);
  EXPECT_EQ(SamplesOfFrames(13), 3191);
  // No path leads through a sound that the set lacks.
  EXPECT_EQ(LeastFramesOfSentence("a |1 1 ? 1 1 0 h~t|zyx", kLanguageEnglish), std::nullopt);
  EXPECT_EQ(LeastFramesTried(kLanguageEnglish, "a |1 1 ? 1 1 0 h~t|zyx"), -1);
}

class FailuresInWords : public test::SmallResources {};

// Four sounds: twelve frames and one more, 3191 samples.
TEST_F(FailuresInWords, TooShortIsSaidOnlyWhereItIs) {
  const std::string sentence = "|1 1 ? 1 1 0 hYt|zyx";
  WriteWav("short.wav", veral3::test::NoiseBursts(3190, 3));
  WriteWav("enough.wav", veral3::test::NoiseBursts(3191, 3));
  const ProcessResult result =
      Run("align", "en", {"--text", sentence, Path("short.wav"), Path("enough.wav")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "veral3: " + Path("short.wav") +
                            ": cannot be aligned: too short for this sentence: 0.144 s, at least "
                            "0.145 s are needed\n");
  EXPECT_THAT(result.out, HasSubstr("enough.wav"));

  // Of several sentences the shortest counts: ten frames, 2531 samples.
  WriteWav("shorter.wav", veral3::test::NoiseBursts(2530, 3));
  const ProcessResult two =
      Run("align", "en", {"--text", sentence, "--text", "apple", Path("shorter.wav")});
  EXPECT_THAT(two.err, HasSubstr("too short for each of these sentences: 0.114 s, at least 0.115 s "
                                 "are needed\n"));

  const ProcessResult foreign =
      Run("align", "en", {"--text", "|1 1 ? 1 1 0 h~t|zyx", Path("a.wav")});
  EXPECT_EQ(foreign.status, 1);
  EXPECT_THAT(foreign.err, HasSubstr("has the unknown phoneme [~]; no reading of the sentence fits "
                                     "the recording\n"));
  EXPECT_THAT(foreign.err, Not(HasSubstr("too short")));
  EXPECT_THAT(foreign.err, Not(HasSubstr("Winner")));
}

// A voice that grows to the end: the last frames pass for its background.
TEST_F(FailuresInWords, AVoiceThatDoesNotStandOutIsOne) {
  std::vector<std::int16_t> growing;
  for (int i = 0; i < 33075; ++i) {
    growing.push_back(static_cast<std::int16_t>(i % 147 < 20 ? i * 32000.0 / 33075 : 0));
  }
  WriteWav("growing.wav", growing);
  const ProcessResult result =
      Run("analyze", "en", {"--text", "apple", "--format", "json", Path("growing.wav")});
  ASSERT_EQ(result.status, 0) << result.err;
  const json value = json::parse(result.out);
  EXPECT_GT(value["utterance"]["mean_pitch_hz"], 0);
  EXPECT_EQ(value["utterance"]["pitch_segments"], 0);
  EXPECT_THAT(result.err,
              HasSubstr("growing.wav: no voice stands out from the end of the recording\n"));
  EXPECT_THAT(result.err, Not(HasSubstr("no voice was found")));
}

TEST_F(FailuresInWords, NoVoice) {
  WriteWav("silent.wav", std::vector<std::int16_t>(22050, 0));
  const ProcessResult result = Run("analyze", "en", {"--text", "apple", Path("silent.wav")});
  EXPECT_THAT(result.err, HasSubstr("silent.wav: no voice was found\n"));
  EXPECT_THAT(result.err, Not(HasSubstr("nNumPitchSegments")));
}

TEST_F(FailuresInWords, LimitsAreNamedAndNoBookIsEchoed) {
  // 4 sounds each.
  std::string long_sentence;
  for (int i = 0; i < 129; ++i) long_sentence += "apples ";
  WriteWav("long.wav", veral3::test::NoiseBursts(22050 * 20, 3));
  const ProcessResult phonemes = Run("align", "en", {"--text", long_sentence, Path("long.wav")});
  EXPECT_EQ(phonemes.status, 1);
  EXPECT_EQ(phonemes.err, "veral3: " + Path("long.wav") +
                              ": cannot be aligned: the sentence has more than 512 phonemes, the "
                              "most that are aligned at once\n");

  std::string book;  // of 10000 different words
  for (int i = 0; i < 10000; ++i) {
    book += "blorf";
    for (int rest = i; rest > 0; rest /= 10) book += "abcdefghij"[rest % 10];
    book += " ";
  }
  const ProcessResult missing = Run("align", "en", {"--text", book, Path("a.wav")});
  EXPECT_EQ(missing.status, 2);
  EXPECT_THAT(missing.err, HasSubstr("sentence \"blorf blorfb blorfc "));
  EXPECT_THAT(missing.err, HasSubstr("\u2026\": the dictionary lacks \"blorf\", "));
  EXPECT_THAT(missing.err, HasSubstr("\" and 9990 more\n"));
  EXPECT_LT(missing.err.size(), 1000u);

  const ProcessResult passed_over =
      Run("align", "en", {"--text", "apple " + book, "--skip-unknown", Path("a.wav")});
  EXPECT_EQ(passed_over.status, 0);
  EXPECT_LT(passed_over.err.size(), 3000u);

  std::string words;
  for (int i = 0; i < 20000; ++i) words += "apple ";
  const ProcessResult many = Run("align", "en", {"--text", words, Path("a.wav")});
  EXPECT_EQ(many.status, 2);
  EXPECT_EQ(many.err, "veral3: sentence \"" + words.substr(0, 60) +
                          "\u2026\": it has more than 256 words, the most that are aligned at "
                          "once\n");

  const std::string word(5000, 'x');
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--text", word, Path("a.wav")}}) {
    EXPECT_LT(Run("align", "en", arguments).err.size(), 1000u);
  }
  const ProcessResult check = Run("check-text", "en", {word});
  EXPECT_EQ(check.status, 1);
  EXPECT_LT(check.err.size(), 1000u);
  EXPECT_THAT(check.err, HasSubstr(std::string(60, 'x') + "\u2026"));
  EXPECT_LT(Run("check-text", "en", {std::string(5000, '.')}).err.size(), 1000u);
  EXPECT_LT(Run("check-text", "ja", {"--reading", word, "x"}).err.size(), 1000u);

  const ProcessResult tutor =
      Run("tutor", "en", {"--text", book, Path("a.wav"), "-o", Path("o.wav")});
  EXPECT_EQ(tutor.status, 2);
  EXPECT_THAT(tutor.err,
              HasSubstr("the text of --text is too long: " + std::to_string(book.size()) +
                        " bytes, of which a tutor file holds at most 16384\n"));
}

TEST_F(FailuresInWords, ATutorsSentenceIsShortened) {
  std::string sentence = "I read the cat";
  for (int i = 0; i < 20; ++i) sentence += " apple";
  WriteWav("tutor.wav", veral3::test::NoiseBursts(22050 * 8, 3));
  const ProcessResult made =
      Run("tutor", "en", {"--text", sentence, Path("tutor.wav"), "-o", Path("t.wav")});
  ASSERT_EQ(made.status, 0) << made.err;
  const ProcessResult other =
      Run("grade", "en", {"--tutor", Path("t.wav"), "--text", "apple", Path("a.wav")});
  EXPECT_THAT(other.err, HasSubstr("who reads \"" + sentence.substr(0, 60) + "\u2026\"\n"));
}

}  // namespace
}  // namespace veral3::tools
