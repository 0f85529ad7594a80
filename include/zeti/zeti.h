/* SPDX-License-Identifier: Apache-2.0 */
/* zeti: image-processing primitives. Include this file; it brings in the rest. */
#ifndef ZETI_ZETI_H
#define ZETI_ZETI_H

#include "functions.h"
#include "status.h"
#include "types.h"

#endif
