#include <span>
#include <utility>
#include <vector>

#include "common/Guarded.h"
#include "core/AnalysisChecks.h"
#include "core/AnalysisState.h"
#include "core/AnalyzedAudio.h"
#include "core/BadSpaces.h"
#include "core/ModelScorers.h"
#include "core/SyllableSpans.h"
#include "core/Timing.h"
#include "recognition/Models.h"
#include "signal/CWaveFrameDef.h"
#include "signal/FramePitch.h"
#include "signal/HighPassFilter.h"
#include "signal/SignalNoiseRatio.h"
#include "signal/WaveformContour.h"

// The steps of an analysis. Each puts what a pure function makes of the alignment, the samples and
// the steps before into the state.
namespace {

using veral3::AlignmentResult;
using veral3::AnalysisState;
using veral3::GoodnessResult;
using veral3::IsAligned;
using veral3::Measurements;
using veral3::PronunciationResult;
using veral3::ProsodyResult;

int Refuse(const char* operation, const char* what) {
  veral3::ReportError("AnalyzedAudio", operation, what);
  return -1;
}

template <typename Step>
int Guarded(const char* operation, Step step) noexcept {
  return veral3::Guarded("AnalyzedAudio", operation, step);
}

std::span<const std::int16_t> SamplesOf(const AnalysisState& state, const std::int16_t* samples) {
  return {samples, static_cast<std::size_t>(state.num_samples)};
}

veral3::PhonemeScorer PhonemeScorerOf(const AnalysisState& state) {
  return veral3::ScorerOf(veral3::PhonClassifierOf(state.phoneme_set->GetIdentifier()));
}

// What this object's phonemes had before, perhaps in another alignment.
const PronunciationResult& EarlierPronunciation(const AnalysisState& state) {
  static const PronunciationResult none;
  const auto& earlier = state.pronunciation ? state.pronunciation : state.earlier_pronunciation;
  return earlier ? *earlier : none;
}

// Puts a copy of the prosody in its place in which `change` has set a part.
template <typename Change>
void ChangeProsody(AnalysisState& state, Change change) {
  auto prosody = std::make_shared<ProsodyResult>(veral3::ProsodyOf(&state));
  change(*prosody);
  state.prosody = std::move(prosody);
}

// 0, or -1 for a count that was not made.
int SetUttPitchSegments(AnalysisState& state, int count) {
  if (count < 0) return -1;
  ChangeProsody(state, [&](ProsodyResult& prosody) { prosody.utterance_pitch_segments = count; });
  return 0;
}

// Runs the steps of an analysis, which answer whether all were done. Where they were not, what had
// been measured before is still there.
template <typename Steps>
int AllOrNothing(const char* operation, AnalysisState* state, const std::int16_t* samples,
                 Steps steps) {
  return Guarded(operation, [&] {
    if (!IsAligned(state, samples, operation)) return -1;
    const veral3::ModelsInUse models_in_use;  // the same models from the first step to the last
    Measurements before = *state;
    if (Guarded(operation, [&] { return steps() ? 0 : -1; }) == 0) return 0;
    static_cast<Measurements&>(*state) = std::move(before);
    return -1;
  });
}

}  // namespace

int AnalyzedAudio::Analyze(std::uint32_t, std::int16_t* samples) {
  return AllOrNothing("Analyze", m_state.get(), samples, [&] {
    return CalculateUttPronunProb() == 0 &&                               //
           AnalyzePitch(samples) == 0 &&                                  //
           AnalyzeTiming() == 0 &&                                        //
           AnalyzeIntensity(samples) == 0 &&                              //
           SetUttPitchSegments(*m_state, CountUttPichSegments()) == 0 &&  //
           MarkBadSyllables() == 0 &&                                     //
           GenerarteWaveformContour(samples) == 0 &&                      //
           GeneratePitchAndIntensityContour() == 0;
  });
}

int AnalyzedAudio::AnalyzePronunOnly(std::int16_t* samples) {
  return AllOrNothing("AnalyzePronunOnly", m_state.get(), samples, [&] {
    return CalculateUttPronunProb() == 0 &&   //
           AnalyzeIntensity(samples) == 0 &&  //
           MarkBadSyllablesPronunOnly() == 0;
  });
}

