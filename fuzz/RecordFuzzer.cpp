#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "common/Messages.h"
#include "core/AlignInfo.h"
#include "storage/SavedAlignedAudio.h"

// The first byte is the language, the rest an alignment record as it stands. Whatever loads is
// asked everything, dumped, and taken down again.
namespace {

void Require(bool condition) {
  if (!condition) std::abort();
}

void AskEverything(SavedAlignedAudio& audio) {
  Require(std::strlen(audio.GetPhonemes()) <= veral3::kAlignInfoPhonemes);
  const int phonemes = audio.GetNumOfPhonemes();
  const int syllables = audio.GetNumOfSyllables();
  const int words = audio.GetNumOfWords();
  Require(phonemes >= 0 && phonemes <= 128 && syllables >= 0 && syllables <= 64 && words >= 0 &&
          words <= 64);
  double sum = audio.GetUttStartSampleNum() + audio.GetUttEndSampleNum();
  for (int i = -2; i < 600; ++i) {
    sum += audio.GetPhonemeStartSampleNum(i) + audio.GetPhonemeEndSampleNum(i);
    sum += audio.GetSyllableStartPosition(i) + audio.GetWordStartPosition(i);
    sum += audio.GetSyllablePitch(i) + audio.GetSyllableToneOrStress(i);
    sum += audio.GetSyllableDuration(i) + audio.GetSyllableIntensity(i);
    for (int k = -1; k < 7; ++k) sum += audio.GetSylToneProb(i, k);
    Require(audio.GetWaveY(i) >= 0 && audio.GetWaveY(i) <= 255 * 128);
    Require(audio.GetPitchContour(i) >= 0 && audio.GetPitchContour(i) <= 255);
    Require(audio.GetIntensityContour(i) >= 0 && audio.GetIntensityContour(i) <= 255);
    sum += audio.GetWordPitch(i);
  }
  int top[3];
  audio.FindHighPitchSyallbles(&top[0], &top[1], &top[2]);
  audio.FindHighIntensitySyallbles(&top[0], &top[1], &top[2]);
  audio.FindLongDurationSyallbles(&top[0], &top[1], &top[2]);
  Require(std::all_of(top, top + 3, [&](int i) { return i >= -1 && i < syllables; }));
  Require(!std::to_string(sum + audio.GetUttAveragePitch()).empty());  // so that all is read
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veral3::SetMessageHandler([](veral3::MessageStream, std::string_view) {});
  if (size == 0) return 0;
  std::vector<unsigned char> record(data + 1, data + size);
  HLYFile file;
  file.SetHLYVersion(5);
  file.SetAlignInfo(record.data(), static_cast<int>(record.size()));
  SavedAlignedAudio audio(static_cast<LanguageType>(data[0] % 5));
  const int loaded = audio.LoadFromHLY(&file);
  Require(loaded == 0 || loaded == -1);
  Require(loaded == -1 || record.size() >= veral3::kAlignInfoSize);
  record.clear();
  record.shrink_to_fit();
  AskEverything(audio);
  audio.DumpData();

  // What it answers makes a record again, and that one answers the same.
  veral3::AlignInfo info;
  if (veral3::TakeDown(audio, info) != 0) return 0;
  auto bytes = veral3::EncodeAlignInfo(info);
  file.SetAlignInfo(bytes.data(), static_cast<int>(bytes.size()));
  SavedAlignedAudio again(audio.GetLanguageType());
  Require(again.LoadFromHLY(&file) == 0);
  Require(again.GetNumOfSamples() == audio.GetNumOfSamples());
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    Require(again.GetPhonemeStartSampleNum(i) == audio.GetPhonemeStartSampleNum(i));
    Require(again.GetPhonemeEndSampleNum(i) == audio.GetPhonemeEndSampleNum(i));
  }
  for (int i = 0; i < audio.GetNumOfWords(); ++i) {
    Require(again.GetWordPitch(i) == audio.GetWordPitch(i));
  }
  return 0;
}
