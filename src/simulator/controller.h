// The camera's controller: its command registers, output lines and commands.
#ifndef ORMIDEX_SIMULATOR_CONTROLLER_H_
#define ORMIDEX_SIMULATOR_CONTROLLER_H_

#include <cstdint>

#include "device/driver_protocol.h"
#include "simulator/description.h"
#include "simulator/picture.h"
#include "simulator/serial_bus.h"

namespace ormidex::simulator {

// What the controller needs from the rest of the camera.
class ControllerHost {
 public:
  virtual ~ControllerHost() = default;
  // The pixel clock or the automatic exposure is about to be another.
  virtual void BeforeChange() = 0;
  virtual void AfterChange() = 0;
  virtual void SoftwareTrigger() = 0;
  // The sums of the frame read out last; all 0 before the first.
  virtual const SiteSums& LatestSums() = 0;
};

// A general-purpose output line as it was last driven.
struct OutputLine {
  std::uint32_t level = 0;
  std::uint32_t duration = 0;  // in the unit of the request; 0: for good
  std::uint32_t times_set = 0;
};

class Controller {
 public:
  Controller(const CameraDescription& description, SerialBus& bus, ControllerHost& host);

  void PowerUp();

  // CAM_IOCTL_COMMAND_REGISTER on a record of `bytes` bytes, answered in place.
  bool Handle(std::uint8_t* record, std::uint32_t bytes);

  double ClockMegahertz() const;
  bool AutomaticExposure() const { return automatic_exposure_; }
  const OutputLine& Line(int index) const { return lines_[index]; }
  std::uint8_t Saturation() const { return saturation_; }
  std::uint32_t LightSource() const { return light_source_; }
  std::uint8_t Register(std::uint8_t index) const { return registers_[index]; }
  void SetRegister(std::uint8_t index, std::uint8_t value) { registers_[index] = value; }
  bool SmallVariant() const;

 private:
  bool Newer() const { return firmware_ >= 0x03000000; }
  bool Resolve(std::uint32_t address, std::uint32_t* index) const;
  std::uint8_t ReadOne(std::uint32_t index);
  void WriteOne(std::uint32_t index, std::uint8_t value);
  bool ReadRegister(std::uint8_t* record, std::uint32_t bytes);
  bool WriteRegister(const std::uint8_t* record, std::uint32_t bytes);
  bool ReadBlock(std::uint8_t* record, std::uint32_t bytes);
  bool ReadStatistics(std::uint8_t* data, std::uint32_t count);
  bool DriveLine(int index, const std::uint8_t* record, std::uint32_t bytes);
  bool Saturate(std::uint8_t* record, std::uint32_t bytes, bool set);
  bool SelectLight(const std::uint8_t* record, std::uint32_t bytes);
  bool ContinuousExposure(const std::uint8_t* record, std::uint32_t bytes);
  bool Version(std::uint8_t* record, std::uint32_t bytes) const;
  bool Transact(std::uint8_t* record, std::uint32_t bytes);

  const CameraDescription& description_;
  const std::uint32_t firmware_;
  SerialBus& bus_;
  ControllerHost& host_;
  std::uint8_t registers_[256] = {};
  std::uint8_t lock_value_ = 1;
  OutputLine lines_[2];
  std::uint8_t saturation_ = 128;
  std::uint32_t light_source_ = 1;
  bool automatic_exposure_ = false;
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_CONTROLLER_H_
