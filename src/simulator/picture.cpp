#include "simulator/picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

namespace ormidex::simulator {
namespace {

constexpr int kLightLevels = 4096;
constexpr int kNoiseEntries = 8192;
constexpr int kNoiseUnit = 16;
constexpr std::uint32_t kDarkLimit = 16;
constexpr std::uint32_t kClippedLimit = 240;

template <typename T>
std::unique_ptr<T[]> NewArray(std::size_t count) {
  return std::unique_ptr<T[]>(new (std::nothrow) T[count]);
}

std::uint32_t Scramble(std::uint32_t value) {
  value = (value ^ (value >> 16)) * 0x7FEB352Du;
  value = (value ^ (value >> 15)) * 0x846CA68Bu;
  return value ^ (value >> 16);
}

// The nearest pixel of the array of the same parity, so that a window that hangs
// over the edge keeps its mosaic.
int Within(int position, int limit) {
  const int parity = position & 1;
  if (position < 0) return parity;
  return position < limit ? position : limit - 2 + parity;
}

int PositionOf(int index, int first, int factor, bool backwards, bool whole_pairs) {
  const int pair = (index >> 1) * 2 * factor;
  const int member = index & 1;
  if (!backwards) return first + pair + member;
  return whole_pairs ? first - pair + member : first - pair - member;
}

int ColumnOf(const Readout& readout, int index) {
  return Within(PositionOf(index, readout.first_column, readout.factor, readout.mirrored,
                           readout.whole_pairs),
                kArrayColumns);
}

int RowOf(const Readout& readout, int index) {
  return Within(PositionOf(index, readout.first_row, readout.factor, readout.upside_down, false),
                kArrayRows);
}

double Luminance(const Colour& colour) {
  return 0.2126 * colour.red + 0.7152 * colour.green + 0.0722 * colour.blue;
}

std::uint16_t Quantise(double light) {
  const double level = std::clamp(light, 0.0, 1.0) * (kLightLevels - 1) + 0.5;
  return static_cast<std::uint16_t>(level);
}

}  // namespace

Picture::Picture(const Setup& setup, std::unique_ptr<Scene> scene) noexcept
    : setup_(setup), scene_(std::move(scene)) {}

void Picture::ReplaceScene(std::unique_ptr<Scene> scene) {
  scene_ = std::move(scene);
  std::fill(std::begin(row_ready_), std::end(row_ready_), false);
  frame_ready_ = false;
}

Site Picture::SiteAt(int column, int row) const {
  const bool red_column = ((column ^ setup_.red_column) & 1) == 0;
  const bool red_row = ((row ^ setup_.red_row) & 1) == 0;
  if (red_row) return red_column ? kRed : kGreen1;
  return red_column ? kGreen2 : kBlue;
}

bool Picture::PrepareRow(int row) {
  if (row_ready_[row]) return true;
  if (light_ == nullptr) light_ = NewArray<std::uint16_t>(kArrayColumns * kArrayRows);
  if (light_ == nullptr) return false;
  std::uint16_t* out = light_.get() + row * kArrayColumns;
  for (int column = 0; column < kArrayColumns; ++column) {
    const Colour light = scene_->At(column - setup_.scene_column, row - setup_.scene_row);
    const Site site = SiteAt(column, row);
    const double band = site == kRed ? light.red : site == kBlue ? light.blue : light.green;
    out[column] = Quantise(setup_.colour ? band : Luminance(light));
  }
  row_ready_[row] = true;
  return true;
}

std::uint16_t Picture::Develop(double level) const {
  const int adc = static_cast<int>(std::clamp(level + 0.5, 0.0, kAdcLevels - 1.0));
  return developed_[adc];
}

void Picture::PrepareNoise() {
  // The sum of twelve evenly spread numbers is close enough to a normal
  // distribution, and the same on every machine.
  if (noise_deviation_ == settings_.noise) return;
  noise_deviation_ = settings_.noise;
  std::uint32_t state = Scramble(setup_.seed) | 1;
  for (int i = 0; i < kNoiseEntries; ++i) {
    std::int32_t sum = 0;
    for (int k = 0; k < 12; ++k) {
      state = state * 1664525u + 1013904223u;
      sum += static_cast<std::int32_t>(state >> 22) - 512;
    }
    noise_[i] = static_cast<std::int16_t>(sum / 1024.0 * settings_.noise * kNoiseUnit);
  }
}

bool Picture::PrepareTables(const FrameSettings& settings) {
  if (tables_ready_ && settings == settings_) return true;
  if (samples_ == nullptr) samples_ = NewArray<std::uint16_t>(kSiteCount * kLightLevels);
  if (levels_ == nullptr) levels_ = NewArray<std::int32_t>(kSiteCount * kLightLevels);
  if (noise_ == nullptr) noise_ = NewArray<std::int16_t>(kNoiseEntries);
  if (samples_ == nullptr || levels_ == nullptr || noise_ == nullptr) return false;

  settings_ = settings;
  const bool wide = settings.bytes_per_pixel == 2;
  for (int adc = 0; adc < kAdcLevels; ++adc) {
    const int output = settings.table != nullptr ? settings.table[adc] : adc << 6;
    developed_[adc] = static_cast<std::uint16_t>(wide ? output : output >> 8);
  }
  for (int site = 0; site < kSiteCount; ++site) {
    const double step = settings.response[site] * (kAdcLevels - 1) / (kLightLevels - 1);
    for (int light = 0; light < kLightLevels; ++light) {
      const double level = std::min(light * step, 2.0 * kAdcLevels);
      samples_[site * kLightLevels + light] = Develop(level);
      levels_[site * kLightLevels + light] = static_cast<std::int32_t>(level * kNoiseUnit);
    }
  }
  for (int column = 0; column < settings.readout.width; ++column) {
    columns_[column] = static_cast<std::uint16_t>(ColumnOf(settings.readout, column));
  }
  if (settings.noise > 0.0) PrepareNoise();
  tables_ready_ = true;
  frame_ready_ = false;
  return true;
}

template <typename Sample>
void Picture::RenderRow(int row, std::uint32_t number, Sample* out) {
  const Readout& readout = settings_.readout;
  const int array_row = RowOf(readout, row);
  const std::uint16_t* light = light_.get() + array_row * kArrayColumns;
  const int first = columns_[0];
  const int even_site = SiteAt(first, array_row) * kLightLevels;
  const int odd_site = SiteAt(first + 1, array_row) * kLightLevels;
  if (settings_.noise > 0.0) {
    std::uint32_t place = Scramble(number * 4099u + static_cast<std::uint32_t>(row));
    for (int i = 0; i < readout.width; ++i) {
      const int site = (i & 1) == 0 ? even_site : odd_site;
      const int level = levels_[site + light[columns_[i]]] + noise_[place++ % kNoiseEntries];
      const int adc = (level + kNoiseUnit / 2) / kNoiseUnit;
      out[i] = static_cast<Sample>(developed_[std::clamp(adc, 0, kAdcLevels - 1)]);
    }
    return;
  }
  const std::uint16_t* even = samples_.get() + even_site;
  const std::uint16_t* odd = samples_.get() + odd_site;
  int i = 0;
  for (; i + 1 < readout.width; i += 2) {
    out[i] = static_cast<Sample>(even[light[columns_[i]]]);
    out[i + 1] = static_cast<Sample>(odd[light[columns_[i + 1]]]);
  }
  if (i < readout.width) out[i] = static_cast<Sample>(even[light[columns_[i]]]);
}

bool Picture::Render(const FrameSettings& settings, std::uint32_t number) {
  const bool noisy = settings.noise > 0.0;
  if (!PrepareTables(settings)) return false;
  if (frame_ready_ && (!noisy || frame_number_ == number)) return true;
  const std::uint32_t bytes = settings.Bytes();
  if (frame_capacity_ < bytes) {
    frame_ = NewArray<std::uint8_t>(bytes);
    frame_capacity_ = frame_ != nullptr ? bytes : 0;
    if (frame_ == nullptr) return false;
  }
  const Readout& readout = settings.readout;
  for (int row = 0; row < readout.height; ++row) {
    if (!PrepareRow(RowOf(readout, row))) return false;
    std::uint8_t* out = frame_.get() + row * readout.width * settings.bytes_per_pixel;
    if (settings.bytes_per_pixel == 2) {
      RenderRow(row, number, reinterpret_cast<std::uint16_t*>(out));
    } else {
      RenderRow(row, number, out);
    }
  }
  frame_ready_ = true;
  sums_ready_ = false;
  frame_number_ = number;
  return true;
}

const std::uint8_t* Picture::Expose(const FrameSettings& settings, std::uint32_t number) {
  return Render(settings, number) ? frame_.get() : nullptr;
}

template <typename Sample>
SiteSums Picture::SumSamples(const Sample* frame) const {
  const Readout& readout = settings_.readout;
  SiteSums sums;
  sums.wide = sizeof(Sample) == 2;
  for (int row = 0; row < readout.height; ++row) {
    const int array_row = RowOf(readout, row);
    for (int parity = 0; parity < 2 && parity < readout.width; ++parity) {
      std::uint32_t sum = 0;
      std::uint32_t fine = 0;
      for (int i = parity; i < readout.width; i += 2) {
        const std::uint32_t sample = frame[i];
        const std::uint32_t upper = sizeof(Sample) == 2 ? sample >> 8 : sample;
        sum += upper;
        fine += sample >> 7;
        sums.dark += upper <= kDarkLimit;
        sums.clipped += upper >= kClippedLimit;
      }
      const Site site = SiteAt(columns_[parity], array_row);
      sums.sum[site] += sum;
      sums.fine_sum[site] += fine;
    }
    frame += readout.width;
  }
  return sums;
}

const SiteSums& Picture::Measure(const FrameSettings& settings, std::uint32_t number) {
  if (!Render(settings, number)) {
    sums_ = SiteSums();
  } else if (!sums_ready_) {
    sums_ = settings.bytes_per_pixel == 2
                ? SumSamples(reinterpret_cast<const std::uint16_t*>(frame_.get()))
                : SumSamples(frame_.get());
    sums_ready_ = true;
  }
  return sums_;
}

double Picture::EstimateMean(const FrameSettings& settings) {
  if (!PrepareTables(settings)) return 0.0;
  const Readout& readout = settings.readout;
  double sum = 0.0;
  int count = 0;
  for (int row = 0; row < readout.height; row += 15) {
    const int array_row = RowOf(readout, row);
    if (!PrepareRow(array_row)) return 0.0;
    for (int i = 0; i < readout.width; i += 15) {
      const int column = columns_[i];
      const int light = light_[static_cast<std::size_t>(array_row * kArrayColumns + column)];
      sum += samples_[static_cast<std::size_t>(SiteAt(column, array_row) * kLightLevels + light)];
      ++count;
    }
  }
  const double scale = settings.bytes_per_pixel == 2 ? 256.0 : 1.0;
  return count > 0 ? sum / count / scale : 0.0;
}

}  // namespace ormidex::simulator
