// SPDX-License-Identifier: Apache-2.0
#include "tests/support/member.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "zeti/zeti.h"

namespace test {

static Entry entries[] = {
#define ZETI_MEMBER(name) {#name, reinterpret_cast<void (*)()>(&name), &typeid(decltype(name)), false},
#include "members.inc" // sorted
#undef ZETI_MEMBER
};

Entry& entry(const std::string& name, const std::type_info& type) {
    Entry* const found = std::lower_bound(std::begin(entries), std::end(entries), name, [](auto& e, auto& n) { return e.name < n; });
    const bool exists = found != std::end(entries) && found->name == name;
    if (exists && *found->type == type) return *found;
    std::fprintf(stderr, "%s is %s, not %s\n", name.c_str(), exists ? found->type->name() : "no exported name", type.name());
    std::abort();
}

namespace {

struct Coverage : testing::Environment { // of whole runs only
    const std::filesystem::path folder = ZETI_COVERED, file = folder / (std::string(program_invocation_short_name) + ".txt");
    void SetUp() override {
        if (GTEST_FLAG_GET(filter) == "*") std::filesystem::remove(file);
    }
    void TearDown() override {
        if (GTEST_FLAG_GET(filter) != "*") return;
        std::filesystem::create_directories(folder);
        std::ofstream out(file);
        for (const Entry& e : entries)
            if (e.called) out << e.name << '\n';
    }
};
[[maybe_unused]] const auto* const coverage = testing::AddGlobalTestEnvironment(new Coverage);

} // namespace
} // namespace test
