#include "recognition/Models.h"

#include <array>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>

#include "common/MessageWriter.h"
#include "recognition/Languages.h"
#include "recognition/ModelFit.h"

namespace veral3 {
namespace {

struct ModelSet {
  // In the order of Languages().
  std::array<DLFrameClassifier, kNumLanguages> frame;
  std::array<DLPhonClassifier, kNumLanguages> phon;
  DLCTToneClassifier tone;
  UGClassifier goodness;

  std::mutex mutex;  // guards what follows
  std::condition_variable load_ended;
  int users = 0;
  bool loading = false;
};

ModelSet& TheModels() {
  static ModelSet models;
  return models;
}

// Into the classifier that the type belongs to; a type that names no model comes back.
int Load(ModelSet& models, const char* path, ModelFileType type) {
  const ModelNeeds* const needs = NeedsOf(type);
  if (needs == nullptr) return type;
  switch (needs->use) {
    case ModelUse::kFrames:
      return models.frame[PlaceOf(*needs->language)].LoadFromFile(path);
    case ModelUse::kPhonemes:
      return models.phon[PlaceOf(*needs->language)].LoadFromFile(path);
    case ModelUse::kTones:
      return models.tone.LoadFromFile(path);
    case ModelUse::kGoodness:
      break;
  }
  return models.goodness.LoadFromFile(path);
}

// Shuts analyses out while a model is loaded, if none is running.
class ExclusiveUse {
 public:
  explicit ExclusiveUse(ModelSet& models) : m_models(models) {
    const std::lock_guard lock(models.mutex);
    m_granted = models.users == 0 && !models.loading;
    if (m_granted) models.loading = true;
  }
  ~ExclusiveUse() {
    if (!m_granted) return;
    {
      const std::lock_guard lock(m_models.mutex);
      m_models.loading = false;
    }
    m_models.load_ended.notify_all();
  }
  ExclusiveUse(const ExclusiveUse&) = delete;
  ExclusiveUse& operator=(const ExclusiveUse&) = delete;
  bool Granted() const { return m_granted; }

 private:
  ModelSet& m_models;
  bool m_granted = false;
};

}  // namespace

const DLFrameClassifier* FrameClassifierOf(int phoneme_set_identifier) {
  const LanguageRow* const row = FindLanguageOfPhonemeSet(phoneme_set_identifier);
  return row == nullptr ? nullptr : &TheModels().frame[PlaceOf(*row)];
}

const DLPhonClassifier* PhonClassifierOf(int phoneme_set_identifier) {
  const LanguageRow* const row = FindLanguageOfPhonemeSet(phoneme_set_identifier);
  return row == nullptr ? nullptr : &TheModels().phon[PlaceOf(*row)];
}

const DLCTToneClassifier& ToneClassifier() { return TheModels().tone; }

const UGClassifier& GoodnessClassifier() { return TheModels().goodness; }

ModelsInUse::ModelsInUse() {
  ModelSet& models = TheModels();
  std::unique_lock lock(models.mutex);
  models.load_ended.wait(lock, [&] { return !models.loading; });
  ++models.users;
}

ModelsInUse::~ModelsInUse() {
  ModelSet& models = TheModels();
  const std::lock_guard lock(models.mutex);
  --models.users;
}

int LoadModelFile(const char* path, ModelFileType type) {
  if (NeedsOf(type) == nullptr) return type;
  if (!path) {
    Message(MessageStream::kError) << "ERROR in AnalyzedAudio::LoadModelFile(), no path given.\n";
    return -1;
  }
  ModelSet& models = TheModels();
  const ExclusiveUse use(models);
  if (!use.Granted()) {
    Message(MessageStream::kError)
        << "ERROR in AnalyzedAudio::LoadModelFile(), the models are in use.\n";
    return -1;
  }
  try {
    return Load(models, path, type);
  } catch (const std::bad_alloc&) {
    Message(MessageStream::kError) << "ERROR in AnalyzedAudio::LoadModelFile(), out of memory\n";
    return -1;
  } catch (const std::exception& error) {
    Message(MessageStream::kError)
        << "ERROR in AnalyzedAudio::LoadModelFile(), " << error.what() << "\n";
    return -1;
  }
}

}  // namespace veral3
