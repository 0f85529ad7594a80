// SPDX-License-Identifier: Apache-2.0
// Gallery entries of Convert and Scale.
#include <cmath>

#include "gallery.h"

namespace demo {

namespace {

void show_convert(Gallery &gallery, const Photos &photos) {
    gallery.family("Convert", "Changes the sample type and keeps the value.");
    const Grey &src = photos.grey(1);
    {
        const Image<Zet32f, 1> exact = drawn<Zet32f>(src.size, [](double x, double y) { return 4 + 3.4 * std::sin(5 * x + 2 * y); });
        const Grey cut(src.size), nearest(src.size);
        Shot shot = gallery.shot("Steps", "A wave between 0.6 and 7.4 as whole numbers: towards zero, and to the nearest. Shown times 32.",
                                 src.size);
        shot.run(CALL(zetiConvert_32f8u_C1R(exact.p, exact.step, cut.p, cut.step, exact.size, zetRndZero)));
        shot.run(CALL(zetiConvert_32f8u_C1R(exact.p, exact.step, nearest.p, nearest.step, exact.size, zetRndNear)));
        const auto shown = [](auto v) { return v * 32.0; };
        shot.show({{"exact", toned(exact, shown)}}, {{"cut", toned(cut, shown)}, {"nearest", toned(nearest, shown)}});
    }
    {
        const Image<Zet16s, 1> wide(src.size);
        const Grey dst(src.size);
        Shot shot =
            gallery.shot("Room to overflow",
                         "In 16 bits a gain of 3 loses nothing; what no longer fits the byte saturates only on the way back.", src.size);
        shot.run(CALL(zetiConvert_8u16s_C1R(src.p, src.step, wide.p, wide.step, src.size)));
        shot.run(CALL(zetiMulC_16s_C1IRSfs(3, wide.p, wide.step, wide.size, 0)));
        shot.run(CALL(zetiConvert_16s8u_C1R(wide.p, wide.step, dst.p, dst.step, wide.size)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
    {
        const ZetiSize size = {256, 256};
        std::vector<Zet8u> bits(32 * 256);
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x)
                if ((x & y) == 0) bits[std::size_t(y) * 32 + std::size_t(x) / 8] |= static_cast<Zet8u>(128 >> x % 8);
        const Grey dst(size);
        Shot shot = gallery.shot("One bit a pixel", "Where x and y have no bit in common: 32 bytes a row become 256.", size);
        shot.run(CALL(zetiConvert_1u8u_C1R(bits.data(), 32, 0, dst.p, dst.step, dst.size)));
        shot.show({}, {{"dst", picture(dst)}});
    }
}

void show_scale(Gallery &gallery, const Photos &photos) {
    gallery.family("Scale", "Maps the whole range of one sample type onto that of another.");
    {
        const Image<Zet32f, 1> heights = drawn<Zet32f>({512, 384}, [](double x, double y) {
            const double r = 14 * std::hypot(x, y);
            return 1500 * (r < 1e-6 ? 1 : std::sin(r) / r);
        });
        const Grey dst(heights.size);
        Shot shot = gallery.shot("Heights as grey", "From -330 black to 1500 white.", heights.size);
        shot.run(CALL(zetiScale_32f8u_C1R(heights.p, heights.step, dst.p, dst.step, heights.size, -330, 1500)));
        shot.show({}, {{"dst", picture(dst)}});
    }
    {
        const Grey &src = photos.grey(2);
        const Image<Zet32f, 1> linear(src.size);
        const Grey dst(src.size);
        Shot shot = gallery.shot("Through floats", "0 to 1 as floats, a square root in between, and back: darks open up.", src.size);
        shot.run(CALL(zetiScale_8u32f_C1R(src.p, src.step, linear.p, linear.step, src.size, 0, 1)));
        shot.run(CALL(zetiSqrt_32f_C1IR(linear.p, linear.step, linear.size)));
        shot.run(CALL(zetiScale_32f8u_C1R(linear.p, linear.step, dst.p, dst.step, dst.size, 0, 1)));
        shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
    }
}

} // namespace

void show_convert_and_scale(Gallery &gallery, const Photos &photos) {
    show_convert(gallery, photos);
    show_scale(gallery, photos);
}

} // namespace demo
