#include "transitions/es1_transition.h"

#include <algorithm>

#include "transitions/context_steps.h"
#include "transitions/es1_transition_steps.h"

namespace kestrail {
namespace {

void SetFog(SEs1Transition& t) {
    t.host.glFogf(GL_FOG_MODE, t.target.fogMode);
    t.host.glFogf(GL_FOG_DENSITY, t.target.fogDensity);
    t.host.glFogf(GL_FOG_START, t.target.fogStart);
    t.host.glFogf(GL_FOG_END, t.target.fogEnd);
    t.host.glFogfv(GL_FOG_COLOR, t.target.fogColor.data());
}

void SetLight(SEs1Transition& t) {
    t.host.glLightModelf(GL_LIGHT_MODEL_TWO_SIDE, t.target.lightModelTwoSide != 0 ? 1.0F : 0.0F);
    t.host.glLightModelfv(GL_LIGHT_MODEL_AMBIENT, t.target.lightModelAmbient.data());
    const SLights& lights = *t.target.lights;
    const GLint count = t.answers.Es1Limit(GL_MAX_LIGHTS);
    for (std::uint32_t light = 0; light < lights.values.size(); ++light) {
        if (static_cast<GLint>(light) >= count) break;
        for (std::size_t i = 0; i < kLightParameters.size(); ++i) {
            t.host.glLightfv(GL_LIGHT0 + light, kLightParameters[i],
                             lights.values[light][i].data());
        }
    }
}

void SetClipPlanes(SEs1Transition& t) {
    const GLint count = t.answers.Es1Limit(GL_MAX_CLIP_PLANES);
    for (std::uint32_t plane = 0; plane < t.target.clipPlanes.size(); ++plane) {
        if (static_cast<GLint>(plane) >= count) break;
        t.host.glClipPlanef(GL_CLIP_PLANE0 + plane, t.target.clipPlanes[plane].data());
    }
}

void SetPointsAndPixels(SEs1Transition& t) {
    const auto& normal = t.target.currentNormal;
    t.host.glNormal3f(normal[0], normal[1], normal[2]);
    SetAlignments(t.host, t.session.eglNames, t.target);
    for (std::size_t i = 0; i < kPointParameters.size(); ++i) {
        t.host.glPointParameterfv(kPointParameters[i], t.target.pointParameters[i].data());
    }
    t.host.glPointSize(t.target.pointSize);
    SetOffsetAndCoverage(t.host, t.target);
    // Kept: an empty box alone goes to the host; tools compare pictures of sought frames.
    const auto& box = t.target.scissorBox;
    if (box[2] == box[3] && box[2] == 0) t.host.glScissor(box[0], box[1], box[2], box[3]);
}

}  // namespace

void SEs1Transition::BindRecordedBuffers() const {
    const auto* arrays = target.vertexArrays->Find(target.currentVertexArray);
    host.glBindBuffer(GL_ARRAY_BUFFER, target.arrayBuffer);
    host.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, arrays != nullptr ? (*arrays)->elementBuffer : 0);
}

void TransitionEs1Scalars(SEs1Transition& t) {
    const CEs1State& target = t.target;
    t.host.glBlendFunc(target.blendSrc, target.blendDst);
    SetClearValues(t.host, target);
    SetClipPlanes(t);
    const auto& color = target.currentColor;
    t.host.glColor4f(color[0], color[1], color[2], color[3]);
    SetMasksAndDepth(t.host, target);
    SetFog(t);
    t.host.glFrontFace(target.frontFace);
    for (std::size_t i = 0; i < kEs1Hints.size(); ++i) {
        t.host.glHint(kEs1Hints[i], target.hints[i]);
    }
    SetLight(t);
    t.host.glLineWidth(target.lineWidth);
    t.host.glLogicOp(target.logicOp);
    for (std::size_t i = 0; i < kMaterialParameters.size(); ++i) {
        t.host.glMaterialfv(GL_FRONT_AND_BACK, kMaterialParameters[i], target.material[i].data());
    }
    t.host.glActiveTexture(target.activeTexture);
    t.SelectPalette(target.paletteIndex);
    SetPointsAndPixels(t);
    t.host.glShadeModel(target.shadeModel);
    const SStencilState& stencil = target.stencil;
    t.host.glStencilFunc(stencil.func, stencil.ref, stencil.valueMask);
    t.host.glStencilMask(stencil.writeMask);
    t.host.glStencilOp(stencil.fail, stencil.depthFail, stencil.depthPass);
    const auto& viewport = target.viewport;
    if (viewport[2] != 0 || viewport[3] != 0) {
        t.host.glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
        t.names.ViewportDirty() = true;
    }
}

