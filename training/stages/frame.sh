# The frame classifier's last rounds: all voices, phoneme boundaries where they are. Sourced by the
# stages of the languages and by training/leave-one-out.

# frame_rounds NUMBER EPOCHS START FOLDER MODEL FEATURES...: the network is left in FOLDER, the model
# where MODEL says. Among the features stand shares (train-network --help). What is measured while
# learning is $work/held.features.
frame_rounds() {
  local number=$1 epochs=$2 start=$3 folder=$4 model=$5
  shift 5
  $bin/train-network --kind frame --language "$number" --start "$start" --threads $threads \
    --features "$@" --test "$work/held.features" --epoch-size 6000000 --epochs "$epochs" \
    --batch 512 --rate 1.5e-3 --jitter 0 --dropout 0 --sparsity 0.03 --seed 2 \
    --out "$folder/frame.net" --model "$model" --version 1
}
