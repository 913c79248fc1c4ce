// Names of ES2 and ES3 objects: what the recording calls them against what the host calls them.
#pragma once

#include <cstdint>

#include "exec/name_map.h"

namespace kestrail {

struct SShaderRecord {
    std::uint32_t references = 0;  ///< how many program records list it
    bool deletePending = false;    ///< deleted by the application while attached
    std::uint32_t liveName = 0;
    std::uint32_t type = 0;
};

struct SProgramRecord {
    bool deletePending = false;  ///< deleted by the application while in use
    std::uint32_t liveName = 0;
    std::uint32_t vertexShader = 0;    ///< recorded name of the shader attached last, 0 when none
    std::uint32_t fragmentShader = 0;  ///< likewise
};

class CEs2Names {
public:
    using Names = TNameMap<std::uint32_t>;
    using Locations = TNameTable<std::uint32_t, std::int32_t>;
    static constexpr std::uint32_t kUnknown = 0xFFFFFFFFu;

    CEs2Names() { ResetNames(); }

    Names& Textures() { return m_textures; }
    Names& Samplers() { return m_samplers; }
    Names& Renderbuffers() { return m_renderbuffers; }
    Names& Framebuffers() { return m_framebuffers; }
    Names& VertexArrays() { return m_vertexArrays; }
    Names& Buffers() { return m_buffers; }
    /// Sync objects are pointers on the host.
    TNameMap<std::uintptr_t>& Syncs() { return m_syncs; }

    /// Null for a name that the recording did not create.
    SShaderRecord* GetShaderRecord(std::uint32_t recorded) { return m_shaders.Find(recorded); }
    SProgramRecord* GetProgramRecord(std::uint32_t recorded) { return m_programs.Find(recorded); }
    void SetShader(std::uint32_t recorded, std::uint32_t live, std::uint32_t type);
    void SetProgram(std::uint32_t recorded, std::uint32_t live);
    void DeleteShaderRecord(std::uint32_t recorded) { m_shaders.Erase(recorded); }
    /// Both records must be there.
    void AttachShader(std::uint32_t recordedProgram, std::uint32_t recordedShader);
    void DetachShader(std::uint32_t recordedProgram, std::uint32_t recordedShader);
    /// Erases the record with its hold on shaders, or marks it while the program is in use.
    void DeleteProgram(std::uint32_t recordedProgram);
    /// Makes a live program the one in use; with `sweep`, programs that were deleted while in use
    /// go now.
    void UseProgram(std::uint32_t liveName, bool sweep);
    std::uint32_t CurrentProgram() const { return m_currentProgram; }

    void SetUniformLocation(std::uint32_t liveProgram, std::int32_t recorded, std::int32_t live);
    void SetAttribLocation(std::uint32_t liveProgram, std::int32_t recorded, std::int32_t live);
    /// By the locations of the program in use; -1 for one that was never asked for.
    std::int32_t GetUniformLocation(std::int32_t recorded) const {
        return LocationIn(m_uniformLocations.Find(m_currentProgram), recorded);
    }
    std::int32_t GetAttribLocation(std::int32_t recorded) const {
        return LocationIn(AttribLocations(), recorded);
    }
    /// Of the program in use; null when none of it was asked for.
    const Locations* AttribLocations() const {
        // Tables of attributes stay where they are, and none of them is erased.
        if (m_attribs == nullptr || m_attribsOf != m_currentProgram) {
            m_attribs = m_attribLocations.Find(m_currentProgram);
            m_attribsOf = m_currentProgram;
        }
        return m_attribs;
    }
    static std::int32_t LocationIn(const Locations* locations, std::int32_t recorded) {
        if (locations == nullptr) return -1;
        const std::int32_t* live = locations->Find(static_cast<std::uint32_t>(recorded));
        return live != nullptr ? *live : -1;
    }
    void EraseUniformLocation(std::int32_t recorded);
    void ClearUniformLocations(std::uint32_t liveProgram);

    /// Set by what moves the viewport or the framebuffer; the next draw reads and clears it.
    bool& ViewportDirty() { return m_viewportDirty; }
    /// The extension entries of this API's host table are filled for the context.
    bool& ExtensionsResolved() { return m_extensionsResolved; }

    // Kept: forgets all names but 0 and attribute locations, which drivers' names find again.
    void ResetNames();

private:
    /// One program less has the shader. It goes with the last one when it is to be deleted.
    void ReleaseShader(std::uint32_t recorded);

    // Kept: 0 is a miss for some and all ones for others; tools compare host calls.
    Names m_textures{0};
    Names m_samplers{0};
    TNameMap<std::uintptr_t> m_syncs{0};
    Names m_renderbuffers{kUnknown};
    Names m_framebuffers{kUnknown};
    Names m_vertexArrays{kUnknown};
    Names m_buffers{kUnknown};
    TNameTable<std::uint32_t, SShaderRecord> m_shaders;
    TNameTable<std::uint32_t, SProgramRecord> m_programs;
    TNameTable<std::uint32_t, Locations> m_uniformLocations;
    TNameTable<std::uint32_t, Locations> m_attribLocations;
    std::uint32_t m_currentProgram = 0;
    /// What was looked up last in `m_attribLocations`.
    mutable const Locations* m_attribs = nullptr;
    mutable std::uint32_t m_attribsOf = 0;
    /// Some program may be deleted but for its use: the current one, or others.
    bool m_currentPending = false;
    bool m_programsPending = false;
    bool m_viewportDirty = false;
    bool m_extensionsResolved = false;
};

/// The live index of a recorded attribute index, which stands for itself when it has no
/// translation.
inline std::uint32_t AttributeIndex(const CEs2Names::Locations* locations, std::uint32_t recorded) {
    const std::int32_t live = CEs2Names::LocationIn(locations, static_cast<std::int32_t>(recorded));
    return live == -1 ? recorded : static_cast<std::uint32_t>(live);
}
inline std::uint32_t AttributeIndex(const CEs2Names& names, std::uint32_t recorded) {
    return AttributeIndex(names.AttribLocations(), recorded);
}

}  // namespace kestrail
