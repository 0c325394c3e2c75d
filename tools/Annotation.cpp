#include "tools/Annotation.h"

#include <algorithm>
#include <utility>

#include "recognition/Languages.h"
#include "signal/HighPassFilter.h"
#include "storage/AnnotatedAudio.h"
#include "tools/AlignJobs.h"
#include "tools/AlignmentJson.h"
#include "tools/AudioFile.h"
#include "tools/EngineMessages.h"
#include "tools/EngineWords.h"
#include "tools/Numbers.h"
#include "tools/PrintableText.h"

namespace veral3::tools {
namespace {

constexpr const char* kPause = "-";
constexpr double kHighPassCutoff = 80.0;  // [Hz] as before an alignment: the models know it so

std::string Annotate(const std::string& file, LanguageType language, AnnotateOutcome& outcome) {
  Result<Recording> recording = ReadAudioFile(file);
  if (!recording) return recording.Error();
  std::vector<std::int16_t>& samples = recording->samples;
  if (recording->silent) outcome.messages += "is silent: every sample is 0\n";
  if (recording->clamped > 0) {
    outcome.messages += "is louder than 16 bits hold: " + std::to_string(recording->clamped) +
                        " samples were clamped\n";
  }
  HighPassFilter(samples.data(), static_cast<int>(samples.size()), kHighPassCutoff, kSampleRate);
  const EngineMessages engine;
  AnnotatedAudio audio;
  if (audio.LoadAndAnnotate(samples.size(), samples.data(), language) < 0) {
    return "cannot be annotated: " + engine.OneLine();
  }
  outcome.messages += LinesInWords(engine.Text());
  AlignmentReport& report = outcome.report;
  report.file = file;
  report.language = language;
  report.num_samples = static_cast<int>(samples.size());
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    report.phonemes.push_back({std::string(1, audio.GetPhonemes()[i]),
                               audio.GetPhonemeStartSample(i), audio.GetPhonemeEndSample(i)});
  }
  return "";
}

AlignmentReport WithoutPauses(AlignmentReport report) {
  std::erase_if(report.phonemes, [](const Segment& segment) { return segment.text == kPause; });
  return report;
}

std::string AnnotationTable(const AlignmentReport& report) {
  if (!report.error.empty()) return "";
  std::string text = PrintableText(report.file) + ": " + Fixed(Seconds(report.num_samples), 3) +
                     " s, " + std::string(LanguageName(report.language)) + ", " +
                     std::to_string(report.phonemes.size()) + " segments\n\n";
  text += "  start s    end s     start       end   phoneme\n";
  for (const Segment& segment : report.phonemes) {
    text += Right(Fixed(Seconds(segment.start), 3), 9) + Right(Fixed(Seconds(segment.end), 3), 9) +
            Right(std::to_string(segment.start), 10) + Right(std::to_string(segment.end), 10) +
            "   " + segment.text + "\n";
  }
  return text;
}

std::string AnnotationJson(const AlignmentReport& report) {
  OrderedJson object = AlignmentJson(report);
  for (const char* of_sentences :
       {"sentence_index", "sentence", "log_probability", "words", "syllables"}) {
    object.erase(of_sentences);
  }
  return JsonText(object);
}

}  // namespace

AnnotateOutcome RunAnnotateJob(const std::string& file, LanguageType language) {
  AnnotateOutcome outcome;
  std::string error = ErrorOf([&] { return Annotate(file, language, outcome); });
  if (!error.empty()) outcome.report = FailedReport({file, {}, {}}, std::move(error));
  return outcome;
}

std::string AnnotationText(const AlignmentReport& report, Format format) {
  switch (format) {
    case Format::kTable:
    case Format::kCtm:
      break;
    case Format::kJson:
      return AnnotationJson(report);
    case Format::kTextGrid:
      return TextGrid(WithoutPauses(report), {Tier::kPhonemes});
    case Format::kCsv:
      return Csv(report, Tier::kPhonemes);
    case Format::kAudacity:
      return AudacityLabels(WithoutPauses(report), Tier::kPhonemes);
  }
  return AnnotationTable(report);
}

}  // namespace veral3::tools
