#include "simulator/simulator.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <new>

#include "device/driver_protocol.h"
#include "simulator/create.h"

namespace ormidex::simulator {
namespace {

constexpr char kFriendlyName[] = "Torvenal(tm) 1394 Camera";
// How the host may write the device's place before its name.
constexpr const char* kPathPrefixes[] = {"//./", "\\\\.\\", "\\\\?\\"};

std::string DeviceName(std::size_t index) {
  char name[32];
  std::snprintf(name, sizeof name, "ormidex-sim-%02u", static_cast<unsigned>(index));
  return name;
}

bool Fill(const std::string& text, char (&buffer)[device::kDeviceTextBytes]) {
  if (text.size() >= sizeof buffer) return false;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return true;
}

class Entry : public device::DeviceEntry {
 public:
  explicit Entry(const std::string& name) : name_(name) {}
  bool FriendlyName(char (&name)[device::kDeviceTextBytes]) override {
    return Fill(kFriendlyName, name);
  }
  bool DevicePath(char (&path)[device::kDeviceTextBytes]) override {
    return Fill("\\\\.\\" + name_, path);
  }

 private:
  const std::string& name_;
};

}  // namespace

struct Simulator::Handle {
  Slot* slot = nullptr;  // null: the driver itself, which only lists its devices
  std::uint32_t plug = 0;
  bool exclusive = false;
  std::atomic<bool> open{false};
};

Simulator::Simulator() { lock_.Initialise(); }
Simulator::~Simulator() { lock_.Delete(); }

std::unique_ptr<Simulator> Simulator::Create(const char* text, std::string* error, Clock* clock) {
  try {
    std::unique_ptr<Simulator> simulator(new Simulator);
    std::vector<CameraDescription> descriptions;
    if (ParseDescription(text, &descriptions, error) &&
        !simulator->AddCameras(descriptions, error, clock)) {
      simulator->slots_.clear();
    }
    return simulator;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

bool Simulator::AddCameras(const std::vector<CameraDescription>& descriptions, std::string* error,
                           Clock* clock) {
  for (const CameraDescription& description : descriptions) {
    auto slot = std::make_unique<Slot>();
    slot->name = DeviceName(slots_.size());
    if (clock == nullptr && description.pace == Pace::kFast) {
      slot->clock = std::make_unique<FastClock>();
    }
    Clock* own = clock != nullptr         ? clock
                 : slot->clock != nullptr ? slot->clock.get()
                                          : &real_clock_;
    std::unique_ptr<Scene> scene = CreateScene(description);
    std::string complaint;
    if (!scene->Prepare(&complaint)) {
      *error = "camera " + std::to_string(slots_.size() + 1) + ", scene: " + complaint;
      return false;
    }
    slot->camera = std::make_unique<SimulatedCamera>(description, std::move(scene), *own);
    slots_.push_back(std::move(slot));
  }
  return true;
}

Simulator::Slot* Simulator::FindSlot(const char* path) {
  for (const char* prefix : kPathPrefixes) {
    const std::size_t length = std::strlen(prefix);
    if (std::strncmp(path, prefix, length) != 0) continue;
    for (const auto& slot : slots_) {
      if (slot->name == path + length) return slot.get();
    }
  }
  return nullptr;
}

device::DriverHandle Simulator::Grant(Slot* slot, Sharing& sharing, std::uint32_t plug,
                                      device::DriverShare share) {
  if (sharing.plug != plug) sharing = Sharing{0, false, plug};
  const bool exclusive = share == device::DriverShare::kExclusive;
  if (sharing.handles > 0 && (exclusive || sharing.exclusive)) return nullptr;
  std::unique_ptr<Handle> handle(new (std::nothrow) Handle);
  if (handle == nullptr) return nullptr;
  handle->slot = slot;
  handle->plug = plug;
  handle->exclusive = exclusive;
  handle->open.store(true, std::memory_order_release);
  sharing.exclusive = exclusive;
  ++sharing.handles;
  try {
    handles_.push_back(std::move(handle));
  } catch (const std::bad_alloc&) {
    --sharing.handles;
    return nullptr;
  }
  return handles_.back().get();
}

device::DriverHandle Simulator::Open(const char* path, device::DriverShare share) {
  if (path == nullptr) return nullptr;
  platform::ScopedLock hold(lock_);
  if (std::strcmp(path, kFriendlyName) == 0) {
    return slots_.empty() ? nullptr : Grant(nullptr, bus_sharing_, 1, share);
  }
  Slot* slot = FindSlot(path);
  if (slot == nullptr) return nullptr;
  const std::uint32_t plug = slot->camera->AttemptOpen();
  return plug == 0 ? nullptr : Grant(slot, slot->sharing, plug, share);
}

bool Simulator::Control(device::DriverHandle handle, const device::DriverRequest& request,
                        std::uint32_t* returned) {
  const Handle* opened = static_cast<const Handle*>(handle);
  *returned = 0;
  if (opened == nullptr || !opened->open.load(std::memory_order_acquire)) return false;
  if (request.code == device::CAM_IOCTL_ENUMERATE) return ListDevices(request, returned);
  if (opened->slot == nullptr) return false;
  return opened->slot->camera->Control(opened->plug, request, returned);
}

// Lines of one length, as all device names are.
bool Simulator::ListDevices(const device::DriverRequest& request, std::uint32_t* returned) {
  char* out = static_cast<char*>(request.out);
  std::uint32_t used = 0;
  for (const auto& slot : slots_) {
    const std::uint32_t length = static_cast<std::uint32_t>(slot->name.size());
    if (slot->camera->Plug() == 0) continue;
    if (out == nullptr || request.out_bytes - used < length + 1) return false;
    std::memcpy(out + used, slot->name.data(), length);
    out[used + length] = '\n';
    used += length + 1;
  }
  *returned = used;
  return true;
}

bool Simulator::Close(device::DriverHandle handle) {
  Handle* opened = static_cast<Handle*>(handle);
  if (opened == nullptr || !opened->open.exchange(false)) return false;
  platform::ScopedLock hold(lock_);
  Sharing& sharing = opened->slot != nullptr ? opened->slot->sharing : bus_sharing_;
  if (sharing.plug == opened->plug) {
    if (--sharing.handles == 0) sharing.exclusive = false;
  }
  if (opened->slot != nullptr) opened->slot->camera->CancelReads();
  return true;
}

device::EnumerationResult Simulator::Enumerate(device::DeviceVisitor& visitor) {
  bool any = false;
  for (const auto& slot : slots_) {
    if (slot->camera->Plug() == 0) continue;
    any = true;
    Entry entry(slot->name);
    if (!visitor.Visit(entry)) break;
  }
  return any ? device::EnumerationResult::kListed : device::EnumerationResult::kEmptyCategory;
}

int Simulator::OpenHandles() {
  platform::ScopedLock hold(lock_);
  return static_cast<int>(std::count_if(handles_.begin(), handles_.end(),
                                        [](const auto& handle) { return handle->open.load(); }));
}

std::unique_ptr<device::DriverGateway> CreateFromDescription(const char* description,
                                                             std::string* error) {
  error->clear();
  std::unique_ptr<Simulator> simulator = Simulator::Create(description, error);
  if (simulator == nullptr) *error = "out of memory";
  if (!error->empty()) return nullptr;
  return simulator;
}

}  // namespace ormidex::simulator
