# Japanese: frame and phoneme classifier. Sourced by training/make-models.

dictionary=resources/KJP-UTF8Order.txt
models="JapaneseFrame JapanesePhon"

source training/stages/one-synthesiser.sh

ja_stages() {
  stage corpora one_corpora ja 20 400 901
  stage features one_features 3 12 91
  beside frame "one_frame 3 Japanese" phoneme "one_phoneme 3 Japanese"
}
