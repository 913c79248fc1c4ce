// What calls read and change of what a driver holds: the state of contexts, objects, and their
// contents. Every such thing is a place of an object; what has been done to each place, call by
// call, is its journal. From journals follows which earlier calls a call stands on, and so the few
// calls that a stretch of a trace needs in front of it.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

#include "base/enumerants.h"
#include "calls/model/api_call.h"
#include "calls/model/array_values.h"
#include "slicing/flat_index.h"

namespace kestrail {

enum class EObject : std::uint8_t {
    kProcess,
    kDisplay,
    kContext,
    kSurface,
    kTexture,
    kBuffer,
    kRenderbuffer,
    kFramebuffer,
    kVertexArray,
    kProgram,  ///< shaders too, which have their names among those of programs
    kSampler,
    kFeedback,
    kSync,
};

/// What there is of an object. Behind each, what tells its places apart.
enum class ESlot : std::uint8_t {
    kExistence,
    kNames,  ///< kind: all names that were made and deleted within
    // Of the process.
    kCurrentContext,
    kBoundApi,
    // Of contexts.
    kDrawSurface,
    kReadSurface,
    kActiveTexture,
    kClientTexture,
    kBoundTexture,   ///< unit and kind of target
    kBoundSampler,   ///< unit
    kBoundBuffer,    ///< target
    kIndexedBuffer,  ///< target and index
    kBoundRenderbuffer,
    kBoundDrawFramebuffer,
    kBoundReadFramebuffer,
    kBoundVertexArray,
    kBoundFeedback,
    kProgramInUse,
    kPixelStore,  ///< pname
    kCapability,  ///< capability, in ES1 with the texture unit
    kColorMask,
    kDepthMask,
    kStencilMask,  ///< face
    kScissor,
    kMatrixMode,
    kPalette,
    kMatrix,    ///< mode, with the texture unit or the palette's matrix
    kMaterial,  ///< pname
    kColor,
    kFeedback,
    kState,  ///< what rules call State
    // Of surfaces, textures, renderbuffers, samplers and buffers.
    kAttribute,  ///< attribute or pname
    kStorage,    ///< level and face
    kContent,    ///< level, layer and aspect
    kMapping,
    // Of programs and shaders.
    kSource,
    kCompilation,
    kBuild,
    kUniformLocation,    ///< location
    kAttributeLocation,  ///< location
    kUniform,            ///< location
    kUniformBlock,       ///< index
    // Of framebuffers.
    kAttachment,  ///< color attachment, kDepthAttachment or kStencilAttachment
    kDrawBuffers,
    kReadBuffer,
    // Of vertex arrays.
    kElements,
    kArray,  ///< index, in ES1 the array's enumerant and unit
    kArrayEnabled,
    kArrayDivisor,
};

struct alignas(64) SJournal {
    /// One thing done to a place. What counts of those before it is found by going from one to the
    /// other.
    struct SEntry {
        std::uint32_t since = 0;     ///< the call behind which it counts
        std::uint32_t call = 0;      ///< what did it; 0 if nothing has to be done
        std::uint32_t previous = 0;  ///< the entry that counts too, from 1; 0 for none
        std::uint32_t value = 0;     ///< what the place holds, as far as others have to know
    };
    /// The part of an image, or bytes from x on.
    struct SArea {
        std::int32_t x = 0, y = 0, width = 0, height = 0;  ///< all of it without a width

        bool Covers(const SArea& other) const {
            return width != 0 && other.width != 0 && x <= other.x && y <= other.y &&
                   std::int64_t{x} + width >= std::int64_t{other.x} + other.width &&
                   std::int64_t{y} + height >= std::int64_t{other.y} + other.height;
        }
    };

    std::uint32_t object = 0;
    ESlot slot = ESlot::kExistence;
    std::uint64_t place = 0;
    /// Parts added since those that nobody sees any more were left out.
    std::uint32_t parts = 0;
    std::vector<SEntry> entries;
    std::vector<SArea> areas;  ///< of the entries; may end before them
    std::vector<std::uint32_t>
        visits;  ///< of the entries, for whoever goes through; may end before

