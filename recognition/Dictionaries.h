#pragma once

#include <memory>

#include "common/LanguageType.h"
#include "recognition/VeralDictionary.h"

// The process-wide dictionaries, one a language.
namespace veral3 {

// The dictionary of a language as it is loaded now; without words before that. Null for a value
// that names no language. Whoever holds it keeps it through later loads.
std::shared_ptr<const VeralDictionary> DictionaryOf(LanguageType language);

// Loads the dictionaries of all languages (recognition/Languages.h has their files). Their names
// are put right behind `folder`, which ends with its separator. Replaces all at once, by what could
// be read of them, for those who ask afterwards. A null folder, one whose paths pass 1023 bytes,
// and memory that runs out are reported and change nothing.
void LoadDictionaries(const char* folder) noexcept;

}  // namespace veral3
