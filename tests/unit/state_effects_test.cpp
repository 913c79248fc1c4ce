// What of a call's effects no recording shows, and which part of an object they reach.
#include "state/effects.h"
#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

/// Calls behind the version of the context, and behind an arrow the effects of the last of them. A
/// ? stands behind the kind of what can't be told; only what differs from a whole object is shown.
constexpr const char* kRows = R"(2 eglSurfaceAttrib DPY SRF 12435 12436 = 1; swap
-> read surface 1024 c; wipe surface 1024 ds
2 eglSurfaceAttrib DPY SRF 12435 12436 = 1; eglSurfaceAttrib DPY SRF 12435 12437 = 1; swap
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
    static const char* const s_kinds[] = {"surface", "texture", "renderbuffer", "buffer"};
    static const char* const s_accesses[] = {"read", "wipe", "write", "send"};
    std::ostringstream text;
    text << s_accesses[static_cast<int>(effect.access)] << ' '
         << s_kinds[static_cast<int>(effect.kind)] << (effect.unknown ? "?" : "") << ' '
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

std::string EffectsOfLast(int clientVersion, const std::string& calls) {
    CTraceBuilder trace;
    trace.StartUp(clientVersion, 64, 48);
    std::istringstream lines(calls);
    for (std::string line; std::getline(lines >> std::ws, line, ';');) {
        line == "swap" ? static_cast<void>(trace.SwapBuffers())
                       : AddCall(trace, line, clientVersion == 1);
    }
    const CTempFile file(trace.Build());
    SQuiet told;
    CTraceDocument document(told);
    EXPECT_EQ(document.OpenTrace(file.Name().c_str(), true), 0U);
    SFrameState state;
    SUpdates updates(told);
    CFrameStore& store = *document.GetFrameStore();
    for (std::uint32_t number = 1; number < store.CallCount(); ++number) {
        state.Apply(*store.CallAt(number)->call, updates, EApplied::kRecorded);
    }
    std::vector<SEffect> effects;
    ListEffects(*store.CallAt(store.CallCount())->call, *state.egl, *state.es1, *state.es2,
                effects);
    std::string text;
    for (const SEffect& effect : effects) text += (text.empty() ? " " : "; ") + Text(effect);
    return text;
}

TEST(Effects, OfCallsByTheStateInFrontOfThem) {
    std::istringstream stream(kRows);
    std::string row[2];
    int part = 0;
    for (std::string line; std::getline(stream, line);) {
        if (line[0] == '-') part = 1;
        row[part] += line.substr(line[0] == '-' ? 2 : line[0] == ' ' ? 1 : 0);
        if (part == 0 || stream.peek() == ' ') continue;
        EXPECT_EQ(EffectsOfLast(row[0][0] - '0', row[0].substr(2)), row[1]) << row[0];
        for (std::string& each : row) each.clear();
        part = 0;
    }
}

}  // namespace
}  // namespace kestrail
