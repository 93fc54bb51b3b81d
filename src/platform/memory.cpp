#include "platform/memory.h"

#include <cstdint>
#include <cstdlib>

#include "platform/fault_points.h"

namespace ormidex::platform {
namespace {

// No object may be larger than the greatest pointer difference. Asking the C
// library anyway would also end a program that runs under a memory checker.
constexpr std::size_t kLargestObject = PTRDIFF_MAX;

bool Refused(std::size_t bytes) {
  return bytes > kLargestObject || FaultDue(FaultPoint::kAllocation);
}

// The C library may answer a request for nothing with null, which would read as
// a failure here.
std::size_t AtLeastOne(std::size_t bytes) { return bytes == 0 ? 1 : bytes; }

}  // namespace

void* Allocate(std::size_t bytes) noexcept {
  return Refused(bytes) ? nullptr : std::calloc(AtLeastOne(bytes), 1);
}

void* AllocateUncleared(std::size_t bytes) noexcept {
  return Refused(bytes) ? nullptr : std::malloc(AtLeastOne(bytes));
}

void Release(void* memory) noexcept { std::free(memory); }

}  // namespace ormidex::platform
