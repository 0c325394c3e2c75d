#pragma once

class AlignedAudio;
class AnalyzedAudio;
class GradedAudio;

// Everything that a recording can be asked, for indices inside and outside.
namespace veral3::fuzz {

// Reads all of AlignedAudio's operations; counts, contours and the texts' ends are as promised.
void AskRecording(AlignedAudio& audio);

// Those of AnalyzedAudio too, and its exports.
void AskAnalysis(AnalyzedAudio& audio);

// All scores, advice, the report and the mismatch lines. With models that answer probabilities
// every score is within 0 to 100 and every letter one of those documented.
void AskScores(GradedAudio& audio, bool sound_models);

}  // namespace veral3::fuzz
