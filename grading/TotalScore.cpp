#include "grading/TotalScore.h"

#include <algorithm>
#include <cmath>

#include "common/MessageWriter.h"

namespace veral3 {
namespace {

struct Weights {
  double pronunciation, pitch, timing, intensity;
};

// Rows for utterances of any other number of syllables, of 1, 2 and 3.
constexpr Weights kChinese[] = {
    {0.5, 0.2, 0.2, 0.1}, {0.7, 0.3, 0.0, 0.0}, {0.7, 0.2, 0.05, 0.05}, {0.65, 0.2, 0.1, 0.05}};
constexpr Weights kOthers[] = {
    {0.5, 0.2, 0.2, 0.1}, {1.0, 0.0, 0.0, 0.0}, {0.85, 0.05, 0.05, 0.05}, {0.75, 0.1, 0.1, 0.05}};

}  // namespace

double CombineScores(LanguageType language, int num_syllables, const ComponentScores& scores) {
  const auto* const table = language == kLanguageChinese ? kChinese : kOthers;
  const Weights& w = table[num_syllables >= 1 && num_syllables <= 3 ? num_syllables : 0];
  const double total = scores.pronunciation * w.pronunciation + scores.pitch * w.pitch +
                       scores.timing * w.timing + scores.intensity * w.intensity;
  if (total > 100.0) {
    Message(MessageStream::kError) << "Error! Total score more than 100!\n";
  }
  return total;
}

double GoodnessFactor(double probability) {
  if (!(probability > 0.0)) return 0.0;
  return -1.0 / (std::log(probability) - 1.0);
}

}  // namespace veral3
