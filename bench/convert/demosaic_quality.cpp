// Quality of the demosaic codes: samples two scenes through the mosaic, converts with
// every code and compares with the scene.
//
//   demosaic_quality DIRECTORY
//
// The scenes are the simulated cameras' chart, point by point as their sensor sees it
// through an ideal lens, and a zone plate. Prints one Markdown table row per code and
// writes one PPM sheet of enlarged crops per place. scripts/demosaic-pictures.py turns
// both into docs/demosaic.md.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "convert/convert.h"
#include "simulator/chart.h"

namespace ormidex::convert {
namespace {

constexpr std::uint32_t kCodes[] = {0, 1, 2, 3, 4, 5, 16, 17, 18, 255};

struct Pixel {
  std::uint8_t red;
  std::uint8_t green;
  std::uint8_t blue;
};

struct Picture {
  std::uint32_t width;
  std::uint32_t height;
  std::vector<Pixel> pixels;
  const Pixel& At(std::uint32_t x, std::uint32_t y) const {
    return pixels[std::size_t{y} * width + x];
  }
};

std::uint8_t ToSample(double level) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(255 * level, 0.0, 255.0)));
}

Pixel ToPixel(const simulator::Colour& light) {
  return {ToSample(light.red), ToSample(light.green), ToSample(light.blue)};
}

constexpr std::uint32_t kPlateWidth = 512;
constexpr std::uint32_t kPlateHeight = 384;

// Rings that become finer outwards, up to 0.35 of the sampling frequency in a corner,
// in a slowly changing tint.
simulator::Colour ZonePlate(double x, double y) {
  const double diagonal = std::hypot(kPlateWidth, kPlateHeight);
  const double wave = 0.5 + 0.4 * std::cos(std::numbers::pi * 0.35 * (x * x + y * y) / diagonal);
  const double tint = 0.15 * std::sin(x / 90.0);
  return {wave * (0.85 + tint), wave, wave * (0.8 - tint)};
}

template <typename Light>
Picture Draw(std::uint32_t width, std::uint32_t height, Light light) {
  Picture picture{width, height, {}};
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width; ++x) picture.pixels.push_back(ToPixel(light(x, y)));
  }
  return picture;
}

Picture DrawChart() {
  const simulator::ChartScene chart;
  return Draw(640, 480, [&chart](std::uint32_t x, std::uint32_t y) {
    return chart.At(static_cast<int>(x), static_cast<int>(y));
  });
}

Picture ThroughTheMosaic(const Picture& scene, std::uint32_t code) {
  std::vector<std::uint8_t> raw;
  for (std::uint32_t y = 0; y < scene.height; ++y) {
    for (std::uint32_t x = 0; x < scene.width; ++x) {
      const Pixel& pixel = scene.At(x, y);
      const std::uint8_t non_green = y % 2 == 0 ? pixel.red : pixel.blue;
      raw.push_back(x % 2 == y % 2 ? non_green : pixel.green);
    }
  }
  std::vector<std::uint8_t> image(3 * raw.size());
  DemosaicTo24From8(raw.data(), scene.width, scene.height, image.data(), code, 0);
  Picture result{scene.width, scene.height, {}};
  for (std::uint32_t y = 0; y < scene.height; ++y) {
    for (std::uint32_t x = 0; x < scene.width; ++x) {
      const std::size_t pixel = std::size_t{scene.height - 1 - y} * scene.width + x;
      const std::uint8_t* place = image.data() + 3 * pixel;
      result.pixels.push_back({place[2], place[1], place[0]});
    }
  }
  return result;
}

struct Area {
  std::uint32_t left, top, right, bottom;
};

// Over the three channels, in dB. Grey codes are compared with the scene's green.
double Psnr(const Picture& scene, const Picture& result, const Area& area, bool grey) {
  double sum = 0;
  double count = 0;
  const auto add = [&](int a, int b) {
    sum += (a - b) * (a - b);
    ++count;
  };
  for (std::uint32_t y = area.top; y < area.bottom; ++y) {
    for (std::uint32_t x = area.left; x < area.right; ++x) {
      const Pixel& wanted = scene.At(x, y);
      const Pixel& found = result.At(x, y);
      add(wanted.green, found.green);
      if (!grey) {
        add(wanted.red, found.red);
        add(wanted.blue, found.blue);
      }
    }
  }
  return 10 * std::log10(255.0 * 255.0 * count / sum);
}

