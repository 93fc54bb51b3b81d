#include "automation/site_means.h"

#include "automation/kernels/site_sums.h"

namespace ormidex::automation {

namespace {

struct RowMeans {
  std::uint32_t even_columns = 0;
  std::uint32_t odd_columns = 0;
};

std::uint32_t Length(std::uint32_t from, std::uint32_t to) { return to > from ? to - from : 0; }

// The sites of one kind in the rectangle. The unsigned product may wrap.
std::uint32_t Divisor(std::uint32_t width, std::uint32_t height) {
  const std::uint32_t quarter = (width * height) >> 2;
  return quarter != 0 ? quarter : 1;
}

SampleRows RowsOf(const std::uint8_t* frame, std::uint32_t stride, const SiteRectangle& rectangle,
                  std::uint32_t sample_bytes) {
  SampleRows samples;
  samples.stride_bytes = std::size_t{stride} * sample_bytes;
  samples.first =
      frame + rectangle.top * samples.stride_bytes + std::size_t{rectangle.left} * sample_bytes;
  samples.rows = Length(rectangle.top, rectangle.bottom);
  samples.pairs = Length(rectangle.left, rectangle.right) / 2;
  return samples;
}

RowMeans MeansOf(const PairSums& sums, std::uint32_t divisor, int shift, bool starts_odd) {
  const std::uint32_t first = (sums.first / divisor) >> shift;
  const std::uint32_t second = (sums.second / divisor) >> shift;
  return starts_odd ? RowMeans{second, first} : RowMeans{first, second};
}

std::uint8_t LowByte(std::uint32_t mean) { return static_cast<std::uint8_t>(mean); }

// Rows of type A are the even rows in phases 0 and 2 and the odd rows in phase 1.
// Their green stands in the odd columns, the green of type B in the even ones. Red
// and blue ask a different question of the phase; together they give the cells
//   phase 0: R G    phase 1: G R    phase 2: B G
//            G B             B G             G R
std::uint32_t Pack(std::uint32_t bayer_phase, const RowMeans& a, const RowMeans& b) {
  BayerSiteMeans means;
  means.green1 = LowByte(a.odd_columns);
  means.green2 = LowByte(b.even_columns);
  means.red = LowByte(bayer_phase != 0 ? b.odd_columns : a.even_columns);
  means.blue = LowByte(bayer_phase != 0 ? a.even_columns : b.odd_columns);
  return means.Packed();
}

void ClearCounters(std::uint32_t* dark_count, std::uint32_t* clipped_count) {
  if (dark_count != nullptr) *dark_count = 0;
  if (clipped_count != nullptr) *clipped_count = 0;
}

std::uint32_t ComputePacked(std::uint32_t bayer_phase, const SiteRectangle& rectangle,
                            const SiteSums& sums, int shift) {
  const std::uint32_t divisor =
      Divisor(Length(rectangle.left, rectangle.right), Length(rectangle.top, rectangle.bottom));
  const bool starts_odd = (rectangle.left & 1) != 0;
  const bool type_a_on_odd_rows = bayer_phase == 1;
  const int first_a_row = ((rectangle.top & 1) != 0) == type_a_on_odd_rows ? 0 : 1;
  return Pack(bayer_phase, MeansOf(sums.rows[first_a_row], divisor, shift, starts_odd),
              MeansOf(sums.rows[1 - first_a_row], divisor, shift, starts_odd));
}

}  // namespace

void ComputeSiteMeans8(std::uint32_t bayer_phase, const std::uint8_t* frame, std::uint32_t stride,
                       const SiteRectangle& rectangle, std::uint32_t* packed, std::uint32_t,
                       std::uint32_t* dark_count, std::uint32_t* clipped_count) {
  ClearCounters(dark_count, clipped_count);
  const SiteSumKernel sum = ActiveSiteSumTier().sum8;
  *packed = ComputePacked(bayer_phase, rectangle, sum(RowsOf(frame, stride, rectangle, 1)), 0);
}

void ComputeSiteMeans16(std::uint32_t bayer_phase, const std::uint8_t* frame, std::uint32_t stride,
                        const SiteRectangle& rectangle, std::uint32_t* packed, std::uint32_t,
                        std::uint32_t* dark_count, std::uint32_t* clipped_count) {
  ClearCounters(dark_count, clipped_count);
  const SiteSumKernel sum = ActiveSiteSumTier().sum16;
  *packed = ComputePacked(bayer_phase, rectangle, sum(RowsOf(frame, stride, rectangle, 2)), 8);
}

}  // namespace ormidex::automation