    /// The entry that counts in front of that call, from 1; 0 for none.
    std::uint32_t Find(std::uint32_t call) const;
};

struct SObject {
    EObject kind = EObject::kProcess;
    std::uint32_t name = 0;
    /// Within what its name is its own.
    std::uint32_t scope = 0;
    /// Of a context, the first one of those that it shares objects with.
    std::uint32_t group = 0;
    std::uint32_t born = 0;      ///< the first call that named it
    std::uint32_t died = 0;      ///< the call that deleted it
    std::uint32_t previous = 0;  ///< the object that had the name before
    bool bound = false;          ///< it was, which makes it one for drivers
    std::vector<std::uint32_t> journals;
};

class CEffects {
public:
    /// Finds a call that was noted by its number.
    using FindCall = std::function<const CApiCall&(std::uint32_t number)>;
    /// What a call reads: journals, of which what counted in front of the call, and objects whole.
    struct SReads {
        std::vector<std::uint32_t> journals;
        std::vector<std::uint32_t> objects;
    };

    explicit CEffects(FindCall findCall);

    /// Enters what a call does; calls have to come in their order. Nothing for one that had failed.
    void Note(const CApiCall& call, std::uint32_t number);
    /// Finds what a call that was noted reads.
    void ListReads(const CApiCall& call, std::uint32_t number, SReads& reads);

    SJournal& Journal(std::uint32_t journal) { return m_journals[journal]; }
    const SObject& Object(std::uint32_t object) const { return m_objects[object]; }
    std::size_t ObjectCount() const { return m_objects.size(); }
    /// Calls that take back what a call did, without which it must not stand: deletions, pops.
    const std::unordered_multimap<std::uint32_t, std::uint32_t>& Endings() const {
        return m_endings;
    }

    // What the rules name. Names are those of the recording.

    void CurrentContext();
    void Display(std::uint32_t display);
    void InitializeDisplay(std::uint32_t display);
    void BindApi();
    void CreateContext(std::uint32_t display, std::uint32_t share, std::uint32_t context);
    void CreateSurface(std::uint32_t display, std::uint32_t surface);
    /// Swaps leave it alone, as those of pbuffers.
    void KeepSurface(std::uint32_t surface);
    void SizeSurface(std::uint32_t surface, std::int32_t width, std::int32_t height);
    void MakeCurrent(std::uint32_t context, std::uint32_t draw, std::uint32_t read);
    void SurfaceAttribute(std::uint32_t surface, std::uint32_t attribute, std::uint32_t value);
    void SwapBuffers(std::uint32_t surface);
    void AgeSurface(std::uint32_t surface, std::uint32_t attribute);
    void BindSurface(std::uint32_t surface);

    using Names = SArrayPtr<TGLuint, 1, 1>;
    using Enums = SArrayPtr<TGLenum, 1, 1>;
    void Generate(EObject kind, const Names& names);
    void Create(EObject kind, std::uint32_t name);
    void Delete(EObject kind, const Names& names);
    void Delete(EObject kind, std::uint32_t name);
    void Use(EObject kind, std::uint32_t name);
    /// Players pass the recorded name on as it is: it has to be the driver's, which it is as long
    /// as the driver is asked for all names.
    void PassedName(EObject kind);

    void ActiveTexture(std::uint32_t texture);
    void ClientTexture(std::uint32_t texture);
    void BindTexture(std::uint32_t target, std::uint32_t name);
    void BindBuffer(std::uint32_t target, std::uint32_t name);
    void BindIndexedBuffer(std::uint32_t target, std::uint32_t index, std::uint32_t name);
    void BindFramebuffer(std::uint32_t target, std::uint32_t name);
    void Bind(ESlot slot, std::uint64_t place, EObject kind, std::uint32_t name);
    void UseProgram(std::uint32_t program);

    void Source(std::uint32_t shader);
    void Sources(const Names& shaders);
    void Compile(std::uint32_t shader);
    void Attach(std::uint32_t program, std::uint32_t shader);
    void Build(std::uint32_t program);
    void Link(std::uint32_t program);
    void UniformLocation(std::uint32_t program, std::int32_t location);
    void AttributeLocation(std::uint32_t program, std::int32_t location);
    void Uniform(std::int32_t location);
    void UniformUnit(std::int32_t location, std::int32_t value);
    void UniformUnits(std::int32_t location, const SArrayPtr<TGLint, 1, 1>& values);
    void UniformBlock(std::uint32_t program, std::uint32_t block);

