// SPDX-License-Identifier: Apache-2.0
// CopyConstBorder, CopyReplicateBorder, CopyWrapBorder: every member against the rule for one pixel, the checks.
#include <climits>

#include "tests/support/checksum.h"
#include "tests/support/image.h"
#include "tests/support/order.h"

using namespace test;

namespace {

template <class T> using Bits = std::conditional_t<is_float<T>, Zet32s, T>;

enum Border { constant, replicated, wrapped };
const char* const families[] = {"CopyConstBorder", "CopyReplicateBorder", "CopyWrapBorder"};

int wrap(int i, int n) { return ((i % n) + n) % n; }

struct Case {
    ZetiSize src, dst;
    int top, left;
};

// One call on random images. The source may lie outside the destination or at its place in it.
template <class T> void check(Border border, const std::string& layout, bool inPlace, Random& r, const Case& k, Checksum& sum) {
    using U = Bits<T>;
    const int c = layout.back() - '0', colours = layout == "AC4" ? 3 : c;
    const std::string name = std::string("zeti") + families[border] + "_" + token<T>() + "_" + layout + (inPlace ? "IR" : "R");
    Image<U> src(r, k.src.width, k.src.height, c), dst(r, k.dst.width, k.dst.height, c);
    const bool inside = inPlace || r.chance(5);
    U value[4] = {};
    for (U& v : value) v = static_cast<U>(r.uniform<U>() & U(is_float<T> ? 0xBFFFFFFF : ~0u));
    if (inside)
        for (int y = 0; y < k.src.height; ++y)
            for (int i = 0; i < k.src.width * c; ++i) dst.set(k.top + y, k.left * c + i, src.at(y, i));
    for (int y = 0; y < k.dst.height; ++y)
        for (int x = 0; x < k.dst.width; ++x)
            for (int s = 0; s < colours; ++s) {
                const int sx = x - k.left, sy = y - k.top;
                const bool out = sx < 0 || sy < 0 || sx >= k.src.width || sy >= k.src.height;
                const int fx = border == wrapped ? wrap(sx, k.src.width) : std::clamp(sx, 0, k.src.width - 1);
                const int fy = border == wrapped ? wrap(sy, k.src.height) : std::clamp(sy, 0, k.src.height - 1);
                dst.expect(y, x * c + s, out && border == constant ? value[s] : src.at(fy, fx * c + s));
            }
    T* const to = reinterpret_cast<T*>(dst.data());
    T* const corner = reinterpret_cast<T*>(reinterpret_cast<char*>(to) + long{k.top} * dst.step) + k.left * c;
    const T* const from = inside ? corner : reinterpret_cast<T*>(src.data());
    const T* const values = reinterpret_cast<T*>(value);
    const int step = inside ? dst.step : src.step;
    ZetStatus status;
    if (inPlace) status = member<ZetStatus(T*, int, ZetiSize, ZetiSize, int, int)>(name)(corner, step, k.src, k.dst, k.top, k.left);
    else if (border != constant)
        status = member<ZetStatus(const T*, int, ZetiSize, T*, int, ZetiSize, int, int)>(name)(from, step, k.src, to, dst.step, k.dst,
                                                                                               k.top, k.left);
    else if (c > 1)
        status = member<ZetStatus(const T*, int, ZetiSize, T*, int, ZetiSize, int, int, const T*)>(name)(from, step, k.src, to, dst.step,
                                                                                                         k.dst, k.top, k.left, values);
    else
        status = member<ZetStatus(const T*, int, ZetiSize, T*, int, ZetiSize, int, int, T)>(name)(from, step, k.src, to, dst.step, k.dst,
                                                                                                  k.top, k.left, *values);
    EXPECT_EQ(status, zetStsNoErr) << name;
    EXPECT_TRUE(src.intact() && dst.intact()) << name << ": " << dst.intact().message() << ", source " << k.src.width << " x "
                                              << k.src.height << " at " << k.left << ", " << k.top;
    sum.add(dst);
}

Case any_case(Random& r, int i) {
    const auto extent = [&](int n) { return r.pick({0, 1, r.between(0, n), r.between(0, 3)}); };
    const ZetiSize src = i < 40 ? ZetiSize{i + 1, r.between(1, 4)} : ZetiSize{r.between(1, 9), r.between(1, 9)};
    const int left = extent(60), top = extent(12), right = extent(100), bottom = extent(12);
    return {src, {src.width + left + right, src.height + top + bottom}, top, left};
}

TEST(Border, EveryMember) {
    for (const Border border : {constant, replicated, wrapped}) {
        Checksum sum;
        const auto of_type = [&](auto t) {
            using T = decltype(t);
            for (const char* layout : {"C1", "C3", "C4", "AC4"})
                for (const bool inPlace : {false, true}) {
                    if (border == constant ? inPlace : border == wrapped && (layout != std::string("C1") || sizeof(T) < 4)) continue;
                    Random r(std::string(families[border]) + layout + token<T>());
                    for (int i = 0; i < 100 && !testing::Test::HasFailure(); ++i) check<T>(border, layout, inPlace, r, any_case(r, i), sum);
                    if (sizeof(T) < 4 || border == wrapped)
                        check<T>(border, layout, inPlace, r, {{500, 300}, {1100, 700}, 333, 17}, sum); // past the cache
                }
        };
        of_type(Zet8u{}), of_type(Zet16u{}), of_type(Zet16s{}), of_type(Zet32s{}), of_type(Zet32f{});
        EXPECT_TRUE(sum.is_known(families[border]));
    }
}

TEST(Border, ChecksInTheirOrder) {
    Zet32s src[64] = {}, dst[64] = {};
    const auto intact = [&] { return std::count(src, src + 64, 0) == 64 && std::count(dst, dst + 64, 0) == 64; };
    const Zet32s* const from = src;
    const ZetiSize inner = {2, 3}, outer = {5, 6};
    const auto check = [&](const std::string& name, const auto& arguments, auto srcSize, auto dstSize, auto top, auto left) {
        auto errors = common_errors(arguments);
        for (const int bad : {-1, INT_MIN, 4, INT_MAX}) {
            errors.push_back({zetStsSizeErr, [=](auto& a) { std::get<decltype(top)::value>(a) = bad; }});
            errors.push_back({zetStsSizeErr, [=](auto& a) { std::get<decltype(left)::value>(a) = bad; }});
        }
        for (const int bad : {5, INT_MAX}) { // at column 1 and row 1: one too many
            errors.push_back({zetStsSizeErr, [=](auto& a) { std::get<decltype(srcSize)::value>(a).width = bad; }});
            errors.push_back({zetStsSizeErr, [=](auto& a) { std::get<decltype(srcSize)::value>(a).height = bad + (bad == 5); }});
        }
        errors.push_back({zetStsSizeErr, [=](auto& a) { std::get<decltype(dstSize)::value>(a).width = 2; }});
        errors.push_back({zetStsSizeErr, [=](auto& a) { std::get<decltype(dstSize)::value>(a).height = 3; }});
        expect_order(name, arguments, {zetStsNullPtrErr, zetStsStepErr, zetStsSizeErr}, errors, intact);
    };
    const std::integral_constant<int, 2> i2;
    const std::integral_constant<int, 3> i3;
    const std::integral_constant<int, 4> i4;
    const std::integral_constant<int, 5> i5;
    const std::integral_constant<int, 6> i6;
    const std::integral_constant<int, 7> i7;
    check("zetiCopyConstBorder_32s_C1R", std::tuple(from, 8, inner, +dst, 20, outer, 1, 1, 9), i2, i5, i6, i7);
    check("zetiCopyConstBorder_32s_AC4R", std::tuple(from, 8, inner, +dst, 20, outer, 1, 1, from), i2, i5, i6, i7);
    for (const char* family : {"zetiCopyReplicateBorder_32s_C1", "zetiCopyWrapBorder_32s_C1"}) {
        check(std::string(family) + "R", std::tuple(from, 8, inner, +dst, 20, outer, 1, 1), i2, i5, i6, i7);
        check(std::string(family) + "IR", std::tuple(+src, 20, inner, outer, 1, 1), i2, i3, i4, i5);
    }
}

} // namespace
