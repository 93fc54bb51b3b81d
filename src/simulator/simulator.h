// Simulated cameras behind the driver gateway.
#ifndef ORMIDEX_SIMULATOR_SIMULATOR_H_
#define ORMIDEX_SIMULATOR_SIMULATOR_H_

#include <memory>
#include <string>
#include <vector>

#include "device/driver_gateway.h"
#include "simulator/camera.h"
#include "simulator/clock.h"

namespace ormidex::simulator {

// A driver with the described cameras on its bus.
class Simulator : public device::DriverGateway {
 public:
  // On a mistake in the text, or a picture that cannot be read, the simulator has
  // no camera and *error holds one line that names the place. With a clock, all
  // cameras live by it instead of by their described pace; it must outlive the
  // simulator. Null only without memory.
  static std::unique_ptr<Simulator> Create(const char* text, std::string* error,
                                           Clock* clock = nullptr);
  ~Simulator() override;

  device::DriverHandle Open(const char* path, device::DriverShare share) override;
  bool Control(device::DriverHandle handle, const device::DriverRequest& request,
               std::uint32_t* returned) override;
  bool Close(device::DriverHandle handle) override;
  device::EnumerationResult Enumerate(device::DeviceVisitor& visitor) override;

  int CameraCount() const { return static_cast<int>(slots_.size()); }
  SimulatedCamera& Camera(int index) { return *slots_[static_cast<std::size_t>(index)]->camera; }
  // Handles that are open at this moment, those of pulled cameras included.
  int OpenHandles();

 private:
  struct Handle;
  // Who has a device open.
  struct Sharing {
    int handles = 0;
    bool exclusive = false;
    std::uint32_t plug = 0;  // the plugging that the counts belong to
  };
  struct Slot {
    std::string name;
    std::unique_ptr<Clock> clock;  // its own, when it runs fast
    std::unique_ptr<SimulatedCamera> camera;
    Sharing sharing;
  };

  Simulator();
  bool AddCameras(const std::vector<CameraDescription>& descriptions, std::string* error,
                  Clock* clock);
  Slot* FindSlot(const char* path);
  device::DriverHandle Grant(Slot* slot, Sharing& sharing, std::uint32_t plug,
                             device::DriverShare share);
  bool ListDevices(const device::DriverRequest& request, std::uint32_t* returned);

  RealClock real_clock_;
  std::vector<std::unique_ptr<Slot>> slots_;
  platform::CriticalSection lock_;  // guards the handles and the sharing
  Sharing bus_sharing_;
  // Closed handles are kept, so that a late use of one fails instead of crashing.
  std::vector<std::unique_ptr<Handle>> handles_;
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_SIMULATOR_H_
