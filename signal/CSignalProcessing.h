#pragma once

#include <cstdint>

#include "signal/CWaveFrameDef.h"
#include "signal/HParm.h"

// The front end: samples to feature rows. There is one object in the process, FrontEnd(). For one
// utterance, all on one thread:
//
//   veral3::IOConfigRec config;
//   FrontEnd().SetUpUtterance(config, num_samples, CWaveFrameDef(), {1, 1, 1});
//   for each frame: FrontEnd().ConvertFrameSamples(config, samples, row),
//                   samples += config.frRate, row += config.nCols
//   if (config.eNormalise) FrontEnd().NormaliseUtteranceEnergy(config, rows, num_frames);
//   FrontEnd().AddDerivatives(config, rows);
//   FrontEnd().ReleaseUtterance();
//
// Each thread has an utterance of its own (work heap "InBuf", counts), so any number of them may
// be at work at once. veral3::ComputeMfcc (Mfcc.h) is all of this in one call.
class CSignalProcessing {
 public:
  // What the caller of SetUpUtterance decides, a byte each.
  struct Switches {
    veral3::Boolean energy_normalise;
    veral3::Boolean zero_mean_cepstra;  // subtract the utterance's mean from the cepstra
    veral3::Boolean zero_mean_source;   // subtract each frame's mean from its samples
  };

  // Starts the toolkit. Once a front end was destroyed it cannot start again: the process ends
  // with -1.
  CSignalProcessing();
  virtual ~CSignalProcessing();
  CSignalProcessing(const CSignalProcessing&) = delete;
  CSignalProcessing& operator=(const CSignalProcessing&) = delete;

  // Fills `config` for an utterance. Its vectors stay valid until the utterance is released or
  // another is set up on the thread. False when the front end is not ready.
  bool SetUpUtterance(veral3::IOConfigRec& config, std::int32_t num_samples,
                      const CWaveFrameDef& frame_def, Switches switches);

  // One frame: config.frSize samples to config.nCvrt values at `row`. False when the conversion
  // gave another number of values.
  bool ConvertFrameSamples(veral3::IOConfigRec& config, const std::int16_t* samples, float* row);

  // Log energy of all rows; after the last frame.
  void NormaliseUtteranceEnergy(const veral3::IOConfigRec& config, float* rows,
                                std::int32_t num_frames);

  // Derivatives and mean removal for the NumFrames() rows of the utterance.
  void AddDerivatives(veral3::IOConfigRec& config, float* rows);

  void ReleaseUtterance();

  // Of the calling thread's utterance. The frame count is (samples - length) / shift + 1 with the
  // quotient truncated toward zero: an utterance shorter than a frame must not be set up.
  std::int32_t RowLength() const;
  std::int32_t NumFrames() const;
  std::int32_t FrameShift() const;
  std::int32_t FrameLength() const;

 protected:
  veral3::Boolean m_bReady = 0;
};

// The process's front end, built when the library is loaded.
CSignalProcessing& FrontEnd();
