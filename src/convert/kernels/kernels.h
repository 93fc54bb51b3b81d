// Vector kernels of the conversions, one set for each instruction-set tier.
//
// A kernel computes the interior columns of one row. It may leave a few columns at
// either end, or all of a narrow row: the caller computes those with the scalar
// formulas, to which every kernel is bit for bit equal. Kernels need no alignment,
// keep no state and never look at what the processor can do.
//
// This header is included by files compiled for one tier, so it must stay free of
// inline functions: the linker could pick the tier's copy for the whole library.
#ifndef ORMIDEX_CONVERT_KERNELS_KERNELS_H_
#define ORMIDEX_CONVERT_KERNELS_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace ormidex::convert {

// A finished row on its way to memory, past the caches, while the next one is made: the
// two take their turns in small steps, so that neither waits for the other. `to` is
// aligned to 64 bytes; `bytes` are left. A kernel moves whole vectors of it.
struct Stream {
  const std::uint8_t* from;
  std::uint8_t* to;
  std::size_t bytes;
};

// One row of a mosaic. Rows two away are there for the kernels that look so far.
struct RowJob {
  const std::uint8_t* above2;
  const std::uint8_t* above;
  const std::uint8_t* row;
  const std::uint8_t* below;
  const std::uint8_t* below2;
  std::uint8_t* out;
  // The output row that will be written next, to be fetched into the cache while
  // this one is computed, or null where the image is small enough to be there.
  const std::uint8_t* next_out;
  Stream* stream;  // or null
  std::size_t width;
  bool has_red;
  bool starts_green;
  // Three samples before the first column and after the last may be read in all rows,
  // and the pixels within a kernel's reach of the ends may be written, to be overwritten by the
  // caller.
  bool has_margin;
  // The inner columns are stored past the caches, to places that a kernel's steps meet
  // aligned. The caller ends the stream.
  bool past_cache;
};

// Two neighbouring rows, an even one and the odd one below it, woven: in `sites` the even
// columns are of the first row and the odd ones of the second, in `greens` the other way
// round. In phase 0 the former are red or blue, the latter green.
struct SitePair {
  const std::uint8_t* sites;
  const std::uint8_t* greens;
};

// Weaves two rows; there are at least as many columns as fit a vector.
using WeaveKernel = void (*)(const std::uint8_t* row, const std::uint8_t* below,
                             std::size_t columns, std::uint8_t* sites, std::uint8_t* greens);

// Codes 3 and 4's first pass over two rows: for each pair of columns the difference
// between the sample and green at its red or blue site, in twice the samples' width. Two
// columns before the first and after the last are read.
struct DifferencesJob {
  SitePair above;
  SitePair pair;
  SitePair below;
  std::uint8_t* differences;
  std::uint8_t* differences_of_second;
  std::size_t width;
};

// A row for their second pass: the pair of rows that it is of, and the differences of the
// row itself and of its neighbours. One difference before the first and after the last is
// read.
struct ColourJob {
  SitePair pair;
  const std::uint8_t* differences_above;
  const std::uint8_t* differences;
  const std::uint8_t* differences_below;
  std::uint8_t* out;
  const std::uint8_t* next_out;
  Stream* stream;
  std::size_t width;
  bool has_red;  // the row is the pair's first one
  bool past_cache;
};

// A row of a monochrome frame.
struct GreyJob {
  const std::uint8_t* samples;
  // Those of the row that comes next, to be fetched meanwhile, or null: rows are taken
  // from the last to the first, against the order in which a processor fetches ahead.
  const std::uint8_t* next_samples;
  std::uint8_t* out;
  const std::uint8_t* next_out;
  Stream* stream;
  std::size_t width;
};

// The columns that a kernel wrote.
struct ColumnSpan {
  std::size_t begin;
  std::size_t end;
};

using RowKernel = ColumnSpan (*)(const RowJob& job);
// Writes the pairs of columns; the last column of an odd width is left.
using DifferencesKernel = void (*)(const DifferencesJob& job);
using ColourKernel = ColumnSpan (*)(const ColourJob& job);

