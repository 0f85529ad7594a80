/* SPDX-License-Identifier: Apache-2.0 */
/* The mean of two images: their sum at scale factor 1, which halves it, rounded to nearest with ties to even. */
#include <stdio.h>
#include <zeti/zeti.h>

int main(void) {
    ZetiSize size = {640, 480};
    int step1 = 0, step2 = 0;
    Zet8u *image1 = zetiMalloc_8u_C1(size.width, size.height, &step1);
    Zet8u *image2 = zetiMalloc_8u_C1(size.width, size.height, &step2);
    ZetStatus status = image1 && image2 ? zetiSet_8u_C1R(100, image1, step1, size) : zetStsMemAllocErr;

    if (status == zetStsNoErr) status = zetiSet_8u_C1R(201, image2, step2, size);
    if (status == zetStsNoErr) status = zetiAdd_8u_C1IRSfs(image1, step1, image2, step2, size, 1);
    if (status == zetStsNoErr) printf("(100 + 201) / 2 = %d\n", image2[0]);
    zetiFree(image2);
    zetiFree(image1);
    return status == zetStsNoErr ? 0 : 1;
}
