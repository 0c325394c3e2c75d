# English: frame and phoneme classifier. Sourced by training/make-models.
#
# First espeak-ng alone, with the boundaries of phonemes moved at random; then all voices, whose times
# the first model aligns.

dictionary=resources/KEN-UTF8Order.txt
source training/stages/frame.sh
source training/stages/phoneme.sh

espeak_corpora() {
  local jobs=() i
  for i in 1 2 3 4 5 6; do
    jobs+=("$bin/make-corpus --words $dictionary --count 1000 --seed 10$i --out $work/a$i.corpus")
  done
  for i in 1 2 3 4 5 6 7 8; do
    jobs+=("$bin/make-corpus --words $dictionary --count 1000 --seed 20$i --out $work/b$i.corpus")
    jobs+=("$bin/make-corpus --words $dictionary --count 1000 --seed 60$i --out $work/c$i.corpus")
  done
  jobs+=("$bin/make-corpus --held-out --count 400 --seed 901 --out $work/held.corpus")
  both "${jobs[@]}"
}

flite_voices="kal16 awb rms slt"

other_corpora() {
  local jobs=() voice seed=300
  for voice in $flite_voices; do
    seed=$((seed + 1))
    jobs+=("$bin/make-corpus --words $dictionary --flite $voice --count 1000 --seed $seed \
      --out $work/flite-$voice.raw")
    jobs+=("$bin/make-corpus --held-out --flite $voice --count 120 --seed 91$seed \
      --out $work/held-$voice.raw")
  done
  jobs+=("$bin/make-corpus --words $dictionary --festival ked_diphone --count 1000 --seed 310 \
    --out $work/festival-ked.raw")
  both "${jobs[@]}"
}

espeak_features() {
  $bin/make-features --corpus "$work"/a[1-6].corpus --copies 2 --seed 11 --out "$work/a.features"
  $bin/make-features --corpus "$work"/b[1-8].corpus --warp-low 0.74 --seed 12 \
    --out "$work/b.features"
  $bin/make-features --corpus "$work"/c[1-8].corpus --warp-low 0.74 --seed 14 \
    --out "$work/c.features"
  $bin/make-features --corpus "$work/held.corpus" --seed 91 --out "$work/held.features"
}

# The first round: espeak-ng alone. The shipped model began with AVX-512.
frame_first() {
  with_avx512 $bin/train-network --kind frame --features "$work/a.features" "$work/b.features" \
    --test "$work/held.features" --threads $threads \
    --hidden 512 512 --epochs 4 --batch 512 --rate 2e-3 --sparsity 0.05 --seed 1 \
    --out "$work/frame-first.net" --model "$work/frame-first.model"
}

# The other synthesisers' own phone times follow other conventions: the first model aligns them.
align_others() {
  local jobs=() voice
  for voice in $flite_voices; do
    jobs+=("$bin/align-corpus --threads 1 --model $work/frame-first.model --corpus $work/flite-$voice.raw \
      --out $work/flite-$voice.corpus")
    jobs+=("$bin/align-corpus --threads 1 --model $work/frame-first.model --corpus $work/held-$voice.raw \
      --out $work/held-$voice.corpus")
  done
  jobs+=("$bin/align-corpus --threads 1 --model $work/frame-first.model --corpus $work/festival-ked.raw \
    --out $work/festival-ked.corpus")
  both "${jobs[@]}"
  local name
  for name in flite-kal16 flite-awb flite-rms flite-slt festival-ked; do
    $bin/make-features --corpus "$work/$name.corpus" --warp-low 0.8 --seed 13 \
      --out "$work/$name.features"
  done
}

# What the networks learn from besides the first round, a word each.
frame_features() {
  echo "$work"/{a,b,flite-awb,flite-kal16,flite-rms,flite-slt,festival-ked}.features
}
phoneme_features() {
  echo "$(frame_features) $work/c.features"
}

# english_frame FOLDER MODEL FEATURES...: all voices, boundaries where they are.
english_frame() {
  frame_rounds 1 7 "$work/frame-first.net" "$@"
}

# english_phoneme FOLDER MODEL FEATURES...: a frame has thousands of neighbours like it, a phoneme is
# one example, so this network needs more sentences than the other.
english_phoneme() {
  phoneme_rounds 1 "$@"
}

frame_second() {
  english_frame "$work" resources/EnglishFrame.model $(frame_features)
}

phoneme() {
  english_phoneme "$work" resources/EnglishPhon.model $(phoneme_features)
}

models="EnglishFrame EnglishPhon"

en_stages() {
  stage espeak-corpora espeak_corpora
  stage other-corpora other_corpora
  stage espeak-features espeak_features
  stage frame-first frame_first
  stage align-others align_others
  beside frame-second frame_second phoneme phoneme
}
