// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base.h"

namespace zeti {

const ZetLibraryVersion* library_version();

} // namespace zeti
