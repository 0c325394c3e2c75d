// Lists the words of ICU's Chinese and Japanese break dictionary, one a line: the word, its cost
// (about -10 ln of its probability) and its simplified form, separated by tabs.
#include <unicode/translit.h>
#include <unicode/ucharstrie.h>
#include <unicode/udata.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

int main() {
  UErrorCode error = U_ZERO_ERROR;
  UDataMemory* const data = udata_open(U_ICUDATA_NAME "-brkitr", "dict", "cjdict", &error);
  const std::unique_ptr<icu::Transliterator> simplify(
      icu::Transliterator::createInstance("Traditional-Simplified", UTRANS_FORWARD, error));
  if (U_FAILURE(error)) {
    std::cerr << "ListCjkWords: " << u_errorName(error) << "\n";
    return 1;
  }
  // The data begin with eight numbers, of which the first is the place of the trie.
  const auto* const bytes = static_cast<const char*>(udata_getMemory(data));
  const std::int32_t place = *reinterpret_cast<const std::int32_t*>(bytes);
  icu::UCharsTrie::Iterator words(reinterpret_cast<const char16_t*>(bytes + place), 0, error);
  while (words.next(error)) {
    icu::UnicodeString simplified = words.getString();
    simplify->transliterate(simplified);
    std::string word_utf8;
    std::string simplified_utf8;
    words.getString().toUTF8String(word_utf8);
    simplified.toUTF8String(simplified_utf8);
    std::cout << word_utf8 << '\t' << words.getValue() << '\t' << simplified_utf8 << '\n';
  }
  udata_close(data);
  return U_FAILURE(error) ? 1 : 0;
}
