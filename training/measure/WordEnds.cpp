#include "training/measure/WordEnds.h"

#include <algorithm>
#include <limits>

#include "common/Unicode.h"
#include "recognition/WordEntry.h"

namespace veral3::training {
namespace {

constexpr int kFar = std::numeric_limits<int>::max() / 2;

// The fewest changes that make `word` of the first j of `phonemes`, for every j.
std::vector<int> ChangesToPrefixes(std::string_view word, std::string_view phonemes) {
  std::vector<int> row(phonemes.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = static_cast<int>(j);
  for (const char symbol : word) {
    int diagonal = row[0]++;
    for (std::size_t j = 1; j < row.size(); ++j) {
      const int changed = diagonal + (phonemes[j - 1] != symbol);
      diagonal = row[j];
      row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row;
}

// How a number of words ends at a place of the phonemes.
struct Ending {
  int changes = kFar;
  std::size_t start = 0;  // of the last of these words
};

}  // namespace

std::vector<std::vector<std::string>> PronunciationsOf(const VeralDictionary& dictionary,
                                                       const std::string& sentence) {
  WordSequence words;
  std::vector<std::vector<std::string>> all;
  if (dictionary.LookupSentence(WideFromUtf8(sentence), words) < 0) return all;
  for (int word = 0; word < words.Count(); ++word) {
    std::vector<std::string>& own = all.emplace_back();
    for (const Pronunciation& one : words[word].pronunciations) {
      if (one.IsUsable()) own.emplace_back(one.phonemes);
    }
  }
  return all;
}

std::vector<std::size_t> WordEnds(std::string_view phonemes,
                                  const std::vector<std::vector<std::string>>& words) {
  constexpr std::size_t kMore = 3;  // phonemes that a word may have beyond its pronunciation
  std::vector<std::vector<Ending>> best(words.size() + 1, std::vector<Ending>(phonemes.size() + 1));
  best[0][0].changes = 0;
  for (std::size_t word = 0; word < words.size(); ++word) {
    for (std::size_t start = 0; start <= phonemes.size(); ++start) {
      if (best[word][start].changes >= kFar) continue;
      for (const std::string& pronunciation : words[word]) {
        const auto row =
            ChangesToPrefixes(pronunciation, phonemes.substr(start, pronunciation.size() + kMore));
        for (std::size_t length = 0; length < row.size(); ++length) {
          Ending& ending = best[word + 1][start + length];
          const int changes = best[word][start].changes + row[length];
          if (changes < ending.changes) ending = {changes, start};
        }
      }
    }
  }
  std::vector<std::size_t> ends;
  std::size_t end = phonemes.size();
  if (best.back()[end].changes * 4 > static_cast<int>(phonemes.size())) return ends;
  for (std::size_t word = words.size(); word > 0; --word) {
    const std::size_t start = best[word][end].start;
    const bool is_its_last =
        end > start && std::ranges::any_of(words[word - 1], [&](const auto& p) {
          return p.back() == phonemes[end - 1];
        });
    if (is_its_last) ends.push_back(end - 1);
    end = start;
  }
  std::ranges::reverse(ends);
  return ends;
}

}  // namespace veral3::training
