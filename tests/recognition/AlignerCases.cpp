#include "recognition/AlignerCases.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "recognition/ViterbiAligner.h"
#include "support/MessageCapture.h"

namespace veral3::test {

using WordPointer = std::shared_ptr<const OwnedWordEntry>;

WordPointer Word(std::wstring text, std::vector<std::string> variants) {
  std::vector<OwnedWordEntry::Variant> list;
  for (std::string& phonemes : variants) {
    OwnedWordEntry::Variant variant{std::move(phonemes), {}, {}};
    if (!variant.phonemes.empty()) {
      variant.syllable_marks = {1};
      variant.syllable_starts = {0};
    }
    list.push_back(std::move(variant));
  }
  return std::make_shared<const OwnedWordEntry>(std::move(text), std::move(list));
}

WordSequence Sentence(std::vector<WordPointer> words) {
  WordSequence sentence;
  for (WordPointer& word : words) sentence.AppendOwned(std::move(word));
  return sentence;
}

AlignmentResult WithScores(const CPhonemeSet& set, std::vector<double> scores) {
  AlignmentResult result;
  result.score_columns = 3 * set.GetSize();
  result.num_frames = static_cast<int>(scores.size()) / result.score_columns;
  result.frame_scores = std::move(scores);
  return result;
}

AlignmentResult Spoken(const CPhonemeSet& set, std::string_view track, double high, double low) {
  const std::size_t columns = 3 * static_cast<std::size_t>(set.GetSize());
  std::vector<double> scores(track.size() / 2 * columns, low);
  for (std::size_t i = 0; i + 1 < track.size(); i += 2) {
    const int state = set.GetStateIndex(track[i], track[i + 1] - '0');
    scores[i / 2 * columns + static_cast<std::size_t>(state)] = high;
  }
  return WithScores(set, std::move(scores));
}

std::string Track(std::string_view phonemes) {
  std::string track;
  for (const char phoneme : phonemes) {
    for (const char state : {'0', '1', '2'}) {
      track += phoneme;
      track += state;
    }
  }
  return track;
}

Chooser RandomChooser(std::uint64_t seed) {
  return [state = seed](std::uint32_t bound) mutable {
    state += 0x9E3779B97F4A7C15u;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    z ^= z >> 31;
    return static_cast<std::uint32_t>((z >> 32) * bound >> 32);
  };
}

namespace {

class CaseMaker {
 public:
  CaseMaker(const Chooser& choose, int most_frames)
      : m_choose(choose), m_most_frames(static_cast<std::uint32_t>(most_frames)) {}

  AlignerCase Make() {
    AlignerCase made;
    made.set = PhonemeSetOf(static_cast<LanguageType>(1 + m_choose(3)));
    const std::string_view all = made.set->GetFullSet();
    const std::uint32_t num_symbols = 1 + m_choose(6);
    for (std::uint32_t i = 0; i < num_symbols; ++i) {
      m_symbols += all[m_choose(static_cast<std::uint32_t>(all.size()) - 1)];
    }
    const std::uint32_t num_words = 1 + m_choose(5);
    for (std::uint32_t i = 0; i < num_words; ++i) m_words.push_back(MakeWord(i));

    const std::uint32_t num_rounds = OneIn(3) ? 2 + m_choose(2) : 1;
    std::uint32_t room = 8;
    for (std::uint32_t i = 0; i < num_rounds; ++i) {
      AlignerRound round;
      const bool alone = num_rounds > 1 && OneIn(2);  // a network of shared nodes only, at first
      const std::uint32_t most = std::min<std::uint32_t>(room, i > 0 ? 2 : (alone ? 1 : 8));
      const std::uint32_t count = i == 0 ? 1 + m_choose(most) : (most == 0 ? 0 : m_choose(most));
      for (std::uint32_t k = 0; k < count; ++k) round.added.push_back(MakeSentence());
      room -= count;
      round.num_frames = 1 + static_cast<int>(m_choose(OneIn(4) ? 12 : m_most_frames));
      MakeScores(*made.set, round);
      made.rounds.push_back(std::move(round));
    }
    return made;
  }

 private:
  bool OneIn(std::uint32_t n) { return m_choose(n) == 0; }

