#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "Answers.h"
#include "ByteSource.h"
#include "BytesAsFile.h"
#include "MadeModel.h"
#include "Require.h"
#include "common/MessageWriter.h"
#include "grading/GradedAudio.h"
#include "storage/SavedAlignedAudio.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

// The input says the language, one or two sentences, in place of which of the tests' small models
// another one is loaded, and a recording: it goes through everything that a learner's recording
// goes through, from noise reduction to grading, record and copies.
namespace {

using veral3::fuzz::ByteSource;
using veral3::fuzz::Require;

struct Ended {};  // an undefined activation ends the process: thrown in its place

constexpr std::size_t kMostSamples = 8000;  // a third of a second: two words, and soon done

struct Language {
  LanguageType type;
  std::array<const wchar_t*, 8> words;
  const char* tutor_sentence;
  const char* tutor_record;
};

constexpr std::array kLanguages = {
    Language{
        kLanguageEnglish,
        {L"I ", L"ATE ", L"A ", L"GO ", L"APPLE ", L"THE ", L"21 ", L"|1 1 ? 1 1 0 hYt|height "},
        "I READ THE CAT",
        "chain/en_tutor.rec"},
    Language{kLanguageChinese,
             {L"一 ", L"我 ", L"是 ", L"你好 ", L"東 ", L"十 ", L"無 ", L"美人兒 "},
             "你好 東 是",
             "chain/zh_tutor.rec"},
    Language{kLanguageJapanese,
             {L"ほん ", L"すし ", L"さくら ", L"日本 ", L"こんにちは ", L"|1 1 ? 1 1 0 a|あ ",
              L"? ", L"本 "},
             "さくら ほん",
             "chain/ja_tutor.rec"},
};

struct Model {
  ModelFileType type;
  const char* file;  // of the tests' vectors
  std::size_t inputs;
  std::size_t outputs;
};

// Of the languages in their order: frames, phonemes; then what all share.
constexpr std::array<std::array<Model, 4>, 3> kModels = {{
    {{{kFrameModelEnglish, "models/frame_en.bin", 195, 111},
      {kPhonemeModelEnglish, "models/phon_en.bin", 624, 37},
      {kToneModelChinese, "models/tone.bin", 68, 5},
      {kUttGoodnessModel, "models/good.bin", 16, 2}}},
    {{{kFrameModelChinese, "models/frame_zh.bin", 195, 99},
      {kPhonemeModelChinese, "models/phon_zh.bin", 624, 33},
      {kToneModelChinese, "models/tone.bin", 68, 5},
      {kUttGoodnessModel, "models/good.bin", 16, 2}}},
    {{{kFrameModelJapanese, "models/frame_ja.bin", 195, 78},
      {kPhonemeModelJapanese, "models/phon_ja.bin", 624, 26},
      {kToneModelChinese, "models/tone.bin", 68, 5},
      {kUttGoodnessModel, "models/good.bin", 16, 2}}},
}};

// Replaces models for one input; the next one finds those of the tests again.
class OtherModels {
 public:
  explicit OtherModels(const std::array<Model, 4>& models) : m_models(models) {}
  ~OtherModels() {
    for (const std::size_t which : m_replaced) {
      const Model& model = m_models[which];
      AnalyzedAudio::LoadModelFile(veral3::test::VectorPath(model.file).c_str(), model.type);
    }
  }
  OtherModels(const OtherModels&) = delete;
  OtherModels& operator=(const OtherModels&) = delete;

