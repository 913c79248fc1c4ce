// What calls do to contents, against another look at the same calls: by their names and the numbers
// in their lists of parameters, with a reading of OpenGL ES of its own and none of the records.
#include <fnmatch.h>

#include <cstring>
#include <map>
#include <set>

#include "state/effects.h"
#include "tests/support/recordings.h"
#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

/// What stays set: by which calls, a key with values of theirs, and which values. A number stands
/// for itself.
constexpr const char* kSettings = R"(
    glActiveTexture unit = texture; glClientActiveTexture clientUnit = texture;
    glBindBuffer* buffer target owner = buffer; glBindBuffer@(Base|Range) bufferAt target index = buffer;
    glBindFramebuffer* framebuffer target = framebuffer; glBindTexture texture target unit = texture;
    glBindRenderbuffer* renderbuffer = renderbuffer; glBindVertexArray* array = array;
    glDrawBuffers drawBuffers drawn = bufs; glUseProgram program = program;
    glUniform1i sampler current location = v0; glUniform1iv sampler current location = value;
    glVertexAttrib*Pointer source vertices index = bound; glVertexPointer source vertices 32884 = bound;
    glNormalPointer source vertices 32885 = bound; glColorPointer source vertices 32886 = bound;
    glTexCoordPointer source vertices clientUnit = bound;
    glPointSizePointerOES source vertices 35740 = bound;
    glEnableVertex* enabled vertices index = 1; glDisableVertex* enabled vertices index = 0;
    glEnableClient* enabled vertices client = 1; glDisableClient* enabled vertices client = 0;
    glEnable on cap capUnit = 1; glDisable on cap capUnit = 0; glTexParameter* on pname = 1;
    glBeginTransformFeedback feedback = 1; glEndTransformFeedback feedback = 0;
    glColorMask colors = red green blue alpha; glDepthMask depths = flag; glStencilMask stencils = mask)";

/// What is done: an access and where, one after the other.
constexpr const char* kDeeds = R"(
    eglSwapBuffers read shown wipe surface; eglDestroySurface wipe surface; glDelete* wipe named;
    glClear?(Buffer*) write cleared; gl?(Multi)Draw?(Range)@(Arrays|Elements)* write drawn;
    glReadPixels read pixels write packed; glCopyTexImage* read pixels wipe texture write texture;
    glCopyTexSub* read pixels write texture; glTexStorage* wipe texture;
    gl?(Compressed)TexImage* read unpacked wipe texture send texture;
    gl?(Compressed)TexSub* read unpacked send texture;
    glGenerateMipmap* read bound wipe bound write bound; glBlit* read blitted write blitted;
    @(glInvalidateFramebuffer|glDiscard*) wipe attachments; glBufferData wipe target send target;
    @(glBufferSubData|glUnmapBufferOES) send target; @(glUnmapBuffer|glFlushMapped*) write target;
    glCopyBufferSubData read readTarget write writeTarget; glRenderbufferStorage* wipe renderbuffer)";

using Words = std::vector<std::string>;
using Numbers = std::vector<std::int64_t>;
/// What a call does, a line for each aspect: "write texture 3 2".
using Lines = std::set<std::string>;

const char* const kKinds[] = {"surface", "texture", "renderbuffer", "buffer"};
const char* const kAccesses[] = {"read", "wipe", "write", "send"};
const std::int64_t kColorMask = 0x4000, kDepthMask = 0x100, kStencilMask = 0x400;

std::vector<Words> RowsOf(const char* text) {
    std::vector<Words> rows(1);
    std::istringstream stream(text);
    for (std::string word; stream >> word;) {
        const bool last = word.back() == ';';
        rows.back().push_back(word.substr(0, word.size() - (last ? 1 : 0)));
        if (last) rows.emplace_back();
    }
    return rows;
}

std::string Key(const std::string& first, std::int64_t second) {
    return first + " " + std::to_string(second);
}

void AddLines(Lines& lines, const std::string& what, std::int64_t name, unsigned aspects) {
    for (const unsigned aspect : {1U, 2U, 4U}) {
        if ((aspects & aspect) != 0) lines.insert(Key(Key(what, name), aspect));
    }
}

