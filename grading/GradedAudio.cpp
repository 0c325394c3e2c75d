#include "grading/GradedAudio.h"

#include <fstream>
#include <utility>

#include "common/Guarded.h"
#include "core/AnalysisState.h"
#include "core/ModelScorers.h"
#include "grading/GradedResult.h"
#include "grading/ScoreReport.h"

namespace {

using veral3::GradedResult;

const GradedResult& OrEmpty(const std::shared_ptr<const GradedResult>& graded) {
  static const GradedResult empty;
  return graded ? *graded : empty;
}

template <typename T>
T At(const std::vector<T>& values, int index) {
  return index >= 0 && static_cast<std::size_t>(index) < values.size()
             ? values[static_cast<std::size_t>(index)]
             : T{};
}

char At(const std::string& letters, int index) {
  return index >= 0 && static_cast<std::size_t>(index) < letters.size()
             ? letters[static_cast<std::size_t>(index)]
             : '\0';
}

// The learner as the grading steps see it.
veral3::LearnerView LearnerOf(GradedAudio& audio, const veral3::AnalysisState* state) {
  veral3::LearnerView learner;
  static_cast<veral3::RecordingView&>(learner) = veral3::ViewOf(audio);
  learner.words = veral3::ProsodyOf(state).words;
  learner.words.num_syllables.resize(static_cast<std::size_t>(audio.GetNumOfWords()));
  learner.words.first_syllable.resize(learner.words.num_syllables.size());
  learner.goodness = veral3::GoodnessOf(state).good_syllable;
  learner.distribution_width = veral3::kDistributionWidth;
  learner.distributions = veral3::PronunciationOf(state).phonemes.rows;
  return learner;
}

void Report(const char* operation, const char* what) {
  veral3::ReportError("GradedAudio", operation, what);
}

template <typename Step>
int Guarded(const char* operation, Step step) noexcept {
  return veral3::Guarded("GradedAudio", operation, step);
}

bool IsAnalysed(const veral3::AnalysisState* state, const char* operation) {
  if (!state || !state->phoneme_set) {
    Report(operation, state ? "unknown Language Type" : "memory ran out when the object was made");
    return false;
  }
  if (!state->pronunciation || !state->goodness) {
    Report(operation, "the recording is not analysed");
    return false;
  }
  return true;
}

// Pitch, timing and loudness that were not measured, or were released, are not graded as silence.
bool HasProsody(const veral3::AnalysisState* state) {
  const veral3::ProsodyResult& prosody = veral3::ProsodyOf(state);
  const auto count = static_cast<std::size_t>(veral3::AlignmentOf(state).num_syllables);
  return prosody.pitch.syllable.size() == count && prosody.syllable_duration.size() == count &&
         prosody.intensity.syllable.size() == count;
}

// What a new grading starts from: the earlier one without its scores.
GradedResult StartFrom(const GradedResult& earlier) {
  GradedResult graded = earlier;
  graded.ReleaseScores();
  return graded;
}

}  // namespace

GradedAudio::GradedAudio(LanguageType language) : AnalyzedAudio(language) {}
GradedAudio::GradedAudio(const GradedAudio& other)
    : AnalyzedAudio(other), m_graded(State() ? other.m_graded : nullptr) {}
GradedAudio& GradedAudio::operator=(const GradedAudio& other) {
  if (Assign("operator=", other)) m_graded = other.m_graded;
  return *this;
}
GradedAudio::~GradedAudio() = default;

int GradedAudio::GradeAgainstTutor(AlignedAudio* tutor) {
  return Guarded("GradeAgainstTutor", [&] {
    if (!tutor) {
      Report("GradeAgainstTutor", "no tutor");
      return -1;
    }
    if (!IsAnalysed(State(), "GradeAgainstTutor")) return -1;
    if (!HasProsody(State())) {
      Report("GradeAgainstTutor", "the recording is not analysed");
      return -1;
    }
    auto graded = std::make_shared<GradedResult>(StartFrom(OrEmpty(m_graded)));
    const int total = veral3::GradeAgainstTutor(
        LearnerOf(*this, State()), veral3::ViewOf(*tutor),
        [this] { return veral3::ProbabilityOfGoodAlignment(*State()); }, *graded);
    m_graded = std::move(graded);
    return total;
  });
}

int GradedAudio::GradePronunOnly() {
  return Guarded("GradePronunOnly", [&] {
    if (!IsAnalysed(State(), "GradePronunOnly")) return -1;
    auto graded = std::make_shared<GradedResult>(StartFrom(OrEmpty(m_graded)));
    const int total = veral3::GradePronunciationOnly(
        LearnerOf(*this, State()), [this] { return veral3::ProbabilityOfGoodAlignment(*State()); },
        *graded);
    m_graded = std::move(graded);
    return total;
  });
}

