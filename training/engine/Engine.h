#pragma once

#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "training/corpus/Utterance.h"

namespace veral3::training {

// What the programs that run the engine over corpora begin with.
struct EngineFiles {
  std::string resources = "resources/";  // folder of dictionaries and models
  bool goodness = true;                  // load the goodness model, too
  // Models to load in place of those in the folder; empty: those in the folder.
  std::string frame_model = {};
  std::string phoneme_model = {};
  std::string goodness_model = {};
};

// Loads the dictionaries, the models of one language that `files.resources` has, and the goodness
// model. The engine's messages are dropped. Throws std::runtime_error when the language's
// dictionary, frame model or phoneme model is missing, or a wanted goodness model is.
void LoadEngine(LanguageType language, const EngineFiles& files);

// "English", "Chinese", "Japanese".
std::string NameOfLanguage(LanguageType language);

// All utterances of some corpora, at most `most` of each (0: all).
std::vector<Utterance> ReadCorpora(const std::vector<std::string>& paths, std::size_t most = 0);

}  // namespace veral3::training
