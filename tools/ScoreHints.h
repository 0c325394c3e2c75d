#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/SoundSigns.h"

// What speaks for why a recording does not pass for a reading of its sentence. Each hint is a
// question to plain numbers with a threshold of its own; one that the numbers do not answer is not
// given. The thresholds lie between what synthesised recordings measure before and after noise,
// clipping, a cut or another sentence is put to them; docs/command.md states them.
namespace veral3::tools {

// Scores that keep less than this share are told of.
inline constexpr double kTellLoweredBelow = 0.9;

// Noise: the loud parts of the speech are less than this above the softest of the recording.
inline constexpr double kNoisyRangeDb = 12.0;
bool IsNoisy(double range_db);

// Clipping: at least this share of the samples lies flat at the extremes.
inline constexpr double kClippedShare = 0.01;
bool IsClipped(double clipped_share);

// Cut off: the speech reaches the edge of the recording, and the frame there is nearly as loud as
// the speech and far above the softest of the recording.
inline constexpr double kCutGapSeconds = 0.1;
inline constexpr double kCutLevelDb = -8.0;     // over the speech's loud level, at least
inline constexpr double kCutOverSoftDb = 10.0;  // over the recording's soft level, at least
// `edge_db`: of the first or last frame over the loud level; `range_db`: the loud level over the
// soft one; `gap_s`: from the edge to the speech.
bool IsCutOff(double edge_db, double range_db, double gap_s);

// Another sentence: at least this share of the sounds is unlike those of the sentence. Noise,
// clipping and cuts make sounds unlike too; beside them it takes more, and where noise is as loud
// as speech nothing is told.
inline constexpr double kUnlikeShare = 0.5;
inline constexpr double kUnlikeShareBesideOthers = 0.7;
inline constexpr double kUnlikeLeastRangeDb = 5.0;
bool IsOtherSentence(int phonemes, int unlike, double range_db, bool beside_others);

// More than the sentence: at least this much loud sound before or after it.
inline constexpr double kMoreSoundSeconds = 0.3;
bool HasMoreSound(double before_s, double after_s);

// The numbers.
struct RecordingSigns {
  double clipped_share = 0.0;  // ClippedShare of the untouched recording
  std::optional<SoundLevels> levels;
  double start_gap_s = 0.0;  // from the recording's start to the first phoneme
  double end_gap_s = 0.0;    // from the last phoneme's end to the recording's
  int phonemes = 0;
  int unlike = 0;              // phonemes that sound like another one
  double loud_before_s = 0.0;  // of frames above 0.3 of the speech's mean energy, before the speech
  double loud_after_s = 0.0;   // likewise after it
};

// A hint with the numbers that it rests on.
struct ScoreHint {
  std::string
      reason;        // "noise", "clipping", "cut_start", "cut_end", "other_sentence", "more_sound"
  std::string text;  // in words, ASCII
};

// All that the numbers tell, in the order above. From this share of clipped samples on levels say
// nothing any more: neither noise nor a cut is told then.
inline constexpr double kLevelsHoldUpToClipped = 0.05;
std::vector<ScoreHint> HintsOf(const RecordingSigns& signs);

}  // namespace veral3::tools
