#include "recognition/Models.h"

#include <array>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>

#include "common/MessageWriter.h"
#include "recognition/CPhonemeSet.h"

namespace veral3 {
namespace {

struct ModelSet {
  // English, Chinese, Japanese.
  std::array<DLFrameClassifier, 3> frame;
  std::array<DLPhonClassifier, 3> phon;
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

// Place of a language in the arrays of ModelSet; -1 for no language.
int LanguagePlace(int phoneme_set_identifier) {
  switch (phoneme_set_identifier) {
    case CPhonemeSet::kEnglish:
      return 0;
    case CPhonemeSet::kChinese:
      return 1;
    case CPhonemeSet::kJapanese:
      return 2;
    default:
      return -1;
  }
}

bool NamesModel(ModelFileType type) {
  return (type >= kFrameModelEnglish && type <= kUttGoodnessModel) ||
         (type >= kPhonemeModelEnglish && type <= kPhonemeModelJapanese);
}

int Load(ModelSet& models, const char* path, ModelFileType type) {
  switch (type) {
    case kToneModelChinese:
      return models.tone.LoadFromFile(path);
    case kUttGoodnessModel:
      return models.goodness.LoadFromFile(path);
    case kFrameModelEnglish:
    case kFrameModelChinese:
    case kFrameModelJapanese:
      return models.frame[static_cast<std::size_t>(type)].LoadFromFile(path);
    default:
      return models.phon[static_cast<std::size_t>(type - kPhonemeModelEnglish)].LoadFromFile(path);
  }
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
  const int place = LanguagePlace(phoneme_set_identifier);
  return place < 0 ? nullptr : &TheModels().frame[static_cast<std::size_t>(place)];
}

const DLPhonClassifier* PhonClassifierOf(int phoneme_set_identifier) {
  const int place = LanguagePlace(phoneme_set_identifier);
  return place < 0 ? nullptr : &TheModels().phon[static_cast<std::size_t>(place)];
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
  if (!NamesModel(type)) return type;
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
