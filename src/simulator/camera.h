// One simulated camera, as the driver of the camera family sees it.
//
// The public functions below the line "driver's side" are for tests and tools:
// they reach into the camera as hands, light and cables would.
#ifndef ORMIDEX_SIMULATOR_CAMERA_H_
#define ORMIDEX_SIMULATOR_CAMERA_H_

#include <cstdint>
#include <memory>
#include <string>

#include "device/driver_gateway.h"
#include "device/driver_protocol.h"
#include "platform/critical_section.h"
#include "simulator/clock.h"
#include "simulator/command_loop.h"
#include "simulator/controller.h"
#include "simulator/description.h"
#include "simulator/faults.h"
#include "simulator/imager.h"
#include "simulator/picture.h"
#include "simulator/serial_bus.h"
#include "simulator/stream.h"

namespace ormidex::simulator {

// What a camera was sent.
struct TrafficCount {
  std::uint32_t requests = 0;
  std::uint32_t failed = 0;
};

class SimulatedCamera final : private ControllerHost {
 public:
  // The clock outlives the camera.
  SimulatedCamera(const CameraDescription& description, std::unique_ptr<Scene> scene, Clock& clock);
  ~SimulatedCamera() override;
  SimulatedCamera(const SimulatedCamera&) = delete;
  SimulatedCamera& operator=(const SimulatedCamera&) = delete;

  // --- The driver's side ---

  // `plug` is what Plug() said when the handle was opened: a handle does not
  // survive the camera's being pulled.
  bool Control(std::uint32_t plug, const device::DriverRequest& request, std::uint32_t* returned);
  // Counts as an attempt for faults that plug the camera in again. 0: pulled.
  std::uint32_t AttemptOpen();
  // 0 while the camera is pulled, otherwise how often it has been plugged in.
  std::uint32_t Plug();
  // Ends the reads that wait for a frame.
  void CancelReads();

  // --- Hands, light and cables ---

  const CameraDescription& Description() const { return description_; }
  void Unplug();
  // The camera starts anew, as switched on.
  void Replug();
  // An edge at the external trigger input. False when it released no frame.
  bool FireTrigger();
  void SetLight(double light);
  void SetTint(const Tint& tint);
  void SetNoise(double noise);
  void ReplaceScene(std::unique_ptr<Scene> scene);
  void AddFault(const Fault& fault);
  void ClearFaults();

  // --- Looking inside ---

  std::uint8_t ImagerRegister(std::uint8_t address);
  void SetImagerRegister(std::uint8_t address, std::uint8_t value);
  std::uint8_t CommandRegister(std::uint8_t index);
  void SetCommandRegister(std::uint8_t index, std::uint8_t value);
  OutputLine Line(int index);
  std::uint32_t Gpio();
  std::uint32_t TimeoutMilliseconds();
  std::uint32_t VideoMode();
  bool Streaming();
  bool Armed();
  std::uint32_t MissedTriggers();
  // How long the frame that would start now lasts, and its exposure.
  double FrameMicroseconds();
  double ExposureMicroseconds();
  TrafficCount Traffic(std::uint32_t code);
  std::uint32_t TotalRequests();
  std::uint64_t FrameBytesDelivered();
  void SetCommandPiece(std::uint32_t piece);
  void SetCommandDelay(Microseconds delay);
  void RefuseCommands(std::uint32_t count);

 private:
  struct Call;
  static constexpr int kWaiters = 16;
  static constexpr std::uint32_t kCodes = 256;

  // ControllerHost
  void BeforeChange() override { CatchUp(); }
  void AfterChange() override { exposure_ready_ = false; }
  void SoftwareTrigger() override;
  const SiteSums& LatestSums() override;

  void PowerUp();
  void PullOut();
  void CatchUp();
  const Exposure& CurrentExposure();
  void WakeReaders();
  bool Tampered(std::uint32_t code, Misfortune* misfortune);
  bool Perform(const Call& call);
  bool Dispatch(const Call& call);

  bool ReadRegisters(const Call& call);
  bool WriteRegisters(const Call& call);
  bool Gpio(const Call& call);
  bool IdentityWord(const Call& call);
  bool SetTransferSize(const Call& call);
  bool LoadLookupTable(const Call& call);
  bool SetTimeout(const Call& call);
  bool NameString(const Call& call, const std::string& name);
  bool StartStream(const Call& call);
  bool StopStream();
  bool PauseStream(bool pause);
  bool SetVideoMode(const Call& call);
  bool SetFlip(const Call& call);
  bool StillFrame(const Call& call);
  bool TriggerMode(const Call& call);
  bool FrameNumber(const Call& call);
  bool ReadCommand(const Call& call);
  bool WriteCommand(const Call& call);
  bool CommandRegisterRequest(const Call& call);
  bool Flush();

  bool ReadFrame(const Call& call);
  bool AwaitFrame(const Misfortune& misfortune, ExposedFrame* frame);
  bool WaitUntil(Microseconds due, bool certain);
  void RunAutomaticExposure(const ExposedFrame& frame);
  double CaptureMicroseconds(std::uint32_t exposure) const;

  const CameraDescription description_;
  Clock& clock_;
  platform::CriticalSection lock_;  // guards everything below

  std::unique_ptr<Imager> imager_;
  SerialBus bus_;
  Controller controller_;
  Picture picture_;
  Stream stream_;
  CommandLoop commands_;
  FaultScript faults_;

  double light_;
  Tint tint_;
  double noise_;
  int bytes_per_pixel_ = 1;
  std::uint32_t gpio_ = 0;
  std::uint32_t timeout_ms_;
  std::uint32_t video_mode_ = 0;
  std::uint32_t frames_taken_;
  std::uint64_t bytes_delivered_ = 0;

  // Frames in flight may still point at an earlier table.
  static constexpr int kTables = 8;
  std::uint16_t tables_[kTables][kAdcLevels] = {};
  std::uint32_t table_version_ = 0;
  bool table_on_ = false;

  Exposure exposure_;
  bool exposure_ready_ = false;

  bool plugged_ = true;
  std::uint32_t plug_ = 1;
  std::uint32_t replug_after_ = 0;
  std::uint32_t read_round_ = 0;  // another number ends the reads that wait
  struct Waiter {
    platform::Event event;
    bool used = false;
  };
  Waiter waiters_[kWaiters];
  TrafficCount traffic_[kCodes] = {};
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_CAMERA_H_
