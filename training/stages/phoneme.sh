# The phoneme classifier of a language: two networks, each from weights of its own, then a third that
# learns from the examples and from what these two make of them. Sourced by the stages of the
# languages and by training/leave-one-out.

phoneme_hidden="768 384"
phoneme_temperature=1.0  # of the model file; chosen on the voices of the set dev

# phoneme_teacher NUMBER SEED EXAMPLES FOLDER FEATURES...: FOLDER/phoneme-SEED.net, in eight rounds of
# so many examples. Shares stand among the features (train-network --help).
phoneme_teacher() {
  local number=$1 seed=$2 examples=$3 folder=$4
  shift 4
  $bin/train-network --kind phoneme --language "$number" --threads $threads --features "$@" \
    --test "$work/held.features" --epoch-size "$examples" --epochs 8 --batch 512 --jitter 1 \
    --hidden $phoneme_hidden --dropout 0.25 --seed "$seed" --out "$folder/phoneme-$seed.net"
}

# phoneme_alone NUMBER EXAMPLES FOLDER MODEL FEATURES...: one network without teachers, which costs a
# third: for models that leave a voice out.
phoneme_alone() {
  local number=$1 examples=$2 folder=$3 model=$4
  shift 4
  $bin/train-network --kind phoneme --language "$number" --threads $threads --features "$@" \
    --test "$work/held.features" --epoch-size "$examples" --epochs 10 --batch 512 --jitter 1 \
    --hidden $phoneme_hidden --dropout 0.25 --seed 4 --as-scored --temperature $phoneme_temperature \
    --out "$folder/phoneme.net" --model "$model" --version 1
}

# phoneme_student NUMBER EXAMPLES FOLDER MODEL FEATURES...: from the two teachers in FOLDER, in ten
# rounds.
phoneme_student() {
  local number=$1 examples=$2 folder=$3 model=$4
  shift 4
  $bin/train-network --kind phoneme --language "$number" --threads $threads --features "$@" \
    --test "$work/held.features" --epoch-size "$examples" --epochs 10 --batch 512 --jitter 1 \
    --hidden $phoneme_hidden --dropout 0.1 --seed 6 --teachers "$folder"/phoneme-[45].net \
    --teaching 0.6 --as-scored --temperature $phoneme_temperature --out "$folder/phoneme.net" \
    --model "$model" --version 1
}
