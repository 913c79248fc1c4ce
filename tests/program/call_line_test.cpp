#include "tests/program/program_test.h"

namespace kestrail {
namespace {

/// What stands between the call's number and the end of its line.
std::string Tail(const std::string& line) {
    const std::size_t call = line.find(" Call:");
    const std::size_t name = line.find(' ', call + 1);
    return name == std::string::npos ? line : line.substr(name + 1);
}

struct SLineCase {
    std::uint16_t id;
    CRecordBuilder record;
    std::string tail;
};

void ExpectTails(const std::vector<SLineCase>& cases) {
    CTraceBuilder trace;
    for (const SLineCase& one : cases) trace.Add(one.id, one.record);
    for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
        const SRunResult run = RunTrace(trace, arguments);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        const Lines lines = run.CallLines();
        ASSERT_EQ(lines.size(), cases.size()) << run.out;
        for (std::size_t i = 0; i < cases.size(); ++i) {
            EXPECT_EQ(Tail(lines[i]), cases[i].tail) << cases[i].id;
        }
    }
}

TEST(CallLine, ScalarsPrintByTheirClass) {
    const CTraceBuilder t;
    const std::string ok = " =>  :: Error: GL_NO_ERROR ";
    ExpectTails({
        {2001, t.Gl().Enum(33984), "glActiveTexture  (GL_TEXTURE0 , )" + ok},
        {2001, t.Gl().Enum(0), "glActiveTexture  (GL_NONE , )" + ok},
        {2001, t.Gl().Enum(1), "glActiveTexture  (1 , )" + ok},
        {2001, t.Gl().Enum(0xFFFFFFFFU), "glActiveTexture  (4294967295 , )" + ok},
        {2011, t.Gl().Enum(0).Enum(1), "glBlendFunc  (GL_ZERO , GL_ONE , )" + ok},
        {2011, t.Gl().Enum(768).Enum(776),
         "glBlendFunc  (GL_SRC_COLOR , GL_SRC_ALPHA_SATURATE , )" + ok},
        {2011, t.Gl().Enum(777).Enum(2), "glBlendFunc  (777 , 2 , )" + ok},
        {2016, t.Gl().Bitfield(0x4100),
         "glClear  (GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT , )" + ok},
        {2016, t.Gl().Bitfield(0x4501),
         "glClear  (GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT | GL_COLOR_BUFFER_BIT | 0X1 , )" +
             ok},
        {2016, t.Gl().Bitfield(1), "glClear  (0X1 , )" + ok},
        {2016, t.Gl().Bitfield(0), "glClear  (0 , )" + ok},
        {2017, t.Gl().Clampf(0.5F).Clampf(-1.0F).Clampf(1e10F).Clampf(0.0F),
         "glClearColor  (0.500000 , -1.000000 , 10000000000.000000 , 0.000000 , )" + ok},
        {2020,
         t.Gl()
             .Value(tag::Boolean, 0)
             .Value(tag::Boolean, 1)
             .Value(tag::Boolean, 2)
             .Value(tag::Boolean, 255),
         "glColorMask  (GL_FALSE , GL_TRUE , 2 , 255 , )" + ok},
        {2019, t.Gl().Int(-7), "glClearStencil  (-7 , )" + ok},
        {2103, t.Gl().Enum(1029).Uint(0xFFFFFFFFU),
         "glStencilMaskSeparate  (GL_BACK , 4294967295 , )" + ok},
        {2141, t.Gl().Uint(1).Int(3).Enum(5126).Boolean(false).Sizei(12).Pointer(0xABCD),
         "glVertexAttribPointer  (1 , 3 , GL_FLOAT , GL_FALSE , 12 , 0xabcd , )" + ok},
        {2141, t.Gl().Uint(1).Int(3).Enum(5126).Boolean(true).Sizei(0).Pointer(0),
         "glVertexAttribPointer  (1 , 3 , GL_FLOAT , GL_TRUE , 0 , NULL , )" + ok},
        {3003, t.Gl().Enum(519).Clampx(0x8000), "glAlphaFuncx  (GL_ALWAYS , 0.500000 , )" + ok},
        {3020, t.Gl().Fixed(65536).Fixed(-32768).Fixed(0).Fixed(1),
         "glColor4x  (1.000000 , -0.500000 , 0.000000 , 0.000015 , )" + ok},
        {3019, t.Gl().Ubyte(1).Ubyte(2).Ubyte(254).Ubyte(255),
         "glColor4ub  (1 , 2 , 254 , 255 , )" + ok},
        {2045, t.Gl(), "glFinish  => " + std::string(" :: Error: GL_NO_ERROR ")},
        {4012, t.Ext(0, 3), "glLoadPaletteFromModelViewMatrixOES  =>  :: Error: GL_NO_ERROR "},
    });
}

TEST(CallLine, ErrorsAndReturnValuesPrintByTheirClass) {
    const CTraceBuilder t;
    ExpectTails({
        {2016, t.Gl(1280).Bitfield(0), "glClear  (0 , ) =>  :: Error: GL_INVALID_ENUM "},
        {2016, t.Gl(1285).Bitfield(0), "glClear  (0 , ) =>  :: Error: GL_OUT_OF_MEMORY "},
        {2016, t.Gl(1286).Bitfield(0), "glClear  (0 , ) =>  :: Error: 1286 "},
        {2061, t.Gl().Enum(1281), "glGetError  => GL_INVALID_VALUE :: Error: GL_NO_ERROR "},
        {2026, t.Gl().Uint(17), "glCreateProgram  => 17 :: Error: GL_NO_ERROR "},
        {2082, t.Gl().Boolean(true).Uint(3),
         "glIsBuffer  (3 , ) => GL_TRUE :: Error: GL_NO_ERROR "},
        {2072, t.Gl().String(1, "Maker\r of\tdrivers").Enum(7936),
         "glGetString  (GL_VENDOR , ) => Maker of\tdrivers :: Error: GL_NO_ERROR "},
        {4004, t.Ext(0, 3).Pointer(0x7F00).Enum(34962).Enum(35001),
         "glMapBufferOES  (GL_ARRAY_BUFFER , GL_WRITE_ONLY_OES , ) => 0x7f00 :: Error: "
         "GL_NO_ERROR "},
        {4011, t.Ext(1282, 1).Uint(5),
         "glCurrentPaletteMatrixOES  (5 , ) =>  :: Error: GL_INVALID_OPERATION "},
    });
}

TEST(CallLine, EglValuesPrintByTheirNames) {
    const CTraceBuilder t;
    ExpectTails({
        {1014, t.Egl(0x3001).Display(0x100).Value(tag::EglNativeDisplay, 0),
         "eglGetDisplay  (EGL_DEFAULT_DISPLAY , ) => EGLDisplay(256) :: Error: "
         "EGL_NOT_INITIALIZED "},
        {1014, t.Egl(0x3001).Display(0).Value(tag::EglNativeDisplay, 9),
         "eglGetDisplay  (EGLNativeDisplayType(9) , ) => EGL_NO_DISPLAY :: Error: "
         "EGL_NOT_INITIALIZED "},
        {1018,
         t.Egl(0x3002)
             .Value(tag::EglBoolean, 2)
             .Display(1)
             .Surface(0)
             .Surface(5)
             .Context(0)
             .Config(0)
             .Attributes({}),
         "eglMakeCurrent  (EGLDisplay(1) , EGL_NO_SURFACE , EGLSurface(5) , EGL_NO_CONTEXT , ) => "
         "EGLBoolean(2) :: Error: EGL_BAD_ACCESS "},
        {1024, t.Egl(0x3010).EglBoolean(false), "eglWaitGL  => EGL_FALSE :: Error: 12304 "},
        {1030, t.Egl(0x3002).EglBoolean(true).EglEnum(0x30A0),
         "eglBindAPI  (EGL_OPENGL_ES_API , ) => EGL_TRUE :: Error: EGL_BAD_ACCESS "},
        {1013, t.Egl().Surface(5).EglInt(12377),
         "eglGetCurrentSurface  (EGL_DRAW , ) => EGLSurface(5) :: Error: EGL_SUCCESS "},
        {1001,
         t.Egl(0x3002)
             .EglBoolean(true)
             .Display(1)
             .Attributes({0x3040, 5, 0x3038})
             .Array(tag::EglConfig, 0x1000, {3})
             .EglInt(1)
             .Array(tag::EglInt, 0x1000, {1}),
         "eglChooseConfig  (EGLDisplay(1) , { EGL_RENDERABLE_TYPE : EGL_OPENGL_ES... } , { 3 } "
         ", 1 , { 1 } , ) => EGL_TRUE :: Error: EGL_BAD_ACCESS "},
        {1001,
         t.Egl(0x3002)
             .EglBoolean(true)
             .Display(1)
             .Attributes({0x3038})
             .Array(tag::EglConfig, 0, {})
             .EglInt(1)
             .Array(tag::EglInt, 0x1000, {}),
         "eglChooseConfig  (EGLDisplay(1) , {  } , NULL , 1 , NULL , ) => EGL_TRUE :: Error: "
         "EGL_BAD_ACCESS "},
        {1031,
         t.Egl(0x3002)
             .Surface(0)
             .Display(1)
             .EglEnum(12446)
             .Value(tag::EglClientBuffer, 4)
             .Config(6)
             .Attributes({}),
         "eglCreatePbufferFromClientBuffer  (EGLDisplay(1) , 12446 , 4 , 6 , NULL , ) => "
         "EGL_NO_SURFACE :: Error: EGL_BAD_ACCESS "},
        {1006,
         t.Egl(0x300B)
             .Surface(0)
             .Display(1)
             .Config(6)
             .Window(1280, 3, 4)
             .Attributes({0x3086, 0x3085, 0x3038})
             .Attributes({}),
         "eglCreateWindowSurface  (EGLDisplay(1) , 6 , 1280 , { EGL_RENDER_BUFFER : "
         "EGL_SINGLE_BUFFER } , NULL , ) => EGL_NO_SURFACE :: Error: EGL_BAD_NATIVE_WINDOW "},
        {1022,
         t.Egl(0x300D).EglBoolean(true).Display(1).Surface(2).Uint(1).Uint(8).Uint(4).Data(
             0x100, Bytes(5)),
         "eglSwapBuffers  (EGLDisplay(1) , EGLSurface(2) , 1 , 8 , 4 , ~Data(5 bytes)~ , ) => "
         "EGL_TRUE :: Error: EGL_BAD_SURFACE "},
    });
}

TEST(CallLine, DataValuesPrintTheirSizeOrTheirBeginning) {
    const CTraceBuilder t;
    const std::string ok = " =>  :: Error: GL_NO_ERROR ";
    const auto data = [&](std::uint64_t pointer, std::size_t size) {
        return t.Gl().Enum(34962).Sizeiptr(4).Data(pointer, Bytes(size, 0)).Enum(35044);
    };
    const auto image = [&](std::uint64_t pointer, std::size_t size) {
        return t.Gl().Enum(3553).Int(0).Int(0).Int(0).Sizei(1).Sizei(1).Enum(6408).Enum(5121).Data(
            pointer, Bytes(size, 0));
    };
    const auto attribute = [&](std::uint64_t pointer, const std::string& name) {
        return t.Gl().Uint(1).Uint(0).String(pointer, name);
    };
    const std::string usage = " , GL_STATIC_DRAW , )";
    const std::string texture =
        "glTexSubImage2D  (GL_TEXTURE_2D , 0 , 0 , 0 , 1 , 1 , GL_RGBA , "
        "GL_UNSIGNED_BYTE , ";
    ExpectTails({
        {2013, data(0x10, 4), "glBufferData  (GL_ARRAY_BUFFER , 4 , ~Data(4 bytes)~" + usage + ok},
        {2013, data(0, 10), "glBufferData  (GL_ARRAY_BUFFER , 4 , NULL" + usage + ok},
        {2013, data(0xFF, 0), "glBufferData  (GL_ARRAY_BUFFER , 4 , 0xff" + usage + ok},
        {2111, image(0x10, 4), texture + "~Image(4 bytes)~ , )" + ok},
        {2111, image(0, 4), texture + "NULL , )" + ok},
        {2111, image(0xAB, 0), texture + "0xab , )" + ok},
        {2003, attribute(0x10, "abcdefghijklmnopqrstuvwxy"),
         "glBindAttribLocation  (1 , 0 , \"abcdefghijklmnopqrstuvwxy\" , )" + ok},
        {2003, attribute(0x10, "abcdefghijklmnopqrstuvwxyz"),
         "glBindAttribLocation  (1 , 0 , \"abcdefghijklmnopqrstuvwx...\" , )" + ok},
        {2003, attribute(0x10, "a\tb\rc\nd"),
         "glBindAttribLocation  (1 , 0 , \"a  b c\\nd\" , )" + ok},
        {2003, attribute(0x10, ""), "glBindAttribLocation  (1 , 0 , \"\" , )" + ok},
        {2003, attribute(0, "abc"), "glBindAttribLocation  (1 , 0 , NULL , )" + ok},
    });
}

TEST(CallLine, ArraysPrintTheirBeginning) {
    const CTraceBuilder t;
    const std::string ok = " =>  :: Error: GL_NO_ERROR ";
    const auto names = [&](std::uint64_t pointer, const std::vector<std::int64_t>& values) {
        return t.Gl().Sizei(1).Array(tag::Uint, pointer, values);
    };
    ExpectTails({
        {2054, names(0x10, {7}), "glGenTextures  (1 , { 7 } , )" + ok},
        {2054, names(0x10, {70, 71, 72}), "glGenTextures  (1 , { 70, 71, 72 } , )" + ok},
        {2054, names(0x10, {}), "glGenTextures  (1 , NULL , )" + ok},
        {2054, names(0, {1, 2}), "glGenTextures  (1 , NULL , )" + ok},
        // The element that would reach 36 characters is cut there.
        {2054, names(0x10, {1000001, 1000002, 1000003, 123456789, 5}),
         "glGenTextures  (1 , { 1000001, 1000002, 1000003, 123456... } , )" + ok},
        {2113, t.Gl().Int(0).Sizei(2).Reals(tag::Float, 0x10, {0.5F, 1.0F}),
         "glUniform1fv  (0 , 2 , { 0.500000, 1.000000 } , )" + ok},
        {2140, t.Gl().Uint(0).RealItem(tag::Float, 0x10, {1, 2, 3, 4}),
         "glVertexAttrib4fv  (0 , [ 1.000000; 2.000000; 3.000000; 4.000000 ] , )" + ok},
        {2140, t.Gl().Uint(0).RealItem(tag::Float, 0, {}), "glVertexAttrib4fv  (0 , NULL , )" + ok},
        {3086,
         t.Gl().RealItem(tag::Float, 0x10, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}),
         "glLoadMatrixf  ([ 1.000000, 2.000000, 3.000000, 4.000000; 5.000000, 6.000000, 7.000000, "
         "8.000000; 9.000000, 10.000000, 11.000000, 12.000000; 13.000000, 14.000000, 15.000000, "
         "16.000000 ] , )" +
             ok},
        {2099, t.Gl().Uint(3).Sizei(2).Strings(0x10, {"ab", "c"}).Array(tag::Int, 0x10, {2, 1}),
         "glShaderSource  (3 , 2 , { \"ab\", \"c\" } , { 2, 1 } , NULL , )" + ok},
    });
}

