// A camera session in the open state without the open sequence, for tests of single
// operations. The session's fields are set by the test.
#ifndef ORMIDEX_TESTS_SUPPORT_TEST_SESSION_H_
#define ORMIDEX_TESTS_SUPPORT_TEST_SESSION_H_

#include "device/session.h"

namespace ormidex::testing {

class TestSession {
 public:
  // A first-generation colour camera with firmware 3.1 at 640 x 480, 8 bits, video
  // mode 1, 16 MHz, stream stopped.
  explicit TestSession(device::DriverGateway& gateway) : session_(device::CameraSession::Create()) {
    session_->link.gateway = &gateway;
    session_->link.handle = &gateway;
    session_->link.bus_address = device::kFirstGenerationBusAddress;
    session_->identity.firmware_version = 0x03010000;
    session_->identity.serial_number = 0x12345;
    session_->identity.imager_type = device::kImagerColour;
    session_->geometry.factor = 1;
    session_->geometry.column = 0;
    session_->geometry.row = 0;
    session_->geometry.width = 640;
    session_->geometry.height = 480;
    session_->geometry.bytes_per_pixel = 1;
    session_->geometry.video_mode = 1;
    session_->RecomputeFrameSizes();
  }
  ~TestSession() { device::CameraSession::FreeStorage(session_); }
  TestSession(const TestSession&) = delete;
  TestSession& operator=(const TestSession&) = delete;

  void MakeSecondGeneration() {
    session_->identity.second_generation = 1;
    session_->link.bus_address = device::kSecondGenerationBusAddress;
  }

  device::CameraSession* operator->() { return session_; }
  device::CameraSession& operator*() { return *session_; }

 private:
  device::CameraSession* session_;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_TEST_SESSION_H_
