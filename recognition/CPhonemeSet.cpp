#include "recognition/CPhonemeSet.h"

#include <string_view>

#include "common/MessageWriter.h"
#include "recognition/CPhonemeSetKCP.h"
#include "recognition/CPhonemeSetKEP5.h"
#include "recognition/CPhonemeSetKJP.h"
#include "recognition/Languages.h"

int CPhonemeSet::GetPhonemeIndex(char c) const {
  const auto place = std::string_view(m_strFullSet).find(c);
  return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

int CPhonemeSet::GetStateIndex(char c, int nState) const {
  if (nState > 3) {
    veral3::Message(veral3::MessageStream::kError)
        << "Error: incorrect state in CPhonemeSet, cPhon =[" << c << "], nState=[" << nState
        << "]\n";
    nState = 3;
  }
  const int index = GetPhonemeIndex(c);
  return index < 0 ? -1 : index * 3 + nState;
}

namespace {

bool Contains(std::wstring_view symbols, wchar_t c) {
  return symbols.find(c) != std::wstring_view::npos;
}

}  // namespace

CPhonemeSetKEP5::CPhonemeSetKEP5()
    : CPhonemeSet("iIE{AOuUV@3pbtdkgmnNlfvTDszSZrchCJjw-", "sEEAAOuwOuubbtlddbddlffldssssuuhtdsw-",
                  kEnglish) {}
bool CPhonemeSetKEP5::IsVowel(wchar_t c) const { return Contains(L"iIE{AOuUV@3", c); }
bool CPhonemeSetKEP5::IsConsonant(wchar_t c) const {
  return Contains(L"pbtdkgmnNlfvTDszSZrchCJjw", c);
}

CPhonemeSetKCP::CPhonemeSetKCP()
    : CPhonemeSet("ao@EMRiuU()bpmfdtnlgkhjqxZCSrzcs-", "ao@Ea@iuu--bbbfdddlddddddZZZZiii-",
                  kChinese) {}
bool CPhonemeSetKCP::IsVowel(wchar_t c) const { return Contains(L"ao@EMRiuU()", c); }
bool CPhonemeSetKCP::IsConsonant(wchar_t c) const { return Contains(L"bpmfdtnlgkhjqxZCSrzcs", c); }

CPhonemeSetKJP::CPhonemeSetKJP()
    : CPhonemeSet("aeioubpdtXYgkfhcsCrjZzmnw-", "aeioubbdtttddhhhssusssbdu-", kJapanese) {}
bool CPhonemeSetKJP::IsVowel(wchar_t c) const { return Contains(L"aeiou", c); }
bool CPhonemeSetKJP::IsConsonant(wchar_t c) const { return Contains(L"pdtXYgkfhcsCrjZzmnw", c); }

namespace veral3 {

const CPhonemeSet* PhonemeSetOf(LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  return row == nullptr ? nullptr : row->phonemes;
}

}  // namespace veral3
