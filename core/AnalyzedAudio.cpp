#include "core/AnalyzedAudio.h"

#include <algorithm>
#include <limits>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include "common/Guarded.h"
#include "common/MessageWriter.h"
#include "core/AnalysisState.h"
#include "core/ModelScorers.h"
#include "recognition/Dictionaries.h"
#include "recognition/Models.h"
#include "signal/CWaveFrameDef.h"
#include "signal/FramePitch.h"
#include "signal/HighPassFilter.h"
#include "signal/NoiseReduction.h"
#include "signal/SignalNoiseRatio.h"
#include "signal/WaveformContour.h"

namespace {

using veral3::AlignmentResult;
using veral3::AnalysisState;
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

bool IsUsable(const AnalysisState* state, const char* operation) {
  if (state && state->phoneme_set) return true;
  Report(operation, state ? "unknown Language Type" : "memory ran out when the object was made");
  return false;
}

bool IsKnownLanguage(const AnalysisState* state) { return state && state->phoneme_set; }

// Counts are ints throughout; 27 hours of sound fit.
bool IsUsable(std::uint32_t num_samples, const std::int16_t* samples, const char* operation) {
  if (num_samples > static_cast<std::uint32_t>(std::numeric_limits<int>::max())) {
    Report(operation, "dNumOfSamples too large");
    return false;
  }
  if (!samples && num_samples > 0) {
    Report(operation, "no samples");
    return false;
  }
  return true;
}

// A new alignment makes everything measured before it obsolete.
void ForgetMeasurements(AnalysisState& state) {
  if (state.pronunciation) state.earlier_pronunciation = std::move(state.pronunciation);
  if (state.prosody) {
    state.earlier_energy_ratio = state.prosody->intensity.speech_to_utterance;
  }
  state.pronunciation = nullptr;
  state.prosody = nullptr;
  state.goodness = nullptr;
  state.waveform = nullptr;
  state.signal_noise_ratio = 0.0;
  state.num_samples = 0;
  state.result = nullptr;
}

bool IsAligned(const AnalysisState& state, const std::int16_t* samples, const char* operation) {
  if (!state.result || state.result->matched_sentence_index < 0) {
    Report(operation, "nothing is aligned");
    return false;
  }
  return IsUsable(static_cast<std::uint32_t>(state.num_samples), samples, operation);
}

std::span<const std::int16_t> SamplesOf(const AnalysisState& state, const std::int16_t* samples) {
  return {samples, static_cast<std::size_t>(state.num_samples)};
}

double SignalNoiseRatioOf(const AnalysisState& state, std::span<const std::int16_t> samples) {
  const AlignmentResult& result = *state.result;
  return veral3::SignalNoiseRatio(samples,
                                  std::span(result.phoneme_start).first(result.phonemes.size()),
                                  std::span(result.phoneme_end).first(result.phonemes.size()));
}

std::shared_ptr<const veral3::PronunciationResult> Pronounce(const AnalysisState& state) {
  static const veral3::PronunciationResult none;
  const auto& before = state.pronunciation ? state.pronunciation : state.earlier_pronunciation;
  const auto* classifier = veral3::PhonClassifierOf(state.phoneme_set->GetIdentifier());
  return std::make_shared<veral3::PronunciationResult>(veral3::AnalyzePronunciation(
      *state.phoneme_set, *state.result, veral3::ScorerOf(classifier), before ? *before : none));
}

double EarlierEnergyRatio(const AnalysisState& state) {
  return state.prosody ? state.prosody->intensity.speech_to_utterance : state.earlier_energy_ratio;
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
    if (!IsUsable(m_state.get(), "Align") || !IsUsable(num_samples, samples, "Align")) return -1;
    AnalysisState& state = *m_state;
    ForgetMeasurements(state);
    if (num_samples != 0) {
      veral3::HighPassFilter(samples, static_cast<int>(num_samples), kHighPassCutoff,
                             kHighPassRate);
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
    if (!IsUsable(num_samples, samples, "AlignAgainstTutor")) return -1;
    // The tutor may be this object: its sentences stay.
    ForgetMeasurements(*m_state);
    return AlignWith(tutor->m_state->aligner, *m_state, num_samples, samples);
  });
}

