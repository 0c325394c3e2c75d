# How the training programs use the processor. Sourced by the scripts that train; `threads` says how
# many threads a program has (1 where it is not set).

# Two threads that wait for each other by spinning lose on a machine that has other work.
export OMP_WAIT_POLICY=passive GOMP_SPINCOUNT=0
export OMP_NUM_THREADS=${threads:-1} OPENBLAS_NUM_THREADS=${threads:-1}

# OpenBLAS chooses its kernels by the processor, and other kernels add in another order. The same ones
# on every machine that has AVX2: its.
if grep -qw avx2 /proc/cpuinfo; then export OPENBLAS_CORETYPE=Haswell OPENBLAS_L2_SIZE=512; fi

# with_avx512 COMMAND...: with the kernels of AVX-512 where the processor has them, which take two
# thirds of the time.
with_avx512() {
  if grep -qw avx512vl /proc/cpuinfo; then
    OPENBLAS_CORETYPE=SkylakeX "$@"
  else
    "$@"
  fi
}