int AnalyzedAudio::CalculatePhonProbDistr() {
  return Guarded("CalculatePhonProbDistr", [&] {
    if (!IsAligned(State(), "CalculatePhonProbDistr")) return -1;
    const veral3::ModelsInUse models_in_use;
    PronunciationResult pronunciation = veral3::PronunciationOf(State());
    pronunciation.phonemes =
        veral3::ClassifyPhonemes(*m_state->phoneme_set, *m_state->result, PhonemeScorerOf(*m_state),
                                 EarlierPronunciation(*m_state).phonemes);
    m_state->pronunciation = std::make_shared<PronunciationResult>(std::move(pronunciation));
    return 0;
  });
}

int AnalyzedAudio::CalculateUttPronunProb() {
  return Guarded("CalculateUttPronunProb", [&] {
    if (!IsAligned(State(), "CalculateUttPronunProb")) return -1;
    const veral3::ModelsInUse models_in_use;
    m_state->pronunciation = std::make_shared<PronunciationResult>(
        veral3::AnalyzePronunciation(*m_state->phoneme_set, *m_state->result,
                                     PhonemeScorerOf(*m_state), EarlierPronunciation(*m_state)));
    return 0;
  });
}

int AnalyzedAudio::CalculateFramePitch_PraAC(const std::int16_t* samples, std::uint32_t num_samples,
                                             int* frame_pitch) {
  constexpr const char* kOperation = "CalculateFramePitch_PraAC";
  return Guarded(kOperation, [&] {
    if (!veral3::IsUsable(State(), kOperation) ||
        !veral3::AreSamples(num_samples, samples, kOperation)) {
      return -1;
    }
    const auto num_frames = static_cast<std::size_t>(veral3::NumFrames(num_samples));
    if (num_frames == 0) return 0;
    if (!frame_pitch) return Refuse(kOperation, "no array for the pitch");
    veral3::CalculateFramePitch(samples, num_samples, {frame_pitch, num_frames});
    return 0;
  });
}

int AnalyzedAudio::AnalyzePitch(const std::int16_t* samples) {
  return Guarded("AnalyzePitch", [&] {
    if (!IsAligned(State(), samples, "AnalyzePitch")) return -1;
    const veral3::ModelsInUse models_in_use;
    const auto num_samples = static_cast<std::uint32_t>(m_state->num_samples);
    std::vector<std::int32_t> frame_pitch(static_cast<std::size_t>(veral3::NumFrames(num_samples)));
    if (CalculateFramePitch_PraAC(samples, num_samples, frame_pitch.data()) < 0) return -1;
    ChangeProsody(*m_state, [&](ProsodyResult& prosody) {
      prosody.pitch =
          veral3::MeasurePitch(m_state->language, *m_state->result, std::move(frame_pitch),
                               veral3::ScorerOf(veral3::ToneClassifier()));
      prosody.words = veral3::WordSpansOf(*m_state->result);
    });
    return 0;
  });
}

int AnalyzedAudio::AnalyzeTiming() {
  return Guarded("AnalyzeTiming", [&] {
    ChangeProsody(*m_state, [&](ProsodyResult& prosody) {
      prosody.syllable_duration = veral3::SyllableDurations(*m_state->result);
    });
    return 0;
  });
}

int AnalyzedAudio::AnalyzeIntensity(const std::int16_t* samples) {
  return Guarded("AnalyzeIntensity", [&] {
    ChangeProsody(*m_state, [&](ProsodyResult& prosody) {
      prosody.intensity = veral3::MeasureIntensity(*m_state->result, SamplesOf(*m_state, samples),
                                                   m_state->last_energy_ratio);
    });
    m_state->last_energy_ratio = m_state->prosody->intensity.speech_to_utterance;
    CalculateSignalNoiseRatio(samples);
    return 0;
  });
}

int AnalyzedAudio::CountUttPichSegments() {
  return Guarded("CountUttPichSegments", [&] {
    if (!IsAligned(State(), "CountUttPichSegments")) return -1;
    if (!HasPitch(*m_state) || !HasIntensity(*m_state)) {
      return Refuse("CountUttPichSegments", "nothing is analysed");
    }
    return veral3::CountUtterancePitchSegments(*m_state->result, *m_state->prosody);
  });
}

