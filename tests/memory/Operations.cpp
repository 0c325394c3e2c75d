#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "Readings.h"
#include "Trials.h"
#include "recognition/Dictionaries.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

using Samples = std::vector<std::int16_t>;
using Record = std::array<unsigned char, 2544>;

void Require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(what);
}

std::uint32_t SizeOf(const Samples& samples) { return static_cast<std::uint32_t>(samples.size()); }

// Objects as they are between two operations, made once; trials work on copies.
struct Stages {
  Material material;
  std::optional<GradedAudio> fresh;    // with its sentences
  std::optional<GradedAudio> aligned;  // the learner
  std::optional<GradedAudio> analysed;
  std::optional<GradedAudio> graded;
  std::optional<GradedAudio> tutor;  // analysed
  Samples filtered;                  // the learner's, as the alignment left them
  Record record{}, tutor_record{};

  explicit Stages(const Material& from) : material(from), filtered(from.learner) {
    fresh.emplace(material.language);
    for (const std::string& sentence : material.sentences) {
      Require(fresh->AddPossibleSentence(sentence.c_str()) > 0, "no sentence");
    }
    aligned.emplace(*fresh);
    Require(aligned->Align(SizeOf(filtered), filtered.data()) >= 0, "no alignment");
    analysed.emplace(*aligned);
    Require(analysed->Analyze(SizeOf(filtered), filtered.data()) == 0, "no analysis");
    tutor.emplace(*fresh);
    Samples samples = material.tutor;
    Require(tutor->Align(SizeOf(samples), samples.data()) >= 0, "no alignment of the tutor");
    Require(tutor->Analyze(SizeOf(samples), samples.data()) == 0, "no analysis of the tutor");
    graded.emplace(*analysed);
    Require(graded->GradeAgainstTutor(&*tutor) >= 0, "no grading");
    Require(graded->GetAlignInfo(record.data()) == 0, "no record");
    Require(tutor->GetAlignInfo(tutor_record.data()) == 0, "no record of the tutor");
  }

  HLYFile File(Record& bytes) const {
    HLYFile file;
    file.SetHLYVersion(5);
    file.SetSentence(material.sentences.front().c_str());
    file.SetAlignInfo(bytes.data(), static_cast<int>(bytes.size()));
    return file;
  }
};

// An object that a trial works on, with the samples that it reads.
struct Work {
  std::optional<GradedAudio> audio;
  Samples source, samples;

  explicit Work(Samples from) : source(std::move(from)), samples(source) {}
  Work(const GradedAudio& from, Samples sound) : Work(std::move(sound)) { audio.emplace(from); }

  std::int16_t* Sound() {  // as recorded
    std::ranges::copy(source, samples.begin());
    return samples.data();
  }
  std::uint32_t Size() const { return SizeOf(samples); }
};

// A trial of `act(*work)` whose readings are those of the work's audio.
template <typename Act>
Trial TrialOn(std::shared_ptr<Work> work, Act act) {
  return {[work, act] { return act(*work); }, [work] { return ReadingsOf(*work->audio); }, {}};
}

using StagesPointer = std::shared_ptr<Stages>;

std::string AlignedReadings(Work& work) {
  GradedAudio audio(*work.audio);
  Require(audio.Align(work.Size(), work.Sound()) >= 0, "no alignment");
  return ReadingsOf(audio);
}

void AddMaking(const StagesPointer& stages, std::vector<Operation>& all) {
  all.push_back({"making an object", [stages] {
                   auto work = std::make_shared<Work>(stages->material.learner);
                   const auto act = [stages, work] {
                     work->audio.emplace(stages->material.language);
                     for (const std::string& sentence : stages->material.sentences) {
                       const int count = work->audio->AddPossibleSentence(sentence.c_str());
                       if (count < 0) return count;
                     }
                     return 0;
                   };
                   return Trial{act, [work] { return AlignedReadings(*work); }, {}};
                 }});
  all.push_back({"adding sentences", [stages] {
                   auto work = std::make_shared<Work>(stages->material.learner);
                   work->audio.emplace(stages->material.language);
                   auto added = std::make_shared<int>(0);
                   const auto act = [stages, work, added] {
                     const auto& sentences = stages->material.sentences;
                     while (*added < static_cast<int>(sentences.size())) {
                       const std::string& next = sentences[static_cast<std::size_t>(*added)];
                       const int count = work->audio->AddPossibleSentence(next.c_str());
                       if (count < 0) return count == -1 ? -1 : 99;  // no other code is true
                       *added = count;
                     }
                     return 0;
                   };
                   return Trial{act, [work] { return AlignedReadings(*work); }, {}};
                 }});
}

