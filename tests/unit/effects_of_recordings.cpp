// What calls do to contents, against another look at the same calls: by their names and the numbers
// in their lists of parameters, with a reading of OpenGL ES of its own and none of the records.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "state/effects.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

using Numbers = std::vector<std::int64_t>;

/// What a call does, a line for each aspect: "write texture 3 color 0-0 0-0 0,0,8x8".
using Lines = std::set<std::string>;

std::string Line(const char* access, const char* kind, std::int64_t name, unsigned aspect,
                 const std::string& levels, const std::string& layers, const std::string& area) {
    const char* const aspects[] = {"", "color", "depth", "", "stencil"};
    return std::string(access) + " " + kind + " " + std::to_string(name) + " " + aspects[aspect] +
           " " + levels + " " + layers + " " + area;
}

std::string Area(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height) {
    if (width == 0) return "0,0,0x0";
    return std::to_string(x) + "," + std::to_string(y) + "," + std::to_string(width) + "x" +
           std::to_string(height);
}

std::string Span(std::int64_t first, std::int64_t last) {
    return std::to_string(first) + "-" + std::to_string(last);
}

const char* const kKinds[] = {"surface", "texture", "renderbuffer", "buffer"};
const char* const kAccesses[] = {"read", "wipe", "write", "send"};

void AddLines(const SEffect& effect, Lines& lines) {
    for (unsigned aspect = 1; aspect <= 4; aspect *= 2) {
        if ((effect.aspects & aspect) == 0) continue;
        lines.insert(
            Line(kAccesses[static_cast<int>(effect.access)], kKinds[static_cast<int>(effect.kind)],
                 effect.name, aspect, Span(effect.levels.first, effect.levels.last),
                 Span(effect.layers.first, effect.layers.last),
                 Area(effect.area.x, effect.area.y, effect.area.width, effect.area.height)));
    }
}

/// A call as its line tells it.
struct SCall {
    std::string name;
    std::map<std::string, Numbers> values;
    std::int64_t result = 0;

    std::int64_t operator[](const char* value) const {
        const auto found = values.find(value);
        return found == values.end() || found->second.empty() ? 0 : found->second.front();
    }
    bool Has(const char* value) const { return values.count(value) != 0; }
    bool Is(const char* pattern) const { return name.rfind(pattern, 0) == 0; }
};

/// Hexadecimal ones begin with 0x. Of a real number it is the whole part.
Numbers NumbersIn(const std::string& text) {
    Numbers numbers;
    for (std::size_t i = 0; (i = text.find_first_of("-0123456789", i)) != std::string::npos;) {
        char* end = nullptr;
        numbers.push_back(std::strtoll(text.c_str() + i, &end, 0));
        const auto behind = static_cast<std::size_t>(end - text.c_str());
        i = text[behind] == '.' ? text.find_first_not_of("0123456789", behind + 1)
                                : std::max(behind, i + 1);
        if (i == std::string::npos) break;
    }
    return numbers;
}

/// The context of one API, as far as contents go.
class CContext {
public:
    bool es1 = false;
    std::int64_t drawSurface = 0, readSurface = 0;
    Lines lines;

    void Play(const SCall& call) {
        if (!Attach(call) && !Bind(call) && !Set(call)) Do(call);
    }

    void Say(const char* access, const char* kind, std::int64_t name, unsigned aspects = 7,
             const std::string& levels = "0-65535", const std::string& layers = "0-65535",
             const std::string& area = "0,0,0x0") {
        for (unsigned aspect = 1; aspect <= 4; aspect *= 2) {
            if ((aspects & aspect) == 0) continue;
            lines.insert(Line(access, kind, name, aspect, levels, layers, area));
        }
    }
    void Texture(const char* access, const SCall& call, std::int64_t target) {
        std::string layers = "0-65535";
        if (target >= 34069 && target <= 34074) {
            layers = Span(target - 34069, target - 34069);
            target = 34067;
        }
        const std::string area =
            Area(call["xoffset"], call["yoffset"], call["width"], call["height"]);
        if (call.Has("zoffset")) {
            const std::int64_t depth = call.Has("depth") ? call["depth"] : 1;
            layers = Span(call["zoffset"], call["zoffset"] + depth - 1);
        }
        const bool all = !call.Has("level");
        Say(access, "texture", m_textures[{target, m_unit}], 7,
            all ? "0-65535" : Span(call["level"], call["level"]), layers, area);
    }

private:
    struct SAttachment {
        const char* kind = nullptr;
        std::int64_t name = 0, level = 0, layer = 0;
    };
    struct SArrays {
        std::int64_t elements = 0;
        std::map<std::string, std::int64_t> buffers;  ///< by array
        std::set<std::string> enabled;
    };

