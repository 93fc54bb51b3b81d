#include "platform/processor.h"

#include <cpuid.h>
#include <gtest/gtest.h>

namespace ormidex::platform {
namespace {

TEST(Processor, EveryProcessorThatRunsTheTestsHasBothMultimediaBits) {
  EXPECT_TRUE(HasMmx());
  EXPECT_TRUE(HasExtendedMmx());
}

TEST(Processor, TheMultimediaBitsAreThoseThatTheProcessorItselfNames) {
  unsigned eax = 0;
  unsigned ebx = 0;
  unsigned ecx = 0;
  unsigned edx = 0;
  ASSERT_NE(__get_cpuid(1, &eax, &ebx, &ecx, &edx), 0);
  EXPECT_EQ(HasMmx(), (edx >> 23 & 1u) != 0);
  EXPECT_EQ(HasExtendedMmx(), (edx >> 25 & 1u) != 0);
}

TEST(Processor, PretencesAreAnsweredUntilTheyAreDropped) {
  PretendProcessorForTesting(ProcessorPretence::kNoMmx);
  EXPECT_FALSE(HasMmx());
  EXPECT_FALSE(HasExtendedMmx());
  PretendProcessorForTesting(ProcessorPretence::kMmxOnly);
  EXPECT_TRUE(HasMmx());
  EXPECT_FALSE(HasExtendedMmx());
  PretendProcessorForTesting(ProcessorPretence::kMmxAndExtended);
  EXPECT_TRUE(HasMmx());
  EXPECT_TRUE(HasExtendedMmx());
  PretendProcessorForTesting(ProcessorPretence::kNone);
  EXPECT_TRUE(HasMmx());
}

TEST(Processor, VectorFeaturesAgreeWithTheCompilersRunTime) {
  const VectorFeatures features = DetectVectorFeatures();
  __builtin_cpu_init();
  EXPECT_EQ(features.sse2, __builtin_cpu_supports("sse2") != 0);
  EXPECT_EQ(features.ssse3, __builtin_cpu_supports("ssse3") != 0);
  EXPECT_EQ(features.avx2, __builtin_cpu_supports("avx2") != 0);
  EXPECT_EQ(features.avx512_vbmi, __builtin_cpu_supports("avx512vbmi") != 0);
}

}  // namespace
}  // namespace ormidex::platform
