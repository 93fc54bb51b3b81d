// Order and ownership in the channel:
//
//  - A ticket is given under the command lock; only the worker whose ticket is being
//    served talks to the driver.
//  - The channel event is the mutex of the workers. Whatever looks at the cancel
//    event or at the number being served holds it.
//  - Whoever finds the cancel event set sets it again, so that it stays set.
//  - The worker of a waiting caller publishes the result as its last use of the job;
//    from then on the job is the caller's, who releases it.
//  - All waiting callers share one event, and signals of an event do not add up. So
//    a caller that is woken for somebody else's result passes the signal on, and so
//    does one that leaves while other results are still waiting to be taken.
#include "acquisition/command_channel.h"

#include <atomic>
#include <cstring>
#include <new>

#include "platform/event.h"
#include "platform/memory.h"
#include "platform/thread.h"
#include "platform/timer.h"

namespace ormidex::acquisition {

namespace {

using device::CameraSession;
using device::CommandRecord;

constexpr std::uint32_t kTransferMilliseconds = 1000;
constexpr std::uint32_t kTimerResolutionMilliseconds = 100;

struct TransferJob {
  CameraSession* session;
  TransferRequest request;
  std::uint32_t ticket;
  Status result;
  std::atomic<bool> finished;  // the worker will not touch the job again

  bool HasWaitingCaller() const { return request.callback == nullptr; }
};

bool IsCancelled(CommandState& command) {
  if (!command.cancel_event.Wait(0)) return false;
  command.cancel_event.Signal();
  return true;
}

// ---- The worker ----

// Returns with the channel held: true when it is the ticket's turn, false when the
// transfer was cancelled before that.
bool AwaitTurn(CommandState& command, std::uint32_t ticket) {
  command.channel_event.Wait(platform::kWaitForever);
  while (command.now_serving != ticket) {
    if (IsCancelled(command)) return false;
    command.channel_event.Signal();
    platform::SleepMilliseconds(0);
    command.channel_event.Wait(platform::kWaitForever);
  }
  return true;
}

// One transfer as it goes back and forth.
class Exchange {
 public:
  explicit Exchange(const TransferJob& job) : session_(*job.session), request_(job.request) {}

  Status Run();
  std::uint32_t transferred() const { return transferred_; }

 private:
  // The transfer is not complete yet; no status of the interface.
  static constexpr Status kGoOn = 0xFFFFFFFFu;

  Status Loop(platform::Event& expired);
  Status ReadPiece();
  Status OfferWrite();

