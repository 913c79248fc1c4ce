// Transitions on tables of entries that no library has filled.
#include <gmock/gmock.h>

#include <array>
#include <functional>
#include <set>

#include "noting_entries.h"
#include "tests/support/program_run.h"
#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"
#include "transitions/egl_transition.h"
#include "transitions/es1_transition.h"
#include "transitions/es2_transition.h"

namespace kestrail {
namespace {

/// Of lights and of clip planes.
constexpr GLint kLimit = 2;

using Notes = std::vector<std::string>;
Notes* g_notes = nullptr;

template <typename Entries>
void Fill(Entries& entries, std::span<const SEntryPlace> places,
          host::Entry (*find)(const std::string&)) {
    for (const SEntryPlace& place : places) SetEntry(&entries, place, find(place.name));
}

/// A session whose host is this program.
struct STestSession {
    STestSession() {
        Fill<SEglEntries>(egl, kEglEntries, &host::FindEglEntry);
        Fill<SEs1Entries>(es1, kEs1Entries, &host::FindEs1Entry);
        Fill<SEs2Entries>(es2, kEs2Entries, &host::FindEs2Entry);
        Fill<SEs3Entries>(es3, kEs3Entries, &host::FindEs2Entry);
        es1.glGetIntegerv = [](GLenum, GLint* value) {
            host::Note("es1.glGetIntegerv");
            *value = kLimit;
        };
        session.hosts = CHosts(egl, es1, es2, es3);
        session.environment.createDisplay = [] { return NativeDisplay{}; };
        session.environment.createWindow = [](std::int32_t, std::int32_t, const char*,
                                              NativeDisplay) { return NativeWindow{1}; };
    }

    SEglHost egl{};
    SEs1Host es1{};
    SEs2Host es2{};
    SEs3Host es3{};
    SSession session;
    Notes notes;
};

/// Knows all that transitions ask without a call.
class CKnownAnswers : public CHostAnswers {
public:
    explicit CKnownAnswers(STestSession& host) : m_host(host) {}

    EGLint EglError() override { return EGL_SUCCESS; }
    GLenum Es2Error() override { return GL_NO_ERROR; }
    EGLConfig ConfigFor(EGLDisplay, std::int64_t, const EGLint*) override { return &m_host; }
    EGLint SurfaceSize(EGLDisplay, EGLSurface, EGLint) override { return 300; }
    void FindEs1Extensions() override { Fill(m_host.es1, &SExtension::es1); }
    void FindEs2Extensions() override { Fill(m_host.es2, &SExtension::es2); }
    GLint Es1Limit(GLenum) override { return kLimit; }
    GLint ShaderValue(GLuint, GLenum name, GLint) override {
        return name == GL_COMPILE_STATUS ? GL_TRUE : GL_VERTEX_SHADER;
    }
    SAttachedShaders AttachedShaders(GLuint) override { return {}; }
    bool IsProgram(GLuint) override { return true; }
    GLint UniformLocation(GLuint, const char*) override { return 7; }

private:
    static void Fill(SExtensionEntries& entries, bool SExtension::*has) {
        for (const SExtension& extension : Extensions()) {
            if (extension.*has) {
                kestrail::Fill(entries, extension.entries, &host::FindEglEntry);
            }
        }
    }

    STestSession& m_host;
};

/// A line a call, so that a difference shows where it is.
std::string Lines(const Notes& notes) {
    std::string lines;
    for (const std::string& note : notes) lines += note + "\n";
    return lines;
}

struct SRecords {
    CEglState egl;
    CEs1State es1;
    CEs2State es2;
};

/// The names of the player's host calls that bring it to frame 2, which draws nothing.
Notes SoughtByPlayer(const CTraceBuilder& trace) {
    SRunOptions options;
    options.script =
        "glGetAttachedShaders * none\n"
        "glGetIntegerv:GL_MAX_LIGHTS * 2\n"
        "glGetIntegerv:GL_MAX_CLIP_PLANES * 2\n";
    const SRunResult run = RunTrace(trace, {"--frame=2"}, options);
    Notes names;
    for (const std::string& call : run.calls) names.push_back(call.substr(0, call.find('(')));
    // A frame without draws is wiped ahead of its swap.
    const auto wiped = std::find(names.begin(), names.end(), "glClear");
    EXPECT_NE(wiped, names.end()) << run.out;
    names.erase(wiped - 1, names.end());
    return names;
}

CTraceBuilder SceneOfAllApis() {
    CTraceBuilder trace;
    trace.StartUp(2, 300, 300);
    for (const char* call : {
             "glBindTexture GL_TEXTURE_2D 7",
             "glTexImage2D GL_TEXTURE_2D 0 GL_RGBA 1 1 0 GL_RGBA GL_UNSIGNED_BYTE 0x10[01020304] 4",
             "glBindBuffer GL_ARRAY_BUFFER 8",
             "glBufferData GL_ARRAY_BUFFER 4 0x10[01020304] GL_STATIC_DRAW",
         }) {
        AddCall(trace, call);
    }
    AddCall(trace, "glFogf GL_FOG_END 0.5", true);
    trace.SwapBuffers();
    trace.SwapBuffers();
    return trace;
}

TEST(Session, TwoSideBySideSetWhatAPlayersSeekSets) {
    const CTraceBuilder trace = SceneOfAllApis();
    const Notes expected = SoughtByPlayer(trace);
    const CTempFile file(trace.Build());
    CTraceDocument document(output::Printed());
    Printed([&] { ASSERT_EQ(document.OpenTrace(file.Name(), true), 0U); });
    const CFrameStore& store = *document.GetFrameStore();
    SRecords target;
    ASSERT_TRUE(store.GetEglStateOfFrame(2, target.egl));
    ASSERT_TRUE(store.GetEs1StateOfFrame(2, target.es1));
    ASSERT_TRUE(store.GetEs2StateOfFrame(2, target.es2));

    const SRecords nothing;
    STestSession asked;
    STestSession known;
    CDriverAnswers driver(asked.session);
    CKnownAnswers answers(known);
    const std::function<void(SSession&, CHostAnswers&)> transitions[] = {
        [&](SSession& s, CHostAnswers& a) { TransitionEglState(s, a, target.egl, nothing.egl); },
        [&](SSession& s, CHostAnswers& a) { TransitionEs1State(s, a, target.es1, &nothing.es1); },
        [&](SSession& s, CHostAnswers& a) { TransitionEs2State(s, a, target.es2, nothing.es2); }};
    for (const auto& transition : transitions) {
        g_notes = &asked.notes;
        transition(asked.session, driver);
        g_notes = &known.notes;
        transition(known.session, answers);
    }
    g_notes = nullptr;

    EXPECT_EQ(Lines(asked.notes), Lines(expected));
    static const std::set<std::string> s_questions = {
        "eglChooseConfig",      "eglGetError",     "eglGetProcAddress", "eglQuerySurface",
        "es1.glGetIntegerv",    "es1.glGetString", "glGetError",        "glGetString",
        "glGetAttachedShaders", "glGetShaderiv",   "glIsProgram",       "glGetUniformLocation"};
    Notes told = expected;
    std::erase_if(told, [](const std::string& name) { return s_questions.contains(name); });
    EXPECT_EQ(Lines(known.notes), Lines(told));
    EXPECT_NE(asked.session.es2Names.Textures().Get(7), 0U);
    EXPECT_NE(asked.session.es2Names.Textures().Get(7), known.session.es2Names.Textures().Get(7));
}

}  // namespace

void host::Note(const char* entry) {
    if (g_notes != nullptr) g_notes->emplace_back(entry);
}

}  // namespace kestrail