TEST(CallLine, HiddenParametersPrintToo) {
    const CTraceBuilder t;
    const std::string ok = " =>  :: Error: GL_NO_ERROR ";
    ExpectTails({
        {2041, t.Gl().Enum(4).Int(0).Sizei(3).ClientArray(1, 0x10, Bytes(12)),
         "glDrawArrays  (GL_TRIANGLES , 0 , 3 ,  ,  , )" + ok},
        {2041, t.Gl().Enum(7).Int(0).Sizei(3), "glDrawArrays  (7 , 0 , 3 ,  ,  , )" + ok},
        {2042, t.Gl().Enum(0).Sizei(3).Enum(5123).Data(0x10, Bytes(6)).Pointer(0x10),
         "glDrawElements  (GL_POINTS , 3 , GL_UNSIGNED_SHORT , ~Data(6 bytes)~ , 0x10 ,  ,  , )" +
             ok},
        {2106, t.Image(1, 1, 6408, Bytes(4)),
         "glTexImage2D  (GL_TEXTURE_2D , 0 , 6408 , 1 , 1 , 0 , GL_RGBA , GL_UNSIGNED_BYTE , "
         "~Image(4 bytes)~ , 4 , )" +
             ok},
        {3145, t.Gl().Enum(5126).Sizei(0).Pointer(0x20),
         "glPointSizePointerOES  (GL_FLOAT , 0 , 0x20 , 0x20 , )" + ok},
    });
}

