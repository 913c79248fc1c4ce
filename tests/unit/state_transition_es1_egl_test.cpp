// Which calls the host gets, in which order, when one ES1 or EGL record is turned into another.
#include "host/os_environment.h"
#include "tests/unit/transition_fixture.h"
#include "transitions/egl_transition.h"
#include "transitions/es1_transition.h"

namespace kestrail {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using Es1Transition = StateTransition;

// Most of an ES1 transition is the same whatever the record holds; what a test is about stands
// between two calls of it.
Calls Between(const Calls& calls, const std::string& first, const std::string& last) {
    auto from = std::find(calls.begin(), calls.end(), first);
    auto to = std::find(from, calls.end(), last);
    EXPECT_NE(from, calls.end()) << first;
    EXPECT_NE(to, calls.end()) << last;
    return from == calls.end() ? Calls() : Calls(from + 1, to);
}

TEST_F(Es1Transition, UploadsByPlace) {
    const CSharedBytes pixels = Content("pixels", 16), block = Content("block", 8);
    const auto set = [&](CEs1State& state, std::uint32_t name, std::int32_t level) {
        STextureImage1State& image = state.WriteImage(name, static_cast<std::uint32_t>(level));
        image.name = name;
        image.level = level;
        image.format = 6408;
        image.internalFormat = 6407;
        image.type = 5121;
        image.width = image.height = 2;
        image.data = pixels;
    };
    CEs1State target;
    set(target, 4, 0);
    set(target, 5, 1);
    STextureImage1State& compressed = target.WriteImage(5, 1);
    compressed.compressed = 1;
    compressed.imageSize = 8;
    compressed.data = block;
    SetBuffer(target.buffers, 1, pixels, 16);
    m_es1Names.Textures().Set(4, 40);
    TransitionEs1State(target, nullptr);
    Calls calls = Take();
    calls.insert(calls.begin(), "start");
    EXPECT_THAT(
        Between(calls, "start", "glDisable(3008)"),
        ElementsAre("glBindTexture(3553,40)", "glTexImage2D(3553,0,6407,2,2,0,6408,5121,pixels)",
                    "glTexParameterf(3553,10241,9986)", "glTexParameterf(3553,10240,9729)",
                    "glTexParameterf(3553,10242,10497)", "glTexParameterf(3553,10243,10497)",
                    "glGenTextures(1,out)", "glBindTexture(3553,100)",
                    "glCompressedTexImage2D(3553,1,6407,2,2,0,8,block)", "glActiveTexture(33984)",
                    "glBindTexture(3553,0)", "glMultiTexCoord4f(33984,0,0,0,0)", "glDisable(3553)",
                    "glActiveTexture(33984)"));
    EXPECT_THAT(Between(calls, "glAlphaFunc(519,0)", "glBlendFunc(1,0)"),
                ElementsAre("glGenBuffers(1,out)", "glBindBuffer(34962,101)",
                            "glBufferData(34962,16,pixels,35044)", "glBindBuffer(34962,0)",
                            "glBindBuffer(34963,0)"));

    // The same places with the same names are left alone, whatever the images hold.
    CEs1State current = target;
    set(current, 5, 0);
    set(target, 5, 0);
    target.WriteImage(4, 0).data = block;
    TransitionEs1State(target, &current);
    calls = Take();
    EXPECT_EQ(calls.front(), "glActiveTexture(33984)");
    EXPECT_THAT(Between(calls, "glAlphaFunc(519,0)", "glBlendFunc(1,0)"),
                ElementsAre("glBindBuffer(34962,0)", "glBindBuffer(34963,0)"));
}

TEST_F(Es1Transition, ScalarStateInOrder) {
    CEs1State target;
    target.viewport = {1, 2, 3, 4};
    target.unpackAlignment = 2;
    m_host.answers[{"glGetIntegerv", 3378}] = 1;
    m_host.answers[{"glGetIntegerv", 3377}] = 100;
    m_es1Names.ViewportDirty() = false;
    TransitionEs1State(target, nullptr);
    Calls calls = Take();
    // Lights beyond those of the record are left alone.
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [](const std::string& c) { return c.starts_with("glLightfv("); }),
              80);
    std::erase_if(calls, [](const std::string& c) { return c.starts_with("glLightfv(1638"); });
    std::erase_if(calls, [](const std::string& c) { return c.starts_with("glLightfv(1639"); });
    EXPECT_THAT(
        Between(calls, "glBindBuffer(34963,0)", "glMatrixMode(5888)"),
        ElementsAre(
            "glBlendFunc(1,0)", "glClearColor(0,0,0,0)", "glClearDepthf(1)", "glClearStencil(0)",
            "glGetIntegerv(3378,out)", "glClipPlanef(12288,{0})", "glColor4f(1,1,1,1)",
            "glColorMask(1,1,1,1)", "glCullFace(1029)", "glDepthFunc(513)", "glDepthMask(1)",
            "glDepthRangef(0,1)", "glFogf(2917,2048)", "glFogf(2914,1)", "glFogf(2915,0)",
            "glFogf(2916,1)", "glFogfv(2918,{0})", "glFrontFace(2305)", "glHint(3156,4352)",
            "glHint(33170,4352)", "glHint(3154,4352)", "glHint(3152,4352)", "glHint(3153,4352)",
            "glLightModelf(2898,0)", "glLightModelfv(2899,{0.2})", "glGetIntegerv(3377,out)",
            "glLineWidth(1)", "glLogicOp(5379)", "glMaterialfv(1032,4608,{0.2})",
            "glMaterialfv(1032,4609,{0.8})", "glMaterialfv(1032,4610,{0})",
            "glMaterialfv(1032,5632,{0})", "glMaterialfv(1032,5633,{0})", "glActiveTexture(33984)",
            "glNormal3f(0,0,1)", "glPixelStorei(3333,4)", "glPixelStorei(3317,2)",
            "glPointParameterfv(33062,{0})", "glPointParameterfv(33063,{63.77})",
            "glPointParameterfv(33064,{1})", "glPointParameterfv(33065,{1})", "glPointSize(1)",
            "glPolygonOffset(0,0)", "glSampleCoverage(1,0)", "glScissor(0,0,0,0)",
            "glShadeModel(7425)", "glStencilFunc(519,0,268435455)", "glStencilMask(268435455)",
            "glStencilOp(0,0,0)", "glViewport(1,2,3,4)"));
    EXPECT_TRUE(m_es1Names.ViewportDirty());
    EXPECT_EQ(CEglNames{}.PixelStore().unpackAlignment, 2);

    for (const std::array<std::int32_t, 4>& box :
         {std::array{0, 0, 5, 5}, std::array{0, 0, 5, 0}, std::array{1, 1, 0, 5}}) {
        target.scissorBox = box;
        TransitionEs1State(target, nullptr);
        for (const std::string& call : Take()) EXPECT_FALSE(call.starts_with("glScissor"));
    }
}