  // A bit of `which` for each model; one more makes a model of another shape.
  void Load(std::size_t which, ByteSource& source) {
    static veral3::fuzz::BytesAsFile file;
    for (std::size_t i = 0; i < m_models.size(); ++i) {
      if ((which >> i & 1) == 0) continue;
      m_replaced.push_back(i);
      std::size_t outputs = m_models[i].outputs;
      std::size_t inputs = m_models[i].inputs;
      if ((which & 16) != 0) outputs += source.Below(3);
      if ((which & 32) != 0) inputs -= source.Below(3);
      const std::string bytes = veral3::fuzz::MadeModel(source, inputs, outputs);
      const auto& path =
          file.Hold({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
      AnalyzedAudio::LoadModelFile(path.c_str(), m_models[i].type);
    }
  }

  bool None() const { return m_replaced.empty(); }

 private:
  const std::array<Model, 4>& m_models;
  std::vector<std::size_t> m_replaced;
};

// Pieces of sound, a few bytes each.
std::vector<std::int16_t> MakeRecording(ByteSource& source) {
  std::vector<std::int16_t> samples;
  std::uint32_t state = 1;
  while (source.Left() > 0 && samples.size() < kMostSamples) {
    const std::size_t kind = source.Below(6);
    const std::size_t length =
        std::min<std::size_t>(16 * (source.Byte() + std::size_t{1}), kMostSamples - samples.size());
    const double height = 128.0 * source.Byte();
    const double period = 30.0 + 2.0 * source.Byte();  // [samples] 730 to 40 Hz
    for (std::size_t i = 0; i < length; ++i) {
      const double phase = std::fmod(static_cast<double>(i), period) / period;
      double value = 0.0;
      switch (kind) {
        case 0:
          break;
        case 1:
          state = state * 1664525u + 1013904223u;
          value = height * (static_cast<double>(state >> 16) / 32768.0 - 1.0);
          break;
        case 2:  // a voice: a pulse that dies away, once a period
          value = height * std::exp(-6.0 * phase) * std::sin(40.0 * phase);
          break;
        case 3:
          value = height * std::sin(6.283185307179586 * phase);
          break;
        case 4:
          value = phase < 0.5 ? 32767.0 : -32768.0;
          break;
        default:
          value = 256.0 * source.Byte() - 32768.0;
      }
      samples.push_back(static_cast<std::int16_t>(value));
    }
  }
  return samples;
}

CString MakeSentence(const Language& language, ByteSource& source) {
  CString sentence;
  for (std::size_t words = source.Below(5); words > 0; --words) {
    sentence += language.words[source.Below(language.words.size())];
  }
  return sentence;
}

std::vector<unsigned char> RecordOf(AnalyzedAudio& audio) {
  std::vector<unsigned char> record(static_cast<std::size_t>(AnalyzedAudio::GetSizeOfAlignInfo()));
  if (audio.GetAlignInfo(record.data()) != 0) record.clear();
  return record;
}

int LoadRecord(SavedAlignedAudio& saved, std::vector<unsigned char> record) {
  HLYFile file;
  file.SetHLYVersion(5);
  file.SetSentence(L"A");
  file.SetAlignInfo(record.data(), static_cast<int>(record.size()));
  return saved.LoadFromHLY(&file);
}

// What a record keeps is what the analysis answered.
void CheckRecord(AnalyzedAudio& audio, SavedAlignedAudio& saved) {
  Require(std::strcmp(audio.GetPhonemes(), saved.GetPhonemes()) == 0);
  Require(audio.GetNumOfSamples() == saved.GetNumOfSamples());
  Require(audio.GetNumOfWords() == saved.GetNumOfWords());
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    Require(audio.GetPhonemeStartSampleNum(i) == saved.GetPhonemeStartSampleNum(i));
    Require(audio.GetPhonemeEndSampleNum(i) == saved.GetPhonemeEndSampleNum(i));
  }
  Require(audio.GetNumOfSyllables() == saved.GetNumOfSyllables());
  for (int i = 0; i < audio.GetNumOfSyllables(); ++i) {
    Require(audio.GetSyllablePitch(i) == saved.GetSyllablePitch(i));
    Require(audio.GetSyllableStartPosition(i) == saved.GetSyllableStartPosition(i));
  }
  for (int i = 0; i < 128; ++i) Require(audio.GetPitchContour(i) == saved.GetPitchContour(i));
}

void Grade(GradedAudio& learner, AlignedAudio& tutor, bool sound_models) {
  const int total = learner.GradeAgainstTutor(&tutor);
  Require(!sound_models || (total >= -1 && total <= 100));
  veral3::fuzz::AskScores(learner, sound_models);
}

void Play(const Language& language, std::uint8_t ways, bool sound_models, ByteSource& source) {
  GradedAudio learner(language.type);
  learner.AddPossibleSentence(MakeSentence(language, source));
  if ((ways & 1) != 0) learner.AddPossibleSentence(MakeSentence(language, source));
  std::vector<std::int16_t> samples = MakeRecording(source);
  const auto count = static_cast<std::uint32_t>(samples.size());
  if ((ways & 2) != 0) AnalyzedAudio::NoiseReduction(samples.data(), count, ways >> 4 & 3);
  if ((ways & 4) != 0) learner.AddPossibleSentence(CString(language.tutor_sentence));

  const int matched = learner.Align(count, samples.data());
  Require(matched < 3 && (matched < 0 || matched == learner.GetMatchedSentenceIndex()));
  if ((ways & 8) != 0) {
    learner.AnalyzePronunOnly(samples.data());
    learner.GradePronunOnly();
    veral3::fuzz::AskScores(learner, sound_models);
  }
  const int analysed = learner.Analyze(count, samples.data());
  Require((analysed == 0) == (matched >= 0) || !sound_models);
  learner.CalculateSignalNoiseRatio(samples.data());
  veral3::fuzz::AskAnalysis(learner);

  SavedAlignedAudio tutor(language.type);
  Require(LoadRecord(tutor, veral3::test::LoadVector<unsigned char>(language.tutor_record)) == 0);
  Grade(learner, tutor, sound_models);
  SavedAlignedAudio own(language.type);
  const std::vector<unsigned char> record = RecordOf(learner);
  const bool loaded = !record.empty() && LoadRecord(own, record) == 0;
  Require(loaded || record.empty() || !sound_models);
  if (loaded) {
    CheckRecord(learner, own);
    Grade(learner, own, sound_models);
  }

  GradedAudio copy(learner);
  GradedAudio assigned(kLanguageEnglish);
  assigned = copy;
  learner.ReleaseMemory();
  veral3::fuzz::AskAnalysis(learner);
  veral3::fuzz::AskScores(assigned, sound_models);
  Grade(copy, learner, sound_models);
  if ((ways & 64) == 0) return;
  copy.AlignAgainstTutor(&learner, count, samples.data());
  copy.Analyze(count, samples.data());
  Grade(copy, assigned, sound_models);
  copy.GradePronunOnly();
  veral3::fuzz::AskScores(copy, sound_models);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  veral3::test::LoadSmallEngine();
  veral3::SetMessageHandler([](veral3::MessageStream, std::string_view) {});
  veral3::SetEndProcessHandler([](int) { throw Ended(); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ByteSource source(data, size);
  const std::size_t which = source.Below(kLanguages.size());
  const std::uint8_t ways = source.Byte();
  OtherModels models(kModels[which]);
  models.Load(source.Byte(), source);
  try {
    Play(kLanguages[which], ways, models.None(), source);
  } catch (const Ended&) {
  }
  return 0;
}