    bool Attach(const SCall& call) {
        if (!call.Is("glFramebuffer")) return false;
        const std::int64_t bound = call["target"] == 36008 ? m_read : m_draw;
        SAttachment made;
        if (call.Is("glFramebufferRenderbuffer")) {
            made = {"renderbuffer", call["renderbuffer"], 0, 0};
        } else {
            const std::int64_t face = call["textarget"] - 34069;
            made = {"texture", call["texture"], call["level"],
                    call.Has("layer")       ? call["layer"]
                    : face >= 0 && face < 6 ? face
                                            : 0};
        }
        const bool both = call["attachment"] == 33306;
        for (const std::int64_t point :
             {both ? 36096 : call["attachment"], both ? 36128 : call["attachment"]}) {
            m_attachments[bound][point] = made;
        }
        return true;
    }

    bool Bind(const SCall& call) {
        const std::int64_t target = call["target"];
        if (call.Is("glBindFramebuffer")) {
            if (target != 36008) m_draw = call["framebuffer"];
            if (target != 36009) m_read = call["framebuffer"];
        } else if (call.Is("glBindRenderbuffer")) {
            m_renderbuffer = call["renderbuffer"];
        } else if (call.name == "glBindTexture") {
            m_textures[{target, m_unit}] = call["texture"];
        } else if (call.Is("glBindBuffer")) {
            if (call.Has("index")) m_indexed[{target, call["index"]}] = call["buffer"];
            if (target == 34963) {
                m_arrays[m_array].elements = call["buffer"];
            } else {
                m_buffers[target] = call["buffer"];
            }
        } else if (call.Is("glBindVertexArray")) {
            m_array = call["array"];
        } else if (call.name == "glUseProgram") {
            m_program = call["program"];
        } else {
            return false;
        }
        return true;
    }

    bool Set(const SCall& call) {
        if (call.name == "glActiveTexture") {
            m_unit = call["texture"] - 33984;
            m_lastUnit = std::max(m_lastUnit, m_unit);
        } else if (call.name == "glClientActiveTexture") {
            m_clientUnit = call["texture"] - 33984;
        } else if (call.name == "glEnable" || call.name == "glDisable") {
            const std::int64_t unit = call["cap"] == 3553 ? m_unit : 0;
            if (call.name == "glEnable") m_on.insert({call["cap"], unit});
            if (call.name == "glDisable") m_on.erase({call["cap"], unit});
        } else if (call.name == "glScissor") {
            m_scissor = Area(call["x"], call["y"], call["width"], call["height"]);
        } else if (call.name == "glColorMask") {
            m_colors = call["red"] + call["green"] + call["blue"] + call["alpha"];
        } else if (call.name == "glDepthMask") {
            m_depthMask = call["flag"] != 0;
        } else if (call.Is("glStencilMask")) {
            if (call["face"] != 1029) m_stencilMask = call["mask"] & 0xFF;
        } else if (call.name == "glDrawBuffers") {
            m_drawBuffers[m_draw] = call.values.at("bufs");
        } else if (call.Is("glUniform1i")) {
            const char* const value = call.Has("v0") ? "v0" : "value";
            m_integers[m_program][call["location"]] = call.values.at(value);
        } else if (call.name == "glLinkProgram") {
            m_integers.erase(call["program"]);
        } else if (call.Is("glBeginTransformFeedback") || call.Is("glEndTransformFeedback")) {
            m_feedback = call.Is("glBegin");
        } else {
            return SetArray(call);
        }
        return true;
    }

