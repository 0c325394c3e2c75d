#include "training/corpus/EnglishTexts.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace veral3::training {
namespace {

using Words = std::vector<std::string>;

Words Split(std::string_view text) {
  std::istringstream stream{std::string(text)};
  Words words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// A slot of a template is one upper-case letter between blanks:
//   N noun, P plural, A adjective, V verb, D verb in the past, G verb in -ing, M name, L place,
//   T time, B adverb, Q number, W any word of the dictionary.
using Vocabulary = std::map<char, Words>;

const Vocabulary& TrainingVocabulary() {
  static const Vocabulary vocabulary = {
      {'N', Split("house car dog cat tree water table chair book school teacher student friend "
                  "mother father brother sister child woman man boy girl river mountain road "
                  "street city town village country world market office shop store kitchen room "
                  "door window garden flower bird fish horse cow sheep letter paper pencil picture "
                  "song music game story movie question answer problem idea reason change choice "
                  "voice noise sound word sentence language lesson page number price money job "
                  "machine computer phone engine bridge ship boat train plane ticket journey "
                  "vision pleasure measure treasure television decision garage beach church lunch "
                  "judge bridge badge message package jacket jungle future nature culture "
                  "yard yellow year youth union unit uniform weather feather leather cloth bath "
                  "path mouth tooth truth thumb thunder theatre thought law sauce horse corner "
                  "coffee boy toy oil coin point noise cow mouse sound cloud crowd power flower "
                  "shoe fruit juice moon spoon tool foot wood hook cook bush bull")},
      {'P', Split("houses cars dogs cats trees tables chairs books schools teachers students "
                  "friends children women men boys girls rivers mountains roads streets cities "
                  "towns shops stores kitchens rooms doors windows gardens flowers birds horses "
                  "letters papers pictures songs games stories questions answers problems ideas "
                  "reasons voices words lessons pages numbers jobs machines ships boats trains "
                  "planes tickets judges bridges watches churches beaches boxes buses dishes "
                  "clothes shoes eggs apples oranges carrots potatoes onions toys coins clouds")},
      {'A',
       Split("big small good bad old young new long short high low hot cold warm cool happy "
             "sad angry quiet loud fast slow early late easy hard heavy light dark bright "
             "clean dirty rich poor strong weak thick thin wide narrow deep shallow sweet sour "
             "fresh dry wet soft rough smooth round square flat sharp full empty open busy "
             "free cheap clever foolish brave gentle polite rude usual unusual beautiful ugly "
             "strange famous popular important different similar simple possible yellow purple "
             "orange green blue brown black white red grey joyful huge beige")},
      {'V', Split("see hear find lose make take give get keep leave bring carry buy sell pay open "
                  "close start stop begin finish push pull throw catch break fix build clean wash "
                  "cook eat drink read write speak tell ask answer call help join follow lead "
                  "watch show hide hold drop choose change use enjoy visit measure teach learn "
                  "remember forget understand believe think thank share judge join employ allow")},
      {'D', Split("saw heard found lost made took gave got kept left brought carried bought sold "
                  "paid opened closed started stopped began finished pushed pulled threw caught "
                  "broke fixed built cleaned washed cooked ate drank read wrote spoke told asked "
                  "answered called helped joined followed led watched showed hid held dropped "
                  "chose changed used enjoyed visited measured taught learned remembered forgot "
                  "understood believed thought thanked shared judged employed allowed")},
      {'G',
       Split("seeing hearing finding losing making taking giving getting keeping leaving "
             "bringing carrying buying selling paying opening closing starting stopping "
             "beginning finishing pushing pulling throwing catching breaking fixing building "
             "cleaning washing cooking eating drinking reading writing speaking telling asking "
             "watching showing hiding holding dropping choosing changing using enjoying "
             "visiting measuring teaching learning thinking singing ringing running swimming")},
      {'M', Split("John Mary Peter Susan George Helen Robert Linda David Sarah James Emma Thomas "
                  "Julia Charles Anna Henry Joan Paul Ruth Mark Jane Philip Rose Arthur Joyce Roy "
                  "Hugh Sean Joe Joan Judy Jack Zoe Cheryl Chuck Thelma Jo Faye Ray May Leo Neil")},
      {'L', Split("London Paris Boston Chicago Texas Japan China Canada France Germany Asia Africa "
                  "Europe Russia Mexico Brazil Egypt Rome Berlin Tokyo Florida Georgia Michigan "
                  "Ohio Utah Asia Persia Malaysia Hawaii India Poland Finland Norway Chile")},
      {'T', Split("today yesterday tomorrow tonight now soon later Monday Tuesday Wednesday "
                  "Thursday Friday Saturday Sunday January March April June July September "
                  "October weekly usually often always never once twice")},
      {'B', Split("slowly quickly quietly loudly carefully happily sadly badly well early late "
                  "together alone outside inside again there here everywhere easily gently usually "
                  "casually gradually enough perhaps maybe thoroughly actually")},
      {'Q', Split("two three four five six seven eight nine ten eleven twelve thirteen fourteen "
                  "fifteen sixteen seventeen eighteen nineteen twenty thirty forty fifty sixty "
                  "hundred thousand several both many few")},
  };
  return vocabulary;
}

constexpr auto kTrainingTemplates = std::to_array<std::string_view>({
    "the A N is near the A N",
    "M D a A N at the N",
    "I would like to V Q P T",
    "please V your N and my N",
    "why did you V that A N",
    "there were Q A P in our N",
    "she was G her N B",
    "he will V this N T",
    "do you know how to V W",
    "M and M are G in L",
    "we have D W and W",
    "if you V it you should also V W",
    "they went from L to L T",
    "A P and A P",
    "W W W W",
    "W and W or W",
    "my N says W is A",
    "can M V these P B",
    "Q P , Q P , and Q P",
    "his A N could not V us",
    "what A P you have",
    "M thinks that W D W",
    "who D all those P",
    "nothing is as A as W",
    "I am G for a A W",
    "let us V before M does",
    "where is W 's N",
    "it was A , A and A",
    "no one D W T",
    "when W V s , W V s",
    "M , please V W",
    "you may V an orange or an apple",
    "everybody D B because of W",
    "W",
    "M W , L",
    "G W is A but G W is A",
    "some W , any W , every W",
    "A W A W",
    "yes , W or no W",
});

const Vocabulary& HeldOutVocabulary() {
  static const Vocabulary vocabulary = {
      {'N', Split("lion elephant monkey tiger doctor lawyer farmer captain hospital library museum "
                  "castle island desert forest valley kettle bottle basket blanket candle hammer "
                  "ladder mirror pillow ribbon saddle soldier wagon violin umbrella vegetable "
                  "dentist cushion orchard goose cheese tongue azure")},
      {'P', Split("lions elephants monkeys tigers doctors lawyers farmers captains hospitals "
                  "museums castles islands baskets blankets candles hammers mirrors pillows "
                  "ribbons soldiers wagons violins umbrellas vegetables geese spiders peaches")},
      {'A', Split("ancient bitter careful dangerous excellent friendly golden honest innocent lazy "
                  "modern nervous ordinary peaceful rapid serious tender useful various wooden "
                  "youthful magnificent childish")},
      {'V', Split("admire borrow collect describe examine gather imagine mention notice polish "
                  "protect recognize repair search select touch wrap deliver cherish chase")},
      {'D', Split("admired borrowed collected described examined gathered imagined mentioned "
                  "noticed polished protected recognized repaired searched selected touched "
                  "wrapped delivered cherished chased")},
      {'G', Split("admiring borrowing collecting describing examining gathering imagining "
                  "polishing protecting repairing searching selecting touching wrapping chasing")},
      {'M', Split("Oliver Victoria Gregory Margaret Nathan Dorothy Edwin Beatrice Hector Judith")},
      {'L', Split("Vienna Madrid Sydney Toronto Denver Scotland Holland Geneva Jordan Portugal")},
      {'T', Split("afterwards recently meanwhile eventually already")},
      {'B', Split("patiently proudly secretly silently bravely foolishly smoothly honestly")},
      {'Q', Split("dozen million ninety eighty seventy couple")},
  };
  return vocabulary;
}

constexpr auto kHeldOutTemplates = std::to_array<std::string_view>({
    "during winter M D every N with a A N",
    "A P rarely V A P",
    "behind that N M D Q P",
    "G A P makes M A",
    "beyond L lies one A N",
    "neither M nor that N D its N B",
    "T M began G A P around L",
    "how A are those P beneath this N",
    "B , M D her A N",
    "without any N , P V A P",
});

// R: a word with a rare sound, or with a sound that is rare at the end of a word.
const Vocabulary& RareVocabulary() {
  static const Vocabulary vocabulary = {
      {'R', Split("seizure leisure closure explosion invasion confusion collision illusion mirage "
                  "prestige collage camouflage sabotage corsage revision division occasion "
                  "precision erosion conclusion erasure exposure provision intrusion "
                  "duck clock brick truck snake spike shark fork frog bug flag wig rug twig "
                  "glove cave olive stove sleeve wave grave leaf roof chef thief knife giraffe "
                  "cliff reef scarf loaf crab web tube cub robe tribe cup soup grape map tulip "
                  "syrup lamp cabbage garbage sausage fridge ledge college cottage witch coach "
                  "sandwich porch ostrich couch moth booth wreath breath radish brush trash leash "
                  "wing sting king gong lung swing drum broom farm yacht yogurt "
                  "wool pudding cushion butcher onion oven pump jug laundry lawn hawk chalk")},
  };
  return vocabulary;
}

constexpr auto kRareTemplates = std::to_array<std::string_view>({
    "neither R nor R",
    "one R , one R , one R",
    "this R behind a R",
    "every R needs some R",
    "R against R",
});

// Fills the slots of a template. `replace`: the slot (counted over all) whose word must differ from
// what it would be; -1 for none.
std::string Fill(std::string_view pattern, const Vocabulary& vocabulary, const Words& any_words,
                 Random& random) {
  std::string text;
  for (const std::string& token : Split(pattern)) {
    std::string word = token;
    if (token == "W") {
      word = any_words.empty() ? random.Pick(vocabulary.at('N')) : random.Pick(any_words);
    } else if (const auto slot = vocabulary.find(token[0]);
               token.size() == 1 && slot != vocabulary.end()) {
      // Common words teach the frequent sounds, the dictionary's the rare ones and their company.
      const bool rare = !any_words.empty() && (token == "N" || token == "A") && random.Chance(0.35);
      word = rare ? random.Pick(any_words) : random.Pick(slot->second);
    }
    const bool joins = word == "," || word == "'s" || word == "s";
    if (!text.empty() && !joins) text += ' ';
    text += word;
  }
  return text;
}

}  // namespace

EnglishTexts::EnglishTexts(std::vector<std::string> dictionary_words)
    : m_dictionary_words(std::move(dictionary_words)) {}

std::string EnglishTexts::Draw(Random& random) const {
  std::string text =
      Fill(random.Pick(kTrainingTemplates), TrainingVocabulary(), m_dictionary_words, random);
  return text + (random.Chance(0.2) ? "?" : ".");
}

std::string EnglishTexts::DrawHeldOut(Random& random) const {
  return Fill(random.Pick(kHeldOutTemplates), HeldOutVocabulary(), {}, random);
}

std::string EnglishTexts::DrawRare(Random& random) {
  return Fill(random.Pick(kRareTemplates), RareVocabulary(), {}, random);
}

std::string EnglishTexts::WithOneWordChanged(const std::string& held_out_sentence, Random& random) {
  Words words = Split(held_out_sentence);
  std::vector<std::pair<std::size_t, const Words*>> changeable;
  for (std::size_t i = 0; i < words.size(); ++i) {
    std::string bare = words[i];
    if (bare.ends_with(',')) bare.pop_back();
    for (const auto& [slot, choices] : HeldOutVocabulary()) {
      if (std::ranges::find(choices, bare) != choices.end()) {
        changeable.emplace_back(i, &choices);
        break;
      }
    }
  }
  if (changeable.empty()) return held_out_sentence;
  const auto [place, choices] = random.Pick(changeable);
  const bool comma = words[place].ends_with(',');
  const std::string old = comma ? words[place].substr(0, words[place].size() - 1) : words[place];
  std::string fresh = old;
  while (fresh == old) fresh = random.Pick(*choices);
  words[place] = fresh + (comma ? "," : "");
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<std::string> ReadDictionaryWords(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read the words of " + path);
  std::vector<std::string> words;
  for (std::string line; std::getline(file, line);) {
    std::string word = line.substr(0, line.find_first_of(" \t\r"));
    const auto is_letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
    if (word.size() < 2 || !is_letter(word[0]) ||
        !std::ranges::all_of(word, [&](char c) { return is_letter(c) || c == '\''; })) {
      continue;
    }
    std::ranges::transform(word, word.begin(), [](char c) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    words.push_back(word);
  }
  return words;
}

}  // namespace veral3::training
