#include "text/Lexicon.h"

#include <algorithm>
#include <charconv>
#include <memory>

#include "common/MessageWriter.h"
#include "recognition/Dictionaries.h"

namespace veral3 {

Lexicon LexiconOf(LanguageType language) {
  const auto dictionary = DictionaryOf(language);
  Lexicon lexicon;
  lexicon.cost = [dictionary](std::wstring_view word) -> std::optional<int> {
    const int index = dictionary == nullptr ? -1 : dictionary->FindWord(word);
    if (index < 0) return std::nullopt;
    constexpr int kUsualCost = 100;
    constexpr int kMaxCost = 1000;
    int cost = kUsualCost;
    const std::string_view note = dictionary->NoteAt(index);
    std::from_chars(note.data(), note.data() + note.size(), cost);
    return std::clamp(cost, 0, kMaxCost);
  };
  lexicon.has_word = [dictionary](std::wstring_view word) {
    const MutedMessages muted;  // asking is no failure
    return dictionary != nullptr && dictionary->LookupWord(word) != nullptr;
  };
  return lexicon;
}

}  // namespace veral3
