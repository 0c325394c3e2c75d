#include "recognition/Dictionaries.h"

#include <array>
#include <mutex>
#include <new>
#include <string>
#include <string_view>

#include "common/MessageWriter.h"

namespace veral3 {
namespace {

using DictionaryPointer = std::shared_ptr<const VeralDictionary>;

constexpr std::size_t kPathBuffer = 1024;  // the closing zero included
constexpr std::array<std::string_view, 3> kFileNames = {"KEN-UTF8Order.txt", "KCN-UTF8Order.txt",
                                                        "KJP-UTF8Order.txt"};

struct Loaded {
  std::mutex mutex;
  std::array<DictionaryPointer, 3> dictionaries = {std::make_shared<const VeralDictionary>(),
                                                   std::make_shared<const VeralDictionary>(),
                                                   std::make_shared<const VeralDictionary>()};
};

Loaded& TheLoaded() {
  static Loaded loaded;
  return loaded;
}

}  // namespace

DictionaryPointer DictionaryOf(LanguageType language) {
  if (language < kLanguageEnglish || language > kLanguageJapanese) return nullptr;
  Loaded& loaded = TheLoaded();
  const std::lock_guard lock(loaded.mutex);
  return loaded.dictionaries[static_cast<std::size_t>(language - kLanguageEnglish)];
}

void LoadDictionaries(const char* folder) noexcept try {
  if (folder == nullptr) {
    Message(MessageStream::kError)
        << "ERROR in AnalyzedAudio::LoadResourceInFolderPath(), no folder path\n";
    return;
  }
  const std::string_view prefix(folder);
  for (const std::string_view name : kFileNames) {
    if (prefix.size() + name.size() >= kPathBuffer) {
      Message(MessageStream::kError)
          << "ERROR in AnalyzedAudio::LoadResourceInFolderPath(), folder path is too long\n";
      return;
    }
  }
  std::array<DictionaryPointer, 3> dictionaries;
  for (std::size_t i = 0; i < dictionaries.size(); ++i) {
    const std::string path = std::string(prefix).append(kFileNames[i]);
    dictionaries[i] = std::make_shared<const VeralDictionary>(path.c_str());
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
