#include "tools/FfmpegDecoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/ChildProcess.h"
#include "tools/SoundLength.h"

namespace veral3::tools {
namespace {

using namespace std::string_view_literals;

// The containers that are of use here. Others of ffmpeg's are lists of further files to open.
constexpr const char* kContainers =
    "aac,ac3,aiff,amr,amrnb,amrwb,asf,au,avi,caf,eac3,flac,flv,loas,matroska,webm,mov,mp4,m4a,3gp,"
    "3g2,mj2,mp3,mpegts,ogg,w64,wav";

constexpr std::size_t kHeadBytes = 24;  // of an AU file
constexpr std::uint32_t kAuFloat = 6;
constexpr double kTolerance = 0.5;  // [s] by which a container's length may be wrong

std::uint32_t BigEndian(const char* bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}

std::vector<std::string> Words(const FfmpegOptions& options) {
  return {options.program, "-nostdin", "-hide_banner", "-nostats", "-loglevel", "info",
          // What is damaged is not to be passed over.
          "-xerror", "-protocol_whitelist", "file", "-format_whitelist", kContainers, "-i",
          "file:/dev/stdin", "-map", "0:a:0", "-vn", "-sn", "-dn", "-map_metadata", "-1", "-c:a",
          "pcm_f32be", "-f", "au", "pipe:1"};
}

// The length that ffmpeg read in the container: "  Duration: 00:00:03.40, start: ...". Nothing
// where it does not know, has guessed, or where a picture may last longer than the sound.
std::optional<double> LengthIn(const std::string& messages) {
  if (messages.find("Estimating duration from bitrate") != std::string::npos ||
      messages.find(": Video: ") != std::string::npos) {
    return std::nullopt;
  }
  constexpr std::string_view kName = "\n  Duration: ";
  const std::size_t at = messages.find(kName);
  if (at == std::string::npos) return std::nullopt;
  std::istringstream text(messages.substr(at + kName.size(), 16));
  double hours = 0.0;
  double minutes = 0.0;
  double seconds = 0.0;
  char colon = 0;
  if (text >> hours >> colon >> minutes >> colon >> seconds) {
    return 3600.0 * hours + 60.0 * minutes + seconds;
  }
  return std::nullopt;
}

// The last line of what ffmpeg wrote, fit to be shown.
std::string Reason(const ChildProcess& child) {
  if (child.TookTooLong()) return "ffmpeg did not come to an end and was stopped";
  std::string last;
  std::istringstream lines(child.Messages());
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line != "Conversion failed!") last = line;
  }
  if (constexpr std::string_view kName = "file:/dev/stdin: "; last.starts_with(kName)) {
    last.erase(0, kName.size());
  }
  if (last.size() > 200) last.resize(200);
  std::ranges::replace_if(
      last, [](char c) { return c < ' ' || c > '~'; }, '?');
  return last.empty() ? "ffmpeg failed" : "ffmpeg: " + last;
}

class FfmpegDecoder : public AudioDecoder {
 public:
  FfmpegDecoder(std::unique_ptr<ChildProcess> child, int rate, int channels)
      : AudioDecoder(rate, channels), m_child(std::move(child)) {}

  std::size_t Read(std::span<double> values) override {
    const std::size_t frame = sizeof(float) * static_cast<std::size_t>(Channels());
    std::size_t count = 0;
    while (count == 0) {
      const std::size_t held = m_bytes.size();
      const std::size_t room = values.size_bytes() / sizeof(double) * sizeof(float) / frame * frame;
      m_bytes.resize(room);
      const std::size_t got = m_child->Read(m_bytes.data() + held, room - held);
      m_bytes.resize(held + got);
      if (got == 0) return 0;
      count = m_bytes.size() / frame * static_cast<std::size_t>(Channels());
    }
    for (std::size_t i = 0; i < count; ++i) {
      values[i] = std::bit_cast<float>(BigEndian(&m_bytes[sizeof(float) * i]));
    }
    m_bytes.erase(0, sizeof(float) * count);
    m_values += count;
    return count;
  }

