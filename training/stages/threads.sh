# How the training programs use the processor. Sourced by the scripts that train; `threads` says how
# many threads a program has (1 where it is not set).

# Two threads that wait for each other by spinning lose on a machine that has other work.
export OMP_WAIT_POLICY=passive GOMP_SPINCOUNT=0
export OMP_NUM_THREADS=${threads:-1} OPENBLAS_NUM_THREADS=${threads:-1}
# Debian's OpenBLAS takes a processor that is younger than itself for an old one, at half the speed.
if grep -qw avx512vl /proc/cpuinfo; then
  export OPENBLAS_CORETYPE=${OPENBLAS_CORETYPE:-SkylakeX}
fi
