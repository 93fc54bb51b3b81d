// The exported functions as data.
#ifndef ORMIDEX_FRAME_EXPORT_TABLE_H_
#define ORMIDEX_FRAME_EXPORT_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "frame/api_lock.h"

namespace ormidex::frame {

struct ExportEntry {
  std::uint32_t ordinal;
  std::string_view name;
  std::uint32_t argument_bytes;  // on 32-bit Windows, 4 for each argument
  LockMode lock;
};

inline constexpr ExportEntry kExportTable[] = {
#define ORMIDEX_LOCK_MODE_shared LockMode::kShared
#define ORMIDEX_LOCK_MODE_exclusive LockMode::kExclusive
#define ORMIDEX_EXPORT(ordinal, name, argument_bytes, lock) \
  {ordinal, #name, argument_bytes, ORMIDEX_LOCK_MODE_##lock},
#include "frame/export_table.inc"
#undef ORMIDEX_EXPORT
#undef ORMIDEX_LOCK_MODE_exclusive
#undef ORMIDEX_LOCK_MODE_shared
};

inline constexpr std::size_t kExportCount = std::size(kExportTable);

// Ordinals count up from 1 in alphabetical order.
constexpr bool ExportTableIsInOrder() {
  for (std::size_t i = 0; i < kExportCount; ++i) {
    if (kExportTable[i].ordinal != i + 1) return false;
    if (i != 0 && kExportTable[i - 1].name >= kExportTable[i].name) return false;
  }
  return true;
}
static_assert(kExportCount == 97 && ExportTableIsInOrder());

}  // namespace ormidex::frame

#endif  // ORMIDEX_FRAME_EXPORT_TABLE_H_
