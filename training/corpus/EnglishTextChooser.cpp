#include "training/corpus/EnglishTextChooser.h"

#include <optional>
#include <utility>
#include <vector>

namespace veral3::training {
namespace {

// The phonemes of a text as the voice would say them; nothing for a text with a sound that the
// language's set lacks (nasal vowels of French words).
std::optional<std::string> ExpectedPhonemes(EspeakSpeech& espeak, const EventTable& table,
                                            const std::string& text) {
  std::string phonemes;
  for (const std::string& name : espeak.PhonemeNames(text)) {
    if (!table.Knows(name)) return std::nullopt;
    phonemes += table.SymbolsOf(name);
  }
  return phonemes;
}

}  // namespace

EnglishTextChooser::EnglishTextChooser(const SpeakerOptions& options)
    : m_texts(options.words.empty() ? std::vector<std::string>{}
                                    : ReadDictionaryWords(options.words)),
      m_balance(PhonemeFrequencies(kLanguageEnglish, options.evenness)),
      m_held_out(options.held_out),
      m_rare(options.rare),
      // Rare sounds are rare in templates as well: more must be looked at to find them.
      m_candidates(options.evenness > 0.0 ? 12 : 5) {}

std::string EnglishTextChooser::Choose(EspeakSpeech& espeak, const EventTable& table,
                                       Random& random) {
  if (m_rare) return EnglishTexts::DrawRare(random);
  if (m_held_out) return m_texts.DrawHeldOut(random);
  std::vector<std::string> candidates(m_candidates);
  std::vector<std::string> phonemes(m_candidates);
  for (std::size_t i = 0; i < m_candidates; ++i) {
    std::optional<std::string> expected;
    while (!expected) {
      candidates[i] = m_texts.Draw(random);
      expected = ExpectedPhonemes(espeak, table, candidates[i]);
    }
    phonemes[i] = *std::move(expected);
  }
  const std::size_t chosen = m_balance.Choose(phonemes);
  m_balance.Count(phonemes[chosen]);
  return candidates[chosen];
}

}  // namespace veral3::training
