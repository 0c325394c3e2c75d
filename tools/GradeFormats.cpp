#include "tools/GradeFormats.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "recognition/Languages.h"
#include "tools/AdviceTexts.h"
#include "tools/CsvColumns.h"
#include "tools/PrintableText.h"

namespace veral3::tools {
namespace {

constexpr const char* kNone = "-";

std::string OrDash(const std::optional<int>& value) {
  return value ? std::to_string(*value) : kNone;
}

// A letter as text, "" for none.
std::string Letter(char letter) { return letter == '\0' ? "" : std::string(1, letter); }

// ---- table ----

constexpr int kTableWidth = 96;    // columns of a terminal
constexpr int kHeadingWidth = 17;  // before the first syllable

// One syllable's cells, from top to bottom.
struct Column {
  bool opens_word = false;
  std::vector<std::string> cells;
  int width = 0;
};

struct Rows {
  std::vector<std::string> headings;
  std::vector<Column> columns;
};

// A word longer than its syllables makes its last one wider.
void FitWords(std::vector<Column>& columns) {
  for (std::size_t first = 0; first < columns.size();) {
    std::size_t next = first + 1;
    int width = columns[first].width;
    for (; next < columns.size() && !columns[next].opens_word; ++next) width += columns[next].width;
    const int wanted = DisplayWidth(columns[first].cells[0]) + 2;
    if (wanted > width) columns[next - 1].width += wanted - width;
    first = next;
  }
}

Rows RowsOf(const GradeReport& report) {
  const AlignmentReport& alignment = report.analysis.alignment;
  Rows rows;
  rows.headings = {"", "", "pronunciation"};
  if (!report.pronunciation_only) {
    rows.headings.insert(rows.headings.end(),
                         {"pitch", "timing", "loudness", "pitch advice", "timing advice",
                          "loudness advice", "pause before", "word score"});
  }
  std::size_t s = 0;
  for (std::size_t w = 0; w < alignment.words.size(); ++w) {
    for (int part = 0; part < alignment.words[w].parts && s < report.syllables.size();
         ++part, ++s) {
      const SyllableGrade& grade = report.syllables[s];
      Column column;
      column.opens_word = part == 0;
      column.cells = {part == 0 ? PrintableText(alignment.words[w].text) : "",
                      alignment.syllables[s].text, OrDash(grade.scores.pronunciation)};
      if (!report.pronunciation_only) {
        column.cells.insert(column.cells.end(),
                            {OrDash(grade.scores.pitch), OrDash(grade.scores.timing),
                             OrDash(grade.scores.intensity), Letter(grade.pitch_advice),
                             Letter(grade.timing_advice), Letter(grade.intensity_advice),
                             grade.unnecessary_pause.value_or(false) ? "!" : kNone,
                             part == 0 ? OrDash(report.words[w].scores.total) : ""});
      }
      for (std::size_t i = 1; i < column.cells.size(); ++i) {
        column.width = std::max(column.width, DisplayWidth(column.cells[i]) + 2);
      }
      rows.columns.push_back(std::move(column));
    }
  }
  FitWords(rows.columns);
  return rows;
}

// The rows, broken between words where they get too wide.
std::string Laid(const Rows& rows) {
  std::string text;
  for (std::size_t first = 0; first < rows.columns.size();) {
    std::size_t end = first;
    std::size_t next = first;
    int width = kHeadingWidth;
    while (next < rows.columns.size()) {
      std::size_t word_end = next + 1;
      int word_width = rows.columns[next].width;
      for (; word_end < rows.columns.size() && !rows.columns[word_end].opens_word; ++word_end) {
        word_width += rows.columns[word_end].width;
      }
      if (end > first && width + word_width > kTableWidth) break;
      width += word_width;
      end = next = word_end;
    }
    for (std::size_t row = 0; row < rows.headings.size(); ++row) {
      std::string line = PadRight(rows.headings[row], kHeadingWidth);
      for (std::size_t c = first; c < end; ++c) {
        // A word runs over the columns of all its syllables.
        if (row == 0) {
          if (!rows.columns[c].opens_word) continue;
          int word_width = rows.columns[c].width;
          for (std::size_t k = c + 1; k < end && !rows.columns[k].opens_word; ++k) {
            word_width += rows.columns[k].width;
          }
          line += PadRight(rows.columns[c].cells[0], word_width);
        } else {
          line += PadRight(rows.columns[c].cells[row], rows.columns[c].width);
        }
      }
      line.erase(line.find_last_not_of(' ') + 1);
      text += line + "\n";
    }
    text += "\n";
    first = end;
  }
  return text;
}

// Phonemes that sound like another one.
std::string Strangers(const GradeReport& report) {
  const AlignmentReport& alignment = report.analysis.alignment;
  std::string text;
  std::size_t p = 0;
  for (const Segment& syllable : alignment.syllables) {
    for (int k = 0; k < syllable.parts && p < alignment.phonemes.size(); ++k, ++p) {
      const PhonemeMeasures& measures = report.analysis.phonemes[p];
      const std::string& symbol = alignment.phonemes[p].text;
      if (measures.sounds_like.empty() || measures.sounds_like == symbol) continue;
      text += "  " + symbol + " of " + syllable.text + " (" +
              Fixed(Seconds(alignment.phonemes[p].start), 3) + " s, score " +
              OrDash(report.phonemes[p]) + ") sounds like " +
              (measures.sounds_like == "-" ? "a pause" : measures.sounds_like) + "\n";
    }
  }
  return text.empty() ? "" : "sounds like another:\n" + text;
}

// The letters that stand in the table, in words.
std::string Letters(const GradeReport& report) {
  const LanguageType language = report.analysis.alignment.language;
  std::string text;
  const auto add = [&](AdviceKind kind, char SyllableGrade::*letter) {
    for (const AdviceText& advice : AdviceTextsOf(kind, language)) {
      if (advice.letter == '-' ||
          std::ranges::none_of(report.syllables, [&](const SyllableGrade& syllable) {
            return syllable.*letter == advice.letter;
          })) {
        continue;
      }
      text += "  " + std::string(NameOf(kind)) + " " + advice.letter + ": " + advice.text + "\n";
    }
  };
  add(AdviceKind::kPitch, &SyllableGrade::pitch_advice);
  add(AdviceKind::kTiming, &SyllableGrade::timing_advice);
  add(AdviceKind::kIntensity, &SyllableGrade::intensity_advice);
  if (std::ranges::any_of(report.syllables, [](const SyllableGrade& syllable) {
        return syllable.unnecessary_pause.value_or(false);
      })) {
    text += "  pause !: a long pause where the tutor makes none\n";
  }
  return text.empty() ? "" : "advice:\n" + text;
}

// That the scores are lowered, and what speaks for why.
std::string Lowered(const GradeReport& report) {
  std::string text = LoweredText(report);
  if (text.empty()) return text;
  text += "\n";
  for (const ScoreHint& hint : report.reasons) text += "  " + hint.text + "\n";
  return text;
}

// ---- JSON ----

OrderedJson JsonScores(const GradeScores& scores, bool with_total) {
  OrderedJson object = OrderedJson::object();
  if (with_total) object["total"] = OrNull(scores.total);
  object["pronunciation"] = OrNull(scores.pronunciation);
  object["pitch"] = OrNull(scores.pitch);
  object["timing"] = OrNull(scores.timing);
  object["intensity"] = OrNull(scores.intensity);
  return object;
}

OrderedJson TextOrNull(const std::string& text) {
  return text.empty() ? OrderedJson(nullptr) : OrderedJson(text);
}

// ---- CSV ----

constexpr std::array<std::string_view, 26> kColumns = {"file",
                                                       "tier",
                                                       "text",
                                                       "start_sample",
                                                       "end_sample",
                                                       "start_s",
                                                       "end_s",
                                                       "total",
                                                       "pronunciation",
                                                       "pitch",
                                                       "timing",
                                                       "intensity",
                                                       "pitch_advice",
                                                       "timing_advice",
                                                       "intensity_advice",
                                                       "unnecessary_pause",
                                                       "pitch_contrast",
                                                       "timing_contrast",
                                                       "intensity_contrast",
                                                       "tutor_tone",
                                                       "learner_tone",
                                                       "sounds_like",
                                                       "sounds_like_probability",
                                                       "goodness_probability",
                                                       "lowered_to",
                                                       "reasons"};
using Line = CsvLine<kColumns.size()>;

void SetScores(Line& line, const GradeScores& scores) {
  line.Set("total", scores.total);
  line.Set("pronunciation", scores.pronunciation);
  line.Set("pitch", scores.pitch);
  line.Set("timing", scores.timing);
  line.Set("intensity", scores.intensity);
}

}  // namespace

std::string GradeTable(const GradeReport& report) {
  const AlignmentReport& alignment = report.analysis.alignment;
  if (!alignment.error.empty()) return "";
  std::string text = PrintableText(alignment.file) + ": " +
                     Fixed(Seconds(alignment.num_samples), 3) + " s, " +
                     std::string(LanguageName(alignment.language));
  if (report.pronunciation_only) {
    text += ", pronunciation only";
  } else {
    text += ", against " + PrintableText(report.tutor_file);
    if (!report.teacher.empty()) text += " (" + PrintableText(report.teacher) + ")";
  }
  text += "\nsentence: " + PrintableText(alignment.sentence) + "\n";
  text += "total " + OrDash(report.scores.total) + "   pronunciation " +
          OrDash(report.scores.pronunciation) + "   pitch " + OrDash(report.scores.pitch) +
          "   timing " + OrDash(report.scores.timing) + "   loudness " +
          OrDash(report.scores.intensity) + "\n" + Lowered(report) + "\n";
  text += Laid(RowsOf(report)) + Letters(report) + Strangers(report);
  while (text.ends_with("\n\n")) text.pop_back();
  return text;
}

OrderedJson GradeJson(const GradeReport& report) {
  const AlignmentReport& alignment = report.analysis.alignment;
  OrderedJson object = AlignmentJson(alignment);
  if (!alignment.error.empty()) return object;
  object["schema_version"] = kGradeSchemaVersion;
  object["pronunciation_only"] = report.pronunciation_only;
  object["tutor"] = nullptr;
  if (!report.pronunciation_only) {
    object["tutor"] = {{"file", report.tutor_file}, {"teacher", TextOrNull(report.teacher)}};
  }
  object["scores"] = JsonScores(report.scores, true);
  object["goodness_probability"] = OrNull(report.analysis.goodness_probability);
  object["lowered_to"] = OrNull(report.lowered_to);
  object["reasons"] = OrderedJson::array();
  for (const ScoreHint& hint : report.reasons) {
    object["reasons"].push_back({{"reason", hint.reason}, {"text", hint.text}});
  }
  for (std::size_t i = 0; i < report.words.size(); ++i) {
    OrderedJson& word = object["words"][i];
    const WordGrade& grade = report.words[i];
    word["syllables"] = alignment.words[i].parts;
    word["scores"] = JsonScores(grade.scores, true);
    word["contrasts"] = {{"pitch", OrNull(grade.contrasts.pitch)},
                         {"timing", OrNull(grade.contrasts.timing)},
                         {"intensity", OrNull(grade.contrasts.intensity)}};
  }
  for (std::size_t i = 0; i < report.syllables.size(); ++i) {
    OrderedJson& syllable = object["syllables"][i];
    const SyllableGrade& grade = report.syllables[i];
    syllable["phonemes"] = alignment.syllables[i].parts;
    syllable["scores"] = JsonScores(grade.scores, false);
    syllable["advice"] = {{"pitch", TextOrNull(Letter(grade.pitch_advice))},
                          {"timing", TextOrNull(Letter(grade.timing_advice))},
                          {"intensity", TextOrNull(Letter(grade.intensity_advice))}};
    syllable["unnecessary_pause"] = OrNull(grade.unnecessary_pause);
    syllable["tutor_tone"] = OrNull(grade.tutor_tone);
    syllable["learner_tone"] = OrNull(grade.learner_tone);
  }
  for (std::size_t i = 0; i < report.phonemes.size(); ++i) {
    OrderedJson& phoneme = object["phonemes"][i];
    const PhonemeMeasures& measures = report.analysis.phonemes[i];
    phoneme["score"] = OrNull(report.phonemes[i]);
    phoneme["sounds_like"] = TextOrNull(measures.sounds_like);
    phoneme["sounds_like_probability"] = OrNull(measures.sounds_like_probability);
  }
  return object;
}

std::string GradeCsvHeader() { return Line::Header(kColumns); }

std::string GradeCsv(const GradeReport& report) {
  const AlignmentReport& alignment = report.analysis.alignment;
  if (!alignment.error.empty()) return "";
  Line recording(kColumns);
  recording.SetSpan(alignment.file, "recording", CsvText(alignment.sentence), 0,
                    alignment.num_samples);
  SetScores(recording, report.scores);
  recording.Set("goodness_probability", report.analysis.goodness_probability, 6);
  recording.Set("lowered_to", report.lowered_to, 6);
  std::string reasons;
  for (const ScoreHint& hint : report.reasons) {
    reasons += (reasons.empty() ? "" : ";") + hint.reason;
  }
  recording.Set("reasons", std::move(reasons));
  std::string text = recording.Text();
  for (std::size_t i = 0; i < report.words.size(); ++i) {
    const Segment& word = alignment.words[i];
    Line line(kColumns);
    line.SetSpan(alignment.file, "words", CsvText(word.text), word.start, word.end);
    SetScores(line, report.words[i].scores);
    line.Set("pitch_contrast", report.words[i].contrasts.pitch, 6);
    line.Set("timing_contrast", report.words[i].contrasts.timing, 6);
    line.Set("intensity_contrast", report.words[i].contrasts.intensity, 6);
    text += line.Text();
  }
  for (std::size_t i = 0; i < report.syllables.size(); ++i) {
    const Segment& part = alignment.syllables[i];
    const SyllableGrade& grade = report.syllables[i];
    Line line(kColumns);
    line.SetSpan(alignment.file, "syllables", QuotedForCsv(part.text), part.start, part.end);
    SetScores(line, grade.scores);
    line.Set("pitch_advice", Letter(grade.pitch_advice));
    line.Set("timing_advice", Letter(grade.timing_advice));
    line.Set("intensity_advice", Letter(grade.intensity_advice));
    if (grade.unnecessary_pause) {
      line.Set("unnecessary_pause", std::string(*grade.unnecessary_pause ? "1" : "0"));
    }
    line.Set("tutor_tone", grade.tutor_tone);
    line.Set("learner_tone", grade.learner_tone);
    text += line.Text();
  }
  for (std::size_t i = 0; i < report.phonemes.size(); ++i) {
    const Segment& phoneme = alignment.phonemes[i];
    const PhonemeMeasures& measures = report.analysis.phonemes[i];
    Line line(kColumns);
    line.SetSpan(alignment.file, "phonemes", QuotedForCsv(phoneme.text), phoneme.start,
                 phoneme.end);
    line.Set("pronunciation", report.phonemes[i]);
    line.Set("sounds_like", QuotedForCsv(measures.sounds_like));
    line.Set("sounds_like_probability", measures.sounds_like_probability, 6);
    text += line.Text();
  }
  return text;
}

}  // namespace veral3::tools
