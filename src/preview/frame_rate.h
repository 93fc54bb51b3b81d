// Arithmetic of the preview: frame rate and window placement.
#ifndef ORMIDEX_PREVIEW_FRAME_RATE_H_
#define ORMIDEX_PREVIEW_FRAME_RATE_H_

namespace ormidex::preview {

// Frames a second from the frames drawn in elapsed_ms milliseconds; 0 when no time
// has passed.
inline float FrameRate(float frames, double elapsed_ms) {
  return elapsed_ms > 0.0 ? static_cast<float>(static_cast<double>(frames) * 1000.0 / elapsed_ms)
                          : 0.0f;
}

}  // namespace ormidex::preview

#endif  // ORMIDEX_PREVIEW_FRAME_RATE_H_
