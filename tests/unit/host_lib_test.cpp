#include "host/host_lib.h"

#include <cstring>
#include <functional>
#include <memory>
#include <regex>

#include "host/trace_scoped_ptr.h"
#include "tests/unit/unit_support.h"

namespace kestrail {
namespace {

// A library that every system has and that holds none of the graphics entry points.
constexpr const char* kSystemLibrary = "libm.so.6";

int ReasonOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const CHostLibException& exception) {
        return exception.reason;
    }
    return 0;
}

struct STestEntries {
    double (*floor)(double);
    int (*nowhere)(int, float);
    double (*ceil)(double);
};

constexpr SEntryPlace kTestEntries[] = {{"floor", offsetof(STestEntries, floor)},
                                        {"nowhere", offsetof(STestEntries, nowhere)},
                                        {"ceil", offsetof(STestEntries, ceil)}};

struct STestHost : SHostLib, STestEntries {
    STestHost() : SHostLib(kSystemLibrary), STestEntries{} {}
    void Resolve(bool allowMissing) {
        optional = allowMissing;
        ResolveEntries(static_cast<STestEntries*>(this), kTestEntries);
        optional = false;
    }
    void Close() { UnloadEntries(static_cast<STestEntries*>(this), kTestEntries); }
    /// An address in no library, as if its library were gone.
    void LoseFloor(const char* block) {
        EntryAddress lost = nullptr;
        std::memcpy(&lost, &block, sizeof lost);
        SetEntry(static_cast<STestEntries*>(this), kTestEntries[0], lost);
    }
};

TEST(HostLib, ANameIsTriedInFourForms) {
    const auto load = [](const std::string& name) {
        return ReasonOf([&name] { SHostLib library(name.c_str()); });
    };
    const auto told = [&](const std::string& name, int reason) {
        const std::string printed = Printed([&] { EXPECT_EQ(load(name), reason); });
        return std::regex_replace(printed, std::regex("error: .* => "), "");
    };
    EXPECT_EQ(told("libm.so.6;", 0),
              "KESTRAIL(W) ERROR: dlopen failed with libm.so.6;\n"
              "KESTRAIL(W) ERROR: dlopen failed with ./libm.so.6;\n"
              "KESTRAIL(M) Host Library Loaded: libm.so.6;\n");
    for (const std::size_t length : {2U, 252U, 253U, 254U, 255U, 256U, 5000U}) {
        told(std::string(length, 'q'), 1);
    }
}

TEST(HostLib, WhatIsMissingThrowsWhenCalled) {
    const std::string printed = Printed([] {
        STestHost host;
        host.Resolve(false);
        EXPECT_TRUE(host.Failed());
        EXPECT_EQ(host.floor(2.5), 2.0);
        EXPECT_EQ(host.ceil(2.5), 3.0);
        EXPECT_EQ(ReasonOf([&] { host.nowhere(1, 2.0F); }), 1);
        const auto block = std::make_unique<char>();
        host.LoseFloor(block.get());
        host.Close();
        // This program itself keeps the library loaded.
        EXPECT_EQ(host.ceil(2.5), 3.0);
        EXPECT_EQ(ReasonOf([&] { host.floor(2.5); }), 1);
        EXPECT_EQ(ReasonOf([&] { host.nowhere(1, 2.0F); }), 1);
        EXPECT_EQ(host.GetProcAddress("ceil"), nullptr);
        // What is optional is neither counted nor reported.
        STestHost lenient;
        lenient.Resolve(true);
        EXPECT_FALSE(lenient.Failed());
        EXPECT_EQ(lenient.nowhere, nullptr);
    });
    EXPECT_EQ(printed,
              "KESTRAIL(M) Host Library Loaded: libm.so.6\n"
              "KESTRAIL(M) Error loading library nowhere\n"
              "KESTRAIL(M) Host Library Loaded: libm.so.6\n");
}

TEST(TraceScopedPtr, ReportsBeingEmptyAndOwnsItsObject) {
    using Object = std::shared_ptr<int>;
    const Object counted = std::make_shared<int>();
    TraceScopedPtr<Object> holder;
    EXPECT_EQ(Printed([&] { EXPECT_EQ(holder.Get(), nullptr); }),
              "Error refering empty TraceScopedPtr\n");
    holder.Reset(std::make_unique<Object>(counted));
    holder.Reset(std::make_unique<Object>(counted));
    EXPECT_EQ(counted.use_count(), 2);
    EXPECT_EQ(Printed([&] { EXPECT_NE(holder.Get(), nullptr); }), "");
    holder.Clear();
    EXPECT_EQ(counted.use_count(), 1);
    EXPECT_FALSE(holder);
}

}  // namespace
}  // namespace kestrail