/// Hexadecimal ones begin with 0x. Of a real number it is the whole part.
Numbers NumbersIn(const std::string& line) {
    Numbers numbers;
    for (const char* text = line.c_str(); (text = std::strpbrk(text, "-0123456789")) != nullptr;) {
        char* end = nullptr;
        numbers.push_back(std::strtoll(text, &end, 0));
        if (*end == '.') std::strtod(end, &end);
        text = std::max<const char*>(end, text + 1);
    }
    return numbers;
}

/// A call as its line tells it.
struct SCall {
    std::string name;
    std::map<std::string, Numbers> values;

    std::int64_t operator[](const std::string& value) const {
        const auto found = values.find(value);
        return found == values.end() || found->second.empty() ? 0 : found->second.front();
    }
    bool Has(const char* value) const { return values.contains(value); }
    bool Is(const std::string& calls) const {
        return fnmatch(calls.c_str(), name.c_str(), FNM_EXTMATCH) == 0;
    }
};

/// The context of one API, as far as contents go.
class CContext {
public:
    bool es1 = false;
    Lines lines;

    void SetSurfaces(std::int64_t draw, std::int64_t read) {
        m_drawSurface = draw;
        m_readSurface = read;
    }

    void Play(SCall call) {
        static const std::vector<Words> s_settings = RowsOf(kSettings), s_deeds = RowsOf(kDeeds);
        const std::int64_t unit = At("unit"), client = call["array"];
        call.values["unit"] = {unit};
        call.values["capUnit"] = {call["cap"] == 3553 ? unit : 0};
        call.values["clientUnit"] = {At("clientUnit")};
        call.values["client"] = {client == 32888 ? At("clientUnit") : client};
        call.values["vertices"] = {At("array")};
        call.values["current"] = {At("program")};
        call.values["owner"] = {call["target"] == 34963 ? At("array") : 0};
        call.values["bound"] = {At("buffer 34962 0")};
        call.values["drawn"] = {At("framebuffer 36009")};
        for (const Words& row : s_settings) {
            if (call.Is(row[0])) Set(row, call);
        }
        if (call.Is("glFramebuffer*")) Attach(call);
        for (const Words& row : s_deeds) {
            for (std::size_t i = 1; i < row.size() && call.Is(row[0]); i += 2) {
                Do(row[i], row[i + 1], call);
            }
        }
    }

private:
    std::int64_t At(const std::string& key) const {
        const auto found = m_set.find(key);
        return found == m_set.end() ? 0 : found->second.front();
    }
    /// What is set under keys that begin like this, by the rest of the keys.
    std::map<std::int64_t, Numbers> Under(const std::string& first, std::int64_t second) const {
        std::map<std::int64_t, Numbers> found;
        const std::string start = Key(first, second) + " ";
        for (auto at = m_set.lower_bound(start); at != m_set.end() && at->first.starts_with(start);
             ++at) {
            found[std::stoll(at->first.substr(start.size()))] = at->second;
        }
        return found;
    }
    void Set(const Words& row, const SCall& call) {
        const auto number = [&](const std::string& word) {
            return std::isdigit(word[0]) != 0 ? std::stoll(word) : call[word];
        };
        std::string key = row[1];
        std::size_t i = 2;
        for (; row[i] != "="; ++i) key = Key(key, number(row[i]));
        Numbers values;
        for (++i; i < row.size(); ++i) values.push_back(number(row[i]));
        if (values.size() == 1 && call.Has(row.back().c_str())) values = call.values.at(row.back());
        m_set[key] = values;
        if (key == "unit") m_lastUnit = std::max(m_lastUnit, values[0]);
        if (key == "framebuffer 36160") {
            m_set["framebuffer 36008"] = m_set["framebuffer 36009"] = values;
        }
    }
    void Attach(const SCall& call) {
        const bool texture = !call.Has("renderbuffer");
        const std::int64_t point = call["attachment"];
        const std::string key = Key(
            "attachment", At(call["target"] == 36008 ? "framebuffer 36008" : "framebuffer 36009"));
        const Numbers made = {texture ? 1 : 2, call[texture ? "texture" : "renderbuffer"]};
        m_set[Key(key, point == 33306 ? 36096 : point)] = made;
        m_set[Key(key, point == 33306 ? 36128 : point)] = made;
    }
    void Delete(const SCall& call) {
        for (const auto& [list, names] : call.values) {
            const std::string kind = list.substr(0, list.size() - 1);
            for (const std::int64_t name : names) {
                if (name == 0 || list != kind + "s") continue;
                const bool content = kind.ends_with("buffer") || kind == "texture";
                if (content && kind != "framebuffer") Say("wipe", kind, name);
                for (auto& [key, value] : m_set) {
                    if (key.starts_with(kind) && value == Numbers{name}) value = {0};
                }
            }
        }
    }

