// SPDX-License-Identifier: Apache-2.0
#include "core/version.h"

namespace zeti {

// The build date is part of the record's contract: the same sources give the same bytes on every day.
static constexpr ZetLibraryVersion record = {7, 1, 1, 37466, {'w', '7', '\0', '\0'}, "zetIP SSE2 (w7)", "7.1.1 (r37466)", "Sep 24 2012"};

const ZetLibraryVersion* library_version() { return &record; }

} // namespace zeti
