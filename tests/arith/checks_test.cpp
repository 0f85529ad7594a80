// SPDX-License-Identifier: Apache-2.0
// Argument checks: which of two errors a call reports, and that it leaves every byte as it was.
#include <climits>

#include "tests/arith/arith.h"

using namespace test;

namespace {

enum Error { none, width_error, null_a, null_b, null_d, null_constants, height_error, step_a, step_b, step_d, zero_constant, errors };

struct Rank { // a call reports the error of the lowest rank; rank 0 is none at all
    int rank;
    ZetStatus status;
};

template <class T> Rank rank_of(const Arith<T>& f, Error e, bool clearsAtOnce) {
    const Rank no = {0, zetStsNoErr};
    const bool usesA = !f.constant, usesB = !f.inPlace;
    switch (e) {
    case width_error: return {f.delegates() ? 1 : 3, zetStsSizeErr};
    case null_a: return usesA ? Rank{2, zetStsNullPtrErr} : no;
    case null_b: return usesB ? Rank{2, zetStsNullPtrErr} : no;
    case null_d: return {2, zetStsNullPtrErr};
    case null_constants: return f.constant && f.channels() > 1 ? Rank{2, zetStsNullPtrErr} : no;
    case height_error: return {3, zetStsSizeErr};
    case step_a: return usesA && f.checks_steps() ? Rank{4, zetStsStepErr} : no;
    case step_b: return usesB && f.checks_steps() && !clearsAtOnce ? Rank{4, zetStsStepErr} : no;
    case step_d: return f.checks_steps() && !clearsAtOnce ? Rank{4, zetStsStepErr} : no;
    case zero_constant: return f.op == Op::Div && f.constant ? Rank{5, zetStsDivByZeroErr} : no;
    default: return no;
    }
}

TEST(Checks, OrderByPairsOfErrors) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        Random r(f.name());
        Image<T> a(r, 3, 2, f.channels()), b(r, 3, 2, f.channels()), d(r, 3, 2, f.channels()), constants(f.colours(), 1, 1, 0);
        for (const int s : {0, 1, 15, 17, 100, -1, -20, -100})
            for (int one = width_error; one < errors; ++one)
                for (int two = one; two < errors; ++two) {
                    const auto has = [&](Error e) { return one == e || two == e; };
                    for (int c = 0; c < f.colours(); ++c) constants.set(0, c, number<T>(r.between(2, 3)));
                    if (has(zero_constant)) constants.set(0, r.between(0, f.colours() - 1), T{});
                    // 16u by a constant, at a scale that leaves nothing: the fill that follows has no step to check.
                    const bool clearsAtOnce = std::is_same_v<T, Zet16u> && f.layout == "C1" && f.op == Op::Div && f.constant && s > 16 && !has(zero_constant);
                    const Rank first = rank_of(f, static_cast<Error>(one), clearsAtOnce), second = rank_of(f, static_cast<Error>(two), clearsAtOnce);
                    if (first.rank == 0 || second.rank == 0) continue;
                    const ZetStatus expected = first.rank <= second.rank ? first.status : second.status;
                    const auto bad = [&](Error e, int good) { return has(e) ? r.pick({0, -1, INT_MIN}) : good; };
                    const ZetStatus status = f.run({has(null_a) ? nullptr : a.data(), bad(step_a, a.step), has(null_b) ? nullptr : b.data(), bad(step_b, b.step),
                                                    has(null_d) ? nullptr : d.data(), bad(step_d, d.step), has(null_constants) ? nullptr : constants.data()},
                                                   {bad(width_error, 3), bad(height_error, 2)}, s);
                    ASSERT_EQ(status, expected) << f.name() << ", errors " << one << " and " << two << ", scale " << s;
                    ASSERT_TRUE(d.intact()) << f.name() << ", errors " << one << " and " << two << ", scale " << s;
                }
    });
}

// Without a check of steps: the destination's may be zero, and each row then replaces the one before.
TEST(Checks, ZeroStepOfTheDestination) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        if (f.checks_steps() || f.inPlace) return;
        Random r(f.name());
        Image<T> a(r, 20, 3, f.channels()), b(r, 20, 3, f.channels()), d(20, 3, f.channels(), 0), constants(f.colours(), 1, 1, 0);
        d.fill(r, Random::uniforms), prepare(f, r, a, b, constants);
        bool zero = false;
        for (int y = 0; y < 3; ++y)
            for (int i = 0; i < d.row_samples(); ++i)
                if (const int c = i % f.channels(); c < f.colours()) d.expect(y, i, result(f.op, f.constant, f.constant ? constants.at(0, c) : a.at(y, i), b.at(y, i), 1, zero));
        EXPECT_EQ(f.run({a.data(), a.step, b.data(), b.step, d.data(), 0, constants.data()}, {20, 3}, 1), zetStsNoErr);
        EXPECT_TRUE(d.intact()) << f.name();
    });
}

// ... and where the fill of a 16u quotient stands for the whole call, any step is walked as it stands.
TEST(Checks, ClearedQuotientsOf16uWalkAnyStep) {
    for (const bool inPlace : {false, true})
        for (const Zet16u value : {1, 5}) {
            Random r("cleared");
            Image<Zet16u> d(9, 4, 1, -23);
            d.fill(r, Random::uniforms);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 9; ++x) d.expect(y, x, 0);
            EXPECT_EQ((Arith<Zet16u>{Op::Div, true, inPlace, "C1"}.run({nullptr, 0, d.data(), INT_MIN, d.data(), d.step, &value}, {9, 4}, 17)), zetStsNoErr);
            EXPECT_TRUE(d.intact());
        }
}

} // namespace