    void TextureParameter(std::uint32_t target, std::uint32_t pname);
    void SamplerParameter(std::uint32_t sampler, std::uint32_t pname);
    void TextureImage(std::uint32_t target, std::int32_t level, std::int32_t width,
                      std::int32_t height, std::int32_t depth);
    void TexturePart(std::uint32_t target, std::int32_t level, std::int32_t x, std::int32_t y,
                     std::int32_t width, std::int32_t height);
    void TextureLayers(std::uint32_t target, std::int32_t level, std::int32_t x, std::int32_t y,
                       std::int32_t z, std::int32_t width, std::int32_t height, std::int32_t depth);
    void TextureStorage(std::uint32_t target, std::int32_t width, std::int32_t height);
    void Mipmaps(std::uint32_t target);
    void RenderbufferStorage(std::int32_t width, std::int32_t height);
    void AttachTexture(std::uint32_t target, std::uint32_t attachment, std::uint32_t texture,
                       std::int32_t level, std::uint32_t face);
    void AttachLayer(std::uint32_t target, std::uint32_t attachment, std::uint32_t texture,
                     std::int32_t level, std::int32_t layer);
    void AttachRenderbuffer(std::uint32_t target, std::uint32_t attachment, std::uint32_t name);
    void DrawBuffers(const Enums& buffers);
    void ReadBuffer(std::uint32_t source);
    void Discard(std::uint32_t target, const Enums& attachments);

    void BufferData(std::uint32_t target, std::int32_t size);
    void BufferPart(std::uint32_t target, std::int32_t offset, std::int32_t size);
    void ReadBufferOf(std::uint32_t target);
    void MapBuffer(std::uint32_t target);
    void EndMapping(std::uint32_t target);
    /// `size` bytes were written through the pointer, from the start on.
    void UnmapBuffer(std::uint32_t target, std::uint32_t size);
    void Feedback(bool begins, bool active);

    void EnableArray(std::uint32_t index, bool on);
    void EnableClientArray(std::uint32_t array, bool on);
    void AttributePointer(std::uint32_t index);
    void AttributeDivisor(std::uint32_t index);
    void ClientArray(std::uint32_t array);

    void Draw();
    void Clear(std::uint32_t mask);
    void ClearBuffer(std::uint32_t buffer, std::int32_t drawBuffer);
    void Blit(std::uint32_t mask, std::int32_t x0, std::int32_t y0, std::int32_t x1,
              std::int32_t y1);
    void ReadPixels();
    void PackPixels();

    void MatrixMode(std::uint32_t mode);
    void PaletteMatrix(std::uint32_t matrix);
    void LoadPalette();
    void LoadMatrix();
    void ChangeMatrix();
    void PushMatrix();
    void PopMatrix();
    void ReadMatrix();

