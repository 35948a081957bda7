#include "Foundation/Text/VectorTargets.h"

#if HWY_ARCH_X86 && __has_include(<sys/platform/x86.h>)
// The header is C's.
#define _Bool bool  // NOLINT(bugprone-reserved-identifier)
#include <sys/platform/x86.h>
#undef _Bool

std::int64_t NSVectorTargets() noexcept {
  const auto has = [](auto... features) { return (x86_cpu_active(features) && ...); };
  std::int64_t targets = HWY_ENABLED_BASELINE;
  if (!has(x86_cpu_SSSE3)) return targets;
  targets |= HWY_SSSE3;
  if (!has(x86_cpu_SSE4_1, x86_cpu_SSE4_2, x86_cpu_PCLMULQDQ, x86_cpu_AES)) return targets;
  targets |= HWY_SSE4;
  if (!has(x86_cpu_AVX, x86_cpu_AVX2, x86_cpu_LZCNT, x86_cpu_BMI1, x86_cpu_BMI2, x86_cpu_FMA,
           x86_cpu_F16C)) {
    return targets;
  }
  targets |= HWY_AVX2;
  if (!has(x86_cpu_AVX512F, x86_cpu_AVX512VL, x86_cpu_AVX512DQ, x86_cpu_AVX512BW)) return targets;
  targets |= HWY_AVX3;
  if (has(x86_cpu_AVX512_VNNI, x86_cpu_VPCLMULQDQ, x86_cpu_AVX512_VBMI, x86_cpu_AVX512_VBMI2,
          x86_cpu_VAES, x86_cpu_AVX512_VPOPCNTDQ, x86_cpu_AVX512_BITALG)) {
    targets |= HWY_AVX3_DL;
  }
  return targets;
}
#else
std::int64_t NSVectorTargets() noexcept { return HWY_ENABLED_BASELINE; }
#endif

hwy::ChosenTarget& NSChosenVectorTarget() noexcept {
  static constinit hwy::ChosenTarget target;
  return target;
}

// All that Highway's headers need of its shared library, which takes 3 ms to load: it measures the
// processor's clock.
namespace hwy {

int64_t SupportedTargets() { return NSVectorTargets(); }

ChosenTarget& GetChosenTarget() { return NSChosenVectorTarget(); }

}  // namespace hwy
