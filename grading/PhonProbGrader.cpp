#include "grading/PhonProbGrader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "common/MessageWriter.h"
#include "grading/Scores.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/Languages.h"

namespace {

// Normalisers in the order of the phoneme sets. Those of the pauses are, on purpose, the first of
// the next language's; the Japanese pause has none.
constexpr std::array<double, 37> kEnglish = {
    1.441442837, 3.3567579,   1.740521152, 1.054765259, 1.666678817, 0.501318646, 0.836070563,
    1.019631144, 0.611846122, 2.665809441, 0.760677202, 0.71077462,  0.624928691, 2.678487394,
    1.295578937, 1.19779685,  0.463824273, 0.97289805,  2.256203649, 0.404210918, 1.474891055,
    0.721159752, 0.525663014, 0.322411144, 0.645496647, 1.765067828, 1.02664448,  0.254031119,
    0.01422898,  0.987666517, 0.651026393, 0.66909922,  0.204937768, 0.158744161, 0.600314579,
    0.718394879, 3.527908933};
constexpr std::array<double, 33> kChinese = {
    3.527908933, 2.187787772, 2.589778985, 0.647686541, 1.497480942, 0.10451965,  4.256129121,
    4.287497912, 0.702009678, 0.24901597,  0.606130147, 0.552451795, 0.1728991,   0.392964223,
    0.16990085,  1.198365177, 0.304241806, 2.517820978, 0.79482648,  0.521469875, 0.248081032,
    1.106676749, 0.595813587, 0.394060358, 0.617413885, 0.536267691, 0.449286194, 0.761587812,
    0.19053397,  0.466695389, 0.169191586, 0.183505813, 4.146558508};
constexpr std::array<double, 26> kJapanese = {
    4.146558508, 1.72386343,  2.689478782, 2.944064411, 1.560960107, 0.195169199, 0.060596888,
    0.842454144, 0.910920758, 0.184938556, 0.383255645, 0.573703009, 1.924147951, 0.021641746,
    0.145589927, 0.042890005, 1.445668624, 0.795235789, 0.954597736, 0.552848235, 0.284884073,
    0.074762395, 1.30716145,  1.892275561, 0.342333071, 1.0};

}  // namespace

PhonProbGrader::PhonProbGrader(LanguageType language)
    : m_eLanguage(language),
      m_nNumOfPhonemes(static_cast<int>(veral3::PhonemeNormalisersOf(language).size())) {
  if (m_nNumOfPhonemes == 0) {
    veral3::Message(veral3::MessageStream::kError)
        << "Unkonwn Language Type in PhonProbGrader::PhonProbGrader()\n";
  }
}

int PhonProbGrader::ComputePhonScore(char phoneme, std::span<const double> distribution) const {
  const CPhonemeSet* set = veral3::PhonemeSetOf(m_eLanguage);
  std::size_t k = 0;
  double normaliser = 1.0;
  if (set) {
    k = static_cast<std::size_t>(std::max(set->GetPhonemeIndex(phoneme), 0));
    normaliser = veral3::PhonemeNormalisersOf(m_eLanguage)[k];
  } else {
    veral3::Message(veral3::MessageStream::kError)
        << "Unkonwn Language Type in PhonProbGrader::ComputePhonScore()\n";
  }
  double x = k < distribution.size() ? distribution[k] : 0.0;
  if (normaliser < 1.0) x = x / (normaliser * normaliser);
  if (x >= 1.0) return 100;
  if (!(x > 0.0)) return 0;
  return veral3::AtLeastZero(veral3::Truncate(100.0 + 25.0 * std::log10(x)));
}

namespace veral3 {

std::span<const double> PhonemeNormalisersOf(LanguageType language) {
  switch (language) {
    case kLanguageEnglish:
      return kEnglish;
    case kLanguageChinese:
      return kChinese;
    case kLanguageJapanese:
      return kJapanese;
  }
  return {};
}

const PhonProbGrader* PhonProbGraderOf(LanguageType language) {
  static const auto graders = []<std::size_t... kPlace>(std::index_sequence<kPlace...>) {
    return std::array{PhonProbGrader(Languages()[kPlace].language)...};
  }
  (std::make_index_sequence<kNumLanguages>());
  const LanguageRow* const row = FindLanguage(language);
  return row == nullptr ? nullptr : &graders[PlaceOf(*row)];
}

}  // namespace veral3
