#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace veral3::training {

// The pinyin, without tone, of a syllable given in expanded phonemes of the Chinese set: "Zu@i"
// gives "zhui", "jUan" gives "juan", "U" gives "yu", "lU" gives "lv" (v for u with two dots). The
// way back of what the dictionary's builder does. Nothing for what is no syllable of Mandarin's
// spelling.
std::optional<std::string> PinyinOf(std::string_view syllable);

}  // namespace veral3::training
