#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

#include "Answers.h"
#include "BytesAsFile.h"
#include "Require.h"
#include "storage/SavedAlignedAudio.h"
#include "support/Vectors.h"
#include "tools/Checksum.h"
#include "tools/EngineMessages.h"
#include "tools/InputFile.h"
#include "tools/TutorFile.h"

// The first byte says how the rest makes a tutor file: as it stands, or with checksums that are
// right, so that what they keep out is seen too. What loads is read back from what is written.
namespace {

using veral3::fuzz::Require;

std::size_t NumberAt(std::string_view bytes, std::size_t place) {
  std::size_t value = 0;
  for (std::size_t i = 4; i-- > 0;)
    value = value << 8 | static_cast<unsigned char>(bytes[place + i]);
  return value;
}

// Where the content of the first chunk of a name lies; nothing where it does not lie in the file.
std::span<char> ChunkOf(std::string& file, std::string_view name) {
  for (std::size_t place = 12; place + 8 <= file.size();) {
    const std::size_t size = NumberAt(file, place + 4);
    if (size > file.size() - place - 8) return {};
    if (std::string_view(file).substr(place, 4) == name) {
      return std::span(file).subspan(place + 8, size);
    }
    place += 8 + size + size % 2;
  }
  return {};
}

void PutDigest(std::span<char> place, std::span<const char> of) {
  const veral3::tools::Sha256Digest digest =
      veral3::tools::Sha256(std::string_view(of.data(), of.size()));
  std::memcpy(place.data(), digest.data(), digest.size());
}

// docs/formats/tutor-file.md: the chunk's size stands at 4, the sound's checksum at 32, its own at
// its end.
void MendChecksums(std::string& file) {
  const std::span<char> chunk = ChunkOf(file, "vrl3");
  const std::span<char> sound = ChunkOf(file, "data");
  if (chunk.size() < 64) return;
  const std::size_t size = NumberAt({chunk.data(), chunk.size()}, 4);
  if (size < 96 || size > chunk.size()) return;
  PutDigest(chunk.subspan(32, 32), sound);
  PutDigest(chunk.subspan(size - 32, 32), chunk.first(size - 32));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace veral3::tools;
  if (size == 0) return 0;
  static veral3::fuzz::BytesAsFile file;
  static const veral3::test::ScratchFolder folder;
  const EngineMessages quiet;
  std::string bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  if ((data[0] & 1) != 0) MendChecksums(bytes);
  const auto& path =
      file.Hold(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
  const Result<InputFile> input = InputFile::Open(path);
  const bool looks_like_one = input && IsTutorFile(*input);
  Result<TutorFile> tutor = LoadTutor(path);
  if (!tutor) {
    Require(!tutor.Error().empty());
    return 0;
  }
  Require(looks_like_one);
  const auto copy = folder.Path() / "tutor.wav";
  Require(WriteTutor(copy, *tutor).empty());
  const Result<TutorFile> again = LoadTutor(copy);
  Require(again && again->samples == tutor->samples && again->record == tutor->record &&
          again->sentence == tutor->sentence && again->teacher == tutor->teacher &&
          again->language == tutor->language);
  HLYFile hly = AsHLYFile(*tutor);
  SavedAlignedAudio saved(tutor->language);
  Require(saved.LoadFromHLY(&hly) == 0);
  veral3::fuzz::AskRecording(saved);
  return 0;
}
