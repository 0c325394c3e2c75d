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
# espeak-ng says a rare name is seldom what the dictionary has, so it would be no right reading.
goodness_corpora() {
  local jobs=() language words i voice seed=510
  for language in en zh ja; do
    mkdir -p "$(goodness_work $language)"
    words=$(goodness_language $language | cut -d' ' -f3)
    if [ $language = en ]; then words=; fi
    for i in 1 2 3; do
      jobs+=("$bin/make-corpus --language $language ${words:+--words $words} --count 1000 \
        --seed 50$i --out $(goodness_work $language)/goodness$i.corpus")
    done
  done
  for voice in kal16 awb rms; do  # slt stays out, to be measured on
    seed=$((seed + 1))
    jobs+=("$bin/make-corpus --flite $voice --count 250 --seed $seed \
      --out $(goodness_work en)/goodness-$voice.raw")
  done
  both "${jobs[@]}"
}

# The 16 features of 6,000 recordings in each language.
goodness_features() {
  local language other number name dictionary corpora foreign
  for language in $(goodness_languages); do
    read -r number name dictionary <<< "$(goodness_language "$language")"
    corpora=("$(goodness_work "$language")"/goodness[1-3].corpus)
    if [ "$language" = en ]; then corpora+=("$(goodness_work en)"/goodness-*.raw); fi
    foreign=()
    for other in en zh ja; do
      if [ $other != "$language" ]; then foreign+=("$(goodness_work $other)/goodness1.corpus"); fi
    done
    "$bin/make-goodness-features" --language "$number" --corpus "${corpora[@]}" \
      --foreign "${foreign[@]}" --count 6000 --seed 31 --threads "$threads" \
      --out "$(goodness_work "$language")/goodness.vectors"
  done
}

goodness_network() {
  local language vectors=()
  for language in $(goodness_languages); do
    vectors+=("$(goodness_work "$language")/goodness.vectors")
  done
  "$bin/train-network" --kind vector --features "${vectors[@]}" --hidden 24 12 --batch 128 \
    --epochs 40 --rate 3e-3 --dropout 0 --smoothing 0 --seed 1 --threads "$threads" \
    --out "$root/goodness.net" --model resources/UttGoodness.model --version 1
}

goodness_stages() {
  stage goodness-corpora goodness_corpora
  stage goodness-features goodness_features
  stage goodness-network goodness_network
}
