# The phoneme classifier of a language: two networks, each from weights of its own, then a third that
# learns from the examples and from what these two make of them. Sourced by the stages of the
# languages and by training/leave-one-out.

phoneme_hidden="768 384"
phoneme_temperature=1.0  # of the model file; chosen on the voices of the set dev

# phoneme_network NUMBER EXAMPLES ARGUMENTS...: one network, in rounds of so many examples; the arguments
# name what it learns from (with shares among the features: train-network --help) and where it goes.
phoneme_network() {
  local number=$1 examples=$2
  shift 2
  $bin/train-network --kind phoneme --language "$number" --threads $threads \
    --test "$work/held.features" --epoch-size "$examples" --batch 512 --jitter 1 \
    --hidden $phoneme_hidden "$@"
}

# phoneme_teacher NUMBER SEED EXAMPLES FOLDER FEATURES...: FOLDER/phoneme-SEED.net.
phoneme_teacher() {
  local number=$1 seed=$2 examples=$3 folder=$4
  shift 4
  phoneme_network "$number" "$examples" --features "$@" --epochs 8 --dropout 0.25 --seed "$seed" \
    --out "$folder/phoneme-$seed.net"
}

# phoneme_model NUMBER EXAMPLES FOLDER MODEL ARGUMENTS...: FOLDER/phoneme.net and the model file.
phoneme_model() {
  local number=$1 examples=$2 folder=$3 model=$4
  shift 4
  phoneme_network "$number" "$examples" "$@" --epochs 10 --out "$folder/phoneme.net" \
    --as-scored --temperature $phoneme_temperature --model "$model" --version 1
}

# phoneme_alone NUMBER EXAMPLES FOLDER MODEL FEATURES...: without teachers, which costs a third: for
# models that leave a voice out.
phoneme_alone() {
  phoneme_model "${@:1:4}" --features "${@:5}" --dropout 0.25 --seed 4
}

# phoneme_student NUMBER EXAMPLES FOLDER MODEL FEATURES...: from the two teachers in FOLDER as well.
phoneme_student() {
  phoneme_model "${@:1:4}" --features "${@:5}" --dropout 0.1 --seed 6 \
    --teachers "$3"/phoneme-[45].net --teaching 0.6
}
