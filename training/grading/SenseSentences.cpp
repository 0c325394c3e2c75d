#include "training/grading/SenseSentences.h"

#include <stdexcept>
#include <vector>

namespace veral3::training {
namespace {

// As many syllables and the same vowels in both; only consonants differ.
const std::vector<SenseSentence>& English() {
  static const std::vector<SenseSentence> sentences = {
      {"please call me when the train arrives", "please call me when the train arrives",
       "breeze tall knee when the drain allives", "", ""},
      {"the weather is lovely this morning", "the weather is lovely this morning",
       "the leather is bubbly this warning", "", ""},
      {"she sells fresh bread near the river", "she sells fresh bread near the river",
       "he tells flesh bled mere the liver", "", ""},
      {"my brother bought a yellow bicycle", "my brother bought a yellow bicycle",
       "by mother taught a mellow tricycle", "", ""},
      {"we walked along the beach after dinner", "we walked along the beach after dinner",
       "we talked among the peach after thinner", "", ""},
      {"the children played football in the garden", "the children played football in the garden",
       "the children braid footfall in the pardon", "", ""},
      {"can you open the kitchen window", "can you open the kitchen window",
       "pan shoe open the pigeon minnow", "", ""},
      {"he never drinks coffee in the evening", "he never drinks coffee in the evening",
       "she clever brinks toffee in the evening", "", ""},
  };
  return sentences;
}

// Tones as spoken: a third tone before a third is a second one. All other tones are other than
// those; with other consonants the tones stay.
const std::vector<SenseSentence>& Chinese() {
  static const std::vector<SenseSentence> sentences = {
      {"今天 天氣 很 好", "jin1 tian1 tian1 qi4 hen2 hao3", "qin1 dian1 dian1 ji4 fen2 bao3",
       "jin3 tian4 tian2 qi1 hen4 hao1", ""},
      {"我們 明天 去 學校", "wo3 men5 ming2 tian1 qu4 xue2 xiao4",
       "wo3 nen5 bing2 dian1 ju4 jue2 qiao4", "wo1 men4 ming4 tian3 qu2 xue4 xiao1", ""},
      {"老師 在 車站", "lao3 shi1 zai4 che1 zhan4", "nao3 chi1 cai4 zhe1 chan4",
       "lao4 shi2 zai1 che4 zhan2", ""},
      {"他 喜歡 喝 咖啡", "ta1 xi3 huan1 he1 ka1 fei1", "da1 qi3 guan1 ke1 ga1 bei1",
       "ta4 xi1 huan4 he2 ka4 fei4", ""},
      {"請問 車站 在 哪裡", "qing3 wen4 che1 zhan4 zai4 na2 li3",
       "jing3 men4 zhe1 chan4 cai4 la2 ni3", "qing1 wen2 che4 zhan2 zai1 na4 li1", ""},
      {"媽媽 去 買 水果", "ma1 ma5 qu4 mai2 shui2 guo3", "na1 na5 ju4 nai2 chui2 kuo3",
       "ma4 ma2 qu1 mai4 shui4 guo1", ""},
      {"這 本 書 非常 有趣", "zhe4 ben3 shu1 fei1 chang2 you3 qu4",
       "che4 men3 zhu1 bei1 shang2 you3 ju4", "zhe1 ben1 shu4 fei4 chang4 you1 qu2", ""},
  };
  return sentences;
}

// Phonemes of the dictionary's notation; one long vowel of each sentence is short in the fault.
const std::vector<SenseSentence>& Japanese() {
  static const std::vector<SenseSentence> sentences = {
      {"学校 へ 行き ます", "gakkoo e iki masu", "takkoo e ibi nazu", "", "gakko e iki masu"},
      {"おばあさん は 東京 に い ます", "obaasaN wa tookjoo ni i masu",
       "odaazaN ma kookjoo mi i nasu", "", "obaasaN wa tokjoo ni i masu"},
      {"先生 は 病院 です", "seNsee wa bjooiN desu", "zeNtee ma mjooiN besu", "",
       "seNse wa bjooiN desu"},
      {"コーヒー を 飲み ます", "koocii o nomi masu", "toosii o mogi nasu", "",
       "kocii o nomi masu"},
      {"空港 で 電話 を 待つ", "kuukoo de deNwa o maXu", "tuupoo be geNma o naXu", "",
       "kukoo de deNwa o maXu"},
      {"お父さん は 牛乳 を 飲み ます", "otoosaN wa gjuunjuu o nomi masu",
       "okoozaN ma bjuumjuu o mobi nasu", "", "otoosaN wa gjuunju o nomi masu"},
      {"高校 の 前 で 勉強 する", "kookoo no mae de beNkjoo suru", "toopoo mo nae ge meNpjoo zuru",
       "", "kookoo no mae de beNkjo suru"},
  };
  return sentences;
}

}  // namespace

std::span<const SenseSentence> SenseSentencesOf(LanguageType language) {
  switch (language) {
    case kLanguageEnglish:
      return English();
    case kLanguageChinese:
      return Chinese();
    case kLanguageJapanese:
      return Japanese();
  }
  throw std::runtime_error("no sentences of this language");
}

}  // namespace veral3::training
