#include "recognition/keras/DenseKernels.h"

// One kernel for each generation of x86 vector instructions; SSE2 machines take the baseline.
// Vectors whose length is known at run time alone can't be kept in arrays; those machines take the
// baseline too.
#define HWY_DISABLED_TARGETS \
  (HWY_SSSE3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "recognition/keras/DenseKernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target has to come first.
#include <hwy/highway.h>

#include "recognition/keras/DenseKernels-inl.h"

#if HWY_ONCE

namespace keras {
namespace {

struct Built {
  std::int64_t target;
  const DenseKernel* kernel;
};

// Best first.
constexpr Built kBuilt[] = {
#if HWY_TARGETS & HWY_AVX3
    {HWY_AVX3, &N_AVX3::kDenseKernel},
#endif
#if HWY_TARGETS & HWY_AVX2
    {HWY_AVX2, &N_AVX2::kDenseKernel},
#endif
#if HWY_TARGETS & HWY_SSE4
    {HWY_SSE4, &N_SSE4::kDenseKernel},
#endif
#if !(HWY_STATIC_TARGET & (HWY_AVX3 | HWY_AVX2 | HWY_SSE4))
    {HWY_STATIC_TARGET, &HWY_STATIC_DISPATCH(kDenseKernel)},
#endif
};

}  // namespace

const std::vector<const DenseKernel*>& RunnableDenseKernels() {
  static const std::vector<const DenseKernel*> runnable = [] {
    std::vector<const DenseKernel*> kernels;
    for (const Built& built : kBuilt) {
      const std::int64_t runs = hwy::SupportedTargets() | HWY_STATIC_TARGET;
      if (built.target & runs) kernels.push_back(built.kernel);
    }
    return kernels;
  }();
  return runnable;
}

const std::vector<const char*>& BuiltDenseKernels() {
  static const std::vector<const char*> names = [] {
    std::vector<const char*> all;
    for (const Built& built : kBuilt) all.push_back(built.kernel->name);
    return all;
  }();
  return names;
}

}  // namespace keras

#endif  // HWY_ONCE
