// SPDX-License-Identifier: Apache-2.0
// Moments: the scans against plain loops, the getters against sums over the pixels, the records, and the extended numbers of the 64s getters against
// the processor's own.
#include <climits>

#include "stats/moments_extended.h"
#include "tests/stats/tables.h"
#include "tests/support/checksum.h"

using namespace test;

namespace {

template <class V> struct Record { // what a state is, byte by byte
    Zet32s idCtx, hint, numChannels, reserved;
    V moments[3][16];
};
template <class V> using State = std::conditional_t<std::is_same_v<V, Zet64f>, ZetiMomentState_64f, ZetiMomentState_64s>;
template <class V> constexpr int tag = std::is_same_v<V, Zet64f> ? 33 : 34;
template <class V> std::string suffix() { return "_" + token<V>(); }

// A record in the caller's memory, flush against an unreadable page, at any byte.
template <class V> struct Block {
    Image<Zet8u> bytes{400, 1, 1, 0};
    Block() {
        const Zet32s header[3] = {tag<V>, 2, -1};
        std::memcpy(bytes.data(), header, sizeof header);
    }
    State<V>* state() const { return reinterpret_cast<State<V>*>(bytes.data()); }
    Record<V> record() const {
        Record<V> r;
        std::memcpy(r.moments, bytes.data() + 16, sizeof r.moments);
        std::memcpy(&r, bytes.data(), 16);
        return r;
    }
    void put(const Record<V>& r) const {
        std::memcpy(bytes.data(), &r, 16);
        std::memcpy(bytes.data() + 16, r.moments, sizeof r.moments);
    }
};

constexpr TableLayout layouts[] = {table_layouts[0], table_layouts[1], table_layouts[3]};

template <class V, class T> struct Scan {
    TableLayout layout;
    std::string name = "zetiMoments" + token<V>() + "_" + token<T>() + "_" + layout.name + "R";
    const T* src = nullptr;
    int srcStep = 0;
    ZetiSize roi = {};
    State<V>* state = nullptr;

    ZetStatus run() const { return member<ZetStatus(const T*, int, ZetiSize, State<V>*)>(name)(src, srcStep, roi, state); }
    void use(const Image<T>& image) { src = image.data(), srcStep = image.step, roi = {image.width, image.height}; }
};

template <class Use> void each_scan(Use use) {
    for (const TableLayout& l : layouts) {
        use(Scan<Zet64f, Zet8u>{l}), use(Scan<Zet64f, Zet16u>{l}), use(Scan<Zet64f, Zet32f>{l});
        use(Scan<Zet64s, Zet8u>{l}), use(Scan<Zet64s, Zet16u>{l});
    }
}

// Two chains a row; integers wrap.
template <class Sum, class T> void reference(const Image<T>& image, int channel, Sum (&t)[16]) {
    std::fill(t, t + 16, Sum{0});
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

template <class V, class T> void check_scan(Scan<V, T>& f, const Image<T>& image) {
    using Sum = std::conditional_t<std::is_same_v<V, Zet64f>, Zet64f, std::uint64_t>;
    const Block<V> block;
    f.use(image), f.state = block.state();
    ASSERT_EQ(f.run(), zetStsNoErr) << f.name;
    const Record<V> r = block.record();
    EXPECT_EQ(r.idCtx, tag<V>);
    EXPECT_EQ(r.hint, 2);
    EXPECT_EQ(r.numChannels, f.layout.colours);
    for (int c = 0; c < 3; ++c) {
        Sum t[16] = {};
        if (c < f.layout.colours) reference(image, c, t);
        for (int i = 0; i < 16; ++i)
            ASSERT_TRUE(same(r.moments[c][i], static_cast<V>(t[i])))
                << f.name << ", " << image.width << " x " << image.height << ", channel " << c << ", entry " << i << ": " << r.moments[c][i]
                << ", not " << static_cast<V>(t[i]);
    }
    EXPECT_TRUE(image.intact());
}

TEST(MomentScans, EveryMemberAtEveryWidth) {
    each_scan([]<class V, class T>(Scan<V, T> f) {
        Random r(f.name);
        for (int width = 1; width <= 40; ++width) {
            Image<T> image(r, width, r.between(1, 9), f.layout.channels);
            if (is_float<T>)
                for (int y = 0; y < image.height; ++y)
                    for (int i = 0; i < image.row_samples(); ++i)
                        image.set(y, i, static_cast<T>(static_cast<float>(r.between(-9999, 9999)) / 7));
            check_scan(f, image);
        }
        for (const int width : {1036, 1040, 4095, 4096, 4097, 9001}) { // sums of a row that doubles still hold, and some that they do not
            Image<T> image(width, 2, f.layout.channels, width * f.layout.channels * static_cast<int>(sizeof(T)));
            for (int i = 0; i < image.row_samples(); ++i)
                image.set(0, i, std::numeric_limits<T>::max()), image.set(1, i, static_cast<T>(r.between(1, 255)));
            if (is_float<T>) image.fill(r, Random::alternating);
            check_scan(f, image);
        }
    });
}

TEST(MomentScans, OrderOfChecks) {
    each_scan([]<class V, class T>(Scan<V, T> f) {
        Random r(f.name);
        Image<T> image(r, 7, 3, f.layout.channels);
        const Block<V> block, other;
        f.use(image), f.state = block.state();
        const Record<V> before = block.record();
        const auto intact = [&] {
            const auto now = block.record();
            return std::memcmp(&now, &before, 16) == 0 && std::memcmp(now.moments, before.moments, 384) == 0;
        };
        Record<V> wrong = other.record();
        wrong.idCtx = 67 - tag<V>; // that of the other form
        other.put(wrong);
        using S = Scan<V, T>;
        Spoilers<S> e = {{zetStsNullPtrErr, [](S& s) { s.src = nullptr; }},
                         {zetStsNullPtrErr, [](S& s) { s.state = nullptr; }},
                         {zetStsContextMatchErr, [&](S& s) { s.state = s.state ? other.state() : nullptr; }}};
        for (const int bad : {0, -1, INT_MIN}) e.push_back({zetStsStepErr, [=](S& s) { s.srcStep = bad; }});
        for (const int bad : {0, -1, INT_MIN})
            e.push_back({zetStsSizeErr, [=](S& s) { s.roi.width = bad; }}), e.push_back({zetStsSizeErr, [=](S& s) { s.roi.height = bad; }});
        e.push_back({zetStsStrideErr,
                     [](S& s) { s.srcStep = s.srcStep > 0 ? 7 * s.layout.channels * static_cast<int>(sizeof(T)) - 1 : s.srcStep; }});
        e.push_back({zetStsStrideErr,
                     [](S& s) { s.roi.width = s.roi.width > 0 ? INT_MAX : s.roi.width; }}); // a row of more bytes than an int counts
        for (std::size_t i = 0; i < e.size(); ++i)
            for (std::size_t j = i; j < e.size(); ++j) {
                S s = f;
                e[i].second(s), e[j].second(s);
                EXPECT_EQ(s.run(), e[i].first) << f.name << ": errors " << i << " and " << j;
                EXPECT_TRUE(intact());
            }
    });
}

TEST(MomentRecords, LifeCycle) {
    standin_reset();
    const int live = standin_live_blocks();
    const auto life = [&]<class V>(V) {
        const auto init = [](State<V>** p) {
            return member<ZetStatus(State<V>**, ZetHintAlgorithm)>("zetiMomentInitAlloc" + suffix<V>())(p, zetAlgHintAccurate);
        };
        const auto free = [](State<V>* p) { return member<ZetStatus(State<V>*)>("zetiMomentFree" + suffix<V>())(p); };
        State<V>* state = nullptr;
        EXPECT_EQ(init(nullptr), zetStsNullPtrErr);
        EXPECT_EQ(free(nullptr), zetStsNullPtrErr);
        standin_refuse_allocation(1);
        EXPECT_EQ(init(&state), zetStsMemAllocErr);
        EXPECT_EQ(state, nullptr);
        ASSERT_EQ(init(&state), zetStsNoErr);
        EXPECT_EQ(standin_last_bytes(), 400);
        EXPECT_EQ(standin_live_blocks(), live + 1);
        const auto* const header = reinterpret_cast<const Zet32s*>(state);
        EXPECT_EQ(header[0], tag<V>);
        EXPECT_EQ(header[1], 2);
        EXPECT_EQ(header[2], -1);
        const Block<V> foreign; // whose tag is another
        for (const int idCtx : {0, 67 - tag<V>}) {
            Record<V> r = foreign.record();
            r.idCtx = idCtx, foreign.put(r);
            EXPECT_EQ(free(foreign.state()), zetStsContextMatchErr);
            EXPECT_EQ(standin_live_blocks(), live + 1);
        }
        EXPECT_EQ(free(state), zetStsNoErr);
        EXPECT_EQ(standin_live_blocks(), live);
    };
    life(Zet64f{}), life(Zet64s{});

    int size = 0;
    const auto get_size = member<ZetStatus(ZetHintAlgorithm, int*)>("zetiMomentGetStateSize_64s");
    const auto init = member<ZetStatus(ZetiMomentState_64s*, ZetHintAlgorithm)>("zetiMomentInit_64s");
    EXPECT_EQ(get_size(zetAlgHintNone, nullptr), zetStsNullPtrErr);
    EXPECT_EQ(init(nullptr, zetAlgHintNone), zetStsNullPtrErr);
    EXPECT_EQ(get_size(zetAlgHintNone, &size), zetStsNoErr);
    EXPECT_EQ(size, 400);
    const Block<Zet64s> block, untouched;
    EXPECT_EQ(init(block.state(), zetAlgHintFast), zetStsNoErr);
    const auto made = block.record(), before = untouched.record();
    EXPECT_EQ(made.idCtx, 34);
    EXPECT_EQ(made.hint, 1);
    EXPECT_EQ(made.numChannels, -1);
    EXPECT_EQ(std::memcmp(made.moments, before.moments, 384), 0);
}

// --- Getters ------------------------------------------------------------------------------------------------------------

template <class V> struct Getters {
    static constexpr bool integers = std::is_same_v<V, Zet64s>;
    const State<V>* state;
    int scale = 0;

    ZetStatus spatial(int m, int n, int c, ZetiPoint o, V* v, const char* family = "zetiGetSpatialMoment") const {
        if constexpr (integers)
            return member<ZetStatus(const State<V>*, int, int, int, ZetiPoint, V*, int)>(family + suffix<V>())(state, m, n, c, o, v, scale);
        else return member<ZetStatus(const State<V>*, int, int, int, ZetiPoint, V*)>(family + suffix<V>())(state, m, n, c, o, v);
    }
    ZetStatus central(int m, int n, int c, V* v, const char* family = "zetiGetCentralMoment") const {
        if constexpr (integers)
            return member<ZetStatus(const State<V>*, int, int, int, V*, int)>(family + suffix<V>())(state, m, n, c, v, scale);
        else return member<ZetStatus(const State<V>*, int, int, int, V*)>(family + suffix<V>())(state, m, n, c, v);
    }
    ZetStatus normal_spatial(int m, int n, int c, ZetiPoint o, V* v) const {
        return spatial(m, n, c, o, v, "zetiGetNormalizedSpatialMoment");
    }
    ZetStatus normal_central(int m, int n, int c, V* v) const { return central(m, n, c, v, "zetiGetNormalizedCentralMoment"); }
    ZetStatus hu(int c, V* v) const {
        if constexpr (integers)
            return member<ZetStatus(const State<V>*, int, V*, int)>("zetiGetHuMoments" + suffix<V>())(state, c, v, scale);
        else return member<ZetStatus(const State<V>*, int, V*)>("zetiGetHuMoments" + suffix<V>())(state, c, v);
    }
};

long double about(const Image<Zet8u>& image, int channel, int m, int n, long double x0, long double y0) { // over the pixels
    long double sum = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) sum += image.at(y, x * image.channels + channel) * std::pow(y - y0, m) * std::pow(x - x0, n);
    return sum;
}

// A value is what was computed otherwise: to the last bits in double precision, truncated in integers.
void expect_near(Zet64f got, long double expected, long double magnitude, const std::string& what, int) {
    EXPECT_NEAR(static_cast<double>(got - expected), 0, static_cast<double>(magnitude * 1e-13)) << what;
}
void expect_near(Zet64s got, long double expected, long double magnitude, const std::string& what, int scale) {
    const long double scaled = std::ldexp(expected, -scale), slack = std::ldexp(magnitude * 1e-15, -scale) + 1e-9;
    if (std::fabs(scaled) > 9.2e18) {
        EXPECT_EQ(got, scaled < 0 ? LLONG_MIN : LLONG_MAX) << what;
        return;
    }
    EXPECT_GE(static_cast<long double>(got), std::trunc(scaled - slack)) << what << " of " << static_cast<double>(scaled);
    EXPECT_LE(static_cast<long double>(got), std::trunc(scaled + slack)) << what << " of " << static_cast<double>(scaled);
}

template <class V> void check_getters(int scale, bool coarse, Checksum& sum) {
    Random r("getters" + std::to_string(scale));
    for (int i = 0; i < 12; ++i) {
        Image<Zet8u> image(r, r.between(1, 50), r.between(1, 50), 3);
        if (image.at(0, 0) == 0) image.set(0, 0, 1), image.set(0, 1, 1), image.set(0, 2, 1);
        const Block<V> block;
        Scan<V, Zet8u> scan{layouts[1]};
        scan.use(image), scan.state = block.state();
        ASSERT_EQ(scan.run(), zetStsNoErr);
        const Getters<V> get{block.state(), scale};
        const int c = r.between(0, 2);
        const ZetiPoint offset = {r.between(-99, 99), r.pick({0, r.between(-9999, 9999)})};
        const long double mass = about(image, c, 0, 0, 0, 0), xc = about(image, c, 0, 1, 0, 0) / mass,
                          yc = about(image, c, 1, 0, 0, 0) / mass;
        for (int m = 0; m < 4; ++m)
            for (int n = 0; m + n < 4; ++n) {
                const std::string what = "orders " + std::to_string(m) + " " + std::to_string(n);
                const long double magnitude = mass * std::pow(10100.0L, m + n), power = std::pow(mass, -0.5L * (m + n + 2));
                const long double spatial = about(image, c, m, n, -offset.x, -offset.y), central = about(image, c, m, n, xc, yc);
                V v{};
                EXPECT_EQ(get.spatial(m, n, c, offset, &v), zetStsNoErr);
                sum.add(v), expect_near(v, spatial, coarse ? magnitude : 0, what, scale);
                EXPECT_EQ(get.central(m, n, c, &v), zetStsNoErr);
                sum.add(v), expect_near(v, central, mass * std::pow(60.0L, m + n), what + " central", scale);
                EXPECT_EQ(get.normal_spatial(m, n, c, offset, &v), zetStsNoErr);
                sum.add(v),
                    expect_near(v, (coarse ? spatial : std::trunc(spatial)) * power, magnitude * power, what + " normalized", scale);
                EXPECT_EQ(get.normal_central(m, n, c, &v), zetStsNoErr);
                const long double whole = coarse ? central : std::trunc(central + (central < 0 ? -1e-9L : 1e-9L));
                sum.add(v), expect_near(v, whole * power, mass * std::pow(60.0L, m + n) * power, what + " normalized central", scale);
            }
        const auto nu = [&](int p, int q) { return about(image, c, q, p, xc, yc) * std::pow(mass, -0.5L * (p + q + 2)); };
        const long double v20 = nu(2, 0), v02 = nu(0, 2), v11 = nu(1, 1), v30 = nu(3, 0), v12 = nu(1, 2), v21 = nu(2, 1), v03 = nu(0, 3);
        const auto sq = [](long double x) { return x * x; };
        const long double expected[7] = {v20 + v02,
                                         4 * sq(v11) + sq(v20 - v02),
                                         sq(v30 - 3 * v12) + sq(3 * v21 - v03),
                                         sq(v30 + v12) + sq(v21 + v03),
                                         (v30 - 3 * v12) * (v30 + v12) * (sq(v12 + v03) - 3 * sq(v21 + v03)) +
                                             (3 * v21 - v03) * (v21 + v03) *
                                                 (3 * sq(v30 + v12) - sq(v21 + v03)), // not v30 in the first square
                                         (v20 - v02) * (sq(v30 + v12) - sq(v21 + v03)) + 4 * v11 * (v30 + v12) * (v21 + v03),
                                         (3 * v21 - v03) * (v30 + v12) * (sq(v30 + v12) - 3 * sq(v21 + v03)) -
                                             (v30 - 3 * v12) * (v21 + v03) * (3 * sq(v30 + v12) - sq(v21 + v03))};
        V h[7] = {};
        EXPECT_EQ(get.hu(c, h), zetStsNoErr);
        for (int k = 0; k < 7; ++k) sum.add(h[k]), expect_near(h[k], expected[k], expected[0] * 50, "Hu " + std::to_string(k), scale);
    }
}

TEST(MomentGetters, AgreeWithSumsOverThePixels) {
    Checksum sum;
    check_getters<Zet64f>(0, true, sum);
    for (const int scale : {0, 3, 17, -20, -60}) check_getters<Zet64s>(scale, false, sum);
    EXPECT_TRUE(sum.is_known("Moments"));
}

template <class V> void check_refusals() {
    const Block<V> block;
    const Getters<V> get{block.state()}, none{nullptr};
    V v = 77, seven[7] = {77, 77, 77, 77, 77, 77, 77};
    const ZetiPoint o = {0, 0};
    // The same for the four getters of one moment.
    const auto each = [&](const Getters<V>& g, int m, int n, int c, V* p, ZetStatus plain, ZetStatus normal) {
        EXPECT_EQ(g.spatial(m, n, c, o, p), plain) << m << ' ' << n << ' ' << c;
        EXPECT_EQ(g.central(m, n, c, p), plain);
        EXPECT_EQ(g.normal_spatial(m, n, c, o, p), normal) << m << ' ' << n << ' ' << c;
        EXPECT_EQ(g.normal_central(m, n, c, p), normal);
    };
    for (const int c : {-1, 0, 1, 3}) { // before any scan
        each(get, 0, 0, c, &v, zetStsCOIErr, zetStsCOIErr);
        EXPECT_EQ(get.hu(c, seven), zetStsCOIErr);
    }

    Image<Zet8u> dot(3, 2, 4, 12);
    for (int i = 0; i < 24; ++i) dot.set(i / 12, i % 12, 0);
    Scan<V, Zet8u> scan{layouts[2]};
    scan.use(dot), scan.state = block.state();
    EXPECT_EQ(scan.run(), zetStsNoErr);
    EXPECT_EQ(get.hu(0, seven), zetStsMoment00ZeroErr); // black
    EXPECT_EQ(get.normal_spatial(0, 0, 2, o, &v), zetStsMoment00ZeroErr);
    EXPECT_EQ(get.normal_central(0, 1, 2, &v), zetStsMoment00ZeroErr);
    EXPECT_EQ(v, 77);
    EXPECT_EQ(seven[0], 77);
    EXPECT_EQ(get.central(1, 0, 0, &v), zetStsNoErr);
    EXPECT_EQ(v, 0);

    dot.set(0, 0, 5), v = 77;
    EXPECT_EQ(scan.run(), zetStsNoErr);
    EXPECT_EQ(get.spatial(0, 0, 0, o, &v), zetStsNoErr);
    EXPECT_EQ(v, 5);
    EXPECT_EQ(get.spatial(0, 3, 0, {2, 9}, &v), zetStsNoErr);
    EXPECT_EQ(v, 40); // the second order is of x
    EXPECT_EQ(get.normal_spatial(0, 0, 0, o, &v), zetStsNoErr);
    EXPECT_EQ(v, 1);
    v = 77;
    each(none, 9, 9, 9, &v, zetStsNullPtrErr, zetStsNullPtrErr), each(get, 9, 9, 9, nullptr, zetStsNullPtrErr, zetStsNullPtrErr);
    EXPECT_EQ(none.hu(0, seven), zetStsNullPtrErr);
    EXPECT_EQ(get.hu(0, nullptr), zetStsNullPtrErr);
    each(get, 2, 2, 9, &v, zetStsSizeErr, zetStsSizeErr), each(get, INT_MAX, INT_MAX, 0, &v, zetStsSizeErr, zetStsSizeErr);
    for (const int c : {3, -1, INT_MIN, INT_MAX}) {
        each(get, 0, 0, c, &v, zetStsCOIErr, zetStsCOIErr);
        EXPECT_EQ(get.hu(c, seven), zetStsCOIErr);
    }
    // Negative orders go by 4 m + n: no moment, or that of another pair.
    for (const auto& [m, n] : {std::pair{2, -1}, {-1, 3}, {-1, -1}, {0, -1}, {3, -1}, {4, -3}, {INT_MIN, INT_MAX}})
        each(get, m, n, 0, &v, zetStsNoErr, zetStsNoErr);
    EXPECT_EQ(v, 77);
    EXPECT_EQ(seven[6], 77);
    EXPECT_EQ(get.spatial(-1, 4, 0, o, &v), zetStsNoErr);
    EXPECT_EQ(v, 5);
    Record<V> wrong = block.record();
    wrong.idCtx = 0, block.put(wrong);
    each(get, 9, 9, 9, &v, zetStsContextMatchErr, zetStsContextMatchErr);
    EXPECT_EQ(get.hu(9, seven), zetStsContextMatchErr);
}

TEST(MomentGetters, StatusesAndOrders) {
    check_refusals<Zet64f>();
    check_refusals<Zet64s>();
}

// Sums near the bounds of 64 bits: exact in, saturated out, any scale factor.
TEST(MomentGetters, LargeIntegers) {
    const Block<Zet64s> block;
    Record<Zet64s> r = {34, 0, 1, 0, {}};
    r.moments[0][0] = LLONG_MAX, r.moments[0][1] = LLONG_MIN;
    block.put(r);
    const auto spatial = [&](int n, int x, int scale) {
        Zet64s v = 77;
        EXPECT_EQ((Getters<Zet64s>{block.state(), scale}.spatial(0, n, 0, {x, 0}, &v)), zetStsNoErr);
        return v;
    };
    EXPECT_EQ(spatial(0, 0, 0), LLONG_MAX);
    EXPECT_EQ(spatial(1, 0, 0), LLONG_MIN);
    EXPECT_EQ(spatial(1, 1, 0), -1);
    EXPECT_EQ(spatial(1, 3, 0), LLONG_MAX);
    EXPECT_EQ(spatial(1, -1, 0), LLONG_MIN);
    EXPECT_EQ(spatial(1, INT_MIN, 31), LLONG_MIN);
    EXPECT_EQ(spatial(0, 0, 62), 1);
    EXPECT_EQ(spatial(1, 0, 62), -2);
    EXPECT_EQ(spatial(1, 0, 64), 0); // towards zero
    EXPECT_EQ(spatial(0, 0, INT_MAX), 0);
    EXPECT_EQ(spatial(0, 0, INT_MIN), LLONG_MAX);
    EXPECT_EQ(spatial(1, 0, INT_MIN), LLONG_MIN);
}

// --- Numbers of 64 significant bits: the processor has them too -------------------------------------------------------------

TEST(MomentNumbers, AreThoseOfTheProcessor) {
    static_assert(std::numeric_limits<long double>::digits == 64);
    Random r("extended");
    const auto same_number = [](zeti::Extended a, long double b) {
        int exponent = 0;
        const long double significand = std::frexp(b, &exponent); // all 64 bits in two halves
        const long double high = std::trunc(std::ldexp(significand, 32)), low = std::ldexp(significand, 64) - std::ldexp(high, 32);
        return a.truncated(exponent - 32) == static_cast<Zet64s>(high) &&
               (a - zeti::Extended(a.truncated(exponent - 32)) *
                        [&] {
                            zeti::Extended power = 1;
                            const zeti::Extended two = exponent > 32 ? zeti::Extended(Zet64s{2}) : zeti::Extended(0.5);
                            for (int i = std::abs(exponent - 32); i > 0; --i) power = power * two;
                            return power;
                        }())
                       .truncated(exponent - 64) == static_cast<Zet64s>(low);
    };
    for (int i = 0; i < 20000; ++i) {
        const auto draw = [&] {
            const Zet64s any = static_cast<Zet64s>(
                r.pick({r.bits(), r.bits() >> r.between(0, 63), static_cast<std::uint64_t>(r.between(-5, 5)), r.edge<std::uint64_t>()}));
            return any == 0 ? Zet64s{3} : any;
        };
        const Zet64s p = draw(), q = draw(), s = draw();
        const long double x = static_cast<long double>(p) / static_cast<long double>(q), y = static_cast<long double>(s);
        const zeti::Extended a = zeti::Extended(p) / zeti::Extended(q), b = s;
        ASSERT_TRUE(same_number(a, x)) << p << " / " << q;
        ASSERT_TRUE(same_number(a * b, x * y)) << p << " / " << q << " * " << s;
        ASSERT_TRUE(same_number(a + b, x + y)) << p << " / " << q << " + " << s;
        ASSERT_TRUE(same_number(a - b, x - y)) << p << " / " << q << " - " << s;
        ASSERT_TRUE(same_number(b - a * b, y - x * y));
        ASSERT_TRUE(x < 0 || same_number(square_root(a), std::sqrt(x))) << p << " / " << q;
        const double d = static_cast<double>(x);
        ASSERT_TRUE(same_number(zeti::Extended(d), static_cast<long double>(d))) << d;
    }
}

} // namespace
