// What the session keeps of the live preview.
#ifndef ORMIDEX_PREVIEW_STATE_H_
#define ORMIDEX_PREVIEW_STATE_H_

#include <atomic>
#include <cstdint>

namespace ormidex::preview {

class PreviewWindow;

struct PreviewState {
  std::atomic<PreviewWindow*> window{nullptr};  // null: no preview
  std::atomic<std::uint32_t> suspended{0};
  std::atomic<std::uint32_t> conversion{1};  // demosaic code
  std::atomic<float> frame_rate{0.0f};       // displayed frames a second
  std::uint32_t started_x = 0;               // as the preview was last started
  std::uint32_t started_y = 0;
  std::uint32_t origin_x = 0;  // as last given to OrmidexSetPreviewWindow
  std::uint32_t origin_y = 0;
};

}  // namespace ormidex::preview

#endif  // ORMIDEX_PREVIEW_STATE_H_
