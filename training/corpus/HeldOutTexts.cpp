#include "training/corpus/HeldOutTexts.h"

#include <stdexcept>

#include "training/corpus/ChineseTexts.h"
#include "training/corpus/EnglishTexts.h"
#include "training/corpus/JapaneseTexts.h"

namespace veral3::training {
namespace {

class English final : public HeldOutTexts {
 public:
  std::string Draw(Random& random) const override { return m_texts.DrawHeldOut(random); }
  std::string WithOneWordChanged(const std::string& sentence, Random& random) const override {
    return EnglishTexts::WithOneWordChanged(sentence, random);
  }

 private:
  EnglishTexts m_texts{{}};
};

class Chinese final : public HeldOutTexts {
 public:
  explicit Chinese(const std::string& dictionary) : m_texts(dictionary) {}
  std::string Draw(Random& random) const override { return m_texts.DrawHeldOut(random).text; }
  std::string WithOneWordChanged(const std::string& sentence, Random& random) const override {
    return ChineseTexts::WithOneWordChanged(sentence, random);
  }

 private:
  ChineseTexts m_texts;
};

class Japanese final : public HeldOutTexts {
 public:
  explicit Japanese(const std::string& dictionary) : m_texts(dictionary) {}
  std::string Draw(Random& random) const override { return TextOf(m_texts.DrawHeldOut(random)); }
  std::string WithOneWordChanged(const std::string& sentence, Random& random) const override {
    return JapaneseTexts::WithOneWordChanged(sentence, random);
  }

 private:
  JapaneseTexts m_texts;
};

}  // namespace

std::unique_ptr<HeldOutTexts> HeldOutTextsOf(LanguageType language, const std::string& dictionary) {
  switch (language) {
    case kLanguageEnglish:
      return std::make_unique<English>();
    case kLanguageChinese:
      return std::make_unique<Chinese>(dictionary);
    case kLanguageJapanese:
      return std::make_unique<Japanese>(dictionary);
  }
  throw std::runtime_error("no such language");
}

}  // namespace veral3::training