TEST_F(Es1Transition, EmptiesAndFillsMatrixStacks) {
    RecordEs1Extensions(*GetEs1Host());
    CEs1State current, target;
    current.matrixStacks.Write(0).top = 2;
    current.matrixStacks.Write(42).top = 5;  // the last palette stack is not restored
    target.matrixStacks.Write(1).top = 1;
    target.matrixStacks.Write(41).top = 9999;  // no deeper than the record's levels
    target.matrixStacks.Write(1).WriteLevel(0)[0] = 5.0F;
    target.matrixStacks.Write(1).WriteLevel(1)[0] = 6.0F;
    target.paletteMatricesUsed = 1;
    target.paletteIndex = 3;
    target.matrixMode = 5889;
    TransitionEs1State(target, &current);
    const Calls calls = Take();
    Calls expected = {"glPopMatrix()",      "glPopMatrix()",      "glLoadMatrixf({1})",
                      "glMatrixMode(5889)", "glLoadMatrixf({5})", "glPushMatrix()",
                      "glLoadMatrixf({6})", "glMatrixMode(5890)", "glActiveTexture(33984)",
                      "glLoadMatrixf({1})"};
    // Units that were not used go through the stack of the last that was.
    expected.insert(expected.end(), 31, "glLoadMatrixf({1})");
    expected.insert(expected.end(), {"glMatrixMode(34880)", "glCurrentPaletteMatrixOES(0)"});
    expected.insert(expected.end(), 7, "glLoadMatrixf({1})");
    for (int level = 0; level < 19; ++level) {
        expected.insert(expected.end(), {"glLoadMatrixf({1})", "glPushMatrix()"});
    }
    expected.insert(expected.end(), {"glLoadMatrixf({1})", "glMatrixMode(5889)",
                                     "glCurrentPaletteMatrixOES(3)", "glActiveTexture(33984)"});
    EXPECT_THAT(Between(calls, "glMatrixMode(5888)", "glBindBuffer(34962,0)"),
                ElementsAreArray(expected));
}

