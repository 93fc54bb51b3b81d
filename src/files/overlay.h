// The application's drawing into images that are saved.
#ifndef ORMIDEX_FILES_OVERLAY_H_
#define ORMIDEX_FILES_OVERLAY_H_

#include <cstdint>

#include "device/session.h"

namespace ormidex::files {

enum class OverlayFormat : std::uint32_t { kGrey8 = 1, kGrey16 = 2, kRgb24 = 3, kRgb48 = 4 };

bool HasSavingOverlay(device::CameraSession& session);

// Calls the saving callback, if there is one, under the image lock.
void DrawSavingOverlay(device::CameraSession& session, void* image, OverlayFormat format);

}  // namespace ormidex::files

#endif  // ORMIDEX_FILES_OVERLAY_H_
