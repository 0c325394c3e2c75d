#include "tools/TutorFile.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>
#include "recognition/Languages.h"

#include "core/AlignInfo.h"
#include "signal/CWaveFrameDef.h"
#include "storage/SavedAlignedAudio.h"
#include "tools/AudioFile.h"
#include "tools/Checksum.h"
#include "tools/EngineMessages.h"
#include "tools/MemoryFile.h"
#include "tools/OutputFile.h"
#include "tools/SoundFile.h"
#include "tools/TextFiles.h"

namespace veral3::tools {
namespace {

constexpr char kChunkId[] = "vrl3";
constexpr std::uint32_t kChunkIdSize = 4;
constexpr std::uint8_t kHLYVersion = 5;  // the first that carries an alignment record
constexpr std::size_t kHeadSize = 64;    // what stands before the record
constexpr std::size_t kRecordSize = kAlignInfoSize;
constexpr std::size_t kMinChunk = kHeadSize + kRecordSize + sizeof(Sha256Digest);
constexpr std::size_t kMaxChunk = kMinChunk + kMaxTeacherBytes + kMaxSentenceBytes + 3;
constexpr std::size_t kBlock = 65536;  // samples read at once

std::string_view Bytes(const Sha256Digest& digest) {
  return {reinterpret_cast<const char*>(digest.data()), digest.size()};
}

void PutNumber(std::string& bytes, std::size_t value) {
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFFU);
}

std::uint32_t NumberAt(std::string_view bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    value |= std::uint32_t{static_cast<unsigned char>(bytes[offset + i])} << (8 * i);
  }
  return value;
}

Sha256Digest DigestOf(std::span<const std::int16_t> samples) {
  std::string bytes;
  bytes.reserve(2 * samples.size());
  for (const std::int16_t sample : samples) {
    bytes += static_cast<char>(sample & 0xFF);
    bytes += static_cast<char>(sample >> 8 & 0xFF);
  }
  return Sha256(bytes);
}

// The chunk's content, with the zeros that bring it to a multiple of four.
std::string Pack(const TutorFile& tutor) {
  std::string bytes;
  PutNumber(bytes, kTutorFileVersion);
  PutNumber(bytes, kMinChunk + tutor.teacher.size() + tutor.sentence.size());
  PutNumber(bytes, static_cast<std::size_t>(tutor.language));
  PutNumber(bytes, static_cast<std::size_t>(tutor.variety));
  PutNumber(bytes, tutor.date);
  PutNumber(bytes, tutor.samples.size());
  PutNumber(bytes, tutor.teacher.size());
  PutNumber(bytes, tutor.sentence.size());
  bytes += Bytes(DigestOf(tutor.samples));
  bytes.append(tutor.record.begin(), tutor.record.end());
  bytes += tutor.teacher;
  bytes += tutor.sentence;
  bytes += Bytes(Sha256(bytes));
  bytes.resize((bytes.size() + 3) / 4 * 4, '\0');
  return bytes;
}

// An intensity of the record that no recording has, in words that follow "holds"; "" without one.
// Checksums vouch for what was written, not for who wrote it.
std::string IntensityProblem(const TutorFile& tutor) {
  const AlignInfo info = DecodeAlignInfo(tutor.record);
  if (!HasSoundCounts(info)) return "";
  for (int i = 0; i < info.num_syllables; ++i) {
    const float intensity = info.syllable_intensity[static_cast<std::size_t>(i)];
    const std::string of = "intensity of syllable " + std::to_string(i + 1);
    if (std::isnan(intensity)) return "an " + of + " that is not a number";
    if (std::isinf(intensity)) return "an infinite " + of;
    if (intensity < 0.0F) return "a negative " + of;
  }
  return "";
}

// What is wrong with a tutor, in words that follow "holds"; "" when nothing is.
std::string ProblemOf(TutorFile& tutor) {
  if (FindLanguage(tutor.language) == nullptr) return "an unknown language";
  if (tutor.sentence.empty()) return "no sentence";
  if (!IsUtf8(tutor.sentence)) return "a sentence that is not UTF-8";
  if (!IsUtf8(tutor.teacher)) return "a teacher's name that is not UTF-8";
  if (tutor.sentence.size() > kMaxSentenceBytes) {
    return "a sentence of more than " + std::to_string(kMaxSentenceBytes) + " bytes";
  }
  if (tutor.teacher.size() > kMaxTeacherBytes) {
    return "a teacher's name of more than " + std::to_string(kMaxTeacherBytes) + " bytes";
  }
  if (tutor.samples.empty()) return "no sound";
  if (tutor.samples.size() > kMaxTutorSamples) return "more than 5.4 minutes of sound";
  if (std::string problem = IntensityProblem(tutor); !problem.empty()) return problem;
  const EngineMessages messages;
  HLYFile file = AsHLYFile(tutor);
  SavedAlignedAudio saved(tutor.language);
  if (saved.LoadFromHLY(&file) != 0) return "a damaged alignment: " + messages.OneLine();
  if (saved.GetNumOfPhonemes() == 0) return "an alignment of nothing";
  if (static_cast<std::size_t>(saved.GetNumOfSamples()) != tutor.samples.size()) {
    return "the alignment of another recording";
  }
  return "";
}

