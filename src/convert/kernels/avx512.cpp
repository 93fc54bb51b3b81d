// The avx512 tier. Compiled with the instruction set's flags: nothing may be included
// here whose inline functions the linker could share with the rest of the library.
#include "convert/kernels/kernels.h"

// clang-format off
#include "convert/kernels/sites.inc"
#include "convert/kernels/vector_avx512.h"
#include "convert/kernels/entry.h"
#include "convert/kernels/stream.inc"
#include "convert/kernels/pairs.inc"
#include "convert/kernels/mono.inc"
#include "convert/kernels/bilinear.inc"
#include "convert/kernels/cell.inc"
#include "convert/kernels/edge_bilinear.inc"
#include "convert/kernels/planes.inc"
#include "convert/kernels/variable_gradients.inc"
#include "convert/kernels/color_correct.inc"
// clang-format on

namespace ormidex::convert {

extern const Kernels kAvx512Kernels = {
    .tier = "avx512",
    .vector_bytes = kVectorBytes,
    .bilinear_portable = {BilinearPortableRow<Lanes8>, BilinearPortableRow<Lanes16>},
    .bilinear_edge = {BilinearEdgeRow<Lanes8>, BilinearEdgeRow<Lanes16>},
    .bilinear_mmx = BilinearMmxRow<Lanes8>,
    .bilinear_extended = BilinearExtendedRow<Lanes8>,
    .bilinear_two_portable = {TwoRows<Lanes8, BilinearTwo<Means::kPortable>::Pairs>,
                              TwoRows<Lanes16, BilinearTwo<Means::kPortable>::Pairs>},
    .bilinear_two_mmx = TwoRows<Lanes8, BilinearTwo<Means::kMmx>::Pairs>,
    .bilinear_two_extended = TwoRows<Lanes8, BilinearTwo<Means::kExtended>::Pairs>,
    .stream_bytes = StreamBytes,
    .end_stream = EndStream,
    .high_bytes = HighBytes,
    .expand_grey8 = ExpandGrey8,
    .expand_grey16 = ExpandGrey16,
    .color_correct24 = ColorCorrect24,
    .replicate = {ReplicateRow<Lanes8>, ReplicateRow<Lanes16>},
    .mosaic = {MosaicRow<Lanes8>, MosaicRow<Lanes16>},
    .grey_horizontal = {GreyHorizontalRow<Lanes8>, GreyHorizontalRow<Lanes16>},
    .edge_bilinear = {EdgeBilinearRow<Lanes8>, EdgeBilinearRow<Lanes16>},
    .edge_bilinear_two = {TwoRows<Lanes8, EdgeBilinearTwo>, TwoRows<Lanes16, EdgeBilinearTwo>},
    .edge_bilinear_edge = {EdgeBilinearEdgeRow<Lanes8>, EdgeBilinearEdgeRow<Lanes16>},
    .grey_edge = {GreyEdgeRow<Lanes8>, GreyEdgeRow<Lanes16>},
    .grey_edge_two = {TwoGreyRows<Lanes8, GreyEdgeTwo>, TwoGreyRows<Lanes16, GreyEdgeTwo>},
    .grey_edge_edge = {GreyEdgeEdgeRow<Lanes8>, GreyEdgeEdgeRow<Lanes16>},
    .grey_gradient = {GreyGradientRow<Lanes8>, GreyGradientRow<Lanes16>},
    .variable_gradients = {VariableGradientsRow<Lanes8>, VariableGradientsRow<Lanes16>},
    .weave_narrow = WeaveRows<Lanes8>,
    .weave_wide = WeaveRows<Lanes16>,
    .own_directed_differences = {DifferencesRows<Lanes8, OwnDirectedPairs>,
                                 DifferencesRows<Lanes16, OwnDirectedPairs>},
    .gradient_differences = {DifferencesRows<Lanes8, GradientPairs>,
                             DifferencesRows<Lanes16, GradientPairs>},
    .colour_narrow = ColourRow<Lanes8>,
    .colour_wide = ColourRow<Lanes16>,
};

}  // namespace ormidex::convert