    void Say(const std::string& access, const std::string& kind, std::int64_t name,
             unsigned aspects = 7) {
        if (name != 0 || kind == "texture") AddLines(lines, access + " " + kind, name, aspects);
    }
    void Do(const std::string& access, const std::string& where, const SCall& call) {
        const std::int64_t target = call["target"], unpacked = At("buffer 35052 0");
        const bool face = target >= 34069 && target <= 34074;
        const std::int64_t texture = At(Key(Key("texture", face ? 34067 : target), call["unit"]));
        if (where == "shown") Say(access, "surface", call["surface"], 1);
        if (where == "surface") Say(access, where, call["surface"]);
        if (where == "named") Delete(call);
        if (where == "cleared") Clear(call);
        if (where == "drawn") Draw(call);
        if (where == "pixels") Framebuffer(access, true, 1);
        if (where == "packed") Say(access, "buffer", At("buffer 35051 0"));
        if (where == "unpacked") Say(access, "buffer", unpacked);
        if (where == "bound") Say(access, "texture", texture);
        if (where == "renderbuffer") Say(access, where, At(where));
        if (where == "blitted") Framebuffer(access, access == "read", AspectsOf(call["mask"]));
        if (where == "texture") {
            Say(access == "send" && unpacked != 0 ? "write" : access, where, texture);
            const bool makesMipmaps = es1 && At("on 33169") != 0 && call["level"] == 0;
            if (access != "wipe" && makesMipmaps) Say("write", where, texture);
        }
        if (where.ends_with("arget")) {
            const std::int64_t owner = call[where] == 34963 ? At("array") : 0;
            Say(access, "buffer", At(Key(Key("buffer", call[where]), owner)));
        }
        if (where != "attachments") return;
        for (const std::int64_t point : call.values.at(where)) {
            static const std::map<std::int64_t, unsigned> s_aspects = {
                {6145, 2}, {36096, 2}, {6146, 4}, {36128, 4}, {33306, 6}};
            const auto found = s_aspects.find(point);
            Framebuffer(access, target == 36008, found == s_aspects.end() ? 1 : found->second,
                        point == 6144 ? 36064 : point);
        }
    }
    void Framebuffer(const std::string& access, bool read, unsigned aspects,
                     std::int64_t only = -1) {
        const std::int64_t bound = At(read ? "framebuffer 36008" : "framebuffer 36009");
        const auto set = m_set.find(Key("drawBuffers", bound));
        const Numbers drawn = set != m_set.end() ? set->second : Numbers{bound == 0 ? 1029 : 36064};
        if (bound == 0) {
            const bool color = read || only == 36064 || (only < 0 && drawn.front() != 0);
            Say(access, "surface", read ? m_readSurface : m_drawSurface,
                color ? aspects : aspects & 6);
        }
        for (const auto& [point, attached] : Under("attachment", bound)) {
            const unsigned aspect = point == 36096 ? 2 : point == 36128 ? 4 : 1;
            const bool meant = aspect != 1 || read || point == only ||
                               (only < 0 && std::count(drawn.begin(), drawn.end(), point) != 0);
            if (meant && attached[1] != 0)
                Say(access, kKinds[attached[0]], attached[1], aspects & aspect);
        }
    }
    static unsigned AspectsOf(std::int64_t mask) {
        return ((mask & kColorMask) != 0 ? 1U : 0U) | ((mask & kDepthMask) != 0 ? 2U : 0U) |
               ((mask & kStencilMask) != 0 ? 4U : 0U);
    }
    void Clear(const SCall& call) {
        const std::int64_t buffer = call["buffer"] - 6143, only = 36064 + call["drawbuffer"];
        const unsigned aspects = call.Has("mask") ? AspectsOf(call["mask"])
                                 : buffer > 3     ? 6
                                                  : 1U << (buffer - 1);
        const Numbers& colors = m_set["colors"];
        const std::int64_t masks[] = {std::count(colors.begin(), colors.end(), 1), At("depths") * 4,
                                      0, At("stencils") & 0xFF};
        for (const unsigned aspect : {1U, 2U, 4U}) {
            const std::int64_t mask = masks[aspect - 1];
            if ((aspects & aspect) == 0 || mask == 0) continue;
            const bool whole = At("on 3089 0") == 0 && mask == (aspect == 4 ? 0xFF : 4);
            for (const char* const access : {"wipe", "write"}) {
                if (whole || access[1] == 'r')
                    Framebuffer(access, false, aspect, buffer == 1 ? only : -1);
            }
        }
    }
    void Draw(const SCall& call) {
        const bool depths = At("on 2929 0") != 0, depthMask = At("depths") != 0;
        if (depths && !depthMask) Framebuffer("read", false, 2);
        Framebuffer("write", false,
                    (m_set["colors"] != Numbers(4) ? 1U : 0U) | (depths && depthMask ? 2U : 0U) |
                        (At("on 2960 0") != 0 ? 4U : 0U));
        const std::int64_t array = At("array");
        for (const auto& [index, buffer] : Under("source", array)) {
            if (At(Key(Key("enabled", array), index)) != 0) Say("read", "buffer", buffer[0]);
        }
        if (call.Has("indices")) Say("read", "buffer", At(Key("buffer 34963", array)));
        for (const auto& [index, buffer] : Under("bufferAt", 35345))
            Say("read", "buffer", buffer[0]);
        for (const auto& [index, buffer] : Under("bufferAt", 35982)) {
            if (At("feedback") != 0) Say("write", "buffer", buffer[0]);
        }
        std::set<std::int64_t> units;
        if (!es1) units.insert(33984);
        for (const auto& [unit, on] : Under("on", 3553)) {
            if (es1 && on[0] != 0) units.insert(unit);
        }
        for (const auto& [location, integers] : Under("sampler", At("program"))) {
            for (const std::int64_t unit : integers) units.insert(33984 + unit);
        }
        for (const std::int64_t unit : units) {
            for (const std::int64_t target : {3553, 34067, 32879, 35866}) {
                const std::int64_t name = At(Key(Key("texture", target), unit));
                // Units that nobody touched have nothing.
                if (name != 0 || (target == 3553 && unit <= m_lastUnit))
                    Say("read", "texture", name);
            }
        }
    }

