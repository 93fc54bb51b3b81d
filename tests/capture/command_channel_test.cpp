// One transfer at a time: checks, pieces, time limit, refusals, completion callback.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "acquisition/command_channel.h"
#include "capture/command_gateway.h"
#include "capture/command_session.h"
#include "capture/threads.h"
#include "platform/fault_points.h"
#include "support/hex.h"
#include "support/quickest.h"
#include "support/scripted_gateway.h"

namespace ormidex::testing {
namespace {

using namespace device;
using Bytes = std::vector<std::uint8_t>;

bool Accept(std::uint32_t, CommandRecord& record) {
  record.status = 0;
  return true;
}

bool NeverTake(std::uint32_t, CommandRecord& record) {
  record.status = 0x80000002;
  return true;
}

Bytes Counting(std::size_t count) {
  Bytes bytes(count);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
  return bytes;
}

class CommandChannelFaults : public ::testing::Test {
 protected:
  ~CommandChannelFaults() override { platform::ClearFaults(); }
};

TEST(CommandChannel, ARecordHasItsCountAt4AndItsDataFrom8) {
  ScriptedGateway driver;
  CommandSession session(driver);
  const std::string zeros(2 * 93, '0');
  driver.ExpectEcho(0x2220E8, "00000000 03000000 a1b2c3" + zeros);
  Bytes bytes = {0xA1, 0xB2, 0xC3};
  EXPECT_EQ(session->WriteCommand(bytes.data(), 3), kOk);
  driver.Expect(0x2220E4, "00000000 02000000" + std::string(2 * 96, '0'),
                "00000000 02000000 d4e5" + std::string(2 * 94, '0'));
  EXPECT_EQ(session->ReadCommand(bytes.data(), 2), kOk);
  EXPECT_EQ(bytes, (Bytes{0xD4, 0xE5, 0xC3}));
}

TEST(CommandChannel, FirmwareBefore3Is12EvenWithoutADevice) {
  CommandGateway driver(Accept);
  CommandSession session(driver);
  std::uint8_t byte = 0;
  session->identity.firmware_version = 0x02FFFFFF;
  EXPECT_EQ(session->ReadCommand(&byte, 1), kNotSupported);
  session->identity.firmware_version = 0x02020000;
  session->link.handle = nullptr;
  EXPECT_EQ(session->ReadCommand(&byte, 1), kNotSupported);
  EXPECT_EQ(session->WriteCommand(nullptr, 97), kNotSupported);
}

TEST(CommandChannel, NoDeviceIs1BeforeTheArgumentsAreLookedAt) {
  CommandGateway driver(Accept);
  CommandSession session(driver);
  session->link.handle = nullptr;
  EXPECT_EQ(session->ReadCommand(nullptr, 0), kNoCamera);
  EXPECT_EQ(session->WriteCommand(nullptr, 97), kNoCamera);
}

TEST(CommandChannel, BadCountsAndANullBufferAre7) {
  CommandGateway driver(Accept);
  CommandSession session(driver);
  Bytes bytes(97);
  for (const std::uint32_t count : {0u, 97u, 0x80000001u, 0xFFFFFFFFu}) {
    EXPECT_EQ(session->ReadCommand(bytes.data(), count), kOutOfRange) << count;
    EXPECT_EQ(session->WriteCommand(bytes.data(), count), kOutOfRange) << count;
  }
  EXPECT_EQ(session->ReadCommand(nullptr, 1), kOutOfRange);
  EXPECT_EQ(session->WriteCommand(nullptr, 1), kOutOfRange);
  EXPECT_EQ(driver.requests.load(), 0);
}

TEST(CommandChannel, NinetySixBytesAreAccepted) {
  Bytes got;
  CommandGateway driver([&got](std::uint32_t, CommandRecord& record) {
    got.assign(record.data, record.data + record.byte_count);
    return true;
  });
  CommandSession session(driver);
  Bytes bytes = Counting(96);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 96), kOk);
  EXPECT_EQ(got, Counting(96));
}

TEST(CommandChannel, AReadCollectsPiecesOf40And56) {
  std::vector<int> asked;
  std::uint8_t next = 1;
  CommandGateway driver([&](std::uint32_t, CommandRecord& record) {
    asked.push_back(record.byte_count);
    record.byte_count = asked.size() == 1 ? 40 : 56;
    for (int i = 0; i < record.byte_count; ++i) record.data[i] = next++;
    return true;
  });
  CommandSession session(driver);
  Bytes bytes(97, 0xEE);
  EXPECT_EQ(session->ReadCommand(bytes.data(), 96), kOk);
  EXPECT_EQ(asked, (std::vector<int>{96, 56}));
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 96), Counting(96));
  EXPECT_EQ(bytes[96], 0xEE);
}

