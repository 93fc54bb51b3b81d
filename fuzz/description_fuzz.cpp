// Descriptions of simulated cameras: they are understood, or refused with a sentence.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "simulator/description.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using ormidex::simulator::CameraDescription;
  const std::string text(data, data + size);
  std::vector<CameraDescription> cameras;
  std::string error;
  const bool understood = ormidex::simulator::ParseDescription(text.c_str(), &cameras, &error);
  if (understood != error.empty()) std::abort();
  if (cameras.size() > ormidex::simulator::kMaxCameras) std::abort();
  return 0;
}
