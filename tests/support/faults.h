// A resource that the system refuses once, for the length of a scope.
#ifndef ORMIDEX_TESTS_SUPPORT_FAULTS_H_
#define ORMIDEX_TESTS_SUPPORT_FAULTS_H_

#include "platform/fault_points.h"

namespace ormidex::testing {

class Refusal {
 public:
  explicit Refusal(platform::FaultPoint point, int grants = 0) {
    platform::RefuseOnceAfter(point, grants);
  }
  ~Refusal() { platform::ClearFaults(); }
  Refusal(const Refusal&) = delete;
  Refusal& operator=(const Refusal&) = delete;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_FAULTS_H_
