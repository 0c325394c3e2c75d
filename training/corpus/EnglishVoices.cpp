#include "training/corpus/EnglishVoices.h"

#include <string>
#include <string_view>

namespace veral3::training {

EnglishVoice DrawEnglishVoice(Random& random, bool held_out) {
  EnglishVoice drawn;
  std::string language = "en-us";
  drawn.accent = EnglishAccent::kAmerican;
  if (random.Chance(0.2)) {
    language = random.Chance(0.5) ? "en" : "en-gb-x-rp";
    drawn.accent = EnglishAccent::kBritish;
  }
  const std::string_view variant =
      held_out ? random.Pick(kHeldOutVariants) : random.Pick(kTrainingVariants);
  drawn.voice.name = language + "+" + std::string(variant);
  drawn.voice.rate = random.Between(105, 230);
  drawn.voice.pitch = random.Between(20, 80);
  drawn.voice.range = random.Between(20, 80);
  // Some speak word by word, so that the start and end of every phoneme is heard beside a pause.
  if (random.Chance(0.15)) drawn.voice.word_gap = random.Between(1, 12);
  return drawn;
}

}  // namespace veral3::training
