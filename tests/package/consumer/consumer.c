/* SPDX-License-Identifier: Apache-2.0 */
#include <stdio.h>
#include <zeti/zeti.h>

int main(void) {
    const ZetLibraryVersion *version = zetiGetLibVersion();
    int step = 0;
    Zet8u *image = zetiMalloc_8u_C1(100, 3, &step);
    if (!image) return 1;
    image[2 * step + 99] = 255;
    zetiFree(image);
    printf("%s, step %d, %d bits\n", version->Version, step, (int)sizeof(void *) * 8);
    return 0;
}