    std::map<std::string, Numbers> m_set = {{"colors", {1, 1, 1, 1}},
                                            {"depths", {1}},
                                            {"stencils", {0xFF}},
                                            {"unit", {33984}},
                                            {"clientUnit", {33984}}};
    std::int64_t m_lastUnit = 33984, m_drawSurface = 0, m_readSurface = 0;
};

Lines Found(const std::vector<SEffect>& effects, Lines& expected) {
    Lines found;
    for (const SEffect& effect : effects) {
        const std::string kind = std::string(" ") + kKinds[static_cast<int>(effect.kind)];
        const std::string what = kAccesses[static_cast<int>(effect.access)] + kind;
        if (!effect.unknown) AddLines(found, what, effect.name, effect.aspects);
    }
    for (const SEffect& effect : effects) {
        const std::string kind = std::string(" ") + kKinds[static_cast<int>(effect.kind)] + " ";
        const std::string what = kAccesses[static_cast<int>(effect.access)] + kind;
        // Before what can't be told is written, what is gone of it is left out.
        std::erase_if(expected, [&](const std::string& line) {
            return effect.unknown && !found.contains(line) &&
                   (line.starts_with(what) || line.starts_with("wipe" + kind));
        });
    }
    return found;
}

SCall CallOf(const CGenCallInfo& info) {
    SCall call;
    call.name = info.GetCallName();
    TextWriter text;
    for (std::uint32_t i = 0; i < info.GetVisibleCount(); ++i) {
        const std::string name = info.GetParameterName(i);
        if (name == "data" || name == "pixels") continue;
        text.Clear();
        (*info.GetParameters())[i]->AppendNumericText(text);
        call.values[name] = NumbersIn(std::string(text.View()));
    }
    return call;
}

