#include "tools/AlignmentFormats.h"

#include <algorithm>
#include <array>
#include <utility>

#include "common/Unicode.h"
#include "recognition/Languages.h"
#include "tools/AlignmentJson.h"
#include "tools/Numbers.h"
#include "tools/PrintableText.h"
#include "tools/TextCells.h"

namespace veral3::tools {
namespace {

constexpr std::array kFormats = {
    std::pair{std::string_view("table"), Format::kTable},
    std::pair{std::string_view("json"), Format::kJson},
    std::pair{std::string_view("textgrid"), Format::kTextGrid},
    std::pair{std::string_view("ctm"), Format::kCtm},
    std::pair{std::string_view("csv"), Format::kCsv},
    std::pair{std::string_view("audacity"), Format::kAudacity},
};
constexpr std::array kTiers = {
    std::pair{std::string_view("words"), Tier::kWords},
    std::pair{std::string_view("syllables"), Tier::kSyllables},
    std::pair{std::string_view("phonemes"), Tier::kPhonemes},
};

const std::vector<Segment>& SegmentsOf(const AlignmentReport& report, Tier tier) {
  switch (tier) {
    case Tier::kWords:
      return report.words;
    case Tier::kSyllables:
      return report.syllables;
    case Tier::kPhonemes:
      break;
  }
  return report.phonemes;
}

// ---- CTM ----

// A field between blanks: it has none of any kind, and is not empty. A line that begins with ;; is
// a comment.
std::string CtmField(std::string_view text) {
  std::wstring field = WideFromUtf8(PrintableText(text));
  std::ranges::replace_if(
      field, [](wchar_t c) { return IsWideSpace(c) || c == 0xA0 || c == 0x2007 || c == 0x202F; },
      L'_');
  if (field.starts_with(L";;")) field.front() = L'_';
  return field.empty() ? "_" : Utf8FromWide(field);
}

// ---- table ----

constexpr int kTableIndent = 10;  // columns from one level to the next, at least

std::string TableRow(int start, int end, int level, int indent, const std::string& text) {
  return Right(Fixed(Seconds(start), 3), 9) + Right(Fixed(Seconds(end), 3), 9) +
         Right(std::to_string(start), 10) + Right(std::to_string(end), 10) + "   " +
         std::string(static_cast<std::size_t>(level * indent), ' ') + text + "\n";
}

// ---- TextGrid ----

std::string QuotedForTextGrid(std::string_view text) {
  std::string result = "\"";
  for (const char c : PrintableText(text)) {
    result += c;
    if (c == '"') result += c;
  }
  return result + "\"";
}

// The segments with the pauses between them as segments without text, from 0 to `end`; nothing
// empty, nothing that overlaps.
std::vector<Segment> WithoutGaps(const std::vector<Segment>& segments, int end) {
  std::vector<Segment> result;
  int reached = 0;
  for (const Segment& segment : segments) {
    const int start = std::clamp(segment.start, reached, end);
    const int stop = std::clamp(segment.end, start, end);
    if (stop == start) continue;
    if (start > reached) result.push_back({"", reached, start});
    result.push_back({segment.text, start, stop});
    reached = stop;
  }
  if (reached < end || result.empty()) result.push_back({"", reached, end});
  return result;
}

std::string TextGridTier(int number, Tier tier, const AlignmentReport& report) {
  const std::vector<Segment> intervals = WithoutGaps(SegmentsOf(report, tier), report.num_samples);
  std::string text = "    item [" + std::to_string(number) + "]:\n";
  text += "        class = \"IntervalTier\"\n";
  text += "        name = \"" + std::string(NameOf(tier)) + "\"\n";
  text += "        xmin = 0\n";
  text += "        xmax = " + Fixed(Seconds(report.num_samples), 6) + "\n";
  text += "        intervals: size = " + std::to_string(intervals.size()) + "\n";
  int interval_number = 0;
  for (const Segment& interval : intervals) {
    const std::string start = interval.start == 0 ? "0" : Fixed(Seconds(interval.start), 6);
    text += "        intervals [" + std::to_string(++interval_number) + "]:\n";
    text += "            xmin = " + start + "\n";
    text += "            xmax = " + Fixed(Seconds(interval.end), 6) + "\n";
    text += "            text = " + QuotedForTextGrid(interval.text) + "\n";
  }
  return text;
}

}  // namespace

std::optional<Format> FormatOf(std::string_view name) {
  const auto found = std::ranges::find(kFormats, name, [](const auto& f) { return f.first; });
  return found == kFormats.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Tier> TierOf(std::string_view name) {
  const auto found = std::ranges::find(kTiers, name, [](const auto& t) { return t.first; });
  return found == kTiers.end() ? std::nullopt : std::optional(found->second);
}

std::string_view NameOf(Tier tier) {
  return std::ranges::find(kTiers, tier, [](const auto& t) { return t.second; })->first;
}

std::string_view ExtensionOf(Format format) {
  switch (format) {
    case Format::kJson:
      return ".json";
    case Format::kTextGrid:
      return ".TextGrid";
    case Format::kCtm:
      return ".ctm";
    case Format::kCsv:
      return ".csv";
    case Format::kAudacity:
      return ".labels.txt";
    case Format::kTable:
      break;
  }
  return ".txt";
}

bool HoldsSeveralFiles(Format format) {
  return format != Format::kTextGrid && format != Format::kAudacity;
}

std::string Table(const AlignmentReport& report) {
  if (!report.error.empty()) return "";
  std::string text = PrintableText(report.file) + ": " + Fixed(Seconds(report.num_samples), 3) +
                     " s, " + std::string(LanguageName(report.language)) + "\n";
  text += "sentence " + std::to_string(report.sentence_index + 1) + ": " +
          PrintableText(report.sentence) + "\n";
  text += "log probability " + Fixed(report.log_probability, 2) + "\n\n";

  int indent = kTableIndent;
  for (const Segment& word : report.words) {
    indent = std::max(indent, DisplayWidth(PrintableText(word.text)) + 2);
  }
  const auto heading = [&](const std::string& name) {
    return name + std::string(static_cast<std::size_t>(indent) - name.size(), ' ');
  };
  text += "  start s    end s     start       end   " + heading("word") + heading("syllable") +
          "phoneme\n";

  std::size_t syllable = 0;
  std::size_t phoneme = 0;
  int reached = 0;
  const auto pause = [&](int start) {
    if (start > reached) text += TableRow(reached, start, 0, indent, "(pause)");
  };
  for (const Segment& word : report.words) {
    pause(word.start);
    text += TableRow(word.start, word.end, 0, indent, PrintableText(word.text));
    for (int s = 0; s < word.parts && syllable < report.syllables.size(); ++s, ++syllable) {
      const Segment& part = report.syllables[syllable];
      text += TableRow(part.start, part.end, 1, indent, part.text);
      for (int p = 0; p < part.parts && phoneme < report.phonemes.size(); ++p, ++phoneme) {
        const Segment& symbol = report.phonemes[phoneme];
        text += TableRow(symbol.start, symbol.end, 2, indent, symbol.text);
      }
    }
    reached = std::max(reached, word.end);
  }
  pause(report.num_samples);
  return text;
}

std::string Json(const AlignmentReport& report) { return JsonText(AlignmentJson(report)); }

std::string TextGrid(const AlignmentReport& report) {
  return TextGrid(report, {Tier::kWords, Tier::kSyllables, Tier::kPhonemes});
}

std::string TextGrid(const AlignmentReport& report, const std::vector<Tier>& tiers) {
  if (!report.error.empty()) return "";
  std::string text = "File type = \"ooTextFile\"\nObject class = \"TextGrid\"\n\n";
  text += "xmin = 0\n";
  text += "xmax = " + Fixed(Seconds(report.num_samples), 6) + "\n";
  text += "tiers? <exists>\nsize = " + std::to_string(tiers.size()) + "\nitem []:\n";
  int number = 0;
  for (const Tier tier : tiers) text += TextGridTier(++number, tier, report);
  return text;
}

std::string Ctm(const AlignmentReport& report, std::string_view recording, Tier tier) {
  if (!report.error.empty()) return "";
  const std::string name = CtmField(recording);
  std::string text;
  for (const Segment& segment : SegmentsOf(report, tier)) {
    if (segment.end <= segment.start) continue;
    text += name + " 1 " + Fixed(Seconds(segment.start), 3) + " " +
            Fixed(Seconds(segment.end - segment.start), 3) + " " + CtmField(segment.text) + " " +
            Fixed(segment.confidence, 4) + "\n";
  }
  return text;
}

std::string CsvHeader() { return "file,tier,text,start_sample,end_sample,start_s,end_s\r\n"; }

std::string Csv(const AlignmentReport& report, std::optional<Tier> tier) {
  if (!report.error.empty()) return "";
  std::string text;
  for (const auto& [name, value] : kTiers) {
    if (tier && *tier != value) continue;
    for (const Segment& segment : SegmentsOf(report, value)) {
      text += CsvText(report.file) + "," + std::string(name) + "," +
              (value == Tier::kWords ? CsvText(segment.text) : QuotedForCsv(segment.text)) + "," +
              std::to_string(segment.start) + "," + std::to_string(segment.end) + "," +
              Fixed(Seconds(segment.start), 6) + "," + Fixed(Seconds(segment.end), 6) + "\r\n";
    }
  }
  return text;
}

std::string AudacityLabels(const AlignmentReport& report, Tier tier) {
  if (!report.error.empty()) return "";
  std::string text;
  for (const Segment& segment : SegmentsOf(report, tier)) {
    if (segment.end <= segment.start) continue;
    text += Fixed(Seconds(segment.start), 6) + "\t" + Fixed(Seconds(segment.end), 6) + "\t" +
            PrintableText(segment.text) + "\n";
  }
  return text;
}

}  // namespace veral3::tools
