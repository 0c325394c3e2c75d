#include "core/AnalyzedAudio.h"

#include <exception>
#include <limits>
#include <string_view>
#include <utility>

#include "common/MessageWriter.h"
#include "core/AnalysisState.h"
#include "recognition/Dictionaries.h"
#include "recognition/Models.h"
#include "signal/HighPassFilter.h"

namespace {

using veral3::AlignmentResult;
using veral3::AnalysisState;
using veral3::Message;
using veral3::MessageStream;

constexpr double kHighPassCutoff = 80.0;     // [Hz] below any voice
constexpr double kHighPassRate = 22050.0;    // [Hz]
constexpr int kDictionaryErrorShift = -100;  // keeps its codes apart from "full", -1

// Runs a step of the interface: whatever it throws (memory runs out) becomes a message and -1.
template <typename Step>
int Guarded(const char* operation, Step step) noexcept {
  try {
    return step();
  } catch (const std::exception& error) {
    Message(MessageStream::kError)
        << "ERROR in AnalyzedAudio::" << operation << "(), " << error.what() << "\n";
  } catch (...) {
    Message(MessageStream::kError) << "ERROR in AnalyzedAudio::" << operation << "()\n";
  }
  return -1;
}

bool IsUsable(const AnalysisState* state, const char* operation) {
  if (state && state->phoneme_set && state->dictionary) return true;
  Message(MessageStream::kError) << "ERROR in AnalyzedAudio::" << operation
                                 << "(), unknown Language Type\n";
  return false;
}

// Counts are ints throughout; 27 hours of sound fit.
bool IsUsable(std::uint32_t num_samples, const std::int16_t* samples, const char* operation) {
  if (num_samples > static_cast<std::uint32_t>(std::numeric_limits<int>::max())) {
    Message(MessageStream::kError)
        << "ERROR in AnalyzedAudio::" << operation << "(), dNumOfSamples too large\n";
    return false;
  }
  if (!samples && num_samples > 0) {
    Message(MessageStream::kError) << "ERROR in AnalyzedAudio::" << operation << "(), no samples\n";
    return false;
  }
  return true;
}

// Aligns with `aligner` and puts the outcome into `state`. Of a failed alignment only the best
// path's probability is kept: half a sentence must not be taken for one.
int AlignWith(const ViterbiAligner& aligner, AnalysisState& state, std::uint32_t num_samples,
              const std::int16_t* samples) {
  const veral3::ModelsInUse models_in_use;
  auto result = std::make_shared<AlignmentResult>();
  state.num_samples = static_cast<int>(num_samples);
  const int matched = aligner.Align(state.phoneme_set, num_samples, samples, *result);
  if (matched < 0) {
    const double log_probability = result->log_probability;
    *result = {};
    result->log_probability = log_probability;
  }
  state.result = std::move(result);
  return matched;
}

}  // namespace

AnalyzedAudio::AnalyzedAudio(LanguageType language) {
  Guarded("AnalyzedAudio", [&] {
    m_state = std::make_unique<AnalysisState>();
    m_state->language = language;
    m_state->phoneme_set = veral3::PhonemeSetOf(language);
    if (!m_state->phoneme_set) {
      Message(MessageStream::kError)
          << "Error in AnalyzedAudio::AnalyzedAudio(), unknown Language Type\n";
      return -1;
    }
    m_state->dictionary = veral3::DictionaryOf(language);
    return 0;
  });
}

AnalyzedAudio::AnalyzedAudio(const AnalyzedAudio& other) : AlignedAudio(other) {
  Guarded("AnalyzedAudio", [&] {
    if (other.m_state) m_state = std::make_unique<AnalysisState>(*other.m_state);
    return 0;
  });
}

AnalyzedAudio& AnalyzedAudio::operator=(const AnalyzedAudio& other) {
  if (this != &other) {
    AnalyzedAudio copy(other);
    std::swap(m_state, copy.m_state);
  }
  return *this;
}

AnalyzedAudio::~AnalyzedAudio() = default;

void AnalyzedAudio::LoadResourceInFolderPath(const char* folder) {
  Guarded("LoadResourceInFolderPath", [&] {
    veral3::LoadDictionaries(folder);
    return 0;
  });
}

int AnalyzedAudio::LoadModelFile(const char* path, ModelFileType type) {
  return Guarded("LoadModelFile", [&] { return veral3::LoadModelFile(path, type); });
}

int AnalyzedAudio::AddPossibleSentence(CString sentence) {
  return Guarded("AddPossibleSentence", [&] {
    if (!IsUsable(m_state.get(), "AddPossibleSentence")) return -1;
    AnalysisState& state = *m_state;
    if (state.num_possible_sentences >= veral3::kMaxPossibleSentences) {
      Message(MessageStream::kError)
          << "ERROR in AnalyzedAudio::AddPossibleSentence(): Too many sentences!\n";
      return -1;
    }
    veral3::WordSequence words;
    const int looked_up = state.dictionary->LookupSentence(sentence, words);
    // A text that fails stays in its slot; the next sentence takes the slot over.
    state.possible_sentences[static_cast<std::size_t>(state.num_possible_sentences)] =
        std::move(sentence);
    if (looked_up < 0) return looked_up + kDictionaryErrorShift;
    words.KeepAlive(state.dictionary);
    state.aligner.AddSentence(std::move(words));
    return ++state.num_possible_sentences;
  });
}

int AnalyzedAudio::Align(std::uint32_t num_samples, std::int16_t* samples) {
  return Guarded("Align", [&] {
    if (!IsUsable(m_state.get(), "Align") || !IsUsable(num_samples, samples, "Align")) return -1;
    ReleaseMemory();
    AnalysisState& state = *m_state;
    state.result = std::make_shared<AlignmentResult>();
    state.num_samples = 0;
    if (num_samples != 0) {
      veral3::HighPassFilter(samples, static_cast<int>(num_samples), kHighPassCutoff,
                             kHighPassRate);
    }
    if (state.num_possible_sentences <= 0) {
      Message(MessageStream::kError)
          << "ERROR in AnalyzedAudio::Align(), m_dNumOfPossibleSentences <= 0\n";
      return -1;
    }
    if (num_samples == 0) {
      Message(MessageStream::kError) << "ERROR in AnalyzedAudio::Align(), dNumOfSamples <= 0\n";
      return -1;
    }
    return AlignWith(state.aligner, state, num_samples, samples);
  });
}

int AnalyzedAudio::AlignAgainstTutor(const AnalyzedAudio* tutor, std::uint32_t num_samples,
                                     std::int16_t* samples) {
  return Guarded("AlignAgainstTutor", [&] {
    if (!IsUsable(m_state.get(), "AlignAgainstTutor")) return -1;
    if (!tutor || !IsUsable(tutor->m_state.get(), "AlignAgainstTutor")) {
      if (!tutor) {
        Message(MessageStream::kError) << "ERROR in AnalyzedAudio::AlignAgainstTutor(), no tutor\n";
      }
      return -1;
    }
    if (!IsUsable(num_samples, samples, "AlignAgainstTutor")) return -1;
    ReleaseMemory();
    m_state->result = std::make_shared<AlignmentResult>();
    m_state->num_samples = 0;
    return AlignWith(tutor->m_state->aligner, *m_state, num_samples, samples);
  });
}

void AnalyzedAudio::ReleaseMemory() {}
