// Code 5: variable number of gradients. docs/demosaic.md has the eight gradients
// and the estimates of each direction as pictures of the 5 x 5 neighbourhood.
#include <algorithm>
#include <array>

#include "convert/mosaic.h"
#include "convert/neighbourhood.h"
#include "convert/reflected_rows.h"
#include "convert/routines.h"

namespace ormidex::convert {
namespace {

struct Step {
  int dx;
  int dy;
  constexpr Step operator+(Step other) const { return {dx + other.dx, dy + other.dy}; }
  constexpr Step operator-() const { return {-dx, -dy}; }
};

constexpr Step kNorth{0, -1};
constexpr Step kEast{1, 0};
constexpr Step kSouth{0, 1};
constexpr Step kWest{-1, 0};
constexpr std::array kStraight{kNorth, kEast, kSouth, kWest};

struct Diagonal {
  Step vertical;
  Step horizontal;
};
constexpr std::array kDiagonals{Diagonal{kNorth, kEast}, Diagonal{kSouth, kEast},
                                Diagonal{kNorth, kWest}, Diagonal{kSouth, kWest}};

// What one direction says: how much the picture changes along it, and the colours
// found one step along it.
struct Direction {
  std::int32_t gradient;
  Sample own;
  Sample row_colour;  // of a green site; of others: green
  Sample other_colour;
};

class Site {
 public:
  Site(const Neighbourhood& around, bool is_green) : around_(around), is_green_(is_green) {}

  Sample At(Step step) const { return around_.At(step.dx, step.dy); }
  bool IsGreen() const { return is_green_; }
  std::int32_t Change(Step a, Step b) const {
    return std::abs(static_cast<std::int32_t>(At(a)) - static_cast<std::int32_t>(At(b)));
  }
  Sample MeanOf(Step a, Step b) const { return Mean(At(a), At(b)); }

  std::int32_t StraightGradient(Step d) const {
    const Step side{d.dy, d.dx};
    const std::int32_t flanks = Change(d + side, -d + side) + Change(d + -side, -d + -side);
    const std::int32_t ahead = Change(d + d + side, side) + Change(d + d + -side, -side);
    return Change(d, -d) + Change(d + d, kCentre) + flanks / 2 + ahead / 2;
  }

  // At a green site the pairs of red and of blue lie exactly along the direction and
  // count fully; elsewhere two pairs of green lie on either side and count half.
  std::int32_t DiagonalGradient(const Diagonal& diagonal) const {
    const Step v = diagonal.vertical;
    const Step h = diagonal.horizontal;
    const Step d = v + h;
    const std::int32_t along = Change(d, -d) + Change(d + d, kCentre);
    if (is_green_) {
      return along + Change(v + d, -h) + Change(h + d, -v);
    }
    const std::int32_t near = Change(v, -h) + Change(h, -v);
    const std::int32_t far = Change(v + d, v) + Change(h + d, h);
    return along + near / 2 + far / 2;
  }

  Direction Straight(Step d) const {
    const Step side{d.dy, d.dx};
    const Sample own = MeanOf(d + d, kCentre);
    const Sample ahead = At(d);
    if (!is_green_) {
      return {StraightGradient(d), own, ahead, MeanOf(d + side, d + -side)};
    }
    const Sample beside = Mean(MeanOf(d + d + side, d + d + -side), MeanOf(side, -side));
    const bool horizontal = d.dy == 0;
    return {StraightGradient(d), own, horizontal ? ahead : beside, horizontal ? beside : ahead};
  }

  Direction Along(const Diagonal& diagonal) const {
    const Step v = diagonal.vertical;
    const Step h = diagonal.horizontal;
    const Step d = v + h;
    const std::int32_t gradient = DiagonalGradient(diagonal);
    if (is_green_) {
      const Sample own = (At(d + d) + At(d) + At(kCentre)) / 3;
      return {gradient, own, MeanOf(h, v + d), MeanOf(v, h + d)};
    }
    const Sample green = Mean(MeanOf(v, h), MeanOf(v + d, h + d));
    return {gradient, MeanOf(d + d, kCentre), green, At(d)};
  }

 private:
  static constexpr Step kCentre{0, 0};
  const Neighbourhood& around_;
  bool is_green_;
};

std::array<Direction, 8> DirectionsOf(const Site& site) {
  std::array<Direction, 8> directions;
  for (std::size_t i = 0; i < 4; ++i) {
    directions[i] = site.Straight(kStraight[i]);
    directions[i + 4] = site.Along(kDiagonals[i]);
  }
  return directions;
}

std::int32_t Threshold(const std::array<Direction, 8>& directions) {
  const auto by_gradient = [](const Direction& a, const Direction& b) {
    return a.gradient < b.gradient;
  };
  const auto [least, most] = std::minmax_element(directions.begin(), directions.end(), by_gradient);
  const double minimum = least->gradient;
  const double maximum = most->gradient;
  return static_cast<std::int32_t>(1.5 * minimum + 0.5 * (maximum - minimum));
}

template <typename Form>
RolePixel ColoursAt(const Site& site) {
  const std::array<Direction, 8> directions = DirectionsOf(site);
  const std::int32_t threshold = Threshold(directions);
  std::int32_t own = 0;
  std::int32_t row_colour = 0;
  std::int32_t other_colour = 0;
  std::int32_t count = 0;
  for (const Direction& direction : directions) {
    if (direction.gradient <= threshold) {
      own += static_cast<std::int32_t>(direction.own);
      row_colour += static_cast<std::int32_t>(direction.row_colour);
      other_colour += static_cast<std::int32_t>(direction.other_colour);
      ++count;
    }
  }
  const Sample sample = site.At({0, 0});
  // The smooth change of colour found along the chosen directions, added to the
  // sample; the division rounds toward zero.
  const auto estimate = [&](std::int32_t sum) {
    const std::int32_t value = static_cast<std::int32_t>(sample) + (sum - own) / count;
    return static_cast<Sample>(std::clamp(value, 0, static_cast<std::int32_t>(Form::kMax)));
  };
  const Sample first = estimate(row_colour);
  const Sample second = estimate(other_colour);
  return site.IsGreen() ? RolePixel{first, sample, second} : RolePixel{sample, first, second};
}

template <typename Form>
struct VariableGradientsCode : CodeBase<Form> {
  using CodeBase<Form>::frame;

  RowKernel Kernel(const Kernels& kernels, std::size_t) const {
    return this->OfForm(kernels.variable_gradients);
  }

  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    const RowKind kind = this->Kind(y);
    for (std::size_t x = begin; x < end; ++x) {
      const Neighbourhood around = NeighbourhoodAt(frame, x, y);
      const RolePixel pixel = ColoursAt<Form>(Site(around, kind.IsGreen(x)));
      StorePixel<Form>(out, x - begin, ToRgb(kind, pixel));
    }
  }
};

}  // namespace

template <typename Form>
void VariableGradients(const Frame<Form>& frame) {
  DriveReflected(VariableGradientsCode<Form>{{frame}});
}

ORMIDEX_INSTANTIATE_FORMS(VariableGradients)

}  // namespace ormidex::convert