TEST(CommandChannel, AReadGoesOnAfterEmptyReplies) {
  int empty_replies = 3;
  CommandGateway driver([&](std::uint32_t, CommandRecord& record) {
    if (empty_replies-- > 0) record.byte_count = 0;
    return true;
  });
  CommandSession session(driver);
  Bytes bytes(4);
  EXPECT_EQ(session->ReadCommand(bytes.data(), 4), kOk);
  EXPECT_EQ(driver.requests.load(), 4);
}

TEST(CommandChannel, MoreBytesThanAskedEndTheReadWith10AndAreNotCopied) {
  for (const int delivered : {5, 96, 97, 255}) {
    CommandGateway driver([&](std::uint32_t, CommandRecord& record) {
      record.byte_count = static_cast<std::uint8_t>(delivered);
      std::fill(std::begin(record.data), std::end(record.data), std::uint8_t{0x99});
      return true;
    });
    CommandSession session(driver);
    Bytes bytes(4, 0x11);
    EXPECT_EQ(session->ReadCommand(bytes.data(), 4), kGeneralFailure) << delivered;
    EXPECT_EQ(bytes, Bytes(4, 0x11));
    EXPECT_EQ(driver.requests.load(), 1);
  }
}

TEST(CommandChannel, TheStatusWordOfAReadIsNotLookedAt) {
  CommandGateway driver(NeverTake);
  CommandSession session(driver);
  Bytes bytes(4);
  EXPECT_EQ(session->ReadCommand(bytes.data(), 4), kOk);
}

TEST(CommandChannel, AWriteIsOfferedAgainUntilTheStatusWordIs0) {
  int refusals = 3;
  std::vector<Bytes> offered;
  CommandGateway driver([&](std::uint32_t, CommandRecord& record) {
    offered.emplace_back(record.data, record.data + record.byte_count);
    record.status = refusals-- > 0 ? 1 : 0;  // 1 is no success here
    record.byte_count = 0;
    std::fill(std::begin(record.data), std::end(record.data), std::uint8_t{0});
    return true;
  });
  CommandSession session(driver);
  Bytes bytes = Counting(5);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 5), kOk);
  EXPECT_EQ(offered, std::vector<Bytes>(4, Counting(5)));
}

TEST(CommandChannel, ARefusedRequestIs5) {
  CommandGateway driver([](std::uint32_t, CommandRecord&) { return false; });
  CommandSession session(driver);
  Bytes bytes(4);
  EXPECT_EQ(session->ReadCommand(bytes.data(), 4), kRequestFailed);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kRequestFailed);
  EXPECT_EQ(driver.requests.load(), 2);
}

TEST(CommandChannel, AWriteThatIsNeverTakenEndsWith17AfterAboutASecond) {
  CommandGateway driver(NeverTake);
  CommandSession session(driver);
  Bytes bytes(4);
  const std::uint64_t elapsed = QuickestMicroseconds(
      3'000'000, [] {},
      [&] { EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kCommandTimeout); });
  EXPECT_GE(elapsed, 890'000u);  // the timer's resolution is 100 ms
  EXPECT_LE(elapsed, 3'000'000u);
}

TEST(CommandChannel, AReadThatTimesOutKeepsWhatHasCome) {
  bool first = true;
  CommandGateway driver([&](std::uint32_t, CommandRecord& record) {
    record.byte_count = first ? 3 : 0;
    first = false;
    std::copy_n("abc", 3, record.data);
    return true;
  });
  CommandSession session(driver);
  Bytes bytes(10, '.');
  EXPECT_EQ(session->ReadCommand(bytes.data(), 10), kCommandTimeout);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "abc.......");
}

TEST(CommandChannel, ATransferAfterATimeOutIsServed) {
  bool take = false;
  CommandGateway driver([&](std::uint32_t, CommandRecord& record) {
    record.status = take ? 0 : 7;
    return true;
  });
  CommandSession session(driver);
  Bytes bytes(4);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kCommandTimeout);
  take = true;
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kOk);
}

TEST_F(CommandChannelFaults, WithoutMemoryForTheJobTheStatusIs9) {
  CommandGateway driver(Accept);
  CommandSession session(driver);
  Bytes bytes(4);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kOutOfMemory);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kOk);
}