// What is shown, by its top left corner.
struct Place {
  const char* name;
  const Picture& scene;
  std::uint32_t x;
  std::uint32_t y;
};

constexpr std::uint32_t kCrop = 48;
constexpr std::uint32_t kZoom = 4;
constexpr std::uint32_t kTile = kCrop * kZoom;
constexpr std::uint32_t kGap = 8;
constexpr std::uint32_t kTilesAcross = 4;
constexpr std::uint32_t kTilesDown = 3;

// Scene first, then the codes in their order, row by row.
class Sheet {
 public:
  Sheet() : pixels_(std::size_t{kSheetWidth} * kSheetHeight, Pixel{255, 255, 255}) {}

  void Add(const Place& place, const Picture& picture) {
    const std::uint32_t left = tiles_ % kTilesAcross * (kTile + kGap);
    const std::uint32_t top = tiles_ / kTilesAcross * (kTile + kGap);
    for (std::uint32_t y = 0; y < kTile; ++y) {
      for (std::uint32_t x = 0; x < kTile; ++x) {
        pixels_[(top + y) * std::size_t{kSheetWidth} + left + x] =
            picture.At(place.x + x / kZoom, place.y + y / kZoom);
      }
    }
    ++tiles_;
  }

  bool Write(const std::string& path) const {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) return false;
    std::fprintf(file, "P6\n%u %u\n255\n", kSheetWidth, kSheetHeight);
    const std::size_t written = std::fwrite(pixels_.data(), sizeof(Pixel), pixels_.size(), file);
    return (std::fclose(file) == 0) && written == pixels_.size();
  }

 private:
  static constexpr std::uint32_t kSheetWidth = kTilesAcross * (kTile + kGap) - kGap;
  static constexpr std::uint32_t kSheetHeight = kTilesDown * (kTile + kGap) - kGap;
  std::vector<Pixel> pixels_;
  std::uint32_t tiles_ = 0;
};

Area WithoutBorder(const Picture& scene) { return {4, 4, scene.width - 4, scene.height - 4}; }

// A row of the table: the chart, its colour patches alone, the zone plate.
void PrintQuality(const Picture& chart, const Picture& plate, std::uint32_t code) {
  constexpr Area kPatches = {24, 24, 616, 184};
  const bool grey = code >= 16 && code <= 18;
  const Picture of_chart = ThroughTheMosaic(chart, code);
  const Picture of_plate = ThroughTheMosaic(plate, code);
  std::printf(
      "| %u | %.1f | %.1f | %.1f | %s |\n", code, Psnr(chart, of_chart, WithoutBorder(chart), grey),
      Psnr(chart, of_chart, kPatches, grey), Psnr(plate, of_plate, WithoutBorder(plate), grey),
      grey ? "green" : "red, green, blue");
}

int Run(const std::string& directory) {
  const Picture chart = DrawChart();
  const Picture plate = Draw(kPlateWidth, kPlateHeight, ZonePlate);
  const Place places[] = {{"chart-patches", chart, 300, 82},
                          {"chart-bars", chart, 440, 248},
                          {"zone-plate", plate, 330, 230}};
  for (const Place& place : places) {
    Sheet sheet;
    sheet.Add(place, place.scene);
    for (const std::uint32_t code : kCodes) sheet.Add(place, ThroughTheMosaic(place.scene, code));
    if (!sheet.Write(directory + "/demosaic-" + place.name + ".ppm")) {
      std::fprintf(stderr, "cannot write to %s\n", directory.c_str());
      return 1;
    }
  }
  for (const std::uint32_t code : kCodes) PrintQuality(chart, plate, code);
  return 0;
}

}  // namespace
}  // namespace ormidex::convert

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: demosaic_quality DIRECTORY\n");
    return 2;
  }
  return ormidex::convert::Run(argv[1]);
}
