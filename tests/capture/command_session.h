// A session whose command channel is ready, as after opening.
#ifndef ORMIDEX_TESTS_CAPTURE_COMMAND_SESSION_H_
#define ORMIDEX_TESTS_CAPTURE_COMMAND_SESSION_H_

#include "platform/thread.h"
#include "support/test_session.h"

namespace ormidex::testing {

class CommandSession : public TestSession {
 public:
  explicit CommandSession(device::DriverGateway& gateway) : TestSession(gateway) {
    device::CameraSession& session = **this;
    session.command.channel_event.Create(true);
    session.command.cancel_event.Create(false);
    session.command.done_event.Create(false);
  }
  // As closing does: a worker's last step may come after its caller has returned.
  ~CommandSession() {
    device::CameraSession& session = **this;
    while (session.command.active_workers.load() != 0) platform::SleepMilliseconds(1);
    session.command.cancel_event.Close();
    session.command.channel_event.Close();
    session.command.done_event.Close();
  }
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_CAPTURE_COMMAND_SESSION_H_
