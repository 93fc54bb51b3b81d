// Many threads on one command channel.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <vector>

#include "acquisition/command_channel.h"
#include "capture/command_gateway.h"
#include "capture/command_session.h"
#include "capture/threads.h"
#include "ormidex.h"
#include "platform/fault_points.h"

namespace ormidex::testing {
namespace {

using namespace device;

constexpr int kThreads = 32;

// What a caller asks for tells the controller what to answer, so each caller knows
// the one result that can be its own.
enum Kind : std::uint32_t { kWhole, kPieces, kTooMuch, kRefused, kWritten, kRepeated, kKinds };

struct Expectation {
  Status status;
  bool reads;
};
constexpr Expectation kExpected[kKinds] = {
    {kOk, true},  {kOk, true}, {kGeneralFailure, true}, {kRequestFailed, true},
    {kOk, false}, {kOk, false}};

// Reads: the kind is count % 6. Writes: the kind is the first byte.
class MixedController {
 public:
  bool operator()(std::uint32_t code, CommandRecord& record) {
    return code == CAM_IOCTL_READ_COMMAND ? Read(record) : Write(record);
  }

 private:
  bool Read(CommandRecord& record) {
    if (remaining_ == 0) {
      kind_ = record.byte_count % kKinds;
      pattern_ = record.byte_count;
      remaining_ = record.byte_count;
    }
    if (kind_ == kRefused) return Finish(false);
    if (kind_ == kTooMuch) {
      record.byte_count = 200;
      return Finish(true);
    }
    const std::uint32_t piece = kind_ == kPieces && remaining_ > 5 ? 5 : remaining_;
    std::memset(record.data, static_cast<int>(pattern_), piece);
    record.byte_count = static_cast<std::uint8_t>(piece);
    remaining_ -= piece;
    return true;
  }
  bool Write(CommandRecord& record) {
    if (record.data[0] != kRepeated) {
      record.status = 0;
    } else {
      offers_ = (offers_ + 1) % 3;
      record.status = offers_ == 0 ? 0 : 0x80000010;
    }
    return true;
  }
  bool Finish(bool answered) {
    remaining_ = 0;
    return answered;
  }

