#include <array>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "Require.h"
#include "common/Messages.h"
#include "common/Unicode.h"
#include "core/AnalyzedAudio.h"
#include "text/Kana.h"
#include "text/Lexicon.h"
#include "text/Pinyin.h"
#include "text/PrepareSentence.h"
#include "text/TextPreparation.h"
#include "tools/EngineMessages.h"
#include "tools/SentencePlan.h"
#include "tools/TextFiles.h"
#include "tools/TextReport.h"

// The first byte is the language, the rest a sentence as somebody typed it: the engine takes it as
// it stands, and as the command prepares it with the dictionaries of resources/.
namespace {

using veral3::fuzz::Require;

constexpr std::array kLanguages = {kLanguageEnglish, kLanguageChinese, kLanguageJapanese};

const veral3::Lexicon& LexiconOf(std::size_t which) {
  static const std::array lexicons = {veral3::LexiconOf(kLanguageEnglish),
                                      veral3::LexiconOf(kLanguageChinese),
                                      veral3::LexiconOf(kLanguageJapanese)};
  return lexicons[which];
}

int Add(std::string_view sentence, LanguageType language) {
  AnalyzedAudio audio(language);
  return audio.AddPossibleSentence(CString(sentence));
}

void CheckText(const std::string& text, std::size_t which) {
  using namespace veral3::tools;
  const LanguageType language = kLanguages[which];
  const TextReport report = ReportText(text, language, LexiconOf(which));
  Require(IsUtf8(report.prepared));
  const std::size_t length = veral3::WideFromUtf8(text).size();
  for (const veral3::PreparedWord& word : veral3::PrepareSentence(language, text).words) {
    Require(word.begin <= word.end && word.end <= length);
  }
  const std::string once = veral3::PrepareText(text, language);
  Require(veral3::PrepareText(once, language) == once);
  TextTable(report, language);
  const nlohmann::json json = nlohmann::json::parse(TextJson({report}, language));
  Require(json.is_object() && json["text"] == text);
  veral3::InlinePronunciationHelp(text, language);
}

// A sentence that the plan lets through is one that the engine takes.
void CheckPlan(const std::string& text, LanguageType language, bool skip_unknown) {
  using namespace veral3::tools;
  std::vector<AlignJob> jobs = {{"file", {text}, {}}};
  const SentencePlan plan = PlanSentences(jobs, language, skip_unknown);
  Require(plan.usable || !plan.messages.empty());
  if (plan.usable) Require(Add(jobs.front().prepared.front(), language) == 1);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // The command's own handler comes first and stays where its objects want it.
  const veral3::tools::EngineMessages quiet;
  AnalyzedAudio::LoadResourceInFolderPath(VERAL3_SOURCE_DIR "/resources/");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const veral3::tools::EngineMessages quiet;
  const std::size_t which = data[0] % kLanguages.size();
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  const int added = Add(text, kLanguages[which]);
  Require(added == 1 || added < 0);
  // The command refuses other text before it looks at it.
  if (!veral3::tools::IsUtf8(text)) return 0;
  CheckText(text, which);
  CheckPlan(text, kLanguages[which], (data[0] & 128) != 0);
  if (const auto reading = veral3::ReadPinyin(text)) {
    veral3::InlinePronunciation(*reading, L"x");
  }
  if (const auto reading = veral3::ReadKana(veral3::WideFromUtf8(text))) {
    Require(Add(veral3::Utf8FromWide(veral3::InlinePronunciation(*reading, L"x")),
                kLanguageJapanese) == 1);
  }
  return 0;
}