TEST(CallLine, NumbersRunOnAndTheLastCallOfAFrameCountsToTheNext) {
    CTraceBuilder trace;
    trace.GetDisplay().Initialize().SwapBuffers().GetDisplay().SwapBuffers().GetDisplay();
    trace.GetDisplay();
    const Lines expected = {"Frame(P): 1 Call:1 eglGetDisplay",  "Frame(P): 1 Call:2 eglInitialize",
                            "Frame(P): 2 Call:3 eglSwapBuffers", "Frame(P): 2 Call:4 eglGetDisplay",
                            "Frame(P): 3 Call:5 eglSwapBuffers", "Frame(P): 3 Call:6 eglGetDisplay",
                            "Frame(P): 0 Call:7 eglGetDisplay"};
    const SRunResult run = RunTrace(trace);
    const Lines lines = run.CallLines();
    ASSERT_EQ(lines.size(), expected.size()) << run.out;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(lines[i].substr(message.size(), expected[i].size()), expected[i]);
    }
}

TEST(CallLine, BothLoadModesPrintTheSameCalls) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(2054, trace.Gl().Sizei(1).Array(tag::Uint, 0x10, {7}));
    trace.Add(2007, trace.Gl().Enum(3553).Uint(7));
    trace.Add(2016, trace.Gl(1280).Bitfield(0x4000));
    trace.SwapBuffers(2, 1, Bytes(8));
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(3).ClientArray(1, 0x10, Bytes(12)));
    trace.SwapBuffers();
    const SRunResult whole = RunTrace(trace);
    const SRunResult streamed = RunTrace(trace, {"--noMemory"});
    EXPECT_TRUE(whole.Ok() && streamed.Ok()) << whole.Ending() << streamed.Ending();
    Lines tails[2];
    for (const std::string& line : whole.CallLines()) tails[0].push_back(Tail(line));
    for (const std::string& line : streamed.CallLines()) tails[1].push_back(Tail(line));
    EXPECT_EQ(tails[0].size(), 11U) << whole.out;
    EXPECT_EQ(tails[0], tails[1]);
    EXPECT_EQ(whole.calls, streamed.calls);
}

}  // namespace
}  // namespace kestrail
