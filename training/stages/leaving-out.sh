# What is left out together, because it is one speaker: every voice that was made from one person's
# recordings, whichever synthesiser it is of. Sourced by training/leave-one-out and training/evaluate.
#
#   rms  the man of flite's rms
#   kal  flite's kal16 and festival's kal_diphone
#   slt  flite's slt, and the HMM voice made from her recordings, which is only ever measured
#   dev  flite's awb and festival's ked: settings are chosen on these two, so their figures stand apart
left_out_sets="rms kal slt dev"

# The voices of a set, as training/work/en names their files.
voices_left_out() {
  case $1 in
    rms) echo flite-rms ;;
    kal) echo flite-kal16 festival-kal ;;
    slt) echo flite-slt ;;
    dev) echo flite-awb festival-ked ;;
    *)
      echo "no such set of voices: $1 (one of $left_out_sets)" >&2
      return 2
      ;;
  esac
}

# without SET FILE...: those files that none of the set's voices speaks in. A voice's files are named
# after it, as in flite-rms.features or flite-rms-pieces.features.
without() {
  local voices file voice name
  voices=$(voices_left_out "$1") || return
  shift
  for file in "$@"; do
    name=$(basename "$file")
    for voice in $voices; do
      case $name in
        "$voice".* | "$voice"-*) continue 2 ;;
      esac
    done
    echo "$file"
  done
}