void AddAnalysing(const StagesPointer& stages, std::vector<Operation>& all) {
  all.push_back({"Align", [stages] {
                   return TrialOn(
                       std::make_shared<Work>(*stages->fresh, stages->material.learner),
                       [](Work& work) { return work.audio->Align(work.Size(), work.Sound()); });
                 }});
  all.push_back({"AlignAgainstTutor", [stages] {
                   auto tutor = std::make_shared<GradedAudio>(*stages->fresh);
                   return TrialOn(std::make_shared<Work>(GradedAudio(stages->material.language),
                                                         stages->material.learner),
                                  [tutor](Work& work) {
                                    return work.audio->AlignAgainstTutor(&*tutor, work.Size(),
                                                                         work.Sound());
                                  });
                 }});
  all.push_back({"Analyze", [stages] {
                   return TrialOn(
                       std::make_shared<Work>(*stages->aligned, stages->filtered),
                       [](Work& work) { return work.audio->Analyze(work.Size(), work.Sound()); });
                 }});
  all.push_back({"AnalyzePronunOnly", [stages] {
                   return TrialOn(
                       std::make_shared<Work>(*stages->aligned, stages->filtered),
                       [](Work& work) { return work.audio->AnalyzePronunOnly(work.Sound()); });
                 }});
}

void AddGrading(const StagesPointer& stages, std::vector<Operation>& all) {
  all.push_back({"GradeAgainstTutor", [stages] {
                   return TrialOn(std::make_shared<Work>(*stages->analysed, Samples()),
                                  [stages](Work& work) {
                                    return work.audio->GradeAgainstTutor(&*stages->tutor);
                                  });
                 }});
  all.push_back({"GradeAgainstTutor, stored", [stages] {
                   auto tutor = std::make_shared<SavedAlignedAudio>(stages->material.language);
                   HLYFile file = stages->File(stages->tutor_record);
                   Require(tutor->LoadFromHLY(&file) == 0, "no stored tutor");
                   return TrialOn(
                       std::make_shared<Work>(*stages->analysed, Samples()),
                       [tutor](Work& work) { return work.audio->GradeAgainstTutor(&*tutor); });
                 }});
  all.push_back({"GradePronunOnly", [stages] {
                   return TrialOn(std::make_shared<Work>(*stages->analysed, Samples()),
                                  [](Work& work) { return work.audio->GradePronunOnly(); });
                 }});
}

void AddStoring(const StagesPointer& stages, std::vector<Operation>& all) {
  all.push_back(
      {"GetAlignInfo", [stages] {
         auto work = std::make_shared<Work>(*stages->graded, Samples());
         auto record = std::make_shared<Record>();
         record->fill(0xAA);
         const auto read = [record] { return std::string(record->begin(), record->end()); };
         return Trial{[work, record] { return work->audio->GetAlignInfo(record->data()); }, read,
                      read()};
       }});
  all.push_back({"SavedAlignedAudio", [stages] {
                   auto saved = std::make_shared<SavedAlignedAudio>(stages->material.language);
                   auto file = std::make_shared<HLYFile>(stages->File(stages->tutor_record));
                   Require(saved->LoadFromHLY(&*file) == 0, "no stored tutor");
                   const std::string before = ReadingsOf(*saved);
                   file->SetAlignInfo(stages->record.data(),
                                      static_cast<int>(stages->record.size()));
                   return Trial{[saved, file] { return saved->LoadFromHLY(&*file); },
                                [saved] { return ReadingsOf(*saved); }, before};
                 }});
  all.push_back({"copying a SavedAlignedAudio", [stages] {
                   auto source = std::make_shared<SavedAlignedAudio>(stages->material.language);
                   HLYFile file = stages->File(stages->record);
                   Require(source->LoadFromHLY(&file) == 0, "no stored tutor");
                   auto target = std::make_shared<SavedAlignedAudio>(kLanguageEnglish);
                   return Trial{[source, target] {
                                  const SavedAlignedAudio copy(*source);
                                  *target = copy;
                                  return 0;
                                },
                                [target] { return ReadingsOf(*target); },
                                {}};
                 }});
  all.push_back({"AnnotatedAudio", [stages] {
                   auto work = std::make_shared<Work>(stages->filtered);
                   auto annotated = std::make_shared<AnnotatedAudio>();
                   auto copy = std::make_shared<AnnotatedAudio>();
                   return Trial{[stages, work, annotated, copy] {
                                  const int result = annotated->LoadAndAnnotate(
                                      work->Size(), work->Sound(), stages->material.language);
                                  *copy = *annotated;
                                  return result;
                                },
                                [copy] { return ReadingsOf(*copy); },
                                {}};
                 }});
}

