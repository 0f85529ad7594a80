// SPDX-License-Identifier: Apache-2.0
// Moments: the scans against plain loops, the getters against sums over the pixels, the records, and the extended numbers of the 64s getters against
// the processor's own.
#include <complex>

#include "stats/moments_extended.h"
#include "tests/support/checksum.h"
#include "tests/support/faults.h"
#include "tests/support/image.h"
#include "tests/support/layouts.h"
#include "tests/support/zetcore_standin.h"

using namespace test;

namespace {

template <class V> struct [[gnu::packed]] Record { // what a state is
    Zet32s idCtx, hint, numChannels, reserved;
    V moments[3][16];
};
template <class V> using State = std::conditional_t<std::is_same_v<V, Zet64f>, ZetiMomentState_64f, ZetiMomentState_64s>;
template <class V> constexpr int tag = std::is_same_v<V, Zet64f> ? 33 : 34;

// A record in the caller's memory, flush against an unreadable page, at any byte.
template <class V> struct Block {
    Image<Zet8u> bytes{400, 1, 1, 0};
    explicit Block(int idCtx = tag<V>) {
        const Zet32s header[3] = {idCtx, 2, -1};
        std::memcpy(bytes.data(), header, sizeof header);
    }
    State<V>* state() const { return reinterpret_cast<State<V>*>(bytes.data()); }
    Record<V> record() const { return load<Record<V>>(bytes.data()); }
    void put(const Record<V>& r) const { std::memcpy(bytes.data(), &r, sizeof r); }
};

template <class V, class T> ZetStatus scan(const PixelLayout& l, const T* src, int srcStep, ZetiSize roi, State<V>* state) {
    return call_member("zetiMoments" + token<V>() + "_" + token<T>() + "_" + l.name + "R", src, srcStep, roi, state);
}
template <class V, class T> void expect_scan(const PixelLayout& l, const Image<T>& image, const Block<V>& block) {
    ASSERT_EQ((scan<V, T>(l, image.data(), image.step, {image.width, image.height}, block.state())), zetStsNoErr) << l.name;
}

// Two chains a row; integers wrap.
template <class Sum, class T> void reference(const Image<T>& image, int channel, Sum (&t)[16]) {
    for (int y = 0; y < image.height; ++y) {
        Sum s[2][4] = {};
        for (int x = 0; x < image.width; ++x) {
            Sum p = static_cast<Sum>(image.at(y, x * image.channels + channel));
            for (Sum& sum : s[x % 2]) sum += p, p *= static_cast<Sum>(x);
        }
        const Sum v = static_cast<Sum>(y), power[4] = {1, v, v * v, v * v * v};
        for (int m = 0; m < 4; ++m)
            for (int n = 0; m + n < 4; ++n) t[4 * m + n] += (s[0][n] + s[1][n]) * power[m];
    }
}

template <class V, class T> void check_scan(const PixelLayout& l, const Image<T>& image) {
    using Sum = std::conditional_t<std::is_same_v<V, Zet64f>, Zet64f, std::uint64_t>;
    const Block<V> block;
    expect_scan(l, image, block);
    Record<V> wanted = block.record();
    wanted.idCtx = tag<V>, wanted.hint = 2, wanted.numChannels = l.colours;
    for (int c = 0; c < 3; ++c) {
        Sum t[16] = {};
        if (c < l.colours) reference(image, c, t);
        for (int i = 0; i < 16; ++i) wanted.moments[c][i] = static_cast<V>(t[i]);
    }
    EXPECT_EQ(std::memcmp(&wanted, block.state(), sizeof wanted), 0) << token<V>() << token<T>() << l.name << ", width " << image.width;
}

template <class V, class T> void check_scans(const PixelLayout& l) {
    Random r(token<V>() + token<T>() + l.name);
    for (int width = 1; width <= 40; ++width) {
        Image<T> image(r, width, r.between(1, 9), l.channels);
        for (const auto [y, i] : image.samples())
            if (is_float<T>) image.set(y, i, static_cast<T>(static_cast<float>(r.between(-9999, 9999)) / 7));
        check_scan<V>(l, image);
    }
    for (const int width : {1036, 1040, 4095, 4096, 4097, 9001}) { // sums of a row that doubles still hold, and some that they do not
        Image<T> image(width, 2, l.channels, width * l.channels * static_cast<int>(sizeof(T)));
        image.fill(r, is_float<T> ? Random::alternating : Random::highest);
        for (int i = 0; !is_float<T> && i < image.row_samples(); ++i) image.set(1, i, static_cast<T>(r.between(1, 255)));
        check_scan<V>(l, image);
    }

    Image<T> image(r, 7, 3, l.channels);
    const Block<V> block, untouched, other(67 - tag<V>); // with the tag of the other form
    const auto list = [&](Faults& faults, const Arguments& call) {
        auto &step = call[1].as<int>(), &width = call[2].as<ZetiSize>().width;
        faults.null(call).add(zetStsContextMatchErr, call[3].as<State<V>*>(), {other.state()}).step(call).size(call);
        faults.add(zetStsStrideErr, step, {7 * l.channels * static_cast<int>(sizeof(T)) - 1});
        faults.add(zetStsStrideErr, width, {INT_MAX}); // a row of more bytes than an int counts
    };
    const auto intact = [&] { return std::memcmp(block.state(), untouched.state(), 400) == 0; };
    check_order([&] { scan<V>(l, image.data(), image.step, {7, 3}, block.state()); }, list, intact);
}

TEST(MomentScans, EveryMemberAtEveryWidth) {
    for (const int i : {0, 1, 3}) {
        const PixelLayout& l = pixel_layouts[i];
        check_scans<Zet64f, Zet8u>(l), check_scans<Zet64f, Zet16u>(l), check_scans<Zet64f, Zet32f>(l);
        check_scans<Zet64s, Zet8u>(l), check_scans<Zet64s, Zet16u>(l);
    }
}

template <class V> void check_life() {
    const auto make = [](State<V>** to) { return call_member("zetiMomentInitAlloc_" + token<V>(), to, zetAlgHintAccurate); };
    const auto release = [](State<V>* state) { return call_member("zetiMomentFree_" + token<V>(), state); };
    const int live = standin.live_blocks;
    State<V>* state = nullptr;
    EXPECT_TRUE(make(nullptr) == zetStsNullPtrErr && release(nullptr) == zetStsNullPtrErr);
    standin.refused_allocation = 1;
    EXPECT_TRUE(make(&state) == zetStsMemAllocErr && !state);
    ASSERT_EQ(make(&state), zetStsNoErr);
    EXPECT_TRUE(standin.last_bytes == 400 && std::memcmp(state, Block<V>().state(), 12) == 0); // tag, hint, no channels
    for (const int idCtx : {0, 67 - tag<V>}) EXPECT_EQ(release(Block<V>(idCtx).state()), zetStsContextMatchErr);
    EXPECT_TRUE(standin.live_blocks == live + 1 && release(state) == zetStsNoErr && standin.live_blocks == live);
}

TEST(MomentRecords, LifeCycle) {
    standin.reset(), check_life<Zet64f>(), check_life<Zet64s>();
    const auto get_size = [](int* size) { return call_member("zetiMomentGetStateSize_64s", zetAlgHintNone, size); };
    const auto init = [](ZetiMomentState_64s* state) { return call_member("zetiMomentInit_64s", state, zetAlgHintAccurate); };
    int size = 0;
    const Block<Zet64s> block(0), made;
    EXPECT_TRUE(get_size(nullptr) == zetStsNullPtrErr && init(nullptr) == zetStsNullPtrErr && get_size(&size) == zetStsNoErr);
    EXPECT_TRUE(size == 400 && init(block.state()) == zetStsNoErr && std::memcmp(block.state(), made.state(), 400) == 0);
}

// --- Getters ------------------------------------------------------------------------------------------------------------

enum Getter { spatial, central, normal_spatial, normal_central, hu };
const char* const getters[] = {"SpatialMoment", "CentralMoment", "NormalizedSpatialMoment", "NormalizedCentralMoment", "HuMoments"};

template <class V> struct Get {
    const State<V>* state;
    int m = 0, n = 0, c = 0;
    ZetiPoint offset = {0, 0};
    int scale = 0;

    ZetStatus run(Getter g, V* v) const {
        const auto call = [&](auto... arguments) {
            const std::string name = std::string("zetiGet") + getters[g] + "_" + token<V>();
            if constexpr (is_float<V>) return call_member(name, arguments...);
            else return call_member(name, arguments..., scale);
        };
        if (g == hu) return call(state, c, v);
        return g % 2 == spatial ? call(state, m, n, c, offset, v) : call(state, m, n, c, v);
    }
    V value(Getter g) const {
        V v = 77;
        EXPECT_EQ(run(g, &v), zetStsNoErr) << getters[g] << ' ' << m << ' ' << n;
        return v;
    }
};

long double about(const Image<Zet8u>& image, int channel, int m, int n, long double x0, long double y0) { // over the pixels
    long double sum = 0;
    for (const auto [y, x] : Places{image.height, image.width})
        sum += image.at(y, x * image.channels + channel) * std::pow(y - y0, m) * std::pow(x - x0, n);
    return sum;
}

// A value is what was computed otherwise: to the last bits in double precision, truncated in integers.
template <class V> void expect_near(V got, long double expected, long double magnitude, int scale, const std::string& what) {
    const long double scaled = std::ldexp(expected, -scale), slack = std::ldexp(magnitude * 1e-15L, -scale) + 1e-9L;
    const auto value = static_cast<long double>(got), low = std::trunc(scaled - slack), high = std::trunc(scaled + slack);
    if (is_float<V>) EXPECT_LE(std::fabs(value - expected), magnitude * 1e-13L) << what;
    else if (std::fabs(scaled) > 9.2e18L) EXPECT_EQ(got, static_cast<V>(scaled < 0 ? LLONG_MIN : LLONG_MAX)) << what;
    else EXPECT_TRUE(value >= low && value <= high) << what << ": " << got << " for " << static_cast<double>(scaled);
}

template <class V> void check_getters(int scale, Checksum& sum) {
    Random r("getters" + std::to_string(scale));
    for (int i = 0; i < 12; ++i) {
        const int most = i % 2 ? 50 : 5; // of little mass the third orders weigh more than rounding
        Image<Zet8u> image(r, r.between(1, most), r.between(1, most), 3);
        for (const auto [y, k] : image.samples())
            if (y + k < 3 || i % 2 == 0) image.set(y, k, y + k < 3 ? 1 : r.uniform<Zet8u>() % 4);
        const Block<V> block;
        expect_scan(pixel_layouts[1], image, block);
        const int c = r.between(0, 2);
        const ZetiPoint offset = {r.between(-99, 99), r.pick({0, r.between(-9999, 9999)})};
        const long double mass = about(image, c, 0, 0, 0, 0), xc = about(image, c, 0, 1, 0, 0) / mass,
                          yc = about(image, c, 1, 0, 0, 0) / mass;
        for (int m = 0; m < 4; ++m)
            for (int n = 0; m + n < 4; ++n)
                for (const Getter g : {spatial, central, normal_spatial, normal_central}) {
                    const bool centred = g % 2 == central, normal = g >= normal_spatial;
                    long double exact = centred ? about(image, c, m, n, xc, yc) : about(image, c, m, n, -offset.x, -offset.y);
                    if (normal && !is_float<V>) // whole before it is divided
                        exact = std::trunc(exact + (centred ? std::copysign(1e-9L, exact) : 0));
                    const long double factor = normal ? std::pow(mass, -0.5L * (m + n + 2)) : 1,
                                      magnitude = g == spatial && !is_float<V> ? 0 : mass * std::pow(centred ? 60.0L : 10100.0L, m + n);
                    const V v = Get<V>{block.state(), m, n, c, offset, scale}.value(g);
                    sum.add(v), expect_near(v, exact * factor, magnitude * factor, scale, getters[g] + std::to_string(4 * m + n));
                }
        const auto nu = [&](int p, int q) { return about(image, c, q, p, xc, yc) * std::pow(mass, -0.5L * (p + q + 2)); };
        const long double v20 = nu(2, 0), v02 = nu(0, 2), v30 = nu(3, 0), v12 = nu(1, 2), v21 = nu(2, 1), v03 = nu(0, 3);
        const std::complex<long double> a(v20 - v02, 2 * nu(1, 1)), b(v30 - 3 * v12, 3 * v21 - v03), z(v30 + v12, v21 + v03);
        const auto cubes = b * std::conj(z * z * z);
        const long double other = std::real(b) * std::real(z) * ((v12 + v03) * (v12 + v03) - std::real(z) * std::real(z)); // not v30 there
        const long double expected[] = {
            v20 + v02,       std::norm(a), std::norm(b), std::norm(z), std::real(cubes) + other, std::real(a * std::conj(z * z)),
            std::imag(cubes)};
        V h[7] = {};
        EXPECT_EQ((Get<V>{block.state(), 0, 0, c, offset, scale}.run(hu, h)), zetStsNoErr);
        for (int k = 0; k < 7; ++k) sum.add(h[k]), expect_near(h[k], expected[k], expected[0] * 50, scale, "Hu " + std::to_string(k));
    }
}

TEST(MomentGetters, AgreeWithSumsOverThePixels) {
    Checksum sum;
    check_getters<Zet64f>(0, sum);
    for (const int scale : {0, 3, 17, -20, -60}) check_getters<Zet64s>(scale, sum);
    EXPECT_EQ(sum.value, 0x3829ABD8EE168B95);
}

template <class V> void check_statuses() {
    const Block<V> block, wrong(0);
    Image<Zet8u> dot(3, 2, 4, 12);
    for (int i = 0; i < 24; ++i) dot.set(i / 12, i % 12, i == 0 ? 5 : 0); // of other channels black
    for (const Getter g : {spatial, central, normal_spatial, normal_central, hu}) {
        V values[7];
        std::fill_n(values, 7, V{77});
        const auto untouched = [&] { return std::count(values, values + 7, V{77}) == 7; };
        Get<V> get = {block.state()};
        block.put({tag<V>, 2, -1, 0, {}}); // before any scan
        for (get.c = 3; get.c >= -1; --get.c) EXPECT_EQ(get.run(g, values), zetStsCOIErr);
        expect_scan(pixel_layouts[3], dot, block);
        get.c = 0;
        const auto list = [&](Faults& faults, const Arguments& call) {
            faults.null(call).add(zetStsContextMatchErr, call[0].as<State<V>*>(), {wrong.state()});
            for (int i = 1; g != hu && i < 3; ++i) faults.add(zetStsSizeErr, call[i].as<int>(), {4, INT_MAX});
            int& channel = call[g == hu ? 1 : 3].as<int>();
            faults.add(zetStsCOIErr, channel, {3, -1, INT_MIN, INT_MAX});
            if (g >= normal_spatial) faults.add(zetStsMoment00ZeroErr, channel, {1, 2});
        };
        check_order([&] { get.run(g, values); }, list, untouched);
        if (g == hu) continue;
        // Negative orders go by 4 m + n: no moment, or that of another pair.
        for (const auto& [m, n] : {std::pair{2, -1}, {-1, 3}, {-1, -1}, {0, -1}, {3, -1}, {4, -3}, {INT_MIN, INT_MAX}}) {
            get.m = m, get.n = n;
            EXPECT_EQ(get.run(g, values), zetStsNoErr) << getters[g] << m << ' ' << n;
        }
        EXPECT_TRUE(untouched());
        get.m = -1, get.n = 4;
        EXPECT_EQ(get.value(g), g < normal_spatial ? 5 : V(5 * std::pow(5, -2.5)));
        get.c = 2; // black
        EXPECT_TRUE(g >= normal_spatial || get.value(g) == 0);
    }
}

TEST(MomentGetters, StatusesAndOrders) { check_statuses<Zet64f>(), check_statuses<Zet64s>(); }

// Sums near the bounds of 64 bits: exact in, saturated out, any scale factor.
TEST(MomentGetters, LargeIntegers) {
    const Block<Zet64s> block;
    block.put({34, 0, 1, 0, {{LLONG_MAX, LLONG_MIN}}});
    constexpr Zet64s most = LLONG_MAX, least = LLONG_MIN;
    const std::tuple<int, int, int, Zet64s> cases[] = {
        {0, 0, 0, most}, {1, 0, 0, least}, {1, 1, 0, -1}, {1, 3, 0, most},    {1, -1, 0, least},     {1, INT_MIN, 31, least},
        {0, 0, 62, 1},   {1, 0, 62, -2},   {1, 0, 64, 0}, {0, 0, INT_MAX, 0}, {0, 0, INT_MIN, most}, {1, 0, INT_MIN, least}};
    for (const auto& [n, x, scale, expected] : cases)
        EXPECT_EQ((Get<Zet64s>{block.state(), 0, n, 0, {x, 0}, scale}.value(spatial)), expected) << n << ' ' << x << ' ' << scale;
}

// --- Numbers of 64 significant bits: the processor has them too -------------------------------------------------------------

TEST(MomentNumbers, AreThoseOfTheProcessor) {
    using zeti::Extended;
    static_assert(std::numeric_limits<long double>::digits == 64);
    const auto expect_same = [](Extended a, long double b) {
        const double high = static_cast<double>(b), low = static_cast<double>(b - high);
        ASSERT_TRUE((a - (Extended(high) + Extended(low))).is_zero()) << b;
    };
    Random r("extended");
    const auto draw = [&] { // not zero
        return static_cast<Zet64s>(
            r.pick({r.bits() | 1, r.bits() >> r.between(0, 63) | 1, std::uint64_t(r.between(1, 5)), r.edge<std::uint64_t>() | 1}));
    };
    for (int i = 0; i < 20000; ++i) {
        const Zet64s p = draw(), q = draw(), s = draw();
        const long double x = static_cast<long double>(p) / static_cast<long double>(q), y = static_cast<long double>(s);
        const Extended a = Extended(p) / Extended(q), b = s;
        expect_same(a, x), expect_same(a * b, x * y), expect_same(a + b, x + y), expect_same(a - b, x - y);
        expect_same(b - a * b, y - x * y), expect_same(Extended(static_cast<double>(x)), static_cast<double>(x));
        if (x > 0) expect_same(square_root(a), std::sqrt(x));
    }
}

} // namespace