    bool SetArray(const SCall& call) {
        SArrays& arrays = m_arrays[m_array];
        std::string array = std::to_string(call["index"]);
        if (es1) {
            const std::map<std::int64_t, std::string> named = {
                {32884, "glVertex"},    {32885, "glNormal"},
                {32886, "glColor"},     {32888, "glTexCoord" + std::to_string(m_clientUnit)},
                {35740, "glPointSize"}, {34884, "glMatrixIndex"},
                {34477, "glWeight"}};
            const auto found = named.find(call["array"]);
            if (found != named.end()) array = found->second;
            for (const auto& [state, name] : named) {
                if (name.rfind(call.name.substr(0, call.name.find("Pointer")), 0) == 0)
                    array = name;
            }
        }
        if (call.name.find("Pointer") != std::string::npos) {
            // The record takes and drops these two.
            if (!call.Is("glMatrixIndex") && !call.Is("glWeight")) {
                arrays.buffers[array] = m_buffers[34962];
            }
        } else if (call.Is("glEnableVertex") || call.Is("glEnableClient")) {
            arrays.enabled.insert(array);
        } else if (call.Is("glDisableVertex") || call.Is("glDisableClient")) {
            arrays.enabled.erase(array);
        } else {
            return false;
        }
        return true;
    }

    void Framebuffer(const char* access, bool read, unsigned aspects,
                     const std::string& area = "0,0,0x0", std::int64_t only = -1) {
        const std::int64_t bound = read ? m_read : m_draw;
        const Numbers drawn = m_drawBuffers.count(bound) != 0 ? m_drawBuffers[bound]
                              : bound == 0                    ? Numbers{1029}
                                                              : Numbers{36064};
        if (bound == 0) {
            const bool color = read || only == 36064 || (only < 0 && drawn.front() != 0);
            const unsigned said = color ? aspects : aspects & 6;
            Say(access, "surface", read ? readSurface : drawSurface, said, "0-65535", "0-65535",
                area);
            return;
        }
        for (const auto& [point, attached] : m_attachments[bound]) {
            const unsigned aspect = point == 36096 ? 2 : point == 36128 ? 4 : 1;
            const bool meant = aspect != 1 || read || point == only ||
                               (only < 0 && std::count(drawn.begin(), drawn.end(), point) != 0);
            if (!meant || (aspects & aspect) == 0 || attached.name == 0) continue;
            const bool texture = attached.kind[0] == 't';
            Say(access, attached.kind, attached.name, aspect,
                texture ? Span(attached.level, attached.level) : "0-65535",
                texture ? Span(attached.layer, attached.layer) : "0-65535", area);
        }
    }

    void Clear(const SCall& call) {
        unsigned aspects = 0;
        std::int64_t only = -1;
        if (call.Has("mask")) {
            if ((call["mask"] & 0x4000) != 0) aspects |= 1;
            if ((call["mask"] & 0x100) != 0) aspects |= 2;
            if ((call["mask"] & 0x400) != 0) aspects |= 4;
        } else {
            const std::int64_t buffer = call["buffer"];
            aspects = buffer == 6144 ? 1 : buffer == 6145 ? 2 : buffer == 6146 ? 4 : 6;
            only = aspects == 1 ? 36064 + call["drawbuffer"] : -1;
        }
        if (m_colors == 0) aspects &= 6;
        if (!m_depthMask) aspects &= 5;
        if (m_stencilMask == 0) aspects &= 3;
        const bool scissor = m_on.count({3089, 0}) != 0;
        for (unsigned aspect = 1; aspect <= 4; aspect *= 2) {
            if ((aspects & aspect) == 0) continue;
            const bool masked =
                (aspect == 1 && m_colors != 4) || (aspect == 4 && m_stencilMask != 0xFF);
            if (!scissor && !masked) Framebuffer("wipe", false, aspect, "0,0,0x0", only);
            Framebuffer("write", false, aspect, scissor && !masked ? m_scissor : "0,0,0x0", only);
        }
    }

