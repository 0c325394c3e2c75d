# Corpora that are only measured on, beside the held-out ones that training/make-models makes. Sourced
# by training/evaluate, which gives `bin` and `root`; what is there already is not made again.
#
#   held-hmm, held-kal, held-ked     held-out sentences by festival's voices
#   rare-VOICE                       sentences full of rare sounds
#   held-virtual                     the held-out sentences of a language, each by a virtual speaker

dictionary_of() { echo "resources/$(training/languages "$1" | cut -d' ' -f4)"; }

# The synthesiser and voice of a name, as arguments of make-corpus.
speaker_of() {
  case $1 in
    kal16 | awb | rms | slt) echo "--flite $1" ;;
    kal | ked) echo "--festival $1_diphone" ;;
    hmm) echo "--festival cmu_us_slt_arctic_hts" ;;
  esac
}

# measuring_corpus NAME SEED ARGUMENTS...: speaks it and aligns it by the model of the first round,
# which heard espeak-ng alone.
measuring_corpus() {
  local out=$root/en/$1 seed=$2
  shift 2
  if [ -f "$out.corpus" ]; then return; fi
  "$bin/make-corpus" --held-out --seed "$seed" --out "$out.raw" "$@"
  "$bin/align-corpus" --threads 1 --model "$root/en/frame-first.model" --corpus "$out.raw" \
    --out "$out.corpus"
}

english_measuring_corpora() {
  local voice seed=930
  measuring_corpus held-hmm 920 $(speaker_of hmm) --count 300
  measuring_corpus held-kal 921 $(speaker_of kal) --count 120
  measuring_corpus held-ked 922 $(speaker_of ked) --count 120
  for voice in hmm kal16 awb rms slt kal ked; do
    seed=$((seed + 1))
    measuring_corpus "rare-$voice" $seed $(speaker_of $voice) --rare --count 150
  done
  if [ ! -f "$root/en/rare.corpus" ]; then
    "$bin/make-corpus" --held-out --rare --count 200 --seed 930 --out "$root/en/rare.corpus"
  fi
}

# virtual_corpus LANGUAGE
virtual_corpus() {
  if [ -f "$root/$1/held-virtual.corpus" ]; then return; fi
  "$bin/make-virtual-corpus" --corpus "$root/$1/held.corpus" --seed 940 \
    --out "$root/$1/held-virtual.corpus"
}
