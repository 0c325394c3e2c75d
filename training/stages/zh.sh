# Chinese: frame, phoneme and tone classifier (that of tones in training/stages/zh-tone.sh). Sourced
# by training/make-models.
#
# There is one synthesiser only. So the frame classifier starts from the hidden layers of the English
# one, which heard other synthesisers too, with an output layer of its own.

dictionary=resources/KCN-UTF8Order.txt
models="ChineseFrame ChinesePhon ChineseTone"

zh_corpora() {
  local jobs=() i
  for i in 1 2 3 4 5 6 7 8; do
    jobs+=("$bin/make-corpus --language zh --words $dictionary --count 1000 --seed 40$i \
      --out $work/b$i.corpus")
  done
  jobs+=("$bin/make-corpus --language zh --words $dictionary --held-out --count 300 \
    --seed 902 --out $work/held.corpus")
  both "${jobs[@]}"
}

zh_features() {
  $bin/make-features --language 2 --corpus "$work"/b[1-8].corpus --warp-low 0.74 --seed 22 \
    --out "$work/b.features"
  $bin/make-features --language 2 --corpus "$work/held.corpus" --seed 92 \
    --out "$work/held.features"
}

zh_frame() {
  $bin/train-network --kind frame --language 2 --start resources/EnglishFrame.model \
    --features "$work/b.features" --test "$work/held.features" --threads $threads --epochs 5 \
    --batch 512 --rate 1.5e-3 --jitter 0 --dropout 0 --sparsity 0.03 --seed 2 \
    --out "$work/frame.net" --model resources/ChineseFrame.model --version 1
}

zh_phoneme() {
  $bin/train-network --kind phoneme --language 2 --hidden 384 128 \
    --features "$work/b.features" --test "$work/held.features" --threads $threads --epochs 8 \
    --batch 512 --jitter 1 --dropout 0.2 --seed 4 \
    --out "$work/phoneme.net" --model resources/ChinesePhon.model --version 1
}

source training/stages/zh-tone.sh

zh_stages() {
  stage corpora zh_corpora
  stage features zh_features
  stage frame zh_frame
  stage phoneme zh_phoneme
  tone_stages
}