    void Draw(const SCall& call) {
        unsigned written = m_colors != 0 ? 1 : 0;
        if (m_on.count({2929, 0}) != 0) {
            if (m_depthMask) written |= 2;
            if (!m_depthMask) Framebuffer("read", false, 2);
        }
        if (m_on.count({2960, 0}) != 0) written |= 4;
        Framebuffer("write", false, written);
        const SArrays& arrays = m_arrays[m_array];
        for (const auto& [array, buffer] : arrays.buffers) {
            if (buffer != 0 && arrays.enabled.count(array) != 0) Say("read", "buffer", buffer);
        }
        if (call.Has("indices") && arrays.elements != 0) Say("read", "buffer", arrays.elements);
        for (const auto& [place, buffer] : m_indexed) {
            if (place.first == 35345 && buffer != 0) Say("read", "buffer", buffer);
            if (place.first == 35982 && buffer != 0 && m_feedback) Say("write", "buffer", buffer);
        }
        std::set<std::int64_t> units = {0};
        for (const auto& [location, integers] : m_integers[m_program]) {
            units.insert(integers.begin(), integers.end());
        }
        if (es1) {
            units.clear();
            for (const auto& [capability, unit] : m_on) {
                if (capability == 3553) units.insert(unit);
            }
        }
        for (const std::int64_t unit : units) {
            for (const std::int64_t target : {3553, 34067, 32879, 35866}) {
                // Units that nobody touched have nothing.
                const auto bound = m_textures.find({target, unit});
                const std::int64_t name = bound != m_textures.end() ? bound->second : 0;
                const bool touched = unit == 0 || unit <= m_lastUnit;
                if (name != 0 || (target == 3553 && touched)) Say("read", "texture", name);
            }
        }
    }

    void Do(const SCall& call) {
        const std::int64_t target = call["target"];
        const bool copies = call.Is("glCopyTex");
        if (call.name == "glClear" || call.Is("glClearBuffer")) {
            Clear(call);
        } else if ((call.Is("glDraw") && call.Has("mode")) || call.Is("glMultiDraw")) {
            Draw(call);
        } else if (call.Is("glReadPixels") || copies) {
            Framebuffer("read", true, 1, Area(call["x"], call["y"], call["width"], call["height"]));
            if (copies) Image(call, "write");
            if (!copies && m_buffers[35051] != 0) Say("write", "buffer", m_buffers[35051]);
        } else if (call.Is("glBlit")) {
            Blit(call);
        } else if (call.Is("glTexStorage")) {
            Texture("wipe", call, target);
        } else if (call.Is("glTexImage") || call.Is("glTexSub") || call.Is("glCompressedTex")) {
            if (m_buffers[35052] != 0) Say("read", "buffer", m_buffers[35052]);
            Image(call, m_buffers[35052] != 0 ? "write" : "send");
        } else if (call.Is("glTexParameter")) {
            if (call["pname"] == 33169) m_makesMipmaps = true;
        } else if (call.Is("glGenerateMipmap")) {
            const std::int64_t name = m_textures[{target, m_unit}];
            Say("read", "texture", name, 7, "0-0");
            Say("wipe", "texture", name, 7, "1-65535");
            Say("write", "texture", name, 7, "1-65535");
        } else if (call.Is("glInvalidateFramebuffer") || call.Is("glDiscard")) {
            for (const std::int64_t point : call.values.at("attachments")) {
                const unsigned aspects = point == 6145 || point == 36096   ? 2
                                         : point == 6146 || point == 36128 ? 4
                                         : point == 33306                  ? 6
                                                                           : 1;
                Framebuffer("wipe", target == 36008, aspects, "0,0,0x0",
                            point == 6144 ? 36064 : point);
            }
        } else {
            DoBuffers(call);
        }
    }

    void Image(const SCall& call, const char* access) {
        const std::int64_t target = call["target"];
        if (call.name.find("Sub") == std::string::npos) Texture("wipe", call, target);
        Texture(access, call, target);
        if (es1 && m_makesMipmaps && call["level"] == 0) {
            Say("write", "texture", m_textures[{target, m_unit}], 7, "1-65535");
        }
    }

    void Blit(const SCall& call) {
        const unsigned aspects = ((call["mask"] & 0x4000) != 0 ? 1u : 0u) |
                                 ((call["mask"] & 0x100) != 0 ? 2u : 0u) |
                                 ((call["mask"] & 0x400) != 0 ? 4u : 0u);
        const auto between = [&](const char* x0, const char* y0, const char* x1, const char* y1) {
            return Area(std::min(call[x0], call[x1]), std::min(call[y0], call[y1]),
                        std::abs(call[x1] - call[x0]), std::abs(call[y1] - call[y0]));
        };
        Framebuffer("read", true, aspects, between("srcX0", "srcY0", "srcX1", "srcY1"));
        const bool scissor = m_on.count({3089, 0}) != 0;
        Framebuffer("write", false, aspects,
                    scissor ? "0,0,0x0" : between("dstX0", "dstY0", "dstX1", "dstY1"));
    }

