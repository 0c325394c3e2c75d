#include "recognition/Dictionaries.h"

#include <array>
#include <mutex>
#include <new>
#include <string>
#include <string_view>

#include "common/MessageWriter.h"
#include "recognition/Languages.h"

namespace veral3 {
namespace {

using DictionaryPointer = std::shared_ptr<const VeralDictionary>;

constexpr std::size_t kPathBuffer = 1024;  // the closing zero included

struct Loaded {
  Loaded() {
    for (DictionaryPointer& dictionary : dictionaries) {
      dictionary = std::make_shared<const VeralDictionary>();
    }
  }

  std::mutex mutex;
  std::array<DictionaryPointer, kNumLanguages> dictionaries;  // in the order of Languages()
};

Loaded& TheLoaded() {
  static Loaded loaded;
  return loaded;
}

}  // namespace

DictionaryPointer DictionaryOf(LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  if (row == nullptr) return nullptr;
  Loaded& loaded = TheLoaded();
  const std::lock_guard lock(loaded.mutex);
  return loaded.dictionaries[PlaceOf(*row)];
}

void LoadDictionaries(const char* folder) noexcept try {
  if (folder == nullptr) {
    Message(MessageStream::kError)
        << "ERROR in AnalyzedAudio::LoadResourceInFolderPath(), no folder path\n";
    return;
  }
  const std::string_view prefix(folder);
  for (const LanguageRow& row : Languages()) {
    if (prefix.size() + std::string_view(row.dictionary).size() >= kPathBuffer) {
      Message(MessageStream::kError)
          << "ERROR in AnalyzedAudio::LoadResourceInFolderPath(), folder path is too long\n";
      return;
    }
  }
  std::array<DictionaryPointer, kNumLanguages> dictionaries;
  for (const LanguageRow& row : Languages()) {
    const std::string path = std::string(prefix).append(row.dictionary);
    dictionaries[PlaceOf(row)] = std::make_shared<const VeralDictionary>(path.c_str());
  }
  Loaded& loaded = TheLoaded();
  const std::lock_guard lock(loaded.mutex);
  // The former ones end behind the lock, if nobody else holds them.
  loaded.dictionaries.swap(dictionaries);
} catch (const std::bad_alloc&) {
  Message(MessageStream::kError)
      << "ERROR in AnalyzedAudio::LoadResourceInFolderPath(), out of memory\n";
}

}  // namespace veral3
