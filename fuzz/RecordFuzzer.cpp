#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "Answers.h"
#include "Require.h"
#include "common/Messages.h"
#include "core/AlignInfo.h"
#include "storage/SavedAlignedAudio.h"

// The first byte is the language, the rest an alignment record as it stands. Whatever loads is
// asked everything, dumped, and taken down again.
using veral3::fuzz::Require;

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
  Require(std::strlen(audio.GetPhonemes()) <= veral3::kAlignInfoPhonemes);
  Require(audio.GetNumOfPhonemes() <= veral3::kAlignInfoPhonemes &&
          audio.GetNumOfSyllables() <= veral3::kAlignInfoSyllables &&
          audio.GetNumOfWords() <= veral3::kAlignInfoWords);
  veral3::fuzz::AskRecording(audio);
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
