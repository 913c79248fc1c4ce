#include <algorithm>

#include "tests/program/program_test.h"

namespace kestrail {
namespace {

constexpr unsigned arrayBuffer = 34962;
constexpr unsigned framebuffer = 36160;
constexpr unsigned renderbuffer = 36161;

const std::string failed = error + "PlayCall Error: Unrecognized/Error call";

/// The warning's text ends its own line, and so does the prefix's form.
Lines Missing(const std::string& entry) {
    return {warning + "The extension function '" + entry + "' is not available on this platform",
            ""};
}

class CExt : public CTraceTest {
protected:
    CExt() : CTraceTest(Es2Trace()) {}

    void One(std::uint16_t id, std::uint8_t api, std::uint32_t value) {
        trace.Add(id, trace.Ext(0, api).Uint(value));
    }
    void Bind(std::uint16_t id, std::uint32_t target, std::uint32_t name) {
        trace.Add(id, trace.Ext(0, 1).Enum(target).Uint(name));
    }
    void List(std::uint16_t id, std::uint8_t api, const std::vector<std::int64_t>& names) {
        trace.Add(id, trace.Ext(0, api)
                          .Sizei(static_cast<std::int64_t>(names.size()))
                          .Array(tag::Uint, 0x10, names));
    }
    void GenerateMipmap(std::uint8_t api = 1) { trace.Add(4029, trace.Ext(0, api).Enum(3553)); }
    void RenderbufferStorage(std::uint8_t api, std::int64_t samples) {
        trace.Add(4089,
                  trace.Ext(0, api).Enum(renderbuffer).Sizei(samples).Enum(6408).Sizei(5).Sizei(6));
    }
    void FramebufferTexture(std::uint8_t api, std::uint32_t texture, std::int64_t samples) {
        trace.Add(4090, trace.Ext(0, api)
                            .Enum(framebuffer)
                            .Enum(36064)
                            .Enum(3553)
                            .Uint(texture)
                            .Int(1)
                            .Sizei(samples));
    }
    void Map(std::uint8_t api) {
        trace.Add(4004, trace.Ext(0, api).Pointer(0x99).Enum(arrayBuffer).Enum(35001));
    }
    void Unmap(std::uint8_t api, const Bytes& written, std::uint64_t pointer = 0x99) {
        trace.Add(4005, trace.Ext(0, api).Boolean(true).Enum(arrayBuffer).Data(pointer, written));
    }
};

Lines Fetched(const std::string& asked, const Lines& entries) {
    Lines lines = {asked};
    for (const std::string& entry : entries) {
        lines.push_back(Host("eglGetProcAddress", '"' + entry + '"'));
    }
    return lines;
}

TEST_F(CExt, EachApiIsResolvedAtItsFirstCallAndOnce) {
    for (std::uint8_t api : {std::uint8_t{2}, std::uint8_t{2}, std::uint8_t{1}, std::uint8_t{1}}) {
        One(4007, api, 0);
    }
    const SRunResult run = Run();
    const Lines mapBuffer = {"glMapBufferOES", "glUnmapBufferOES", "glGetBufferPointervOES"};
    const Lines shared = {"glMultiDrawElementsEXT",  "glMultiDrawArraysEXT", "glBindVertexArrayOES",
                          "glDeleteVertexArraysOES", "glGenVertexArraysOES", "glIsVertexArrayOES",
                          "glDiscardFramebufferEXT"};
    Lines es2 = mapBuffer;
    es2.insert(es2.end(), shared.begin(), shared.end());
    es2.insert(es2.end(),
               {"glFramebufferTexture2DMultisampleQVA", "glRenderbufferStorageMultisampleQVA"});
    Lines es1 = {"glCurrentPaletteMatrixOES", "glLoadPaletteFromModelViewMatrixOES",
                 "glMatrixIndexPointerOES", "glWeightPointerOES"};
    es1.insert(es1.end(), mapBuffer.begin(), mapBuffer.end());
    es1.insert(es1.end(),
               {"glIsRenderbufferOES", "glBindRenderbufferOES", "glDeleteRenderbuffersOES",
                "glGenRenderbuffersOES", "glRenderbufferStorageOES",
                "glGetRenderbufferParameterivOES", "glIsFramebufferOES", "glBindFramebufferOES",
                "glDeleteFramebuffersOES", "glGenFramebuffersOES", "glCheckFramebufferStatusOES",
                "glFramebufferTexture2DOES", "glFramebufferRenderbufferOES",
                "glGetFramebufferAttachmentParameterivOES", "glGenerateMipmapOES"});
    es1.insert(es1.end(), shared.begin(), shared.end());
    Lines expected = Fetched(Host("glGetString", 7939), es2);
    expected.insert(expected.end(), 2, Host("glBindVertexArrayOES", 0));
    const Lines second = Fetched(Host("es1.glGetString", 7939), es1);
    expected.insert(expected.end(), second.begin(), second.end());
    expected.insert(expected.end(), 2, Host("glBindVertexArrayOES", 0));
    EXPECT_EQ(run.CallsOf(
                  {"glGetString", "es1.glGetString", "eglGetProcAddress", "glBindVertexArrayOES"}),
              expected);
    EXPECT_TRUE(run.Messages().empty()) << run.out;
}

TEST_F(CExt, NothingIsResolvedBeforeTheFirstExtensionCall) {
    trace.Add(2016, trace.Gl().Bitfield(1));
    trace.Add(4007, trace.Ext(1281, 2).Uint(0));
    EXPECT_EQ(Run().CallsOf({"glGetString", "es1.glGetString", "eglGetProcAddress"}), Lines{});
}

TEST_F(CExt, ExtensionsAreFoundAsWholeWords) {
    GenerateMipmap();
    const std::string name = "GL_OES_framebuffer_object";
    const struct {
        std::string list;
        bool found;
    } cases[] = {
        {name, true},
        {name + " GL_OTHER", true},
        {"GL_OTHER " + name, true},
        {"GL_OTHER " + name + " ", true},
        {name + "s", false},
        {"X" + name, false},
        {"GL_OES_framebuffer", false},
        {name + "_more GL_OTHER " + name, true},
        // A hit right behind a partial one counts as the start of a word.
        {"X" + name + name, true},
        {"X" + name + "X" + name, false},
    };
    const std::string played = Host("glGenerateMipmapOES", 3553);
    for (const auto& one : cases) {
        const SRunResult run = RunScripted("glGetString * " + one.list + "\n");
        EXPECT_EQ(run.CallsOf({"glGenerateMipmapOES"}), one.found ? Lines{played} : Lines{})
            << one.list;
        EXPECT_EQ(run.Messages(), one.found ? Lines{} : Missing("glGenerateMipmapOES")) << one.list;
    }
}

TEST_F(CExt, WithoutAListTheNextCallAsksAgain) {
    GenerateMipmap();
    GenerateMipmap();
    GenerateMipmap();
    const SRunResult run = RunScripted("glGetString 1 null\n");
    EXPECT_EQ(run.CallsOf({"es1.glGetString", "glGenerateMipmapOES"}),
              (Lines{Host("es1.glGetString", 7939), Host("es1.glGetString", 7939),
                     Host("glGenerateMipmapOES", 3553), Host("glGenerateMipmapOES", 3553)}));
    EXPECT_EQ(run.Messages(), Missing("glGenerateMipmapOES"));
}

TEST_F(CExt, TheRecordedApiChoosesTheTableAndTheCheck) {
    const Lines es1 = {"es1.glGetError() = 0"};
    const Lines es2 = {"glGetError() = 0"};
    const Lines egl = {"eglGetError() = 12288"};
    const std::string samples = Host("glGetIntegerv", 37173, "ptr");
    const std::string bound = Host("glBindVertexArrayOES", 0);
    const std::string mipmap = Host("glGenerateMipmapOES", 3553);
    const std::string storage =
        Host("glRenderbufferStorageMultisampleQVA", renderbuffer, 4, 6408, 5, 6);
    const Lines question = {message + "Error call:glIsVertexArrayOES 4010", failed};
    const struct {
        std::uint8_t api;
        std::uint16_t id;
        Lines calls;
        Lines messages;
    } cases[] = {
        {1, 4007, {bound, es1[0]}, {}},
        {1, 4029, {mipmap, es1[0]}, {}},
        {1, 4089, {samples}, Missing("glRenderbufferStorageMultisampleQVA")},
        {1, 4002, es1, {}},
        {1, 4010, es1, {}},
        {2, 4007, {bound, es2[0]}, {}},
        {2, 4029, {}, Missing("glGenerateMipmapOES")},
        {2, 4089, {samples, storage, es2[0]}, {}},
        {2, 4002, es2, {}},
        {2, 4010, es2, {}},
        {0, 4007, {}, Missing("glBindVertexArrayOES")},
        {0, 4029, {}, Missing("glGenerateMipmapOES")},
        {0, 4089, {samples}, Missing("glRenderbufferStorageMultisampleQVA")},
        {0, 4002, {}, Missing("glMultiDrawElementsEXT")},
        // What EGL calls success isn't 0.
        {0, 4010, egl, question},
        {77, 4007, {}, Missing("glBindVertexArrayOES")},
        {77, 4089, {samples}, Missing("glRenderbufferStorageMultisampleQVA")},
        {77, 4010, egl, question},
    };
    const std::size_t opening = Run().calls.size();
    for (const auto& one : cases) {
        trace = Es2Trace();
        if (one.id == 4089) {
            RenderbufferStorage(one.api, 4);
        } else if (one.id == 4029) {
            GenerateMipmap(one.api);
        } else if (one.id == 4002) {
            trace.Add(4002, trace.Ext(0, one.api)
                                .Enum(4)
                                .Array(tag::Sizei, 0x10, {3})
                                .Enum(5121)
                                .Array(tag::Pointer, 0x10, {0x70})
                                .Sizei(1));
        } else if (one.id == 4010) {
            trace.Add(4010, trace.Ext(0, one.api).Boolean(true).Uint(3));
        } else {
            One(one.id, one.api, 0);
        }
        const SRunResult run = Run();
        ASSERT_GE(run.calls.size(), opening);
        Lines calls;
        for (std::size_t i = opening; i < run.calls.size(); ++i) {
            const bool search = run.calls[i].find("glGetString(") != std::string::npos ||
                                run.calls[i].rfind("eglGetProcAddress(", 0) == 0;
            if (!search) calls.push_back(run.calls[i]);
        }
        const std::string what = std::to_string(one.id) + " of " + std::to_string(one.api);
        EXPECT_EQ(calls, one.calls) << what;
        EXPECT_EQ(run.Messages(), one.messages) << what;
    }
}

TEST_F(CExt, ADriversErrorHasNoWordsOfItsOwn) {
    One(4007, 1, 0);
    One(4007, 2, 0);
    EXPECT_EQ(RunScripted("glGetError 1 0x502\n").Messages(),
              (Lines{message + "Error call:glBindVertexArrayOES 4007", failed}));
}

TEST_F(CExt, IdentifiersWithoutACaseFail) {
    trace.Add(4038, trace.Ext(0, 1).Uint(3).Enum(34034));
    trace.Add(4080, trace.Ext(0, 2).Fixed(1).Fixed(2).Fixed(3));
    const SRunResult run = Run();
    EXPECT_EQ(run.Messages(), (Lines{message + "Error call:glSetFenceNV 4038", failed,
                                     message + "Error call:glTranslatexOES 4080", failed}));
}

TEST_F(CExt, SamplesAreCutToTheHostsMost) {
    trace.Add(2054, trace.Gl().Sizei(1).Array(tag::Uint, 0x10, {10}));
    RenderbufferStorage(2, 3);
    RenderbufferStorage(2, 4);
    RenderbufferStorage(2, 9);
    FramebufferTexture(2, 10, 4);
    FramebufferTexture(2, 11, 16);
    // The API comes behind the samples.
    RenderbufferStorage(0, 5);
    FramebufferTexture(1, 10, 6);
    const SRunResult run = Run();
    const auto storage = [](int samples) {
        return Host("glRenderbufferStorageMultisampleQVA", renderbuffer, samples, 6408, 5, 6);
    };
    const auto texture = [](int name, int samples) {
        return Host("glFramebufferTexture2DMultisampleQVA", framebuffer, 36064, 3553, name, 1,
                    samples);
    };
    EXPECT_EQ(run.CallsOf(
                  {"glRenderbufferStorageMultisampleQVA", "glFramebufferTexture2DMultisampleQVA"}),
              (Lines{storage(3), storage(4), storage(4), texture(101, 4), texture(0, 4)}));
    const std::string first = "ID_EXT_glRenderbufferStorageMultisampleQVA";
    const std::string second = "glFramebufferTexture2DMultisampleQVA";
    const auto cut = [](const std::string& name, int samples) {
        return message + name + ":  Requested samples is not supported (" +
               std::to_string(samples) + "), set to 4";
    };
    Lines expected = {cut(first, 9), "", cut(second, 16), "", cut(first, 5), ""};
    for (const Lines& lines : {Missing("glRenderbufferStorageMultisampleQVA"),
                               Lines{cut(second, 6), ""}, Missing(second)}) {
        expected.insert(expected.end(), lines.begin(), lines.end());
    }
    EXPECT_EQ(run.Messages(), expected);
}

TEST_F(CExt, WhatWasWrittenIntoAMappedBufferIsCopied) {
    for (std::uint8_t api : {std::uint8_t{1}, std::uint8_t{2}}) {
        trace = Es2Trace();
        Map(api);
        Unmap(api, {1, 2, 3, 4, 5, 6, 7, 8});
        const SRunResult run = Run();
        EXPECT_TRUE(run.Messages().empty()) << run.out;
        EXPECT_EQ(
            run.CallsOf({"glMapBufferOES", "glGetBufferPointervOES", "glUnmapBufferOES"}),
            (Lines{Host("glMapBufferOES", arrayBuffer, 35001),
                   Host("glGetBufferPointervOES", arrayBuffer, 35005, "ptr"),
                   Host("glUnmapBufferOES", arrayBuffer) + " = 1 wrote <0102030405060708:8>"}));
        const std::string entry =
            api == 1 ? "es1.glGetBufferParameteriv" : "glGetBufferParameteriv";
        const Lines asked = run.CallsOf({entry});
        ASSERT_FALSE(asked.empty());
        EXPECT_EQ(asked.front(), Host(entry, arrayBuffer, 35004, "ptr"));
    }
}

TEST_F(CExt, ABufferThatIsNotMappedIsLeftAlone) {
    Unmap(2, {1, 2, 3, 4});
    const SRunResult run = Run();
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    EXPECT_EQ(run.CallsOf({"glGetBufferParameteriv", "glGetBufferPointervOES", "glUnmapBufferOES"}),
              Lines{Host("glGetBufferParameteriv", arrayBuffer, 35004, "ptr")});
}

TEST_F(CExt, AMappedBufferWithoutDataIsUnmapped) {
    Map(2);
    Unmap(2, {}, 0);
    const SRunResult run = Run();
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    EXPECT_EQ(run.CallsOf({"glUnmapBufferOES"}).size(), 1U);
}

TEST_F(CExt, MoreDataThanTheBufferHoldsFailsBeforeTheCopy) {
    Map(2);
    Unmap(2, Bytes((1 << 16) + 1, 0xEE));
    Unmap(2, Bytes(1 << 16, 0xDD));
    const SRunResult run = Run();
    EXPECT_EQ(run.Messages(), (Lines{message + "Error call:glUnmapBufferOES 4005", failed}));
    EXPECT_EQ(run.CallsOf({"glUnmapBufferOES"}),
              Lines{Host("glUnmapBufferOES", arrayBuffer) + " = 1 wrote <dddddddddddddddd:8>"});
}

TEST_F(CExt, ABindOfAnUnknownRenderbufferMakesItThroughEs2) {
    Bind(4016, renderbuffer, 9);
    Bind(4016, renderbuffer, 9);
    Bind(4016, renderbuffer, 0);
    List(4018, 1, {10, 11});
    Bind(4016, renderbuffer, 11);
    // Deletes pass the recorded names and drop nothing.
    List(4017, 1, {9, 11});
    Bind(4016, renderbuffer, 9);
    const auto bound = [](int name) { return Host("glBindRenderbufferOES", renderbuffer, name); };
    EXPECT_EQ(Run().CallsOf({"glGenRenderbuffers", "glGenRenderbuffersOES", "glBindRenderbufferOES",
                             "glDeleteRenderbuffersOES"}),
              (Lines{Host("glGenRenderbuffers", 1, "{101}"), bound(101), bound(101), bound(0),
                     Host("glGenRenderbuffersOES", 2, "{102, 103}"), bound(103),
                     Host("glDeleteRenderbuffersOES", 2, "{9, 11}"), bound(101)}));
}

TEST_F(CExt, FramebuffersOfSeveralNamesAreAllTranslated) {
    List(4024, 1, {7, 8, 9});
    Bind(4022, framebuffer, 9);
    Bind(4022, framebuffer, 7);
    Bind(4022, framebuffer, 33);
    Bind(4022, framebuffer, 33);
    Bind(4022, framebuffer, 0);
    List(4023, 1, {7, 33});
    Bind(4022, framebuffer, 7);
    const auto bound = [](int name) { return Host("glBindFramebufferOES", framebuffer, name); };
    EXPECT_EQ(
        Run().CallsOf({"glGenFramebuffersOES", "glBindFramebufferOES", "glDeleteFramebuffersOES"}),
        (Lines{Host("glGenFramebuffersOES", 3, "{101, 102, 103}"), bound(103), bound(101),
               Host("glGenFramebuffersOES", 1, "{104}"), bound(104), bound(104), bound(0),
               Host("glDeleteFramebuffersOES", 2, "{7, 33}"), bound(101)}));
}

TEST_F(CExt, AttachmentsThatWereNeverMadeTranslateToTheMissOfTheirTable) {
    trace.Add(4026, trace.Ext(0, 1).Enum(framebuffer).Enum(36064).Enum(3553).Uint(5).Int(2));
    trace.Add(4027, trace.Ext(0, 1).Enum(framebuffer).Enum(36064).Enum(renderbuffer).Uint(5));
    EXPECT_EQ(Run().CallsOf({"glFramebufferTexture2DOES", "glFramebufferRenderbufferOES",
                             "glGenRenderbuffers"}),
              (Lines{Host("glFramebufferTexture2DOES", framebuffer, 36064, 3553, 0, 2),
                     Host("glFramebufferRenderbufferOES", framebuffer, 36064, renderbuffer,
                          4294967295U)}));
}

TEST_F(CExt, VertexArraysAreKeptByApi) {
    const std::uint8_t es1 = 1;
    const std::uint8_t es2 = 2;
    List(4009, es1, {7, 8});
    List(4009, es2, {7});
    One(4007, es1, 7);
    One(4007, es2, 7);
    // Each API has its own word for a name that it doesn't know.
    One(4007, es2, 8);
    List(4008, es1, {7, 99});
    One(4007, es1, 7);
    One(4007, es1, 8);
    // The names of ES3's entries are those of ES2.
    trace.Add(5171, trace.Gl().Uint(7));
    const auto bound = [](std::uint32_t name) { return Host("glBindVertexArrayOES", name); };
    EXPECT_EQ(Run().CallsOf({"glGenVertexArraysOES", "glBindVertexArrayOES",
                             "glDeleteVertexArraysOES", "glBindVertexArray"}),
              (Lines{Host("glGenVertexArraysOES", 2, "{101, 102}"),
                     Host("glGenVertexArraysOES", 1, "{103}"), bound(101), bound(103),
                     bound(4294967295U), Host("glDeleteVertexArraysOES", 2, "{101, 0}"), bound(0),
                     bound(102), Host("glBindVertexArray", 103)}));
}

}  // namespace
}  // namespace kestrail