  OwnedWordEntry::Variant MakeVariant() {
    OwnedWordEntry::Variant variant;
    if (OneIn(20)) return variant;
    const std::uint32_t length = 1 + m_choose(4);
    for (std::uint32_t i = 0; i < length; ++i) {
      variant.phonemes += m_symbols[m_choose(static_cast<std::uint32_t>(m_symbols.size()))];
    }
    std::int32_t start = 0;
    do {
      variant.syllable_starts.push_back(start);
      variant.syllable_marks.push_back(static_cast<std::int32_t>(m_choose(6)));
      start += 1 + static_cast<std::int32_t>(m_choose(2));
    } while (start < static_cast<std::int32_t>(length));
    return variant;
  }

  WordPointer MakeWord(std::uint32_t number) {
    const std::uint32_t count = OneIn(12) ? 29 + m_choose(8) : 1 + m_choose(3);
    std::vector<OwnedWordEntry::Variant> variants;
    for (std::uint32_t i = 0; i < count; ++i) variants.push_back(MakeVariant());
    std::wstring text(1, static_cast<wchar_t>(L'A' + number));
    return std::make_shared<const OwnedWordEntry>(std::move(text), std::move(variants));
  }

  std::uint32_t AnyWord() { return m_choose(static_cast<std::uint32_t>(m_words.size())); }

  // Words of the first sentence with a few changed, left out or put in; or all new ones.
  WordSequence MakeSentence() {
    std::vector<std::uint32_t> words;
    if (m_base.empty() || OneIn(4)) {
      const std::uint32_t count = OneIn(8) ? 0 : 1 + m_choose(5);
      for (std::uint32_t i = 0; i < count; ++i) words.push_back(AnyWord());
      if (m_base.empty()) m_base = words;
    } else {
      words = m_base;
      for (std::uint32_t changes = m_choose(3); changes > 0; --changes) {
        const std::uint32_t place = m_choose(static_cast<std::uint32_t>(words.size()) + 1);
        const auto at = words.begin() + place;
        if (at == words.end() || OneIn(3)) {
          words.insert(at, AnyWord());
        } else if (OneIn(2)) {
          words.erase(at);
        } else {
          *at = AnyWord();
        }
      }
    }
    std::vector<WordPointer> entries;
    for (const std::uint32_t word : words) {
      entries.push_back(OneIn(15) ? MakeWord(word) : m_words[word]);
    }
    return Sentence(std::move(entries));
  }

  double Score(std::uint32_t style) {
    switch (style) {
      case 0:  // anything
        return (1 + m_choose(1'000'000)) / 1e6;
      case 1: {  // a coarse grid: paths that differ often score the same to the last bit
        constexpr double kGrid[] = {0.5, 0.25, 0.125, 1.0};
        return kGrid[m_choose(4)];
      }
      case 2: {  // around the bound below which a score counts as certain
        constexpr double kTiny[] = {0.0, 1e-200, 9.999e-201, 1e-199, 5e-324, 1e-6, 0.3, 1.0};
        return kTiny[m_choose(8)];
      }
      case 3:  // all the same
        return 0.125;
      default:  // mostly the floor of the frame classifier
        return OneIn(4) ? (1 + m_choose(1000)) / 1e3 : 1e-6;
    }
  }

  void MakeScores(const CPhonemeSet& set, AlignerRound& round) {
    const std::size_t columns = 3 * static_cast<std::size_t>(set.GetSize());
    const std::uint32_t style = m_choose(5);
    // Only the columns that the words use are of interest.
    std::vector<std::size_t> used;
    for (const char symbol : m_symbols + "-") {
      for (int state = 0; state < 3; ++state) {
        used.push_back(static_cast<std::size_t>(set.GetStateIndex(symbol, state)));
      }
    }
    round.scores.assign(static_cast<std::size_t>(round.num_frames) * columns, 1e-3);
    for (std::size_t row = 0; row < round.scores.size(); row += columns) {
      for (const std::size_t column : used) round.scores[row + column] = Score(style);
    }
  }