void AddCopying(const StagesPointer& stages, std::vector<Operation>& all) {
  all.push_back({"copying", [stages] {
                   auto work = std::make_shared<Work>(Samples());
                   const auto act = [stages, work] {
                     MessageLog::Clear();
                     work->audio.emplace(*stages->graded);
                     return MessageLog::Text().empty() ? 0 : -1;
                   };
                   // A copy without memory knows nothing and refuses everything.
                   const auto read = [work]() -> std::string {
                     GradedAudio& audio = *work->audio;
                     const bool knows = audio.GetNumOfPhonemes() > 0 || audio.GetTotalScore() > 0;
                     if (!knows && audio.GradePronunOnly() < 0) return "refuses";
                     return ReadingsOf(audio);
                   };
                   return Trial{act, read, "refuses"};
                 }});
  all.push_back({"assigning", [stages] {
                   GradedAudio before(*stages->tutor);
                   Require(before.GradePronunOnly() >= 0, "no grading");
                   auto work = std::make_shared<Work>(before, Samples());
                   Trial trial = TrialOn(work, [stages](Work& target) {
                     MessageLog::Clear();
                     *target.audio = *stages->graded;
                     return MessageLog::Text().empty() ? 0 : -1;
                   });
                   trial.after_refusal = ReadingsOf(before);
                   return trial;
                 }});
  all.push_back({"assigning an AnalyzedAudio", [stages] {
                   auto work = std::make_shared<Work>(*stages->tutor, Samples());
                   Trial trial = TrialOn(work, [stages](Work& target) {
                     MessageLog::Clear();
                     static_cast<AnalyzedAudio&>(*target.audio) = *stages->analysed;
                     return MessageLog::Text().empty() ? 0 : -1;
                   });
                   trial.after_refusal = ReadingsOf(*stages->tutor);
                   return trial;
                 }});
}

// What reading an object gives that is no plain number.
struct Answers {
  CString sentence, words[4];
  int top[9] = {};
  double goodness = 0.0;
  double ratio = 0.0;
};

// A stream of the application's that has memory enough.
struct RoomyStream {
  std::ostringstream stream;

  RoomyStream() { stream.str(std::string(1 << 19, ' ')); }
  void Restart() { stream.seekp(0); }
  std::string Written() { return stream.str().substr(0, static_cast<std::size_t>(stream.tellp())); }
};

