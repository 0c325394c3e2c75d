// Aligns one English recording (WAV, 16 bit, mono, 22050 Hz) and prints its phonemes:
//   align RECORDING.wav "The sentence"
// The resources are those of the installation, or the folder named by a third argument.
#include <Veral3.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::uint32_t Number(const std::string& bytes, std::size_t at, int size) {
  std::uint32_t value = 0;
  for (int i = size - 1; i >= 0; --i) {
    value = value << 8 | static_cast<std::uint8_t>(bytes[at + static_cast<std::size_t>(i)]);
  }
  return value;
}

// The samples of a WAV file; none if it has another form than the engine takes.
std::vector<std::int16_t> ReadWav(const char* path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  std::vector<std::int16_t> samples;
  if (bytes.size() < 12 || bytes.compare(0, 4, "RIFF") != 0 || bytes.compare(8, 4, "WAVE") != 0) {
    return samples;
  }
  bool fits = false;
  for (std::size_t at = 12; at + 8 <= bytes.size();) {
    const std::string name = bytes.substr(at, 4);
    const std::size_t start = at + 8;
    const std::size_t left = bytes.size() - start;
    const std::size_t size = Number(bytes, at + 4, 4) < left ? Number(bytes, at + 4, 4) : left;
    if (name == "fmt " && size >= 16) {
      fits = Number(bytes, start, 2) == 1 && Number(bytes, start + 2, 2) == 1 &&
             Number(bytes, start + 4, 4) == 22050 && Number(bytes, start + 14, 2) == 16;
    } else if (name == "data" && fits) {
      for (std::size_t i = 0; i + 2 <= size; i += 2) {
        samples.push_back(static_cast<std::int16_t>(Number(bytes, start + i, 2)));
      }
      break;
    }
    at = start + size + size % 2;  // chunks begin at even places
  }
  return samples;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s RECORDING.wav \"The sentence\" [RESOURCES]\n", argv[0]);
    return 2;
  }
  std::string resources = argc > 3 ? argv[3] : RESOURCES;
  if (!resources.ends_with('/')) resources += '/';
  std::vector<std::int16_t> samples = ReadWav(argv[1]);
  if (samples.empty()) {
    std::fprintf(stderr, "%s: no WAV file of 16 bit, mono, 22050 Hz\n", argv[1]);
    return 1;
  }

  // The engine says on the standard streams what it loads and what goes wrong; here errors alone.
  veral3::SetMessageHandler([](veral3::MessageStream, std::string_view text) {
    if (text.find("rror") != text.npos) std::fprintf(stderr, "%s", std::string(text).c_str());
  });
  AnalyzedAudio::LoadResourceInFolderPath(resources.c_str());
  const std::string model = resources + "EnglishFrame.model";
  if (const std::string fault = veral3::CheckModelFile(model.c_str(), kFrameModelEnglish);
      !fault.empty()) {
    std::fprintf(stderr, "%s\n", fault.c_str());
    return 1;
  }
  if (AnalyzedAudio::LoadModelFile(model.c_str(), kFrameModelEnglish) < 0) return 1;

  AnalyzedAudio audio(kLanguageEnglish);
  if (audio.AddPossibleSentence(argv[2]) < 0) return 1;
  if (audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data()) < 0) return 1;

  std::printf("%s\n", audio.GetMatchedSentence().Utf8().c_str());
  int word = 0;
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    if (word < audio.GetNumOfWords() && audio.GetWordStartPosition(word) == i) {
      std::printf("%s\n", audio.GetWordOfMatchedSentence(word++).Utf8().c_str());
    }
    std::printf("  %c %6.3f to %6.3f s\n", audio.GetPhonemes()[i],
                audio.GetPhonemeStartSampleNum(i) / 22050.0,
                audio.GetPhonemeEndSampleNum(i) / 22050.0);
  }
  return 0;
}
