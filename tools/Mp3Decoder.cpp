#include "tools/Mp3Decoder.h"

#include <mpg123.h>

#include <algorithm>
#include <type_traits>
#include <vector>

#include "tools/Mp3Frames.h"

namespace veral3::tools {
namespace {

struct DeleteMpg123 {
  void operator()(mpg123_handle* handle) const { mpg123_delete(handle); }
};
using Mpg123 = std::unique_ptr<mpg123_handle, DeleteMpg123>;

// The place in a file that libmpg123 reads.
struct Reader {
  const InputFile& file;
  off_t place = 0;
};

ssize_t ReadSome(void* data, void* to, std::size_t count) {
  Reader& reader = *static_cast<Reader*>(data);
  const std::size_t got = reader.file.Read(static_cast<std::uint64_t>(reader.place), to, count);
  reader.place += static_cast<off_t>(got);
  return static_cast<ssize_t>(got);
}

off_t Seek(void* data, off_t offset, int whence) {
  Reader& reader = *static_cast<Reader*>(data);
  const off_t from = whence == SEEK_SET   ? 0
                     : whence == SEEK_CUR ? reader.place
                                          : static_cast<off_t>(reader.file.Size());
  if (from + offset < 0) return -1;
  return reader.place = from + offset;
}

class Mp3Decoder : public AudioDecoder {
 public:
  Mp3Decoder(const InputFile& file, std::unique_ptr<Reader> reader, Mpg123 handle, int rate,
             int channels)
      : AudioDecoder(rate, channels),
        m_file(file),
        m_reader(std::move(reader)),
        m_handle(std::move(handle)) {}

  std::size_t Read(std::span<double> values) override {
    const auto channels = static_cast<std::size_t>(Channels());
    m_block.resize(values.size() / channels * channels);
    while (m_error.empty()) {
      std::size_t bytes = 0;
      const int result =
          mpg123_read(m_handle.get(), reinterpret_cast<unsigned char*>(m_block.data()),
                      m_block.size() * sizeof(float), &bytes);
      const std::size_t count = bytes / sizeof(float);
      std::copy_n(m_block.begin(), count, values.begin());
      m_values += count;
      if (result == MPG123_NEW_FORMAT && m_values > 0) {
        m_error = "changes its rate or channels" + After();
      } else if (result != MPG123_OK && result != MPG123_DONE && result != MPG123_NEW_FORMAT) {
        m_error = "is damaged" + After() + ": " + mpg123_strerror(m_handle.get());
      }
      if (count > 0 || result == MPG123_DONE) return count;
    }
    return 0;
  }

  std::string Problem() override {
    const std::string problem = MpegProblem(m_file);
    return problem.empty() ? m_error : problem;
  }

 private:
  std::string After() const {
    return " after " + Fixed(static_cast<double>(m_values) / Channels() / Rate(), 2) + " s";
  }

  const InputFile& m_file;
  std::unique_ptr<Reader> m_reader;
  Mpg123 m_handle;
  std::vector<float> m_block;
  std::size_t m_values = 0;
  std::string m_error;
};

}  // namespace

OpenedDecoder OpenMp3(const InputFile& file) {
  static const bool ready = mpg123_init() == MPG123_OK;
  const auto failure = [](const char* reason) {
    return OpenedDecoder{nullptr, std::string("cannot be read as audio: ") + reason};
  };
  int error = MPG123_OK;
  Mpg123 handle(ready ? mpg123_new(nullptr, &error) : nullptr);
  if (!handle) return failure(mpg123_plain_strerror(error));
  auto reader = std::make_unique<Reader>(Reader{file});
  mpg123_handle* const mp3 = handle.get();
  long rate = 0;
  int channels = 0;
  int encoding = 0;
  if (mpg123_param(mp3, MPG123_ADD_FLAGS, MPG123_FORCE_FLOAT | MPG123_QUIET, 0.0) != MPG123_OK ||
      mpg123_param(mp3, MPG123_REMOVE_FLAGS, MPG123_AUTO_RESAMPLE, 0.0) != MPG123_OK ||
      mpg123_replace_reader_handle(mp3, ReadSome, Seek, nullptr) != MPG123_OK ||
      mpg123_open_handle(mp3, reader.get()) != MPG123_OK ||
      mpg123_getformat(mp3, &rate, &channels, &encoding) != MPG123_OK) {
    return failure(mpg123_strerror(mp3));
  }
  if (encoding != MPG123_ENC_FLOAT_32)
    return failure("the decoder gives no floating point numbers");
  return {std::make_unique<Mp3Decoder>(file, std::move(reader), std::move(handle),
                                       static_cast<int>(rate), channels),
          ""};
}

}  // namespace veral3::tools