    void DoBuffers(const SCall& call) {
        const std::int64_t target = call["target"];
        const auto say = [&](const char* access, std::int64_t bound) {
            const std::int64_t name =
                bound == 34963 ? m_arrays[m_array].elements : m_buffers[bound];
            if (name != 0) Say(access, "buffer", name);
        };
        if (call.Is("glBufferData")) {
            say("wipe", target);
            say("send", target);
        } else if (call.Is("glBufferSubData") || call.Is("glUnmapBufferOES")) {
            say("send", target);
        } else if (call.Is("glUnmapBuffer") || call.Is("glFlushMapped")) {
            say("write", target);
        } else if (call.Is("glCopyBufferSubData")) {
            say("read", call["readTarget"]);
            say("write", call["writeTarget"]);
        } else if (call.Is("glRenderbufferStorage")) {
            if (m_renderbuffer != 0) Say("wipe", "renderbuffer", m_renderbuffer);
        } else if (call.Is("glDelete")) {
            Delete(call);
        }
    }

    void Delete(const SCall& call) {
        const auto unbind = [](auto& table, std::int64_t name) {
            for (auto& [place, bound] : table) {
                if (bound == name) bound = 0;
            }
        };
        const auto each = [&](const char* list, const char* kind, auto operation) {
            if (!call.Has(list)) return;
            for (const std::int64_t name : call.values.at(list)) {
                if (name == 0) continue;
                if (kind != nullptr) Say("wipe", kind, name);
                operation(name);
            }
        };
        each("textures", "texture", [&](std::int64_t name) { unbind(m_textures, name); });
        each("renderbuffers", "renderbuffer", [&](std::int64_t name) {
            if (m_renderbuffer == name) m_renderbuffer = 0;
        });
        each("buffers", "buffer", [&](std::int64_t name) {
            unbind(m_buffers, name);
            unbind(m_indexed, name);
        });
        each("framebuffers", nullptr, [&](std::int64_t name) {
            if (m_draw == name) m_draw = 0;
            if (m_read == name) m_read = 0;
            m_attachments.erase(name);
            m_drawBuffers.erase(name);
        });
        each("arrays", nullptr, [&](std::int64_t name) {
            m_arrays.erase(name);
            if (m_array == name) m_array = 0;
        });
    }

    std::map<std::pair<std::int64_t, std::int64_t>, std::int64_t> m_textures;  ///< by target, unit
    std::map<std::int64_t, std::int64_t> m_buffers;                            ///< by target
    std::map<std::pair<std::int64_t, std::int64_t>, std::int64_t> m_indexed;
    std::map<std::int64_t, SArrays> m_arrays;
    std::map<std::int64_t, std::map<std::int64_t, SAttachment>> m_attachments;
    std::map<std::int64_t, Numbers> m_drawBuffers;
    std::map<std::int64_t, std::map<std::int64_t, Numbers>> m_integers;  ///< by program, location
    std::set<std::pair<std::int64_t, std::int64_t>> m_on;                ///< capability, unit
    std::int64_t m_draw = 0, m_read = 0, m_renderbuffer = 0, m_array = 0, m_program = 0;
    std::int64_t m_unit = 0, m_clientUnit = 0, m_lastUnit = 0, m_colors = 4, m_stencilMask = 0xFF;
    bool m_depthMask = true, m_feedback = false, m_makesMipmaps = false;
    std::string m_scissor = "0,0,0x0";
};

/// A whole recording, and what was counted on the way.
class CLook {
public:
    std::size_t frames = 0, calls = 0, effects = 0, unknown = 0, perFrame = 0;

    void Read(const std::string& path) {
        m_path = path;
        Diagnostics& told = m_told;
        CTraceDocument document(told);
        ASSERT_EQ(document.OpenTrace(path.c_str(), true), 0U) << path;
        CFrameStore& store = *document.GetFrameStore();
        frames += store.FrameCount();
        SFrameState state;
        SUpdates updates(told);
        std::uint32_t frame = 1;
        for (std::uint32_t number = 1; CCallEntry* const entry = store.CallAt(number); ++number) {
            if (const std::uint32_t now = store.FrameOfCall(number - 1); now != frame) {
                frame = now;
                perFrame += m_union.size();
                m_union.clear();
            }
            Compare(*entry, state, number);
            state.Apply(*entry->call, updates, EApplied::kRecorded);
            if (m_failures > 20) return;
        }
    }

private:
    struct STold : Diagnostics {
        void OnTold(EDiagnostic, const char*, std::va_list) override {}
    };

