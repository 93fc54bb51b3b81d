// From light to samples: what the sensor makes of the scene.
#ifndef ORMIDEX_SIMULATOR_PICTURE_H_
#define ORMIDEX_SIMULATOR_PICTURE_H_

#include <cstdint>
#include <memory>

#include "simulator/scene.h"

namespace ormidex::simulator {

// The sites of the mosaic. Green 1 shares its rows with red, green 2 with blue.
enum Site { kRed, kGreen1, kGreen2, kBlue, kSiteCount };

inline constexpr int kAdcLevels = 1024;  // ten bits

// The pixels that the sensor has, dark border included, in the coordinates of its
// window registers.
inline constexpr int kArrayColumns = 1312;
inline constexpr int kArrayRows = 1056;

// Which rows and columns are read out, and in which order.
struct Readout {
  int first_column = 0;  // where reading begins, in array coordinates
  int first_row = 0;
  int width = 0;  // pixels delivered
  int height = 0;
  int factor = 1;         // pairs are kept together: two pixels of every 2 x factor
  bool mirrored = false;  // from right to left
  bool upside_down = false;
  // Mirrored without turning the pairs themselves, which keeps the mosaic.
  bool whole_pairs = false;

  bool operator==(const Readout&) const = default;
};

// Everything that one exposed frame depends on.
struct FrameSettings {
  Readout readout;
  int bytes_per_pixel = 1;
  // Fraction of full range that light of strength 1 gives at each site.
  double response[kSiteCount] = {};
  double noise = 0.0;               // standard deviation in ADC levels
  std::uint32_t table_version = 0;  // of the gamma table
  // 16-bit outputs of the ADC levels; null: none loaded.
  const std::uint16_t* table = nullptr;

  std::uint32_t Bytes() const {
    return static_cast<std::uint32_t>(readout.width * readout.height * bytes_per_pixel);
  }
  bool operator==(const FrameSettings&) const = default;
};

// Sums over a frame's sites on an 8-bit scale, and its extreme pixels.
struct SiteSums {
  std::uint64_t sum[kSiteCount] = {};       // of the samples' upper eight bits
  std::uint64_t fine_sum[kSiteCount] = {};  // 16-bit frames: of their upper nine bits
  std::uint32_t dark = 0;
  std::uint32_t clipped = 0;
  bool wide = false;

  // What the older controllers' adders hold.
  std::uint64_t Older(Site site) const { return wide ? fine_sum[site] : sum[site]; }
};

// The sensor of one camera. Not thread-safe: the camera's lock guards it.
class Picture {
 public:
  struct Setup {
    bool colour = true;
    int red_column = 0;  // parity of the array columns and rows with red sites
    int red_row = 0;
    int scene_column = 0;  // array coordinates of the scene's top left point
    int scene_row = 0;
    std::uint32_t seed = 1;
  };

  Picture(const Setup& setup, std::unique_ptr<Scene> scene) noexcept;

  void ReplaceScene(std::unique_ptr<Scene> scene);

  // The frame's samples, valid until the next call; null without memory for them.
  // Frame `number` decides the noise.
  const std::uint8_t* Expose(const FrameSettings& settings, std::uint32_t number);
  // The frame's sums; all 0 without memory.
  const SiteSums& Measure(const FrameSettings& settings, std::uint32_t number);
  // Mean level, 0 to 255, estimated from a coarse grid of pixels.
  double EstimateMean(const FrameSettings& settings);

  Site SiteAt(int column, int row) const;

 private:
  bool PrepareRow(int row);
  bool PrepareTables(const FrameSettings& settings);
  void PrepareNoise();
  bool Render(const FrameSettings& settings, std::uint32_t number);
  template <typename Sample>
  void RenderRow(int row, std::uint32_t number, Sample* out);
  template <typename Sample>
  SiteSums SumSamples(const Sample* frame) const;
  std::uint16_t Develop(double level) const;

  Setup setup_;
  std::unique_ptr<Scene> scene_;
  // The light at each pixel behind its filter, 12 bits; rows are made when needed.
  std::unique_ptr<std::uint16_t[]> light_;
  bool row_ready_[kArrayRows] = {};

  // For the settings below: 12-bit light to samples, and the columns in order.
  FrameSettings settings_;
  bool tables_ready_ = false;
  std::unique_ptr<std::uint16_t[]> samples_;  // kSiteCount x 4096
  std::unique_ptr<std::int32_t[]> levels_;    // the same in 1/16 ADC level, for noise
  std::uint16_t developed_[kAdcLevels] = {};
  std::uint16_t columns_[kArrayColumns] = {};
  std::unique_ptr<std::int16_t[]> noise_;  // in 1/16 ADC level
  double noise_deviation_ = 0.0;           // that it was made for

  std::unique_ptr<std::uint8_t[]> frame_;
  std::uint32_t frame_capacity_ = 0;
  bool frame_ready_ = false;
  std::uint32_t frame_number_ = 0;
  SiteSums sums_;
  bool sums_ready_ = false;
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_PICTURE_H_
