// Register maps of the two imager generations and of the controller, as far as the
// library uses them. Pairs are named by their high byte; the low byte follows.
#ifndef ORMIDEX_IMAGER_REGISTERS_H_
#define ORMIDEX_IMAGER_REGISTERS_H_

#include <cstdint>

namespace ormidex::imager {

namespace first {
inline constexpr std::uint32_t kOrientation = 1;     // sub-sampling and mirror bits
inline constexpr std::uint32_t kWindowPosition = 4;  // column, row: four bytes
inline constexpr std::uint32_t kWindowSize = 8;      // two size codes
inline constexpr std::uint32_t kExposureHigh = 18;
inline constexpr std::uint32_t kExposureLow = 19;
inline constexpr std::uint32_t kRedGain = 20;
inline constexpr std::uint32_t kGreenGain = 21;
inline constexpr std::uint32_t kBlueGain = 22;
inline constexpr std::uint32_t kClockingValue = 145;

inline constexpr std::uint8_t kSubSamplingMask = 0x06;
inline constexpr std::uint8_t kHorizontalMirror = 0x10;
// Set for an image that is NOT flipped.
inline constexpr std::uint8_t kVerticalUpright = 0x08;
inline constexpr std::uint32_t kPositionOffset = 4;
}  // namespace first

namespace second {
inline constexpr std::uint32_t kGreen1Gain = 0;
inline constexpr std::uint32_t kRedGain = 1;
inline constexpr std::uint32_t kBlueGain = 2;
inline constexpr std::uint32_t kGreen2Gain = 3;
inline constexpr std::uint32_t kExposureGain = 16;
inline constexpr std::uint32_t kGainControl = 34;
inline constexpr std::uint32_t kSubSampling = 65;
inline constexpr std::uint32_t kWindowRow = 69;
inline constexpr std::uint32_t kFrameHeight = 71;
inline constexpr std::uint32_t kWindowColumn = 73;
inline constexpr std::uint32_t kFrameWidth = 75;
inline constexpr std::uint32_t kExposureRows = 78;
inline constexpr std::uint32_t kFrameLength = 80;
inline constexpr std::uint32_t kRowLength = 82;
inline constexpr std::uint32_t kFlip = 87;
inline constexpr std::uint32_t kBlankingA = 95;
inline constexpr std::uint32_t kBlankingB = 96;

inline constexpr std::uint8_t kGainModeMask = 0x03;
inline constexpr std::uint8_t kGainManual = 0x02;
inline constexpr std::uint8_t kExposureUpdate = 0x40;
inline constexpr std::uint8_t kSubSamplingMask = 0x0F;
inline constexpr std::uint8_t kHorizontalMirror = 0x01;
inline constexpr std::uint8_t kVerticalFlip = 0x02;
inline constexpr std::uint32_t kColumnOffset = 8;
inline constexpr std::uint32_t kRowOffset = 16;
}  // namespace second

// Size of the pixel array and of the smallest sub-window.
inline constexpr std::uint32_t kArrayWidth = 1280;
inline constexpr std::uint32_t kArrayHeight = 1024;
inline constexpr std::uint32_t kMinimumWidth = 32;
inline constexpr std::uint32_t kMinimumHeight = 8;

}  // namespace ormidex::imager

#endif  // ORMIDEX_IMAGER_REGISTERS_H_
