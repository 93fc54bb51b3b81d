// The imager chip: its registers and what they make it do.
#ifndef ORMIDEX_SIMULATOR_IMAGER_H_
#define ORMIDEX_SIMULATOR_IMAGER_H_

#include <cstdint>
#include <memory>

#include "simulator/picture.h"

namespace ormidex::simulator {

// How the imager is being run at this moment.
struct ImagerState {
  Readout readout;
  double gain[kSiteCount] = {1.0, 1.0, 1.0, 1.0};  // relative to power-up
  double row_us = 0.0;                             // time for one row
  double exposure_us = 0.0;
  double frame_us = 0.0;  // from the start of one frame to the start of the next
};

class Imager {
 public:
  virtual ~Imager() = default;

  virtual std::uint32_t BusAddress() const = 0;
  virtual void PowerUp() = 0;
  virtual std::uint8_t Read(std::uint8_t address) const { return registers_[address]; }
  virtual void Write(std::uint8_t address, std::uint8_t value) { registers_[address] = value; }
  // The state at a pixel clock of `megahertz`.
  virtual ImagerState Run(double megahertz) const = 0;
  // The driver's request to move a mirrored window so that the mosaic stays.
  virtual void ShiftMirroredWindow(bool) {}
  // What the sensor looks like in its own coordinates.
  virtual Picture::Setup Sensor() const = 0;
  // The exposure (in microseconds) that gives the scene its nominal brightness.
  virtual double NominalExposure() const = 0;
  // Runs the exposure at a multiple of its present length (automatic exposure).
  virtual void ScaleExposure(double) {}

 protected:
  std::uint32_t Word(std::uint8_t high) const {
    return registers_[high] * 256u + registers_[static_cast<std::uint8_t>(high + 1)];
  }
  void SetWord(std::uint8_t high, std::uint32_t value) {
    registers_[high] = static_cast<std::uint8_t>(value >> 8);
    registers_[static_cast<std::uint8_t>(high + 1)] = static_cast<std::uint8_t>(value);
  }
  std::uint8_t registers_[256] = {};
};

// phase: the mosaic's Bayer phase, of the first generation only. answer: what the
// identity register holds, or -1 for the right byte.
std::unique_ptr<Imager> CreateFirstGenerationImager(int phase, int answer);
std::unique_ptr<Imager> CreateSecondGenerationImager(int answer);

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_IMAGER_H_
