// Codes 3, 4 and 18: a green plane first, then red and blue by colour differences.
#include <cstring>

#include "convert/mosaic.h"
#include "convert/neighbourhood.h"
#include "convert/routines.h"
#include "platform/memory.h"

namespace ormidex::convert {
namespace {

struct EdgeEstimate {
  static Sample Green(const Neighbourhood& around, Sample) {
    return OwnColourDirectedGreen(around.Greens(), around.Own());
  }
};

struct LaplacianEstimate {
  static Sample Green(const Neighbourhood& around, Sample max) {
    return LaplacianGreen(around.Greens(), around.Own(), max);
  }
};

// One value a pixel: bytes for 8-bit frames, words for 16-bit ones.
template <typename Form>
class GreenPlane {
 public:
  explicit GreenPlane(const Frame<Form>& frame)
      : width_(frame.width),
        memory_(platform::Buffer::Uncleared(frame.width * frame.height * Form::kSampleBytes)) {}

  explicit operator bool() const { return static_cast<bool>(memory_); }
  Sample At(std::size_t x, std::size_t y) const {
    const std::uint8_t* value = Place(x, y);
    if constexpr (Form::kSampleBytes == 1) {
      return *value;
    } else {
      std::uint16_t word = 0;
      std::memcpy(&word, value, sizeof(word));
      return word;
    }
  }
  void Set(std::size_t x, std::size_t y, Sample green) {
    if constexpr (Form::kSampleBytes == 1) {
      *Place(x, y) = static_cast<std::uint8_t>(green);
    } else {
      const auto word = static_cast<std::uint16_t>(green);
      std::memcpy(Place(x, y), &word, sizeof(word));
    }
  }

 private:
  std::uint8_t* Place(std::size_t x, std::size_t y) const {
    return memory_.Bytes() + (y * width_ + x) * Form::kSampleBytes;
  }

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

template <typename Form, typename Estimate>
Status ConvertByPlane(const Frame<Form>& frame) {
  GreenPlane<Form> plane(frame);
  if (!plane) {
    return kOutOfMemory;
  }
  for (std::size_t y = 0; y < frame.height; ++y) {
    for (std::size_t x = 0; x < frame.width; ++x) {
      plane.Set(x, y, GreenAt<Form, Estimate>(frame, x, y));
    }
  }
  const auto plane_at = [&plane](std::size_t x, std::size_t y) { return plane.At(x, y); };
  for (std::size_t y = 0; y < frame.height; ++y) {
    const RowKind kind = KindOfRow(kFixedPhase, y);
    for (std::size_t x = 0; x < frame.width; ++x) {
      Neighbourhood greens;
      static_cast<void>(ReadNeighbourhood(frame.width, frame.height, x, y, plane_at, greens));
      const Neighbourhood raw = NeighbourhoodAt(frame, x, y);
      StorePixel<Form>(frame.ImageRow(y), x,
                       ToRgb(kind, ColourPixel<Form>(raw, greens, kind.IsGreen(x))));
    }
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
  for (std::size_t y = 0; y < frame.height; ++y) {
    for (std::size_t x = 0; x < frame.width; ++x) {
      const Sample grey = GreenAt<Form, LaplacianEstimate>(frame, x, y);
      StorePixel<Form>(frame.ImageRow(y), x, {grey, grey, grey});
    }
  }
}

template Status EdgePlane(const Frame<Form8To24>&);
template Status EdgePlane(const Frame<Form16To24>&);
template Status EdgePlane(const Frame<Form16To48>&);
template Status LaplacianPlane(const Frame<Form8To24>&);
template Status LaplacianPlane(const Frame<Form16To24>&);
template Status LaplacianPlane(const Frame<Form16To48>&);
ORMIDEX_INSTANTIATE_FORMS(GreyFromLaplacianGreen)

}  // namespace ormidex::convert
