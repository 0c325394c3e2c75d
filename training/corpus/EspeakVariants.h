#pragma once

#include <array>
#include <string_view>

namespace veral3::training {

// Variants of espeak-ng that sound human, of every language, in two sets without a speaker in
// common: what is measured on the second says how the models do on voices that they never heard.
inline constexpr auto kTrainingVariants = std::to_array<std::string_view>({
    "f1",     "f2",     "f3",     "f5",       "m1",     "m2",      "m3",       "m5",     "m6",
    "m7",     "klatt",  "klatt2", "klatt4",   "klatt5", "klatt6",  "Alex",     "Alicia", "Andy",
    "Annie",  "Denis",  "Diogo",  "Henrique", "Hugo",   "Lee",     "Marco",    "Mario",  "Mike",
    "Nguyen", "adam",   "anika",  "antonio",  "aunty",  "belinda", "benjamin", "boris",  "caleb",
    "david",  "ed",     "edward", "grandma",  "iven",   "iven2",   "iven3",    "john",   "marcelo",
    "max",    "michel", "miguel", "norbert",  "pablo",  "paul",    "pedro",    "quincy", "rob",
    "robert", "sandro", "shelby", "victor",   "zac",
});
inline constexpr auto kHeldOutVariants = std::to_array<std::string_view>({
    "f4",
    "m4",
    "m8",
    "klatt3",
    "Andrea",
    "travis",
    "Gene",
    "steph2",
    "Michael",
    "linda",
});

}  // namespace veral3::training
