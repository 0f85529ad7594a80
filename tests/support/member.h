// SPDX-License-Identifier: Apache-2.0
// Exported functions by name. A call through member<...>(name) counts as a test of that name; every test program leaves
// the list of names it called behind, and the test `coverage` reports the names that none has called.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "zeti/zeti.h"

namespace test {

struct Entry {
    const char* name;
    void (*function)();
    const std::type_info* type;
    std::atomic<bool> called;
};
Entry& entry(const std::string& name, const std::type_info& type); // ends the program when the name or its type is not that

template <class Signature> struct Member {
    Entry& entry;
    template <class... A> auto operator()(A... arguments) const {
        entry.called.store(true, std::memory_order_relaxed);
        return reinterpret_cast<Signature*>(entry.function)(arguments...);
    }
};

template <class Signature> Member<Signature> member(const std::string& name) { return {entry(name, typeid(Signature))}; }

struct Argument { // of a call that is about to be made
    enum Kind { pointer, pointers, integer, size, other } kind;
    void* at;
    template <class A> A& as() const { return *static_cast<A*>(at); }
};
using Arguments = std::vector<Argument>;
template <class A> Argument argument(A& a) {
    using To = std::remove_const_t<std::remove_pointer_t<A>>;
    return {std::is_pointer_v<To>         ? Argument::pointers
            : std::is_pointer_v<A>        ? Argument::pointer
            : std::is_same_v<A, int>      ? Argument::integer
            : std::is_same_v<A, ZetiSize> ? Argument::size
                                          : Argument::other,
            &a};
}

// Where it is set, it is given each call instead: the name, the arguments, and the call as often as it wants it.
inline std::function<void(const std::string&, const Arguments&, const std::function<ZetStatus()>&)> on_call;

// Arguments of exactly the types of the parameters.
template <class... A> ZetStatus call_member(const std::string& name, A... arguments) {
    const auto call = [&] { return member<ZetStatus(A...)>(name)(arguments...); };
    if (!on_call) return call();
    on_call(name, {argument(arguments)...}, call);
    return zetStsNoErr;
}

} // namespace test
