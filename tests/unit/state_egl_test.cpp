#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "calls/model/factories.h"
#include "state/egl/egl_state.h"
#include "tests/unit/unit_support.h"

namespace kestrail {
namespace {

constexpr std::int32_t kNone = 0x3038;

/// Applies one recorded EGL call.
bool Apply(CEglState& state, std::uint16_t id, const CRecordBuilder& record,
           std::uint32_t version = 14) {
    CRecordStream stream(record, version);
    const std::unique_ptr<CApiCall> call = CreateEglCall(id, stream.Trace());
    return static_cast<CEglCall&>(*call).UpdateState(state);
}

CRecordBuilder Egl() {
    return CTraceBuilder().Egl();
}

bool CreateContext(CEglState& state, std::uint32_t context, std::vector<std::int64_t> attributes,
                   std::uint32_t share = 0) {
    return Apply(state, 1003,
                 Egl()
                     .Context(context)
                     .Display(1)
                     .Config(7)
                     .Context(share)
                     .Attributes(attributes)
                     .Attributes({0x3020, 24, kNone}));
}

TEST(StateEgl, DisplaysAreFilledAndForgottenTogether) {
    CEglState state;
    EXPECT_TRUE(Apply(state, 1014, Egl().Display(1).Value(tag::EglNativeDisplay, 77)));
    EXPECT_TRUE(Apply(state, 1014, Egl().Display(2).Value(tag::EglNativeDisplay, 0)));
    EXPECT_TRUE(
        Apply(state, 1017, Egl().EglBoolean(true).Display(2).ArrayHead(0, 0).ArrayHead(0, 0)));
    EXPECT_TRUE(Apply(state, 1029, Egl().EglBoolean(true).Display(2).EglInt(0)));
    // The same display once more keeps what was set.
    EXPECT_TRUE(Apply(state, 1014, Egl().Display(2).Value(tag::EglNativeDisplay, 5)));

    ASSERT_EQ(state.displays.Count(), 2u);
    EXPECT_EQ(state.displays.At(0).nativeDisplay, 77u);
    EXPECT_EQ(state.displays.At(0).initialised, 0);
    EXPECT_EQ(state.displays.At(0).swapInterval, 1);
    EXPECT_EQ(state.displays.At(1).nativeDisplay, 5u);
    EXPECT_EQ(state.displays.At(1).initialised, 1);
    EXPECT_EQ(state.displays.At(1).swapInterval, 0);

    EXPECT_FALSE(Apply(state, 1014, Egl().Display(0).Value(tag::EglNativeDisplay, 5)));
    EXPECT_EQ(state.displays.Count(), 2u);

    CreateContext(state, 30, {kNone});
    const CEglState before = state;
    EXPECT_TRUE(Apply(state, 1023, Egl().EglBoolean(true).Display(1)));
    EXPECT_EQ(state.displays.Count(), 0u);
    EXPECT_EQ(state.contexts.Count(), 0u);
    EXPECT_EQ(before.displays.Count(), 2u);
}

TEST(StateEgl, ContextsKeepTheirListsAndTheVersion) {
    CEglState state;
    EXPECT_TRUE(CreateContext(state, 30, {12440, 2, 0x3100, 0x3101, 12440, 3, kNone}));
    EXPECT_EQ(state.contextClientVersion, 3u);
    EXPECT_TRUE(CreateContext(state, 31, {}, 30));
    EXPECT_EQ(state.contextClientVersion, 3u);
    // Nothing behind the end mark counts; a list without one ends with the record.
    EXPECT_TRUE(CreateContext(state, 32, {kNone, 0, 12440, 1}));
    EXPECT_EQ(state.contextClientVersion, 3u);
    EXPECT_TRUE(CreateContext(state, 33, {12440, 1, 12440}));
    EXPECT_EQ(state.contextClientVersion, 1u);

    ASSERT_EQ(state.contexts.Count(), 4u);
    const SEglContextRecord& first = state.contexts.At(0);
    EXPECT_EQ(first.display, 1u);
    EXPECT_EQ(first.config, 7u);
    EXPECT_EQ(*first.attributes, (SEglAttributes{12440, 2, 0x3100, 0x3101, 12440, 3, kNone}));
    EXPECT_EQ(*first.configAttributes, (SEglAttributes{0x3020, 24, kNone}));
    EXPECT_TRUE(state.contexts.At(1).attributes->empty());
    EXPECT_EQ(state.contexts.At(1).shareContext, 30u);
    EXPECT_EQ(*state.contexts.At(2).attributes, (SEglAttributes{kNone}));

    EXPECT_TRUE(Apply(state, 1007, Egl().EglBoolean(true).Display(1).Context(30)));
    EXPECT_TRUE(Apply(state, 1007, Egl().EglBoolean(true).Display(1).Context(99)));
    EXPECT_EQ(state.contexts.Find(30), nullptr);
    EXPECT_EQ(state.contexts.Count(), 3u);
}

TEST(StateEgl, SurfacesAndWhatIsCurrent) {
    CEglState state;
    EXPECT_TRUE(Apply(state, 1006,
                      Egl()
                          .Surface(40)
                          .Display(1)
                          .Config(7)
                          .Window(0x55, 320, 200)
                          .Attributes({0x3086, 0x3084, kNone})
                          .Attributes({kNone})));
    const CEglState before = state;
    ASSERT_NE(state.surfaces.Find(40), nullptr);
    const SEglSurfaceRecord& surface = *state.surfaces.Find(40);
    EXPECT_EQ(surface.width, 320);
    EXPECT_EQ(surface.height, 200);
    EXPECT_EQ(surface.window.handle.GetValue(), 0x55u);
    EXPECT_EQ(*surface.attributes, (SEglAttributes{0x3086, 0x3084, kNone}));
    EXPECT_EQ(*surface.configAttributes, (SEglAttributes{kNone}));

    EXPECT_TRUE(Apply(
        state, 1018,
        Egl().EglBoolean(true).Display(1).Surface(40).Surface(41).Context(30).Config(7).Attributes(
            {kNone})));
    EXPECT_TRUE(Apply(state, 1030, Egl().EglBoolean(true).EglEnum(0x30A0)));
    EXPECT_EQ(state.currentDisplay, 1u);
    EXPECT_EQ(state.currentDrawSurface, 40u);
    EXPECT_EQ(state.currentReadSurface, 41u);
    EXPECT_EQ(state.currentContext, 30u);
    EXPECT_EQ(state.boundApi, 0x30A0u);
    // The older form of the call leaves the record alone.
    EXPECT_FALSE(Apply(
        state, 1018,
        CTraceBuilder(8).Egl().EglBoolean(true).Display(9).Surface(9).Surface(9).Context(9), 8));
    EXPECT_EQ(state.currentContext, 30u);

    EXPECT_TRUE(Apply(state, 1008, Egl().EglBoolean(true).Display(1).Surface(40)));
    EXPECT_EQ(state.surfaces.Count(), 0u);
    EXPECT_NE(before.surfaces.Find(40), nullptr);
}

}  // namespace
}  // namespace kestrail