TEST_F(CommandChannelFaults, WithoutAThreadTheStatusIs10AndTheTicketIsGivenAgain) {
  CommandGateway driver(Accept);
  CommandSession session(driver);
  Bytes bytes(4);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kOk);
  platform::RefuseOnceAfter(platform::FaultPoint::kThreadStart, 0);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kGeneralFailure);
  EXPECT_EQ(session->command.next_ticket, 1u);
  EXPECT_TRUE(WaitUntil([&] { return session->command.active_workers.load() == 0; }));
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kOk);
}

TEST_F(CommandChannelFaults, WithoutATimerNothingIsSentAndTheStatusIs10) {
  CommandGateway driver(Accept);
  CommandSession session(driver);
  Bytes bytes(4);
  platform::RefuseOnceAfter(platform::FaultPoint::kTimerStart, 0);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kGeneralFailure);
  platform::RefuseOnceAfter(platform::FaultPoint::kEventCreate, 0);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kGeneralFailure);
  EXPECT_EQ(driver.requests.load(), 0);
  EXPECT_EQ(session->WriteCommand(bytes.data(), 4), kOk);
}

TEST(CommandChannel, WithoutItsEventsTheChannelRefusesWith10) {
  CommandGateway driver(Accept);
  TestSession session(driver);
  std::uint8_t byte = 0;
  EXPECT_EQ(session->ReadCommand(&byte, 1), kGeneralFailure);
}

// ---- The internal form, which reports to a callback ----

struct Completion {
  std::atomic<int> calls{0};
  void* handle = nullptr;
  void* buffer = nullptr;
  std::uint32_t transferred = 0;
  Status status = kOk;
  std::uint32_t context = 0;
};
Completion completion;

void OnCompletion(void* handle, void* buffer, std::uint32_t transferred, Status status,
                  std::uint32_t context) {
  completion.handle = handle;
  completion.buffer = buffer;
  completion.transferred = transferred;
  completion.status = status;
  completion.context = context;
  completion.calls.fetch_add(1);
}

bool AllWorkersLeft(CommandSession& session) {
  return WaitUntil([&] { return session->command.active_workers.load() == 0; });
}

TEST(CommandCompletion, TellsHandleBufferBytesStatusAndContext) {
  completion.calls.store(0);
  CommandGateway driver(Accept);
  CommandSession session(driver);
  Bytes bytes(7);
  EXPECT_EQ(acquisition::RunTransfer(
                *session, {CAM_IOCTL_WRITE_COMMAND, bytes.data(), 7, 0xC0FFEE, OnCompletion}),
            kOk);
  ASSERT_TRUE(AllWorkersLeft(session));
  EXPECT_EQ(completion.calls.load(), 1);
  EXPECT_EQ(completion.handle, &*session);
  EXPECT_EQ(completion.buffer, bytes.data());
  EXPECT_EQ(completion.transferred, 7u);
  EXPECT_EQ(completion.status, kOk);
  EXPECT_EQ(completion.context, 0xC0FFEEu);
}

TEST(CommandCompletion, TellsHowManyBytesATimedOutReadHasGot) {
  completion.calls.store(0);
  bool first = true;
  CommandGateway driver([&](std::uint32_t, CommandRecord& record) {
    record.byte_count = first ? 3 : 0;
    first = false;
    return true;
  });
  CommandSession session(driver);
  Bytes bytes(7);
  EXPECT_EQ(acquisition::RunTransfer(*session,
                                     {CAM_IOCTL_READ_COMMAND, bytes.data(), 7, 1, OnCompletion}),
            kOk);
  ASSERT_TRUE(AllWorkersLeft(session));
  EXPECT_EQ(completion.transferred, 3u);
  EXPECT_EQ(completion.status, kCommandTimeout);
}

TEST(CommandCompletion, ATransferThatIsCancelledBeforeItsTurnIsNotReported) {
  completion.calls.store(0);
  CommandGateway driver(NeverTake);
  CommandSession session(driver);
  Bytes bytes(4);
  for (std::uint32_t i = 0; i < 5; ++i) {
    ASSERT_EQ(acquisition::RunTransfer(*session,
                                       {CAM_IOCTL_WRITE_COMMAND, bytes.data(), 4, i, OnCompletion}),
              kOk);
  }
  ASSERT_TRUE(WaitUntil([&] { return driver.requests.load() > 0; }));
  session->command.cancel_event.Signal();
  ASSERT_TRUE(AllWorkersLeft(session));
  // Whichever of the others finds its number served hears of it, too.
  EXPECT_GE(completion.calls.load(), 1);
  EXPECT_LE(completion.calls.load(), 5);
  EXPECT_EQ(completion.status, kGeneralFailure);
  EXPECT_EQ(session->command.now_serving, 5u);
}

}  // namespace
}  // namespace ormidex::testing