void AddAnswering(const StagesPointer& stages, std::vector<Operation>& all) {
  all.push_back({"answers", [stages] {
                   auto work = std::make_shared<Work>(*stages->graded, stages->filtered);
                   auto answers = std::make_shared<Answers>();
                   const auto act = [work, answers] {
                     GradedAudio& audio = *work->audio;
                     answers->sentence = audio.GetMatchedSentence();
                     for (int i = 0; i < 4; ++i)
                       answers->words[i] = audio.GetWordOfMatchedSentence(i);
                     int* const top = answers->top;
                     audio.FindHighPitchSyallbles(top, top + 1, top + 2);
                     audio.FindHighIntensitySyallbles(top + 3, top + 4, top + 5);
                     audio.FindLongDurationSyallbles(top + 6, top + 7, top + 8);
                     answers->ratio = audio.CalculateSignalNoiseRatio(work->samples.data());
                     answers->goodness = audio.GetProbOfGoodAlignment();
                     return answers->goodness < 0.0 ? -1 : 0;
                   };
                   const auto read = [answers] {
                     std::ostringstream text;
                     text << answers->sentence.Utf8() << std::hexfloat << answers->ratio;
                     for (const CString& word : answers->words) text << "," << word.Utf8();
                     for (const int syllable : answers->top) text << "," << syllable;
                     if (answers->goodness >= 0.0) text << "," << answers->goodness;
                     return text.str();
                   };
                   // All but the probability is told without memory.
                   Require(act() == 0, "no answers");
                   const double goodness = answers->goodness;
                   answers->goodness = -1.0;
                   std::string refused = read();
                   answers->goodness = goodness;
                   return Trial{act, read, refused};
                 }});

  using Export = int (GradedAudio::*)(std::ostream&, std::ostream&);
  using Traits = int (GradedAudio::*)(std::ostream&);
  const auto add = [&](const char* name, auto write) {
    all.push_back({name, [stages, write] {
                     auto work = std::make_shared<Work>(*stages->graded, Samples());
                     auto streams = std::make_shared<std::array<RoomyStream, 2>>();
                     const auto act = [work, streams, write] {
                       for (RoomyStream& stream : *streams) stream.Restart();
                       return write(*work->audio, (*streams)[0].stream, (*streams)[1].stream);
                     };
                     const auto read = [streams] {
                       return (*streams)[0].Written() + "|" + (*streams)[1].Written();
                     };
                     return Trial{act, read, {}};
                   }});
  };
  const auto both = [](Export write) {
    return [write](GradedAudio& audio, std::ostream& a, std::ostream& b) {
      return (audio.*write)(a, b);
    };
  };
  const auto one = [](Traits write) {
    return
        [write](GradedAudio& audio, std::ostream& a, std::ostream&) { return (audio.*write)(a); };
  };
  add("SaveUttGoodnessTrainData", [](GradedAudio& audio, std::ostream& a, std::ostream& b) {
    return audio.SaveUttGoodnessTrainData(true, a, b);
  });
  add("SaveSylCTToneData", both(&GradedAudio::SaveSylCTToneData));
  add("SaveAdjustedFrameMFCCDataToFiles", both(&GradedAudio::SaveAdjustedFrameMFCCDataToFiles));
  add("SaveSylBadTraits", one(&GradedAudio::SaveSylBadTraits));
  add("SavePhonBadTraits", one(&GradedAudio::SavePhonBadTraits));
  add("SaveSylPauseBadTraits", one(&GradedAudio::SaveSylPauseBadTraits));
}

void AddReports(const StagesPointer& stages, std::vector<Operation>& all) {
  const auto add = [&](const char* name, std::function<int(GradedAudio&)> report) {
    all.push_back({name, [stages, report] {
                     auto work = std::make_shared<Work>(*stages->graded, Samples());
                     auto text = std::make_shared<std::string>();
                     text->reserve(1 << 16);
                     const auto act = [work, text, report] {
                       MessageLog::Clear();
                       const int result = report(*work->audio);
                       text->assign(MessageLog::Text());
                       return result;
                     };
                     return Trial{act, [text] { return *text; }, {}};
                   }});
  };
  add("PrintAlignmentResult", [](GradedAudio& audio) { return audio.PrintAlignmentResult(); });
  add("PrintScores", [](GradedAudio& audio) {
    audio.PrintScores();
    return MessageLog::TellsOfMemory() ? -1 : 0;
  });
  auto saved = std::make_shared<SavedAlignedAudio>(stages->material.language);
  HLYFile file = stages->File(stages->record);
  Require(saved->LoadFromHLY(&file) == 0, "no stored tutor");
  add("DumpData", [saved](GradedAudio&) {
    saved->DumpData();
    return MessageLog::TellsOfMemory() ? -1 : 0;
  });
  all.push_back(
      {"NoiseReduction", [stages] {
         auto work = std::make_shared<Work>(stages->material.learner);
         return Trial{
             [work] { return AnalyzedAudio::NoiseReduction(work->Sound(), work->Size(), 1); },
             [work] { return std::string(work->samples.begin(), work->samples.end()); },
             {}};
       }});
}

std::string ReadingsOfDictionaries() {
  std::ostringstream text;
  for (const LanguageType language : {kLanguageEnglish, kLanguageChinese, kLanguageJapanese}) {
    const auto dictionary = DictionaryOf(language);
    text << dictionary->GetPhonemeSet() << " " << dictionary->GetWordCount();
    for (int i = 0; i < dictionary->GetWordCount(); i += 1 + dictionary->GetWordCount() / 50) {
      text << " " << dictionary->EntryAt(i)->Entry().pronunciations.size();
    }
  }
  return text.str();
}

}  // namespace