// Two neighbouring interior rows of a mosaic, which share most of what they need. The
// first sample of `row` is red or blue, of `below` green; the width is even. No sample
// outside of the rows is read: the frame is reflected about its first and last column.
struct TwoRowsJob {
  const std::uint8_t* above;
  const std::uint8_t* row;
  const std::uint8_t* below;
  const std::uint8_t* below2;
  std::uint8_t* out;
  std::uint8_t* out_below;
  // To be fetched into the cache meanwhile, or null.
  const std::uint8_t* next_out;
  const std::uint8_t* next_out_below;
  Stream* stream;
  std::size_t width;
  bool has_red;
  // The inner columns are stored past the caches, to places that a kernel's steps meet
  // aligned in both rows. The caller ends the stream.
  bool past_cache;
  // How many such pairs of rows follow one another, and how far on the next one's rows
  // and places are.
  std::size_t pairs;
  std::ptrdiff_t rows_step;
  std::ptrdiff_t out_step;
};

// False, and nothing written, where the rows are too narrow for the tier.
using TwoRowsKernel = bool (*)(const TwoRowsJob& job);

// The factors of a colour correction in fixed point: what multiplies a channel (in the
// low half) and what multiplies the sum of all three (in the high half), as two or three
// limbs from the highest, which is signed, to the lowest. The lower limbs have 15 bits. Two
// hold the factors of all but very small and very large amounts.
inline constexpr int kCorrectionLimbBits = 15;
// Fraction bits of the highest limb, by their number.
inline constexpr int kCorrectionHighBits[] = {0, 0, 13, 8};
struct CorrectionFactors {
  int count;
  std::int32_t limbs[3];
};

// A kernel for 8-bit and one for 16-bit samples.
struct RowKernels {
  RowKernel narrow;
  RowKernel wide;
};

struct TwoRowsKernels {
  TwoRowsKernel narrow;
  TwoRowsKernel wide;
};

struct DifferencesKernels {
  DifferencesKernel narrow;
  DifferencesKernel wide;
};

struct Kernels {
  const char* tier;
  std::size_t vector_bytes;

  // Code 1. "edge": first and last rows, where `above` and `below` are the same.
  RowKernels bilinear_portable;
  RowKernels bilinear_edge;
  RowKernel bilinear_mmx;
  RowKernel bilinear_extended;

  // Code 1, two rows at once. The portable routine forms the first and last pixel of a
  // row otherwise: there the caller overwrites them.
  TwoRowsKernels bilinear_two_portable;
  TwoRowsKernel bilinear_two_mmx;
  TwoRowsKernel bilinear_two_extended;

  // Copies bytes to an image that is larger than the caches, past them. After the last
  // row the stream must be ended, or another thread may see older bytes.
  void (*stream_bytes)(const std::uint8_t* from, std::size_t count, std::uint8_t* to);
  void (*end_stream)();

  // High bytes of `count` 16-bit samples: how 24-bit images are made of 16-bit frames.
  void (*high_bytes)(const std::uint8_t* samples, std::size_t count, std::uint8_t* bytes);
  // Each sample, or its high byte, three times.
  void (*expand_grey8)(const GreyJob& job);
  void (*expand_grey16)(const GreyJob& job);

  // Corrects the first pixels of an image in place; returns how many.
  std::size_t (*color_correct24)(std::uint8_t* image, std::size_t pixels,
                                 const CorrectionFactors& factors);

  RowKernels replicate;              // code 0
  RowKernels mosaic;                 // code 255
  RowKernels grey_horizontal;        // code 16
  RowKernels edge_bilinear;          // code 2
  TwoRowsKernels edge_bilinear_two;  //   two rows at once; the caller does their ends
  RowKernels edge_bilinear_edge;     //   its first and last rows
  RowKernels grey_edge;              // code 17
  TwoRowsKernels grey_edge_two;
  RowKernels grey_edge_edge;  //   its first and last rows
  // Kernels of the codes that reflect the frame. They need samples before the first
  // column and after the last in all rows, and write all columns but the last of an odd
  // width. Phase 0 only: rows with red start with it.
  RowKernels grey_gradient;       // code 18
  RowKernels variable_gradients;  // code 5
  // Codes 3 and 4.
  WeaveKernel weave_narrow;
  WeaveKernel weave_wide;
  DifferencesKernels own_directed_differences;  // code 3
  DifferencesKernels gradient_differences;      // code 4
  ColourKernel colour_narrow;
  ColourKernel colour_wide;
};

extern const Kernels kSsse3Kernels;
extern const Kernels kAvx2Kernels;
extern const Kernels kAvx512Kernels;

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_KERNELS_KERNELS_H_
