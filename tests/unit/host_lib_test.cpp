#include "host/host_lib.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/output.h"
#include "host/extension_entries.h"
#include "host/trace_scoped_ptr.h"

namespace kestrail {
namespace {

// A library that every system has and that holds none of the graphics entry points.
constexpr const char* kSystemLibrary = "libm.so.6";

std::string Printed(const std::function<void()>& action) {
    testing::internal::CaptureStdout();
    action();
    output::Flush();
    return testing::internal::GetCapturedStdout();
}

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
    int (*kestrailNowhere)(int, float);
    double (*ceil)(double);
};

constexpr SEntryPlace kTestEntries[] = {
    {"floor", offsetof(STestEntries, floor)},
    {"kestrailNowhere", offsetof(STestEntries, kestrailNowhere)},
    {"ceil", offsetof(STestEntries, ceil)},
};

struct STestHost : SHostLib, STestEntries {
    STestHost() : SHostLib(kSystemLibrary), STestEntries{} {}
    void Resolve(bool allowMissing) {
        optional = allowMissing;
        ResolveEntries(static_cast<STestEntries*>(this), kTestEntries);
        optional = false;
    }
    void Close() { UnloadEntries(static_cast<STestEntries*>(this), kTestEntries); }
    void UseLostCode(EntryAddress address) {
        SetEntry(static_cast<STestEntries*>(this), kTestEntries[0], address);
    }
};

TEST(HostLib, ANameIsTriedInFourForms) {
    const std::string printed = Printed([] {
        EXPECT_EQ(ReasonOf([] { SHostLib library("libkestrail-none.soX"); }),
                  CHostLibException::kLoadFailed);
    });
    std::size_t at = 0;
    for (const char* name : {"libkestrail-none.soX", "./libkestrail-none.soX",
                             "libkestrail-none.so", "./libkestrail-none.so"}) {
        at = printed.find("KESTRAIL(W) ERROR: dlopen failed with error: ", at);
        ASSERT_NE(at, std::string::npos) << printed;
        const std::size_t end = printed.find('\n', at);
        const std::string line = printed.substr(at, end - at);
        EXPECT_EQ(line.substr(line.rfind(" => ")), std::string(" => ") + name);
        at = end;
    }
    EXPECT_EQ(printed.substr(at + 1),
              "KESTRAIL(M) Could not load Host library.... libkestrail-none.soX. Path: "
              "libkestrail-none.soX Missing dll/so?\n"
              "KESTRAIL(M) Exception ERROR__LOADLIBFAILD ...\n");
}

TEST(HostLib, AStrayLastCharacterIsDropped) {
    const std::string path = std::string(kSystemLibrary) + ";";
    const std::string printed = Printed([&] {
        SHostLib library(path.c_str());
        EXPECT_FALSE(library.Failed());
        EXPECT_NE(library.GetProcAddress("floor"), nullptr);
    });
    const std::string_view ending = "\nKESTRAIL(M) Host Library Loaded: libm.so.6;\n";
    ASSERT_GT(printed.size(), ending.size());
    EXPECT_EQ(printed.substr(printed.size() - ending.size()), ending);
    EXPECT_NE(printed.find(" => ./libm.so.6;\n"), std::string::npos);
}

TEST(HostLib, TheWorkingFolderIsSearchedToo) {
    const std::string name = "kestrail_local_" + std::to_string(getpid()) + ".so";
    Dl_info loaded;
    void* library = dlopen(kSystemLibrary, RTLD_LAZY);
    ASSERT_NE(dladdr(dlsym(library, "floor"), &loaded), 0);
    std::filesystem::create_symlink(loaded.dli_fname, name);
    const std::string printed = Printed([&] { SHostLib local(name.c_str()); });
    std::filesystem::remove(name);
    EXPECT_NE(printed.find("dlopen failed with error: "), std::string::npos);
    EXPECT_NE(printed.find("KESTRAIL(M) dlopen loaded (MOD PATH) ./" + name +
                           "\nKESTRAIL(M) Host Library Loaded: " + name + "\n"),
              std::string::npos)
        << printed;
}

TEST(HostLib, ANameOfAnyLengthFails) {
    for (const std::size_t length : {2U, 252U, 253U, 254U, 255U, 256U, 5000U}) {
        const std::string name(length, 'q');
        Printed([&] { EXPECT_EQ(ReasonOf([&] { SHostLib library(name.c_str()); }), 1) << length; });
    }
}

TEST(HostLib, WhatIsMissingThrowsWhenCalled) {
    const std::string printed = Printed([] {
        STestHost host;
        host.Resolve(false);
        EXPECT_TRUE(host.Failed());
        EXPECT_EQ(host.floor(2.5), 2.0);
        EXPECT_EQ(host.ceil(2.5), 3.0);
        EXPECT_EQ(ReasonOf([&] { host.kestrailNowhere(1, 2.0F); }), 1);
        // What is optional is neither counted nor reported.
        STestHost lenient;
        lenient.Resolve(true);
        EXPECT_FALSE(lenient.Failed());
        EXPECT_EQ(lenient.kestrailNowhere, nullptr);
    });
    EXPECT_EQ(printed,
              "KESTRAIL(M) Host Library Loaded: libm.so.6\n"
              "KESTRAIL(M) Error loading library kestrailNowhere\n"
              "KESTRAIL(M) Host Library Loaded: libm.so.6\n");
}

TEST(HostLib, ClosingKeepsOnlyEntriesWhoseCodeStays) {
    Printed([] {
        STestHost host;
        host.Resolve(false);
        // An address in no library, as if its library were gone.
        const auto heap = std::make_unique<char>();
        const char* block = heap.get();
        EntryAddress lost = nullptr;
        std::memcpy(&lost, &block, sizeof lost);
        host.UseLostCode(lost);
        host.Close();
        EXPECT_EQ(host.GetProcAddress("ceil"), nullptr);
        // This program itself keeps the library loaded.
        EXPECT_EQ(host.ceil(2.5), 3.0);
        EXPECT_EQ(ReasonOf([&] { host.floor(2.5); }), 1);
        EXPECT_EQ(ReasonOf([&] { host.kestrailNowhere(1, 2.0F); }), 1);
    });
}

TEST(HostTables, ExtensionsHaveDistinctPlaces) {
    std::vector<int> uses(sizeof(SExtensionEntries) / sizeof(EntryAddress));
    std::size_t es1 = 0;
    std::size_t es2 = 0;
    for (const SExtension& extension : Extensions()) {
        for (const SEntryPlace& place : extension.entries) ++uses[place.offset / sizeof(void*)];
        es1 += extension.es1 ? extension.entries.size() : 0;
        es2 += extension.es2 ? extension.entries.size() : 0;
    }
    EXPECT_EQ(uses, std::vector<int>(uses.size(), 1));
    EXPECT_EQ(es1, 29U);
    EXPECT_EQ(es2, 12U);
}

TEST(TraceScopedPtr, ReportsBeingEmptyAndOwnsItsObject) {
    static int alive = 0;
    struct SObject {
        SObject() { ++alive; }
        ~SObject() { --alive; }
    };
    TraceScopedPtr<SObject> holder;
    EXPECT_EQ(Printed([&] { EXPECT_EQ(holder.Get(), nullptr); }),
              "Error refering empty TraceScopedPtr\n");
    holder.Reset(std::make_unique<SObject>());
    holder.Reset(std::make_unique<SObject>());
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(Printed([&] { EXPECT_NE(holder.Get(), nullptr); }), "");
    holder.Clear();
    EXPECT_EQ(alive, 0);
    EXPECT_FALSE(holder);
}

}  // namespace
}  // namespace kestrail