  std::uint32_t kind_ = 0;
  std::uint32_t pattern_ = 0;
  std::uint32_t remaining_ = 0;
  int offers_ = 0;
};

bool RunOne(CameraSession& session, std::uint32_t number) {
  const std::uint32_t kind = number % kKinds;
  const Expectation& expected = kExpected[kind];
  std::uint8_t bytes[96] = {};
  if (!expected.reads) {
    bytes[0] = static_cast<std::uint8_t>(kind);
    return session.WriteCommand(bytes, 1 + number % 96) == expected.status;
  }
  const std::uint32_t count = kind + kKinds * (1 + number % 15);  // 6 to 95
  if (session.ReadCommand(bytes, count) != expected.status) return false;
  if (expected.status != kOk) return true;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (bytes[i] != count) return false;
  }
  return true;
}

TEST(CommandThreads, TenThousandMixedTransfersOf32ThreadsEachGetTheirOwnResult) {
  constexpr int kEach = 10'000 / kThreads + 1;
  MixedController controller;
  std::uint32_t last_served = 0;
  std::atomic<int> out_of_order{0};
  TestSession* session_in_test = nullptr;
  CommandGateway driver([&](std::uint32_t code, CommandRecord& record) {
    // The number served only ever moves on by one.
    const std::uint32_t served = (*session_in_test)->command.now_serving;
    if (served != last_served && served != last_served + 1) out_of_order.fetch_add(1);
    last_served = served;
    return controller(code, record);
  });
  CommandSession session(driver);
  session_in_test = &session;
  std::atomic<int> wrong{0};
  std::atomic<int> finished{0};
  Threads threads;
  for (std::uint32_t t = 0; t < kThreads; ++t) {
    threads.Start([&, t] {
      for (std::uint32_t i = 0; i < kEach; ++i) {
        if (!RunOne(*session, t * 7 + i)) wrong.fetch_add(1);
        finished.fetch_add(1);
      }
    });
  }
  ASSERT_TRUE(threads.Join(200'000)) << finished.load() << " transfers ended";
  EXPECT_EQ(finished.load(), kThreads * kEach);
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_EQ(driver.overlaps.load(), 0);
  EXPECT_EQ(driver.malformed.load(), 0);
  EXPECT_EQ(out_of_order.load(), 0);
  EXPECT_EQ(session->command.next_ticket, static_cast<std::uint32_t>(kThreads * kEach));
  EXPECT_EQ(session->command.now_serving, static_cast<std::uint32_t>(kThreads * kEach));
  EXPECT_TRUE(WaitUntil([&] { return session->command.active_workers.load() == 0; }));
  EXPECT_EQ(session->command.untaken_results.load(), 0u);
}

void IgnoreCompletion(void*, void*, std::uint32_t, Status, std::uint32_t) {}

TEST(CommandThreads, RequestsGoOutInTheOrderOfTheirTickets) {
  constexpr std::uint32_t kTransfers = 200;
  std::vector<int> order;
  std::atomic<bool> hold{true};
  CommandGateway driver([&](std::uint32_t, CommandRecord& record) {
    while (hold.load()) platform::SleepMilliseconds(1);
    order.push_back(record.data[0]);
    record.status = 0;
    return true;
  });
  CommandSession session(driver);
  std::uint8_t bytes[kTransfers];
  for (std::uint32_t i = 0; i < kTransfers; ++i) {
    bytes[i] = static_cast<std::uint8_t>(i);
    ASSERT_EQ(acquisition::RunTransfer(
                  *session, {CAM_IOCTL_WRITE_COMMAND, &bytes[i], 1, i, IgnoreCompletion}),
              kOk);
  }
  hold.store(false);
  ASSERT_TRUE(WaitUntil([&] { return session->command.active_workers.load() == 0; }));
  ASSERT_EQ(order.size(), kTransfers);
  for (std::uint32_t i = 0; i < kTransfers; ++i) EXPECT_EQ(order[i], static_cast<int>(i));
}

TEST(CommandThreads, TicketsGoOnPast32Bits) {
  CommandGateway driver([](std::uint32_t, CommandRecord& record) {
    record.status = 0;
    return true;
  });
  CommandSession session(driver);
  session->command.next_ticket = session->command.now_serving = 0xFFFFFFF8u;
  std::atomic<int> failed{0};
  Threads threads;
  for (int t = 0; t < 8; ++t) {
    threads.Start([&] {
      std::uint8_t byte = 0;
      for (int i = 0; i < 4; ++i) {
        if (session->WriteCommand(&byte, 1) != kOk) failed.fetch_add(1);
      }
    });
  }
  ASSERT_TRUE(threads.Join());
  EXPECT_EQ(failed.load(), 0);
  EXPECT_EQ(session->command.now_serving, 24u);
}

class Closing : public ::testing::Test {
 protected:
  Closing()
      : driver([](std::uint32_t, CommandRecord& record) {
          record.status = 1;
          return true;
        }),
        session(driver) {}

  // Each of n callers waits for one transfer that never completes.
  void StartCallers(int n) {
    for (int i = 0; i < n; ++i) {
      threads.Start([this] {
        std::uint8_t byte = 0;
        if (session->WriteCommand(&byte, 1) == kGeneralFailure) cancelled.fetch_add(1);
      });
    }
    // Two for each: its worker and itself.
    ASSERT_TRUE(WaitUntil([this, n] {
      return session->command.active_workers.load() == 2u * static_cast<std::uint32_t>(n);
    }));
  }

  CommandGateway driver;
  CommandSession session;
  std::atomic<int> cancelled{0};
  Threads threads;
};

TEST_F(Closing, EveryWaitingCallerEndsWith10) {
  StartCallers(kThreads);
  EXPECT_EQ(session->Teardown(), kOk);
  EXPECT_EQ(session->command.active_workers.load(), 0u);
  ASSERT_TRUE(threads.Join());
  EXPECT_EQ(cancelled.load(), kThreads);
  EXPECT_EQ(driver.closed.load(), 1);
}

TEST_F(Closing, WithoutTransfersIsImmediate) { EXPECT_EQ(session->Teardown(), kOk); }

TEST_F(Closing, ACancelledChannelStaysCancelled) {
  session->command.cancel_event.Signal();
  std::uint8_t byte = 0;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(session->WriteCommand(&byte, 1), kGeneralFailure);
  EXPECT_EQ(driver.requests.load(), 0);
}

TEST(ClosingOften, NoCallerIsLostWhateverTheMoment) {
  for (int round = 0; round < 100; ++round) {
    CommandGateway driver([](std::uint32_t, CommandRecord& record) {
      record.status = record.data[0] % 3 == 0 ? 0 : 1;
      return true;
    });
    CommandSession session(driver);
    std::atomic<int> queued{0};
    std::atomic<int> unexpected{0};
    Threads threads;
    for (std::uint8_t t = 0; t < 8; ++t) {
      threads.Start([&, t] {
        std::uint8_t byte = t;
        queued.fetch_add(1);
        const Status status = session->WriteCommand(&byte, 1);
        if (status != kGeneralFailure && (status != kOk || t % 3 != 0)) unexpected.fetch_add(1);
      });
    }
    // Tickets say that all of them have come past the checks.
    ASSERT_TRUE(WaitUntil([&] {
      platform::ScopedLock lock(session->command_lock);
      return session->command.next_ticket == 8;
    }));
    if (round % 2 == 1) platform::SleepMilliseconds(static_cast<std::uint32_t>(round % 5));
    ASSERT_EQ(session->Teardown(), kOk);
    ASSERT_TRUE(threads.Join());
    EXPECT_EQ(unexpected.load(), 0);
  }
}

// The exports hold the API lock while they wait, so closing comes after them.
TEST(ClosingThroughTheExports, WaitsForTheTransfersUnderWayAndFreesNothingTooEarly) {
  std::atomic<bool> take{false};
  CommandGateway driver([&](std::uint32_t, CommandRecord& record) {
    record.status = take.load() ? 0 : 1;
    return true;
  });
  CameraSession* session = CameraSession::Create();
  ASSERT_NE(session, nullptr);
  session->link.gateway = &driver;
  session->link.handle = &driver;
  session->identity.firmware_version = 0x03000000;
  session->command.channel_event.Create(true);
  session->command.cancel_event.Create(false);
  session->command.done_event.Create(false);
  std::atomic<int> written{0};
  Threads callers;
  for (int i = 0; i < 4; ++i) {
    callers.Start([&] {
      const OrmidexUInt8 byte = 1;
      if (OrmidexWriteCommand(session, &byte, 1) == ORMIDEX_OK) written.fetch_add(1);
    });
  }
  ASSERT_TRUE(WaitUntil([&] { return session->command.active_workers.load() == 8; }));
  Threads closer;
  std::atomic<OrmidexStatus> closed{ORMIDEX_GENERAL_FAILURE};
  closer.Start([&] {
    OrmidexHandle handle = session;
    closed.store(OrmidexUninitialize(&handle));
  });
  platform::SleepMilliseconds(100);
  EXPECT_EQ(driver.closed.load(), 0);
  take.store(true);
  ASSERT_TRUE(callers.Join());
  ASSERT_TRUE(closer.Join());
  EXPECT_EQ(written.load(), 4);
  EXPECT_EQ(closed.load(), static_cast<OrmidexStatus>(ORMIDEX_OK));
  EXPECT_EQ(driver.closed.load(), 1);
}

}  // namespace
}  // namespace ormidex::testing