int GradedAudio::GetTotalScore() { return OrEmpty(m_graded).total; }
int GradedAudio::GetPronunScore() { return OrEmpty(m_graded).components.pronunciation; }
int GradedAudio::GetPitchScore() { return OrEmpty(m_graded).components.pitch; }
int GradedAudio::GetTimingScore() { return OrEmpty(m_graded).components.timing; }
int GradedAudio::GetIntensityScore() { return OrEmpty(m_graded).components.intensity; }

int GradedAudio::GetPhonemePonunScore(int phoneme) {
  return At(OrEmpty(m_graded).phoneme_pronunciation, phoneme);
}
int GradedAudio::GetSyllablePronunScore(int syl) {
  return At(OrEmpty(m_graded).syllable_pronunciation, syl);
}
int GradedAudio::GetSyllablePitchScore(int syl) {
  return At(OrEmpty(m_graded).syllable_pitch, syl);
}
int GradedAudio::GetSyllableTimingScore(int syl) {
  return At(OrEmpty(m_graded).syllable_timing, syl);
}
int GradedAudio::GetSyllableIntensityScore(int syl) {
  return At(OrEmpty(m_graded).syllable_intensity, syl);
}

// The percents that were computed go into the mismatch traits only.
int GradedAudio::GetSyllableTimingPercent(int) { return 100; }
int GradedAudio::GetWordIntensityPercent(int) { return 100; }

bool GradedAudio::GetSyllableUnnecessaryPause(int syl) {
  return At(OrEmpty(m_graded).unnecessary_pause, syl);
}

char GradedAudio::GetSyllablePitchAdvice(int syl) {
  return At(OrEmpty(m_graded).pitch_advice, syl);
}
char GradedAudio::GetSyllableTimingAdvice(int syl) {
  return At(OrEmpty(m_graded).timing_advice, syl);
}
char GradedAudio::GetSyllableIntensityAdvice(int syl) {
  return At(OrEmpty(m_graded).intensity_advice, syl);
}

int GradedAudio::GetWordPronunScore(int word) {
  return At(OrEmpty(m_graded).words.pronunciation, word);
}
int GradedAudio::GetWordPitchScore(int word) { return At(OrEmpty(m_graded).words.pitch, word); }
int GradedAudio::GetWordTimingScore(int word) { return At(OrEmpty(m_graded).words.timing, word); }
int GradedAudio::GetWordIntensityScore(int word) {
  return At(OrEmpty(m_graded).words.intensity, word);
}
int GradedAudio::GetWordScore(int word) { return At(OrEmpty(m_graded).words.total, word); }

double GradedAudio::GetWordPitchConstrast(int word) {
  return At(OrEmpty(m_graded).word_pitch_contrast, word);
}
double GradedAudio::GetWordTimingConstrast(int word) {
  return At(OrEmpty(m_graded).word_timing_contrast, word);
}
double GradedAudio::GetWordIntensityConstrast(int word) {
  return At(OrEmpty(m_graded).word_intensity_contrast, word);
}

int GradedAudio::GetCorrectTone(int syl) { return At(OrEmpty(m_graded).correct_tone, syl); }
int GradedAudio::GetStudentTone(int syl) { return At(OrEmpty(m_graded).student_tone, syl); }

void GradedAudio::PrintScores() {
  Guarded("PrintScores", [&] {
    veral3::ReportHead head;
    head.language = GetLanguageType();
    for (int word = 0; word < GetNumOfWords(); ++word) {
      head.words.push_back(GetWordOfMatchedSentence(word));
    }
    head.signal_noise_ratio = GetSignalNoiseRatio();
    veral3::PrintScores(head, OrEmpty(m_graded));
    return 0;
  });
}

void GradedAudio::SaveUttMismatchTraits(std::ofstream* out) {
  Guarded("SaveUttMismatchTraits", [&] {
    if (!out) {
      Report("SaveUttMismatchTraits", "no stream");
      return -1;
    }
    veral3::WriteUttMismatchTraits(*out, GetPhonemes(), GetNumOfSyllables(),
                                   GetUttNumOfPitchSegments(), OrEmpty(m_graded));
    return 0;
  });
}

void GradedAudio::SaveSylMismatchTraits(std::ofstream* out) {
  Guarded("SaveSylMismatchTraits", [&] {
    if (!out) {
      Report("SaveSylMismatchTraits", "no stream");
      return -1;
    }
    veral3::WriteSylMismatchTraits(*out, GetNumOfSyllables(), OrEmpty(m_graded));
    return 0;
  });
}

void GradedAudio::SaveWordMismatchTraits(std::ofstream* out) {
  Guarded("SaveWordMismatchTraits", [&] {
    if (!out) {
      Report("SaveWordMismatchTraits", "no stream");
      return -1;
    }
    veral3::WriteWordMismatchTraits(*out, GetNumOfWords(), OrEmpty(m_graded));
    return 0;
  });
}
