#pragma once

#include <cstdint>

#include "common/CString.h"
#include "common/Export.h"

// A tutor's recording as an application's reader hands it to the engine: the sound, the sentence
// read, who read it, and the alignment record that spares analysing it again.
//
//   HLYFile file;
//   file.SetHLYVersion(5);                               // 5 and above carry an alignment record
//   file.SetSentence(L"Good morning");
//   file.SetSamples(samples.data(), num_samples);
//   file.SetAlignInfo(record.data(), static_cast<int>(record.size()));
//   SavedAlignedAudio tutor(kLanguageEnglish);
//   tutor.LoadFromHLY(&file);
//
// The samples and the record stay the caller's: a copy of an HLYFile refers to the same ones, and
// they must live as long as it is read. Texts are copied. Nothing is checked here.
class VERAL3_API HLYFile {
 public:
  // The engine reads none of the three; an application may use values of its own.
  enum AudioFileType : std::int32_t { kAudioUnknown = 0, kAudioWave = 1 };
  enum L2Type : std::int32_t { kL2Unknown = 0, kL2English = 1, kL2Chinese = 2, kL2Japanese = 3 };
  enum SubL2Type : std::int32_t {
    kSubL2Unknown = 0,
    kSubL2American = 1,
    kSubL2Taiwan = 2,
    kSubL2Tokyo = 3,
  };

  // Bytes of the multibyte sentence, its zero byte among them.
  static constexpr int kMBCSSize = 2048;

  HLYFile() = default;

  // All fields at once, as the setters take them.
  HLYFile(AudioFileType audio_type, L2Type l2_type, SubL2Type sub_l2_type, std::uint32_t reserved1,
          std::uint32_t reserved2, const CString& teacher, const CString& sentence,
          const char* mbcs_sentence, std::uint32_t date, std::int16_t* samples,
          std::uint32_t num_samples, std::uint8_t version, int align_info_size,
          unsigned char* align_info);

  AudioFileType GetOriginalAudioType() const { return m_nAudioType; }
  L2Type GetL2Type() const { return m_nL2Type; }
  SubL2Type GetSubL2Type() const { return m_nSubL2Type; }
  CString GetTeacherID() const { return m_strTeacherID; }
  CString GetSentence() const { return m_strSentence; }

  // The sentence in the application's multibyte code page, zero-terminated; owned by the object.
  const char* GetMBCSSentence() const { return m_strMBCSSentence; }
  char* GetMBCSSentence() { return m_strMBCSSentence; }

  std::uint32_t GetDate() const { return m_nDate; }  // as the application writes dates
  std::int16_t* GetSamples() const { return m_pSamples; }
  std::uint32_t GetNumOfSamples() const { return m_nNumOfSamples; }
  std::uint8_t GetHLYVersion() const { return m_nVersion; }
  int GetAlignInfoSize() const { return m_nAlignInfoSize; }  // [bytes]
  unsigned char* GetAlignInfo() const { return m_pAlignInfo; }

  void SetOriginalAudioType(AudioFileType type) { m_nAudioType = type; }
  void SetL2Type(L2Type type) { m_nL2Type = type; }
  void SetSubL2Type(SubL2Type type) { m_nSubL2Type = type; }

  // Two words that copies carry along and that nobody reads.
  void SetReserved(std::uint32_t first, std::uint32_t second);

  void SetTeacherID(const CString& teacher) { m_strTeacherID = teacher; }
  void SetSentence(const CString& sentence) { m_strSentence = sentence; }

  // Takes what fits and ends it with a zero byte; null is an empty text.
  void SetMBCSSentence(const char* sentence);

  void SetDate(std::uint32_t date) { m_nDate = date; }
  void SetSamples(std::int16_t* samples, std::uint32_t num_samples);
  void SetHLYVersion(std::uint8_t version) { m_nVersion = version; }
  void SetAlignInfo(unsigned char* align_info, int size);

 private:
  AudioFileType m_nAudioType = kAudioUnknown;
  L2Type m_nL2Type = kL2Unknown;
  SubL2Type m_nSubL2Type = kSubL2Unknown;
  std::uint32_t m_nReserved1 = 0;
  std::uint32_t m_nReserved2 = 0;
  CString m_strTeacherID;
  CString m_strSentence;
  char m_strMBCSSentence[kMBCSSize] = {};
  std::uint32_t m_nDate = 0;
  std::int16_t* m_pSamples = nullptr;
  std::uint32_t m_nNumOfSamples = 0;
  std::uint8_t m_nVersion = 0;
  int m_nAlignInfoSize = 0;
  unsigned char* m_pAlignInfo = nullptr;
};
