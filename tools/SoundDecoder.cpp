#include "tools/SoundDecoder.h"

#include <optional>
#include <utility>

#include "tools/OggPages.h"
#include "tools/SoundFile.h"
#include "tools/SoundLength.h"

namespace veral3::tools {
namespace {

// The library forgets at the next call that a part of a file could not be decoded: it is asked for
// little at a time, so that the place is known.
constexpr std::size_t kFramesAtOnce = 1024;

class SoundDecoder : public AudioDecoder {
 public:
  SoundDecoder(std::unique_ptr<InputView> view, SoundLength length, SoundFile file,
               const SF_INFO& info)
      : AudioDecoder(info.samplerate, info.channels),
        m_view(std::move(view)),
        m_length(std::move(length)),
        m_file(std::move(file)),
        m_announced(m_length.frames > 0 ? m_length.frames : info.frames) {}

  std::size_t Read(std::span<double> values) override {
    const auto channels = static_cast<std::size_t>(Channels());
    const std::size_t wanted = std::min(kFramesAtOnce, values.size() / channels);
    const sf_count_t got =
        sf_readf_double(m_file.get(), values.data(), static_cast<sf_count_t>(wanted));
    if (sf_error(m_file.get()) != SF_ERR_NO_ERROR && !m_damage) {
      m_damage = Damage{m_frames, sf_strerror(m_file.get())};
    }
    if (got <= 0) return 0;
    m_frames += got;
    return static_cast<std::size_t>(got) * channels;
  }

  std::string Problem() override {
    const double seconds = SecondsOf(m_frames);
    if (m_length.announced > m_length.present && m_length.present > 0) {
      return EndsAfter(seconds, seconds * static_cast<double>(m_length.announced) /
                                    static_cast<double>(m_length.present));
    }
    const bool is_short = m_frames < m_announced && m_announced < SF_COUNT_MAX;
    if (!m_damage) return is_short ? EndsAfter(seconds, SecondsOf(m_announced)) : "";
    if (m_frames > m_damage->frame + 2 * static_cast<std::int64_t>(kFramesAtOnce)) {
      return "is damaged after " + Fixed(SecondsOf(m_damage->frame), 2) + " s: " + m_damage->reason;
    }
    // Where the library reads no further, a frame that is damaged looks like one that is cut off.
    return "can be read for " + Fixed(seconds, 2) + " s" +
           (is_short ? " of " + Fixed(SecondsOf(m_announced), 2) + " s" : "") +
           ": what follows is damaged or missing";
  }

 private:
  struct Damage {
    std::int64_t frame = 0;  // the recording is whole so far
    std::string reason;
  };

  double SecondsOf(std::int64_t frames) const { return static_cast<double>(frames) / Rate(); }

  std::unique_ptr<InputView> m_view;
  SoundLength m_length;
  SoundFile m_file;
  std::int64_t m_announced;  // frames
  std::int64_t m_frames = 0;
  std::optional<Damage> m_damage;
};

}  // namespace

OpenedDecoder OpenSound(const InputFile& file, bool& unsupported) {
  // First: the library loses memory on some OGG files whose pages are damaged.
  if (std::string problem = OggProblem(file); !problem.empty()) return {nullptr, problem};
  SoundLength length = LengthOf(file);
  auto view = std::make_unique<InputView>(InputView{&file, length.patches});
  SF_INFO info{};
  SoundFileError error;
  SoundFile sound = OpenSoundFile(*view, info, error);
  unsupported = !sound && error.unsupported;
  if (!sound) return {nullptr, "cannot be read as audio: " + error.reason};
  if (info.channels < 1) return {nullptr, "has no channels"};
  return {
      std::make_unique<SoundDecoder>(std::move(view), std::move(length), std::move(sound), info),
      ""};
}

}  // namespace veral3::tools
