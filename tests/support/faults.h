// SPDX-License-Identifier: Apache-2.0
// The order of a call's argument checks: a list of faults, the first checked first, of which any two are made at a time.
#pragma once

#include <climits>

#include "tests/support/float_state.h"
#include "tests/support/member.h"

namespace test {

class Faults {
public:
    // An argument, or what it points to, that is `bad` in place of what it is.
    template <class A> Faults& add(ZetStatus status, A& argument, std::initializer_list<std::type_identity_t<A>> bad) {
        for (const A& other : bad) {
            const auto* const bytes = reinterpret_cast<const unsigned char*>(&other);
            // NOLINTNEXTLINE(bugprone-sizeof-expression): of a pointer, too
            faults_.push_back({status, reinterpret_cast<unsigned char*>(&argument), {bytes, bytes + sizeof(A)}});
        }
        return *this;
    }

    // What may be wrong with arguments of their kind: pointers, and those to planes; steps, which stand behind pointers and before a size.
    Faults& null(const Argument& pointer) { return add(zetStsNullPtrErr, pointer.as<void*>(), {nullptr}); }
    Faults& null(const Arguments& call, bool planes = true) {
        for (const Argument& a : call) {
            if (a.kind == Argument::pointer || a.kind == Argument::pointers) null(a);
            for (int p = 0; planes && a.kind == Argument::pointers && p < 4 && a.as<void**>()[p]; ++p)
                null({Argument::pointer, a.as<void**>() + p});
        }
        return *this;
    }
    Faults& step(const Arguments& call) {
        std::size_t end = call.size();
        while (call[end - 1].kind != Argument::size) --end;
        for (std::size_t i = 1; i < end; ++i)
            if (call[i].kind == Argument::integer && call[i - 1].kind <= Argument::pointers)
                add(zetStsStepErr, call[i].as<int>(), {0, -1, INT_MIN});
        return *this;
    }
    Faults& size(const Arguments& call, bool width = true, bool height = true) {
        for (const Argument& a : call) {
            if (a.kind != Argument::size) continue;
            if (width) add(zetStsSizeErr, a.as<ZetiSize>().width, {0, -1, INT_MIN});
            if (height) add(zetStsSizeErr, a.as<ZetiSize>().height, {0, -1, INT_MIN});
        }
        return *this;
    }

    // Of two faults the call reports the one that stands first, and nothing has changed. Denormals are no zeros to a check.
    template <class Call, class Intact> void expect_order(const std::string& name, Call call, Intact intact) const {
        for (std::size_t i = 0; i < faults_.size(); ++i)
            for (std::size_t j = i; j < faults_.size(); ++j) {
                faults_[j].swap(j != i), faults_[i].swap(true);
                ASSERT_EQ(under_state(0x9FC0, call), faults_[i].status) << name << ": faults " << i << " and " << j;
                ASSERT_TRUE(intact()) << name << ": faults " << i << " and " << j;
                faults_[i].swap(true), faults_[j].swap(j != i);
            }
    }

private:
    struct Fault {
        ZetStatus status;
        unsigned char* argument;
        mutable std::vector<unsigned char> other; // what it is not now
        void swap(bool really) const {
            if (really) std::swap_ranges(other.begin(), other.end(), argument);
        }
    };
    std::vector<Fault> faults_;
};

// The order of the checks of a call: list(faults, arguments) says it.
template <class Call, class List, class Intact> void check_order(Call call, List list, Intact intact) {
    int calls = 0;
    on_call = [&](const std::string& name, const Arguments& arguments, const auto& again) {
        ++calls;
        Faults faults;
        list(faults, arguments);
        faults.expect_order(name, again, intact);
    };
    call();
    on_call = nullptr;
    EXPECT_EQ(calls, 1) << "nothing was checked";
}

} // namespace test
