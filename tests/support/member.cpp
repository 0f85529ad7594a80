// SPDX-License-Identifier: Apache-2.0
#include "tests/support/member.h"

#include <gtest/gtest.h>

#include <cstring>
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
    Entry* found = std::lower_bound(std::begin(entries), std::end(entries), name, [](const Entry& e, const std::string& n) { return e.name < n; });
    const bool exists = found != std::end(entries) && found->name == name;
    if (exists && *found->type == type) return *found;
    std::fprintf(stderr, "%s is %s, not %s\n", name.c_str(), exists ? found->type->name() : "no exported name", type.name());
    std::abort();
}

namespace {

class Coverage : public testing::Environment {
    const std::filesystem::path file = std::filesystem::path(ZETI_COVERED) / (std::string(program_invocation_short_name) + ".txt");
    static bool whole_run() { return GTEST_FLAG_GET(filter) == "*"; }
    void SetUp() override {
        if (whole_run()) std::filesystem::remove(file);
    }
    void TearDown() override {
        if (!whole_run()) return;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream out(file);
        for (const Entry& e : entries)
            if (e.called) out << e.name << '\n';
    }
};
[[maybe_unused]] const auto* const coverage = testing::AddGlobalTestEnvironment(new Coverage);

} // namespace
} // namespace test
