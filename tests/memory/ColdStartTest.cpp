// The tables that the process keeps are made in its first analysis: memory that runs out then must
// not leave half of one. Each place gets a process of its own.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <optional>

#include "Readings.h"
#include "Trials.h"
#include "common/MessageWriter.h"
#include "signal/HShell.h"

namespace veral3::test {
namespace {

int Session(const Material& material, std::vector<std::int16_t>& samples, GradedAudio& audio) {
  for (const std::string& sentence : material.sentences) {
    if (const int count = audio.AddPossibleSentence(sentence.c_str()); count < 0) return count;
  }
  const auto size = static_cast<std::uint32_t>(samples.size());
  if (const int matched = audio.Align(size, samples.data()); matched < 0) return matched;
  if (const int result = audio.Analyze(size, samples.data()); result < 0) return result;
  return audio.GradePronunOnly();
}

constexpr int kEnded = 2;  // status of a process that the front end's heaps ended

struct Outcome {
  bool ended = false;
  long allocations = 0;
  bool sound = false;       // refused with a message, or the answers of the session after it
  std::size_t answers = 0;  // of that session, with memory enough
};

Outcome TryInThisProcess(const Material& material, long n, Fault fault) {
  const MessageLog log;
  Outcome outcome;
  std::vector<std::int16_t> samples = material.learner;
  std::string first;
  {
    std::optional<GradedAudio> audio;
    FailAllocation(n, fault);
    audio.emplace(material.language);
    const int result = Session(material, samples, *audio);
    outcome.allocations = StopFailing();
    if (result >= 0) first = ReadingsOf(*audio);
    outcome.sound = result >= 0 || MessageLog::TellsOfMemory();
  }
  samples = material.learner;
  GradedAudio audio(material.language);
  const bool works = Session(material, samples, audio) >= 0;
  const std::string readings = ReadingsOf(audio);
  outcome.sound = outcome.sound && works && (first.empty() || first == readings);
  outcome.answers = std::hash<std::string>()(readings);
  return outcome;
}

Outcome TryInAFreshProcess(const Material& material, long n, Fault fault) {
  int ends[2];
  if (pipe(ends) != 0) return {};
  std::fflush(nullptr);  // not twice
  const pid_t child = fork();
  if (child == 0) {
    SetEndProcessHandler([](int status) { _exit(status == kErrorAllocation ? kEnded : 1); });
    const Outcome outcome = TryInThisProcess(material, n, fault);
    const bool told = write(ends[1], &outcome, sizeof outcome) == sizeof outcome;
    _exit(told ? 0 : 1);
  }
  close(ends[1]);
  Outcome outcome;
  if (read(ends[0], &outcome, sizeof outcome) != sizeof outcome) outcome = {};
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFEXITED(status)) return {};
  outcome.ended = WEXITSTATUS(status) == kEnded;
  return WEXITSTATUS(status) == 0 || outcome.ended ? outcome : Outcome{};
}

TEST(MemoryOfColdStart, FirstAnalysis) {
  Load(SmallResources());
  const Material material = ChainMaterial(kLanguageEnglish);
  const Outcome whole = TryInAFreshProcess(material, 0, Fault::kOne);
  ASSERT_TRUE(whole.sound);
  ASSERT_GT(whole.allocations, 100);
  for (long n = 1; n <= whole.allocations; ++n) {
    const Outcome outcome =
        TryInAFreshProcess(material, n, n % 2 == 0 ? Fault::kOne : Fault::kRest);
    if (outcome.ended) continue;
    EXPECT_TRUE(outcome.sound) << n;
    EXPECT_EQ(outcome.answers, whole.answers) << n;
  }
}

}  // namespace
}  // namespace veral3::test