  std::string Problem() override {
    const double seconds = static_cast<double>(m_values) / Channels() / Rate();
    const int status = m_child->Wait();
    const auto announced = LengthIn(m_child->Messages());
    if (announced && seconds + kTolerance < *announced && !m_child->TookTooLong()) {
      return EndsAfter(seconds, *announced);
    }
    return status == 0 ? ""
                       : "cannot be read after " + Fixed(seconds, 2) + " s: " + Reason(*m_child);
  }

 private:
  std::unique_ptr<ChildProcess> m_child;
  std::string m_bytes;  // of the next frames
  std::size_t m_values = 0;
};

}  // namespace

std::string FfmpegKind(const InputFile& file) {
  const std::string head = file.Bytes(EndOfId3(file), 12);
  if (head.size() < 12) return "";
  const std::string_view second = std::string_view(head).substr(4, 4);
  const std::array atoms = {"ftyp"sv, "moov"sv, "mdat"sv, "wide"sv, "free"sv, "skip"sv};
  // The length of the first part stands before its name.
  if (head[0] == '\0' && std::ranges::find(atoms, second) != atoms.end())
    return "MPEG-4 (m4a, mp4)";
  if (head.starts_with("\x1A\x45\xDF\xA3")) return "WebM or Matroska";
  if (head.starts_with("\x30\x26\xB2\x75\x8E\x66\xCF\x11")) return "Windows Media (wma)";
  if (head.starts_with("#!AMR")) return "AMR";
  const auto sync = BigEndian(head.data()) >> 16;
  if ((sync & 0xFFF6) == 0xFFF0 || head.starts_with("ADIF")) return "AAC";
  return "";
}

OpenedDecoder OpenFfmpeg(const InputFile& file, const std::string& kind,
                         const FfmpegOptions& options) {
  std::string error;
  auto child = ChildProcess::Start(Words(options), file.Descriptor(),
                                   std::chrono::steady_clock::now() + options.time_limit, error);
  if (!child && error.empty()) {
    return {nullptr, "looks like " + kind +
                         ", which takes the program ffmpeg to read, and there is none; "
                         "install it, or convert the recording where there is one: "
                         "ffmpeg -i RECORDING recording.wav"};
  }
  if (!child) return {nullptr, "looks like " + kind + ", and ffmpeg cannot be started: " + error};
  // The head of an AU file, then the length that it announces of notes.
  std::array<char, kHeadBytes> head{};
  bool has_ended = false;
  const auto fill = [&](char* to, std::size_t count) {
    for (std::size_t done = 0; done < count;) {
      const std::size_t got = child->Read(to + done, count - done);
      has_ended = got == 0;
      if (has_ended) return false;
      done += got;
    }
    return true;
  };
  bool good = fill(head.data(), head.size()) && std::string_view(head.data(), 4) == ".snd" &&
              BigEndian(&head[12]) == kAuFloat;
  for (std::uint32_t left = BigEndian(&head[4]); good && left > kHeadBytes; --left) {
    char note = 0;
    good = left <= 65536 && fill(&note, 1);
  }
  const std::uint32_t rate = BigEndian(&head[16]);
  const std::uint32_t channels = BigEndian(&head[20]);
  if (!good || rate > 10000000 || channels < 1 || channels > 1024) {
    // What goes on is not waited for.
    const bool has_failed = has_ended && (child->Wait() != 0 || child->TookTooLong());
    return {nullptr, "looks like " + kind + " and cannot be read: " +
                         (has_failed ? Reason(*child) : "ffmpeg gives something else than sound")};
  }
  return {std::make_unique<FfmpegDecoder>(std::move(child), static_cast<int>(rate),
                                          static_cast<int>(channels)),
          ""};
}

}  // namespace veral3::tools
