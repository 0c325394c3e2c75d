# Speech of recorded voices for a language: English ones of flite and festival, and foreign ones of
# festival, whose phones are learnt as the phonemes that they are near to (training/corpus/
# RecordedVoices.cpp). Sourced by the stages of the languages; uses what training/make-models defines:
# both, bin, work.

# What each is made from is in NOTICE. The foreign ones apart by licence: those that may be used freely
# and those under the GPL or the LGPL.
voices_flite="kal16 awb rms slt"
voices_festival="ked_diphone kal_diphone"
voices_foreign_free="msu_ru_nsh_clunits"
voices_foreign_copyleft="lp_diphone czech_machac czech_dita czech_krb suo_fi_lj_diphone
  upc_ca_ona_hts telugu_NSK_diphone"
voices_foreign="$voices_foreign_free $voices_foreign_copyleft"

# English words are read by English voices in every language.
voices_words=resources/KEN-UTF8Order.txt

# voices_foreign_corpora LANGUAGE COUNT VOICE...: foreign voices, with their own phone times, which agree with
# forced alignment where that can tell; $work/VOICE.corpus.
voices_foreign_corpora() {
  local language=$1 count=$2 jobs=() voice seed=700
  shift 2
  for voice in "$@"; do
    seed=$((seed + 1))
    jobs+=("$bin/make-corpus --language $language --festival $voice --count $count --seed $seed \
      --out $work/$voice.corpus")
  done
  both "${jobs[@]}"
}

# voices_english_corpora LANGUAGE COUNT: English voices for another language than theirs, likewise.
voices_english_corpora() {
  local language=$1 count=$2 jobs=() voice seed=720
  for voice in $voices_flite; do
    seed=$((seed + 1))
    jobs+=("$bin/make-corpus --language $language --words $voices_words --flite $voice \
      --count $count --seed $seed --out $work/flite-$voice.corpus")
  done
  for voice in $voices_festival; do
    seed=$((seed + 1))
    jobs+=("$bin/make-corpus --language $language --words $voices_words --festival $voice \
      --count $count --seed $seed --out $work/$voice.corpus")
  done
  both "${jobs[@]}"
}