void TransitionEs1Matrices(SEs1Transition& t) {
    // Kept: not the last stack; tools compare seeks.
    constexpr std::int32_t kRestored = kMatrixStacks - 1;
    constexpr auto kDeepest = static_cast<std::int32_t>(CMatrixStack::kLevels) - 1;
    for (std::int32_t i = 0; i < kRestored; ++i) {
        const auto place = static_cast<std::size_t>(i);
        if (i == kStackModelView) {
            t.host.glMatrixMode(GL_MODELVIEW);
        } else if (i == kStackProjection) {
            t.host.glMatrixMode(GL_PROJECTION);
        } else if (i < kStackPalette && i - kStackTexture < t.target.textureUnitsUsed) {
            t.host.glMatrixMode(GL_TEXTURE);
            t.host.glActiveTexture(GL_TEXTURE0 + static_cast<std::uint32_t>(i - kStackTexture));
        } else if (i >= kStackPalette && i - kStackPalette < t.target.paletteMatricesUsed) {
            t.host.glMatrixMode(GL_MATRIX_PALETTE_OES);
            t.SelectPalette(i - kStackPalette);
        }
        // Kept: what selects nothing goes to the stack selected before; tools compare seeks.
        const std::int32_t pushed = t.current != nullptr ? t.current->matrixStacks[place].top : 0;
        for (std::int32_t level = 0; level < std::min(pushed, kDeepest); ++level) {
            t.host.glPopMatrix();
        }
        const CMatrixStack& stack = t.target.matrixStacks[place];
        const std::int32_t top = std::clamp(stack.top, 0, kDeepest);
        for (std::int32_t level = 0; level <= top; ++level) {
            t.host.glLoadMatrixf(stack.Level(static_cast<std::uint32_t>(level)).data());
            if (level < top) t.host.glPushMatrix();
        }
    }
    t.host.glMatrixMode(t.target.matrixMode);
    t.SelectPalette(t.target.paletteIndex);
    t.host.glActiveTexture(t.target.activeTexture);
}

void TransitionEs1State(SSession& session, CHostAnswers& answers, const CEs1State& target,
                        const CEs1State* current) {
    SEs1Transition t{session, answers, target, current};
    t.names.Buffers().Set(0, 0);
    t.names.Renderbuffers().Set(0, 0);
    t.names.Framebuffers().Set(0, 0);
    answers.FindEs1Extensions();

    TransitionEs1Textures(t);
    TransitionEs1Units(t);
    for (std::size_t i = 0; i < kEs1Capabilities.size(); ++i) {
        Switch(t.host, kEs1Capabilities[i], target.capabilities[i] != 0);
    }
    t.host.glAlphaFunc(target.alphaFunc, target.alphaRef);
    TransitionEs1Buffers(t);
    t.BindRecordedBuffers();
    // Kept: lights and clip planes ahead of the matrices that place them; tools compare seeks.
    TransitionEs1Scalars(t);
    TransitionEs1Matrices(t);
    TransitionEs1ClientArrays(t);
    TransitionEs1Framebuffers(t);
}

}  // namespace kestrail
