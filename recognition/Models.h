#pragma once

#include "recognition/DLCTToneClassifier.h"
#include "recognition/DLFrameClassifier.h"
#include "recognition/DLPhonClassifier.h"
#include "recognition/ModelFileType.h"
#include "recognition/UGClassifier.h"

// The classifiers of the process: empty at first, filled by LoadModelFile, read by every analysis.
namespace veral3 {

// The classifier of a phoneme set's language (CPhonemeSet::GetIdentifier); null for an identifier
// that names no language. What comes back may be without a model: ask IsLoaded.
const DLFrameClassifier* FrameClassifierOf(int phoneme_set_identifier);
const DLPhonClassifier* PhonClassifierOf(int phoneme_set_identifier);
const DLCTToneClassifier& ToneClassifier();
const UGClassifier& GoodnessClassifier();

// Whoever reads the classifiers holds one of these meanwhile, so that no model is replaced under
// it. Any number may be held at once, also several by one thread. Taking one while a model is being
// loaded waits for the load's end.
class ModelsInUse {
 public:
  ModelsInUse();
  ~ModelsInUse();
  ModelsInUse(const ModelsInUse&) = delete;
  ModelsInUse& operator=(const ModelsInUse&) = delete;
};

// Loads a model file into the classifier of that type, replacing the model there. Returns the
// model's version as the file has it; -1 after a message when the file is refused (the classifier
// is then without a model), `path` is null, or an analysis or another load is running (nothing is
// changed). A type that names no model comes back unchanged.
int LoadModelFile(const char* path, ModelFileType type);

}  // namespace veral3
