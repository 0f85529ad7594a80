// SPDX-License-Identifier: Apache-2.0
// Exported functions by name. A call through member<...>(name) counts as a test of that name; every test program leaves
// the list of names it called behind, and the test `coverage` reports the names that none has called.
#pragma once

#include <atomic>
#include <string>
#include <typeinfo>

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

// Arguments of exactly the types of the parameters.
template <class... A> ZetStatus call_member(const std::string& name, A... arguments) { return member<ZetStatus(A...)>(name)(arguments...); }

} // namespace test
