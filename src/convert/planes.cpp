// Codes 3, 4 and 18: a green plane first, then red and blue by colour differences.
#include <algorithm>

#include "convert/mosaic.h"
#include "convert/neighbourhood.h"
#include "convert/reflected_rows.h"
#include "convert/routines.h"
#include "platform/memory.h"

namespace ormidex::convert {
namespace {

struct EdgeEstimate {
  static constexpr RowKernels Kernels::*kPlaneKernels = &Kernels::own_directed_plane;
  static Sample Green(const Neighbourhood& around, Sample) {
    return OwnColourDirectedGreen(around.Greens(), around.Own());
  }
};

struct LaplacianEstimate {
  static constexpr RowKernels Kernels::*kPlaneKernels = &Kernels::gradient_plane;
  static Sample Green(const Neighbourhood& around, Sample max) {
    return LaplacianGreen(around.Greens(), around.Own(), max);
  }
};

// One value a pixel, in rows without padding. As much memory as the frame has is taken
// and, of a 16-bit frame for a 24-bit image, only its first half used.
template <typename Form>
class GreenPlane {
 public:
  explicit GreenPlane(const Frame<Form>& frame)
      : width_(frame.width),
        memory_(platform::Buffer::Uncleared(frame.width * frame.height * Form::kSampleBytes)) {}

  explicit operator bool() const { return static_cast<bool>(memory_); }
  std::uint8_t* Row(std::size_t y) const {
    return memory_.Bytes() + y * width_ * Form::kChannelBytes;
  }
  Sample At(std::size_t x, std::size_t y) const {
    if constexpr (Form::kChannelBytes == 1) {
      return Row(y)[x];
    } else {
      return Form::Load(Row(y), x);
    }
  }

 private:
  std::size_t width_;
  platform::Buffer memory_;
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

template <typename Estimate>
struct PlanePass {
  template <typename Form>
  struct Code : CodeBase<Form> {
    using CodeBase<Form>::frame;
    static constexpr std::size_t kOutBytes = Form::kChannelBytes;

    std::uint8_t* Out(std::size_t y) const { return plane.Row(y); }
    RowKernel Kernel(const Kernels& kernels, std::size_t) const {
      return this->OfForm(kernels.*Estimate::kPlaneKernels);
    }

    void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
      for (std::size_t x = begin; x < end; ++x) {
        Form::Store(out, x - begin, GreenAt<Form, Estimate>(frame, x, y));
      }
    }

    const GreenPlane<Form>& plane;
  };
};

template <typename Form>
struct ColourPass : CodeBase<Form> {
  using CodeBase<Form>::frame;

  const std::uint8_t* GreenRow(std::size_t y) const { return plane.Row(y); }
  RowKernel Kernel(const Kernels& kernels, std::size_t) const {
    return this->OfForm(kernels.colour);
  }

  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    const RowKind kind = this->Kind(y);
    const auto plane_at = [this](std::size_t x, std::size_t row) { return plane.At(x, row); };
    for (std::size_t x = begin; x < end; ++x) {
      Neighbourhood greens;
      static_cast<void>(ReadNeighbourhood(frame.width, frame.height, x, y, plane_at, greens));
      const Neighbourhood raw = NeighbourhoodAt(frame, x, y);
      StorePixel<Form>(out, x - begin,
                       ToRgb(kind, ColourPixel<Form>(raw, greens, kind.IsGreen(x))));
    }
  }

  const GreenPlane<Form>& plane;
};

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

constexpr std::size_t kBandRows = 32;

template <typename Form, typename Estimate>
Status ConvertByPlane(const Frame<Form>& frame) {
  const GreenPlane<Form> plane(frame);
  if (!plane) {
    return kOutOfMemory;
  }
  using PlaneCode = typename PlanePass<Estimate>::template Code<Form>;
  const PlaneCode plane_pass{{frame}, plane};
  const ColourPass<Form> colour_pass{{frame}, plane};
  // The passes take turns, so that the plane's rows are still in the cache when they
  // are read; the second looks at one row below and copies another ahead.
  std::size_t planned = 0;
  for (std::size_t top = 0; top < frame.height; top += kBandRows) {
    const std::size_t bottom = std::min(top + kBandRows, frame.height);
    const std::size_t plane_bottom = std::min(bottom + 2, frame.height);
    DriveReflected<Form, PlanePass<Estimate>::template Code>(plane_pass, planned, plane_bottom);
    DriveReflected(colour_pass, top, bottom);
    planned = plane_bottom;
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
