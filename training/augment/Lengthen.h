#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace veral3::training {

// Makes a steady voiced stretch of a recording (a vowel) longer by about `more` samples, pitch and
// level as they are: at even distances it goes back by a whole number of periods, found by
// correlation, and fades over. `first` to `end` is the stretch. Returns the samples that were
// added: 0 where it is too short (below 40 ms) to tell its period.
std::int32_t Lengthen(std::vector<std::int16_t>& samples, std::int32_t first, std::int32_t end,
                      std::int32_t more);

}  // namespace veral3::training
