#include "text/PrepareSentence.h"

#include <exception>
#include <utility>

#include "common/MessageWriter.h"
#include "common/Unicode.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/Dictionaries.h"
#include "recognition/SentenceTokens.h"
#include "text/Lexicon.h"
#include "text/TextPreparation.h"

namespace veral3 {
namespace {

WordOrigin OriginOf(const SentenceToken& token, TextSource source) {
  switch (source) {
    case TextSource::kNumber:
      return WordOrigin::kNumber;
    case TextSource::kGuessed:
      return WordOrigin::kGuessed;
    case TextSource::kWritten:
      break;
  }
  if (token.text.starts_with(L'|')) return WordOrigin::kInline;
  return token.is_number ? WordOrigin::kNumber : WordOrigin::kDictionary;
}

PreparedWord KnownWord(const WordEntry& entry) {
  PreparedWord word;
  word.text = Utf8FromWide(entry.word);
  for (const Pronunciation& pronunciation : entry.pronunciations) {
    if (!pronunciation.IsUsable()) continue;
    word.pronunciations.push_back(
        {std::string(pronunciation.phonemes),
         {pronunciation.syllable_starts.begin(), pronunciation.syllable_starts.end()},
         {pronunciation.syllable_marks.begin(), pronunciation.syllable_marks.end()}});
  }
  return word;
}

PreparedSentence Prepare(LanguageType language, std::string_view text) {
  PreparedSentence prepared;
  const CPhonemeSet* const set = PhonemeSetOf(language);
  const auto dictionary = DictionaryOf(language);
  if (set == nullptr || dictionary == nullptr) {
    Message(MessageStream::kError) << "ERROR in PrepareSentence(), unknown Language Type\n";
    return prepared;
  }
  const TracedText traced = PrepareWords(text, language, LexiconOf(language).cost);
  prepared.sentence = Utf8FromWide(traced.Text());
  const MutedMessages muted;  // a missing word is an answer
  for (std::size_t position = 0;;) {
    const SentenceToken token = NextSentenceToken(set->GetIdentifier(), traced.Text(), position);
    if (token.text.empty()) break;
    position = token.next;
    const TextOrigin from = traced.OriginOf(
        static_cast<std::size_t>(token.text.data() - traced.Text().data()), token.text.size());
    const auto add = [&](PreparedWord word, WordOrigin origin) {
      word.begin = from.begin;
      word.end = from.end;
      word.origin = origin;
      prepared.words.push_back(std::move(word));
    };
    WordSequence sequence;
    dictionary->LookupSentence(token.text, sequence);
    for (int i = 0; i < sequence.Count(); ++i) {
      add(KnownWord(sequence[i]), OriginOf(token, from.source));
    }
    if (sequence.Count() == 0) {
      PreparedWord unknown;
      unknown.text = Utf8FromWide(token.text);
      add(std::move(unknown), WordOrigin::kUnknown);
    }
  }
  return prepared;
}

}  // namespace

PreparedSentence PrepareSentence(LanguageType language, std::string_view text) noexcept {
  try {
    return Prepare(language, text);
  } catch (const std::exception& error) {
    Message(MessageStream::kError) << "ERROR in PrepareSentence(), " << error.what() << "\n";
    return {};
  }
}

}  // namespace veral3
