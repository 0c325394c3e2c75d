#include "tools/TextReport.h"

#include <algorithm>

#include "common/Unicode.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/Dictionaries.h"
#include "recognition/Languages.h"
#include "recognition/SentenceTokens.h"
#include "text/Kana.h"
#include "text/Pinyin.h"
#include "tools/AlignmentJson.h"
#include "tools/EngineMessages.h"
#include "tools/PrintableText.h"
#include "tools/TextCells.h"

namespace veral3::tools {
namespace {

std::string ReadingOf(const Pronunciation& pronunciation, const PronunciationReport& report,
                      LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  const ReadingScript script = row == nullptr ? ReadingScript::kSounds : row->reading;
  if (script == ReadingScript::kKana) {
    return KanaOfPhonemes(pronunciation.phonemes, {pronunciation.syllable_starts.begin(),
                                                   pronunciation.syllable_starts.end()});
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

PronunciationReport ReportPronunciation(const Pronunciation& pronunciation, LanguageType language) {
  PronunciationReport report;
  const auto& starts = pronunciation.syllable_starts;
  for (std::size_t s = 0; s < starts.size(); ++s) {
    const auto begin = static_cast<std::size_t>(starts[s]);
    const std::size_t end = s + 1 < starts.size() ? static_cast<std::size_t>(starts[s + 1])
                                                  : pronunciation.phonemes.size();
    report.syllables.push_back(
        {std::string(pronunciation.phonemes.substr(begin, end - begin)),
         s < pronunciation.syllable_marks.size() ? pronunciation.syllable_marks[s] : 0});
  }
  report.reading = ReadingOf(pronunciation, report, language);
  return report;
}

// The words that the engine makes of one token: several of an English number, none of a word that
// it lacks.
void AddWords(std::wstring_view token, LanguageType language, const VeralDictionary& dictionary,
              std::vector<WordReport>& words) {
  const EngineMessages muted;
  WordSequence sequence;
  dictionary.LookupSentence(token, sequence);
  for (int w = 0; w < sequence.Count(); ++w) {
    WordReport word;
    word.text = Utf8FromWide(sequence[w].word);
    for (const Pronunciation& pronunciation : sequence[w].pronunciations) {
      if (!pronunciation.IsUsable()) continue;
      word.pronunciations.push_back(ReportPronunciation(pronunciation, language));
    }
    words.push_back(std::move(word));
  }
  if (sequence.Count() == 0) words.push_back({Utf8FromWide(token), false, {}});
}

struct Row {
  std::string word, reading, syllables, marks;
};

}  // namespace

TextReport ReportText(std::string_view text, LanguageType language, const Lexicon& lexicon) {
  TextReport report;
  report.text = text;
  report.prepared = PrepareSentence(text, language, lexicon.cost);
  const SentenceCheck check = CheckSentence(report.prepared, language, lexicon.has_word);
  report.missing = check.missing_words;
  report.missing.insert(report.missing.end(), check.unread_numbers.begin(),
                        check.unread_numbers.end());
  report.unread_symbols = UnreadSymbols(text, language);
  const auto dictionary = DictionaryOf(language);
  const CPhonemeSet* set = PhonemeSetOf(language);
  if (dictionary == nullptr || set == nullptr) return report;
  const std::wstring wide = WideFromUtf8(report.prepared);
  for (std::size_t position = 0;;) {
    const SentenceToken token = NextSentenceToken(set->GetIdentifier(), wide, position);
    if (token.text.empty()) break;
    position = token.next;
    AddWords(token.text, language, *dictionary, report.words);
  }
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
