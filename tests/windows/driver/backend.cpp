#include "backend.h"

#include <windows.h>

#include <cstdio>
#include <memory>
#include <string>

#include "device/driver_gateway.h"
#include "simulator/simulator.h"

namespace {

using ormidex::device::DriverRequest;
using ormidex::device::DriverShare;
using ormidex::simulator::Simulator;

constexpr char kParameters[] = "SYSTEM\\CurrentControlSet\\Services\\ormcam\\Parameters";

// Never destroyed: an application may still hold a camera when the driver stops.
Simulator* simulator = nullptr;

// Requests enter through the system's threads, whose stack has 4-byte alignment.
#define ORMCAM_ENTRY extern "C" __declspec(dllexport) __attribute__((force_align_arg_pointer))

std::string ReadCameras() {
  char text[1024] = "";
  DWORD bytes = sizeof(text) - 1;
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kParameters, 0, KEY_READ, &key) == ERROR_SUCCESS) {
    RegQueryValueExA(key, "Cameras", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &bytes);
    RegCloseKey(key);
  }
  return text;
}

// The bus's own name for a camera.
void SimulatedPath(unsigned index, char (&path)[64]) {
  std::snprintf(path, sizeof path, "\\\\.\\ormidex-sim-%02u", index);
}

}  // namespace

ORMCAM_ENTRY unsigned CameraBackendStart() {
  std::string error;
  simulator = Simulator::Create(ReadCameras().c_str(), &error).release();
  return simulator == nullptr ? 0 : static_cast<unsigned>(simulator->CameraCount());
}

ORMCAM_ENTRY void CameraBackendStop() {
  for (int index = 0; simulator != nullptr && index < simulator->CameraCount(); ++index) {
    simulator->Camera(index).Unplug();
  }
}

ORMCAM_ENTRY void* CameraBackendOpen(unsigned index, int shared) {
  char path[64];
  SimulatedPath(index, path);
  return simulator->Open(path, shared ? DriverShare::kShared : DriverShare::kExclusive);
}

ORMCAM_ENTRY int CameraBackendControl(void* camera, unsigned long code, const void* in,
                                      unsigned long in_bytes, void* out, unsigned long out_bytes,
                                      unsigned long* returned) {
  const DriverRequest request = {static_cast<std::uint32_t>(code), in,
                                 static_cast<std::uint32_t>(in_bytes), out,
                                 static_cast<std::uint32_t>(out_bytes)};
  std::uint32_t bytes = 0;
  const bool done = simulator->Control(camera, request, &bytes);
  *returned = bytes;
  return done ? 1 : 0;
}

ORMCAM_ENTRY void CameraBackendClose(void* camera) { simulator->Close(camera); }
