// SPDX-License-Identifier: Apache-2.0
// The layouts and what goes with them, for tests that are no sweeps over element-wise members.
#pragma once

#include <xmmintrin.h>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/layouts.h"
#include "tests/support/order.h"
#include "tests/support/zetcore_standin.h"