SF_CHUNK_INFO ChunkInfo() {
  SF_CHUNK_INFO info{};
  std::memcpy(info.id, kChunkId, kChunkIdSize);
  info.id_size = kChunkIdSize;
  return info;
}

// Puts the WAV file into `wave`; what went wrong, or "".
std::string MakeWave(const TutorFile& tutor, std::string& wave) {
  MemoryFile memory;
  memory.bytes.reserve(2 * tutor.samples.size() + kMaxChunk + 256);
  SF_INFO info{};
  info.samplerate = kSampleRate;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  std::string reason;
  SoundFile file = CreateSoundFile(memory, info, reason);
  if (!file) return reason;
  std::string content = Pack(tutor);
  SF_CHUNK_INFO chunk = ChunkInfo();
  chunk.data = content.data();
  chunk.datalen = static_cast<unsigned>(content.size());
  if (sf_set_chunk(file.get(), &chunk) != SF_ERR_NO_ERROR) return sf_strerror(file.get());
  const auto count = static_cast<sf_count_t>(tutor.samples.size());
  if (sf_write_short(file.get(), tutor.samples.data(), count) != count) {
    return sf_strerror(file.get());
  }
  if (sf_close(file.release()) != 0) return "the sound cannot be closed";
  // The library says nothing when it leaves out a chunk that is too large for it.
  if (memory.bytes.size() < content.size() + 2 * tutor.samples.size()) return "it is too large";
  wave = std::move(memory.bytes);
  return "";
}

// The content of the file's chunk; empty when there is none. Of a longer one than this version
// writes, the beginning.
std::string ReadChunk(SNDFILE* file) {
  SF_CHUNK_INFO wanted = ChunkInfo();
  SF_CHUNK_ITERATOR* const chunks = sf_get_chunk_iterator(file, &wanted);
  SF_CHUNK_INFO chunk = ChunkInfo();
  if (chunks == nullptr || sf_get_chunk_size(chunks, &chunk) != SF_ERR_NO_ERROR) return "";
  std::string content(std::min<std::size_t>(chunk.datalen, kMaxChunk + 1), '\0');
  chunk.datalen = static_cast<unsigned>(content.size());
  chunk.data = content.data();
  if (sf_get_chunk_data(chunks, &chunk) != SF_ERR_NO_ERROR) return "";
  return content;
}

// Fills everything but the samples, and `count` and `digest` of these. What is wrong, or "".
std::string Unpack(std::string_view chunk, TutorFile& tutor, std::size_t& count,
                   Sha256Digest& digest) {
  if (chunk.size() < 4) return "is a damaged tutor file";
  const std::uint32_t version = NumberAt(chunk, 0);
  if (version > kTutorFileVersion) {
    return "is a tutor file of format version " + std::to_string(version) +
           ", made by a later veral3 (or damaged); this one reads version " +
           std::to_string(kTutorFileVersion);
  }
  if (version != kTutorFileVersion || chunk.size() < kMinChunk || chunk.size() > kMaxChunk) {
    return "is a damaged tutor file";
  }
  const std::size_t teacher = NumberAt(chunk, 24);
  const std::size_t sentence = NumberAt(chunk, 28);
  const std::size_t size = NumberAt(chunk, 4);
  if (teacher > kMaxTeacherBytes || sentence > kMaxSentenceBytes ||
      size != kMinChunk + teacher + sentence || size > chunk.size() || chunk.size() - size > 3) {
    return "is a damaged tutor file";
  }
  const std::size_t end = size - sizeof(Sha256Digest);
  if (chunk.substr(end, sizeof(Sha256Digest)) != Bytes(Sha256(chunk.substr(0, end)))) {
    return "is a damaged tutor file: its checksum is wrong";
  }
  tutor.language = static_cast<LanguageType>(NumberAt(chunk, 8));
  tutor.variety = static_cast<HLYFile::SubL2Type>(NumberAt(chunk, 12));
  tutor.date = NumberAt(chunk, 16);
  count = NumberAt(chunk, 20);
  std::memcpy(digest.data(), chunk.data() + 32, digest.size());
  std::memcpy(tutor.record.data(), chunk.data() + kHeadSize, kRecordSize);
  tutor.teacher = chunk.substr(kHeadSize + kRecordSize, teacher);
  tutor.sentence = chunk.substr(kHeadSize + kRecordSize + teacher, sentence);
  return "";
}

