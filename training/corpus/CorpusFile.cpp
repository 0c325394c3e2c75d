#include "training/corpus/CorpusFile.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace veral3::training {
namespace {

constexpr std::array<char, 8> kMagic = {'V', '3', 'C', 'O', 'R', 'P', '2', '\n'};
constexpr std::array<char, 8> kMagicWithoutTones = {'V', '3', 'C', 'O', 'R', 'P', '1', '\n'};
constexpr std::uint32_t kLongest = 1u << 28;  // bytes in one field; a larger count is damage

std::filesystem::path Unfinished(const std::filesystem::path& path) {
  return path.string() + ".part";
}

void WriteBytes(std::ofstream& file, const void* data, std::size_t size) {
  const auto count = static_cast<std::uint32_t>(size);
  file.write(reinterpret_cast<const char*>(&count), sizeof count);
  file.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
}

// Reads one field into a container of plain values; false at the end of the file.
template <typename Container>
bool ReadBytes(std::ifstream& file, Container& into) {
  std::uint32_t size = 0;
  if (!file.read(reinterpret_cast<char*>(&size), sizeof size)) return false;
  using Value = typename Container::value_type;
  if (size > kLongest || size % sizeof(Value) != 0) return false;
  into.resize(size / sizeof(Value));
  return static_cast<bool>(
      file.read(reinterpret_cast<char*>(into.data()), static_cast<std::streamsize>(size)));
}

}  // namespace

std::string PhonemesOf(const Utterance& utterance) {
  std::string phonemes;
  for (const PhonemeLabel& label : utterance.labels) {
    if (label.symbol != '-' && label.symbol != kUnused) phonemes += label.symbol;
  }
  return phonemes;
}

CorpusWriter::CorpusWriter(std::filesystem::path path)
    : m_path(std::move(path)), m_file(Unfinished(m_path), std::ios::binary) {
  m_file.write(kMagic.data(), kMagic.size());
  if (!m_file) throw std::runtime_error("cannot write " + m_path.string());
}

void CorpusWriter::Write(const Utterance& utterance) {
  WriteBytes(m_file, utterance.text.data(), utterance.text.size());
  WriteBytes(m_file, utterance.voice.data(), utterance.voice.size());
  std::string symbols;
  std::vector<std::int32_t> starts;
  for (const PhonemeLabel& label : utterance.labels) {
    symbols += label.symbol;
    starts.push_back(label.start);
  }
  WriteBytes(m_file, symbols.data(), symbols.size());
  WriteBytes(m_file, starts.data(), starts.size() * sizeof starts[0]);
  WriteBytes(m_file, utterance.samples.data(), utterance.samples.size() * sizeof(std::int16_t));
  WriteBytes(m_file, utterance.tones.data(), utterance.tones.size());
  WriteBytes(m_file, utterance.spoken_tones.data(), utterance.spoken_tones.size());
  WriteBytes(m_file, utterance.syllables.data(),
             utterance.syllables.size() * sizeof utterance.syllables[0]);
  if (!m_file) throw std::runtime_error("cannot write " + m_path.string());
}

void CorpusWriter::Close() {
  m_file.close();
  if (!m_file) throw std::runtime_error("cannot write " + m_path.string());
  std::filesystem::rename(Unfinished(m_path), m_path);
}

CorpusReader::CorpusReader(std::filesystem::path path)
    : m_path(std::move(path)), m_file(m_path, std::ios::binary) {
  std::array<char, 8> magic{};
  m_file.read(magic.data(), magic.size());
  m_has_tones = magic == kMagic;
  if (!m_file || (!m_has_tones && magic != kMagicWithoutTones)) {
    throw std::runtime_error(m_path.string() + " is no corpus");
  }
}

std::optional<Utterance> CorpusReader::Next() {
  if (m_file.peek() == std::ifstream::traits_type::eof()) return std::nullopt;
  Utterance utterance;
  std::string symbols;
  std::vector<std::int32_t> starts;
  if (!ReadBytes(m_file, utterance.text) || !ReadBytes(m_file, utterance.voice) ||
      !ReadBytes(m_file, symbols) || !ReadBytes(m_file, starts) ||
      !ReadBytes(m_file, utterance.samples) || symbols.size() != starts.size()) {
    throw std::runtime_error(m_path.string() + " is damaged");
  }
  if (m_has_tones &&
      (!ReadBytes(m_file, utterance.tones) || !ReadBytes(m_file, utterance.spoken_tones) ||
       !ReadBytes(m_file, utterance.syllables) ||
       utterance.tones.size() != utterance.syllables.size() ||
       utterance.tones.size() != utterance.spoken_tones.size())) {
    throw std::runtime_error(m_path.string() + " is damaged");
  }
  for (std::size_t i = 0; i < symbols.size(); ++i) {
    utterance.labels.push_back({symbols[i], starts[i]});
  }
  return utterance;
}

}  // namespace veral3::training
