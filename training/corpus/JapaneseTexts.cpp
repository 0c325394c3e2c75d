#include "training/corpus/JapaneseTexts.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "training/corpus/Vocabulary.h"

namespace veral3::training {
namespace {

// A slot of a template is one upper-case letter between blanks: N thing, H person, M name, L place,
// A adjective, K adjective that takes "na", V verb with and I without an object (both in the form
// that polite endings follow), T time, B adverb, Q number, W any word of the dictionary.
const Vocabulary& TrainingVocabulary() {
  static const Vocabulary vocabulary = {
      {'N', SplitWords("本 水 車 電車 辞書 新聞 手紙 写真 映画 音楽 時計 電話 荷物 料理 "
                       "切符 雑誌 机 椅子 窓 部屋 靴 帽子 傘 花 犬 猫 鳥 魚 お茶 お金 薬 "
                       "紙 鉛筆 地図 宿題 問題 仕事 言葉 名前 番号 自転車 飛行機 コーヒー "
                       "テレビ ニュース パーティー コンピューター テーブル バス タクシー ケーキ "
                       "スポーツ ビール ノート カメラ チーズ ギター シャツ ページ 絵 歌 塩 "
                       "砂糖 牛乳 卵 肉 野菜 果物 ご飯 夕食 財布 指輪 鏡 石 海 山 川 星 "
                       "月 雪 雨 風 空 お菓子 服 ズボン 眼鏡 新幹線 住所 予約 会議 計画 "
                       "授業 試験 質問 結果 技術 牛 馬 舟 箱 箸 皿 ボール ジュース ピアノ "
                       "ドア ペン ファイル フィルム メール")},
      {'H', SplitWords("私 彼 彼女 先生 学生 友達 母 父 兄 姉 弟 妹 子供 医者 社長 僕 "
                       "あなた お母さん お父さん 部長 店員 警官 家族 客 両親 夫 妻 息子 娘 "
                       "教授 選手 看護婦 男 女 皆 赤ちゃん 隣人")},
      {'M', SplitWords("田中 鈴木 佐藤 高橋 山本 渡辺 伊藤 中村 小林 加藤 吉田 佐々木 山口 "
                       "松本 井上 木村 林 清水 斎藤 山崎")},
      {'L', SplitWords("東京 京都 大阪 学校 駅 銀行 病院 図書館 公園 会社 大学 空港 教室 "
                       "日本 中国 アメリカ フランス 北海道 九州 横浜 名古屋 広島 神戸 家 店 "
                       "庭 台所 町 村 道 海岸 市場 工場 事務所 食堂 喫茶店 スーパー "
                       "デパート レストラン ホテル イギリス ドイツ イタリア 神社 寺 美術館 劇場")},
      {'A', SplitWords("大きい 小さい 新しい 古い 高い 安い 面白い 美しい 楽しい 難しい 忙しい "
                       "暑い 寒い 冷たい 甘い 辛い 白い 黒い 赤い 青い 長い 短い 早い 遅い "
                       "強い 弱い 明るい 暗い 優しい 悪い 良い 若い 広い 狭い 重い 軽い 近い "
                       "遠い 太い 細い 硬い 丸い 珍しい 正しい 危ない 痛い 眠い 汚い 深い "
                       "浅い 美味しい")},
      {'K', SplitWords("静か 元気 綺麗 有名 便利 大切 簡単 丈夫 親切 立派 大変 暇 好き 嫌い "
                       "上手 下手 特別 自由 安全 必要 危険 不便 複雑 真面目 正直 残念 大事 "
                       "同じ 無理 平気")},
      {'V', SplitWords("食べ 飲み 見 読み 書き 聞き 買い 売り 作り 使い 持ち 取り 開け 閉め "
                       "始め 洗い 切り 出し 送り 探し 待ち 習い 教え 覚え 忘れ 調べ 選び "
                       "直し 運び 頼み 払い 返し 借り 貸し 捨て 拾い 変え 見せ 呼び 押し")},
      {'I', SplitWords("行き 来 帰り 歩き 走り 寝 起き 泳ぎ 遊び 働き 休み 座り 立ち 笑い "
                       "泣き 話し 歌い 死に 生まれ 住み 着き 出 入り 乗り 降り 登り 曲がり "
                       "止まり 急ぎ 集まり 残り 戻り")},
      {'T', SplitWords("今日 昨日 明日 今 毎日 毎朝 毎晩 今朝 今晩 先週 来週 今週 来年 去年 "
                       "今年 先月 来月 朝 昼 夜 午前 午後 月曜日 火曜日 水曜日 木曜日 金曜日 "
                       "土曜日 日曜日 春 夏 秋 冬 一月 四月 十月 いつも 時々 もうすぐ さっき "
                       "一日 最近 昔 将来")},
      {'B', SplitWords("とても 少し もっと 一番 全然 多分 きっと ゆっくり 早く すぐ また まだ "
                       "もう ちょっと ずっと たくさん いっぱい はっきり しっかり やっと びっくり "
                       "だんだん 本当に 必ず ちゃんと ぴったり じっと そっと どんどん 全部 "
                       "たびたび")},
      {'Q', SplitWords("一つ 二つ 三つ 四つ 五つ 六つ 七つ 八つ 九つ 十 百 千 一人 二人 "
                       "一本 三本 三百 六百 八百 三千 半分 一回 十分")},
  };
  return vocabulary;
}

constexpr auto kTrainingTemplates = std::to_array<std::string_view>({
    "H は N を V ます",
    "H は N が A です",
    "M さん は L へ I ます",
    "T 、 H と L で N を V まし た",
    "この N は とても A です ね",
    "その N を V ながら I ます",
    "N を V ませ ん か",
    "どの N が 一番 K です か",
    "H の N は どこ に あり ます か",
    "L から L まで Q 時間 です",
    "すみません 、 N を V たい です",
    "M さん 、 L は 何 時 まで です か",
    "W と W と W",
    "W の W は A です",
    "H は B V ませ ん でし た",
    "N も N も 要り ませ ん",
    "A N が Q あり ます",
    "K な N を V ましょ う",
    "W は W より A です",
    "どうして L に I ませ ん か",
    "A から V ませ ん",
    "T から T まで I ます",
    "W W W W",
    "W",
    "W 、 W 、 W",
    "H に N を V まし た が 、 A です",
    "もし A なら 、 V ましょ う",
    "おはよう ござい ます 、 M さん",
    "ありがとう ござい まし た",
    "はい 、 そう です 、 N です",
    "いいえ 、 W じゃ あり ませ ん",
    "N は いくら です か",
    "これ は W と いい ます",
    "それ は H の W です",
    "L の N は A けれども 、 K です",
    "T は W が A でしょ う ね",
    "あの W は 何 です か",
    "W を お願い し ます",
    "H が W と 言い まし た",
    "W も W も W も",
});

const Vocabulary& HeldOutVocabulary() {
  static const Vocabulary vocabulary = {
      {'N', SplitWords("鍵 橋 切手 封筒 葉書 石鹸 布団 毛布 茶碗 急須 人形 太鼓 風船 望遠鏡 "
                       "消しゴム 冷蔵庫 ネクタイ ハンカチ ランプ トマト バナナ ピーマン キャベツ "
                       "蝶 蛙 亀 狐 兎 象 林檎 桃 葡萄 豆腐 味噌 醤油 着物 扇子 提灯")},
      {'H', SplitWords("王 王子 王女 大工 画家 作家 歌手 俳優 農夫 漁師 船長 兵士 祖父 祖母 "
                       "従兄弟 孫 泥棒 侍 忍者 巡査 記者")},
      {'M', SplitWords("石川 藤田 岡田 後藤 長谷川 村上 近藤 石井 坂本 遠藤")},
      {'L', SplitWords("仙台 奈良 鎌倉 札幌 福岡 長崎 ロシア インド ギリシャ スペイン 砂漠 "
                       "牧場 洞窟 港 城 塔 湖 谷 峠 牢屋")},
      {'A', SplitWords("鋭い 鈍い 貧しい 激しい 懐かしい 恥ずかしい 羨ましい 柔らかい 涼しい "
                       "眩しい 詳しい 厳しい 苦い 濃い 薄い")},
      {'K', SplitWords("見事 贅沢 豊か 穏やか 賑やか 派手 地味 奇妙 貴重 愉快 退屈 器用 丁寧")},
      {'V', SplitWords("盗み 縫い 磨き 隠し 壊し 抱き 掘り 植え 拭き 塗り 包み 握り 眺め 守り")},
      {'I', SplitWords("逃げ 隠れ 滑り 転び 踊り 黙り 怒り 悩み 驚き 震え 眠り 飛び")},
      {'T', SplitWords("一昨日 明後日 夕方 真夜中 正月 夏休み 先日 今夜")},
      {'B', SplitWords("突然 偶然 決して なるべく わざと こっそり ぼんやり うっかり 再び 次第に")},
  };
  return vocabulary;
}

constexpr auto kHeldOutTemplates = std::to_array<std::string_view>({
    "L に は A N が おり ます",
    "T まで に N を V なけれ ば なり ませ ん",
    "なぜ H は A N ばかり V の でしょ う",
    "L の 近く で H が I そう です よ",
    "N の 上 に N と N だけ 置き ます",
    "あんなに A N は T 以来 です",
    "どんなに K でも 、 N は V ませ ん",
    "H も B I 始め まし た",
    "M 君 の H は K らしい です よ",
    "K な L として N を V あげ ます",
});

constexpr std::string_view kComma = "、";

// Particles that are always read as particles here.
constexpr auto kParticles = std::to_array<std::string_view>({"は", "へ", "を"});

// The dictionary's entries: "WORD COUNT COST SYLLABLES MARKS START... COMPACT", then a line without
// the word and the count for each further reading.
std::map<std::string, std::vector<JapaneseReading>> ReadDictionary(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  if (!std::getline(file, line) || line.find("JP_KJP") == std::string::npos) {
    throw std::runtime_error("no Japanese dictionary in " + path);
  }
  std::map<std::string, std::vector<JapaneseReading>> dictionary;
  std::string word;
  for (int left = 0; std::getline(file, line);) {
    std::istringstream stream(line);
    if (left == 0) stream >> word >> left;
    std::string cost;
    std::string marks;
    int syllables = 0;
    stream >> cost >> syllables >> marks;
    JapaneseReading reading;
    reading.starts.resize(static_cast<std::size_t>(std::clamp(syllables, 0, 64)));
    for (int& start : reading.starts) stream >> start;
    stream >> reading.compact;
    if (!stream || left < 1) throw std::runtime_error(path + " is damaged at [" + line + "]");
    --left;
    dictionary[word].push_back(std::move(reading));
  }
  return dictionary;
}

bool IsSlot(const std::string& token) {
  return token.size() == 1 && token[0] >= 'A' && token[0] <= 'Z';
}

}  // namespace

JapaneseTexts::JapaneseTexts(const std::string& dictionary)
    : m_dictionary(ReadDictionary(dictionary)) {
  const auto check = [&](const std::string& word) {
    if (word != kComma && ReadingsOf(word).empty()) {
      throw std::runtime_error("the dictionary " + dictionary + " lacks " + word);
    }
  };
  const auto check_all = [&](const auto& templates, const Vocabulary& vocabulary) {
    for (const std::string_view pattern : templates) {
      for (const std::string& token : SplitWords(pattern)) {
        if (!IsSlot(token)) check(token);
      }
    }
    for (const auto& [slot, words] : vocabulary) std::ranges::for_each(words, check);
  };
  check_all(kTrainingTemplates, TrainingVocabulary());
  check_all(kHeldOutTemplates, HeldOutVocabulary());
  std::set<std::string> kept;  // words and readings of the held-out sentences
  for (const auto& [slot, words] : HeldOutVocabulary()) {
    for (const std::string& word : words) {
      kept.insert(word);
      for (const JapaneseReading& reading : ReadingsOf(word)) kept.insert(reading.compact);
    }
  }
  for (const auto& [word, readings] : m_dictionary) {
    const auto is_kept = [&](const JapaneseReading& reading) {
      return kept.contains(reading.compact);
    };
    if (!kept.contains(word) && std::ranges::none_of(readings, is_kept)) m_any.push_back(word);
  }
}

const std::vector<JapaneseReading>& JapaneseTexts::ReadingsOf(const std::string& word) const {
  static const std::vector<JapaneseReading> none;
  const auto place = m_dictionary.find(word);
  return place == m_dictionary.end() ? none : place->second;
}

JapaneseWord JapaneseTexts::Read(const std::string& word, Random& random) const {
  if (word == kComma) return {word, {}};
  const std::vector<JapaneseReading>& readings = ReadingsOf(word);
  const bool particle = std::ranges::find(kParticles, word) != kParticles.end();
  const bool usual = particle || readings.size() == 1 || random.Chance(0.7);
  return {word, usual ? readings.front() : random.Pick(readings)};
}

std::vector<JapaneseWord> JapaneseTexts::Fill(std::string_view pattern, const Vocabulary& slots,
                                              bool held_out, Random& random) const {
  std::vector<JapaneseWord> words;
  for (const std::string& token : SplitWords(pattern)) {
    if (!IsSlot(token)) {
      words.push_back(Read(token, random));
      continue;
    }
    // Common words teach the frequent sounds, the dictionary's the rare ones and their company.
    const bool any = token == "W" || (!held_out && token == "N" && random.Chance(0.35));
    words.push_back(Read(any ? random.Pick(m_any) : random.Pick(slots.at(token[0])), random));
  }
  return words;
}

std::vector<JapaneseWord> JapaneseTexts::Draw(Random& random) const {
  return Fill(random.Pick(kTrainingTemplates), TrainingVocabulary(), false, random);
}

std::vector<JapaneseWord> JapaneseTexts::DrawHeldOut(Random& random) const {
  return Fill(random.Pick(kHeldOutTemplates), HeldOutVocabulary(), true, random);
}

std::string JapaneseTexts::WithOneWordChanged(const std::string& held_out_text, Random& random) {
  return training::WithOneWordChanged(held_out_text, HeldOutVocabulary(), random);
}

std::string TextOf(const std::vector<JapaneseWord>& words) {
  std::string text;
  for (const JapaneseWord& word : words) text += (text.empty() ? "" : " ") + word.text;
  return text;
}

std::string PhonemesOf(const std::vector<JapaneseWord>& words) {
  std::string phonemes;
  for (const JapaneseWord& word : words) {
    for (const JapaneseUnit& unit : JapaneseUnits(word.reading)) phonemes += unit.symbols;
  }
  return phonemes;
}

}  // namespace veral3::training
