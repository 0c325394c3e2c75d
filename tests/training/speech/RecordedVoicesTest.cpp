#include "training/corpus/RecordedVoices.h"

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <string>

#include "recognition/CPhonemeSet.h"
#include "training/speech/ArpabetEvents.h"
#include "training/speech/RecordedPhones.h"

namespace veral3::training {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

constexpr auto kLanguages = {kLanguageEnglish, kLanguageChinese, kLanguageJapanese};

std::string NamesOf(const PhoneInventory& phones, LanguageType language,
                    std::initializer_list<const char*> names) {
  std::vector<PhonemeEvent> events;
  for (const char* name : names) events.push_back({name, 0});
  phones.NamePlaces(events, language);
  std::string joined;
  for (const PhonemeEvent& event : events) joined += (joined.empty() ? "" : " ") + event.name;
  return joined;
}

// The phones of festival's own phone sets (defPhoneSet), by voice.
const std::map<std::string, std::string>& PhonesOfFestival() {
  static const std::map<std::string, std::string> phones = {
      {"czech_dita",
       "# _ a a: b c c~ ch d d~ dz dz~ e e: f g h i i: j k l m n n* n~ o o: p r r~ r~* s s~ t t~ "
       "u u: v z z~"},
      {"suo_fi_lj_diphone",
       "a e i o u y @ 7 & a: e: i: o: u: y: @: 7: p t k b d g f T s S h v m n N l L r j w p: t: "
       "k: b: d: g: f: T: D: s: z: S: Z: h: v: m: n: N: w: l: L: r: j: ## #"},
      {"lp_diphone",
       "i e E a o O u i1 e1 E1 a1 o1 O1 u1 j w p t k b d g f s S v z Z ts tS dz dZ m n J ng nf l L "
       "r #"},
      {"msu_ru_nsh_clunits",
       "pau ii yy uu ee oo aa a e i y u ae ay ur p pp b bb t tt d dd k kk g gg c ch f ff v vv s ss "
       "z zz sh sch zh h hh m mm n nn l ll r rr j"},
      {"telugu_NSK_diphone",
       "a aa ih iy uh uw eh ee ay oh oo aw f k g ch T D N th dh n p b m y r l v L R s sh j h ksh "
       "sri x kh gh td tth ddh bh zh @ pau w"},
      {"upc_ca_ona_hts",
       "ax a a1 b d e e1 E E1 f g i i1 j J k l L m n o o1 O O1 p r rr s S t u u1 w z Z pau _ #"},
  };
  return phones;
}

TEST(RecordedVoices, EveryPhoneOfAVoiceHasAReadingInEachLanguage) {
  for (const auto& [name, phones] : PhonesOfFestival()) {
    const RecordedVoice& voice = RecordedVoiceOf(Synthesiser::kFestival, name);
    std::istringstream names(phones);
    for (std::string phone; names >> phone;) {
      for (const LanguageType language : kLanguages) {
        EXPECT_TRUE(voice.phones().TableOf(language).Knows(phone)) << name << " " << phone;
      }
    }
  }
}

TEST(RecordedVoices, EverySymbolIsOfItsLanguageOrUnused) {
  for (const RecordedVoice& voice : RecordedVoices()) {
    for (const PhoneReading& reading : voice.phones().Readings()) {
      for (const LanguageType language : kLanguages) {
        const std::string symbols(voice.phones().TableOf(language).SymbolsOf(reading.name));
        EXPECT_FALSE(symbols.empty()) << reading.name;
        if (symbols == "?") continue;
        for (const char symbol : symbols) {
          EXPECT_GE(PhonemeSetOf(language)->GetPhonemeIndex(symbol), 0)
              << voice.name << " " << reading.name << " " << symbol;
        }
        // A sound keeps its kind: what is a pause or a vowel for one language is for all.
        const auto first = static_cast<wchar_t>(symbols[0]);
        if (reading.kind == PhoneKind::kPause) {
          EXPECT_EQ(symbols, "-") << reading.name;
        } else if (reading.kind == PhoneKind::kVowel) {
          EXPECT_TRUE(PhonemeSetOf(language)->IsVowel(first)) << voice.name << " " << reading.name;
        } else {
          EXPECT_NE(symbols, "-") << voice.name << " " << reading.name;
        }
      }
    }
  }
}

TEST(RecordedVoices, APlaceBelongsToAPhone) {
  const std::set<std::string> places = {"onset", "medial", "coda", "flap"};
  for (const RecordedVoice& voice : RecordedVoices()) {
    for (const PhoneReading& reading : voice.phones().Readings()) {
      if (reading.kind != PhoneKind::kPlace) continue;
      const std::string name(reading.name);
      const std::size_t cut = name.rfind('_');
      ASSERT_NE(cut, std::string::npos) << name;
      EXPECT_TRUE(places.contains(name.substr(cut + 1))) << voice.name << " " << name;
      EXPECT_TRUE(voice.phones().TableOf(kLanguageEnglish).Knows(name.substr(0, cut))) << name;
    }
  }
}

TEST(RecordedVoices, AspirationDecidesWhatAPlosiveIs) {
  const EventTable& chinese = CzechPhones().TableOf(kLanguageChinese);
  EXPECT_EQ(chinese.SymbolsOf("t_onset"), "d");
  EXPECT_EQ(chinese.SymbolsOf("d"), "?");
  EXPECT_EQ(CzechPhones().TableOf(kLanguageEnglish).SymbolsOf("t_onset"), "?");
  EXPECT_EQ(CzechPhones().TableOf(kLanguageEnglish).SymbolsOf("t"), "t");
  EXPECT_EQ(ArpabetPhones().TableOf(kLanguageChinese).SymbolsOf("t_onset"), "t");
  EXPECT_EQ(ArpabetPhones().TableOf(kLanguageChinese).SymbolsOf("t"), "?");
  EXPECT_EQ(ArpabetPhones().TableOf(kLanguageChinese).SymbolsOf("t_medial"), "?");
}

TEST(RecordedVoices, SoundsThatNoLanguageHasAreUnused) {
  for (const LanguageType language : kLanguages) {
    EXPECT_EQ(CzechPhones().TableOf(language).SymbolsOf("r~"), "?");
    EXPECT_EQ(RussianPhones().TableOf(language).SymbolsOf("rr"), "?");
    EXPECT_EQ(TeluguPhones().TableOf(language).SymbolsOf("T"), "?");
    EXPECT_EQ(FinnishPhones().TableOf(language).SymbolsOf("7"), "?");
  }
}

TEST(RecordedVoices, LongSoundsAreTwoJapaneseOnes) {
  const EventTable& finnish = FinnishPhones().TableOf(kLanguageJapanese);
  EXPECT_EQ(finnish.SymbolsOf("a"), "a");
  EXPECT_EQ(finnish.SymbolsOf("a:"), "aa");
  EXPECT_EQ(finnish.SymbolsOf("k:"), "kk");
  EXPECT_EQ(FinnishPhones().TableOf(kLanguageChinese).SymbolsOf("a:"), "a");
}

TEST(RecordedVoices, AMeasuringVoiceReadsHeldOutSentencesOnly) {
  const RecordedVoice& voice = RecordedVoiceOf(Synthesiser::kFestival, "cmu_us_slt_arctic_hts");
  EXPECT_THAT([&] { RequireAllowed(voice, kLanguageEnglish, false); },
              ThrowsMessage<std::runtime_error>(HasSubstr("for measuring only")));
  EXPECT_NO_THROW(RequireAllowed(voice, kLanguageEnglish, true));
  EXPECT_THROW(RequireAllowed(voice, kLanguageJapanese, true), std::runtime_error);
  EXPECT_THROW(RequireAllowed(voice, kLanguageJapanese, false), std::runtime_error);
}

TEST(RecordedVoices, ForeignVoicesAreForTrainingOnly) {
  const RecordedVoice& czech = RecordedVoiceOf(Synthesiser::kFestival, "czech_dita");
  EXPECT_NO_THROW(RequireAllowed(czech, kLanguageChinese, false));
  EXPECT_THROW(RequireAllowed(czech, kLanguageEnglish, true), std::runtime_error);
  const RecordedVoice& ked = RecordedVoiceOf(Synthesiser::kFestival, "ked_diphone");
  EXPECT_NO_THROW(RequireAllowed(ked, kLanguageEnglish, true));
  EXPECT_THROW(RequireAllowed(ked, kLanguageChinese, true), std::runtime_error);
}

TEST(RecordedVoices, AnUnknownVoiceIsAnErrorThatNamesTheOthers) {
  EXPECT_THAT([] { RecordedVoiceOf(Synthesiser::kFlite, "ked_diphone"); },
              ThrowsMessage<std::runtime_error>(HasSubstr("kal16 awb rms slt")));
}

// Kept for a last check of what was made: they are nowhere.
TEST(RecordedVoices, ThoseOfTheLastCheckAreNotAmongThem) {
  for (const RecordedVoice& voice : RecordedVoices()) {
    EXPECT_NE(voice.package, "festvox-suopuhe-mv");
    EXPECT_NE(voice.package, "festvox-itapc16k");
    EXPECT_NE(voice.package, "festvox-czech-ph");
  }
}

TEST(PhoneInventory, NamesTheOnsetOfAPlosive) {
  const PhoneInventory& italian = ItalianPhones();
  EXPECT_EQ(NamesOf(italian, kLanguageEnglish, {"#", "t", "a", "s", "t", "a", "t", "s"}),
            "# t_onset a s t a t s");
  EXPECT_EQ(NamesOf(italian, kLanguageEnglish, {"#", "t", "r", "a", "k", "w", "a"}),
            "# t_onset r a k_onset w a");
  // Between vowels English t may be a tap; a voice that does not tell has the onset.
  EXPECT_EQ(NamesOf(ArpabetPhones(), kLanguageChinese, {"pau", "k", "aa", "t", "aa"}),
            "pau k_onset aa t_medial aa");
  EXPECT_EQ(NamesOf(CzechPhones(), kLanguageChinese, {"a", "t", "a"}), "a t_onset a");
}

TEST(PhoneInventory, NamesFlapsAndCodas) {
  EXPECT_EQ(NamesOf(CzechPhones(), kLanguageJapanese, {"r", "a", "r", "a", "r", "t", "o"}),
            "r a r_flap a r t_onset o");
  EXPECT_EQ(NamesOf(CzechPhones(), kLanguageEnglish, {"l", "a", "l", "#"}), "l a l_coda #");
  EXPECT_EQ(NamesOf(CzechPhones(), kLanguageEnglish, {"m", "j", "a", "m", "b", "j"}),
            "m j a m_coda b j_coda");
  EXPECT_EQ(NamesOf(ArpabetPhones(), kLanguageEnglish, {"aa", "r", "t", "r", "iy", "r"}),
            "aa r_coda t_onset r iy r_coda");
}

TEST(PhoneInventory, OfTwoEqualPhonesTheFirstIsUnusedInLanguagesThatDoNotDouble) {
  const PhoneInventory& italian = ItalianPhones();
  EXPECT_EQ(NamesOf(italian, kLanguageJapanese, {"a", "t", "t", "o"}), "a t_double t_onset o");
  EXPECT_EQ(italian.TableOf(kLanguageJapanese).SymbolsOf("t_double"), "t");
  EXPECT_EQ(italian.TableOf(kLanguageChinese).SymbolsOf("t_double"), "?");
  EXPECT_EQ(italian.TableOf(kLanguageJapanese).SymbolsOf("m_double"), "?");
  // English reads its own phones as they are.
  EXPECT_EQ(NamesOf(ArpabetPhones(), kLanguageEnglish, {"s", "s", "iy"}), "s s iy");
  EXPECT_EQ(NamesOf(ArpabetPhones(), kLanguageChinese, {"s", "s", "iy"}), "s_double s iy");
}

TEST(PhoneInventory, AnUnknownPhoneIsAnErrorThatNamesIt) {
  std::vector<PhonemeEvent> events = {{"a", 0}, {"qq", 5}};
  EXPECT_THAT([&] { CzechPhones().NamePlaces(events, kLanguageEnglish); },
              ThrowsMessage<std::runtime_error>(HasSubstr("[qq]")));
}

TEST(PhoneInventory, RefusesAPhoneThatStandsTwice) {
  const std::vector<PhoneReading> twice = {{"a", PhoneKind::kVowel, "A", "a", "a"},
                                           {"a", PhoneKind::kVowel, "E", "a", "a"}};
  EXPECT_THROW(PhoneInventory(twice, std::nullopt), std::runtime_error);
}

TEST(ForeignTexts, AreWordsOfTheLanguageAndTheSameOnEveryRun) {
  std::set<std::string> texts;
  for (int number = 0; number < 50; ++number) {
    Random random(MixSeed(7, static_cast<std::uint64_t>(number)));
    Random again(MixSeed(7, static_cast<std::uint64_t>(number)));
    const std::string text = DrawForeignText(ForeignLanguage::kFinnish, random);
    EXPECT_EQ(text, DrawForeignText(ForeignLanguage::kFinnish, again));
    EXPECT_EQ(text.back(), '.');
    texts.insert(text);
    std::istringstream words(text);
    for (std::string word; words >> word;) {
      while (word.back() == ',' || word.back() == '.') word.pop_back();
      EXPECT_THAT(ForeignWords(ForeignLanguage::kFinnish), ::testing::Contains(word));
    }
  }
  EXPECT_GT(texts.size(), 45u);
}

}  // namespace
}  // namespace veral3::training