TEST_F(Es1Transition, ClientArraysAndFramebuffers) {
    RecordEs1Extensions(*GetEs1Host());
    m_es1Names.Buffers().Set(3, 30);
    m_es1Names.Textures().Set(7, 70);
    CEs1State target;
    SClientArraysState& arrays = target.vertexArrays.Write().GetOrCreate(4).Write();
    arrays.color = {3, 4, 5121, 8, 16};
    arrays.vertex = {0, 3, 5126, 12, 32};
    arrays.normal = {0, 0, 5120, 3, 48};
    arrays.texCoords[0] = {3, 2, 5126, 8, 64};
    arrays.texCoordEnabled[0] = 1;
    arrays.enabled[2] = 1;
    arrays.elementBuffer = 3;
    target.currentVertexArray = 4;
    target.arrayBuffer = 3;
    target.textureUnitsUsed = 2;
    target.renderbuffers.Write().GetOrCreate(1) = {1, 1, 8, 9, 33189, 0};
    SFramebufferState& framebuffer = target.framebuffers.Write().GetOrCreate(2);
    framebuffer.everBound = 1;
    framebuffer.colors.Write() = {{7, 1, 0, 5890}};
    framebuffer.depth = {1, 0, 0, 36161};
    target.boundFramebuffer = 2;
    target.boundRenderbuffer = 6;
    TransitionEs1State(target, nullptr);
    Calls calls = Take();
    calls.push_back("end");
    EXPECT_THAT(
        Between(calls, "glGenVertexArraysOES(1,out)", "end"),
        ElementsAre(
            "glBindVertexArrayOES(100)", "glBindBuffer(34962,30)", "glColorPointer(4,5121,8,@16)",
            "glBindBuffer(34962,0)", "glVertexPointer(3,5126,12,@32)", "glBindBuffer(34962,0)",
            "glNormalPointer(5120,3,@48)", "glBindBuffer(34962,0)",
            "glPointSizePointerOES(0,0,null)", "glBindBuffer(34962,0)",
            "glMatrixIndexPointerOES(0,0,0,null)", "glBindBuffer(34962,0)",
            "glWeightPointerOES(0,0,0,null)", "glClientActiveTexture(33984)",
            "glBindBuffer(34962,30)", "glTexCoordPointer(2,5126,8,@64)",
            "glEnableClientState(32888)", "glClientActiveTexture(33985)",
            "glDisableClientState(32888)", "glDisableClientState(32886)",
            "glDisableClientState(32885)", "glEnableClientState(32884)",
            "glDisableClientState(35740)", "glDisableClientState(34884)",
            "glDisableClientState(34477)", "glBindBuffer(34962,3)", "glBindBuffer(34963,3)",
            "glBindVertexArrayOES(100)", "glClientActiveTexture(33984)",
            "glGenRenderbuffersOES(1,out)", "glBindRenderbufferOES(36161,101)",
            "glRenderbufferStorageOES(36161,33189,8,9)", "glGenFramebuffersOES(1,out)",
            "glBindFramebufferOES(36160,102)", "glFramebufferTexture2DOES(36160,36064,3553,70,1)",
            "glFramebufferRenderbufferOES(36160,36096,36161,1)",
            "glCheckFramebufferStatusOES(36160)", "glBindFramebufferOES(36160,102)"));
    EXPECT_EQ((*target.vertexArrays->Find(4))->name, 100u);
    m_es1Names.Framebuffers().Erase(2);
    m_es1Names.Renderbuffers().Erase(1);
}

NativeDisplay NoDisplay() {
    return NativeDisplay{};
}
NativeWindow FirstWindow(std::int32_t, std::int32_t, const char*, NativeDisplay) {
    return NativeWindow{9};
}

