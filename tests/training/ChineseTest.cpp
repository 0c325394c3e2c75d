#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "recognition/DictionaryFile.h"
#include "training/corpus/ChineseTexts.h"
#include "training/speech/ChineseEvents.h"
#include "training/speech/ChineseSyllables.h"
#include "training/speech/EspeakSpeech.h"

namespace veral3::training {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

const std::string& DictionaryPath() {
  static const std::string path = VERAL3_SOURCE_DIR "/resources/KCN-UTF8Order.txt";
  return path;
}

const ChineseTexts& Texts() {
  static const ChineseTexts texts(DictionaryPath());
  return texts;
}

ChineseSentence Read(const std::vector<std::string>& words) {
  // The first random numbers of this seed choose first readings, in one breath.
  Random random(3);
  return Texts().Read(words, random);
}

// All syllables of the dictionary, in phonemes.
std::set<std::string> Syllables() {
  const DictionaryFile file = ReadDictionaryFile(DictionaryPath().c_str());
  std::set<std::string> syllables;
  for (std::size_t i = 0; i < file.words.size(); ++i) {
    for (const auto& variant : ParseVariants(file, i)) {
      for (std::size_t k = 0; k < variant.syllable_starts.size(); ++k) {
        const auto start = static_cast<std::size_t>(variant.syllable_starts[k]);
        const auto end = k + 1 < variant.syllable_starts.size()
                             ? static_cast<std::size_t>(variant.syllable_starts[k + 1])
                             : variant.phonemes.size();
        syllables.insert(variant.phonemes.substr(start, end - start));
      }
    }
  }
  return syllables;
}

std::string PhonemesIn(std::span<const PhonemeLabel> labels) {
  std::string phonemes;
  for (const PhonemeLabel& label : labels) {
    if (label.symbol != '-') phonemes += label.symbol;
  }
  return phonemes;
}

EspeakSpeech& Espeak() {
  static EspeakSpeech espeak;
  return espeak;
}

TEST(PinyinOf, KnowsTheSpellingRules) {
  EXPECT_EQ(PinyinOf("Zu@i"), "zhui");
  EXPECT_EQ(PinyinOf("jUan"), "juan");
  EXPECT_EQ(PinyinOf("qUn"), "qun");
  EXPECT_EQ(PinyinOf("Cun"), "chun");
  EXPECT_EQ(PinyinOf("U"), "yu");
  EXPECT_EQ(PinyinOf("lU"), "lv");
  EXPECT_EQ(PinyinOf("nUE"), "nve");
  EXPECT_EQ(PinyinOf("S)"), "shi");
  EXPECT_EQ(PinyinOf("s("), "si");
  EXPECT_EQ(PinyinOf("xi"), "xi");
  EXPECT_EQ(PinyinOf("u@M"), "weng");
  EXPECT_EQ(PinyinOf("iou"), "you");
  EXPECT_EQ(PinyinOf("R"), "er");
  EXPECT_EQ(PinyinOf("E"), "ê");
}

TEST(PinyinOf, GivesNothingForWhatIsNoSyllable) {
  for (const char* syllable : {"", "b", "si", "s)", "S(", "xua", "boM-", ")", "oM", "bR", "X"}) {
    EXPECT_EQ(PinyinOf(syllable), std::nullopt) << syllable;
  }
}

TEST(PinyinOf, TellsAllSyllablesOfTheDictionaryApart) {
  const auto syllables = Syllables();
  EXPECT_GT(syllables.size(), 400u);
  std::map<std::string, std::string> spelt;
  for (const std::string& syllable : syllables) {
    const auto pinyin = PinyinOf(syllable);
    ASSERT_TRUE(pinyin) << syllable;
    EXPECT_TRUE(spelt.emplace(*pinyin, syllable).second) << *pinyin;
  }
}

TEST(ChineseEvents, FitEverySyllableInEveryTone) {
  Espeak().SetVoice({"cmn-latn-pinyin+f1", 230, 70, 100, 0});
  const std::int32_t starts[] = {0};
  for (const std::string& syllable : Syllables()) {
    for (const char* tone : {"1", "2", "3", "4", "5"}) {
      const SpokenText spoken = Espeak().Speak(*PinyinOf(syllable) + tone);
      const auto labels = ChineseLabels(spoken.events, {syllable, starts},
                                        static_cast<std::int32_t>(spoken.samples.size()));
      EXPECT_EQ(PhonemesIn(labels), syllable) << *PinyinOf(syllable) << tone;
    }
  }
}

TEST(ChineseEvents, FitSentences) {
  Espeak().SetVoice({"cmn-latn-pinyin+m3", 230, 80, 100, 0});
  Random random(5);
  for (int i = 0; i < 300; ++i) {
    const ChineseSentence sentence =
        i % 5 == 0 ? Texts().DrawHeldOut(random) : Texts().Draw(random);
    const SpokenText spoken = Espeak().Speak(sentence.pinyin);
    const auto labels = ChineseLabels(spoken.events, {sentence.phonemes, sentence.starts},
                                      static_cast<std::int32_t>(spoken.samples.size()));
    EXPECT_EQ(PhonemesIn(labels), sentence.phonemes) << sentence.text;
    for (std::size_t k = 1; k < labels.size(); ++k) {
      EXPECT_GT(labels[k].start, labels[k - 1].start) << sentence.pinyin << ' ' << k;
    }
  }
}

TEST(ChineseEvents, SayTheTonesThatTheyAreAskedFor) {
  // By the names of espeak-ng's tone phonemes: contours in Chao's digits.
  const std::map<std::string, char> tones = {{"55", '1'}, {"35", '2'}, {"214", '3'},
                                             {"21", '3'}, {"51", '4'}, {"11", '5'},
                                             {"22", '5'}, {"33", '5'}, {"44", '5'}};
  Espeak().SetVoice({"cmn-latn-pinyin+f1", 230, 70, 100, 0});
  Random random(6);
  for (int i = 0; i < 300; ++i) {
    const ChineseSentence sentence = Texts().Draw(random);
    std::string said;
    for (const std::string& name : Espeak().PhonemeNames(sentence.pinyin)) {
      const auto digits = name.find_first_of("12345");
      if (digits == std::string::npos) continue;
      const auto tone = tones.find(name.substr(digits));
      said += tone == tones.end() ? '?' : tone->second;
    }
    EXPECT_EQ(said, sentence.spoken_tones) << sentence.pinyin;
  }
}

TEST(ChineseEvents, ShareTheirTimeAndJoinWhatIsSilent) {
  const std::int32_t starts[] = {0, 3};  // nian, yi
  const std::vector<PhonemeEvent> events = {{"n", 100},   {"iE", 300},  {"n", 1300},
                                            {"_|", 1500}, {"j", 1600},  {"i", 2000},
                                            {"_|", 3000}, {"_:", 3000}, {"_", 3100}};
  const std::int32_t right[] = {0, 4};
  EXPECT_THAT(ChineseLabels(events, {"niEni", right}, 3200),
              ElementsAre(PhonemeLabel{'-', 0}, PhonemeLabel{'n', 100}, PhonemeLabel{'i', 300},
                          PhonemeLabel{'E', 850}, PhonemeLabel{'n', 1300}, PhonemeLabel{'i', 1500},
                          PhonemeLabel{'-', 3000}));
  // One event is never of two syllables.
  EXPECT_THROW(ChineseLabels({{{"iE", 0}}}, {"iE", std::vector<std::int32_t>{0, 1}}, 10),
               std::runtime_error);
  EXPECT_THROW(ChineseLabels(events, {"niEna", starts}, 3200), std::runtime_error);
}

TEST(ChineseEvents, AreTriedInTheirOtherReading) {
  const std::int32_t starts[] = {0};
  const auto said = [&](std::string_view phonemes, const std::vector<PhonemeEvent>& events) {
    return PhonemesIn(ChineseLabels(events, {phonemes, starts}, 1000));
  };
  EXPECT_EQ(said("u@n", {{"w", 0}, {"u@", 100}, {"n", 200}}), "u@n");
  EXPECT_EQ(said("un", {{"w", 0}, {"u@", 100}, {"n", 200}}), "un");
  EXPECT_EQ(said("u@i", {{"w", 0}, {"ei", 100}}), "u@i");
  EXPECT_EQ(said("bEi", {{"p", 0}, {"ei", 100}}), "bEi");
}

TEST(ChineseEvents, AnUnknownEventIsAnErrorThatNamesIt) {
  const std::int32_t starts[] = {0};
  try {
    ChineseLabels({{{"dZ", 0}}}, {"j", starts}, 10);
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("[dZ]"));
  }
}

