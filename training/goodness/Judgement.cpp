#include "training/goodness/Judgement.h"

#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "common/Unicode.h"
#include "core/AnalyzedAudio.h"
#include "recognition/Dictionaries.h"
#include "training/common/ParallelFor.h"

namespace veral3::training {
namespace {

// Without the marks between them and those at their ends.
std::vector<std::string> WordsOf(const std::string& sentence) {
  std::istringstream stream(sentence);
  std::vector<std::string> words;
  for (std::string token; stream >> token;) {
    if (token == "、" || token == "。" || token == "，") continue;
    while (!token.empty() &&
           std::string_view(".,?!").find(token.back()) != std::string_view::npos) {
      token.pop_back();
    }
    if (!token.empty()) words.push_back(std::move(token));
  }
  return words;
}

}  // namespace

std::optional<Judgement> Judge(LanguageType language, const std::string& sentence,
                               std::span<const std::int16_t> recording) {
  AnalyzedAudio audio(language);
  std::vector<std::int16_t> samples(recording.begin(), recording.end());
  const auto count = static_cast<std::uint32_t>(samples.size());
  if (audio.AddPossibleSentence(CString(WideFromUtf8(sentence))) < 0 ||
      audio.Align(count, samples.data()) < 0 || audio.Analyze(count, samples.data()) < 0 ||
      audio.GetNumOfPhonemes() == 0) {
    return std::nullopt;
  }
  Judgement judgement{};
  audio.PrepareUttGoodnessFeatures(judgement.features.data());
  judgement.probability = audio.GetProbOfGoodAlignment();
  return judgement;
}

std::vector<SpokenWord> SpokenWordsOf(LanguageType language, const Utterance& utterance) {
  AnalyzedAudio audio(language);
  std::vector<std::int16_t> samples = utterance.samples;
  const std::vector<std::string> texts = WordsOf(utterance.text);
  if (audio.AddPossibleSentence(CString(WideFromUtf8(utterance.text))) < 0 ||
      audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data()) < 0 ||
      static_cast<std::size_t>(audio.GetNumOfWords()) != texts.size()) {
    return {};
  }
  const std::string_view phonemes = audio.GetPhonemes();
  const auto count = static_cast<int>(phonemes.size());
  std::vector<SpokenWord> words;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const auto number = static_cast<int>(i);
    const int end = i + 1 < texts.size() ? audio.GetWordStartPosition(number + 1) : count;
    SpokenWord word{texts[i], {}, 0};
    for (int p = audio.GetWordStartPosition(number); p < end; ++p) {
      word.phonemes.push_back(
          {phonemes[static_cast<std::size_t>(p)], audio.GetPhonemeStartSampleNum(p)});
      word.end = audio.GetPhonemeEndSampleNum(p);
    }
    if (word.phonemes.empty() || static_cast<std::size_t>(word.end) > samples.size()) return {};
    words.push_back(std::move(word));
  }
  return words;
}

std::vector<Passage> PassagesOf(LanguageType language, std::span<const Utterance> utterances,
                                int threads) {
  std::vector<Passage> passages(utterances.size());
  ParallelFor(utterances.size(), threads, [&](std::size_t i) {
    const Utterance& one = utterances[i];
    if (!KnowsAllWords(language, one.text)) return;
    passages[i] = {one.voice, SpokenWordsOf(language, one), one.samples};
  });
  std::erase_if(passages, [](const Passage& one) { return one.words.empty(); });
  return passages;
}

std::vector<std::int32_t> WordStarts(LanguageType language, const Utterance& utterance) {
  AnalyzedAudio audio(language);
  std::vector<std::int16_t> samples = utterance.samples;
  std::vector<std::int32_t> starts;
  if (audio.AddPossibleSentence(CString(WideFromUtf8(utterance.text))) < 0 ||
      audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data()) < 0) {
    return starts;
  }
  for (int word = 0; word < audio.GetNumOfWords(); ++word) {
    starts.push_back(audio.GetPhonemeStartSampleNum(audio.GetWordStartPosition(word)));
  }
  return starts;
}

bool KnowsAllWords(LanguageType language, const std::string& sentence) {
  const auto dictionary = DictionaryOf(language);
  WordSequence words;
  return dictionary && dictionary->LookupSentence(WideFromUtf8(sentence), words) == 0 &&
         static_cast<std::size_t>(words.Count()) == WordsOf(sentence).size();
}

}  // namespace veral3::training