// Reads `count` samples in blocks, so that memory follows what is there. What is wrong, or "".
std::string ReadSamples(SNDFILE* file, const SF_INFO& info, std::size_t count,
                        std::vector<std::int16_t>& samples) {
  constexpr const char* kChanged = "is a damaged tutor file: its sound is not the one analysed";
  if (info.format != (SF_FORMAT_WAV | SF_FORMAT_PCM_16) || info.channels != 1 ||
      info.samplerate != kSampleRate || count > kMaxTutorSamples) {
    return kChanged;
  }
  std::vector<std::int16_t> block(kBlock);
  while (samples.size() <= count) {
    const sf_count_t got = sf_read_short(file, block.data(), static_cast<sf_count_t>(kBlock));
    if (got <= 0) break;
    samples.insert(samples.end(), block.begin(), block.begin() + got);
  }
  if (samples.size() < count) {
    return "is cut short: " + std::to_string(samples.size()) + " of " + std::to_string(count) +
           " samples are left";
  }
  return samples.size() > count ? kChanged : "";
}

std::string Read(const InputFile& input, TutorFile& tutor) {
  InputView view{&input, {}};
  SF_INFO info{};
  SoundFileError error;
  const SoundFile file = OpenSoundFile(view, info, error);
  if (!file) return "is no tutor file: " + error.reason;
  const std::string chunk = ReadChunk(file.get());
  if (chunk.empty()) {
    return "is a recording, no tutor file; `veral3 tutor` makes one of it";
  }
  std::size_t count = 0;
  Sha256Digest digest{};
  if (std::string problem = Unpack(chunk, tutor, count, digest); !problem.empty()) return problem;
  if (std::string problem = ReadSamples(file.get(), info, count, tutor.samples); !problem.empty()) {
    return problem;
  }
  if (DigestOf(tutor.samples) != digest) {
    return "is a damaged tutor file: its sound is not the one analysed";
  }
  const std::string problem = ProblemOf(tutor);
  return problem.empty() ? "" : "is a tutor file that holds " + problem;
}

}  // namespace

HLYFile::SubL2Type VarietyOf(LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  return row == nullptr ? HLYFile::kSubL2Unknown : static_cast<HLYFile::SubL2Type>(row->variety);
}

std::string WriteTutor(const std::filesystem::path& path, const TutorFile& tutor) {
  TutorFile copy = tutor;
  if (const std::string problem = ProblemOf(copy); !problem.empty()) {
    return "is not written: it would hold " + problem;
  }
  std::string wave;
  if (const std::string problem = MakeWave(tutor, wave); !problem.empty()) {
    return "cannot be written: " + problem;
  }
  OutputFile file(path);
  file.Write(wave);
  return file.Finish();
}

Result<TutorFile> LoadTutor(const std::filesystem::path& path) {
  const Result<InputFile> input = InputFile::Open(path);
  return input ? LoadTutor(*input) : Result<TutorFile>::Failure(input.Error());
}

Result<TutorFile> LoadTutor(const InputFile& file) {
  TutorFile tutor;
  std::string problem = Read(file, tutor);
  if (!problem.empty()) return Result<TutorFile>::Failure(std::move(problem));
  return tutor;
}

bool IsTutorFile(const InputFile& file) {
  // Other kinds of recording need not be opened.
  if (file.Bytes(0, 4) != "RIFF") return false;
  InputView view{&file, {}};
  SF_INFO info{};
  SoundFileError error;
  const SoundFile sound = OpenSoundFile(view, info, error);
  return sound && !ReadChunk(sound.get()).empty();
}

HLYFile AsHLYFile(TutorFile& tutor) {
  return HLYFile(HLYFile::kAudioWave, static_cast<HLYFile::L2Type>(tutor.language), tutor.variety,
                 0, 0, CString(tutor.teacher), CString(tutor.sentence), tutor.sentence.c_str(),
                 tutor.date, tutor.samples.data(), static_cast<std::uint32_t>(tutor.samples.size()),
                 kHLYVersion, static_cast<int>(tutor.record.size()), tutor.record.data());
}

}  // namespace veral3::tools
