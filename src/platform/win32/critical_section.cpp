#include "platform/critical_section.h"

#include <windows.h>

#include <new>

namespace ormidex::platform {
namespace {

CRITICAL_SECTION* Native(unsigned char* storage) {
  return std::launder(reinterpret_cast<CRITICAL_SECTION*>(storage));
}

}  // namespace

void CriticalSection::Initialise() noexcept {
  static_assert(sizeof(CRITICAL_SECTION) <= sizeof(storage_));
  InitializeCriticalSection(new (storage_) CRITICAL_SECTION);
}

void CriticalSection::Delete() noexcept { DeleteCriticalSection(Native(storage_)); }
void CriticalSection::Enter() noexcept { EnterCriticalSection(Native(storage_)); }
void CriticalSection::Leave() noexcept { LeaveCriticalSection(Native(storage_)); }

}  // namespace ormidex::platform
