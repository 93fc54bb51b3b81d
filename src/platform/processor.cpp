#include "platform/processor.h"

#include <cpuid.h>
// The header is written for compilers that know _Bool in C++.
#if __has_include(<sys/platform/x86.h>) && !defined(__clang__)
#define ORMIDEX_ASKS_C_LIBRARY
#include <sys/platform/x86.h>
#endif

#include <atomic>
#include <cstdint>

namespace ormidex::platform {
namespace {

std::atomic<ProcessorPretence> pretence_in_force{ProcessorPretence::kNone};

struct Leaf {
  unsigned eax = 0;
  unsigned ebx = 0;
  unsigned ecx = 0;
  unsigned edx = 0;
};

// All zero when the processor does not have the leaf.
Leaf Identify(unsigned leaf) {
  Leaf result;
  if (__get_cpuid_count(leaf, 0, &result.eax, &result.ebx, &result.ecx, &result.edx) == 0) {
    return Leaf{};
  }
  return result;
}

constexpr bool Bit(unsigned word, int index) { return ((word >> index) & 1u) != 0; }

// Leaf 1 EDX has the two multimedia bits. They are asked for on every conversion, of
// the C library where it offers its copy of the word: the instruction itself costs
// microseconds under a hypervisor, a sixth of a small picture's conversion.
constexpr int kMmxBit = 23;
constexpr int kExtendedBit = 25;
#ifdef ORMIDEX_ASKS_C_LIBRARY
bool HasBasicFeature(int bit) {
  static_assert(x86_cpu_MMX == 3 * 32 + kMmxBit && x86_cpu_SSE == 3 * 32 + kExtendedBit,
                "the C library counts the bits of leaf 1 in the order EAX, EBX, ECX, EDX");
  return bit == kMmxBit ? CPU_FEATURE_PRESENT(MMX) : CPU_FEATURE_PRESENT(SSE);
}
#else
// A single instruction. Only its presence, which an old 32-bit processor may lack, is
// remembered.
bool HasBasicFeature(int bit) {
  static const bool can_identify = __get_cpuid_max(0, nullptr) >= 1;
  if (!can_identify) {
    return false;
  }
  Leaf leaf;
  __cpuid(1, leaf.eax, leaf.ebx, leaf.ecx, leaf.edx);
  return Bit(leaf.edx, bit);
}
#endif

// Register states that the operating system saves for a thread. Only defined
// where the OSXSAVE bit is set.
std::uint32_t EnabledStates() {
  std::uint32_t low = 0;
  std::uint32_t high = 0;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return low;
}

constexpr std::uint32_t kAvxStates = 0x06;     // XMM and YMM
constexpr std::uint32_t kAvx512States = 0xE6;  // and opmask, upper ZMM, ZMM16 to 31

bool HasAvx512Vbmi(const Leaf& extended) {
  const bool foundation = Bit(extended.ebx, 16);
  const bool dq = Bit(extended.ebx, 17);
  const bool bw = Bit(extended.ebx, 30);
  const bool vl = Bit(extended.ebx, 31);
  const bool vbmi = Bit(extended.ecx, 1);
  return foundation && dq && bw && vl && vbmi;
}

}  // namespace

bool HasMmx() noexcept {
  const ProcessorPretence pretence = pretence_in_force.load(std::memory_order_relaxed);
  if (pretence != ProcessorPretence::kNone) {
    return pretence != ProcessorPretence::kNoMmx;
  }
  return HasBasicFeature(kMmxBit);
}

bool HasExtendedMmx() noexcept {
  const ProcessorPretence pretence = pretence_in_force.load(std::memory_order_relaxed);
  if (pretence != ProcessorPretence::kNone) {
    return pretence == ProcessorPretence::kMmxAndExtended;
  }
  return HasBasicFeature(kExtendedBit);
}

VectorFeatures DetectVectorFeatures() noexcept {
  const Leaf basic = Identify(1);
  VectorFeatures features;
  features.sse2 = Bit(basic.edx, 26);
  features.ssse3 = Bit(basic.ecx, 9);

  const bool os_saves_states = Bit(basic.ecx, 27);
  const bool has_avx = Bit(basic.ecx, 28);
  if (!os_saves_states || !has_avx) {
    return features;
  }
  const std::uint32_t states = EnabledStates();
  const Leaf extended = Identify(7);
  features.avx2 = (states & kAvxStates) == kAvxStates && Bit(extended.ebx, 5);
  features.avx512_vbmi =
      features.avx2 && (states & kAvx512States) == kAvx512States && HasAvx512Vbmi(extended);
  features.avx512_vnni = features.avx512_vbmi && Bit(extended.ecx, 11);
  return features;
}

void PretendProcessorForTesting(ProcessorPretence pretence) noexcept {
  pretence_in_force.store(pretence, std::memory_order_relaxed);
}

}  // namespace ormidex::platform
