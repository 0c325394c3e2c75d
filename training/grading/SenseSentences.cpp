#include "training/grading/SenseSentences.h"

#include <stdexcept>

namespace veral3::training {
namespace {

// As many syllables and the same vowels in both; only consonants differ.
const std::vector<SenseSentence>& English() {
  static const std::vector<SenseSentence> sentences = {
      {"please call me when the train arrives", "please call me when the train arrives",
       "breeze tall knee when the drain allives", "", ""},
      {"the weather is lovely this morning", "the weather is lovely this morning",
       "the leather is bubbly this warning", "", ""},
      {"she sells fresh bread near the river", "she sells fresh bread near the river",
       "he tells flesh bled mere the liver", "", ""},
      {"my brother bought a yellow bicycle", "my brother bought a yellow bicycle",
       "by mother taught a mellow tricycle", "", ""},
      {"we walked along the beach after dinner", "we walked along the beach after dinner",
       "we talked among the peach after thinner", "", ""},
      {"the children played football in the garden", "the children played football in the garden",
       "the children braid footfall in the pardon", "", ""},
      {"can you open the kitchen window", "can you open the kitchen window",
       "pan shoe open the pigeon minnow", "", ""},
      {"he never drinks coffee in the evening", "he never drinks coffee in the evening",
       "she clever brinks toffee in the evening", "", ""},
  };
  return sentences;
}

}  // namespace

std::span<const SenseSentence> SenseSentencesOf(LanguageType language) {
  switch (language) {
    case kLanguageEnglish:
      return English();
    case kLanguageChinese:
    case kLanguageJapanese:
      break;
  }
  throw std::runtime_error("no sentences of this language");
}

}  // namespace veral3::training
