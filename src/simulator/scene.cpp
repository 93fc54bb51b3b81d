#include "simulator/scene.h"

#include <algorithm>

#include "simulator/chart.h"
#include "simulator/image_file.h"

namespace ormidex::simulator {
namespace {

constexpr int kSensorWidth = 1280;
constexpr int kSensorHeight = 1024;

Colour Grey(double level) { return {level, level, level}; }

class UniformScene : public Scene {
 public:
  explicit UniformScene(double level) : level_(level) {}
  bool Prepare(std::string*) override { return true; }
  Colour At(int, int) const override { return Grey(level_); }

 private:
  double level_;
};

// Black at the left edge of the sensor, full range at the right.
class RampScene : public Scene {
 public:
  bool Prepare(std::string*) override { return true; }
  Colour At(int column, int) const override {
    const double position = static_cast<double>(column) / static_cast<double>(kSensorWidth - 1);
    return Grey(std::clamp(position, 0.0, 1.0));
  }
};

// A pattern without any order that stands still: each point's light is a hash of
// its place.
class NoiseScene : public Scene {
 public:
  explicit NoiseScene(std::uint32_t seed) : seed_(seed) {}
  bool Prepare(std::string*) override { return true; }
  Colour At(int column, int row) const override {
    const std::uint32_t place =
        static_cast<std::uint32_t>(row) * 4096u + static_cast<std::uint32_t>(column);
    return {Level(place * 3), Level(place * 3 + 1), Level(place * 3 + 2)};
  }

 private:
  double Level(std::uint32_t place) const {
    std::uint32_t h = place + seed_ * 0x9E3779B9u;
    h = (h ^ (h >> 16)) * 0x7FEB352Du;
    h = (h ^ (h >> 15)) * 0x846CA68Bu;
    h ^= h >> 16;
    return static_cast<double>(h >> 8) / 16777216.0;
  }
  std::uint32_t seed_;
};

// A picture from a file, fitted to the sensor's area. Its values are taken as
// strengths of light, so that a frame taken without gamma looks like the picture.
class FileScene : public Scene {
 public:
  explicit FileScene(const std::string& path) : path_(path) {}

  bool Prepare(std::string* complaint) override {
    loaded_ = image_.Load(path_.c_str());
    if (!loaded_) *complaint = "cannot read a PNG, JPEG, PGM or PPM picture from '" + path_ + "'";
    return loaded_;
  }

  Colour At(int column, int row) const override {
    if (!loaded_) return {};
    const double x = Position(column, kSensorWidth, image_.Width());
    const double y = Position(row, kSensorHeight, image_.Height());
    const int left = static_cast<int>(x);
    const int top = static_cast<int>(y);
    const Colour upper =
        Blend(Pixel(left, top), Pixel(left + 1, top), x - static_cast<double>(left));
    const Colour lower =
        Blend(Pixel(left, top + 1), Pixel(left + 1, top + 1), x - static_cast<double>(left));
    return Blend(upper, lower, y - static_cast<double>(top));
  }

 private:
  static double Position(int point, int points, int pixels) {
    const double position = (static_cast<double>(point) + 0.5) * static_cast<double>(pixels) /
                                static_cast<double>(points) -
                            0.5;
    return std::clamp(position, 0.0, static_cast<double>(pixels - 1));
  }

  Colour Pixel(int x, int y) const {
    const std::uint8_t* pixel =
        image_.Pixel(std::min(x, image_.Width() - 1), std::min(y, image_.Height() - 1));
    return {pixel[0] / 255.0, pixel[1] / 255.0, pixel[2] / 255.0};
  }

  static Colour Blend(const Colour& a, const Colour& b, double share) {
    return {a.red + (b.red - a.red) * share, a.green + (b.green - a.green) * share,
            a.blue + (b.blue - a.blue) * share};
  }

  std::string path_;
  ImageFile image_;
  bool loaded_ = false;
};

// Another scene, projected on a smaller or larger area of the sensor.
class LensScene : public Scene {
 public:
  LensScene(std::unique_ptr<Scene> scene, int width, int height)
      : scene_(std::move(scene)), width_(width), height_(height) {}
  bool Prepare(std::string* complaint) override { return scene_->Prepare(complaint); }
  Colour At(int column, int row) const override {
    return scene_->At(column * kSensorWidth / width_, row * kSensorHeight / height_);
  }

 private:
  std::unique_ptr<Scene> scene_;
  int width_;
  int height_;
};

std::unique_ptr<Scene> CreateBareScene(const CameraDescription& description) {
  switch (description.scene) {
    case SceneKind::kGrey:
      return std::make_unique<UniformScene>(static_cast<double>(description.grey_level) / 255.0);
    case SceneKind::kRamp:
      return std::make_unique<RampScene>();
    case SceneKind::kNoise:
      return std::make_unique<NoiseScene>(description.seed);
    case SceneKind::kFile:
      return std::make_unique<FileScene>(description.scene_path);
    case SceneKind::kChart:
      break;
  }
  return std::make_unique<ChartScene>();
}

}  // namespace

std::unique_ptr<Scene> CreateScene(const CameraDescription& description) {
  std::unique_ptr<Scene> scene = CreateBareScene(description);
  if (description.lens_width == kSensorWidth && description.lens_height == kSensorHeight) {
    return scene;
  }
  return std::make_unique<LensScene>(std::move(scene), static_cast<int>(description.lens_width),
                                     static_cast<int>(description.lens_height));
}

}  // namespace ormidex::simulator
