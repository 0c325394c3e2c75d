#include "training/corpus/ChineseTexts.h"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>
#include <utility>

#include "training/corpus/Vocabulary.h"
#include "training/speech/ChineseSyllables.h"

namespace veral3::training {
namespace {

// Slots: P people, N things, V verbs with and J without an object, A qualities, T times, L places,
// D adverbs, K numbers, M measure words, W any word of the dictionary.
const Vocabulary& TrainingVocabulary() {
  static const Vocabulary vocabulary = {
      {'P',
       SplitWords("我 你 他 她 我們 你們 他們 大家 老師 學生 爸爸 媽媽 哥哥 姐姐 弟弟 妹妹 爺爺 "
                  "奶奶 朋友 同學 醫生 司機 先生 太太 小孩 孩子 鄰居 客人 老闆 警察 護士 經理 "
                  "叔叔 阿姨 校長 兒子 女兒")},
      {'N',
       SplitWords("書 電腦 手機 桌子 椅子 衣服 褲子 鞋子 帽子 汽車 房子 飯 麵 水果 蘋果 香蕉 牛奶 "
                  "咖啡 茶 麵包 雞蛋 蔬菜 筷子 杯子 照片 報紙 雜誌 電視 信 禮物 鑰匙 雨傘 眼鏡 "
                  "手錶 藥 票 地圖 球 狗 貓 花 樹 問題 作業 歌 電影 故事 湯 魚 牛肉 糖 鹽 刀 "
                  "耳朵 而 泉水 圓形 雲 軍隊 宇宙 熊")},
      {'V', SplitWords("看 買 賣 找 喜歡 討厭 需要 準備 洗 修理 借 送 拿 帶 丟 打開 檢查 研究 練習 "
                       "了解 忘記 記得 選擇 認識 歡迎 保護 使用 討論 吃 喝 畫 寫 聽 拍 搬 換 收")},
      {'J', SplitWords("睡覺 吃飯 上班 下班 上課 開車 跑步 游泳 唱歌 跳舞 休息 回家 旅行 散步 洗澡 "
                       "開會 運動 聊天 上學 讀書 起床 哭 笑 生氣 出去 結婚 工作 學習")},
      {'A', SplitWords("好 大 小 高 漂亮 便宜 貴 快 慢 新 舊 冷 熱 忙 累 高興 快樂 安靜 乾淨 重要 "
                       "簡單 困難 有名 方便 舒服 危險 聰明 認真 努力 可愛 遠 近 長 短 輕 重 圓 窮 "
                       "軟 硬 酸 甜 苦 辣")},
      {'T', SplitWords("今天 明天 昨天 後來 早上 晚上 中午 下午 現在 以前 以後 去年 今年 每天 週末 "
                       "最近 星期一 星期三 星期五 春天 夏天")},
      {'L', SplitWords("學校 公園 車站 醫院 圖書館 超市 銀行 郵局 餐廳 台北 高雄 台中 機場 家 公司 "
                       "市場 教室 海邊 山上 北京 上海 日本 美國 中國 廚房 商店 樓上 國外")},
      {'D', SplitWords("常常 已經 一定 大概 也許 馬上 慢慢 突然 一直 總是 經常 終於 可能 還是 只好 "
                       "其實 當然 恐怕 再 又 也 都 就")},
      {'K', SplitWords("一 二 兩 三 四 五 六 七 八 九 十 百 千 萬 半 幾")},
      {'M', SplitWords("本 張 隻 個 件 杯 條 輛 位 次 天 年 塊 分 點 雙 把 枝 片 份 碗 瓶")},
  };
  return vocabulary;
}

constexpr auto kTrainingTemplates = std::to_array<std::string_view>({
    "T P 要 去 L V N",
    "P 在 L V N",
    "P 的 N 很 A",
    "這 K M N 是 P 的",
    "P 想 V K M N",
    "P 跟 P 一起 去 L J",
    "T 的 N 比 N A",
    "請問 , L 怎麼 走",
    "P D V N , D V N",
    "P 把 N 送 給 P 了",
    "N 和 N 都 很 A",
    "P 不 喜歡 N",
    "P 會 不 會 J",
    "因為 N 很 A , 所以 P D J",
    "如果 P V N , P 就 J",
    "P 從 L 到 L 要 K 個 小時",
    "W W W W",
    "W , W , W",
    "P 說 W 很 A",
    "W 是 什麼",
    "P 覺得 W 比 W A",
    "T P 沒有 V N",
    "N 在 L 的 旁邊",
    "你 V 過 W 嗎",
    "P 已經 J 了",
    "雖然 W A , 但是 W A",
    "不要 在 L V N",
    "為什麼 P 不 V N 呢",
    "A 的 N 被 P V 了",
    "P T 都 J",
    "P 有 K M N , K M N",
    "W 的 W , W 的 W",
    "謝謝 P , 再見",
    "P 只 V A 的 N",
    "對不起 , P T 不 能 J",
    "K K K K K",
    "P 越 V 越 A",
    "W",
    "W W W W W W",
    "N 多少 錢",
    "第 K 次 V N 的 時候 , P 很 A",
    "P 到底 V 不 V N",
    "W 吧 , W 呢",
});

const Vocabulary& HeldOutVocabulary() {
  static const Vocabulary vocabulary = {
      {'P', SplitWords("祖父 祖母 農夫 律師 記者 導演 演員 教授 店員 軍人 工人 畫家 歌手 裁縫 和尚 "
                       "皇帝 國王 公主 嬰兒 乘客")},
      {'N',
       SplitWords("鋼琴 吉他 獅子 老虎 大象 兔子 猴子 葡萄 西瓜 鳳梨 枕頭 毛巾 牙刷 肥皂 鏡子 "
                  "冰箱 窗戶 地毯 蠟燭 火車 飛機 輪船 腳踏車 機車 辣椒 豆腐 蛋糕 餅乾 鉛筆 橡皮 "
                  "字典 黃瓜 雪 月亮 沙發 郵票 裙子 襪子")},
      {'V', SplitWords("欣賞 描寫 收集 參觀 觀察 搶 摸 推 拉 偷 撿 切 煮 烤 種 讚美 批評 模仿 介紹 "
                       "藏")},
      {'A', SplitWords("胖 瘦 深 淺 勇敢 溫柔 驕傲 懶惰 神秘 古老 新鮮 優美 奇怪 普通 豐富 健康 燙 "
                       "濕 堅強 幽默")},
      {'T', SplitWords("黃昏 半夜 清晨 秋天 冬天 寒假 暑假 明年 當年 星期六 星期四")},
      {'L', SplitWords("森林 沙漠 博物館 動物園 港口 教堂 監獄 花蓮 台南 德國 法國 英國 橋上 碼頭 "
                       "體育館 咖啡廳")},
      {'D', SplitWords("偷偷 悄悄 往往 漸漸 居然 幾乎 果然 從來")},
      {'K', SplitWords("二十 三十 一百 九千 七十 六百")},
  };
  return vocabulary;
}

constexpr auto kHeldOutTemplates = std::to_array<std::string_view>({
    "T , L 裡 有 K 個 P",
    "P D 對 N 感到 A",
    "除了 N 以外 , P 還 V N",
    "那些 A 的 N 屬於 P",
    "P 一邊 V N , 一邊 V N",
    "L 附近 的 N 特別 A",
    "誰 把 N 放 在 L 裡",
    "T P 打算 到 L V N",
    "與其 V N , 不如 V N",
    "P 向 P V A 的 N",
});

// Words for the slots of a template.
template <typename AnyWord>
Words Fill(std::string_view pattern, const Vocabulary& vocabulary, bool rare, Random& random,
           const AnyWord& any_word) {
  Words words = SplitWords(pattern);
  for (std::string& word : words) {
    if (word == "W") {
      word = any_word();
    } else if (const auto slot = vocabulary.find(word[0]); slot != vocabulary.end()) {
      // Common words teach the frequent sounds, the dictionary's the rare ones and their company.
      const bool is_rare =
          rare && (slot->first == 'N' || slot->first == 'A') && random.Chance(0.35);
      word = is_rare ? any_word() : random.Pick(slot->second);
    }
  }
  return words;
}

}  // namespace

std::string SpokenTones(std::string_view marks, const std::vector<bool>& bu,
                        const std::vector<bool>& pause_after) {
  std::string spoken(marks);
  for (std::size_t i = 0; i + 1 < marks.size(); ++i) {
    if (pause_after[i]) continue;
    if (marks[i] == '3' && marks[i + 1] == '3') spoken[i] = '2';
    if (bu[i] && marks[i + 1] == '4') spoken[i] = '2';
  }
  return spoken;
}

ChineseSentence WithSpokenTones(ChineseSentence sentence, std::string_view tones) {
  if (tones.size() != sentence.spoken_tones.size()) {
    throw std::runtime_error("tones are not one a syllable");
  }
  std::size_t syllable = 0;
  for (char& c : sentence.pinyin) {
    if (c >= '1' && c <= '5') c = tones[syllable++];
  }
  sentence.spoken_tones = tones;
  return sentence;
}

ChineseTexts::ChineseTexts(const std::string& path)
    : m_dictionary(ReadDictionaryFile(path.c_str())) {
  if (m_dictionary.words.empty()) throw std::runtime_error("no words in " + path);
  for (std::size_t i = 0; i < m_dictionary.words.size(); ++i) {
    m_places.emplace(m_dictionary.Word(i), i);
  }
}

ChineseSentence ChineseTexts::Draw(Random& random) const {
  return DrawFrom(random.Pick(kTrainingTemplates), false, random);
}

ChineseSentence ChineseTexts::DrawHeldOut(Random& random) const {
  return DrawFrom(random.Pick(kHeldOutTemplates), true, random);
}

ChineseSentence ChineseTexts::DrawFrom(std::string_view pattern, bool held_out,
                                       Random& random) const {
  const Vocabulary& vocabulary = held_out ? HeldOutVocabulary() : TrainingVocabulary();
  return Read(Fill(pattern, vocabulary, !held_out, random, [&] { return AnyWord(random); }),
              random);
}

std::string ChineseTexts::AnyWord(Random& random) const {
  static const std::set<std::string> held_out = [] {
    std::set<std::string> words;
    for (const auto& [slot, choices] : HeldOutVocabulary()) {
      words.insert(choices.begin(), choices.end());
    }
    return words;
  }();
  while (true) {
    const std::size_t place = random.Below(m_dictionary.words.size());
    std::string word(m_dictionary.Word(place));
    if (!held_out.contains(word) && !ParseVariants(m_dictionary, place).front().phonemes.empty()) {
      return word;
    }
  }
}

ChineseSentence ChineseTexts::Read(std::span<const std::string> words, Random& random) const {
  constexpr double kFirstReading = 0.85;
  ChineseSentence sentence;
  std::vector<bool> bu;
  std::vector<bool> pause_after;
  struct Spelling {
    std::string pinyin;
    std::string before;  // what stands between it and the one before
  };
  std::vector<Spelling> spellings;
  for (const std::string& word : words) {
    if (word == ",") {
      if (!spellings.empty()) pause_after.back() = true;
      continue;
    }
    const auto place = m_places.find(word);
    if (place == m_places.end()) throw std::runtime_error("no pronunciation of " + word);
    const auto variants = ParseVariants(m_dictionary, place->second);
    const auto& variant = random.Chance(kFirstReading) ? variants.front() : random.Pick(variants);
    // In one breath, or syllable by syllable.
    const bool joined = random.Chance(0.7);
    const auto offset = static_cast<std::int32_t>(sentence.phonemes.size());
    const std::size_t syllables = variant.syllable_starts.size();
    for (std::size_t i = 0; i < syllables; ++i) {
      const auto start = static_cast<std::size_t>(variant.syllable_starts[i]);
      const std::size_t end = i + 1 < syllables
                                  ? static_cast<std::size_t>(variant.syllable_starts[i + 1])
                                  : variant.phonemes.size();
      const std::string phonemes = variant.phonemes.substr(start, end - start);
      const auto pinyin = PinyinOf(phonemes);
      if (!pinyin) throw std::runtime_error("no pinyin for [" + phonemes + "] of " + word);
      const char* before = " ";
      if (spellings.empty()) {
        before = "";
      } else if (i == 0) {
        before = pause_after.back() ? ", " : " ";
      } else if (joined) {
        before = "-";  // else ba and ou, or jia and nv, would be read across their border
      }
      spellings.push_back({*pinyin, before});
      sentence.starts.push_back(offset + variant.syllable_starts[i]);
      sentence.tones += static_cast<char>('0' + variant.syllable_marks[i]);
      bu.push_back(word == "不");
      pause_after.push_back(false);
    }
    sentence.phonemes += variant.phonemes;
    sentence.text += (sentence.text.empty() ? "" : " ") + word;
  }
  sentence.spoken_tones = SpokenTones(sentence.tones, bu, pause_after);
  for (std::size_t i = 0; i < spellings.size(); ++i) {
    sentence.pinyin += spellings[i].before + spellings[i].pinyin + sentence.spoken_tones[i];
  }
  return sentence;
}

std::string ChineseTexts::WithOneWordChanged(const std::string& held_out_text, Random& random) {
  return training::WithOneWordChanged(held_out_text, HeldOutVocabulary(), random);
}

std::vector<std::string> ChineseTemplateWords() {
  std::set<std::string> words;
  const auto add = [&](std::string_view text) {
    for (const std::string& word : SplitWords(text)) {
      const bool is_slot = word.size() == 1;
      if (!is_slot) words.insert(word);
    }
  };
  for (const std::string_view pattern : kTrainingTemplates) add(pattern);
  for (const std::string_view pattern : kHeldOutTemplates) add(pattern);
  for (const Vocabulary* vocabulary : {&TrainingVocabulary(), &HeldOutVocabulary()}) {
    for (const auto& [slot, choices] : *vocabulary) words.insert(choices.begin(), choices.end());
  }
  return {words.begin(), words.end()};
}

}  // namespace veral3::training
