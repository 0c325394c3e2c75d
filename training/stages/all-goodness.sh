# The utterance-goodness model: one for all languages, from readings right and wrong in each language
# that has a frame and a phoneme model. Sourced by training/make-models, which gives `stage`, `both`,
# `root`, `bin` and `threads`; run after the models of the languages, and again when one of them
# changes.

goodness_work() { echo "$root/$1"; }

goodness_language() {  # number, name, dictionary
  case $1 in
    en) echo "1 English resources/KEN-UTF8Order.txt" ;;
    zh) echo "2 Chinese resources/KCN-UTF8Order.txt" ;;
    ja) echo "3 Japanese resources/KJP-UTF8Order.txt" ;;
  esac
}

goodness_languages() {  # those that have models
  local language number name dictionary
  for language in en zh ja; do
    read -r number name dictionary <<< "$(goodness_language $language)"
    if [ -f "resources/${name}Frame.model" ] && [ -f "resources/${name}Phon.model" ]; then
      echo $language
    fi
  done
}

# Sentences of their own, spoken by the voices of training. English ones have common words only: how
# espeak-ng says a rare name is seldom what the dictionary has, so it would be no right reading. Of
# flite awb alone speaks: the others stay out, to be measured on.
goodness_corpora() {
  local jobs=() language words i
  for language in en zh ja; do
    mkdir -p "$(goodness_work $language)"
    words=$(goodness_language $language | cut -d' ' -f3)
    if [ $language = en ]; then words=; fi
    for i in 1 2 3; do
      jobs+=("$bin/make-corpus --language $language ${words:+--words $words} --count 800 \
        --seed 50$i --out $(goodness_work $language)/goodness$i.corpus")
    done
  done
  jobs+=("$bin/make-corpus --flite awb --count 500 --seed 512 \
    --out $(goodness_work en)/goodness-awb.raw")
  both "${jobs[@]}"
}

# The 16 features of 8,000 recordings in a language.
goodness_features() {
  local language=$1 other number name dictionary corpora foreign=()
  read -r number name dictionary <<< "$(goodness_language "$language")"
  corpora=("$(goodness_work "$language")"/goodness[1-3].corpus)
  if [ "$language" = en ]; then corpora+=("$(goodness_work en)/goodness-awb.raw"); fi
  for other in en zh ja; do
    if [ $other != "$language" ]; then foreign+=("$(goodness_work $other)/goodness1.corpus"); fi
  done
  "$bin/make-goodness-features" --language "$number" --corpus "${corpora[@]}" \
    --foreign "${foreign[@]}" --count 8000 --seed 31 --threads 2 \
    --out "$(goodness_work "$language")/goodness.vectors"
}

goodness_network() {
  local language vectors=()
  for language in $(goodness_languages); do
    vectors+=("$(goodness_work "$language")/goodness.vectors")
  done
  "$bin/train-network" --kind vector --features "${vectors[@]}" --hidden 64 32 --batch 128 \
    --epochs 40 --rate 3e-3 --dropout 0 --smoothing 0 --seed 1 --threads "$threads" \
    --out "$root/goodness.net" --model resources/UttGoodness.model --version 1
}

goodness_stages() {
  local heard
  stage goodness-corpora goodness_corpora
  for heard in $(goodness_languages); do
    stage "goodness-features-$heard" goodness_features "$heard"
  done
  stage goodness-network goodness_network
}
