#include "recognition/Dictionaries.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "recognition/CPhonemeSet.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

class DictionariesTest : public testing::Test {
 protected:
  // A folder with a dictionary of each language, whose path ends with the separator.
  DictionariesTest() {
    Put("KEN-UTF8Order.txt", test::ReadFile(test::VectorPath("dictionary/en.txt")));
    Put("KCN-UTF8Order.txt", test::ReadFile(test::VectorPath("dictionary/zh.txt")));
    Put("KJP-UTF8Order.txt", test::ReadFile(test::VectorPath("dictionary/ja.txt")));
  }
  // Leaves the process with dictionaries that hold nothing.
  ~DictionariesTest() override { LoadDictionaries("/no/such/folder/"); }

  void Put(const std::string& name, const std::string& bytes) const {
    test::WriteFile(m_folder.Path() / name, bytes);
  }
  std::string Folder() const { return m_folder.Path().string() + "/"; }

  test::MessageCapture m_messages;

 private:
  test::ScratchFolder m_folder;
};

constexpr LanguageType kLanguages[] = {kLanguageEnglish, kLanguageChinese, kLanguageJapanese};

TEST_F(DictionariesTest, LoadsOneALanguageInOrder) {
  LoadDictionaries(Folder().c_str());
  EXPECT_EQ(DictionaryOf(kLanguageEnglish)->GetPhonemeSet(), CPhonemeSet::kEnglish);
  EXPECT_EQ(DictionaryOf(kLanguageChinese)->GetPhonemeSet(), CPhonemeSet::kChinese);
  EXPECT_EQ(DictionaryOf(kLanguageJapanese)->GetPhonemeSet(), CPhonemeSet::kJapanese);
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "VeralDictionary: 60\twords loaded from <" + Folder() + "KEN-UTF8Order.txt>\n" +
                "VeralDictionary: 15\twords loaded from <" + Folder() + "KCN-UTF8Order.txt>\n" +
                "VeralDictionary: 5\twords loaded from <" + Folder() + "KJP-UTF8Order.txt>\n");
}

TEST_F(DictionariesTest, NoSeparatorIsPutIn) {
  std::string folder = Folder();
  folder.pop_back();
  LoadDictionaries(folder.c_str());
  for (const LanguageType language : kLanguages) {
    EXPECT_EQ(DictionaryOf(language)->GetWordCount(), 0);
  }
  EXPECT_TRUE(m_messages.All().starts_with("Error: Fail to open Veral Dictionary <" + folder +
                                           "KEN-UTF8Order.txt>\n"));
}

TEST_F(DictionariesTest, OtherLanguagesHaveNone) {
  EXPECT_EQ(DictionaryOf(static_cast<LanguageType>(0)), nullptr);
  EXPECT_EQ(DictionaryOf(static_cast<LanguageType>(4)), nullptr);
  EXPECT_EQ(DictionaryOf(static_cast<LanguageType>(-2147483647 - 1)), nullptr);
}

TEST_F(DictionariesTest, NullFolderAndLongPathsChangeNothing) {
  LoadDictionaries(Folder().c_str());
  const auto english = DictionaryOf(kLanguageEnglish);
  m_messages.Clear();
  LoadDictionaries(nullptr);
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "ERROR in AnalyzedAudio::LoadResourceInFolderPath(), no folder path\n");
  m_messages.Clear();
  // File names have 17 bytes: 1006 + 17 is the longest path that a closing zero leaves room for.
  LoadDictionaries((std::string(1006, '/') + "x").c_str());
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "ERROR in AnalyzedAudio::LoadResourceInFolderPath(), folder path is too long\n");
  EXPECT_EQ(DictionaryOf(kLanguageEnglish), english);
}

TEST_F(DictionariesTest, TheLongestPathLoads) {
  std::string folder = Folder();
  folder.insert(0, 1006 - folder.size(), '/');
  LoadDictionaries(folder.c_str());
  EXPECT_EQ(DictionaryOf(kLanguageEnglish)->GetWordCount(), 60);
}

TEST_F(DictionariesTest, AFailedLoadReplacesByAnEmptyDictionary) {
  LoadDictionaries(Folder().c_str());
  LoadDictionaries("");
  for (const LanguageType language : kLanguages) {
    EXPECT_EQ(DictionaryOf(language)->GetWordCount(), 0);
  }
}

TEST_F(DictionariesTest, EarlierHoldersKeepTheirs) {
  LoadDictionaries(Folder().c_str());
  const auto earlier = DictionaryOf(kLanguageEnglish);
  Put("KEN-UTF8Order.txt", "D 3 EN_KEP5 1\nNEW 1 ? 1 1 0 nu\n");
  LoadDictionaries(Folder().c_str());
  EXPECT_EQ(earlier->GetWordCount(), 60);
  EXPECT_NE(earlier->LookupWord(L"cat"), nullptr);
  EXPECT_EQ(DictionaryOf(kLanguageEnglish)->GetWordCount(), 1);
}

TEST_F(DictionariesTest, LoadingWhileOthersLookUp) {
  LoadDictionaries(Folder().c_str());
  std::atomic<bool> done = false;
  std::atomic<int> misses = 0;
  std::thread reader([&] {
    while (!done) {
      if (DictionaryOf(kLanguageEnglish)->LookupWord(L"cat") == nullptr) ++misses;
    }
  });
  for (int i = 0; i < 20; ++i) LoadDictionaries(Folder().c_str());
  done = true;
  reader.join();
  EXPECT_EQ(misses, 0);
}

}  // namespace
}  // namespace veral3
