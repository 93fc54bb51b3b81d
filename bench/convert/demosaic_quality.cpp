// Quality of the demosaic codes: draws two scenes, samples them through the mosaic,
// converts with every code and compares with the scene.
//
//   demosaic_quality DIRECTORY
//
// Prints one Markdown table row per code and writes, for each scene, one PPM sheet of
// enlarged crops. scripts/demosaic-pictures.py turns both into docs/demosaic.md.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "convert/convert.h"

namespace ormidex::convert {
namespace {

constexpr std::uint32_t kWidth = 512;
constexpr std::uint32_t kHeight = 384;
constexpr std::uint32_t kCodes[] = {0, 1, 2, 3, 4, 5, 16, 17, 18, 255};

struct Pixel {
  std::uint8_t red;
  std::uint8_t green;
  std::uint8_t blue;
};

struct Scene {
  const char* name;
  std::uint32_t crop_x;
  std::uint32_t crop_y;
  std::vector<Pixel> pixels;
  const Pixel& At(std::uint32_t x, std::uint32_t y) const { return pixels[y * kWidth + x]; }
};

std::uint8_t ToSample(double value) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

// Rings that become finer outwards, up to 0.35 of the sampling frequency in a corner,
// in a slowly changing tint.
Pixel ZonePlate(double x, double y) {
  const double radius2 = (x * x + y * y) / (kWidth * kWidth + kHeight * kHeight);
  const double diagonal = std::hypot(kWidth, kHeight);
  const double wave = 0.5 + 0.4 * std::cos(std::numbers::pi * 0.35 * radius2 * diagonal);
  const double tint = 0.15 * std::sin(x / 90.0);
  return {ToSample(255 * wave * (0.85 + tint)), ToSample(255 * wave),
          ToSample(255 * wave * (0.8 - tint))};
}

// Coloured fields, slanted edges, a fan of thin lines.
Pixel Chart(double x, double y) {
  constexpr std::array<Pixel, 8> kFields{{{200, 40, 40},
                                          {40, 160, 60},
                                          {40, 60, 180},
                                          {220, 200, 50},
                                          {180, 60, 160},
                                          {50, 170, 180},
                                          {230, 230, 230},
                                          {60, 60, 60}}};
  const auto column = static_cast<std::size_t>(x / 64);
  const auto row = static_cast<std::size_t>(y / 64);
  const Pixel field = kFields[(column + 3 * row) % kFields.size()];
  // The middle of each field is crossed by a slanted edge to half its brightness.
  const double slant =
      std::clamp((std::fmod(x, 64.0) - 32) + 0.2 * (std::fmod(y, 64.0) - 32) + 0.5, 0.0, 1.0);
  const double shade = row % 2 == 0 ? 1.0 - 0.5 * slant : 1.0;
  const double angle = std::atan2(y - 192, x - 256);
  const double lines = std::hypot(x - 256, y - 192) < 90 ? 0.5 + 0.5 * std::cos(angle * 40) : 1.0;
  const double factor = shade * (0.25 + 0.75 * lines);
  return {ToSample(field.red * factor), ToSample(field.green * factor),
          ToSample(field.blue * factor)};
}

Scene Draw(const char* name, Pixel (*scene)(double, double), std::uint32_t crop_x,
           std::uint32_t crop_y) {
  Scene result{name, crop_x, crop_y, {}};
  for (std::uint32_t y = 0; y < kHeight; ++y) {
    for (std::uint32_t x = 0; x < kWidth; ++x) result.pixels.push_back(scene(x, y));
  }
  return result;
}

std::vector<Pixel> ThroughTheMosaic(const Scene& scene, std::uint32_t code) {
  std::vector<std::uint8_t> raw;
  for (std::uint32_t y = 0; y < kHeight; ++y) {
    for (std::uint32_t x = 0; x < kWidth; ++x) {
      const Pixel& pixel = scene.At(x, y);
      const std::uint8_t non_green = y % 2 == 0 ? pixel.red : pixel.blue;
      raw.push_back(x % 2 == y % 2 ? non_green : pixel.green);
    }
  }
  std::vector<std::uint8_t> image(3 * raw.size());
  DemosaicTo24From8(raw.data(), kWidth, kHeight, image.data(), code, 0);
  std::vector<Pixel> result;
  for (std::uint32_t y = 0; y < kHeight; ++y) {
    for (std::uint32_t x = 0; x < kWidth; ++x) {
      const std::uint8_t* place = image.data() + 3 * ((kHeight - 1 - y) * kWidth + x);
      result.push_back({place[2], place[1], place[0]});
    }
  }
  return result;
}

// Over the three channels, in dB, without a border of 4 pixels. Grey codes are
// compared with the scene's green.
double Psnr(const Scene& scene, const std::vector<Pixel>& result, bool grey) {
  double sum = 0;
  double count = 0;
  for (std::uint32_t y = 4; y + 4 < kHeight; ++y) {
    for (std::uint32_t x = 4; x + 4 < kWidth; ++x) {
      const Pixel& wanted = scene.At(x, y);
      const Pixel& found = result[y * kWidth + x];
      const auto add = [&](int a, int b) {
        sum += (a - b) * (a - b);
        ++count;
      };
      add(wanted.green, found.green);
      if (!grey) {
        add(wanted.red, found.red);
        add(wanted.blue, found.blue);
      }
    }
  }
  return 10 * std::log10(255.0 * 255.0 * count / sum);
}

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

  void Add(const Scene& scene, const std::vector<Pixel>& picture) {
    const std::uint32_t left = tiles_ % kTilesAcross * (kTile + kGap);
    const std::uint32_t top = tiles_ / kTilesAcross * (kTile + kGap);
    for (std::uint32_t y = 0; y < kTile; ++y) {
      for (std::uint32_t x = 0; x < kTile; ++x) {
        const std::size_t source =
            (scene.crop_y + y / kZoom) * std::size_t{kWidth} + scene.crop_x + x / kZoom;
        pixels_[(top + y) * std::size_t{kSheetWidth} + left + x] = picture[source];
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

int Run(const std::string& directory) {
  const Scene scenes[] = {Draw("chart", Chart, 232, 100), Draw("zone-plate", ZonePlate, 330, 230)};
  for (const Scene& scene : scenes) {
    Sheet sheet;
    sheet.Add(scene, scene.pixels);
    for (const std::uint32_t code : kCodes) sheet.Add(scene, ThroughTheMosaic(scene, code));
    if (!sheet.Write(directory + "/demosaic-" + scene.name + ".ppm")) {
      std::fprintf(stderr, "cannot write to %s\n", directory.c_str());
      return 1;
    }
  }
  for (const std::uint32_t code : kCodes) {
    const bool grey = code >= 16 && code <= 18;
    std::printf("| %u | %.1f | %.1f | %s |\n", code,
                Psnr(scenes[0], ThroughTheMosaic(scenes[0], code), grey),
                Psnr(scenes[1], ThroughTheMosaic(scenes[1], code), grey),
                grey ? "green" : "red, green, blue");
  }
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
