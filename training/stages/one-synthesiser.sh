# Frame and phoneme classifier of a language that has one synthesiser only. The frame classifier
# starts from the hidden layers of the English one, which heard other synthesisers too, with an output
# layer of its own. Sourced by training/stages/zh.sh and ja.sh.

source training/stages/frame.sh
source training/stages/phoneme.sh

# one_corpora LANGUAGE SEED HELD_OUT_COUNT HELD_OUT_SEED
one_corpora() {
  local jobs=() i
  for i in 1 2 3 4 5 6 7 8; do
    jobs+=("$bin/make-corpus --language $1 --words $dictionary --count 1000 --seed $2$i \
      --out $work/b$i.corpus")
  done
  jobs+=("$bin/make-corpus --language $1 --words $dictionary --held-out --count $3 --seed $4 \
    --out $work/held.corpus")
  both "${jobs[@]}"
}

# one_features NUMBER SEED HELD_OUT_SEED
one_features() {
  $bin/make-features --language "$1" --corpus "$work"/b[1-8].corpus --copies 2 \
    --warp-low 0.74 --seed "$2" --out "$work/b.features"
  $bin/make-features --language "$1" --corpus "$work/held.corpus" --seed "$3" \
    --out "$work/held.features"
}

# one_frame NUMBER NAME
one_frame() {
  frame_rounds "$1" 6 resources/EnglishFrame.model "$work" "resources/$2Frame.model" \
    "$work/b.features"
}

# one_phoneme NUMBER NAME
one_phoneme() {
  phoneme_rounds "$1" "$work" "resources/$2Phon.model" "$work/b.features"
}
