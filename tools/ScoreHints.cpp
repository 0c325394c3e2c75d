#include "tools/ScoreHints.h"

#include <algorithm>

#include "tools/Numbers.h"

namespace veral3::tools {

bool IsNoisy(double range_db) { return range_db < kNoisyRangeDb; }

bool IsClipped(double clipped_share) { return clipped_share >= kClippedShare; }

bool IsCutOff(double edge_db, double range_db, double gap_s) {
  return gap_s <= kCutGapSeconds && edge_db >= kCutLevelDb && edge_db + range_db >= kCutOverSoftDb;
}

bool IsOtherSentence(int phonemes, int unlike, double range_db, bool beside_others) {
  const double least = beside_others ? kUnlikeShareBesideOthers : kUnlikeShare;
  return phonemes > 0 && unlike >= least * phonemes && range_db >= kUnlikeLeastRangeDb;
}

bool HasMoreSound(double before_s, double after_s) {
  return before_s >= kMoreSoundSeconds || after_s >= kMoreSoundSeconds;
}

std::vector<ScoreHint> HintsOf(const RecordingSigns& signs) {
  std::vector<ScoreHint> hints;
  if (!signs.levels) return hints;
  const SoundLevels& levels = *signs.levels;
  const bool levels_hold = signs.clipped_share < kLevelsHoldUpToClipped;
  const bool noisy = levels_hold && IsNoisy(levels.range_db);
  if (noisy) {
    hints.push_back({"noise", "noise: loud speech is only " +
                                  Fixed(std::max(levels.range_db, 0.0), 0) +
                                  " dB above the softest parts of the recording"});
  }
  if (IsClipped(signs.clipped_share)) {
    hints.push_back({"clipping", "clipping: " + Fixed(100.0 * signs.clipped_share, 0) +
                                     " % of the samples lie flat at the highest or lowest value"});
  }
  if (levels_hold && IsCutOff(levels.start_db, levels.range_db, signs.start_gap_s)) {
    hints.push_back({"cut_start", "cut off: the recording starts in loud speech"});
  }
  if (levels_hold && IsCutOff(levels.end_db, levels.range_db, signs.end_gap_s)) {
    hints.push_back({"cut_end", "cut off: the recording ends in loud speech"});
  }
  if (IsOtherSentence(signs.phonemes, signs.unlike, levels.range_db, !hints.empty())) {
    hints.push_back({"other_sentence", "another sentence: " + std::to_string(signs.unlike) +
                                           " of " + std::to_string(signs.phonemes) +
                                           " sounds are unlike the sentence's"});
  }
  // Noise is loud around the sentence too.
  if (!noisy && HasMoreSound(signs.loud_before_s, signs.loud_after_s)) {
    hints.push_back({"more_sound", "more than the sentence: " + Fixed(signs.loud_before_s, 1) +
                                       " s of loud sound before it, " +
                                       Fixed(signs.loud_after_s, 1) + " s after it"});
  }
  return hints;
}

}  // namespace veral3::tools
