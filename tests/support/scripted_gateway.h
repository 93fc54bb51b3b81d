// A driver that expects a list of requests, byte for byte, and gives the answers
// that the test wrote down. Anything else fails the test.
#ifndef ORMIDEX_TESTS_SUPPORT_SCRIPTED_GATEWAY_H_
#define ORMIDEX_TESTS_SUPPORT_SCRIPTED_GATEWAY_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>

#include "device/driver_gateway.h"
#include "support/hex.h"

namespace ormidex::testing {

class ScriptedGateway : public device::DriverGateway {
 public:
  ~ScriptedGateway() override {
    for (const Step& step : steps_) {
      ADD_FAILURE() << "never came: " << Describe(step);
    }
  }

  // The request must carry exactly `in`; the answer is `out`, as many bytes as it
  // has (an answer in place may be shorter than the record: the rest stays).
  void Expect(std::uint32_t code, const std::string& in, const std::string& out = "") {
    steps_.push_back({code, FromHex(in), FromHex(out), true});
  }
  // The same for a record that comes back as it was sent.
  void ExpectEcho(std::uint32_t code, const std::string& record) { Expect(code, record, record); }
  // The driver fails the request.
  void ExpectFailure(std::uint32_t code, const std::string& in) {
    steps_.push_back({code, FromHex(in), {}, false});
  }
  // A record of so many bytes, whatever they are, that comes back as it was sent.
  void ExpectAnything(std::uint32_t code, std::size_t bytes) {
    steps_.push_back({code, Bytes(bytes), {}, true, {}, true});
  }
  // Something else that happens between the requests, as a window message; see Met.
  void ExpectEvent(const std::string& event) { steps_.push_back({0, {}, {}, true, event}); }
  bool Done() const { return steps_.empty(); }
  int opened() const { return opened_; }
  int closed() const { return closed_; }
  void set_close_result(bool result) { close_result_ = result; }

  device::DriverHandle Open(const char*, device::DriverShare) override {
    ++opened_;
    return this;
  }
  bool Close(device::DriverHandle) override {
    ++closed_;
    return close_result_;
  }
  device::EnumerationResult Enumerate(device::DeviceVisitor&) override {
    return device::EnumerationResult::kEmptyCategory;
  }

  bool Control(device::DriverHandle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    const auto* sent = static_cast<const std::uint8_t*>(request.in);
    const Bytes in(sent, sent + request.in_bytes);
    Step step;
    const bool any = !steps_.empty() && steps_.front().any_content;
    const Bytes shown = any ? Bytes(in.size()) : in;
    if (!Next(Describe(request.code, shown), &step) || !step.succeeds) return false;
    EXPECT_LE(step.out.size(), request.out_bytes) << Describe(request.code, in);
    const std::size_t bytes = std::min<std::size_t>(step.out.size(), request.out_bytes);
    if (bytes != 0) std::memcpy(request.out, step.out.data(), bytes);
    *returned = static_cast<std::uint32_t>(bytes);
    return true;
  }

  // Takes the event's place in the script.
  void Met(const std::string& event) {
    Step step;
    Next(event, &step);
  }

 private:
  struct Step {
    std::uint32_t code;
    Bytes in;
    Bytes out;
    bool succeeds;
    std::string event = {};  // empty: a request
    bool any_content = false;
  };

  bool Next(const std::string& met, Step* step) {
    if (steps_.empty()) {
      ADD_FAILURE() << "not expected: " << met;
      return false;
    }
    *step = steps_.front();
    steps_.pop_front();
    EXPECT_EQ(met, Describe(*step));
    return true;
  }

  static std::string Describe(const Step& step) {
    return step.event.empty() ? Describe(step.code, step.in) : step.event;
  }
  static std::string Describe(std::uint32_t code, const Bytes& in) {
    return Name(code) + " [" + std::to_string(in.size()) + "] " + ToHex(in.data(), in.size());
  }
  static std::string Name(std::uint32_t code) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%06X", code);
    return text;
  }

  std::deque<Step> steps_;
  int opened_ = 0;
  int closed_ = 0;
  bool close_result_ = true;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_SCRIPTED_GATEWAY_H_
