#include "tools/SentencePlan.h"

#include <map>
#include <utility>

#include "core/AnalyzedAudio.h"
#include "recognition/WordEntry.h"
#include "text/Lexicon.h"
#include "text/PrepareSentence.h"
#include "text/TextPreparation.h"
#include "tools/EngineMessages.h"
#include "tools/Shortened.h"

namespace veral3::tools {
namespace {

// Why the engine refuses a sentence that the check let through.
std::string Refusal(int code, const std::string& messages) {
  switch (code) {
    case -101:
      return "it begins with a bar and a blank";
    case -200:
      return "an inline pronunciation does not parse";
    case -300:
      return "an inline segment is neither a pronunciation (|1 ...|) nor digits (|3 ...|)";
    case -400:
      return "an inline digits segment does not parse or has a word that the dictionary lacks";
    case -500:
      return "it has more than " + std::to_string(WordSequence::kMaxWords) +
             " words, the most that are aligned at once";
    default:
      return messages;
  }
}

struct Findings {
  std::string prepared;
  std::vector<std::string> unknown;  // words, for the help
  std::string error;                 // "" when the sentence is usable
  std::string warning;               // lines without what they are about
};

Findings Examine(const std::string& sentence, LanguageType language, const Lexicon& lexicon,
                 bool skip_unknown) {
  Findings findings;
  findings.prepared = PrepareSentence(language, sentence).sentence;
  const SentenceCheck check = CheckSentence(findings.prepared, language, lexicon.has_word);
  std::string passed_over;
  if (!check.missing_words.empty()) {
    passed_over = "the dictionary lacks " + QuotedList(check.missing_words);
    findings.unknown = check.missing_words;
  }
  if (!check.unread_numbers.empty()) {
    passed_over += (passed_over.empty() ? "" : "; ") + std::string("write in words: ") +
                   QuotedList(check.unread_numbers);
  }
  const std::vector<std::string> symbols = UnreadSymbols(sentence, language);
  if (!symbols.empty()) {
    findings.warning = "not read, write in words what is spoken: " + QuotedList(symbols) + "\n";
  }
  if (!passed_over.empty() && !skip_unknown) {
    findings.error = passed_over;
  } else if (check.num_words == 0) {
    findings.error = passed_over.empty() ? "it has no words" : passed_over + "; nothing is left";
  } else {
    if (!passed_over.empty()) findings.warning += passed_over + "; passed over\n";
    const EngineMessages messages;
    AnalyzedAudio trial(language);
    const int code = trial.AddPossibleSentence(CString(findings.prepared));
    if (code < 0) findings.error = Refusal(code, messages.OneLine());
  }
  return findings;
}

}  // namespace

SentencePlan PlanSentences(std::vector<AlignJob>& jobs, LanguageType language, bool skip_unknown) {
  const Lexicon lexicon = LexiconOf(language);
  SentencePlan plan;
  std::map<std::string, std::string> prepared;  // of every sentence seen
  std::string unknown_word;
  for (AlignJob& job : jobs) {
    job.prepared.clear();
    for (const std::string& sentence : job.sentences) {
      auto [known, is_new] = prepared.try_emplace(sentence);
      if (is_new) {
        Findings findings = Examine(sentence, language, lexicon, skip_unknown);
        const std::string about = "sentence \"" + Shortened(sentence) + "\": ";
        if (!findings.warning.empty()) plan.messages += about + findings.warning;
        if (!findings.error.empty()) {
          plan.messages += about + findings.error + "\n";
          plan.usable = false;
          if (unknown_word.empty() && !findings.unknown.empty()) {
            unknown_word = findings.unknown.front();
          }
        }
        known->second = std::move(findings.prepared);
      }
      job.prepared.push_back(known->second);
    }
  }
  if (!unknown_word.empty()) {
    plan.messages += InlinePronunciationHelp(Shortened(unknown_word), language);
    if (!skip_unknown) plan.messages += "or let --skip-unknown pass over such words\n";
  }
  return plan;
}

}  // namespace veral3::tools
