# The utterance-goodness model: one for all languages, from readings right and wrong in each language
# that has a frame and a phoneme model. Sourced by training/make-models, which gives `stage`, `both`,
# `root`, `bin` and `threads`; run after the models of the languages, and again when one of them
# changes.

goodness_work() { echo "$root/$1"; }

goodness_languages() {  # those that have models
  local language number name dictionary frame phoneme
  while read -r language number name dictionary frame phoneme; do
    if [ -f "resources/$frame" ] && [ -f "resources/$phoneme" ]; then echo "$language"; fi
  done < <(training/languages)
}

goodness_all() { training/languages | cut -d' ' -f1; }

goodness_dictionary() { echo "resources/$(training/languages "$1" | cut -d' ' -f4)"; }

# Sentences of their own, spoken by the voices of training. English ones have common words only: how
# espeak-ng says a rare name is seldom what the dictionary has, so it would be no right reading. Of
# flite awb alone speaks: the others stay out, to be measured on.
goodness_corpora() {
  local jobs=() language words i
  for language in $(goodness_all); do
    mkdir -p "$(goodness_work $language)"
    words=$(goodness_dictionary "$language")
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
  local language=$1 other corpora foreign=()
  corpora=("$(goodness_work "$language")"/goodness[1-3].corpus)
  if [ "$language" = en ]; then corpora+=("$(goodness_work en)/goodness-awb.raw"); fi
  for other in $(goodness_all); do
    if [ $other != "$language" ]; then foreign+=("$(goodness_work $other)/goodness1.corpus"); fi
  done
  "$bin/make-goodness-features" --language "$language" --corpus "${corpora[@]}" \
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
