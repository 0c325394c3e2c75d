#include "tools/AnalysisFormats.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

#include "recognition/Languages.h"
#include "tools/CsvColumns.h"
#include "tools/Numbers.h"
#include "tools/PrintableText.h"
#include "tools/TextCells.h"

namespace veral3::tools {
namespace {

// ---- table ----

constexpr const char* kNone = "-";

std::string OrDash(const std::optional<double>& value, int decimals) {
  return value ? Fixed(*value, decimals) : kNone;
}

std::string OrDash(const std::optional<int>& value) {
  return value ? std::to_string(*value) : kNone;
}

std::optional<double> Finite(double value) {
  return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::string WithUnit(const std::string& value, const char* unit) {
  return value == kNone ? value : value + " " + unit;
}

// One line of the table: times, measures, and the text at its level.
struct Row {
  int start = 0;
  int end = 0;
  std::string pitch, level, mark, goodness, segments, probability;
  int depth = 0;
  std::string text;
  std::string note;  // behind the text's column
};

class TableText {
 public:
  explicit TableText(int indent) : m_indent(indent) {}

  void Head(const std::string& mark) {
    m_text += "  start s    end s  pitch Hz  level dB" + PadLeft(mark, 8) +
              "  good  voiced   prob   " + PadRight("word", m_indent) +
              PadRight("syllable", m_indent) + PadRight("phoneme", kPhonemeColumn) +
              "sounds like\n";
  }

  void Add(const Row& row) {
    std::string line = Right(Fixed(Seconds(row.start), 3), 9) +
                       Right(Fixed(Seconds(row.end), 3), 9) + Right(row.pitch, 10) +
                       Right(row.level, 10) + Right(row.mark, 8) + Right(row.goodness, 6) +
                       Right(row.segments, 8) + Right(row.probability, 7) + "   " +
                       std::string(static_cast<std::size_t>(row.depth * m_indent), ' ');
    line += row.note.empty() ? row.text : PadRight(row.text, kPhonemeColumn) + row.note;
    m_text += line + "\n";
  }

  std::string Take() { return std::move(m_text); }

 private:
  static constexpr int kPhonemeColumn = 9;
  int m_indent;
  std::string m_text;
};

std::string ReadingsText(const PhonemeMeasures& phoneme) {
  std::string text;
  for (const PhonemeReading& reading : phoneme.readings) {
    if (!text.empty()) text += ", ";
    text += reading.symbol + " " + Fixed(reading.probability, 3);
  }
  return text.empty() ? kNone : text;
}

// The tone of the dictionary and, where they are known, the probabilities of the tones said.
std::string TonesText(const SyllableMeasures& syllable) {
  std::string text;
  for (std::size_t tone = 0; tone < syllable.tone_probabilities.size(); ++tone) {
    text += text.empty() ? "tones " : " ";
    text += std::to_string(tone) + ":" + Fixed(syllable.tone_probabilities[tone], 2);
  }
  return text;
}

std::string MarkOf(const SyllableMeasures& syllable) {
  return OrDash(syllable.stress ? syllable.stress : syllable.tone);
}

std::string SummaryText(const AnalysisReport& report) {
  const AlignmentReport& alignment = report.alignment;
  std::string text = PrintableText(alignment.file) + ": " +
                     Fixed(Seconds(alignment.num_samples), 3) + " s, " +
                     std::string(LanguageName(alignment.language)) + "\n";
  text += "sentence " + std::to_string(alignment.sentence_index + 1) + ": " +
          PrintableText(alignment.sentence) + "\n";
  text += "log probability " + OrDash(Finite(alignment.log_probability), 2) +
          ", probability of a good reading " + OrDash(report.goodness_probability, 4) + "\n";
  text += "signal to noise " + WithUnit(OrDash(report.signal_to_noise_db, 1), "dB") +
          ", speech has " + OrDash(report.speech_energy_ratio, 3) + " of the energy\n";
  text += "mean pitch " + WithUnit(OrDash(report.mean_pitch), "Hz") + ", " +
          std::to_string(report.pitch_segments) + " voiced stretches\n\n";
  return text;
}

// ---- JSON ----

OrderedJson JsonReadings(const PhonemeMeasures& phoneme) {
  OrderedJson readings = OrderedJson::array();
  for (const PhonemeReading& reading : phoneme.readings) {
    readings.push_back({{"symbol", reading.symbol}, {"probability", reading.probability}});
  }
  return readings;
}

void AddTo(OrderedJson& object, const SyllableMeasures& syllable) {
  object["pitch_hz"] = OrNull(syllable.pitch);
  object["duration_samples"] = syllable.duration;
  object["duration_s"] = RoundedSeconds(syllable.duration);
  object["intensity"] = syllable.intensity;
  object["intensity_db"] = OrNull(syllable.intensity_db);
  object["stress"] = OrNull(syllable.stress);
  object["tone"] = OrNull(syllable.tone);
  object["tone_probabilities"] = syllable.tone_probabilities.empty()
                                     ? OrderedJson(nullptr)
                                     : OrderedJson(syllable.tone_probabilities);
  object["goodness"] = syllable.goodness;
  object["pitch_segments"] = syllable.pitch_segments;
}

// ---- CSV ----

constexpr std::array<std::string_view, 29> kCsvColumns = {"file",
                                                          "tier",
                                                          "text",
                                                          "start_sample",
                                                          "end_sample",
                                                          "start_s",
                                                          "end_s",
                                                          "probability",
                                                          "pitch_hz",
                                                          "duration_s",
                                                          "intensity",
                                                          "intensity_db",
                                                          "stress",
                                                          "tone",
                                                          "tone_probability_0",
                                                          "tone_probability_1",
                                                          "tone_probability_2",
                                                          "tone_probability_3",
                                                          "tone_probability_4",
                                                          "goodness",
                                                          "pitch_segments",
                                                          "reading_1",
                                                          "reading_1_probability",
                                                          "reading_2",
                                                          "reading_2_probability",
                                                          "reading_3",
                                                          "reading_3_probability",
                                                          "signal_to_noise_db",
                                                          "speech_energy_ratio"};

using Line = CsvLine<kCsvColumns.size()>;

// `text`: a field already.
Line LineOf(const AlignmentReport& alignment, const char* tier, std::string text, int start,
            int end) {
  Line line(kCsvColumns);
  line.SetSpan(alignment.file, tier, std::move(text), start, end);
  line.Set("duration_s", Fixed(Seconds(end - start), 6));
  return line;
}

}  // namespace

std::string AnalysisTable(const AnalysisReport& report) {
  const AlignmentReport& alignment = report.alignment;
  if (!alignment.error.empty()) return "";
  int indent = 10;
  for (const Segment& word : alignment.words) {
    indent = std::max(indent, DisplayWidth(PrintableText(word.text)) + 2);
  }
  TableText table(indent);
  table.Head(HasTones(alignment.language) ? "tone" : "stress");

  auto pause = report.pauses.begin();
  const auto pauses_before = [&](int phoneme) {
    for (; pause != report.pauses.end() && pause->after_phoneme < phoneme; ++pause) {
      Row row{pause->start, pause->end, "", "", "", "", "", OrDash(pause->probability, 3), 0,
              "(pause)",    ""};
      table.Add(row);
    }
  };
  std::size_t s = 0;
  std::size_t p = 0;
  for (std::size_t w = 0; w < alignment.words.size(); ++w) {
    const Segment& word = alignment.words[w];
    pauses_before(static_cast<int>(p));
    table.Add({word.start, word.end, OrDash(report.words[w].pitch), "", "", "", "",
               OrDash(Finite(word.confidence), 3), 0, PrintableText(word.text), ""});
    for (int i = 0; i < word.parts && s < alignment.syllables.size(); ++i, ++s) {
      const Segment& part = alignment.syllables[s];
      const SyllableMeasures& syllable = report.syllables[s];
      table.Add({part.start, part.end, OrDash(syllable.pitch), OrDash(syllable.intensity_db, 1),
                 MarkOf(syllable), OrDash(Finite(syllable.goodness), 2),
                 std::to_string(syllable.pitch_segments), OrDash(Finite(part.confidence), 3), 1,
                 part.text, TonesText(syllable)});
      for (int k = 0; k < part.parts && p < alignment.phonemes.size(); ++k, ++p) {
        const Segment& phoneme = alignment.phonemes[p];
        table.Add({phoneme.start, phoneme.end, "", "", "", "", "",
                   OrDash(Finite(phoneme.confidence), 3), 2, phoneme.text,
                   ReadingsText(report.phonemes[p])});
      }
    }
  }
  pauses_before(static_cast<int>(alignment.phonemes.size()));
  return SummaryText(report) + table.Take();
}

OrderedJson AnalysisJson(const AnalysisReport& report) {
  OrderedJson object = AlignmentJson(report.alignment);
  if (!report.alignment.error.empty()) return object;
  object["schema_version"] = kAnalysisSchemaVersion;
  object["utterance"] = {{"start_sample", report.start},
                         {"end_sample", report.end},
                         {"start_s", RoundedSeconds(report.start)},
                         {"end_s", RoundedSeconds(report.end)},
                         {"mean_pitch_hz", OrNull(report.mean_pitch)},
                         {"pitch_segments", report.pitch_segments},
                         {"goodness_probability", OrNull(report.goodness_probability)},
                         {"signal_to_noise_db", OrNull(report.signal_to_noise_db)},
                         {"speech_energy_ratio", OrNull(report.speech_energy_ratio)}};
  for (std::size_t i = 0; i < report.words.size(); ++i) {
    OrderedJson& word = object["words"][i];
    word["syllables"] = report.alignment.words[i].parts;
    word["probability"] = report.alignment.words[i].confidence;
    word["pitch_hz"] = OrNull(report.words[i].pitch);
  }
  for (std::size_t i = 0; i < report.syllables.size(); ++i) {
    OrderedJson& syllable = object["syllables"][i];
    syllable["phonemes"] = report.alignment.syllables[i].parts;
    syllable["probability"] = report.alignment.syllables[i].confidence;
    AddTo(syllable, report.syllables[i]);
  }
  for (std::size_t i = 0; i < report.phonemes.size(); ++i) {
    const PhonemeMeasures& measures = report.phonemes[i];
    OrderedJson& phoneme = object["phonemes"][i];
    phoneme["probability"] = report.alignment.phonemes[i].confidence;
    phoneme["sounds_like"] =
        measures.sounds_like.empty() ? OrderedJson(nullptr) : OrderedJson(measures.sounds_like);
    phoneme["sounds_like_probability"] = OrNull(measures.sounds_like_probability);
    phoneme["readings"] = JsonReadings(measures);
  }
  object["pauses"] = OrderedJson::array();
  for (const Pause& pause : report.pauses) {
    object["pauses"].push_back({{"after_phoneme", pause.after_phoneme},
                                {"start_sample", pause.start},
                                {"end_sample", pause.end},
                                {"start_s", RoundedSeconds(pause.start)},
                                {"end_s", RoundedSeconds(pause.end)},
                                {"probability", OrNull(pause.probability)}});
  }
  object["contours"] = {{"wave", report.contours.wave},
                        {"pitch", report.contours.pitch},
                        {"intensity", report.contours.intensity}};
  return object;
}

std::string AnalysisCsvHeader() { return Line::Header(kCsvColumns); }

std::string AnalysisCsv(const AnalysisReport& report) {
  const AlignmentReport& alignment = report.alignment;
  if (!alignment.error.empty()) return "";
  Line recording =
      LineOf(alignment, "recording", CsvText(alignment.sentence), 0, alignment.num_samples);
  recording.Set("pitch_hz", report.mean_pitch);
  recording.Set("pitch_segments", std::to_string(report.pitch_segments));
  recording.Set("goodness", report.goodness_probability, 6);
  recording.Set("signal_to_noise_db", report.signal_to_noise_db, 3);
  recording.Set("speech_energy_ratio", report.speech_energy_ratio, 6);
  std::string text = recording.Text();
  for (std::size_t i = 0; i < report.words.size(); ++i) {
    const Segment& word = alignment.words[i];
    Line line = LineOf(alignment, "words", CsvText(word.text), word.start, word.end);
    line.Set("probability", word.confidence, 6);
    line.Set("pitch_hz", report.words[i].pitch);
    text += line.Text();
  }
  for (std::size_t i = 0; i < report.syllables.size(); ++i) {
    const Segment& part = alignment.syllables[i];
    const SyllableMeasures& syllable = report.syllables[i];
    Line line = LineOf(alignment, "syllables", QuotedForCsv(part.text), part.start, part.end);
    line.Set("probability", part.confidence, 6);
    line.Set("pitch_hz", syllable.pitch);
    line.Set("intensity", syllable.intensity, 0);
    line.Set("intensity_db", syllable.intensity_db, 3);
    line.Set("stress", syllable.stress);
    line.Set("tone", syllable.tone);
    for (std::size_t t = 0; t < syllable.tone_probabilities.size(); ++t) {
      line.Set("tone_probability_" + std::to_string(t), syllable.tone_probabilities[t], 6);
    }
    line.Set("goodness", syllable.goodness, 6);
    line.Set("pitch_segments", std::to_string(syllable.pitch_segments));
    text += line.Text();
  }
  for (std::size_t i = 0; i < report.phonemes.size(); ++i) {
    const Segment& phoneme = alignment.phonemes[i];
    Line line =
        LineOf(alignment, "phonemes", QuotedForCsv(phoneme.text), phoneme.start, phoneme.end);
    line.Set("probability", phoneme.confidence, 6);
    const std::vector<PhonemeReading>& readings = report.phonemes[i].readings;
    for (std::size_t r = 0; r < readings.size(); ++r) {
      const std::string column = "reading_" + std::to_string(r + 1);
      line.Set(column, QuotedForCsv(readings[r].symbol));
      line.Set(column + "_probability", readings[r].probability, 6);
    }
    text += line.Text();
  }
  for (const Pause& pause : report.pauses) {
    Line line = LineOf(alignment, "pauses", "", pause.start, pause.end);
    line.Set("probability", pause.probability, 6);
    text += line.Text();
  }
  return text;
}

}  // namespace veral3::tools
