#include "training/goodness/Passages.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

#include "signal/CWaveFrameDef.h"

namespace veral3::training {
namespace {

// Over 2 ms, so that a cut is not heard as a click.
void FadeEnds(std::vector<std::int16_t>& samples) {
  const std::size_t fade = std::min<std::size_t>(kSampleRate / 500, samples.size() / 2);
  for (std::size_t i = 0; i < fade; ++i) {
    for (std::int16_t* x : {&samples[i], &samples[samples.size() - 1 - i]}) {
      *x = static_cast<std::int16_t>(*x * static_cast<int>(i) / static_cast<int>(fade));
    }
  }
}

void Move(SpokenWord& word, std::int32_t by) {
  for (PhonemeLabel& phoneme : word.phonemes) phoneme.start += by;
  word.end += by;
}

}  // namespace

std::string TextOf(const Passage& passage) {
  std::string text;
  for (const SpokenWord& word : passage.words) text += (text.empty() ? "" : " ") + word.text;
  return text;
}

int CountPhonemes(std::span<const SpokenWord> words) {
  return std::accumulate(words.begin(), words.end(), 0, [](int count, const SpokenWord& word) {
    return count + static_cast<int>(word.phonemes.size());
  });
}

Passage PieceOf(const Passage& passage, std::size_t first, std::size_t count) {
  constexpr std::int32_t kMostPause = kSampleRate / 20;
  const std::size_t last = first + count - 1;
  const std::int32_t previous_end = first == 0 ? 0 : passage.words[first - 1].end;
  const std::int32_t next_start = last + 1 < passage.words.size()
                                      ? passage.words[last + 1].Start()
                                      : static_cast<std::int32_t>(passage.samples.size());
  const std::int32_t begin = std::max(previous_end, passage.words[first].Start() - kMostPause);
  const std::int32_t end = std::min(next_start, passage.words[last].end + kMostPause);
  Passage piece;
  piece.voice = passage.voice;
  const auto words = std::span(passage.words).subspan(first, count);
  piece.words.assign(words.begin(), words.end());
  for (SpokenWord& word : piece.words) Move(word, -begin);
  piece.samples.assign(passage.samples.begin() + begin, passage.samples.begin() + end);
  FadeEnds(piece.samples);
  return piece;
}

void Append(Passage& passage, const Passage& next, double gap) {
  passage.samples.resize(passage.samples.size() +
                         static_cast<std::size_t>(std::lround(gap * kSampleRate)));
  const auto by = static_cast<std::int32_t>(passage.samples.size());
  for (SpokenWord word : next.words) {
    Move(word, by);
    passage.words.push_back(std::move(word));
  }
  passage.samples.insert(passage.samples.end(), next.samples.begin(), next.samples.end());
}

PassageDrawer::PassageDrawer(std::span<const Passage> recordings) : m_recordings(recordings) {
  if (recordings.empty()) throw std::runtime_error("no recordings to make passages of");
  for (std::size_t i = 0; i < recordings.size(); ++i) {
    if (recordings[i].words.empty()) throw std::runtime_error("a recording without words");
    m_all.push_back(i);
    m_of_voice[recordings[i].voice].push_back(i);
  }
}

double PassageDrawer::WordsOf(int phonemes) const {
  double own_words = 0.0;
  double own_phonemes = 0.0;
  for (const Passage& recording : m_recordings) {
    own_words += static_cast<double>(recording.words.size());
    own_phonemes += CountPhonemes(recording.words);
  }
  return phonemes * own_words / own_phonemes;
}

Passage PassageDrawer::Draw(int words, Random& random) const {
  return DrawBy(m_recordings[random.Below(m_recordings.size())].voice, words, random);
}

Passage PassageDrawer::DrawBy(std::string_view voice, int words, Random& random) const {
  const auto own = m_of_voice.find(voice);
  return DrawFrom(own == m_of_voice.end() ? m_all : own->second, words, random);
}

Passage PassageDrawer::DrawFrom(std::span<const std::size_t> choices, int words,
                                Random& random) const {
  Passage passage;
  int phonemes = 0;
  for (std::size_t missing = static_cast<std::size_t>(std::max(words, 1)); missing > 0;) {
    const Passage& recording = m_recordings[random.Pick(choices)];
    std::size_t count = std::min(missing, recording.words.size());
    const std::size_t first = random.Below(recording.words.size() - count + 1);
    const auto chosen = std::span(recording.words).subspan(first, count);
    while (count > 0 && phonemes + CountPhonemes(chosen.first(count)) > kMostPhonemes) --count;
    if (passage.words.empty()) {
      passage = PieceOf(recording, first, std::max<std::size_t>(count, 1));
    } else if (count > 0) {
      Append(passage, PieceOf(recording, first, count), random.Uniform(0.0, 0.4));
    }
    phonemes = CountPhonemes(passage.words);
    if (count < chosen.size()) break;
    missing -= count;
  }
  return passage;
}

}  // namespace veral3::training
