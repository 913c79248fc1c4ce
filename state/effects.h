// What calls read and change of the contents that a driver holds: the pixels of surfaces, textures
// and renderbuffers and the bytes of buffers. The records hold what an application sent; what the
// driver made of it has to be drawn again, by the frames that these effects tell.
#pragma once

#include <cstdint>
#include <vector>

#include "base/enumerants.h"
#include "calls/model/api_call.h"
#include "calls/model/array_values.h"
#include "state/egl/egl_state.h"
#include "state/es1/es1_state.h"
#include "state/es2/es2_state.h"

namespace kestrail {

enum class EAccess : std::uint8_t {
    kRead,   ///< what is left there of earlier calls counts
    kWipe,   ///< what was there is gone, whole
    kWrite,  ///< the driver puts something there that only this call brings back
    kSend,   ///< what the call carries is put there
};

enum class EContent : std::uint8_t { kSurface, kTexture, kRenderbuffer, kBuffer };

/// What an image holds, as bits.
enum EAspect : std::uint8_t { kColor = 1, kDepth = 2, kStencil = 4, kAllAspects = 7 };

struct SSpan {
    std::uint16_t first = 0;
    std::uint16_t last = 0xFFFF;

    bool operator==(const SSpan&) const = default;
};

struct SArea {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool operator==(const SArea&) const = default;
};

struct SEffect {
    EContent kind = EContent::kTexture;
    EAccess access = EAccess::kRead;
    /// The records can't tell which: it may be any of that kind, and of a surface any moment.
    bool unknown = false;
    std::uint8_t aspects = kAllAspects;
    std::uint32_t name = 0;  ///< the recorded name or handle; 0 of all default textures
    SSpan levels;
    SSpan layers;  ///< faces of a cube map, layers of others
    /// What is read, written or sent, all of it; without a width, nobody knows how much. The size
    /// that a wiped image has from now on, where the call gives it one.
    SArea area;

    bool operator==(const SEffect&) const = default;
};

/// Appends what a call does, wipes in front of what is written then. The records are those of the
/// contexts that are current, just before the call. Nothing for a call that had failed. Not seen:
/// attachments and vertex arrays that extensions of ES2 set, since no record holds them.
void ListEffects(const CApiCall& call, const CEglState& egl, const CEs1State& es1,
                 const CEs2State& es2, std::vector<SEffect>& effects);

/// Finds the objects that the words of the calls' rows mean, an operation for each place. Whether
/// the records are those of ES1 is the call's.
class CEffects {
public:
    using Names = SArrayPtr<TGLuint, 1, 1>;
    using Enums = SArrayPtr<TGLenum, 1, 1>;

    /// The part of a texture that a call names; -1 stands for all of it.
    struct SPart {
        std::uint32_t target = GL_TEXTURE_2D;
        std::int32_t level = -1;
        std::int32_t xoffset = 0;
        std::int32_t yoffset = 0;
        std::int32_t zoffset = -1;
        std::int32_t width = 0;
        std::int32_t height = 0;
        std::int32_t depth = 1;
    };

    CEffects(const CEglState& egl, const CEs1State& es1, const CEs2State& es2, bool isEs1,
             std::vector<SEffect>& effects)
        : m_egl(egl), m_es1(es1), m_es2(es2), m_isEs1(isEs1), m_effects(effects) {}

    void Surface(EAccess access, std::uint32_t surface);
    void AgedSurface(EAccess access, std::uint32_t surface, std::int32_t attribute);
    void Drawn(EAccess access);
    void Cleared(EAccess access, std::uint32_t mask);
    void Cleared(EAccess access, std::uint32_t buffer, std::int32_t drawBuffer);
    void Attachments(EAccess access, std::uint32_t target, const Enums& attachments);
    void Blitted(EAccess access, std::uint32_t mask, std::int32_t x0, std::int32_t y0,
                 std::int32_t x1, std::int32_t y1);
    void Pixels(EAccess access, const SArea& area);
    void Packed(EAccess access);
    void Sampled(EAccess access);
    void Vertices(EAccess access);
    void Texture(EAccess access, const SPart& part);
    void Mipmaps(EAccess access, std::uint32_t target);
    void Foreign(EAccess access);
    void Renderbuffer(EAccess access);
    void Buffer(EAccess access, std::uint32_t target);
    void Named(EAccess access, EContent kind, const Names& names);

private:
    /// By the state of the context: what draws and clears can change.
    struct SRaster;

    SEffect& Add(EContent kind, EAccess access, std::uint32_t name);
    void AddUnknown(EContent kind, EAccess access);
    void Attached(EAccess access, const SAttachmentState& attachment, std::uint8_t aspects,
                  const SArea& area);
    /// `colors`: the color attachments that are meant, as bits.
    void Framebuffer(EAccess access, bool read, std::uint8_t aspects, std::uint32_t colors,
                     const SArea& area);
    void Clear(EAccess access, std::uint8_t aspects, std::uint32_t colors);
    const SFramebufferState* FindFramebuffer(std::uint32_t name) const;
    std::uint32_t DrawnColors() const;
    SRaster Raster() const;
    void BoundTexture(EAccess access, std::uint32_t target, SSpan levels, SSpan layers,
                      const SArea& area);
    /// All that the program in use may sample, as bits.
    std::uint32_t SampledUnits() const;

    const CEglState& m_egl;
    const CEs1State& m_es1;
    const CEs2State& m_es2;
    bool m_isEs1;
    std::vector<SEffect>& m_effects;
};

}  // namespace kestrail