    void Compare(const CCallEntry& entry, const SFrameState& state, std::uint32_t number) {
        std::vector<SEffect> found;
        ListEffects(*entry.call, *state.egl, *state.es1, *state.es2, found);
        ++calls;
        effects += found.size();
        Lines known;
        std::set<std::string> anyOf;
        for (const SEffect& effect : found) {
            if (!effect.unknown) {
                AddLines(effect, known);
                continue;
            }
            ++unknown;
            const std::string kind = kKinds[static_cast<int>(effect.kind)];
            anyOf.insert(std::string(kAccesses[static_cast<int>(effect.access)]) + " " + kind +
                         " ");
            // Before what can't be told is written, what is gone of it is left out.
            anyOf.insert("wipe " + kind + " ");
        }
        const Lines expected = Expected(entry);
        m_union.insert(expected.begin(), expected.end());
        for (const std::string& line : expected) {
            const bool covered = known.erase(line) != 0 ||
                                 std::any_of(anyOf.begin(), anyOf.end(), [&](const auto& any) {
                                     return line.rfind(any, 0) == 0;
                                 });
            m_failures += covered ? 0 : 1;
            EXPECT_TRUE(covered) << m_path << ", call " << number << ", " << entry.call->GetName()
                                 << ": missing " << line;
        }
        for (const std::string& line : known) {
            ++m_failures;
            ADD_FAILURE() << m_path << ", call " << number << ", " << entry.call->GetName()
                          << ": not expected " << line;
        }
    }

    Lines Expected(const CCallEntry& entry) {
        const CGenCallInfo info = entry.GetInfo();
        m_text.Clear();
        info.GetErrorValue()->AppendText(m_text);
        const bool failed = m_text.View().find("GL_NO_ERROR") == std::string_view::npos &&
                            m_text.View().find("EGL_SUCCESS") == std::string_view::npos;
        if (failed) return {};
        SCall call;
        call.name = info.GetCallName();
        const auto* const parameters = info.GetParameters();
        for (std::uint32_t i = 0; i < info.GetVisibleCount(); ++i) {
            const std::string_view name = info.GetParameterName(i);
            if (name == "data" || name == "pixels") continue;
            m_text.Clear();
            (*parameters)[i]->AppendNumericText(m_text);
            call.values[info.GetParameterName(i)] = NumbersIn(std::string(m_text.View()));
        }
        const bool isEs1 = std::string_view(info.GetApiName()) == "ES1";
        CContext& context = m_contexts[isEs1 ? 1 : 0];
        context.es1 = isEs1;
        context.lines.clear();
        if (call.name == "eglMakeCurrent") {
            for (CContext& each : m_contexts) {
                each.drawSurface = call["draw"];
                each.readSurface = call["read"];
            }
        } else if (call.name == "eglSwapBuffers") {
            context.Say("read", "surface", call["surface"], 1);
            context.Say("wipe", "surface", call["surface"], 7);
        } else if (call.name == "eglDestroySurface") {
            context.Say("wipe", "surface", call["surface"], 7);
        } else {
            context.Play(call);
        }
        return context.lines;
    }

    std::string m_path;
    STold m_told;
    std::array<CContext, 2> m_contexts;
    TextWriter m_text;
    Lines m_union;
    std::size_t m_failures = 0;  ///< of which some are enough
};

TEST(Effects, OfEveryCallAreWhatAnotherLookFinds) {
    CLook all;
    for (const char* folder : {KESTRAIL_SAMPLES, KESTRAIL_TRACES_FOLDER}) {
        if (!std::filesystem::exists(folder)) continue;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (entry.path().extension() != ".kstl") continue;
            CLook look;
            look.Read(entry.path());
            std::printf("%-30s %5zu frames %7zu calls %7zu effects %6zu unknown %6zu a frame's\n",
                        entry.path().stem().c_str(), look.frames, look.calls, look.effects,
                        look.unknown, look.perFrame);
            all.effects += look.effects;
        }
    }
    EXPECT_GT(all.effects, 0U);
}

}  // namespace
}  // namespace kestrail
