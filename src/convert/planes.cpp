// Codes 3, 4 and 18: a green plane first, then red and blue by colour differences.
#include <algorithm>
#include <type_traits>

#include "convert/mosaic.h"
#include "convert/neighbourhood.h"
#include "convert/plane_drive.h"
#include "convert/reflected_rows.h"
#include "convert/routines.h"
#include "platform/memory.h"

namespace ormidex::convert {
namespace {

struct EdgeEstimate {
  static constexpr DifferencesKernels Kernels::*kDifferences = &Kernels::own_directed_differences;
  static Sample Green(const Neighbourhood& around, Sample) {
    return OwnColourDirectedGreen(around.Greens(), around.Own());
  }
};

struct LaplacianEstimate {
  static constexpr DifferencesKernels Kernels::*kDifferences = &Kernels::gradient_differences;
  static Sample Green(const Neighbourhood& around, Sample max) {
    return LaplacianGreen(around.Greens(), around.Own(), max);
  }
};

template <typename Form, typename Estimate>
Sample GreenAt(const Frame<Form>& frame, std::size_t x, std::size_t y) {
  if (KindOfRow(kFixedPhase, y).IsGreen(x)) {
    return frame.At(x, y);
  }
  return Estimate::Green(NeighbourhoodAt(frame, x, y), Form::kMax);
}

// Sample minus green around a pixel.
class Differences {
 public:
  Differences(const Neighbourhood& raw, const Neighbourhood& green) : raw_(raw), green_(green) {}
  std::int32_t At(int dx, int dy) const {
    return static_cast<std::int32_t>(raw_.At(dx, dy)) -
           static_cast<std::int32_t>(green_.At(dx, dy));
  }
  // Shifts round a negative sum toward minus infinity, unlike the divisions that
  // form green; both are deliberate.
  std::int32_t Horizontal() const { return (At(-1, 0) + At(1, 0)) >> 1; }
  std::int32_t Vertical() const { return (At(0, -1) + At(0, 1)) >> 1; }
  std::int32_t Diagonal() const { return (At(-1, -1) + At(1, -1) + At(-1, 1) + At(1, 1)) >> 2; }

 private:
  const Neighbourhood& raw_;
  const Neighbourhood& green_;
};

template <typename Form>
RolePixel ColourPixel(const Neighbourhood& raw, const Neighbourhood& greens, bool is_green) {
  const Sample green = greens.At(0, 0);
  const Differences differences(raw, greens);
  const auto estimate = [green](std::int32_t difference) {
    return Fold(static_cast<std::int32_t>(green) + difference, Form::kMax);
  };
  if (is_green) {
    return {estimate(differences.Horizontal()), green, estimate(differences.Vertical())};
  }
  return {raw.At(0, 0), green, estimate(differences.Diagonal())};
}

// `green_at(x, y)` is the green plane's value.
template <typename Form, typename GreenAtPlace>
void StoreColours(const Frame<Form>& frame, std::size_t x, std::size_t y,
                  const GreenAtPlace& green_at, std::uint8_t* out) {
  const RowKind kind = KindOfRow(kFixedPhase, y);
  Neighbourhood greens;
  static_cast<void>(ReadNeighbourhood(frame.width, frame.height, x, y, green_at, greens));
  const Neighbourhood raw = NeighbourhoodAt(frame, x, y);
  StorePixel<Form>(out, 0, ToRgb(kind, ColourPixel<Form>(raw, greens, kind.IsGreen(x))));
}

// For the drive: single sites and pixels, where a plane is not at hand.
template <typename Form, typename Estimate>
struct PlaneCode {
  static constexpr DifferencesKernels Kernels::*kDifferences = Estimate::kDifferences;

  std::int32_t Difference(std::size_t x, std::size_t y) const {
    return static_cast<std::int32_t>(frame.At(x, y)) -
           static_cast<std::int32_t>(GreenAt<Form, Estimate>(frame, x, y));
  }
  void Pixel(std::size_t x, std::size_t y, std::uint8_t* out) const {
    const auto green_at = [this](std::size_t column, std::size_t row) {
      return GreenAt<Form, Estimate>(frame, column, row);
    };
    StoreColours(frame, x, y, green_at, out);
  }