int AnalyzedAudio::Analyze(std::uint32_t, std::int16_t* samples) {
  return Guarded("Analyze", [&] {
    if (!IsUsable(m_state.get(), "Analyze") || !IsAligned(*m_state, samples, "Analyze")) return -1;
    AnalysisState& state = *m_state;
    const veral3::ModelsInUse models_in_use;
    const AlignmentResult& result = *state.result;
    const auto sound = SamplesOf(state, samples);

    auto pronunciation = Pronounce(state);
    std::vector<std::int32_t> frame_pitch(static_cast<std::size_t>(result.num_frames));
    veral3::CalculateFramePitch(sound.data(), static_cast<std::uint32_t>(sound.size()),
                                frame_pitch);
    auto prosody = std::make_shared<veral3::ProsodyResult>(veral3::AnalyzeProsody(
        state.language, result, sound, std::move(frame_pitch),
        veral3::ScorerOf(veral3::ToneClassifier()), EarlierEnergyRatio(state)));
    auto goodness = std::make_shared<veral3::GoodnessResult>(
        veral3::MarkBadSyllables(state.language, result, *prosody));
    auto waveform = std::make_shared<std::array<int, veral3::kWaveformPoints>>(
        veral3::WaveformContour(sound, GetUttStartSampleNum(), GetUttEndSampleNum()));

    state.pronunciation = std::move(pronunciation);
    state.prosody = std::move(prosody);
    state.goodness = std::move(goodness);
    state.waveform = std::move(waveform);
    CalculateSignalNoiseRatio(samples);
    return 0;
  });
}

int AnalyzedAudio::AnalyzePronunOnly(std::int16_t* samples) {
  return Guarded("AnalyzePronunOnly", [&] {
    if (!IsUsable(m_state.get(), "AnalyzePronunOnly") ||
        !IsAligned(*m_state, samples, "AnalyzePronunOnly")) {
      return -1;
    }
    AnalysisState& state = *m_state;
    const veral3::ModelsInUse models_in_use;
    auto pronunciation = Pronounce(state);
    auto prosody = std::make_shared<veral3::ProsodyResult>(veral3::ProsodyOf(&state));
    prosody->intensity = veral3::MeasureIntensity(*state.result, SamplesOf(state, samples),
                                                  EarlierEnergyRatio(state));
    auto goodness = std::make_shared<veral3::GoodnessResult>(
        veral3::MarkBadSyllablesPronunOnly(state.language, *state.result, prosody->intensity));
    state.pronunciation = std::move(pronunciation);
    state.prosody = std::move(prosody);
    state.goodness = std::move(goodness);
    CalculateSignalNoiseRatio(samples);
    return 0;
  });
}

double AnalyzedAudio::CalculateSignalNoiseRatio(const std::int16_t* samples) {
  Guarded("CalculateSignalNoiseRatio", [&] {
    if (!IsUsable(m_state.get(), "CalculateSignalNoiseRatio") ||
        !IsAligned(*m_state, samples, "CalculateSignalNoiseRatio")) {
      return -1;
    }
    if (!(m_state->signal_noise_ratio > 0.0)) {
      m_state->signal_noise_ratio = SignalNoiseRatioOf(*m_state, SamplesOf(*m_state, samples));
    }
    return 0;
  });
  return GetSignalNoiseRatio();
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
    if (IsKnownLanguage(State())) std::copy(prepared.begin(), prepared.end(), features);
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

void AnalyzedAudio::ReleaseMemory() {
  if (!m_state || !m_state->prosody) return;
  m_state->earlier_energy_ratio = m_state->prosody->intensity.speech_to_utterance;
  m_state->prosody = nullptr;
  m_state->goodness = nullptr;
}
