#include "storage/HLYFile.h"

#include <algorithm>
#include <cstring>
#include <string_view>

HLYFile::HLYFile(AudioFileType audio_type, L2Type l2_type, SubL2Type sub_l2_type,
                 std::uint32_t reserved1, std::uint32_t reserved2, const CString& teacher,
                 const CString& sentence, const char* mbcs_sentence, std::uint32_t date,
                 std::int16_t* samples, std::uint32_t num_samples, std::uint8_t version,
                 int align_info_size, unsigned char* align_info)
    : m_nAudioType(audio_type),
      m_nL2Type(l2_type),
      m_nSubL2Type(sub_l2_type),
      m_nReserved1(reserved1),
      m_nReserved2(reserved2),
      m_strTeacherID(teacher),
      m_strSentence(sentence),
      m_nDate(date),
      m_pSamples(samples),
      m_nNumOfSamples(num_samples),
      m_nVersion(version),
      m_nAlignInfoSize(align_info_size),
      m_pAlignInfo(align_info) {
  SetMBCSSentence(mbcs_sentence);
}

void HLYFile::SetReserved(std::uint32_t first, std::uint32_t second) {
  m_nReserved1 = first;
  m_nReserved2 = second;
}

void HLYFile::SetMBCSSentence(const char* sentence) {
  // The source may be this object's own array.
  const std::string_view text(sentence ? sentence : "");
  const std::size_t length = std::min<std::size_t>(text.size(), kMBCSSize - 1);
  std::memmove(m_strMBCSSentence, text.data(), length);
  std::fill(m_strMBCSSentence + length, m_strMBCSSentence + kMBCSSize, '\0');
}

void HLYFile::SetSamples(std::int16_t* samples, std::uint32_t num_samples) {
  m_pSamples = samples;
  m_nNumOfSamples = num_samples;
}

void HLYFile::SetAlignInfo(unsigned char* align_info, int size) {
  m_pAlignInfo = align_info;
  m_nAlignInfoSize = size;
}
