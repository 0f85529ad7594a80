// SPDX-License-Identifier: Apache-2.0
// LUTPalette and LUTPaletteSwap.
#include "tests/stats/tables.h"

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
template <class S, class D, class E = D> struct Palette {
    using Source = S;
    using Destination = D;
    using Entry = E;
    Form form;
    std::string name;
    const S* src = nullptr;
    D* dst = nullptr;
    int srcStep = 0, dstStep = 0, bits = 1;
    ZetiSize roi = {};
    const E* tables[4] = {};
    bool noTables = false;

    static constexpr int parts = std::is_same_v<D, Zet8u> && std::is_same_v<E, Zet32u> ? 3 : 1;

    ZetStatus run() const {
        if (form.from == 1)
            return member<ZetStatus(const S*, int, D*, int, ZetiSize, const E*, int)>(name)(src, srcStep, dst, dstStep, roi, *tables, bits);
        const E* const* const given = noTables ? nullptr : tables;
        return member<ZetStatus(const S*, int, D*, int, ZetiSize, const E* const*, int)>(name)(src, srcStep, dst, dstStep, roi, given,
                                                                                               bits);
    }
    Spoilers<Palette> errors() const {
        Spoilers<Palette> e = {{zetStsNullPtrErr, [](Palette& p) { p.src = nullptr; }},
                               {zetStsNullPtrErr, [](Palette& p) { p.dst = nullptr; }}};
        if (form.from == 1) e.push_back({zetStsNullPtrErr, [](Palette& p) { *p.tables = nullptr; }});
        else e.push_back({zetStsNullPtrErr, [](Palette& p) { p.noTables = true; }});
        for (const int bad : {0, -1, INT_MIN})
            e.push_back({zetStsSizeErr, [=](Palette& p) { p.roi.width = bad; }}),
                e.push_back({zetStsSizeErr, [=](Palette& p) { p.roi.height = bad; }});
        for (int c = 0; form.from > 1 && c < form.colours; ++c) e.push_back({zetStsNullPtrErr, [=](Palette& p) { p.tables[c] = nullptr; }});
        for (const int bad : {0, -1, 8 * static_cast<int>(sizeof(S)) + 1, INT_MIN, INT_MAX})
            e.push_back({zetStsOutOfRangeErr, [=](Palette& p) { p.bits = bad; }});
        return e;
    }
};

template <class Use> void each_member(Use use) {
    const auto same = [&]<class T>(T) {
        for (const Form& f : forms) use(Palette<T, T>{f, "zetiLUTPalette_" + token<T>() + "_" + f.layout + "R"});
        use(Palette<T, T>{swapped, "zetiLUTPaletteSwap_" + token<T>() + "_C3A0C4R"});
    };
    same(Zet8u{}), same(Zet16u{});
    use(Palette<Zet8u, Zet8u, Zet32u>{forms[0], "zetiLUTPalette_8u24u_C1R"}),
        use(Palette<Zet8u, Zet32u>{forms[0], "zetiLUTPalette_8u32u_C1R"});
    use(Palette<Zet16u, Zet8u, Zet32u>{forms[0], "zetiLUTPalette_16u24u_C1R"}),
        use(Palette<Zet16u, Zet32u>{forms[0], "zetiLUTPalette_16u32u_C1R"});
    use(Palette<Zet16u, Zet8u>{forms[0], "zetiLUTPalette_16u8u_C1R"});
}

TEST(Palette, EveryMemberAtEveryWidth) {
    each_member([](auto f) {
        using S = typename decltype(f)::Source;
        using D = typename decltype(f)::Destination;
        using E = typename decltype(f)::Entry;
        Random r(f.name);
        std::vector<std::unique_ptr<Image<E>>> tables; // an entry behind the last faults
        for (int width = 1; width <= 40; ++width) {
            f.bits = width <= 8 * static_cast<int>(sizeof(S)) ? width : r.between(1, 8 * sizeof(S));
            f.roi = {width, r.between(1, 4)};
            tables.clear();
            for (int c = 0; c < f.form.colours; ++c) {
                tables.push_back(std::make_unique<Image<E>>(1 << f.bits, 1, 1, 0));
                tables[c]->fill(r, Random::uniforms);
                f.tables[c] = tables[c]->data();
            }
            Image<S> src(r, width, f.roi.height, f.form.from, {1, -1, 0});
            Image<D> dst(r, width, f.roi.height, f.form.to * f.parts, {1, -1});
            f.src = src.data(), f.srcStep = src.step, f.dst = dst.data(), f.dstStep = dst.step;
            for (int y = 0; y < f.roi.height; ++y)
                for (int x = 0; x < width; ++x)
                    for (int c = 0; c < f.form.colours; ++c) {
                        const E entry = f.tables[c][src.at(y, x * f.form.from + c) % (1 << f.bits)];
                        for (int b = 0; b < f.parts; ++b)
                            dst.expect(y, (x * f.form.to + f.form.place[c]) * f.parts + b,
                                       static_cast<D>(static_cast<std::uint64_t>(entry) >> (8 * b)));
                    }
            ASSERT_EQ(f.run(), zetStsNoErr);
            ASSERT_TRUE(dst.intact()) << f.name << ", " << f.bits << " bits";
            ASSERT_TRUE(src.intact());
        }
        Image<D> dst(r, f.roi.width, f.roi.height, f.form.to * f.parts);
        f.dst = dst.data(), f.dstStep = dst.step, f.bits = 1;
        expect_sequence(f, f.errors(), [&] { return static_cast<bool>(dst.intact()); });
    });
}

} // namespace
