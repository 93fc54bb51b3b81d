// What the processor says of itself.
#ifndef ORMIDEX_PLATFORM_PROCESSOR_H_
#define ORMIDEX_PLATFORM_PROCESSOR_H_

namespace ormidex::platform {

// Identification leaf 1, EDX bit 23 and bit 25; asked anew at each call, of the
// processor or of the C library's copy of the word. These two decide which
// rounding the bilinear conversion uses.
bool HasMmx() noexcept;
bool HasExtendedMmx() noexcept;

// Instruction sets that both the processor and the operating system support.
struct VectorFeatures {
  bool sse2 = false;
  bool ssse3 = false;
  bool avx2 = false;
  bool avx512_vbmi = false;  // with F, BW, DQ, VL and VBMI
  bool avx512_vnni = false;  // beside these, VNNI
};
VectorFeatures DetectVectorFeatures() noexcept;

// Tests: pretend another answer of HasMmx and HasExtendedMmx.
enum class ProcessorPretence { kNone, kNoMmx, kMmxOnly, kMmxAndExtended };
void PretendProcessorForTesting(ProcessorPretence pretence) noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_PROCESSOR_H_
