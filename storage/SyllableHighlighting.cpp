#include "core/AlignedAudio.h"
#include "core/TopSyllables.h"

// What an application highlights: the members of AlignedAudio that pick syllables. They see the
// recording through its table of operations alone, so they serve analysed and stored ones alike.
namespace {

using veral3::TieGoesTo;

template <typename T>
void Find(AlignedAudio& audio, T (AlignedAudio::*measure)(int), TieGoesTo tie, int* first,
          int* second, int* third) {
  const veral3::TopSyllables top = veral3::FindTopSyllables(
      audio.GetNumOfSyllables(), tie, [&](int syllable) { return (audio.*measure)(syllable); });
  if (first) *first = top.first;
  if (second) *second = top.second;
  if (third) *third = top.third;
}

}  // namespace

void AlignedAudio::FindHighPitchSyallbles(int* first, int* second, int* third) {
  Find(*this, &AlignedAudio::GetSyllablePitch, TieGoesTo::kLater, first, second, third);
}

void AlignedAudio::FindHighIntensitySyallbles(int* first, int* second, int* third) {
  Find(*this, &AlignedAudio::GetSyllableIntensity, TieGoesTo::kEarlier, first, second, third);
}

void AlignedAudio::FindLongDurationSyallbles(int* first, int* second, int* third) {
  Find(*this, &AlignedAudio::GetSyllableDuration, TieGoesTo::kEarlier, first, second, third);
}

int AlignedAudio::GetUttAveragePitch() {
  const int count = GetNumOfSyllables();
  if (count <= 0) return 0;
  long long sum = 0;
  for (int i = 0; i < count; ++i) sum += GetSyllablePitch(i);
  return static_cast<int>(sum / count);
}
