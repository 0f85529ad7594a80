// SPDX-License-Identifier: Apache-2.0
// Gallery entries of core/: image memory. (The version query gives the head of the page.)
#include "gallery.h"

namespace demo {

void show_core(Gallery &gallery, const Photos &photos) {
    const Colour &src = photos.colour(0);

    gallery.family("Malloc", "Malloc and Free: image memory whose rows start on 64-byte boundaries.");
    {
        const ZetiSize size = {src.size.width - 1, src.size.height};
        int step = 0;
        const Colour image(size);
        zetiCopy_8u_C3R(src.p, src.step, image.p, image.step, size);
        for (int y = 0; y < size.height; ++y) // stripes in what no pixel occupies
            for (int i = 3 * size.width; i < image.step; ++i) image.row(y)[i] = (i / 3 + y) % 8 < 4 ? 255 : 64;
        Shot shot =
            gallery.shot("Room at the end of each row",
                         "The memory of an image of " + std::to_string(size.width) +
                             " pixels a row, as wide as its step: " + std::to_string(3 * size.width) +
                             " bytes of pixels, then a striped rest up to the next multiple of 64, " + std::to_string(image.step) + ".",
                         size);
        shot.run(CALL(zetiFree(zetiMalloc_8u_C3(size.width, size.height, &step))));
        shot.show({}, {{"the memory behind the image", picture(image, {image.step / 3, size.height})}});
    }
}

} // namespace demo
