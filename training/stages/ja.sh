# Japanese: frame and phoneme classifier. Sourced by training/make-models.
#
# There is one synthesiser only. So the frame classifier starts from the hidden layers of the English
# one, which heard other synthesisers too, with an output layer of its own.

dictionary=resources/KJP-UTF8Order.txt
models="JapaneseFrame JapanesePhon"

ja_corpora() {
  local jobs=() i
  for i in 1 2 3 4 5 6 7 8; do
    jobs+=("$bin/make-corpus --language ja --words $dictionary --count 1000 --seed 20$i \
      --out $work/b$i.corpus")
  done
  jobs+=("$bin/make-corpus --language ja --words $dictionary --held-out --count 400 \
    --seed 901 --out $work/held.corpus")
  both "${jobs[@]}"
}

ja_features() {
  $bin/make-features --language 3 --corpus "$work"/b[1-8].corpus --warp-low 0.74 --seed 12 \
    --out "$work/b.features"
  $bin/make-features --language 3 --corpus "$work/held.corpus" --seed 91 \
    --out "$work/held.features"
}

ja_frame() {
  $bin/train-network --kind frame --language 3 --start resources/EnglishFrame.model \
    --features "$work/b.features" --test "$work/held.features" --threads $threads --epochs 5 \
    --batch 512 --rate 1.5e-3 --jitter 0 --dropout 0 --sparsity 0.03 --seed 2 \
    --out "$work/frame.net" --model resources/JapaneseFrame.model --version 1
}

ja_phoneme() {
  $bin/train-network --kind phoneme --language 3 --hidden 384 128 \
    --features "$work/b.features" --test "$work/held.features" --threads $threads --epochs 8 \
    --batch 512 --jitter 1 --dropout 0.2 --seed 4 \
    --out "$work/phoneme.net" --model resources/JapanesePhon.model --version 1
}

ja_stages() {
  stage corpora ja_corpora
  stage features ja_features
  stage frame ja_frame
  stage phoneme ja_phoneme
}
