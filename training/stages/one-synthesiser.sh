# Frame and phoneme classifier of a language that has one synthesiser of its own; recorded voices of
# other languages lend it near phonemes. The frame classifier starts from the hidden layers of the
# English one, which heard recorded voices say everything, with an output layer of its own. Sourced by
# training/stages/zh.sh and ja.sh.

source training/stages/frame.sh
source training/stages/phoneme.sh
source training/stages/voices.sh

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
  voices_foreign_corpora "$1" 500 $voices_foreign
  voices_english_corpora "$1" 400
}

one_voices() {
  local voice
  for voice in $voices_foreign $voices_festival; do echo $voice; done
  for voice in $voices_flite; do echo flite-$voice; done
}

# one_features LANGUAGE SEED HELD_OUT_SEED
one_features() {
  local voice seed=$2
  $bin/make-features --language "$1" --corpus "$work"/b[1-8].corpus --warp-low 0.74 --seed "$2" \
    --out "$work/b.features"
  $bin/make-features --language "$1" --corpus "$work"/b[1-8].corpus --degrade --morph 1 --pieces 0.3 \
    --paragraphs 0.03 --warp-low 0.74 --seed "$2"1 --out "$work/wide.features"
  for voice in $(one_voices); do
    seed=$((seed + 1))
    $bin/make-features --language "$1" --corpus "$work/$voice.corpus" --degrade --pieces 0.3 \
      --warp-low 0.74 --seed $seed --out "$work/$voice.features"
  done
  $bin/make-features --language "$1" --corpus "$work/held.corpus" --seed "$3" \
    --out "$work/held.features"
}

# What is learnt from, shares before the files. No recorded voice says all phonemes of the language: a
# larger share would teach that people say the others less.
one_learnt() {
  local voice recorded=()
  for voice in $(one_voices); do recorded+=("$work/$voice.features"); done
  echo 0.75 "$work/b.features" "$work/wide.features" 0.25 "${recorded[@]}"
}

# one_frame LANGUAGE NAME
one_frame() {
  frame_rounds "$1" 5 resources/EnglishFrame.model "$work" "resources/$2Frame.model" $(one_learnt)
}

# one_teacher LANGUAGE SEED
one_teacher() { phoneme_teacher "$1" "$2" 700000 "$work" $(one_learnt); }

# one_phoneme LANGUAGE NAME
one_phoneme() { phoneme_student "$1" 700000 "$work" "resources/$2Phon.model" $(one_learnt); }

# one_phonemes LANGUAGE NAME: the stages.
one_phonemes() {
  stage phoneme-4 one_teacher "$1" 4
  stage phoneme-5 one_teacher "$1" 5
  stage phoneme one_phoneme "$1" "$2"
}
