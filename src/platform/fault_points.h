// Places where an operating system may refuse a resource, so that tests can make
// it refuse. In production every point answers "not due" after one relaxed load.
#ifndef ORMIDEX_PLATFORM_FAULT_POINTS_H_
#define ORMIDEX_PLATFORM_FAULT_POINTS_H_

namespace ormidex::platform {

enum class FaultPoint { kAllocation, kThreadStart, kEventCreate, kTimerStart, kCount };

// Called by the platform layer before it hands out a resource: true means refuse.
bool FaultDue(FaultPoint point) noexcept;

// Tests: the resource is granted `grants` more times, then refused once.
void RefuseOnceAfter(FaultPoint point, int grants) noexcept;
// Whether a planned refusal is still to come.
bool RefusalPending(FaultPoint point) noexcept;
void ClearFaults() noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_FAULT_POINTS_H_
