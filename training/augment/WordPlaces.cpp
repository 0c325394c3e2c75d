#include "training/augment/WordPlaces.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string_view>

#include "common/Unicode.h"
#include "recognition/WordEntry.h"

namespace veral3::training {
namespace {

constexpr int kDifference = 100;  // cost of a phoneme that is another, missing or too much
constexpr int kNoPause = 1;       // of a word that begins without a pause before it
constexpr int kNever = std::numeric_limits<int>::max() / 2;

// One word of the text: what the dictionary makes of it may be several, as of a number.
struct Token {
  std::string text;
  WordSequence words;
};

// Nothing where a word is unknown.
std::vector<Token> TokensOf(const std::string& text, const VeralDictionary& dictionary) {
  std::istringstream stream(text);
  std::vector<Token> tokens;
  for (std::string one; stream >> one;) {
    const std::wstring wide = WideFromUtf8(one);
    const bool is_mark =
        dictionary.GetNextIndexOfVaildChar(wide, 0) >= static_cast<int>(wide.size());
    if (is_mark) {
      if (!tokens.empty()) tokens.back().text += " " + one;
      continue;
    }
    Token token{one, {}};
    if (dictionary.LookupSentence(wide, token.words) < 0 || token.words.Count() == 0) return {};
    tokens.push_back(std::move(token));
  }
  return tokens;
}

// The least cost of all phonemes up to each place, and where the word before ended on that way.
struct Row {
  std::vector<int> costs;
  std::vector<std::size_t> from;
};

Row RowOf(std::size_t places) {
  return {std::vector<int>(places, kNever), std::vector<std::size_t>(places, 0)};
}

void TakeBetter(Row& row, std::size_t place, int cost, std::size_t from) {
  if (cost < row.costs[place]) {
    row.costs[place] = cost;
    row.from[place] = from;
  }
}

// What one pronunciation adds to a row: Levenshtein's distance from every start at once.
void AddPronunciation(const Row& start, std::string_view pronunciation, std::string_view phonemes,
                      Row& end) {
  Row row = start;
  for (const char wanted : pronunciation) {
    Row next = RowOf(row.costs.size());
    for (std::size_t place = 0; place < row.costs.size(); ++place) {
      TakeBetter(next, place, row.costs[place] + kDifference, row.from[place]);
      if (place == 0) continue;
      const int change = phonemes[place - 1] == wanted ? 0 : kDifference;
      TakeBetter(next, place, row.costs[place - 1] + change, row.from[place - 1]);
      TakeBetter(next, place, next.costs[place - 1] + kDifference, next.from[place - 1]);
    }
    row = std::move(next);
  }
  for (std::size_t place = 0; place < row.costs.size(); ++place) {
    TakeBetter(end, place, row.costs[place], row.from[place]);
  }
}

// Whether a pause lies before each phoneme; before the first and behind the last one there is.
std::vector<bool> PausesBefore(const Utterance& utterance, std::size_t phonemes) {
  std::vector<bool> pause_before(phonemes + 1, false);
  std::size_t passed = 0;
  for (const PhonemeLabel& label : utterance.labels) {
    if (label.symbol == '-') {
      pause_before[passed] = true;
    } else {
      ++passed;
    }
  }
  pause_before.front() = pause_before.back() = true;
  return pause_before;
}

bool MayCut(const Utterance& utterance, std::size_t phoneme) {
  return utterance.syllables.empty() ||
         std::ranges::find(utterance.syllables, static_cast<std::int32_t>(phoneme)) !=
             utterance.syllables.end();
}

// From each place on begins a word.
Row Starts(const Row& before, const std::vector<bool>& pause_before) {
  Row row = before;
  for (std::size_t place = 0; place < row.costs.size(); ++place) {
    row.from[place] = place;
    if (!pause_before[place]) row.costs[place] += kNoPause;
  }
  return row;
}

}  // namespace

std::vector<WordPlace> WordPlacesOf(const Utterance& utterance, const VeralDictionary& dictionary) {
  const std::string phonemes = PhonemesOf(utterance);
  const std::vector<Token> tokens = TokensOf(utterance.text, dictionary);
  if (tokens.empty() || phonemes.empty()) return {};
  const std::vector<bool> pause_before = PausesBefore(utterance, phonemes.size());

  Row row = RowOf(phonemes.size() + 1);
  row.costs[0] = 0;
  std::vector<std::vector<std::size_t>> from;  // of each token, by where it ends
  for (const Token& token : tokens) {
    row = Starts(row, pause_before);
    for (int word = 0; word < token.words.Count(); ++word) {
      Row end = RowOf(row.costs.size());
      for (const Pronunciation& one : token.words[word].pronunciations) {
        if (one.IsUsable()) AddPronunciation(row, one.phonemes, phonemes, end);
      }
      row = std::move(end);
    }
    from.push_back(row.from);
  }
  if (row.costs.back() * 10 > 3 * kDifference * static_cast<int>(phonemes.size())) return {};

  std::vector<WordPlace> places(tokens.size());
  std::size_t end = phonemes.size();
  for (std::size_t i = tokens.size(); i-- > 0;) {
    const std::size_t first = from[i][end];
    if (first >= end) return {};
    places[i] = {tokens[i].text, first};
    end = first;
    if (!MayCut(utterance, first)) return {};
  }
  return places;
}

std::vector<WordPlace> WordlikePlaces(const Utterance& utterance, Random& random) {
  const std::size_t count = PhonemesOf(utterance).size();
  const std::vector<bool> pause_before = PausesBefore(utterance, count);
  std::vector<WordPlace> places;
  int left = 0;  // of the stretch
  for (std::size_t phoneme = 0; phoneme < count; ++phoneme, --left) {
    if (phoneme > 0 && !pause_before[phoneme] && left > 0) continue;
    if (phoneme > 0 && !MayCut(utterance, phoneme)) continue;
    places.push_back({"", phoneme});
    left = random.Between(3, 7);
  }
  return places;
}

}  // namespace veral3::training
