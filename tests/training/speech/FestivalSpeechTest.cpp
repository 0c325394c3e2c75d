#include "training/speech/FestivalSpeech.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace veral3::training {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

std::filesystem::path Folder() {
  return std::filesystem::path(::testing::TempDir()) / "veral3_festival";
}

std::vector<std::string> NamesOf(const SpokenText& spoken) {
  std::vector<std::string> names;
  for (const PhonemeEvent& event : spoken.events) names.push_back(event.name);
  return names;
}

TEST(FestivalSpeech, SaysPhonesAndTimesOfAnotherLanguage) {
  const std::vector<FestivalText> texts = {{"žába.", 1.0}, {"žába.", 1.3}};
  const auto spoken = SpeakWithFestival("czech_krb", "ISO-8859-2", texts, Folder());
  ASSERT_EQ(spoken.size(), 2u);
  EXPECT_THAT(NamesOf(spoken[0]), ::testing::ElementsAre("#", "z~", "a:", "b", "a", "#"));
  EXPECT_GT(spoken[1].samples.size(), spoken[0].samples.size() * 11 / 10);
  for (const SpokenText& one : spoken) {
    EXPECT_EQ(one.events.front().start, 0);
    EXPECT_LT(one.events.back().start, static_cast<std::int32_t>(one.samples.size()));
    EXPECT_TRUE(std::ranges::is_sorted(one.events, {}, &PhonemeEvent::start));
  }
  EXPECT_FALSE(std::filesystem::exists(Folder()));
}

// The Finnish voice has no diphone from a pause to l.
TEST(FestivalSpeech, ATextThatTheVoiceLacksADiphoneForComesBackEmpty) {
  const std::vector<FestivalText> texts = {{"kissa.", 1.0}, {"lumi.", 1.0}, {"kissa.", 1.0}};
  const auto spoken = SpeakWithFestival("suo_fi_lj_diphone", "ISO-8859-1", texts, Folder());
  ASSERT_EQ(spoken.size(), 3u);
  EXPECT_FALSE(spoken[0].samples.empty());
  EXPECT_TRUE(spoken[1].samples.empty());
  EXPECT_TRUE(spoken[1].events.empty());
  EXPECT_EQ(spoken[2].samples, spoken[0].samples);
}

TEST(FestivalSpeech, RefusesATextThatTheVoiceCannotRead) {
  const std::vector<FestivalText> texts = {{"жаба", 1.0}};
  EXPECT_THAT([&] { SpeakWithFestival("czech_krb", "ISO-8859-2", texts, Folder()); },
              ThrowsMessage<std::runtime_error>(HasSubstr("cannot be written in ISO-8859-2")));
  EXPECT_THAT([&] { SpeakWithFestival("czech_krb", "no such", texts, Folder()); },
              ThrowsMessage<std::runtime_error>(HasSubstr("no such encoding")));
}

}  // namespace
}  // namespace veral3::training