/// Shows each call of a trace and its effects, as long as nothing fails.
template <typename Look>
void ForEachCall(const std::string& path, Look look) {
    SQuiet told;
    CTraceDocument document(told);
    ASSERT_EQ(document.OpenTrace(path.c_str(), true), 0U);
    SFrameState state;
    SUpdates updates(told);
    CFrameStore& store = *document.GetFrameStore();
    for (std::uint32_t number = 1; CCallEntry* const entry = store.CallAt(number); ++number) {
        SCOPED_TRACE(number);
        std::vector<SEffect> effects;
        ListEffects(*entry->call, *state.egl, *state.es1, *state.es2, effects);
        look(entry->GetInfo(), effects);
        if (testing::Test::HasFailure()) return;
        state.Apply(*entry->call, updates, EApplied::kRecorded);
    }
}

TEST(Effects, OfEveryCallAreWhatAnotherLookFinds) {
    std::size_t count = 0;
    for (const auto& path : AllTraces()) {
        SCOPED_TRACE(path);
        CContext contexts[2];
        contexts[1].es1 = true;
        ForEachCall(path, [&](const CGenCallInfo& info, const std::vector<SEffect>& effects) {
            const SCall call = CallOf(info);
            CContext& context = contexts[std::string_view(info.GetApiName()) == "ES1" ? 1 : 0];
            context.lines.clear();
            const std::string error = ShortText(*info.GetErrorValue());
            if (error == "GL_NO_ERROR" || error == "EGL_SUCCESS") {
                context.Play(call);
                for (CContext& each : contexts) {
                    if (call.name == "eglMakeCurrent") each.SetSurfaces(call["draw"], call["read"]);
                }
            }
            const Lines found = Found(effects, context.lines);
            EXPECT_EQ(found, context.lines) << call.name;
            count += effects.size();
        });
    }
    EXPECT_GT(count, 0U);
}

/// Calls behind the version of the context, and behind an arrow the effects of the last of them. A
/// ? stands behind the kind of what can't be told; only what differs from a whole object is shown.
constexpr const char* kRows =
    R"(2 eglSurfaceAttrib DPY SRF 12435 12436 = 1; eglSwapBuffers DPY SRF 1 0 0 null = 1
-> read surface 1024 c; wipe surface 1024 ds
2 eglSurfaceAttrib DPY SRF 12435 12436 = 1; eglSurfaceAttrib DPY SRF 12435 12437 = 1;
  eglSwapBuffers DPY SRF 1 0 0 null = 1
