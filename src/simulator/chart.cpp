#include "simulator/chart.h"

#include <algorithm>
#include <cmath>

namespace ormidex::simulator {
namespace {

constexpr int kChartWidth = 640;
constexpr int kChartHeight = 480;
constexpr double kWhite = 0.9;
constexpr double kBackground = 0.42;

constexpr Colour Grey(double level) { return {level, level, level}; }

struct Area {
  int left, top, width, height;
  bool Holds(int x, int y) const {
    return x >= left && x < left + width && y >= top && y < top + height;
  }
};

constexpr Area kPatches = {32, 32, 576, 144};
constexpr Area kEdges = {32, 192, 184, 160};
constexpr Area kZonePlate = {228, 192, 184, 160};
constexpr Area kLines = {424, 192, 184, 160};
constexpr Area kGreyRamp = {32, 368, 576, 24};
constexpr Area kSteps = {32, 396, 576, 24};
constexpr Area kHues = {32, 424, 576, 24};
constexpr Area kMark = {32, 8, 64, 16};

constexpr int kPatchColumns = 6;
constexpr int kPatchRows = 2;
// Everyday surfaces and saturated paints, as they look on a screen.
constexpr Colour kPatchColours[kPatchRows * kPatchColumns] = {
    {0.40, 0.29, 0.25}, {0.69, 0.53, 0.46}, {0.34, 0.43, 0.55}, {0.33, 0.38, 0.25},
    {0.77, 0.43, 0.18}, {0.38, 0.66, 0.61}, {0.63, 0.18, 0.21}, {0.25, 0.52, 0.27},
    {0.18, 0.23, 0.52}, {0.81, 0.70, 0.15}, {0.66, 0.30, 0.52}, {0.15, 0.48, 0.58}};

Colour Patch(int x, int y) {
  const int width = kPatches.width / kPatchColumns;
  const int height = kPatches.height / kPatchRows;
  const int column = (x - kPatches.left) / width;
  const int row = (y - kPatches.top) / height;
  // A grey gap between the patches.
  if ((x - kPatches.left) % width < 4 || (y - kPatches.top) % height < 4) return Grey(kBackground);
  return kPatchColours[row * kPatchColumns + column];
}

// A dark square turned by about five degrees: its four edges cross the pixel grid
// at a slant, which is what sharpness is measured on.
Colour Edges(int x, int y) {
  const double dx = static_cast<double>(x - kEdges.left - kEdges.width / 2);
  const double dy = static_cast<double>(y - kEdges.top - kEdges.height / 2);
  const double u = std::fabs(dx * 0.9962 + dy * 0.0872);
  const double v = std::fabs(dy * 0.9962 - dx * 0.0872);
  const double inside = std::clamp(52.5 - std::max(u, v), 0.0, 1.0);
  return Grey(0.75 + (0.06 - 0.75) * inside);
}

// Rings that grow finer outwards, up to one cycle in two pixels at the sides.
Colour ZonePlate(int x, int y) {
  const int dx = x - kZonePlate.left - kZonePlate.width / 2;
  const int dy = y - kZonePlate.top - kZonePlate.height / 2;
  const int ring = kZonePlate.width * 2;  // growth of the squared radius in one cycle
  const double phase = (dx * dx + dy * dy) % ring * (2.0 * 3.14159265358979) / ring;
  return Grey(0.45 + 0.4 * std::cos(phase));
}

// Bars from two to eight pixels wide, upright in the upper half, lying below.
Colour Lines(int x, int y) {
  const int along = x - kLines.left;
  const int across = y - kLines.top;
  const bool upright = across < kLines.height / 2;
  const int width = 2 + along * 7 / kLines.width;
  const int position = upright ? along : across;
  return Grey(position / width % 2 == 0 ? kWhite : 0.03);
}

double Fraction(int x, const Area& area) {
  return static_cast<double>(x - area.left) / static_cast<double>(area.width - 1);
}

Colour Hues(int x) {
  const double hue = Fraction(x, kHues) * 6.0;
  const auto band = [hue](double centre) {
    const double distance = std::min(std::fabs(hue - centre), 6.0 - std::fabs(hue - centre));
    return 0.05 + 0.75 * std::clamp(2.0 - distance, 0.0, 1.0);
  };
  return {band(0.0), band(2.0), band(4.0)};
}

// The chart's number as white squares.
Colour Mark(int x, int number) {
  const int place = (x - kMark.left) / 16;
  return Grey(place <= number && (x - kMark.left) % 16 < 12 ? kWhite : kBackground);
}

Colour Tile(int x, int y, int number) {
  if (kPatches.Holds(x, y)) return Patch(x, y);
  if (kEdges.Holds(x, y)) return Edges(x, y);
  if (kZonePlate.Holds(x, y)) return ZonePlate(x, y);
  if (kLines.Holds(x, y)) return Lines(x, y);
  if (kGreyRamp.Holds(x, y)) return Grey(kWhite * Fraction(x, kGreyRamp));
  if (kSteps.Holds(x, y)) return Grey(kWhite * static_cast<double>((x - kSteps.left) / 48) / 11.0);
  if (kHues.Holds(x, y)) return Hues(x);
  if (kMark.Holds(x, y)) return Mark(x, number);
  const bool frame = x < 4 || y < 4 || x >= kChartWidth - 4 || y >= kChartHeight - 4;
  return Grey(frame ? kWhite : kBackground);
}

}  // namespace

Colour ChartScene::At(int column, int row) const {
  const int across = std::clamp(column, 0, 2 * kChartWidth - 1) / kChartWidth;
  const int down = std::max(row, 0) / kChartHeight;
  return Tile(std::clamp(column, 0, 2 * kChartWidth - 1) - across * kChartWidth,
              std::max(row, 0) - down * kChartHeight, down * 2 + across);
}

}  // namespace ormidex::simulator
