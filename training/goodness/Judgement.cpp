#include "training/goodness/Judgement.h"

#include <sstream>
#include <string>

#include "common/Unicode.h"
#include "core/AnalyzedAudio.h"
#include "recognition/Dictionaries.h"

namespace veral3::training {

std::optional<Judgement> Judge(LanguageType language, const Reading& reading) {
  AnalyzedAudio audio(language);
  std::vector<std::int16_t> samples = reading.samples;
  const auto count = static_cast<std::uint32_t>(samples.size());
  if (audio.AddPossibleSentence(CString(WideFromUtf8(reading.sentence))) < 0 ||
      audio.Align(count, samples.data()) < 0 || audio.Analyze(count, samples.data()) < 0 ||
      audio.GetNumOfPhonemes() == 0) {
    return std::nullopt;
  }
  Judgement judgement{};
  audio.PrepareUttGoodnessFeatures(judgement.features.data());
  judgement.probability = audio.GetProbOfGoodAlignment();
  return judgement;
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
  std::istringstream stream(sentence);
  int tokens = 0;
  for (std::string token; stream >> token;) {
    const bool is_mark = token == "、" || token == "。" || token == "，" ||
                         token.find_first_not_of(".,?!") == std::string::npos;
    tokens += !is_mark;
  }
  WordSequence words;
  return dictionary && dictionary->LookupSentence(WideFromUtf8(sentence), words) == 0 &&
         words.Count() == tokens;
}

}  // namespace veral3::training