-> read surface 1024 c; wipe surface 1024
2 eglQuerySurface DPY SRF 12605 {2} = 1
-> read surface? 1024
2 glBindTexture GL_TEXTURE_2D 7; eglBindTexImage DPY 0x500 12420 = 1
-> read surface 1280 c; wipe texture 7; write texture 7
2 glColorMask 1 1 1 0; glStencilMask 0x0F; glDepthMask 0; glClear 0x4500
-> write surface 1024 cs
2 glColorMask 0 0 0 0; glClear 0x4000
->
2 glEnable GL_SCISSOR_TEST; glScissor 1 2 3 4; glClear 0x4100
-> write surface 1024 cd at 1,2 3x4
1 glEnable GL_SCISSOR_TEST; glScissor 1 2 3 4; glClear 0x4000
-> write surface 1024 c at 1,2 3x4
3 glDrawBuffers 1 {GL_NONE}; glClear 0x4100
-> wipe surface 1024 d; write surface 1024 d
2 glClear 0x4000 !GL_INVALID_VALUE
->
3 glBindFramebuffer GL_FRAMEBUFFER 5; glFramebufferRenderbuffer GL_FRAMEBUFFER
  GL_DEPTH_STENCIL_ATTACHMENT GL_RENDERBUFFER 6; glFramebufferTexture2D GL_FRAMEBUFFER
  GL_COLOR_ATTACHMENT1 GL_TEXTURE_CUBE_MAP_NEGATIVE_X 7 2;
  glDrawBuffers 2 {GL_NONE GL_COLOR_ATTACHMENT1}; glClear 0x4500
-> wipe texture 7 c level 2 layer 1; wipe renderbuffer 6 ds; write texture 7 c level 2 layer 1;
  write renderbuffer 6 ds
3 glBindFramebuffer GL_FRAMEBUFFER 5; glFramebufferTextureLayer GL_FRAMEBUFFER
  GL_COLOR_ATTACHMENT0 7 0 3; glClear 0x4000
-> write texture? 0; write renderbuffer? 0
3 glBindFramebuffer GL_DRAW_FRAMEBUFFER 5; glBindFramebuffer GL_READ_FRAMEBUFFER 6;
  glFramebufferTexture2D GL_FRAMEBUFFER GL_COLOR_ATTACHMENT0 GL_TEXTURE_2D 7 0;
  glBlitFramebuffer 0 0 8 8 9 8 1 0 0x4000 GL_NEAREST
-> read texture? 0; read renderbuffer? 0; write texture? 0; write renderbuffer? 0
3 glBindFramebuffer GL_READ_FRAMEBUFFER 6; glFramebufferTexture2D GL_READ_FRAMEBUFFER
  GL_COLOR_ATTACHMENT0 GL_TEXTURE_2D 7 0; glBlitFramebuffer 0 0 8 8 9 8 1 0 0x4000 GL_NEAREST
-> read texture 7 c level 0 layer 0 at 0,0 8x8; write surface 1024 c at 1,0 8x8
3 glBindFramebuffer GL_FRAMEBUFFER 6; glDeleteFramebuffers 1 {6}; glClear 0x100
-> wipe surface 1024 d; write surface 1024 d
2 glBindTexture GL_TEXTURE_CUBE_MAP 7;
  glCopyTexImage2D GL_TEXTURE_CUBE_MAP_NEGATIVE_X 1 GL_RGBA 3 4 8 8 0
-> read surface 1024 c at 3,4 8x8; wipe texture 7 level 1 layer 1 at 0,0 8x8;
  write texture 7 level 1 layer 1 at 0,0 8x8
3 glBindTexture GL_TEXTURE_2D_ARRAY 7; glTexSubImage3D GL_TEXTURE_2D_ARRAY 0 1 2 3 4 5 2 GL_RGBA
  GL_UNSIGNED_BYTE [00*160]
-> send texture 7 level 0 layer 3-4 at 1,2 4x5
3 glBindTexture GL_TEXTURE_2D_ARRAY 7; glCopyTexSubImage3D GL_TEXTURE_2D_ARRAY 1 2 3 4 5 6 7 8
-> read surface 1024 c at 5,6 7x8; write texture 7 level 1 layer 4 at 2,3 7x8
3 glBindTexture GL_TEXTURE_2D 7; glBindBuffer GL_PIXEL_UNPACK_BUFFER 8; glTexSubImage2D
  GL_TEXTURE_2D 0 0 0 1 1 GL_RGBA GL_UNSIGNED_BYTE null
-> read buffer 8; write texture 7 level 0 at 0,0 1x1
3 glBindTexture GL_TEXTURE_2D 7; glTexParameteri GL_TEXTURE_2D GL_TEXTURE_BASE_LEVEL 2;
  glGenerateMipmap GL_TEXTURE_2D
