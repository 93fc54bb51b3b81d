// Every preview operation in every state of preview, stream and trigger.
#include "ormidex.h"
#include "preview/preview_test.h"

namespace ormidex::testing {
namespace {

enum PreviewIs { kNone, kRunning, kSuspended };

struct Operation {
  const char* name;
  Status (*call)(device::CameraSession& session);
};

constexpr Operation kOperations[] = {
    {"start",
     [](device::CameraSession& s) { return s.StartPreview("", 0, 0, 0, 64, 48, nullptr, 0); }},
    {"stop", [](device::CameraSession& s) { return s.StopPreview(); }},
    {"suspend", [](device::CameraSession& s) { return s.PausePreview(1); }},
    {"resume", [](device::CameraSession& s) { return s.PausePreview(0); }},
    {"conversion", [](device::CameraSession& s) { return s.SetPreviewColorConversion(2); }},
    {"position",
     [](device::CameraSession& s) {
       std::uint32_t x = 0, y = 0;
       return s.GetPreviewWindowPos(&x, &y);
     }},
    {"size",
     [](device::CameraSession& s) {
       std::uint32_t x = 0, y = 0;
       return s.GetPreviewWindowSize(&x, &y);
     }},
    {"place",
     [](device::CameraSession& s) {
       const OrmidexRect rectangle = {1, 2, 33, 44};
       return s.SetPreviewWindow(&rectangle);
     }},
    {"reset", [](device::CameraSession& s) { return s.ResetPreviewWindow(); }},
};

struct Row {
  PreviewIs preview;
  bool armed;
  // In the order of kOperations. The stream, running or not, changes none of them.
  Status expected[9];
};

constexpr Row kRows[] = {
    {kNone, false, {0, 11, 11, 11, 0, 11, 11, 11, 11}},
    {kRunning, false, {0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {kSuspended, false, {0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {kNone, true, {13, 11, 11, 11, 0, 11, 11, 11, 11}},
    {kRunning, true, {13, 0, 0, 13, 0, 0, 0, 0, 0}},
    {kSuspended, true, {13, 0, 0, 13, 0, 0, 0, 0, 0}},
};

// The preview's state after start, stop, suspend and resume; nothing else changes it.
PreviewIs Afterwards(std::size_t operation, PreviewIs before, bool armed) {
  switch (operation) {
    case 0:
      return armed ? before : kRunning;
    case 1:
      return kNone;
    case 2:
      return before == kNone ? kNone : kSuspended;
    case 3:
      return before == kNone || armed ? before : kRunning;
    default:
      return before;
  }
}

class StateTable : public PreviewTest {
 protected:
  void Bring(PreviewIs preview, bool streaming, bool armed) {
    session->trigger.active.store(0);
    session->StopPreview();
    if (preview != kNone) {
      ASSERT_EQ(Start(), kOk);
    }
    if (preview == kSuspended) {
      ASSERT_EQ(session->PausePreview(1), kOk);
    }
    session->stream.running.store(streaming ? 1 : 0);
    session->trigger.active.store(armed ? 1 : 0);
  }
  PreviewIs State() {
    if (session->preview.window.load() == nullptr) return kNone;
    return session->preview.suspended.load() != 0 ? kSuspended : kRunning;
  }
};

TEST_F(StateTable, EveryOperationAnswersAndMovesAsDocumented) {
  for (const Row& row : kRows) {
    for (const bool streaming : {false, true}) {
      for (std::size_t i = 0; i < std::size(kOperations); ++i) {
        Bring(row.preview, streaming, row.armed);
        const int starts = camera.starts.load();
        EXPECT_EQ(kOperations[i].call(*session), row.expected[i])
            << kOperations[i].name << ", preview " << row.preview << ", streaming " << streaming
            << ", armed " << row.armed;
        EXPECT_EQ(State(), Afterwards(i, row.preview, row.armed)) << kOperations[i].name;
        const bool starts_stream = i == 0 && !row.armed && !streaming;
        EXPECT_EQ(camera.starts.load() - starts, starts_stream ? 1 : 0) << kOperations[i].name;
        EXPECT_EQ(camera.stops.load(), 0) << kOperations[i].name;
      }
    }
  }
}

}  // namespace
}  // namespace ormidex::testing
