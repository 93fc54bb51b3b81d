#include "platform/critical_section.h"

#include <pthread.h>

#include <new>

namespace ormidex::platform {
namespace {

pthread_mutex_t* Native(unsigned char* storage) {
  return std::launder(reinterpret_cast<pthread_mutex_t*>(storage));
}

}  // namespace

void CriticalSection::Initialise() noexcept {
  static_assert(sizeof(pthread_mutex_t) <= sizeof(storage_));
  auto* mutex = new (storage_) pthread_mutex_t;
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(mutex, &attributes);
  pthread_mutexattr_destroy(&attributes);
}

void CriticalSection::Delete() noexcept { pthread_mutex_destroy(Native(storage_)); }
void CriticalSection::Enter() noexcept { pthread_mutex_lock(Native(storage_)); }
void CriticalSection::Leave() noexcept { pthread_mutex_unlock(Native(storage_)); }

}  // namespace ormidex::platform
