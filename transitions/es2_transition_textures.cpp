#include <algorithm>
#include <vector>

#include "base/enumerants.h"
#include "exec/host_data.h"
#include "exec/name_calls.h"
#include "transitions/es2_transition_steps.h"
#include "transitions/host_bytes.h"
#include "transitions/table_sweep.h"

namespace kestrail {
namespace {

/// The contents of a texture's images, which a moment ago were those of the host.
class CKnownImages {
public:
    CKnownImages() = default;
    explicit CKnownImages(const STextureFaces& faces) {
        for (std::int32_t f = 0; f < faces.Count(); ++f) {
            const auto& levels = ValueAt(faces, f);
            for (std::int32_t l = 0; l < levels.Count(); ++l) {
                m_contents.push_back(ValueAt(levels, l).data.Identity());
            }
        }
        std::sort(m_contents.begin(), m_contents.end());
    }

    bool Has(const STextureImageState& image) const {
        return std::binary_search(m_contents.begin(), m_contents.end(), image.data.Identity());
    }

private:
    std::vector<std::uintptr_t> m_contents;
};

bool IsFlat(GLenum target) {
    return target == GL_TEXTURE_2D ||
           (target >= GL_TEXTURE_CUBE_MAP && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z);
}

bool IsDeep(GLenum target) {
    return target == GL_TEXTURE_2D_ARRAY || target == GL_TEXTURE_3D;
}

class CTextureTransition {
public:
    explicit CTextureTransition(SEs2Transition& t)
        : m_t(t), m_target(t.target), m_current(t.current), m_host(t.host), m_names(t.names) {}

    void Run() {
        const auto& textures = *m_target.textures;
        const auto& before = *m_current.textures;
        TKeyIndex<TShared<STextureFaces>> known(before);
        m_kept.resize(static_cast<std::size_t>(before.Count()));
        for (std::int32_t i = 0; i < textures.Count(); ++i) {
            const TShared<STextureFaces>& faces = ValueAt(textures, i);
            const std::int32_t place = known.Find(textures.KeyAt(i), i);
            if (place >= 0) m_kept[static_cast<std::size_t>(place)] = true;
            const TShared<STextureFaces>* old = place >= 0 ? &ValueAt(before, place) : nullptr;
            if (old == nullptr || !old->SameAs(faces)) {
                UploadChanged(textures.KeyAt(i), *faces, old);
            }
            SetParameters(textures.KeyAt(i), *faces);
        }
        DeleteGone();
        BindUnits();
    }

private:
    void UploadChanged(std::uint32_t name, const STextureFaces& faces,
                       const TShared<STextureFaces>* old) {
        const CKnownImages known = old != nullptr ? CKnownImages(**old) : CKnownImages();
        for (std::int32_t f = 0; f < faces.Count(); ++f) {
            const auto& levels = ValueAt(faces, f);
            for (std::int32_t l = 0; l < levels.Count(); ++l) {
                const STextureImageState& image = ValueAt(levels, l);
                if (!known.Has(image)) Upload(name, image);
            }
        }
    }

    void Upload(std::uint32_t name, const STextureImageState& image) {
        const GLuint live = LiveOrGenerated(m_names.Textures(), name, m_host.glGenTextures);
        m_host.glBindTexture(image.bindTarget, live);
        if (image.width < 1 && image.height < 1) return;
        if (image.unpackAlignment != 0) {
            // Kept: pack, where unpack is meant; drivers read uploads by what stands.
            m_host.glPixelStorei(GL_PACK_ALIGNMENT, image.unpackAlignment);
            Pixels().Set(GL_PACK_ALIGNMENT, image.unpackAlignment);
        }
        if (image.compressed != 0) {
            UploadCompressed(image);
        } else {
            UploadPixels(image);
        }
        CheckTransitionError(m_t);
    }

    void UploadPixels(const STextureImageState& image) {
        const bool deep = IsDeep(image.target);
        const auto bytes = [&](const SPixelStore& store) {
            return deep ? ImageBytes(image.format, image.type, image.width, image.height,
                                     image.depth, store)
                        : ImageBytes(image.format, image.type, image.width, image.height, store);
        };
        CHostBytes contents;
        const void* pixels = contents.Pixels(image.data, bytes(TightlyPacked()), bytes(Pixels()));
        if (IsFlat(image.target)) {
            // Kept: the format for the internal one too; drivers of ES2 ask for equal ones.
            m_host.glTexImage2D(image.target, image.level, static_cast<GLint>(image.format),
                                image.width, image.height, image.border, image.format, image.type,
                                pixels);
        } else if (deep) {
            m_t.session.hosts.Es3().glTexImage3D(image.target, image.level, image.internalFormat,
                                                 image.width, image.height, image.depth,
                                                 image.border, image.format, image.type, pixels);
        }
    }

    void UploadCompressed(const STextureImageState& image) {
        CHostBytes contents;
        const void* data = contents.Whole(image.data, image.imageSize);
        if (data == nullptr) return;
        m_host.glCompressedTexImage2D(
            image.target, image.level, static_cast<GLenum>(image.internalFormat), image.width,
            image.height, image.border, static_cast<GLsizei>(image.imageSize), data);
    }

    void SetParameters(std::uint32_t name, const STextureFaces& faces) {
        if (faces.Count() == 0 || ValueAt(faces, 0).Count() == 0) return;
        const STextureImageState& first = ValueAt(ValueAt(faces, 0), 0);
        if (first.level != 0) return;
        m_host.glBindTexture(first.bindTarget, m_names.Textures().Get(name));
        const auto* levels = faces.Find(0);
        const STextureImageState* base = levels != nullptr ? levels->Find(0) : nullptr;
        if (base == nullptr) return;
        constexpr std::size_t kEs2Parameters = 4;
        const std::size_t count =
            m_target.apiVersion == 3 ? kTextureParameters.size() : kEs2Parameters;
        for (std::size_t i = 0; i < count; ++i) {
            m_host.glTexParameteri(first.bindTarget, kTextureParameters[i].pname,
                                   base->parameters[i]);
        }
    }

    void DeleteGone() {
        const auto& before = *m_current.textures;
        for (std::int32_t i = 0; i < before.Count(); ++i) {
            if (m_kept[static_cast<std::size_t>(i)]) continue;
            const GLuint live = m_names.Textures().Get(before.KeyAt(i));
            if (live == 0) continue;
            m_host.glDeleteTextures(1, &live);
            m_names.Textures().Erase(before.KeyAt(i));
        }
    }

    void BindUnits() {
        for (std::uint32_t unit = 0; unit < m_target.Units(); ++unit) {
            m_host.glActiveTexture(GL_TEXTURE0 + unit);
            // Kept: two of the four targets; tools compare seeks.
            m_host.glBindTexture(GL_TEXTURE_2D,
                                 m_names.Textures().Get((*m_target.binding2D)[unit]));
            m_host.glBindTexture(GL_TEXTURE_CUBE_MAP,
                                 m_names.Textures().Get((*m_target.bindingCube)[unit]));
        }
        m_host.glActiveTexture(m_target.activeTexture);
    }

    SPixelStore& Pixels() { return m_t.session.eglNames.PixelStore(); }

    SEs2Transition& m_t;
    const CEs2State& m_target;
    const CEs2State& m_current;
    SEs2Host& m_host;
    CEs2Names& m_names;
    std::vector<bool> m_kept;  ///< textures of the current record
};

}  // namespace

void TransitionTextures(SEs2Transition& t) {
    CTextureTransition(t).Run();
}

}  // namespace kestrail