  const Chooser& m_choose;
  std::uint32_t m_most_frames;
  std::string m_symbols;
  std::vector<WordPointer> m_words;
  std::vector<std::uint32_t> m_base;
};

// The literal aligner says nothing of pronunciations that it passes over.
std::string WithoutPassedOver(const MessageCapture& capture) {
  std::string texts;
  for (const MessageCapture::Entry& entry : capture.Entries()) {
    if (!entry.text.ends_with("cannot be used\n")) texts += entry.text;
  }
  return texts;
}

template <typename A, typename B>
bool SameStart(const A& array, const B& expected) {
  return std::equal(expected.begin(), expected.end(), array.begin());
}

std::string Difference(int answer, const std::string& messages, const AlignmentResult& got,
                       const LiteralResult& want) {
  std::ostringstream text;
  if (messages != want.messages) {
    text << "messages [" << messages << "], not [" << want.messages << "]";
  } else if (answer != want.answer) {
    text << "answer " << answer << ", not " << want.answer;
  } else if (got.log_probability != want.log_probability) {
    text << "log probability " << got.log_probability << ", not " << want.log_probability;
  }
  if (answer < 0 || text.tellp() > 0) return text.str();

  std::vector<LiteralResult::Step> steps;
  for (const PathEntry& e : got.path) {
    const int variant = e.word_start ? e.variant : 0;  // of no meaning elsewhere
    steps.push_back({e.phoneme, e.state, e.word_start, variant, e.time});
  }
  if (steps != want.history) return "history";
  if (got.phonemes != want.phonemes) return got.phonemes + ", not " + want.phonemes;
  if (got.matched_sentence_index != answer) return "matched sentence";
  if (!SameStart(got.phoneme_start, want.phoneme_start)) return "phoneme starts";
  if (!SameStart(got.phoneme_end, want.phoneme_end)) return "phoneme ends";
  if (got.num_syllables != static_cast<int>(want.syllable_start.size())) return "syllables";
  if (!SameStart(got.syllable_start, want.syllable_start)) return "syllable starts";
  if (!SameStart(got.syllable_mark, want.syllable_mark)) return "syllable marks";
  if (!SameStart(got.word_start, want.word_start)) return "word starts";
  if (got.num_words != static_cast<int>(want.words.size())) return "number of words";
  if (!std::equal(got.words.begin(), got.words.end(), want.words.begin(), want.words.end(),
                  [](const CString& a, const std::wstring& b) { return a == CString(b); })) {
    return "words";
  }
  if (got.path_posterior != want.path_posterior) return "path posterior";
  if (got.phoneme_mfcc_prob != want.phoneme_probability) return "phoneme probabilities";
  if (got.pause_mfcc_prob != want.pause_probability) return "pause probabilities";
  return {};
}

void Count(const LiteralResult& result, AlignerTally& tally) {
  tally.matched += result.answer >= 0 ? 1 : 0;
  tally.matched_by_fallback += result.by_fallback ? 1 : 0;
  tally.no_winner += result.answer == -1 ? 1 : 0;
  tally.no_sentence += result.answer == -2 ? 1 : 0;
  tally.tied_paths += result.ties;
  tally.too_many_nodes += result.messages.find("Too many") != std::string::npos ? 1 : 0;
}

}  // namespace

AlignerCase MakeAlignerCase(const Chooser& choose, int most_frames) {
  return CaseMaker(choose, most_frames).Make();
}

std::string CompareWithLiteral(const AlignerCase& aligner_case, AlignerTally* tally) {
  ViterbiAligner aligner;
  LiteralAligner literal;
  int number = 0;
  for (const AlignerRound& round : aligner_case.rounds) {
    for (const WordSequence& sentence : round.added) {
      aligner.AddSentence(sentence);
      literal.AddSentence(sentence);
    }
    AlignmentResult result = WithScores(*aligner_case.set, round.scores);
    const MessageCapture capture;
    const int answer = aligner.AlignScores(*aligner_case.set, result);
    const LiteralResult expected = literal.Align(*aligner_case.set, round.scores, round.num_frames);
    const std::string difference = Difference(answer, WithoutPassedOver(capture), result, expected);
    if (tally) Count(expected, *tally);
    if (!difference.empty()) return "round " + std::to_string(number) + ": " + difference;
    ++number;
  }
  return {};
}

}  // namespace veral3::test
