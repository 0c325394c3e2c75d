// Texts and messages when memory runs out.
#include <gtest/gtest.h>

#include <string>

#include "AllocationFaults.h"
#include "common/CString.h"
#include "common/MessageWriter.h"
#include "grading/GradedAudio.h"
#include "storage/SavedAlignedAudio.h"

namespace veral3::test {
namespace {

TEST(MemoryOfTexts, CopyingNeedsNone) {
  const CString text(L"a sentence that fits no small buffer");
  CString copy, assigned(L"another");
  FailAllocation(1, Fault::kRest);
  copy = text;
  assigned = text;
  const CString made(text);
  EXPECT_EQ(StopFailing(), 0);
  EXPECT_EQ(copy, text);
  EXPECT_EQ(assigned, text);
  EXPECT_EQ(made, text);
}

TEST(MemoryOfTexts, ChangingACopyLeavesItsSource) {
  const CString text(L"abc");
  CString copy(text);
  copy += L'd';
  EXPECT_EQ(text, L"abc");
  EXPECT_EQ(copy, L"abcd");
  copy = text;
  copy.MakeUpper();
  EXPECT_EQ(text, L"abc");
  EXPECT_EQ(copy, L"ABC");
}

TEST(MemoryOfTexts, ALostTextSaysSo) {
  for (const int kind : {0, 1, 2, 3, 4}) {
    CString text(L"good morning");
    const bool lost_before = text.IsLost();
    FailAllocation(1, Fault::kRest);
    if (kind == 0) text = CString("good evening");
    if (kind == 1) text = CString(L"good evening");
    if (kind == 2) text += L" to you";
    if (kind == 3) text.MakeUpper();
    if (kind == 4) text = text.Mid(5);
    StopFailing();
    EXPECT_FALSE(lost_before);
    EXPECT_TRUE(text.IsLost()) << kind;
    EXPECT_TRUE(text.IsEmpty()) << kind;
    text += L"more";  // does not make a whole of half a text
    EXPECT_TRUE(text.IsLost() && text.IsEmpty()) << kind;
    text = L"whole again";
    EXPECT_FALSE(text.IsLost()) << kind;
  }
  EXPECT_FALSE(CString(L"").IsLost());
}

TEST(MemoryOfTexts, ALostSentenceIsRefused) {
  const MessageLog log;
  FailAllocation(1, Fault::kRest);
  const CString lost(L"good morning");
  StopFailing();
  AnalyzedAudio audio(kLanguageEnglish);
  EXPECT_EQ(audio.AddPossibleSentence(lost), -1);
  EXPECT_EQ(MessageLog::Text(), "ERROR in AnalyzedAudio::AddPossibleSentence(), out of memory\n");
  EXPECT_EQ(audio.AddPossibleSentence(L""), 1);

  MessageLog::Clear();
  unsigned char record[2544] = {};
  HLYFile file;
  file.SetHLYVersion(5);
  file.SetAlignInfo(record, sizeof record);
  file.SetSentence(lost);
  SavedAlignedAudio saved(kLanguageEnglish);
  EXPECT_EQ(saved.LoadFromHLY(&file), -1);
  EXPECT_EQ(MessageLog::Text(), "ERROR in SavedAlignedAudio::LoadFromHLY(), out of memory\n");
}

TEST(MemoryOfMessages, AShortOneNeedsNone) {
  const MessageLog log;
  FailAllocation(1, Fault::kRest);
  Message(MessageStream::kError) << "n=" << 12.5 << " [" << std::wstring_view(L"caf\u00E9 \u4F60")
                                 << "]\n";
  EXPECT_EQ(StopFailing(), 0);
  EXPECT_EQ(MessageLog::Text(), "n=12.5 [caf\xC3\xA9 \xE4\xBD\xA0]\n");
}

TEST(MemoryOfMessages, ALongOneIsWhole) {
  const MessageLog log;
  std::string expected;
  {
    Message message(MessageStream::kError);
    for (int i = 0; i < 5000; ++i) {
      message << i << "\u00E9,";
      expected += std::to_string(i) + "\u00E9,";
    }
    EXPECT_TRUE(message.IsWhole());
  }
  EXPECT_EQ(MessageLog::Text(), expected);
}

TEST(MemoryOfMessages, ALongOneIsCutAndSaysSo) {
  const MessageLog log;
  const std::string odd = "x", character = "\xE4\xBD\xA0";
  for (const std::string& start : {std::string(), odd, odd + odd}) {
    MessageLog::Clear();
    FailAllocation(1, Fault::kRest);
    {
      Message message(MessageStream::kError);
      message << start;
      for (int i = 0; i < 2000; ++i) message << character;
      EXPECT_FALSE(message.IsWhole());
    }
    StopFailing();
    const std::string_view text = MessageLog::Text();
    const std::string_view end = "...\n(cut: out of memory)\n";
    ASSERT_TRUE(text.ends_with(end));
    const std::string_view rest = text.substr(0, text.size() - end.size());
    EXPECT_GT(rest.size(), 900U);
    EXPECT_EQ((rest.size() - start.size()) % character.size(), 0U);  // no half character
    EXPECT_TRUE(rest.starts_with(start + character));
  }
}

// The application's handler is its own matter; where messages go must not need memory either.
TEST(MemoryOfMessages, AHandlerThatThrowsLosesItsMessageOnly) {
  SetMessageHandler([](MessageStream, std::string_view) { throw std::bad_alloc(); });
  Message(MessageStream::kError) << "lost";
  SetMessageHandler({});
}

}  // namespace
}  // namespace veral3::test