  CameraSession& session_;
  const TransferRequest& request_;
  CommandRecord record_;
  std::uint32_t transferred_ = 0;
};

// Without its time limit a transfer could hold the channel for ever, so it does not
// begin.
Status Exchange::Run() {
  platform::Event expired;
  if (!expired.Create(false)) return kGeneralFailure;
  const bool armed = ArmOneShotTimer(expired, kTransferMilliseconds, kTimerResolutionMilliseconds);
  const Status result = armed ? Loop(expired) : kGeneralFailure;
  expired.Close();
  return result;
}

Status Exchange::Loop(platform::Event& expired) {
  for (;;) {
    if (IsCancelled(session_.command)) return kGeneralFailure;
    const bool reading = request_.code == device::CAM_IOCTL_READ_COMMAND;
    if (Status status = reading ? ReadPiece() : OfferWrite(); status != kGoOn) return status;
    if (expired.Wait(0)) return kCommandTimeout;
    platform::SleepMilliseconds(0);
  }
}

Status Exchange::ReadPiece() {
  const std::uint32_t remaining = request_.count - transferred_;
  record_.byte_count = static_cast<std::uint8_t>(remaining);
  if (!session_.Exchange(device::CAM_IOCTL_READ_COMMAND, record_)) return kRequestFailed;
  const std::uint32_t delivered = record_.byte_count;
  if (delivered > remaining) return kGeneralFailure;
  std::memcpy(static_cast<std::uint8_t*>(request_.buffer) + transferred_, record_.data, delivered);
  transferred_ += delivered;
  return delivered == remaining ? kOk : kGoOn;
}

// The controller takes all bytes at once or asks to be offered them again.
Status Exchange::OfferWrite() {
  std::memcpy(record_.data, request_.buffer, request_.count);
  record_.byte_count = static_cast<std::uint8_t>(request_.count);
  if (!session_.Exchange(device::CAM_IOCTL_WRITE_COMMAND, record_)) return kRequestFailed;
  if (record_.status != device::kDriverSuccess) return kGoOn;
  transferred_ = request_.count;
  return kOk;
}

// The result is counted before it is published, so that the count never runs behind.
void PublishResult(CommandState& command, TransferJob& job, Status result) {
  command.untaken_results.fetch_add(1);
  job.result = result;
  job.finished.store(true);
  command.done_event.Signal();
}

// A worker takes no lock of the session. Its part in the count of active workers
// was taken when it was queued, for a thread may be slow to start.
void RunWorker(void* argument) {
  TransferJob& job = *static_cast<TransferJob*>(argument);
  CameraSession& session = *job.session;
  CommandState& command = session.command;
  Status result = kGeneralFailure;
  const bool has_turn = AwaitTurn(command, job.ticket);
  Exchange exchange(job);
  if (has_turn) result = exchange.Run();
  ++command.now_serving;
  if (has_turn && !job.HasWaitingCaller()) {
    const TransferRequest& request = job.request;
    request.callback(&session, request.buffer, exchange.transferred(), result, request.context);
  }
  command.channel_event.Signal();
  if (job.HasWaitingCaller()) {
    PublishResult(command, job, result);
  } else {
    platform::Release(&job);
  }
  command.active_workers.fetch_sub(1);
}

// ---- The caller ----

TransferJob* NewJob(CameraSession& session, const TransferRequest& request) {
  void* memory = platform::Allocate(sizeof(TransferJob));
  return memory != nullptr ? new (memory) TransferJob{&session, request, 0, kOk, false} : nullptr;
}

// Takes the worker's part and the caller's in the count of active workers.
bool QueueJob(TransferJob& job) {
  CommandState& command = job.session->command;
  platform::ScopedLock lock(job.session->command_lock);
  job.ticket = command.next_ticket++;
  command.active_workers.fetch_add(2);
  if (platform::StartThread(RunWorker, &job)) return true;
  command.active_workers.fetch_sub(2);
  --command.next_ticket;
  return false;
}

// A short rest after passing a signal on leaves it to the others, whatever the
// threads' priorities are.
void PassSignalOn(CommandState& command) {
  command.done_event.Signal();
  platform::SleepMilliseconds(1);
}

Status AwaitResult(CommandState& command, TransferJob* job) {
  while (!job->finished.load()) {
    command.done_event.Wait(platform::kWaitForever);
    if (!job->finished.load() && command.untaken_results.load() != 0) PassSignalOn(command);
  }
  const Status result = job->result;
  platform::Release(job);
  if (command.untaken_results.fetch_sub(1) > 1) command.done_event.Signal();
  return result;
}

bool HasEvents(const CommandState& command) {
  return command.channel_event.Exists() && command.cancel_event.Exists() &&
         command.done_event.Exists();
}

}  // namespace

Status RunTransfer(CameraSession& session, const TransferRequest& request) {
  if (!session.HasCommandRegisterMap3()) return kNotSupported;
  if (!session.HasDevice()) return kNoCamera;
  if (request.count > device::kCommandDataBytes || request.count == 0) return kOutOfRange;
  if (request.buffer == nullptr) return kOutOfRange;
  // The system refused the events when the camera was opened.
  if (!HasEvents(session.command)) return kGeneralFailure;

  TransferJob* job = NewJob(session, request);
  if (job == nullptr) return kOutOfMemory;
  // With a callback the job is the worker's from here on.
  const bool waits = job->HasWaitingCaller();
  if (!QueueJob(*job)) {
    platform::Release(job);
    return kGeneralFailure;
  }
  const Status status = waits ? AwaitResult(session.command, job) : kOk;
  session.command.active_workers.fetch_sub(1);
  return status;
}

}  // namespace ormidex::acquisition

namespace ormidex::device {

Status CameraSession::ReadCommand(void* buffer, std::uint32_t count) {
  return acquisition::RunTransfer(*this, {CAM_IOCTL_READ_COMMAND, buffer, count, 0, nullptr});
}

Status CameraSession::WriteCommand(void* buffer, std::uint32_t count) {
  return acquisition::RunTransfer(*this, {CAM_IOCTL_WRITE_COMMAND, buffer, count, 0, nullptr});
}

}  // namespace ormidex::device