-> read texture 7 level 2; wipe texture 7 level 3-65535; write texture 7 level 3-65535
1 glBindTexture GL_TEXTURE_2D 7; glTexParameterx GL_TEXTURE_2D 33169 1;
  glCopyTexSubImage2D GL_TEXTURE_2D 0 1 2 3 4 5 6
-> read surface 1024 c at 3,4 5x6; write texture 7 level 0 at 1,2 5x6; write texture 7 level 1-65535
2 glBindTexture 36197 7; glTexImage2D 36197 0 GL_RGBA 1 1 0 GL_RGBA GL_UNSIGNED_BYTE [00*4] 4
-> send texture? 0
3 glBindBuffer GL_PIXEL_PACK_BUFFER 8; glReadPixels 0 0 1 1 GL_RGBA GL_UNSIGNED_BYTE null
-> read surface 1024 c at 0,0 1x1; write buffer 8
3 glBindBuffer GL_PIXEL_PACK_BUFFER 8; glDeleteBuffers 1 {8};
  glReadPixels 0 0 1 1 GL_RGBA GL_UNSIGNED_BYTE null
-> read surface 1024 c at 0,0 1x1
3 glBindVertexArray 2; glBindBuffer GL_ARRAY_BUFFER 8; glBindVertexArray 3;
  glBufferData GL_ARRAY_BUFFER 2 [00*2] GL_STATIC_DRAW
-> wipe buffer 8; send buffer 8
3 glBindBufferBase GL_UNIFORM_BUFFER 1 8; glBeginTransformFeedback GL_POINTS;
  glDrawArraysInstanced GL_POINTS 0 1 1
-> read buffer? 0; read texture 0; write surface 1024 c; write buffer? 0
3 glBeginTransformFeedback GL_POINTS; glEndTransformFeedback [00];
  glDrawArraysInstanced GL_POINTS 0 1 1
-> read texture 0; write surface 1024 c
)";

std::string Text(const SEffect& effect) {
    std::ostringstream text;
    text << kAccesses[static_cast<int>(effect.access)] << ' '
         << kKinds[static_cast<int>(effect.kind)] << (effect.unknown ? "?" : "") << ' '
         << effect.name << (effect.aspects != kAllAspects ? " " : "");
    for (int i = 0; i < 3 && effect.aspects != kAllAspects; ++i) {
        if ((effect.aspects >> i & 1) != 0) text << "cds"[i];
    }
    for (const auto& [what, span] :
         {std::pair(" level ", effect.levels), {" layer ", effect.layers}}) {
        if (span == SSpan()) continue;
        text << what << span.first;
        if (span.last != span.first) text << '-' << span.last;
    }
    const SArea& area = effect.area;
    if (area.width != 0) {
        text << " at " << area.x << ',' << area.y << ' ' << area.width << 'x' << area.height;
    }
    return text.str();
}

TEST(Effects, OfCallsByTheStateInFrontOfThem) {
    std::istringstream stream(kRows);
    std::string row[2], found;
    int part = 0;
    for (std::string line; std::getline(stream, line);) {
        if (line[0] == '-') part = 1;
        row[part] += line.substr(line[0] == '-' ? 2 : line[0] == ' ' ? 1 : 0);
        if (part == 0 || stream.peek() == ' ') continue;
        const int version = row[0][0] - '0';
        CTraceBuilder trace;
        trace.StartUp(version, 64, 48);
        std::istringstream calls(row[0].substr(2));
        for (std::string call; std::getline(calls >> std::ws, call, ';');) {
            AddCall(trace, call, version == 1);
        }
        const CTempFile file(trace.Build());
        ForEachCall(file.Name().c_str(), [&](const CGenCallInfo&, const auto& effects) {
            found.clear();
            for (const SEffect& effect : effects)
                found += (found.empty() ? " " : "; ") + Text(effect);
        });
        EXPECT_EQ(found, row[1]) << row[0];
        for (std::string& each : row) each.clear();
        part = 0;
    }
}

}  // namespace
}  // namespace kestrail
