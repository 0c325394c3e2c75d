#include "training/corpus/Vocabulary.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <utility>

namespace veral3::training {

Words SplitWords(std::string_view text) {
  std::istringstream stream{std::string(text)};
  Words words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

std::string JoinWords(const Words& words) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    text += word;
  }
  return text;
}

std::string WithOneWordChanged(std::string_view text, const Vocabulary& vocabulary,
                               Random& random) {
  Words words = SplitWords(text);
  std::vector<std::pair<std::size_t, const Words*>> changeable;
  for (std::size_t i = 0; i < words.size(); ++i) {
    for (const auto& [slot, choices] : vocabulary) {
      if (std::ranges::find(choices, words[i]) != choices.end()) {
        changeable.emplace_back(i, &choices);
        break;
      }
    }
  }
  if (changeable.empty()) return std::string(text);
  const auto [place, choices] = random.Pick(changeable);
  const std::string old = words[place];
  while (words[place] == old) words[place] = random.Pick(*choices);
  return JoinWords(words);
}

}  // namespace veral3::training
