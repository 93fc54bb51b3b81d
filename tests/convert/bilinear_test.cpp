// Code 1, against values worked out by hand.
#include "convert/pictures.h"

namespace ormidex::convert {
namespace {

using platform::ProcessorPretence;

// Phase 0:  R G R G
//           G B G B
const RawPicture kFrame{4,
                        4,
                        {10, 21, 32, 47,     //
                         53, 64, 78, 81,     //
                         95, 102, 111, 129,  //
                         130, 143, 158, 166}};

using Pixels = std::vector<Colour>;

const Pixels kTopRow{{10, 37, 64}, {21, 21, 64}, {32, 34, 72}, {32, 47, 81}};
const Pixels kBottomRow{{95, 130, 143}, {103, 144, 143}, {111, 158, 154}, {111, 143, 166}};

TEST(Bilinear, PortableRoutineOnAFourByFourFrame) {
  const ProcessorPretended no_mmx(ProcessorPretence::kNoMmx);
  const Image image = To24From8(kFrame, kBilinear);
  EXPECT_EQ(image.status, kOk);
  EXPECT_EQ(image.Row(0), kTopRow);
  EXPECT_EQ(image.Row(1), (Pixels{{10, 53, 64}, {62, 63, 64}, {71, 78, 72}, {32, 62, 81}}));
  EXPECT_EQ(image.Row(2),
            (Pixels{{95, 116, 143}, {103, 102, 103}, {111, 116, 113}, {111, 129, 166}}));
  EXPECT_EQ(image.Row(3), kBottomRow);
}

TEST(Bilinear, MmxRoundingFormsMeansOfMeansInInteriorRows) {
  const ProcessorPretended mmx(ProcessorPretence::kMmxOnly);
  const Image image = To24From8(kFrame, kBilinear);
  EXPECT_EQ(image.Row(0), kTopRow);
  EXPECT_EQ(image.Row(1), (Pixels{{52, 53, 64}, {61, 63, 64}, {71, 78, 72}, {71, 83, 81}}));
  EXPECT_EQ(image.Row(2),
            (Pixels{{95, 96, 103}, {103, 102, 103}, {111, 116, 113}, {111, 129, 123}}));
  EXPECT_EQ(image.Row(3), kBottomRow);
}

TEST(Bilinear, ExtendedRoundingRoundsPairsUpInInteriorRowsOnly) {
  const ProcessorPretended extended(ProcessorPretence::kMmxAndExtended);
  const Image image = To24From8(kFrame, kBilinear);
  EXPECT_EQ(image.Row(0), kTopRow);
  EXPECT_EQ(image.Row(1), (Pixels{{53, 53, 64}, {62, 64, 64}, {72, 78, 73}, {72, 83, 81}}));
  EXPECT_EQ(image.Row(2),
            (Pixels{{95, 97, 104}, {103, 102, 104}, {111, 117, 114}, {111, 129, 124}}));
  EXPECT_EQ(image.Row(3), kBottomRow);
}

TEST(Bilinear, DiagonalsOneNoughtOneTwoDifferBetweenMmxAndPortable) {
  RawPicture frame{4, 4, std::vector<unsigned>(16, 0)};
  frame.samples[0] = 1;      // up-left of the blue site (1, 1)
  frame.samples[2] = 1;      // up-right
  frame.samples[2 * 4] = 0;  // down-left
  frame.samples[2 * 4 + 2] = 2;
  {
    const ProcessorPretended mmx(ProcessorPretence::kMmxOnly);
    EXPECT_EQ(To24From8(frame, kBilinear).At(1, 1).red, 0u);
  }
  const ProcessorPretended no_mmx(ProcessorPretence::kNoMmx);
  EXPECT_EQ(To24From8(frame, kBilinear).At(1, 1).red, 1u);
}

TEST(Bilinear, VerticalPairTenElevenGivesElevenWithTheExtendedSet) {
  RawPicture frame{4, 4, std::vector<unsigned>(16, 0)};
  frame.samples[2] = 10;  // red above the green site (2, 1)
  frame.samples[2 * 4 + 2] = 11;
  {
    const ProcessorPretended mmx(ProcessorPretence::kMmxOnly);
    EXPECT_EQ(To24From8(frame, kBilinear).At(2, 1).red, 10u);
  }
  const ProcessorPretended extended(ProcessorPretence::kMmxAndExtended);
  EXPECT_EQ(To24From8(frame, kBilinear).At(2, 1).red, 11u);
}

// The frame above with a fifth column: the width is no longer a multiple of 4.
TEST(Bilinear, WidthNotAMultipleOfFourUsesThePortableRoutine) {
  const RawPicture frame{5,
                         3,
                         {1, 0, 1, 0, 0,  //
                          0, 0, 0, 0, 0,  //
                          0, 0, 2, 0, 0}};
  for (const ProcessorPretence pretence : {ProcessorPretence::kNoMmx, ProcessorPretence::kMmxOnly,
                                           ProcessorPretence::kMmxAndExtended}) {
    const ProcessorPretended processor(pretence);
    // Red diagonals 1, 0, 1, 2: only a sum of four divided by four gives 1.
    EXPECT_EQ(To24From8(frame, kBilinear).At(1, 1), (Colour{1, 0, 0}));
  }
}

TEST(Bilinear, LastRowOfAnOddHeightLooksUp) {
  const RawPicture frame{5,
                         3,
                         {10, 20, 30, 40, 50,   //
                          60, 70, 80, 90, 100,  //
                          110, 120, 130, 140, 150}};
  const Image image = To24From8(frame, kBilinear);
  EXPECT_EQ(image.At(0, 2), (Colour{110, (120 + 60) / 2, 70}));
  EXPECT_EQ(image.At(1, 2), (Colour{120, 120, 70}));
  EXPECT_EQ(image.At(2, 2), (Colour{130, 130, 80}));
  EXPECT_EQ(image.At(4, 2), (Colour{150, (140 + 100) / 2, 90}));
}

// Phase 1:  G R G R      Phase 2:  B G B G
//           B G B G                G R G R
TEST(Bilinear, BayerPhasesChangeWhichColourASampleIs) {
  const ProcessorPretended no_mmx(ProcessorPretence::kNoMmx);
  const Image phase1 = To24From8(kFrame, kBilinear, 1);
  EXPECT_EQ(phase1.At(0, 0), (Colour{21, 10, 53}));
  EXPECT_EQ(phase1.At(1, 0), (Colour{21, (10 + 32) / 2, (53 + 78) / 2}));
  EXPECT_EQ(phase1.At(1, 1), (Colour{(21 + 102) / 2, 64, (53 + 78) / 2}));
  EXPECT_EQ(phase1.At(2, 1), (Colour{(21 + 47 + 102 + 129) / 4, (64 + 81 + 32 + 111) / 4, 78}));

  const Image phase2 = To24From8(kFrame, kBilinear, 2);
  EXPECT_EQ(phase2.At(0, 0), (Colour{64, 37, 10}));
  EXPECT_EQ(phase2.At(1, 1), (Colour{64, 63, 62}));
  EXPECT_EQ(To24From8(kFrame, kBilinear, 77).bytes, phase2.bytes) << "any other phase is phase 2";
}

TEST(Bilinear, SixteenBitFormReadsTheHighByteWithoutRounding) {
  RawPicture frame = kFrame;
  for (unsigned& sample : frame.samples) {
    sample = sample * 256 + 0xFF;
  }
  const ProcessorPretended mmx(ProcessorPretence::kMmxOnly);
  EXPECT_EQ(To24From16(frame, kBilinear).bytes, To24From8(kFrame, kBilinear).bytes);
  const RawPicture single{1, 1, {0x01FF}};
  EXPECT_EQ(To24From16(single, kBilinear).At(0, 0).red, 1u);
}

TEST(Bilinear, SixteenBitFormNeverUsesTheExtendedRounding) {
  RawPicture frame{4, 4, std::vector<unsigned>(16, 0)};
  frame.samples[2] = 10 << 8;
  frame.samples[2 * 4 + 2] = 11 << 8;
  const ProcessorPretended extended(ProcessorPretence::kMmxAndExtended);
  EXPECT_EQ(To24From16(frame, kBilinear).At(2, 1).red, 10u);
}

TEST(Bilinear, FortyEightBitFormKeepsWholeSamplesAndPortableRounding) {
  const RawPicture frame{4,
                         3,
                         {60001, 1, 60003, 2,  //
                          3, 65535, 5, 7,      //
                          60002, 8, 60004, 9}};
  const ProcessorPretended extended(ProcessorPretence::kMmxAndExtended);
  const Image image = To48From16(frame, kBilinear);
  EXPECT_EQ(image.At(1, 1), (Colour{60002, (3 + 5 + 1 + 8) / 4, 65535}));
  EXPECT_EQ(image.At(2, 1), (Colour{60003, 5, (65535 + 7) / 2}));
  EXPECT_EQ(image.At(0, 0), (Colour{60001, 2, 65535}));
}

TEST(Bilinear, FirstOutputRowIsTheBottomSourceRowWithoutPadding) {
  const RawPicture frame{3, 2, {1, 2, 3, 4, 5, 6}};
  const Image image = To24From8(frame, kBilinear);
  ASSERT_EQ(image.bytes.size(), 18u);
  // Bottom row G B G: (4: B=5 R=1), (5: G=(4+6)/2 R=(1+3)/2), (6: B=5 R=3).
  const std::vector<std::uint8_t> bottom{5, 4, 1, 5, 5, 2, 5, 6, 3};
  EXPECT_EQ(std::vector<std::uint8_t>(image.bytes.begin(), image.bytes.begin() + 9), bottom);
}

TEST(Bilinear, FramesOfOneRowOrColumnStandInForTheirMissingPartner) {
  EXPECT_EQ(To24From8({1, 1, {77}}, kBilinear).At(0, 0), Grey(77));
  // R G R: the row is its own partner.
  const Image row = To24From8({3, 1, {10, 20, 30}}, kBilinear);
  EXPECT_EQ(row.At(0, 0), (Colour{10, 20, 20}));
  EXPECT_EQ(row.At(1, 0), (Colour{20, 20, 20}));
  // R over G.
  const Image column = To24From8({1, 2, {10, 20}}, kBilinear);
  EXPECT_EQ(column.At(0, 0), (Colour{10, 20, 20}));
}

TEST(Bilinear, EmptyFramesTouchNothing) {
  GuardedBuffer image(8);
  EXPECT_EQ(DemosaicTo24From8(image.Data(), 0, 5, image.Data(), kBilinear, 0), kOk);
  EXPECT_EQ(DemosaicTo24From8(image.Data(), 5, 0, image.Data(), kBilinear, 0), kOk);
  EXPECT_EQ(image.Contents(), std::vector<std::uint8_t>(8, kUntouched));
}

}  // namespace
}  // namespace ormidex::convert
