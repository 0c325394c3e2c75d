# The phoneme classifier of a language: a second time with little dropout. Sourced by the stages of
# the languages and by training/leave-one-out.

# phoneme_rounds NUMBER FOLDER MODEL FEATURES...: the networks are left in FOLDER, the model where
# MODEL says.
phoneme_rounds() {
  local number=$1 folder=$2 model=$3
  shift 3
  local same=(--kind phoneme --language "$number" --threads "$threads" --features "$@"
    --test "$work/held.features" --epochs 10 --batch 512 --jitter 1)
  $bin/train-network "${same[@]}" --hidden 640 320 --dropout 0.2 --seed 4 \
    --out "$folder/phoneme-first.net"
  $bin/train-network "${same[@]}" --start "$folder/phoneme-first.net" --rate 1.2e-3 --dropout 0.05 \
    --seed 6 --out "$folder/phoneme.net" --model "$model" --version 1
}
