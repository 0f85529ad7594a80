// SPDX-License-Identifier: Apache-2.0
// Argument checks: which of two errors a call reports, and that it leaves every byte as it was.
#include <climits>
#include <utility>

#include "tests/arith/arith.h"

using namespace test;

namespace {

enum Error { width_error, height_error, null_a, null_b, null_d, null_constants, step_a, step_b, step_d, zero_constant };

// What a member can report, in the order in which it does.
template <class T> std::vector<std::pair<Error, ZetStatus>> order_of(const Arith<T>& f) {
    std::vector<std::pair<Error, ZetStatus>> order;
    const auto then = [&](bool checks, Error e, ZetStatus status) {
        if (checks) order.emplace_back(e, status);
    };
    const bool widthFirst = !f.constant && !is_complex<T> && (f.layout == "C3" || f.layout == "C4");
    then(widthFirst, width_error, zetStsSizeErr);
    then(!f.constant, null_a, zetStsNullPtrErr);
    then(!f.inPlace, null_b, zetStsNullPtrErr);
    then(true, null_d, zetStsNullPtrErr);
    then(f.constant && f.channels() > 1, null_constants, zetStsNullPtrErr);
    then(!widthFirst, width_error, zetStsSizeErr);
    then(true, height_error, zetStsSizeErr);
    then(f.checks_steps() && !f.constant, step_a, zetStsStepErr);
    then(f.checks_steps() && !f.inPlace, step_b, zetStsStepErr);
    then(f.checks_steps(), step_d, zetStsStepErr);
    then(f.constant && f.op == Op::Div, zero_constant, zetStsDivByZeroErr);
    return order;
}

TEST(Checks, OrderByPairsOfErrors) {
    each_member([](const auto& f) {
        using T = typename std::decay_t<decltype(f)>::type;
        Random r(f.name());
        Image<T> a(r, 3, 2, f.channels()), b(r, 3, 2, f.channels()), d(r, 3, 2, f.channels()), constants(f.colours(), 1, 1, 0);
        const auto order = order_of(f);
        for (const int s : {0, 1, 15, 17, 100, -1, -20, -100})
            for (std::size_t i = 0; i < order.size(); ++i)
                for (std::size_t j = i; j < order.size(); ++j) {
                    const auto [one, expected] = order[i];
                    const Error two = order[j].first;
                    // 16u by a constant, at a scale that leaves nothing: the fill that follows has no step to check.
                    const bool clears = std::is_same_v<T, Zet16u> && f.layout == "C1" && f.op == Op::Div && f.constant && s > 16;
                    if (clears && two >= step_a && two != zero_constant) continue;
                    const auto has = [&](Error e) { return one == e || two == e; };
                    const auto bad = [&](Error e, int good) { return has(e) ? r.pick({0, -1, INT_MIN}) : good; };
                    for (int c = 0; c < f.colours(); ++c) constants.set(0, c, number<T>(r.between(2, 3)));
                    if (has(zero_constant)) constants.set(0, r.between(0, f.colours() - 1), T{});
                    const typename Arith<T>::Images images = {has(null_a) ? nullptr : a.data(),
                                                              bad(step_a, a.step),
                                                              has(null_b) ? nullptr : b.data(),
                                                              bad(step_b, b.step),
                                                              has(null_d) ? nullptr : d.data(),
                                                              bad(step_d, d.step),
                                                              has(null_constants) ? nullptr : constants.data()};
                    const ZetStatus status = f.run(images, {bad(width_error, 3), bad(height_error, 2)}, s);
                    ASSERT_TRUE(status == expected && d.intact())
                        << f.name() << ", errors " << one << " and " << two << ", scale " << s << ": " << status << d.intact().message();
                }
    });
}

// Where the fill of a 16u quotient stands for the whole call, any step is walked as it stands.
TEST(Checks, ClearedQuotientsOf16uWalkAnyStep) {
    for (const bool inPlace : {false, true})
        for (const Zet16u value : {1, 5}) {
            Random r("cleared");
            Image<Zet16u> d(9, 4, 1, -23);
            d.fill(r, Random::uniforms);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 9; ++x) d.expect(y, x, 0);
            EXPECT_EQ(
                (Arith<Zet16u>{Op::Div, true, inPlace, "C1"}.run({nullptr, 0, d.data(), INT_MIN, d.data(), d.step, &value}, {9, 4}, 17)),
                zetStsNoErr);
            EXPECT_TRUE(d.intact());
        }
}

} // namespace
