# Japanese: frame and phoneme classifier. Sourced by training/make-models.

dictionary=resources/KJP-UTF8Order.txt
models="JapaneseFrame JapanesePhon"

source training/stages/one-synthesiser.sh

ja_speech() {
  stage corpora one_corpora ja 20 400 901
  stage features one_features 3 12 91
}
ja_frames() { stage frame one_frame 3 Japanese; }
ja_phonemes() { one_phonemes 3 Japanese; }
