// The formulas of bilinear interpolation, one pixel at a time. Shared by the two
// codes that take their red and blue from it.
#ifndef ORMIDEX_CONVERT_BILINEAR_PIXEL_H_
#define ORMIDEX_CONVERT_BILINEAR_PIXEL_H_

#include <cstddef>
#include <cstdint>

#include "convert/mosaic.h"
#include "convert/samples.h"

namespace ormidex::convert {

struct PortableMeans {
  static Sample Pair(Sample a, Sample b) { return Mean(a, b); }
  static Sample Four(Sample a, Sample b, Sample c, Sample d) { return (a + b + c + d) / 4; }
};

struct MmxMeans {
  static Sample Pair(Sample a, Sample b) { return Mean(a, b); }
  static Sample Four(Sample a, Sample b, Sample c, Sample d) {
    return Mean(Mean(a, b), Mean(c, d));
  }
};

struct ExtendedMeans {
  static Sample Pair(Sample a, Sample b) { return (a + b + 1) / 2; }
  static Sample Four(Sample a, Sample b, Sample c, Sample d) {
    return Mean(Pair(a, b), Pair(c, d));
  }
};

struct ThreeRows {
  const std::uint8_t* above;
  const std::uint8_t* row;
  const std::uint8_t* below;
};

template <typename Form>
ThreeRows RowsAround(const Frame<Form>& frame, std::size_t y) {
  return {frame.SourceRow(y - 1), frame.SourceRow(y), frame.SourceRow(y + 1)};
}

// A pixel with neighbours above and below; `left` and `right` are the columns of
// its horizontal neighbours.
template <typename Form, typename Means>
RolePixel InteriorPixel(const ThreeRows& rows, bool is_green, std::size_t x, std::size_t left,
                        std::size_t right) {
  const Sample own = Form::Load(rows.row, x);
  const Sample row_left = Form::Load(rows.row, left);
  const Sample row_right = Form::Load(rows.row, right);
  const Sample up = Form::Load(rows.above, x);
  const Sample down = Form::Load(rows.below, x);
  if (is_green) {
    return {Means::Pair(row_left, row_right), own, Means::Pair(up, down)};
  }
  const Sample up_left = Form::Load(rows.above, left);
  const Sample down_left = Form::Load(rows.below, left);
  const Sample up_right = Form::Load(rows.above, right);
  const Sample down_right = Form::Load(rows.below, right);
  return {own, Means::Four(row_left, row_right, up, down),
          Means::Four(up_left, down_left, up_right, down_right)};
}

// A pixel of the first or last row, which has one neighbouring row, `partner`.
// Green at a red or blue site is there the mean of left and right alone.
template <typename Form>
RolePixel EdgeRowPixel(const std::uint8_t* row, const std::uint8_t* partner, bool is_green,
                       std::size_t x) {
  const Sample own = Form::Load(row, x);
  const Sample row_mean = Mean(Form::Load(row, x - 1), Form::Load(row, x + 1));
  if (is_green) {
    return {row_mean, own, Form::Load(partner, x)};
  }
  return {own, row_mean, Mean(Form::Load(partner, x - 1), Form::Load(partner, x + 1))};
}

// A pixel of the first or last column: one neighbouring row, one neighbouring column.
template <typename Form>
RolePixel InnerEdgeColumnPixel(const std::uint8_t* row, const std::uint8_t* partner, bool is_green,
                               std::size_t x, std::size_t neighbour) {
  const Sample own = Form::Load(row, x);
  const Sample beside = Form::Load(row, neighbour);
  const Sample across = Form::Load(partner, x);
  if (is_green) {
    return {beside, own, across};
  }
  return {own, Mean(beside, across), Form::Load(partner, neighbour)};
}

// The same where the frame may have one row or column: the missing neighbour is the row
// or column itself, which has no green to give at this site.
template <typename Form>
RolePixel EdgeColumnPixel(const std::uint8_t* row, const std::uint8_t* partner, bool is_green,
                          std::size_t x, std::size_t neighbour) {
  RolePixel pixel = InnerEdgeColumnPixel<Form>(row, partner, is_green, x, neighbour);
  if (!is_green && partner == row) {
    pixel.green = Form::Load(row, neighbour);
  } else if (!is_green && neighbour == x) {
    pixel.green = Form::Load(partner, x);
  }
  return pixel;
}

// Rows are taken in pairs, and the first and last pixel of a row is formed within
// its pair: an even row looks down, an odd row up. Where the pair is incomplete
// (the last row of an odd height) the row above serves; a frame of a single row
// serves as its own partner.
template <typename Form>
const std::uint8_t* PartnerRow(const Frame<Form>& frame, std::size_t y) {
  if (frame.height == 1) {
    return frame.SourceRow(0);
  }
  const bool looks_down = y % 2 == 0 && y + 1 < frame.height;
  return frame.SourceRow(looks_down ? y + 1 : y - 1);
}

// The portable routine's pixel at any place of the frame.
template <typename Form>
RolePixel PortablePixel(const Frame<Form>& frame, RowKind kind, std::size_t x, std::size_t y) {
  const std::uint8_t* row = frame.SourceRow(y);
  const std::uint8_t* partner = PartnerRow(frame, y);
  const std::size_t last = frame.width - 1;
  const bool is_green = kind.IsGreen(x);
  if (x == 0) {
    // A frame of a single column serves as its own neighbour.
    return EdgeColumnPixel<Form>(row, partner, is_green, x, last > 0 ? 1 : 0);
  }
  if (x == last) {
    return EdgeColumnPixel<Form>(row, partner, is_green, x, last - 1);
  }
  if (y == 0 || y == frame.height - 1) {
    return EdgeRowPixel<Form>(row, partner, is_green, x);
  }
  return InteriorPixel<Form, PortableMeans>(RowsAround(frame, y), is_green, x, x - 1, x + 1);
}

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_BILINEAR_PIXEL_H_
