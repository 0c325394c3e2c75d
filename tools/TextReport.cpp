#include "tools/TextReport.h"

#include <algorithm>
#include <utility>

#include "recognition/Languages.h"
#include "text/Kana.h"
#include "text/Pinyin.h"
#include "text/PrepareSentence.h"
#include "tools/AlignmentJson.h"
#include "tools/PrintableText.h"
#include "tools/TextCells.h"

namespace veral3::tools {
namespace {

std::string ReadingOf(const WordPronunciation& pronunciation, const PronunciationReport& report,
                      LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  const ReadingScript script = row == nullptr ? ReadingScript::kSounds : row->reading;
  if (script == ReadingScript::kKana) {
    return KanaOfPhonemes(pronunciation.phonemes, pronunciation.syllable_starts);
  }
  std::string reading;
  for (const SyllableReport& syllable : report.syllables) {
    if (!reading.empty()) reading += script == ReadingScript::kPinyin ? " " : ".";
    if (script == ReadingScript::kPinyin) {
      reading += PinyinOfPhonemes(syllable.phonemes, syllable.mark);
    } else {
      reading += syllable.mark == 1 ? "'" : syllable.mark == 2 ? "," : "";
      reading += syllable.phonemes;
    }
  }
  return reading;
}

PronunciationReport ReportPronunciation(const WordPronunciation& pronunciation,
                                        LanguageType language) {
  PronunciationReport report;
  const auto& starts = pronunciation.syllable_starts;
  for (std::size_t s = 0; s < starts.size(); ++s) {
    const auto begin = static_cast<std::size_t>(starts[s]);
    const std::size_t end = s + 1 < starts.size() ? static_cast<std::size_t>(starts[s + 1])
                                                  : pronunciation.phonemes.size();
    report.syllables.push_back(
        {pronunciation.phonemes.substr(begin, end - begin),
         s < pronunciation.syllable_marks.size() ? pronunciation.syllable_marks[s] : 0});
  }
  report.reading = ReadingOf(pronunciation, report, language);
  return report;
}

WordReport ReportWord(const PreparedWord& prepared, LanguageType language) {
  WordReport word;
  word.text = prepared.text;
  word.known = prepared.origin != WordOrigin::kUnknown;
  for (const WordPronunciation& pronunciation : prepared.pronunciations) {
    word.pronunciations.push_back(ReportPronunciation(pronunciation, language));
  }
  return word;
}

struct Row {
  std::string word, reading, syllables, marks;
};

}  // namespace

TextReport ReportText(std::string_view text, LanguageType language, const Lexicon& lexicon) {
  TextReport report;
  report.text = text;
  PreparedSentence prepared = PrepareSentence(language, text);
  report.prepared = std::move(prepared.sentence);
  for (const PreparedWord& word : prepared.words) {
    report.words.push_back(ReportWord(word, language));
  }
  const SentenceCheck check = CheckSentence(report.prepared, language, lexicon.has_word);
  report.missing = check.missing_words;
  report.missing.insert(report.missing.end(), check.unread_numbers.begin(),
                        check.unread_numbers.end());
  report.unread_symbols = UnreadSymbols(text, language);
  return report;
}

std::string TextTable(const TextReport& report, LanguageType language) {
  const LanguageRow* const known = FindLanguage(language);
  const bool has_marks = known == nullptr || known->mark != SyllableMark::kNone;
  const Row titles = {
      "word", ReadingName(known == nullptr ? ReadingScript::kSounds : known->reading), "syllables",
      HasTones(language)    ? "tones"
      : HasStress(language) ? "stress"
                            : ""};
  std::vector<Row> rows = {titles};
  for (const WordReport& word : report.words) {
    const std::string text = PrintableText(word.text);
    if (!word.known) rows.push_back({text, "not in the dictionary", "", ""});
    for (std::size_t p = 0; p < word.pronunciations.size(); ++p) {
      Row row = {p == 0 ? text : "", word.pronunciations[p].reading, "", ""};
      for (const SyllableReport& syllable : word.pronunciations[p].syllables) {
        row.syllables += row.syllables.empty() ? "" : " ";
        row.syllables += syllable.phonemes;
        if (has_marks) {
          row.marks += row.marks.empty() ? "" : " ";
          row.marks += std::to_string(syllable.mark);
        }
      }
      rows.push_back(std::move(row));
    }
  }
  int widths[3] = {};
  for (const Row& row : rows) {
    widths[0] = std::max(widths[0], DisplayWidth(row.word));
    widths[1] = std::max(widths[1], DisplayWidth(row.reading));
    widths[2] = std::max(widths[2], DisplayWidth(row.syllables));
  }
  std::string table;
  for (const Row& row : rows) {
    std::string line = PadRight(row.word, widths[0] + 2) + PadRight(row.reading, widths[1] + 2) +
                       PadRight(row.syllables, widths[2] + 2) + row.marks;
    line.erase(line.find_last_not_of(' ') + 1);
    table += line + "\n";
  }
  return table;
}

std::string TextJson(const std::vector<TextReport>& reports, LanguageType language) {
  using Json = OrderedJson;
  Json all = Json::array();
  for (const TextReport& report : reports) {
    Json words = Json::array();
    for (const WordReport& word : report.words) {
      Json pronunciations = Json::array();
      for (const PronunciationReport& pronunciation : word.pronunciations) {
        Json syllables = Json::array();
        for (const SyllableReport& syllable : pronunciation.syllables) {
          syllables.push_back({{"phonemes", syllable.phonemes}, {"mark", syllable.mark}});
        }
        pronunciations.push_back(
            {{"reading", pronunciation.reading}, {"syllables", std::move(syllables)}});
      }
      words.push_back({{"text", word.text},
                       {"known", word.known},
                       {"pronunciations", std::move(pronunciations)}});
    }
    all.push_back({{"language", LanguageCode(language)},
                   {"text", report.text},
                   {"prepared", report.prepared},
                   {"words", std::move(words)},
                   {"missing", report.missing},
                   {"unread_symbols", report.unread_symbols}});
  }
  return JsonText(all.size() == 1 ? all.front() : all) + "\n";
}

}  // namespace veral3::tools
