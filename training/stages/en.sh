# English: frame and phoneme classifier. Sourced by training/make-models and training/leave-one-out.
#
# First espeak-ng alone, with the boundaries of phonemes moved at random; then all voices. The first
# model aligns the English recorded ones, whose own times follow other conventions.

dictionary=resources/KEN-UTF8Order.txt
source training/stages/frame.sh
source training/stages/phoneme.sh
source training/stages/voices.sh

espeak_corpora() {
  local jobs=() i
  for i in 1 2 3 4 5 6; do
    jobs+=("$bin/make-corpus --words $dictionary --count 1000 --seed 10$i --out $work/a$i.corpus")
  done
  for i in 1 2 3 4 5 6 7 8; do
    jobs+=("$bin/make-corpus --words $dictionary --evenness 0.5 --count 1000 --seed 20$i \
      --out $work/b$i.corpus")
  done
  jobs+=("$bin/make-corpus --held-out --count 400 --seed 901 --out $work/held.corpus")
  both "${jobs[@]}"
}

english_voices="flite-kal16 flite-awb flite-rms flite-slt festival-ked festival-kal"

other_corpora() {
  local jobs=() voice speaker seed=300
  for voice in $english_voices; do
    seed=$((seed + 1))
    speaker="--${voice%-*} ${voice#*-}"
    if [[ $voice == festival-* ]]; then speaker+=_diphone; fi
    jobs+=("$bin/make-corpus --words $dictionary $speaker --evenness 0.5 --count 1000 \
      --seed $seed --out $work/$voice.raw")
  done
  for voice in kal16 awb rms slt; do
    seed=$((seed + 1))
    jobs+=("$bin/make-corpus --held-out --flite $voice --count 120 --seed 91$seed \
      --out $work/held-$voice.raw")
  done
  both "${jobs[@]}"
  voices_foreign_corpora en 700 $voices_foreign
}

# Twice plainly for the first round, once widely degraded for the others.
espeak_features() {
  $bin/make-features --corpus "$work"/a[1-6].corpus --seed 11 --out "$work/a.features"
  $bin/make-features --corpus "$work"/b[1-8].corpus --warp-low 0.74 --seed 12 \
    --out "$work/b.features"
  $bin/make-features --corpus "$work"/[ab][1-8].corpus --degrade --pieces 0.25 --paragraphs 0.03 \
    --warp-low 0.74 --seed 14 --out "$work/wide.features"
  $bin/make-features --corpus "$work/held.corpus" --seed 91 --out "$work/held.features"
}

# The first round: espeak-ng alone. The shipped model began with AVX-512.
frame_first() {
  with_avx512 $bin/train-network --kind frame --features "$work/a.features" "$work/b.features" \
    --test "$work/held.features" --threads $threads \
    --hidden 512 512 --epochs 4 --batch 512 --rate 2e-3 --sparsity 0.05 --seed 1 \
    --out "$work/frame-first.net" --model "$work/frame-first.model"
}

align_others() {
  local jobs=() voice
  for voice in $english_voices held-kal16 held-awb held-rms held-slt; do
    jobs+=("$bin/align-corpus --threads 1 --model $work/frame-first.model --corpus $work/$voice.raw \
      --out $work/$voice.corpus")
  done
  both "${jobs[@]}"
}

# A few voices stand for all people: each speaks through virtual speakers as well, whole, in pieces and
# in paragraphs.
other_features() {
  local voice seed=30
  for voice in $english_voices; do
    seed=$((seed + 1))
    $bin/make-features --corpus "$work/$voice.corpus" --degrade --morph 2 --pieces 0.4 \
      --paragraphs 0.03 --warp-low 0.74 --seed $seed --out "$work/$voice.features"
  done
  for voice in $voices_foreign; do
    seed=$((seed + 1))
    $bin/make-features --corpus "$work/$voice.corpus" --degrade --morph 1 --pieces 0.3 \
      --warp-low 0.74 --seed $seed --out "$work/$voice.features"
  done
}

# files VOICE...: their features.
files() {
  local voice
  for voice in "$@"; do echo "$work/$voice.features"; done
}

# What the networks learn from besides the first round, a word each, shares before them.
english_features() {
  echo 0.50 $(files a b wide) 0.37 $(files $english_voices) 0.13 $(files $voices_foreign)
}

# english_frame EPOCHS FOLDER MODEL FEATURES...: all voices, boundaries where they are.
english_frame() {
  local epochs=$1
  shift
  frame_rounds 1 "$epochs" "$work/frame-first.net" "$@"
}

frame_second() {
  english_frame 9 "$work" resources/EnglishFrame.model $(english_features)
}
phoneme_4() { phoneme_teacher 1 4 1200000 "$work" $(english_features); }
phoneme_5() { phoneme_teacher 1 5 1200000 "$work" $(english_features); }
phoneme() {
  phoneme_student 1 1200000 "$work" resources/EnglishPhon.model $(english_features)
}

models="EnglishFrame EnglishPhon"

en_speech() {
  stage espeak-corpora espeak_corpora
  stage other-corpora other_corpora
  stage espeak-features espeak_features
  stage frame-first frame_first
  stage align-others align_others
  stage other-features other_features
}
en_frames() { stage frame-second frame_second; }
en_phonemes() {
  stage phoneme-4 phoneme_4
  stage phoneme-5 phoneme_5
  stage phoneme phoneme
}
