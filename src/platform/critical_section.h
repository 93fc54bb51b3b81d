// A lock that its holder may enter again.
//
// Initialise and Delete are explicit, because a camera session's locks are
// deleted in a fixed order, and on one path deliberately never.
#ifndef ORMIDEX_PLATFORM_CRITICAL_SECTION_H_
#define ORMIDEX_PLATFORM_CRITICAL_SECTION_H_

#include <cstddef>

namespace ormidex::platform {

class CriticalSection {
 public:
  CriticalSection() = default;
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  void Initialise() noexcept;
  void Delete() noexcept;
  void Enter() noexcept;
  void Leave() noexcept;

 private:
  // Room for the system's object: 24 bytes on 32-bit Windows, 40 on Linux.
  alignas(std::max_align_t) unsigned char storage_[64] = {};
};

// Holds a lock for a scope.
class ScopedLock {
 public:
  explicit ScopedLock(CriticalSection& section) noexcept : section_(section) { section_.Enter(); }
  ~ScopedLock() { section_.Leave(); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  CriticalSection& section_;
};

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_CRITICAL_SECTION_H_
