# Chinese: the tone classifier. Sourced by training/stages/zh.sh; uses what training/make-models
# defines: stage, bin, work, dictionary, threads.

tone_features() {
  $bin/make-tone-features --words $dictionary --count 5000 --copies 8 --seed 62 \
    --threads $threads --out "$work/tone1.vectors"
  $bin/make-tone-features --words $dictionary --count 6000 --copies 6 --seed 64 \
    --threads $threads --out "$work/tone2.vectors"
  $bin/make-tone-features --words $dictionary --count 600 --copies 0 --noisy 0 --held-out \
    --seed 691 --threads $threads --out "$work/tone-held.vectors"
}

tone_network() {
  $bin/train-network --kind vector --hidden 320 112 \
    --features "$work/tone1.vectors" "$work/tone2.vectors" --test "$work/tone-held.vectors" \
    --threads $threads --epochs 60 --batch 512 --rate 3e-3 --dropout 0 --smoothing 0.01 --seed 1 \
    --out "$work/tone.net" --model resources/ChineseTone.model --version 1
}

tone_stages() {
  stage tone-features tone_features
  stage tone-network tone_network
}
