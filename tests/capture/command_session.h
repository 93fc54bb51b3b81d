// A session whose command channel is ready, as after opening.
#ifndef ORMIDEX_TESTS_CAPTURE_COMMAND_SESSION_H_
#define ORMIDEX_TESTS_CAPTURE_COMMAND_SESSION_H_

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
  ~CommandSession() {
    device::CameraSession& session = **this;
    session.command.cancel_event.Close();
    session.command.channel_event.Close();
    session.command.done_event.Close();
  }
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_CAPTURE_COMMAND_SESSION_H_
