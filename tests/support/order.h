// SPDX-License-Identifier: Apache-2.0
// The order of a member's argument checks, by pairs of errors: of two wrong arguments a call reports the one that is checked first,
// and touches nothing.
#pragma once

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <tuple>
#include <vector>

#include "tests/support/member.h"
#include "tests/support/samples.h"

namespace test {

template <class Arguments> struct Error {
    ZetStatus status;
    std::function<void(Arguments&)> spoil;
    bool height = false; // of a size; where its status stands twice in the order, the width comes first and the height last
};

// What can be wrong with any arguments: null pointers, the steps behind pointers, and both sides of a size.
template <class... A> std::vector<Error<std::tuple<A...>>> common_errors(const std::tuple<A...>&) {
    using Arguments = std::tuple<A...>;
    std::vector<Error<Arguments>> errors;
    const auto argument = [&]<std::size_t I>(std::integral_constant<std::size_t, I>) {
        using This = std::tuple_element_t<I, Arguments>;
        using Before = std::tuple_element_t<I == 0 ? 0 : I - 1, Arguments>;
        if constexpr (std::is_pointer_v<This>) {
            errors.push_back({zetStsNullPtrErr, [](Arguments& a) { std::get<I>(a) = nullptr; }});
        } else if constexpr (std::is_same_v<This, ZetiSize>) {
            for (const int bad : {0, -1, INT_MIN}) {
                errors.push_back({zetStsSizeErr, [=](Arguments& a) { std::get<I>(a).width = bad; }});
                errors.push_back({zetStsSizeErr, [=](Arguments& a) { std::get<I>(a).height = bad; }, true});
            }
        } else if constexpr (std::is_same_v<This, int> && std::is_pointer_v<Before>) {
            for (const int bad : {0, -1, INT_MIN}) errors.push_back({zetStsStepErr, [=](Arguments& a) { std::get<I>(a) = bad; }});
        }
    };
    [&]<std::size_t... I>(std::index_sequence<I...>) { (argument(std::integral_constant<std::size_t, I>()), ...); }
    (std::index_sequence_for<A...>());
    return errors;
}

// `order` holds the statuses of all errors, the first checked first; `intact` says whether everything is as it was.
template <class... A, class Intact>
void expect_order(const std::string& name, const std::tuple<A...>& arguments, const std::vector<ZetStatus>& order,
                  const std::vector<Error<std::tuple<A...>>>& errors, Intact intact) {
    const auto rank = [&](const auto& e) {
        return e.height ? order.rend() - std::find(order.rbegin(), order.rend(), e.status)
                        : std::find(order.begin(), order.end(), e.status) - order.begin() + 1;
    };
    for (const auto& one : errors)
        for (const auto& two : errors) {
            auto spoiled = arguments;
            one.spoil(spoiled), two.spoil(spoiled);
            const ZetStatus status = std::apply(member<ZetStatus(A...)>(name), spoiled);
            ASSERT_EQ(status, rank(one) < rank(two) ? one.status : two.status)
                << name << ": errors " << one.status << " and " << two.status;
            ASSERT_TRUE(intact()) << name << ": errors " << one.status << " and " << two.status;
        }
}

} // namespace test