  Frame<Form> frame;
};

// Without vectors: the whole plane first, a value a pixel in rows without padding.
template <typename Form, typename Estimate>
void ConvertByWholePlane(const Frame<Form>& frame, std::uint8_t* plane) {
  constexpr std::size_t kChannelBytes = Form::kChannelBytes;
  const auto row_of = [&](std::size_t y) { return plane + y * frame.width * kChannelBytes; };
  for (std::size_t y = 0; y < frame.height; ++y) {
    for (std::size_t x = 0; x < frame.width; ++x) {
      Form::Store(row_of(y), x, GreenAt<Form, Estimate>(frame, x, y));
    }
  }
  using PlaneForm = std::conditional_t<kChannelBytes == 1, Form8To24, Form>;
  const auto green_at = [&](std::size_t x, std::size_t y) { return PlaneForm::Load(row_of(y), x); };
  for (std::size_t y = 0; y < frame.height; ++y) {
    for (std::size_t x = 0; x < frame.width; ++x) {
      StoreColours(frame, x, y, green_at, frame.ImageRow(y) + x * 3 * kChannelBytes);
    }
  }
}

template <typename Form>
struct GreyLaplacianCode : CodeBase<Form> {
  using CodeBase<Form>::frame;

  RowKernel Kernel(const Kernels& kernels, std::size_t) const {
    return this->OfForm(kernels.grey_gradient);
  }

  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    for (std::size_t x = begin; x < end; ++x) {
      const Sample grey = GreenAt<Form, LaplacianEstimate>(frame, x, y);
      StorePixel<Form>(out, x - begin, {grey, grey, grey});
    }
  }
};

// As much memory as the frame has is claimed, although the kernels touch a few rows of
// it only: where it cannot be had these codes fail, whatever the processor.
template <typename Form, typename Estimate>
Status ConvertByPlane(const Frame<Form>& frame) {
  using Code = PlaneCode<Form, Estimate>;
  using Drive = PlaneDrive<Form, Code>;
  const std::size_t plane_bytes = frame.width * frame.height * Form::kSampleBytes;
  const auto memory =
      platform::Buffer::Uncleared(std::max(plane_bytes, Drive::MemoryBytes(frame.width)));
  if (!memory) {
    return kOutOfMemory;
  }
  // In a frame of one row the neighbouring rows are the row itself, sites and all.
  const Kernels* kernels = KernelsForWidth<Form>(frame.width);
  if (kernels == nullptr || frame.height < 2) {
    ConvertByWholePlane<Form, Estimate>(frame, memory.Bytes());
  } else {
    const Code code{frame};
    Drive(code, *kernels, memory.Bytes()).Run();
  }
  return kOk;
}

}  // namespace

template <typename Form>
Status EdgePlane(const Frame<Form>& frame) {
  return ConvertByPlane<Form, EdgeEstimate>(frame);
}

template <typename Form>
Status LaplacianPlane(const Frame<Form>& frame) {
  return ConvertByPlane<Form, LaplacianEstimate>(frame);
}

template <typename Form>
void GreyFromLaplacianGreen(const Frame<Form>& frame) {
  DriveReflected(GreyLaplacianCode<Form>{{frame}});
}

template Status EdgePlane(const Frame<Form8To24>&);
template Status EdgePlane(const Frame<Form16To24>&);
template Status EdgePlane(const Frame<Form16To48>&);
template Status LaplacianPlane(const Frame<Form8To24>&);
template Status LaplacianPlane(const Frame<Form16To24>&);
template Status LaplacianPlane(const Frame<Form16To48>&);
ORMIDEX_INSTANTIATE_FORMS(GreyFromLaplacianGreen)

}  // namespace ormidex::convert
