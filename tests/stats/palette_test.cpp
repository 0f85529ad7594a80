// SPDX-License-Identifier: Apache-2.0
// LUTPalette and LUTPaletteSwap.
#include <deque>

#include "tests/support/faults.h"
#include "tests/support/image.h"

using namespace test;

namespace {

struct Form {
    const char* layout;
    int from, to, colours, place[4];
};
constexpr Form forms[] = {{"C1", 1, 1, 1, {0}},
                          {"C3", 3, 3, 3, {0, 1, 2}},
                          {"C4", 4, 4, 4, {0, 1, 2, 3}},
                          {"AC4", 4, 4, 3, {0, 1, 2}},
                          {"C3A0C4", 3, 4, 3, {1, 2, 3}}};
constexpr Form swapped = {"C3A0C4", 3, 4, 3, {2, 1, 3}};

// S to D through entries E: pixels of 24 bits are three samples D out of one entry.
template <class S, class D, class E = D> void check(const Form& form, const std::string& types, const char* family = "LUTPalette") {
    const std::string name = std::string("zeti") + family + "_" + types + "_" + form.layout + "R";
    constexpr int parts = std::is_same_v<D, Zet8u> && std::is_same_v<E, Zet32u> ? 3 : 1, most = 8 * sizeof(S);
    const S* from;
    D* to;
    int srcStep, dstStep, bits;
    ZetiSize roi;
    const E* tables[4];
    const auto run = [&] {
        if (form.from == 1) return call_member(name, from, srcStep, to, dstStep, roi, *tables, bits);
        const E* const* const all = tables;
        return call_member(name, from, srcStep, to, dstStep, roi, all, bits);
    };
    Random r(name);
    for (int width = 1; width <= 40; ++width) {
        bits = width <= most ? width : r.between(1, most), roi = {width, r.between(1, 4)};
        std::deque<Image<E>> entries; // one behind the last faults
        for (int c = 0; c < form.colours; ++c) {
            entries.emplace_back(1 << bits, 1, 1, 0).fill(r, Random::uniforms);
            tables[c] = entries[c].data();
        }
        Image<S> src(r, width, roi.height, form.from, {1, -1, 0});
        Image<D> dst(r, width, roi.height, form.to * parts, {1, -1});
        from = src.data(), srcStep = src.step, to = dst.data(), dstStep = dst.step;
        if (width == 40) {
            const auto list = [&](Faults& faults, const Arguments& call) {
                faults.null(call, false).size(call);
                for (int c = 0; form.from > 1 && c < form.colours; ++c) faults.null(argument(tables[c]));
                faults.add(zetStsOutOfRangeErr, call.back().as<int>(), {0, -1, most + 1, INT_MIN, INT_MAX});
            };
            check_order(run, list, [&] { return dst.intact(); });
        }
        for (int y = 0; y < roi.height; ++y)
            for (int i = 0; i < width * form.colours * parts; ++i) {
                const int x = i / (form.colours * parts), c = i / parts % form.colours, part = i % parts;
                const std::uint64_t entry = tables[c][src.at(y, x * form.from + c) % (1 << bits)];
                dst.expect(y, (x * form.to + form.place[c]) * parts + part, static_cast<D>(entry >> (8 * part)));
            }
        ASSERT_EQ(run(), zetStsNoErr);
        ASSERT_TRUE(dst.intact() && src.intact()) << name << ", " << bits << " bits" << dst.intact().message();
    }
}

TEST(Palette, EveryMemberAtEveryWidth) {
    for (const Form& f : forms) check<Zet8u, Zet8u>(f, "8u"), check<Zet16u, Zet16u>(f, "16u");
    check<Zet8u, Zet8u>(swapped, "8u", "LUTPaletteSwap"), check<Zet16u, Zet16u>(swapped, "16u", "LUTPaletteSwap");
    check<Zet8u, Zet8u, Zet32u>(forms[0], "8u24u"), check<Zet8u, Zet32u>(forms[0], "8u32u");
    check<Zet16u, Zet8u, Zet32u>(forms[0], "16u24u"), check<Zet16u, Zet32u>(forms[0], "16u32u"), check<Zet16u, Zet8u>(forms[0], "16u8u");
}

} // namespace