TEST(SpokenTones, ThirdBeforeThirdIsSecond) {
  const std::vector<bool> no(4, false);
  EXPECT_EQ(SpokenTones("3333", no, no), "2223");
  EXPECT_EQ(SpokenTones("3133", no, no), "3123");
  EXPECT_EQ(SpokenTones("3333", no, {false, true, false, false}), "2323");
}

TEST(SpokenTones, BuRisesBeforeAFourth) {
  const std::vector<bool> no(2, false);
  EXPECT_EQ(SpokenTones("44", {true, false}, no), "24");
  EXPECT_EQ(SpokenTones("44", no, no), "44");
  EXPECT_EQ(SpokenTones("43", {true, false}, no), "43");
}

TEST(ChineseTexts, SaysWhatTheDictionaryHas) {
  const ChineseSentence sentence = Read({"你好", ",", "老師"});
  EXPECT_EQ(sentence.text, "你好 老師");
  EXPECT_EQ(sentence.phonemes, "nihaulauS)");
  EXPECT_THAT(sentence.starts, ElementsAre(0, 2, 5, 8));
  EXPECT_EQ(sentence.tones, "3331");
  EXPECT_EQ(sentence.spoken_tones, "2331");
  std::string letters = sentence.pinyin;
  std::erase_if(letters, [](char c) { return c == ' ' || c == '-'; });
  EXPECT_EQ(letters, "ni2hao3,lao3shi1");
  EXPECT_THROW(Read({"abc"}), std::runtime_error);
}

