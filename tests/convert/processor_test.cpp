#include "platform/processor.h"

#include <gtest/gtest.h>

namespace ormidex::platform {
namespace {

TEST(Processor, EveryProcessorThatRunsTheTestsHasBothMultimediaBits) {
  EXPECT_TRUE(HasMmx());
  EXPECT_TRUE(HasExtendedMmx());
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
