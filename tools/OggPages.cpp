#include "tools/OggPages.h"

#include <ogg/ogg.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

#include "tools/Numbers.h"

namespace veral3::tools {
namespace {

constexpr std::size_t kBlock = 1u << 16;

struct Sync {
  Sync() { ogg_sync_init(&state); }
  ~Sync() { ogg_sync_clear(&state); }
  Sync(const Sync&) = delete;
  Sync& operator=(const Sync&) = delete;
  ogg_sync_state state{};
};

// One of the streams that the pages of a file belong to.
struct Stream {
  long next_page = 0;
  bool has_ended = false;
};

// What a stream's granule positions count a second; 0 where it is not known.
int GranuleRate(std::string_view first_page) {
  if (first_page.starts_with("OpusHead")) return 48000;
  if (!first_page.starts_with("\x01vorbis") || first_page.size() < 16) return 0;
  int rate = 0;
  for (std::size_t i = 16; i-- > 12;) rate = rate << 8 | static_cast<unsigned char>(first_page[i]);
  return rate;
}

// What has been seen of a file so far.
class Pages {
 public:
  void Take(ogg_page& page) {
    const int serial = ogg_page_serialno(&page);
    const long number = ogg_page_pageno(&page);
    if (ogg_page_bos(&page) != 0) {
      m_is_chain = m_is_chain || (!m_streams.empty() && !IsOpen());
      const std::string_view body(reinterpret_cast<const char*>(page.body),
                                  static_cast<std::size_t>(page.body_len));
      if (const int rate = GranuleRate(body); m_rate == 0 && rate > 0) {
        m_rate = rate;
        m_sound = serial;
      }
      m_streams[serial] = {number, false};
    }
    const auto stream = m_streams.find(serial);
    if (stream == m_streams.end()) return;
    if (number != stream->second.next_page) Damage();
    stream->second = {number + 1, ogg_page_eos(&page) != 0};
    // -1: no packet ends on the page.
    const std::int64_t granule = ogg_page_granulepos(&page);
    if (granule >= 0 && serial == m_sound) m_granule = granule;
  }

  // Bytes that belong to no page. Behind the last page they are nothing to the sound.
  void Skip() {
    if (IsOpen()) Damage();
  }

  std::string Problem() const {
    if (m_streams.empty()) return "";
    if (m_damage) {
      return "is damaged" + After(*m_damage) + (IsOpen() ? "" : Of(m_granule)) +
             ": a part of it is missing or overwritten";
    }
    if (m_is_chain) {
      return "holds several recordings one after the other, of which only the first could be read";
    }
    if (!IsOpen()) return "";
    return "ends" + After(m_granule) + " without the mark of its end: the rest is missing";
  }

 private:
  bool IsOpen() const {
    return std::ranges::any_of(m_streams, [](const auto& s) { return !s.second.has_ended; });
  }

  void Damage() {
    if (!m_damage) m_damage = m_granule;
  }

  std::string After(std::int64_t granule) const {
    return m_rate > 0 ? " after " + Fixed(static_cast<double>(granule) / m_rate, 2) + " s" : "";
  }
  std::string Of(std::int64_t granule) const {
    return m_rate > 0 ? " of " + Fixed(static_cast<double>(granule) / m_rate, 2) + " s" : "";
  }

  std::map<int, Stream> m_streams;  // by serial number
  bool m_is_chain = false;          // a stream begins where all others have ended
  int m_rate = 0;                   // of the first stream of sound; 0: none of a known kind
  int m_sound = 0;                  // its serial number
  std::int64_t m_granule = 0;
  std::optional<std::int64_t> m_damage;  // the granule position before the first one
};

}  // namespace

std::string OggProblem(const InputFile& file) {
  if (file.Bytes(0, 4) != "OggS") return "";
  Sync sync;
  Pages pages;
  std::uint64_t place = 0;
  for (;;) {
    ogg_page page;
    const long step = ogg_sync_pageseek(&sync.state, &page);
    if (step > 0) {
      pages.Take(page);
    } else if (step < 0) {
      pages.Skip();
    } else {
      char* const block = ogg_sync_buffer(&sync.state, static_cast<long>(kBlock));
      if (block == nullptr) return "cannot be looked through: memory ran out";
      const std::size_t got = file.Read(place, block, kBlock);
      if (got == 0) break;
      place += got;
      ogg_sync_wrote(&sync.state, static_cast<long>(got));
    }
  }
  // The beginning of a page whose end is cut off is told of by the mark that is missing.
  return pages.Problem();
}

}  // namespace veral3::tools
