#include "signal/CWaveFrameDef.h"

namespace veral3 {

static_assert(NumFrames(550) == 0);
static_assert(NumFrames(551) == 1);
static_assert(NumFrames(770) == 1);
static_assert(NumFrames(771) == 2);

}  // namespace veral3
