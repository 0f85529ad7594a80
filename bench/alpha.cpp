// SPDX-License-Identifier: Apache-2.0
// Composition under alpha. Where the benchmark is built with pixman, the rows "by pixman" are the same composition done by it.
#include "bench/rows.h"

#ifdef ZETI_BENCH_PIXMAN
#include <pixman.h>
#endif

namespace bench {
namespace {

// Premultiplied pixels whose alpha is anything, full, or that of a matte: full and empty in runs, anything between them.
enum class Alpha { mixed, opaque, matte };
constexpr const char* alpha_names[] = {"mixed", "opaque", "matte"};

struct Pixels {
    Alpha alpha;
    static int stored() { return 4; }
    static int touched() { return 4; }
    auto bind(Arena& arena) const {
        const auto [p, step] = destination<Zet8u>(4).bind(arena);
        unsigned random = 1;
        for (size_t i = 0; i < size_t(step) * arena.size.height; i += 4) {
            random = random * 1664525 + 1013904223;
            const size_t run = i / 4 % 96;
            const bool any = alpha == Alpha::mixed || (alpha == Alpha::matte && run % 48 >= 40);
            const unsigned a = any ? random >> 24 : alpha == Alpha::opaque || run < 40 ? 255 : 0;
            for (int c = 0; c < 4; ++c) p[i + c] = static_cast<Zet8u>(c == 3 ? a : (random >> 8 * c & 255) * a / 255);
        }
        return std::tuple<const Zet8u*, int>(p, step);
    }
};

// compose(source, step, destination, step, size), so many times.
template <class Compose> void onto(const std::string& name, Alpha alpha, Compose compose) {
    add({name + "/" + alpha_names[static_cast<int>(alpha)], 8, 12, [=](Arena& arena) -> std::function<void(int)> {
             const auto [a, aStep] = Pixels{alpha}.bind(arena);
             const auto [d, dStep] = destination<Zet8u>(4).bind(arena);
             return compose(a, aStep, d, dStep, arena.size);
         }});
}

const bool listed = [] {
    for (const Alpha alpha : {Alpha::mixed, Alpha::opaque, Alpha::matte}) {
        onto("AlphaComp_8u_AC4R/OverPremul/ours", alpha, [](const Zet8u* a, int aStep, Zet8u* d, int dStep, ZetiSize roi) {
            const auto f = reinterpret_cast<decltype(&zetiAlphaComp_8u_AC4R)>(member("zetiAlphaComp_8u_AC4R"));
            return [=](int calls) {
                while (calls-- > 0) f(a, aStep, d, dStep, d, dStep, roi, zetAlphaOverPremul);
            };
        });
        onto("AlphaPremul_8u_AC4R/ours", alpha, [](const Zet8u* a, int aStep, Zet8u* d, int dStep, ZetiSize roi) {
            const auto f = reinterpret_cast<decltype(&zetiAlphaPremul_8u_AC4R)>(member("zetiAlphaPremul_8u_AC4R"));
            return [=](int calls) {
                while (calls-- > 0) f(a, aStep, d, dStep, roi);
            };
        });
        onto("MulScale_8u_C4R/ours", alpha, [](const Zet8u* a, int aStep, Zet8u* d, int dStep, ZetiSize roi) {
            const auto f = reinterpret_cast<decltype(&zetiMulScale_8u_C4R)>(member("zetiMulScale_8u_C4R"));
            return [=](int calls) {
                while (calls-- > 0) f(a, aStep, a, aStep, d, dStep, roi);
            };
        });
#ifdef ZETI_BENCH_PIXMAN
        enum class By { nothing, alpha, component };
        const auto by_pixman = [&](const char* name, pixman_op_t op, pixman_format_code_t format, By masked) {
            onto(name, alpha, [=](const Zet8u* a, int aStep, Zet8u* d, int dStep, ZetiSize roi) {
                const auto image = [&](pixman_format_code_t f, const Zet8u* p, int step) {
                    auto* const bits = reinterpret_cast<uint32_t*>(const_cast<Zet8u*>(p));
                    return std::shared_ptr<pixman_image_t>(pixman_image_create_bits(f, roi.width, roi.height, bits, step),
                                                           pixman_image_unref);
                };
                const auto source = image(format, a, aStep), mask = image(PIXMAN_a8r8g8b8, a, aStep), to = image(PIXMAN_a8r8g8b8, d, dStep);
                pixman_image_set_component_alpha(mask.get(), masked == By::component);
                return [=](int calls) {
                    while (calls-- > 0)
                        pixman_image_composite32(op, source.get(), masked == By::nothing ? nullptr : mask.get(), to.get(), 0, 0, 0, 0, 0, 0,
                                                 roi.width, roi.height);
                };
            });
        };
        by_pixman("AlphaComp_8u_AC4R/OverPremul/by pixman", PIXMAN_OP_OVER, PIXMAN_a8r8g8b8, By::nothing);
        by_pixman("AlphaPremul_8u_AC4R/by pixman", PIXMAN_OP_SRC, PIXMAN_x8r8g8b8, By::alpha);
        by_pixman("MulScale_8u_C4R/by pixman", PIXMAN_OP_SRC, PIXMAN_a8r8g8b8, By::component);
#endif
    }
    const auto each_type = [](auto use) { use(Zet8u{}, std::string("8u")), use(Zet16u{}, std::string("16u")); };
    each_type([]<class T>(T, const std::string& type) {
        const T half = static_cast<T>(1u << (8 * sizeof(T) - 1));
        const struct {
            ZetAlphaType type;
            const char* name;
        } operators[] = {{zetAlphaOver, "Over"}, {zetAlphaIn, "In"}, {zetAlphaXor, "Xor"}, {zetAlphaPlusPremul, "PlusPremul"}};
        for (const auto& o : operators) {
            row("AlphaComp_" + type + "_AC4R", o.name, source<T>(4), source<T>(4), destination<T>(4), size, o.type);
            row("AlphaComp_" + type + "_AP4R", o.name, Planes<const T, 4>{}, Planes<const T, 4>{}, Planes<T, 4>{}, size, o.type);
            row("AlphaCompC_" + type + "_C3R", o.name, source<T>(3), half, source<T>(3), half, destination<T>(3), size, o.type);
        }
        row("AlphaPremul_" + type + "_AC4IR", "", both<T>(4), size);
        row("AlphaPremul_" + type + "_AP4R", "", Planes<const T, 4>{}, Planes<T, 4>{}, size);
        row("AlphaPremulC_" + type + "_C1R", "", source<T>(1), half, destination<T>(1), size);
        row("AlphaPremulC_" + type + "_AC4R", "", source<T>(4), half, destination<T>(4), size);
        row("CompColorKey_" + type + "_C1R", "", source<T>(1), source<T>(1), destination<T>(1), size, T{7});
        row("CompColorKey_" + type + "_C3R", "", source<T>(3), source<T>(3), destination<T>(3), size, Constants<T>{{7, 7, 7, 7}});
        row("CompColorKey_" + type + "_C4R", "", source<T>(4), source<T>(4), destination<T>(4), size, Constants<T>{{7, 7, 7, 7}});
    });
    row("AlphaComp_32f_AC4R", "Over", source<Zet32f>(4), source<Zet32f>(4), destination<Zet32f>(4), size, zetAlphaOver);
    row("AlphaCompColorKey_8u_AC4R", "Over", source<Zet8u>(4), source<Zet8u>(4), destination<Zet8u>(4), size,
        Constants<Zet8u>{{7, 7, 7, 7}}, zetAlphaOver);
    return true;
}();

} // namespace
} // namespace bench
