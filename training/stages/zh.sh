# Chinese: frame, phoneme and tone classifier (that of tones in training/stages/zh-tone.sh). Sourced
# by training/make-models.

dictionary=resources/KCN-UTF8Order.txt
models="ChineseFrame ChinesePhon ChineseTone"

source training/stages/one-synthesiser.sh
source training/stages/zh-tone.sh

zh_speech() {
  stage corpora one_corpora zh 40 300 902
  stage features one_features 2 22 92
}
zh_frames() {
  stage frame one_frame 2 Chinese
  tone_stages
}
zh_phonemes() { one_phonemes 2 Chinese; }
