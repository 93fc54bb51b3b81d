// The codes other than bilinear, against values worked out by hand.
#include "convert/neighbourhood.h"
#include "convert/pictures.h"
#include "platform/fault_points.h"

namespace ormidex::convert {
namespace {

using Pixels = std::vector<Colour>;

constexpr std::uint32_t kEveryCode[] = {0, 1, 2, 3, 4, 5, 16, 17, 18, 255};

// R G R G
// G B G B
const RawPicture kFrame{4,
                        4,
                        {10, 21, 32, 47,     //
                         53, 64, 78, 81,     //
                         95, 102, 111, 129,  //
                         130, 143, 158, 166}};

RawPicture Flat(std::uint32_t width, std::uint32_t height, unsigned value) {
  return {width, height, std::vector<unsigned>(std::size_t{width} * height, value)};
}

// A frame of noughts but for the samples named.
struct Dot {
  std::size_t x;
  std::size_t y;
  unsigned value;
};
RawPicture Dots(std::uint32_t width, std::uint32_t height, const std::vector<Dot>& dots) {
  RawPicture frame = Flat(width, height, 0);
  for (const Dot& dot : dots) {
    frame.samples[dot.y * width + dot.x] = dot.value;
  }
  return frame;
}

TEST(EveryCode, UniformGreyStaysGreyExceptInTheMosaicDisplay) {
  for (const std::uint32_t code : kEveryCode) {
    if (code == kRawMosaic) continue;
    for (std::uint32_t height = 1; height <= 6; ++height) {
      for (std::uint32_t width = 1; width <= 8; ++width) {
        if (code == kGreyHorizontal && width % 4 != 0) continue;
        SCOPED_TRACE(testing::Message() << "code " << code << ", " << width << " x " << height);
        const Image narrow = To24From8(Flat(width, height, 128), code);
        const Image high = To24From16(Flat(width, height, 0x80FF), code);
        const Image wide = To48From16(Flat(width, height, 0x80FF), code);
        for (std::size_t y = 0; y < height; ++y) {
          ASSERT_EQ(narrow.Row(y), Pixels(width, Grey(128)));
          ASSERT_EQ(high.Row(y), Pixels(width, Grey(128)));
          ASSERT_EQ(wide.Row(y), Pixels(width, Grey(0x80FF)));
        }
      }
    }
  }
}

TEST(EveryCode, OnlyTheBilinearCodeHonoursTheBayerPhase) {
  for (const std::uint32_t code : kEveryCode) {
    for (const std::uint32_t phase : {1u, 2u}) {
      SCOPED_TRACE(testing::Message() << "code " << code << ", phase " << phase);
      const bool same = To24From8(kFrame, code, phase).bytes == To24From8(kFrame, code).bytes;
      EXPECT_EQ(same, code != kBilinear);
    }
  }
}

TEST(EveryCode, SixteenBitFormEqualsTheEightBitFormOnHighBytes) {
  const ProcessorPretended no_mmx(platform::ProcessorPretence::kNoMmx);
  RawPicture words = kFrame;
  for (std::size_t i = 0; i < words.samples.size(); ++i) {
    words.samples[i] = words.samples[i] * 256 + 17 * static_cast<unsigned>(i) % 256;
  }
  for (const std::uint32_t code : kEveryCode) {
    EXPECT_EQ(To24From16(words, code).bytes, To24From8(kFrame, code).bytes) << "code " << code;
  }
}

TEST(EveryCode, FramesOfNoPixelsTouchNothing) {
  for (const std::uint32_t code : kEveryCode) {
    GuardedBuffer memory(8);
    EXPECT_EQ(DemosaicTo24From8(memory.Data(), 0, 4, memory.Data(), code, 0), kOk);
    EXPECT_EQ(DemosaicTo24From16(memory.Data(), 4, 0, memory.Data(), code, 0), kOk);
    EXPECT_EQ(DemosaicTo48From16(memory.Data(), 0, 0, memory.Data(), code, 0), kOk);
    EXPECT_EQ(memory.Contents(), std::vector<std::uint8_t>(8, kUntouched)) << "code " << code;
  }
}

TEST(ConversionCodes, OnlyTheTenCodesAreValid) {
  std::vector<std::uint32_t> valid;
  for (std::uint32_t code = 0; code < 600; ++code) {
    if (IsConversionCode(code)) valid.push_back(code);
  }
  EXPECT_EQ(valid, std::vector<std::uint32_t>(std::begin(kEveryCode), std::end(kEveryCode)));
  EXPECT_FALSE(IsConversionCode(0xFFFFFFFFu));
}

// ---- Code 0 ----------------------------------------------------------------

TEST(Replication, PictureSitsOneRowLowAndTheTopRowRepeats) {
  const Image image = To24From8(kFrame, kReplication);
  const Pixels first_blocks{{10, (21 + 53) / 2, 64},
                            {32, (21 + 78) / 2, 64},
                            {32, (47 + 78) / 2, 81},
                            {32, (47 + 78) / 2, 81}};
  EXPECT_EQ(image.Row(0), first_blocks);
  EXPECT_EQ(image.Row(1), first_blocks);
  EXPECT_EQ(image.Row(2), (Pixels{{95, (53 + 102) / 2, 64},
                                  {111, (78 + 102) / 2, 64},
                                  {111, (78 + 129) / 2, 81},
                                  {111, (78 + 129) / 2, 81}}));
  EXPECT_EQ(image.Row(3), (Pixels{{95, (102 + 130) / 2, 143},
                                  {111, (102 + 158) / 2, 143},
                                  {111, (129 + 158) / 2, 166},
                                  {111, (129 + 158) / 2, 166}}));
}

TEST(Replication, SingleRowsAndColumnsUseTheColoursTheyHave) {
  EXPECT_EQ(To24From8({1, 1, {9}}, kReplication).At(0, 0), Grey(9));
  const Image row = To24From8({3, 1, {10, 20, 30}}, kReplication);
  EXPECT_EQ(row.Row(0), (Pixels{{10, 20, 20}, {30, 20, 20}, {30, 20, 20}}));
  const Image column = To24From8({1, 3, {10, 20, 30}}, kReplication);
  EXPECT_EQ(column.At(0, 0), (Colour{10, 20, 20}));
  EXPECT_EQ(column.At(0, 1), (Colour{10, 20, 20}));
  EXPECT_EQ(column.At(0, 2), (Colour{30, 20, 20}));
}

// ---- Codes 2 and 17 --------------------------------------------------------

TEST(EdgeBilinear, DifferenceOfNineTakesTheCalmerPairAndEightTakesAllFour) {
  // Around the blue site (1, 1): left 20, right 0, up 11 or 12, down 0.
  const RawPicture nine = Dots(4, 4, {{0, 1, 20}, {1, 0, 11}});
  const RawPicture eight = Dots(4, 4, {{0, 1, 20}, {1, 0, 12}});
  EXPECT_EQ(To24From8(nine, kEdgeBilinear).At(1, 1).green, 11u / 2);
  EXPECT_EQ(To24From8(eight, kEdgeBilinear).At(1, 1).green, (20u + 12u) / 4);
  EXPECT_EQ(To24From8(nine, kGreyEdge).At(1, 1), Grey(5));
  EXPECT_EQ(To24From8(eight, kGreyEdge).At(1, 1), Grey(8));
}

TEST(EdgeBilinear, HorizontalPairIsTakenWhereItIsCalmer) {
  const RawPicture frame = Dots(4, 4, {{0, 1, 11}, {1, 0, 20}});
  EXPECT_EQ(To24From8(frame, kEdgeBilinear).At(1, 1).green, 11u / 2);
}

TEST(EdgeBilinear, ThresholdIsNotScaledForSixteenBitSamples) {
  const RawPicture nine = Dots(4, 4, {{0, 1, 20}, {1, 0, 11}});
  const RawPicture eight = Dots(4, 4, {{0, 1, 20}, {1, 0, 12}});
  EXPECT_EQ(To48From16(nine, kEdgeBilinear).At(1, 1).green, 5u);
  EXPECT_EQ(To48From16(eight, kEdgeBilinear).At(1, 1).green, 8u);
  EXPECT_EQ(To48From16(nine, kGreyEdge).At(1, 1), Grey(5));
}

TEST(EdgeBilinear, BorderGreensAreTheMeanOfThoseThatExist) {
  const Image image = To24From8(kFrame, kEdgeBilinear);
  EXPECT_EQ(image.At(0, 0).green, (21u + 53u) / 2);
  EXPECT_EQ(image.At(2, 0).green, (21u + 47u + 78u) / 3);
  EXPECT_EQ(image.At(0, 2).green, (53u + 102u + 130u) / 3);
  EXPECT_EQ(image.At(3, 1).green, (47u + 78u + 129u) / 3);
  EXPECT_EQ(image.At(1, 3).green, (130u + 102u + 158u) / 3);
  EXPECT_EQ(image.At(3, 3).green, (129u + 158u) / 2);
}

TEST(EdgeBilinear, RedAndBlueAreThePortableBilinearOnesAtEveryWidth) {
  const ProcessorPretended extended(platform::ProcessorPretence::kMmxAndExtended);
  const Image image = To24From8(kFrame, kEdgeBilinear);
  EXPECT_EQ(image.At(1, 1).red, (10u + 32u + 95u + 111u) / 4);
  EXPECT_EQ(image.At(2, 1), (Colour{(32 + 111) / 2, 78, (64 + 81) / 2}));
  EXPECT_EQ(image.At(0, 1), (Colour{10, 53, 64}));
}

TEST(GreyEdge, EveryChannelIsTheGreenOfCodeTwo) {
  const Image grey = To24From8(kFrame, kGreyEdge);
  const Image colour = To24From8(kFrame, kEdgeBilinear);
  for (std::size_t y = 0; y < 4; ++y) {
    for (std::size_t x = 0; x < 4; ++x) {
      EXPECT_EQ(grey.At(x, y), Grey(colour.At(x, y).green));
    }
  }
}

// ---- Codes 3 and 4 ---------------------------------------------------------

TEST(EdgePlane, MinusThreeIsWrittenAsThree) {
  // Green is 5 at the blue site (1, 1) and 0 at (3, 1): blue at the green site
  // between is floor(-5 / 2) = -3.
  const RawPicture frame = Dots(5, 4, {{1, 0, 10}, {1, 2, 10}});
  EXPECT_EQ(To24From8(frame, kEdgePlane).At(2, 1), (Colour{2, 0, 3}));
  EXPECT_EQ(To48From16(frame, kEdgePlane).At(2, 1), (Colour{2, 0, 3}));
}

TEST(EdgePlane, DirectionFollowsTheOwnColourWithThresholdNine) {
  // Red site (2, 2): the reds left and right differ from the centre by 9, the reds
  // above and below by 0, so green is taken vertically; by 8, from all four.
  const auto frame = [](unsigned side) {
    return Dots(5, 5, {{0, 2, side}, {4, 2, side}, {1, 2, 40}, {3, 2, 80}, {2, 1, 7}, {2, 3, 10}});
  };
  EXPECT_EQ(To24From8(frame(9), kEdgePlane).At(2, 2).green, (7u + 10) / 2);
  EXPECT_EQ(To24From8(frame(8), kEdgePlane).At(2, 2).green, (40u + 80 + 7 + 10) / 4);
  EXPECT_EQ(To48From16(frame(9), kEdgePlane).At(2, 2).green, 8u) << "the threshold is unscaled";
}

TEST(EdgePlane, ResultsAboveTheMaximumAreLimited) {
  // Green is (0 + 200) / 2 at both blue sites beside the green site (2, 1), where blue
  // is therefore 200 + ((255 - 100) + (255 - 100)) / 2.
  const RawPicture frame = Dots(5, 4, {{2, 1, 200}, {1, 1, 255}, {3, 1, 255}});
  EXPECT_EQ(To24From8(frame, kEdgePlane).At(2, 1).blue, 255u);
  EXPECT_EQ(To48From16(frame, kEdgePlane).At(2, 1).blue, 355u);
}

// Red site (2, 2) of a 5 x 5 frame: greens left, right, up, down and reds two away.
RawPicture RedCross(const std::vector<unsigned>& greens, unsigned centre,
                    const std::vector<unsigned>& reds) {
  return Dots(5, 5,
              {{1, 2, greens[0]},
               {3, 2, greens[1]},
               {2, 1, greens[2]},
               {2, 3, greens[3]},
               {2, 2, centre},
               {0, 2, reds[0]},
               {4, 2, reds[1]},
               {2, 0, reds[2]},
               {2, 4, reds[3]}});
}

TEST(LaplacianGreen, HorizontalQuarterRoundsTowardZero) {
  // H = 10 + 31, V = 0 + 100: 15 + (-31) / 4 = 15 - 7.
  const RawPicture frame = RedCross({10, 20, 30, 30}, 50, {60, 71, 0, 0});
  EXPECT_EQ(To24From8(frame, kGreyLaplacian).At(2, 2), Grey(8));
  EXPECT_EQ(To24From8(frame, kLaplacianPlane).At(2, 2).green, 8u);
  EXPECT_EQ(To48From16(frame, kGreyLaplacian).At(2, 2), Grey(8));
}

TEST(LaplacianGreen, VerticalEstimateWhereItsChangeIsSmaller) {
  const RawPicture frame = RedCross({10, 20, 30, 31}, 50, {60, 71, 50, 50});
  EXPECT_EQ(To24From8(frame, kGreyLaplacian).At(2, 2), Grey(30));
}

TEST(LaplacianGreen, EqualChangesTakeAllFourAndAnEighthTowardZero) {
  // 60 / 4 + (-62) / 8 = 15 - 7.
  const RawPicture frame = RedCross({10, 20, 20, 10}, 50, {60, 71, 71, 60});
  EXPECT_EQ(To24From8(frame, kGreyLaplacian).At(2, 2), Grey(8));
}

TEST(LaplacianGreen, NegativeEstimateBecomesItsAbsoluteValue) {
  // 1 + (-31) / 4 = -6.
  const RawPicture frame = RedCross({1, 2, 30, 30}, 50, {60, 71, 0, 0});
  EXPECT_EQ(To24From8(frame, kGreyLaplacian).At(2, 2), Grey(6));
}

TEST(LaplacianGreen, EstimateAboveTheMaximumIsLimited) {
  // 250 + 510 / 4 = 377.
  const RawPicture frame = RedCross({250, 250, 0, 255}, 255, {0, 0, 0, 0});
  EXPECT_EQ(To24From8(frame, kGreyLaplacian).At(2, 2), Grey(255));
  EXPECT_EQ(To48From16(frame, kGreyLaplacian).At(2, 2), Grey(377));
}

TEST(GreenPlanes, FailedAllocationLeavesTheDestinationUntouched) {
  for (const std::uint32_t code : {kEdgePlane, kLaplacianPlane}) {
    for (const auto convert : {To24From8, To24From16, To48From16}) {
      platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
      const Image image = convert(kFrame, code, 0);
      platform::ClearFaults();
      EXPECT_EQ(image.status, kOutOfMemory);
      EXPECT_EQ(image.bytes, std::vector<std::uint8_t>(image.bytes.size(), kUntouched));
    }
  }
}

TEST(GreenPlanes, NoOtherCodeAllocates) {
  for (const std::uint32_t code : kEveryCode) {
    if (code == kEdgePlane || code == kLaplacianPlane) continue;
    platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
    EXPECT_EQ(To24From8(kFrame, code).status, kOk);
    EXPECT_EQ(To24From16(kFrame, code).status, kOk);
    EXPECT_EQ(To48From16(kFrame, code).status, kOk);
    platform::ClearFaults();
  }
}

// ---- Code 5 ----------------------------------------------------------------

TEST(VariableGradients, AloneBrightRedSampleIsSharedByAllDirections) {
  // Every gradient is 100, every own estimate 50: green = 100 + (0 - 400) / 8.
  const RawPicture frame = Dots(5, 5, {{2, 2, 100}});
  EXPECT_EQ(To24From8(frame, kVariableGradients).At(2, 2), (Colour{100, 50, 50}));
}

TEST(VariableGradients, QuotientRoundsTowardZero) {
  // Green above the site 40: the greens found are 40 north, 10 north-east and 10
  // north-west; 100 + (60 - 400) / 8 = 100 - 42.
  const RawPicture frame = Dots(5, 5, {{2, 2, 100}, {2, 1, 40}});
  EXPECT_EQ(To24From8(frame, kVariableGradients).At(2, 2), (Colour{100, 58, 50}));
}

TEST(VariableGradients, DirectionsAboveTheThresholdAreLeftOut) {
  // East has gradient 0, the others 100: the threshold is 50.
  const RawPicture frame = Dots(5, 5, {{2, 2, 100}, {4, 2, 100}});
  EXPECT_EQ(To24From8(frame, kVariableGradients).At(2, 2), (Colour{100, 0, 0}));
}

TEST(VariableGradients, RampAlongTheRowsComesOutGreyAwayFromTheReflectedBorder) {
  RawPicture frame = Flat(9, 9, 0);
  for (std::size_t i = 0; i < frame.samples.size(); ++i) {
    frame.samples[i] = static_cast<unsigned>(10 * (i % 9));
  }
  const Image image = To24From8(frame, kVariableGradients);
  for (std::size_t y = 0; y < 9; ++y) {
    for (std::size_t x = 2; x < 7; ++x) {
      EXPECT_EQ(image.At(x, y), Grey(static_cast<unsigned>(10 * x)));
    }
  }
}

TEST(VariableGradients, GreenSiteInTheMiddleOfAllDirections) {
  // Green site (3, 2) of row R G R G R G R, alone with 90: all gradients are 90. Own
  // estimates: 45 straight, 30 diagonal, 300 in all; 90 + (0 - 300) / 8 = 90 - 37.
  const RawPicture frame = Dots(7, 5, {{3, 2, 90}});
  EXPECT_EQ(To24From8(frame, kVariableGradients).At(3, 2), (Colour{53, 90, 53}));
}

TEST(VariableGradients, LimitsFollowTheForm) {
  // East alone is below the threshold; its green is 255 above the red estimate.
  const RawPicture frame = Dots(5, 5, {{2, 2, 200}, {4, 2, 150}, {1, 2, 255}, {3, 2, 255}});
  const Colour narrow = To24From8(frame, kVariableGradients).At(2, 2);
  const Colour wide = To48From16(frame, kVariableGradients).At(2, 2);
  EXPECT_EQ(narrow.green, wide.green > 255 ? 255u : wide.green);
  EXPECT_GT(wide.green, 255u);
}

// ---- Codes 16 and 255 ------------------------------------------------------

TEST(GreyHorizontal, GreensAreInterpolatedAlongTheRowOnly) {
  const Image image = To24From8(kFrame, kGreyHorizontal);
  EXPECT_EQ(image.Row(0), (Pixels{Grey(21), Grey(21), Grey((21 + 47) / 2), Grey(47)}));
  EXPECT_EQ(image.Row(1), (Pixels{Grey(53), Grey((53 + 78) / 2), Grey(78), Grey(78)}));
}

TEST(GreyHorizontal, WidthOfTenLeavesTheLastTwoPixelsAsTheyWere) {
  const Image narrow = To24From8(Flat(10, 3, 128), kGreyHorizontal);
  const Image wide = To48From16(Flat(10, 3, 128), kGreyHorizontal);
  for (std::size_t y = 0; y < 3; ++y) {
    for (std::size_t x = 0; x < 8; ++x) {
      EXPECT_EQ(narrow.At(x, y), Grey(128));
      EXPECT_EQ(wide.At(x, y), Grey(128));
    }
    for (std::size_t x = 8; x < 10; ++x) {
      EXPECT_EQ(narrow.At(x, y), Grey(kUntouched));
      EXPECT_EQ(wide.At(x, y), Grey(kUntouched * 257u));
    }
  }
}

TEST(RawMosaic, EvenWidthShowsEachSampleInItsOwnChannel) {
  const Image image = To24From8(kFrame, kRawMosaic);
  EXPECT_EQ(image.Row(0), (Pixels{{10, 0, 0}, {0, 21, 0}, {32, 0, 0}, {0, 47, 0}}));
  EXPECT_EQ(image.Row(1), (Pixels{{0, 53, 0}, {0, 0, 64}, {0, 78, 0}, {0, 0, 81}}));
  EXPECT_EQ(To48From16(kFrame, kRawMosaic).Row(1), image.Row(1));
}

TEST(RawMosaic, OddWidthStartsEachRowWithTheOtherColour) {
  const Image image = To24From8({3, 2, {1, 2, 3, 4, 5, 6}}, kRawMosaic);
  EXPECT_EQ(image.Row(0), (Pixels{{0, 1, 0}, {2, 0, 0}, {0, 3, 0}}));
  EXPECT_EQ(image.Row(1), (Pixels{{0, 0, 4}, {0, 5, 0}, {0, 0, 6}}));
}

// ---- The neighbourhood reader ----------------------------------------------

TEST(Reflection, KeepsParityAboutTheEdgeSample) {
  EXPECT_EQ(Reflect(-1, 5), 1u);
  EXPECT_EQ(Reflect(-2, 5), 2u);
  EXPECT_EQ(Reflect(5, 5), 3u);
  EXPECT_EQ(Reflect(6, 5), 2u);
}

TEST(Reflection, RepeatsUntilInsideOnFramesNarrowerThanThree) {
  EXPECT_EQ(Reflect(-1, 2), 1u);
  EXPECT_EQ(Reflect(-2, 2), 0u);
  EXPECT_EQ(Reflect(2, 2), 0u);
  EXPECT_EQ(Reflect(3, 2), 1u);
  EXPECT_EQ(Reflect(-2, 1), 0u);
  EXPECT_EQ(Reflect(2, 1), 0u);
}

TEST(Neighbourhoods, ReadingOutsideOfTheFrameFailsAndWritesNothing) {
  Neighbourhood around;
  around.samples.fill(4711);
  const auto at = [](std::size_t, std::size_t) { return Sample{1}; };
  EXPECT_EQ(ReadNeighbourhood(4, 3, 4, 0, at, around), kReadFailed);
  EXPECT_EQ(ReadNeighbourhood(4, 3, 0, 3, at, around), kReadFailed);
  for (const std::uint16_t sample : around.samples) EXPECT_EQ(sample, 4711);
  EXPECT_EQ(ReadNeighbourhood(4, 3, 3, 2, at, around), 0);
  EXPECT_EQ(around.samples[12], 1);
}

TEST(Neighbourhoods, CornerOfAFrameIsReflected) {
  Neighbourhood around;
  const auto at = [](std::size_t x, std::size_t y) { return static_cast<Sample>(10 * y + x); };
  ASSERT_EQ(ReadNeighbourhood(6, 6, 0, 0, at, around), 0);
  EXPECT_EQ(around.At(0, 0), 0u);
  EXPECT_EQ(around.At(-1, 0), 1u);
  EXPECT_EQ(around.At(-2, -1), 12u);
  EXPECT_EQ(around.At(2, -2), 22u);
}

}  // namespace
}  // namespace ormidex::convert