class EglTransition : public StateTransition {
protected:
    void SetUp() override {
        StateTransition::SetUp();
        // Windows and displays are those of the process: made here, no screen is asked for them.
        COsEnvironment environment;
        environment.createDisplay = &NoDisplay;
        environment.createWindow = &FirstWindow;
        environment.GetDisplay(kNative);
        environment.GetWindow(0, 0, 0, NativeDisplay{});

        SEglDisplayRecord& display = m_state.displays.GetOrCreate(500);
        display.nativeDisplay = kNative;
        display.initialised = 1;
        SEglSurfaceRecord& surface = m_state.surfaces.GetOrCreate(600);
        surface.display = 500;
        surface.config = 1;
        surface.configAttributes.Write() = {12339, 4, EGL_NONE};
        surface.width = 320;
        surface.height = 240;
        SEglContextRecord& context = m_state.contexts.GetOrCreate(700);
        context.display = 500;
        context.config = 2;
        context.shareContext = 701;
        context.attributes.Write() = {12440, 2, EGL_NONE};
        m_state.currentDisplay = 500;
        m_state.currentContext = 700;
        m_state.currentDrawSurface = 600;
        m_state.boundApi = 12448;
    }
    void TearDown() override {
        CEglState nothing;
        TransitionEglState(nothing, 1, m_state);
        StateTransition::TearDown();
    }

    static constexpr std::uint32_t kNative = 4711;
    CEglState m_state;
};

TEST_F(EglTransition, MakesAndDestroysWhatDiffers) {
    m_host.answers[{"eglQuerySurface", EGL_WIDTH}] = 800;
    m_host.answers[{"eglQuerySurface", EGL_HEIGHT}] = 1;
    CEglState nothing;
    CEglState target = m_state;
    TransitionEglState(target, 1, nothing);
    Calls calls = Take();
    ASSERT_THAT(calls.front(), HasSubstr("eglGetDisplay("));
    calls.erase(calls.begin());
    // Sizes: EGL_WIDTH is 12375, EGL_HEIGHT is 12374.
    EXPECT_THAT(
        calls,
        ElementsAre("eglInitialize(@100,out,out)", "eglBindAPI(12448)", "eglChooseConfig({12339})",
                    "eglCreateWindowSurface(@100,@55,9,null)",
                    "eglQuerySurface(@100,@101,12375,out)", "eglQuerySurface(@100,@101,12374,out)",
                    "eglChooseConfig({12440})", "eglCreateContext(@100,@55,@701,{12440})",
                    "eglMakeCurrent(@100,@101,@101,@102)", "eglQuerySurface(@100,@101,12375,out)",
                    "eglQuerySurface(@100,@101,12374,out)"));
    std::int32_t size[4] = {-1, -1, -1, -1};
    EGLDisplay owner = EGL_NO_DISPLAY;
    CEglNames{}.SurfaceGeometry(size[0], size[1], size[2], size[3], owner);
    EXPECT_THAT(size, ElementsAre(800, 1, 320, 240));

    TransitionEglState(target, 1, m_state);
    EXPECT_EQ(m_host.calls, Calls(10, "eglGetError()"));
    Take();

    target = CEglState();
    target.currentDisplay = 100;
    TransitionEglState(target, 1, m_state);
    EXPECT_THAT(Take(),
                ElementsAre("eglDestroySurface(@100,@101)", "eglMakeCurrent(@100,null,null,null)",
                            "eglDestroyContext(@100,@102)", "eglTerminate(@100)"));
    EXPECT_EQ(target.currentDisplay, 0u);
    EXPECT_EQ(CEglNames{}.GetDisplay(500), EGL_NO_DISPLAY);
}

TEST_F(EglTransition, SurfaceOfAnotherConfigurationTakesTheHandleAndIsDestroyed) {
    CEglState first = m_state;
    TransitionEglState(first, 1, CEglState());
    Take();
    CEglState target = m_state;
    target.surfaces.GetOrCreate(600).config = 8;
    target.displays.GetOrCreate(500).initialised = 0;
    TransitionEglState(target, 1, m_state);
    EXPECT_THAT(
        Take(),
        ElementsAre("eglChooseConfig({12339})", "eglCreateWindowSurface(@100,@55,9,null)",
                    "eglQuerySurface(@100,@103,12375,out)", "eglQuerySurface(@100,@103,12374,out)",
                    "eglDestroySurface(@100,@103)"));
    EXPECT_EQ(CEglNames{}.GetSurface(CEglNames{}.GetDisplay(500), 600), EGL_NO_SURFACE);

    // Initialised now, and not before.
    CEglState uninitialised = target;
    CEglState again = m_state;
    again.surfaces = uninitialised.surfaces;
    TransitionEglState(again, 1, uninitialised);
    EXPECT_THAT(Take(), ElementsAre("eglInitialize(@100,out,out)", "eglBindAPI(12448)"));
}

}  // namespace
}  // namespace kestrail