int AnalyzedAudio::MarkBadSpaces() {
  return Guarded("MarkBadSpaces", [&] {
    if (!IsAligned(State(), "MarkBadSpaces")) return -1;
    if (!HasPitch(*m_state) || !HasIntensity(*m_state)) {
      return Refuse("MarkBadSpaces", "nothing is analysed");
    }
    const ProsodyResult& prosody = *m_state->prosody;
    GoodnessResult goodness = veral3::GoodnessOf(State());
    goodness.loud_gaps =
        veral3::CountLoudGaps(*m_state->result, prosody.pitch.frame, prosody.intensity.frame,
                              prosody.intensity.mean_speech);
    m_state->goodness = std::make_shared<GoodnessResult>(std::move(goodness));
    return 0;
  });
}

int AnalyzedAudio::MarkBadSpacesPronunOnly() {
  return Guarded("MarkBadSpacesPronunOnly", [&] {
    if (!IsAligned(State(), "MarkBadSpacesPronunOnly")) return -1;
    if (!HasIntensity(*m_state)) return Refuse("MarkBadSpacesPronunOnly", "nothing is analysed");
    const veral3::IntensityMeasures& intensity = m_state->prosody->intensity;
    GoodnessResult goodness = veral3::GoodnessOf(State());
    goodness.loud_gaps =
        veral3::CountLoudGapsPronunOnly(*m_state->result, intensity.frame, intensity.mean_speech);
    m_state->goodness = std::make_shared<GoodnessResult>(std::move(goodness));
    return 0;
  });
}

int AnalyzedAudio::MarkBadSyllables() {
  return Guarded("MarkBadSyllables", [&] {
    if (!IsAligned(State(), "MarkBadSyllables")) return -1;
    if (!HasPitch(*m_state) || !HasIntensity(*m_state)) {
      return Refuse("MarkBadSyllables", "nothing is analysed");
    }
    m_state->goodness = std::make_shared<GoodnessResult>(
        veral3::MarkBadSyllables(m_state->language, *m_state->result, *m_state->prosody));
    return 0;
  });
}

int AnalyzedAudio::MarkBadSyllablesPronunOnly() {
  return Guarded("MarkBadSyllablesPronunOnly", [&] {
    if (!IsAligned(State(), "MarkBadSyllablesPronunOnly")) return -1;
    if (!HasIntensity(*m_state)) {
      return Refuse("MarkBadSyllablesPronunOnly", "nothing is analysed");
    }
    m_state->goodness = std::make_shared<GoodnessResult>(veral3::MarkBadSyllablesPronunOnly(
        m_state->language, *m_state->result, m_state->prosody->intensity));
    return 0;
  });
}

int AnalyzedAudio::GenerarteWaveformContour(const std::int16_t* samples) {
  return Guarded("GenerarteWaveformContour", [&] {
    const AlignmentResult& result = *m_state->result;
    auto points = std::make_shared<std::array<int, veral3::kWaveformPoints>>();
    if (veral3::CountPhonemes(result) > 0) {
      *points = veral3::WaveformContour(SamplesOf(*m_state, samples), GetUttStartSampleNum(),
                                        GetUttEndSampleNum());
    }
    m_state->waveform = std::move(points);
    return 0;
  });
}

int AnalyzedAudio::GeneratePitchAndIntensityContour() {
  return Guarded("GeneratePitchAndIntensityContour", [&] {
    ChangeProsody(*m_state,
                  [&](ProsodyResult& prosody) { veral3::DrawContours(*m_state->result, prosody); });
    return 0;
  });
}

double AnalyzedAudio::CalculateSignalNoiseRatio(const std::int16_t* samples) {
  Guarded("CalculateSignalNoiseRatio", [&] {
    if (!IsAligned(State(), samples, "CalculateSignalNoiseRatio")) return -1;
    if (m_state->signal_noise_ratio > 0.0) return 0;
    const AlignmentResult& result = *m_state->result;
    const auto count = static_cast<std::size_t>(veral3::CountPhonemes(result));
    m_state->signal_noise_ratio = veral3::SignalNoiseRatio(
        SamplesOf(*m_state, samples), std::span(result.phoneme_start).first(count),
        std::span(result.phoneme_end).first(count));
    return 0;
  });
  return GetSignalNoiseRatio();
}

void AnalyzedAudio::HighPassFilter(std::int16_t* samples, std::uint32_t num_samples,
                                   double cutoff_hz, double sample_rate) {
  veral3::HighPassFilter(samples, static_cast<int>(num_samples), cutoff_hz, sample_rate);
}
