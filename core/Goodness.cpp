#include "core/Goodness.h"

#include <span>

#include "common/MessageWriter.h"
#include "core/BadSpaces.h"
#include "core/BadSyllables.h"
#include "core/Finite.h"
#include "core/SyllableSpans.h"

namespace veral3 {

GoodnessResult MarkBadSyllables(LanguageType language, const AlignmentResult& alignment,
                                const ProsodyResult& prosody) {
  GoodnessResult result;
  result.loud_gaps = CountLoudGaps(alignment, prosody.pitch.frame, prosody.intensity.frame,
                                   prosody.intensity.mean_speech);
  result.good_syllable = SyllableGoodness(language, alignment, result.loud_gaps,
                                          prosody.intensity.convexity, prosody.pitch.segments);
  return result;
}

GoodnessResult MarkBadSyllablesPronunOnly(LanguageType language, const AlignmentResult& alignment,
                                          const IntensityMeasures& intensity) {
  GoodnessResult result;
  result.loud_gaps = CountLoudGapsPronunOnly(alignment, intensity.frame, intensity.mean_speech);
  result.good_syllable = SyllableGoodnessPronunOnly(language, alignment, result.loud_gaps);
  return result;
}

GoodnessFeatures PrepareGoodnessFeatures(LanguageType language, const AlignmentResult& alignment,
                                         const IntensityMeasures& intensity,
                                         const PronunciationResult& pronunciation,
                                         const GoodnessResult& goodness) {
  GoodnessFeatures features{};
  switch (language) {
    case kLanguageEnglish:
      features[0] = 1.0;
      break;
    case kLanguageChinese:
      features[1] = 1.0;
      break;
    case kLanguageJapanese:
      features[2] = 1.0;
      break;
    default:
      Message(MessageStream::kError)
          << "Error in AnalyzedAudio::PrepareUttGoodnessFeatures(), unknown LanguageType.\n";
      return features;
  }
  const std::span<const std::int32_t> gaps(goodness.loud_gaps);
  const std::span<const double> pauses(alignment.pause_mfcc_prob);
  features[3] = alignment.num_frames;
  features[4] = CountPhonemes(alignment);
  features[5] = CountSyllables(alignment);
  features[6] = ReadOr(gaps, 0);
  features[7] = ReadOr(gaps, CountSyllables(alignment));
  features[8] = intensity.loud_frames_before;
  features[9] = intensity.loud_frames_after;
  features[10] = ReadOr(pauses, 0);
  features[11] = ReadOr(pauses, CountPhonemes(alignment));
  features[12] = alignment.log_probability;
  features[13] = intensity.speech_to_utterance;
  features[14] = pronunciation.utterance.by_syllable;
  features[15] = pronunciation.utterance.by_phoneme;
  return features;
}

double ProbabilityOfGoodAlignment(const GoodnessFeatures& features, const GoodnessScorer& scorer) {
  const std::optional<double> probability = scorer ? scorer(features) : std::optional<double>();
  if (!probability) {
    Message(MessageStream::kError) << "ERROR in AnalyzedAudio::GetProbOfGoodAlignment(), no "
                                      "utterance goodness model is loaded.\n";
    return 0.0;
  }
  return FiniteOrZero(*probability);
}

}  // namespace veral3
