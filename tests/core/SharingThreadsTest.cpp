// Several threads at once, with shared models, dictionaries and tutor: the bits of one thread.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "support/SmallEngine.h"

namespace veral3 {
namespace {

struct Outcome {
  int matched = -1;
  double log_probability = 0;
  std::vector<int> times;
  std::vector<double> probabilities;
  bool operator==(const Outcome&) const = default;
};

Outcome Read(AnalyzedAudio& audio, int matched) {
  Outcome outcome{matched, audio.GetLogProbOfAlign(), {}, {}};
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    outcome.times.push_back(audio.GetPhonemeStartSampleNum(i));
    outcome.times.push_back(audio.GetPhonemeEndSampleNum(i));
    outcome.probabilities.push_back(audio.GetPhonMFCCProb(i));
    outcome.probabilities.push_back(audio.GetSoundsLikePhonProb(i));
  }
  for (int i = 0; i < audio.GetNumOfSyllables(); ++i) {
    outcome.times.push_back(audio.GetSyllablePitch(i));
    outcome.probabilities.push_back(audio.GetSyllableIntensity(i));
    outcome.probabilities.push_back(audio.ProbGoodSyllable(i));
    for (int tone = 0; tone < 5; ++tone) {
      outcome.probabilities.push_back(audio.GetSylToneProb(i, tone));
    }
  }
  return outcome;
}

Outcome AlignAlone(LanguageType language, const wchar_t* sentence, const char* recording) {
  AnalyzedAudio audio(language);
  audio.AddPossibleSentence(sentence);
  auto samples = test::ChainRecording(recording);
  const auto count = static_cast<std::uint32_t>(samples.size());
  const int matched = audio.Align(count, samples.data());
  audio.Analyze(count, samples.data());
  return Read(audio, matched);
}

Outcome AlignWithTutor(const AnalyzedAudio& tutor, const char* recording) {
  AnalyzedAudio audio(kLanguageEnglish);
  auto samples = test::ChainRecording(recording);
  const int matched =
      audio.AlignAgainstTutor(&tutor, static_cast<std::uint32_t>(samples.size()), samples.data());
  return Read(audio, matched);
}

template <typename Work>
void RunTogether(int count, Work work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back([i, &work] { work(i); });
  for (std::thread& thread : threads) thread.join();
}

TEST(SharingThreads, DifferentRecordingsAtOnce) {
  test::LoadSmallEngine();
  struct Job {
    LanguageType language;
    const wchar_t* sentence;
    const char* recording;
  };
  const Job jobs[] = {{kLanguageEnglish, L"I READ THE CAT", "en_learner"},
                      {kLanguageEnglish, L"I READ THE CAT", "en_tutor"},
                      {kLanguageChinese, L"\u4F60\u597D \u6771 \u662F", "zh_learner"},
                      {kLanguageJapanese, L"\u3055\u304F\u3089 \u307B\u3093", "ja_tutor"}};
  std::vector<Outcome> alone;
  for (const Job& job : jobs) {
    alone.push_back(AlignAlone(job.language, job.sentence, job.recording));
    ASSERT_EQ(alone.back().matched, 0);
  }
  for (int round = 0; round < 5; ++round) {
    std::vector<Outcome> together(std::size(jobs));
    RunTogether(static_cast<int>(std::size(jobs)), [&](int i) {
      const auto at = static_cast<std::size_t>(i);
      together[at] = AlignAlone(jobs[at].language, jobs[at].sentence, jobs[at].recording);
    });
    EXPECT_EQ(together, alone);
  }
}

TEST(SharingThreads, OneTutorForAll) {
  test::LoadSmallEngine();
  AnalyzedAudio reference(kLanguageEnglish);
  reference.AddPossibleSentence(L"I ATE");
  reference.AddPossibleSentence(L"I READ THE CAT");
  const char* recordings[] = {"en_learner", "en_tutor"};
  const Outcome alone[] = {AlignWithTutor(reference, recordings[0]),
                           AlignWithTutor(reference, recordings[1])};
  ASSERT_GE(alone[0].matched, 0);
  for (int round = 0; round < 5; ++round) {
    // Its network is not built before the threads ask for it, all at once.
    AnalyzedAudio tutor(kLanguageEnglish);
    tutor.AddPossibleSentence(L"I ATE");
    tutor.AddPossibleSentence(L"I READ THE CAT");
    std::vector<Outcome> together(4);
    RunTogether(4, [&](int i) {
      together[static_cast<std::size_t>(i)] = AlignWithTutor(tutor, recordings[i % 2]);
    });
    for (std::size_t i = 0; i < together.size(); ++i) EXPECT_EQ(together[i], alone[i % 2]);
  }
}

}  // namespace
}  // namespace veral3
