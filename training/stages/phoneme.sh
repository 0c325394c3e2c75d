# The phoneme classifier of a language: a second time with little dropout. Sourced by the stages of
# the languages.

# phoneme_rounds NUMBER NAME FEATURES...
phoneme_rounds() {
  local number=$1 name=$2
  shift 2
  local same=(--kind phoneme --language "$number" --threads "$threads" --features "$@"
    --test "$work/held.features" --epochs 10 --batch 512 --jitter 1)
  $bin/train-network "${same[@]}" --hidden 640 320 --dropout 0.2 --seed 4 \
    --out "$work/phoneme-first.net"
  $bin/train-network "${same[@]}" --start "$work/phoneme-first.net" --rate 1.2e-3 --dropout 0.05 \
    --seed 6 --out "$work/phoneme.net" --model "resources/${name}Phon.model" --version 1
}
