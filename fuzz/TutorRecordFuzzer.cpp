#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "Answers.h"
#include "Require.h"
#include "common/Messages.h"
#include "grading/GradedAudio.h"
#include "storage/SavedAlignedAudio.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

// The first byte is the language and how the rest makes a tutor's record: as it stands, or as
// changes to a sound one, each a place in two bytes and a value. Learners who were really analysed
// are graded against what loads.
namespace {

using veral3::fuzz::Require;
using Record = std::vector<unsigned char>;

struct Speaker {
  LanguageType language;
  const char* sentence;
  const char* recording;  // of the tests' vectors, as is the tutor
  const char* tutor_record;
  std::unique_ptr<GradedAudio> learner;
  Record tutor;
};

std::array<Speaker, 3>& Speakers() {
  static std::array<Speaker, 3> speakers = {
      Speaker{kLanguageEnglish, "I READ THE CAT", "en_learner", "chain/en_tutor.rec", {}, {}},
      Speaker{kLanguageChinese, "你好 東 是", "zh_learner", "chain/zh_tutor.rec", {}, {}},
      Speaker{kLanguageJapanese, "さくら ほん", "ja_learner", "chain/ja_tutor.rec", {}, {}}};
  return speakers;
}

void Prepare(Speaker& speaker) {
  speaker.learner = std::make_unique<GradedAudio>(speaker.language);
  Require(speaker.learner->AddPossibleSentence(CString(speaker.sentence)) == 1);
  std::vector<std::int16_t> samples = veral3::test::ChainRecording(speaker.recording);
  const auto count = static_cast<std::uint32_t>(samples.size());
  Require(speaker.learner->Align(count, samples.data()) == 0);
  Require(speaker.learner->Analyze(count, samples.data()) == 0);
  speaker.tutor = veral3::test::LoadVector<unsigned char>(speaker.tutor_record);
}

Record Changed(Record record, std::span<const std::uint8_t> changes) {
  for (; changes.size() >= 3; changes = changes.subspan(3)) {
    const std::size_t place = (changes[0] << 8 | changes[1]) % record.size();
    record[place] = changes[2];
  }
  return record;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  veral3::test::LoadSmallEngine();
  veral3::SetMessageHandler([](veral3::MessageStream, std::string_view) {});
  for (Speaker& speaker : Speakers()) Prepare(speaker);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Speaker& speaker = Speakers()[data[0] % 3];
  const std::span<const std::uint8_t> rest(data + 1, size - 1);
  Record record =
      (data[0] & 128) != 0 ? Changed(speaker.tutor, rest) : Record(rest.begin(), rest.end());
  HLYFile file;
  file.SetHLYVersion(5);
  file.SetAlignInfo(record.data(), static_cast<int>(record.size()));
  SavedAlignedAudio tutor(speaker.language);
  if (tutor.LoadFromHLY(&file) != 0) return 0;

  GradedAudio learner(*speaker.learner);
  const int total = learner.GradeAgainstTutor(&tutor);
  Require(total >= -1 && total <= 100);
  Require(total == -1 || total == learner.GetTotalScore());
  veral3::fuzz::AskScores(learner, true);
  Require(learner.GradeAgainstTutor(&tutor) == total);
  veral3::fuzz::AskRecording(tutor);
  return 0;
}
