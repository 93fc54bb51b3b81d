// A lock that its holder may enter again.
//
// Initialise and Delete are explicit, because a camera session's locks are
// deleted in a fixed order, and on one path deliberately never.
#ifndef ORMIDEX_PLATFORM_CRITICAL_SECTION_H_
#define ORMIDEX_PLATFORM_CRITICAL_SECTION_H_

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
  // The alignment is a number, because on 32-bit Windows std::max_align_t is 8 or 16,
  // depending on which header defines it first: the layout would differ between
  // files. 8 suffices for both objects and needs no over-aligned allocation.
  alignas(8) unsigned char storage_[64] = {};
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