TEST(ChineseTexts, AreSaidInOtherTones) {
  const ChineseSentence sentence = WithSpokenTones(Read({"你好", ",", "老師"}), "4421");
  EXPECT_EQ(sentence.tones, "3331");
  EXPECT_EQ(sentence.spoken_tones, "4421");
  std::string digits = sentence.pinyin;
  std::erase_if(digits, [](char c) { return c < '1' || c > '5'; });
  EXPECT_EQ(digits, "4421");
  EXPECT_THROW(WithSpokenTones(sentence, "44"), std::runtime_error);
}

TEST(ChineseTexts, KnowEveryWordOfTheirTemplates) {
  const auto words = ChineseTemplateWords();
  EXPECT_GT(words.size(), 400u);
  for (const std::string& word : words) {
    if (word == ",") continue;
    EXPECT_NO_THROW(Read({word})) << word;
  }
}

std::vector<std::string> WordsOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

TEST(ChineseTexts, HeldOutSentencesShareFewWordsWithTraining) {
  Random random(1);
  std::set<std::string> training;
  for (int i = 0; i < 5000; ++i) {
    for (const std::string& word : WordsOf(Texts().Draw(random).text)) training.insert(word);
  }
  std::set<std::string> shared;
  for (int i = 0; i < 1000; ++i) {
    for (const std::string& word : WordsOf(Texts().DrawHeldOut(random).text)) {
      if (training.contains(word)) shared.insert(word);
    }
  }
  const std::set<std::string> function_words = {
      "的", "有",   "個",   "對",   "在",   "把",   "到",   "還",   "那些", "誰",   "放",  "向",
      "裡", "除了", "以外", "一邊", "附近", "特別", "打算", "與其", "不如", "感到", "屬於"};
  for (const std::string& word : shared) EXPECT_TRUE(function_words.contains(word)) << word;
}

TEST(ChineseTexts, ExactlyOneWordIsChanged) {
  Random random(2);
  for (int i = 0; i < 300; ++i) {
    const std::string text = Texts().DrawHeldOut(random).text;
    const auto before = WordsOf(text);
    const auto after = WordsOf(ChineseTexts::WithOneWordChanged(text, random));
    ASSERT_EQ(before.size(), after.size()) << text;
    int changed = 0;
    for (std::size_t w = 0; w < before.size(); ++w) changed += before[w] != after[w];
    EXPECT_EQ(changed, 1) << text;
  }
}

}  // namespace
}  // namespace veral3::training
