// SPDX-License-Identifier: Apache-2.0
// The core services that this library imports from libzetcore.
#pragma once

extern "C" {
void* zetMalloc(int bytes);
void zetFree(void* block);
int zetGetMaxCacheSizeB(int* pSizeByte);
int ownGetNumThreads(void);
}
