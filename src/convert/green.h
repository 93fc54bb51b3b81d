// Estimates of green at a red or blue site from its neighbours.
#ifndef ORMIDEX_CONVERT_GREEN_H_
#define ORMIDEX_CONVERT_GREEN_H_

#include <cstdint>
#include <cstdlib>

#include "convert/samples.h"

namespace ormidex::convert {

// Two differences closer than this show no direction. It is not scaled for 16-bit
// samples, deliberately: stored 16-bit pictures were made with it.
inline constexpr std::int32_t kDirectionThreshold = 9;

struct FourGreens {
  Sample left;
  Sample right;
  Sample up;
  Sample down;
  Sample MeanOfFour() const { return (left + right + up + down) / 4; }
};

// Samples of the site's own colour, the centre and two steps away.
struct FiveOwn {
  Sample centre;
  Sample left2;
  Sample right2;
  Sample up2;
  Sample down2;
};

// The mean along the direction of smaller change; of all four where the changes
// are alike.
constexpr Sample GreenAlong(std::int32_t change_h, std::int32_t change_v, const FourGreens& g) {
  const std::int32_t advantage = change_h - change_v;
  if (advantage < kDirectionThreshold && advantage > -kDirectionThreshold) {
    return g.MeanOfFour();
  }
  return advantage < 0 ? Mean(g.left, g.right) : Mean(g.up, g.down);
}

// Code 2: change measured on the greens themselves.
inline Sample EdgeDirectedGreen(const FourGreens& g) {
  return GreenAlong(
      std::abs(static_cast<std::int32_t>(g.left) - static_cast<std::int32_t>(g.right)),
      std::abs(static_cast<std::int32_t>(g.up) - static_cast<std::int32_t>(g.down)), g);
}

// Code 3: change measured on the site's own colour two steps away.
inline Sample OwnColourDirectedGreen(const FourGreens& g, const FiveOwn& own) {
  const auto centre = static_cast<std::int32_t>(own.centre);
  const std::int32_t h = static_cast<std::int32_t>(Mean(own.left2, own.right2)) - centre;
  const std::int32_t v = static_cast<std::int32_t>(Mean(own.up2, own.down2)) - centre;
  return GreenAlong(std::abs(h), std::abs(v), g);
}

// A result below zero becomes its absolute value, not 0, deliberately: dark edges
// keep the look that stored pictures have.
constexpr Sample Fold(std::int32_t value, Sample max) {
  const auto magnitude = static_cast<Sample>(value < 0 ? -value : value);
  return magnitude < max ? magnitude : max;
}

// Codes 4 and 18: gradient plus Laplacian. Divisions of negative values round
// toward zero here.
inline Sample LaplacianGreen(const FourGreens& g, const FiveOwn& own, Sample max) {
  const auto left = static_cast<std::int32_t>(g.left);
  const auto right = static_cast<std::int32_t>(g.right);
  const auto up = static_cast<std::int32_t>(g.up);
  const auto down = static_cast<std::int32_t>(g.down);
  const auto centre = static_cast<std::int32_t>(own.centre);
  const std::int32_t laplacian_h = 2 * centre - static_cast<std::int32_t>(own.left2 + own.right2);
  const std::int32_t laplacian_v = 2 * centre - static_cast<std::int32_t>(own.up2 + own.down2);
  const std::int32_t change_h = std::abs(left - right) + std::abs(laplacian_h);
  const std::int32_t change_v = std::abs(up - down) + std::abs(laplacian_v);
  std::int32_t green = 0;
  if (change_h < change_v) {
    green = (left + right) / 2 + laplacian_h / 4;
  } else if (change_v < change_h) {
    green = (up + down) / 2 + laplacian_v / 4;
  } else {
    green = (left + right + up + down) / 4 + (laplacian_h + laplacian_v) / 8;
  }
  return Fold(green, max);
}

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_GREEN_H_
