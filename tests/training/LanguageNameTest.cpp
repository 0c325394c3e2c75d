#include "training/common/LanguageName.h"

#include <gmock/gmock.h>

#include <CLI/CLI.hpp>

#include <stdexcept>

#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

TEST(LanguageNamed, CodesNamesAndNumbers) {
  for (const char* const text : {"ja", "JA", "Japanese", "3"}) {
    EXPECT_EQ(LanguageNamed(text).language, kLanguageJapanese) << text;
  }
  EXPECT_EQ(LanguageNamed("1").language, kLanguageEnglish);
  EXPECT_EQ(LanguageNamed("2").language, kLanguageChinese);
}

TEST(LanguageNamed, OthersAreRefused) {
  for (const char* const text : {"ko", "0", "4", "", "01", "1 "}) {
    EXPECT_THROW(LanguageNamed(text), std::runtime_error) << text;
  }
  try {
    LanguageNamed("ko");
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "no language is called \"ko\"; there are en, zh, ja");
  }
  EXPECT_THROW(RowOf(static_cast<LanguageType>(4)), std::runtime_error);
}

TEST(AddLanguageOption, LeavesTheLanguageOrRefuses) {
  for (const auto& [text, wanted] :
       {std::pair("zh", kLanguageChinese), std::pair("2", kLanguageChinese),
        std::pair("English", kLanguageEnglish)}) {
    CLI::App app;
    LanguageType language{};
    AddLanguageOption(app, language);
    app.parse(std::string("--language ") + text);
    EXPECT_EQ(language, wanted) << text;
  }
  CLI::App app;
  LanguageType language = kLanguageEnglish;
  AddLanguageOption(app, language);
  EXPECT_THROW(app.parse("--language ko"), CLI::ValidationError);
  EXPECT_EQ(language, kLanguageEnglish);
}

}  // namespace
}  // namespace veral3::training