Material ChainMaterial(LanguageType language) {
  const auto& one = LoadVectorJson("chain.json")["cases"][static_cast<std::size_t>(language - 1)];
  Require(one["language"] == static_cast<int>(language), "another order in chain.json");
  Material material{language, one["sentences"].get<std::vector<std::string>>(), {}, {}};
  material.learner = LoadVector<std::int16_t>(one["learner"]["samples"].get<std::string>());
  material.tutor = LoadVector<std::int16_t>(one["tutor"]["samples"].get<std::string>());
  return material;
}

std::vector<Operation> SessionOperations(const Material& material) {
  const MessageLog quiet;
  const auto stages = std::make_shared<Stages>(material);
  std::vector<Operation> all;
  AddMaking(stages, all);
  AddAnalysing(stages, all);
  AddGrading(stages, all);
  AddStoring(stages, all);
  AddCopying(stages, all);
  AddAnswering(stages, all);
  AddReports(stages, all);
  return all;
}

Resources SmallResources() {
  static const ScratchFolder folder;
  for (const auto& [from, to] :
       {std::pair{"en.txt", "KEN-UTF8Order.txt"}, std::pair{"zh.txt", "KCN-UTF8Order.txt"},
        std::pair{"ja.txt", "KJP-UTF8Order.txt"}}) {
    WriteFile(folder.Path() / to, ReadFile(VectorPath(std::string("dictionary/") + from)));
  }
  Resources resources{folder.Path().string() + "/", {}};
  for (const auto& [name, type] :
       {std::pair{"frame_en", kFrameModelEnglish}, std::pair{"frame_zh", kFrameModelChinese},
        std::pair{"frame_ja", kFrameModelJapanese}, std::pair{"phon_en", kPhonemeModelEnglish},
        std::pair{"phon_zh", kPhonemeModelChinese}, std::pair{"phon_ja", kPhonemeModelJapanese},
        std::pair{"tone", kToneModelChinese}, std::pair{"good", kUttGoodnessModel}}) {
    const std::string file = std::string("models/") + name + ".bin";
    resources.models.emplace_back(VectorPath(file).string(), type);
  }
  return resources;
}

Resources ShippedResources() {
  const std::string folder = VERAL3_SOURCE_DIR "/resources/";
  Resources resources{folder, {}};
  for (const auto& [name, type] :
       {std::pair{"EnglishFrame", kFrameModelEnglish},
        std::pair{"ChineseFrame", kFrameModelChinese},
        std::pair{"JapaneseFrame", kFrameModelJapanese},
        std::pair{"EnglishPhon", kPhonemeModelEnglish},
        std::pair{"ChinesePhon", kPhonemeModelChinese},
        std::pair{"JapanesePhon", kPhonemeModelJapanese},
        std::pair{"ChineseTone", kToneModelChinese}, std::pair{"UttGoodness", kUttGoodnessModel}}) {
    resources.models.emplace_back(folder + name + ".model", type);
  }
  return resources;
}

void Load(const Resources& resources) {
  const MessageLog quiet;
  AnalyzedAudio::LoadResourceInFolderPath(resources.folder.c_str());
  for (const auto& [path, type] : resources.models) {
    Require(AnalyzedAudio::LoadModelFile(path.c_str(), type) >= 0, "no model");
  }
}

std::vector<Operation> LoadOperations(const Resources& resources) {
  std::vector<Operation> all;
  all.push_back({"LoadResourceInFolderPath", [folder = resources.folder] {
                   AnalyzedAudio::LoadResourceInFolderPath("/nonexistent/");
                   const auto act = [folder] {
                     MessageLog::Clear();
                     AnalyzedAudio::LoadResourceInFolderPath(folder.c_str());
                     return MessageLog::TellsOfMemory() ? -1 : 0;
                   };
                   return Trial{act, ReadingsOfDictionaries, ReadingsOfDictionaries()};
                 }});
  for (const auto& [model_path, model_type] : resources.models) {
    all.push_back({"LoadModelFile " + model_path, [path = model_path, type = model_type] {
                     AnalyzedAudio::LoadModelFile("/nonexistent", type);
                     return Trial{
                         [path, type] { return AnalyzedAudio::LoadModelFile(path.c_str(), type); },
                         [type] { return ReadingsOfModel(type); }, ReadingsOfModel(type)};
                   }});
  }
  return all;
}

}  // namespace veral3::test
