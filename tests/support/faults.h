// SPDX-License-Identifier: Apache-2.0
// The order of a call's argument checks: a list of faults, the first checked first, of which any two are made at a time.
#pragma once

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <vector>

#include "zeti/zeti.h"

namespace test {

class Faults {
public:
    // An argument that is `bad` in place of what it is.
    template <class A> Faults& add(ZetStatus status, A& argument, std::initializer_list<std::type_identity_t<A>> bad) {
        for (A other : bad) faults_.push_back({status, [&argument, other]() mutable { std::swap(argument, other); }});
        return *this;
    }
    template <class... P> Faults& null(P&... pointers) { return (add(zetStsNullPtrErr, pointers, {P{}}), ..., *this); }
    template <class... I> Faults& step(I&... steps) { return (add(zetStsStepErr, steps, {0, -1, INT_MIN}), ..., *this); }
    Faults& side(int& widthOrHeight) { return add(zetStsSizeErr, widthOrHeight, {0, -1, INT_MIN}); }
    Faults& size(ZetiSize& roi) { return side(roi.width).side(roi.height); }

    // Of two faults the call reports the one that stands first, and nothing has changed.
    template <class Call, class Intact> void expect_order(const std::string& name, Call call, Intact intact) {
        for (std::size_t i = 0; i < faults_.size(); ++i)
            for (std::size_t j = i; j < faults_.size(); ++j) {
                if (j != i) faults_[j].swap();
                faults_[i].swap();
                ASSERT_EQ(call(), faults_[i].status) << name << ": faults " << i << " and " << j;
                ASSERT_TRUE(intact()) << name << ": faults " << i << " and " << j;
                faults_[i].swap();
                if (j != i) faults_[j].swap();
            }
    }

    // The same of a call that knows its name.
    template <class Call, class Intact> void expect_order(const Call& call, Intact intact) {
        expect_order(
            call.m.name(), [&] { return call.run(); }, intact);
    }

private:
    struct Fault {
        ZetStatus status;
        std::function<void()> swap; // the argument and the bad one, to and fro
    };
    std::vector<Fault> faults_;
};

} // namespace test