    void Capability(std::uint32_t capability, bool on);
    void ColorMask(bool red, bool green, bool blue, bool alpha);
    void DepthMask(bool on);
    void StencilMask(std::uint32_t face, std::uint32_t mask);
    void Scissor(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
    void PixelStore(std::uint32_t pname);
    void Material(std::uint32_t pname);
    void Color();
    void TextureEnvironment(std::uint32_t target, std::uint32_t pname);
    /// The number of a State, in front of what tells its places apart.
    static constexpr std::uint64_t StatePlace(std::uint64_t number) { return number << 48; }
    void State(std::uint64_t state, std::uint32_t first = 0, std::uint32_t second = 0);
    void Faces(std::uint64_t state, std::uint32_t face);

private:
    struct SAttached {
        std::uint32_t object = 0;
        std::int32_t level = 0;
        std::int32_t layer = 0;  ///< from 1; 0 where there are none
        bool texture = false;
    };
    /// A place that draws go to.
    struct STarget {
        std::uint32_t object = 0;
        std::uint64_t place = 0;  ///< of kContent
        std::int32_t width = 0;   ///< 0 if it isn't known
        std::int32_t height = 0;
    };
    /// What a framebuffer holds, as bits.
    enum EAspect : std::uint32_t { kColorAspect = 1, kDepthAspect = 2, kStencilAspect = 4 };
    static constexpr std::uint32_t kDepthAttachment = 0x100;
    static constexpr std::uint32_t kStencilAttachment = 0x101;
    static constexpr std::uint32_t kAllColors = 0xFFFFFFFFu;

    bool Resolves() const { return m_reads != nullptr; }
    /// The last object that had the name; 0 if there was none.
    std::uint32_t LastNamed(EObject kind, std::uint32_t scope, std::uint32_t name) const;
    /// The object that has the name now, made if it is new.
    std::uint32_t Find(EObject kind, std::uint32_t name);
    std::uint32_t Find(EObject kind, std::uint32_t scope, std::uint32_t name);
    std::uint32_t MakeObject(EObject kind, std::uint32_t scope, std::uint32_t name);
    std::uint32_t Scope(EObject kind);
    /// Likewise, with its being there read or, by the call that names it first, made.
    std::uint32_t Named(EObject kind, std::uint32_t name);
    /// Likewise, by a call that binds it.
    std::uint32_t BoundNow(EObject kind, std::uint32_t name);
    /// What bound the object doesn't any more.
    void Unbind(EObject kind, std::uint32_t object);
    /// 0 if it isn't there and `make` isn't set.
    std::uint32_t Place(std::uint32_t object, ESlot slot, std::uint64_t place, bool make);

    void Read(std::uint32_t journal) {
        if (Resolves() && journal != 0) m_reads->journals.push_back(journal);
    }
    void ReadPlace(std::uint32_t object, ESlot slot, std::uint64_t place = 0) {
        if (Resolves()) Read(Place(object, slot, place, false));
    }
    void ReadWhole(std::uint32_t object) {
        if (Resolves() && object != 0) m_reads->objects.push_back(object);
    }
    void ReadSlot(std::uint32_t object, ESlot slot);
    /// What the place holds. Reads it.
    std::uint32_t Value(std::uint32_t object, ESlot slot, std::uint64_t place = 0);
    /// What is done here replaces all that was there.
    void Set(std::uint32_t object, ESlot slot, std::uint64_t place = 0, std::uint32_t value = 0);
    /// What is done here goes with what was there.
    void Add(std::uint32_t object, ESlot slot, std::uint64_t place, std::uint32_t value,
             const SJournal::SArea& area = {});
    /// What was there doesn't count any more.
    void Cut(std::uint32_t journal);
    SJournal::SEntry& Enter(std::uint32_t journal, std::uint32_t call, std::uint32_t previous);
    /// What the place holds, without a read.
    std::uint32_t Peek(std::uint32_t object, ESlot slot, std::uint64_t place = 0);
    std::uint32_t Peek(const SJournal& journal) const;
    void CutSlot(std::uint32_t object, ESlot slot);
    void LeaveOutCovered(SJournal& journal);
    void Rebind(std::uint32_t object, ESlot slot, std::uint64_t place, std::uint32_t gone);

    std::uint32_t BoundTexture(std::uint32_t target);
    std::uint32_t BoundBuffer(std::uint32_t target);
    std::uint32_t VertexArray();
    std::uint32_t Framebuffer(bool read);
    std::uint32_t BoundFramebuffer(std::uint32_t target);
    std::uint64_t MatrixPlace();
    void ReadUnpacking();
    void Attach(std::uint32_t target, std::uint32_t attachment, const SAttached& attached);
    template <typename Visit>
    void VisitTargets(bool read, std::uint32_t aspects, std::uint32_t colors, Visit visit);
    /// A framebuffer with all that makes it complete.
    void ReadFramebuffer(std::uint32_t framebuffer);
    void ReadAttached(std::uint32_t aspects, std::uint32_t colors);
    std::uint32_t DrawnColors();
    bool ScissorLetsThrough(const STarget& target);
    void WriteTargets(std::uint32_t aspects, std::uint32_t colors, std::uint32_t whole);
    /// `units`: those that the value may name, as bits.
    void SetUniform(std::int32_t location, std::uint32_t units);
    void ReadSampled(std::uint32_t program);
    /// By kind of target, the texture units that are sampled, as bits.
    using SampledUnits = std::array<std::uint32_t, 4>;
    SampledUnits FindSampled(std::uint32_t program);
    void ReadArrays();

    FindCall m_findCall;
    std::uint32_t m_at = 0;
    bool m_isEs1 = false;
    std::uint32_t m_context = 0;
    SReads* m_reads = nullptr;
    std::vector<SObject> m_objects;
    std::vector<SJournal> m_journals;
    std::vector<SAttached> m_attached;
    /// The last objects that had the names, by kind, scope and name, and journals by their places.
    CFlatIndex m_names;
    CFlatIndex m_places;
    /// The journals of the context at hand that have no place but their slot, which are wanted
    /// most.
    std::uint32_t m_keptContext = 0;
    std::array<std::uint32_t, 64> m_keptPlaces{};
    /// Of matrices, the entries that pushes have put aside, by journal.
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> m_pushed;
    std::unordered_multimap<std::uint32_t, std::uint32_t> m_endings;
    std::vector<SJournal::SArea> m_scissors;
    std::uint32_t m_current = 0;  ///< context
    std::uint32_t m_units = 1;    ///< texture units that were used
};

}  // namespace kestrail
