#include "core/AnalyzedAudio.h"

#include <algorithm>
#include <new>
#include <utility>

#include "common/Guarded.h"
#include "common/MessageWriter.h"
#include "core/AnalysisChecks.h"
#include "core/AnalysisState.h"
#include "core/ModelScorers.h"
#include "recognition/Dictionaries.h"
#include "recognition/Models.h"
#include "signal/NoiseReduction.h"

namespace {

using veral3::AlignmentResult;
using veral3::AnalysisState;
using veral3::AreSamples;
using veral3::IsUsable;
using veral3::Measurements;
using veral3::Message;
using veral3::MessageStream;

constexpr double kHighPassCutoff = 80.0;     // [Hz] below any voice
constexpr double kHighPassRate = 22050.0;    // [Hz]
constexpr int kDictionaryErrorShift = -100;  // keeps its codes apart from "full", -1

void Report(const char* operation, const char* what) {
  veral3::ReportError("AnalyzedAudio", operation, what);
}

template <typename Step>
int Guarded(const char* operation, Step step) noexcept {
  return veral3::Guarded("AnalyzedAudio", operation, step);
}

// A new alignment makes everything measured before it obsolete.
void ForgetMeasurements(AnalysisState& state) {
  Measurements none;
  none.earlier_pronunciation =
      std::move(state.pronunciation ? state.pronunciation : state.earlier_pronunciation);
  none.last_energy_ratio = state.last_energy_ratio;
  static_cast<Measurements&>(state) = std::move(none);
  state.num_samples = 0;
  state.result = nullptr;
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
    auto state = std::make_unique<AnalysisState>();
    state->language = language;
    state->phoneme_set = veral3::PhonemeSetOf(language);
    state->dictionary = veral3::DictionaryOf(language);
    if (!state->phoneme_set) {
      Message(MessageStream::kError)
          << "Error in AnalyzedAudio::AnalyzedAudio(), unknown Language Type\n";
    }
    m_state = std::move(state);
    return 0;
  });
}

AnalyzedAudio::AnalyzedAudio(const AnalyzedAudio& other) : AlignedAudio(other) {
  Assign("AnalyzedAudio", other);
}

AnalyzedAudio& AnalyzedAudio::operator=(const AnalyzedAudio& other) {
  Assign("operator=", other);
  return *this;
}

bool AnalyzedAudio::Assign(const char* operation, const AnalyzedAudio& other) {
  if (this == &other) return true;
  return Guarded(operation, [&] {
           m_state = other.m_state ? std::make_unique<AnalysisState>(*other.m_state) : nullptr;
           return 0;
         }) == 0;
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
    if (sentence.IsLost()) throw std::bad_alloc();
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
    if (!IsUsable(m_state.get(), "Align") || !AreSamples(num_samples, samples, "Align")) return -1;
    AnalysisState& state = *m_state;
    ForgetMeasurements(state);
    if (num_samples != 0) {
      HighPassFilter(samples, num_samples, kHighPassCutoff, kHighPassRate);
    }
    if (state.num_possible_sentences <= 0) {
      Report("Align", "m_dNumOfPossibleSentences <= 0");
      return -1;
    }
    if (num_samples == 0) {
      Report("Align", "dNumOfSamples <= 0");
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
        Report("AlignAgainstTutor", "no tutor");
      }
      return -1;
    }
    if (!AreSamples(num_samples, samples, "AlignAgainstTutor")) return -1;
    // The tutor may be this object: its sentences stay.
    ForgetMeasurements(*m_state);
    return AlignWith(tutor->m_state->aligner, *m_state, num_samples, samples);
  });
}

void AnalyzedAudio::PrepareUttGoodnessFeatures(double* features) {
  Guarded("PrepareUttGoodnessFeatures", [&] {
    if (!features) {
      Report("PrepareUttGoodnessFeatures", "no features");
      return -1;
    }
    const auto prepared = veral3::PrepareGoodnessFeatures(
        GetLanguageType(), veral3::AlignmentOf(State()), veral3::ProsodyOf(State()).intensity,
        veral3::PronunciationOf(State()), veral3::GoodnessOf(State()));
    static_assert(prepared.size() == NUM_UTT_GOODNESS_FEATURES);
    if (State() && State()->phoneme_set) std::copy(prepared.begin(), prepared.end(), features);
    return 0;
  });
}

double AnalyzedAudio::GetProbOfGoodAlignment() {
  double probability = -1.0;
  Guarded("GetProbOfGoodAlignment", [&] {
    const bool usable = IsUsable(m_state.get(), "GetProbOfGoodAlignment");
    probability = usable ? veral3::ProbabilityOfGoodAlignment(*m_state) : 0.0;
    return 0;
  });
  return probability;
}

int AnalyzedAudio::NoiseReduction(std::int16_t* samples, std::uint32_t num_samples, int policy) {
  return Guarded("NoiseReduction",
                 [&] { return veral3::NoiseReduction(samples, num_samples, policy); });
}

// Allocates nothing: memory may be released because there is none left.
void AnalyzedAudio::ReleaseMemory() {
  if (!m_state || !m_state->prosody) return;
  const veral3::ProsodyResult& prosody = *m_state->prosody;
  veral3::ProsodyResult& left = m_state->released_prosody;
  left.intensity.background = prosody.intensity.background;
  left.intensity.mean_speech = prosody.intensity.mean_speech;
  left.intensity.loud_frames_before = prosody.intensity.loud_frames_before;
  left.intensity.loud_frames_after = prosody.intensity.loud_frames_after;
  left.intensity.speech_to_utterance = prosody.intensity.speech_to_utterance;
  left.pitch_contour = prosody.pitch_contour;
  left.intensity_contour = prosody.intensity_contour;
  m_state->prosody = nullptr;
}
