// What effects know of programs: what they are made of, and which textures they sample.
#include <algorithm>
#include <string>
#include <string_view>

#include "generated/calls/es2_calls.h"
#include "slicing/effects.h"

namespace kestrail {
namespace {

bool IsWord(char letter) {
    return letter == '_' || (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'z') ||
           (letter >= 'A' && letter <= 'Z');
}

/// The next name, number or sign of a shader's text; empty at its end.
std::string_view NextWord(std::string_view& text) {
    std::size_t start = 0;
    while (start < text.size()) {
        if (text.substr(start, 2) == "//") {
            start = std::min(text.find('\n', start), text.size());
        } else if (text.substr(start, 2) == "/*") {
            const std::size_t end = text.find("*/", start + 2);
            start = end != std::string_view::npos ? end + 2 : text.size();
        } else if (std::string_view(" \t\r\n").find(text[start]) != std::string_view::npos) {
            ++start;
        } else {
            break;
        }
    }
    std::size_t end = start;
    while (end < text.size() && IsWord(text[end])) ++end;
    if (end == start && end < text.size()) ++end;
    const std::string_view word = text.substr(start, end - start);
    text.remove_prefix(end);
    return word;
}

struct SSampler {
    std::string name;
    std::uint32_t kind = 0;  ///< of target
    bool operator==(const SSampler&) const = default;
};

/// The kind of target that a type of samplers takes textures from.
std::uint32_t KindOfSampler(std::string_view type) {
    if (type.find("Cube") != std::string_view::npos) return 1;
    if (type.find("3D") != std::string_view::npos) return 2;
    return type.find("2DArray") != std::string_view::npos ? 3 : 0;
}

bool IsSamplerType(std::string_view word) {
    if (!word.empty() && (word[0] == 'i' || word[0] == 'u')) word.remove_prefix(1);
    constexpr std::string_view kStart = "sampler";
    return word.starts_with(kStart) && word.size() > kStart.size() &&
           std::string_view("23CE").find(word[kStart.size()]) != std::string_view::npos;
}

/// Whether a macro stands for a type of samplers, so that they are declared under other names.
bool HidesSamplers(std::string_view text) {
    for (std::size_t at = text.find('#'); at != std::string_view::npos; at = text.find('#', at)) {
        const std::string_view line = text.substr(at, text.find('\n', at) - at);
        if (line.find("define") != std::string_view::npos &&
            line.find("sampler") != std::string_view::npos) {
            return true;
        }
        at += line.size();
    }
    return false;
}

/// The samplers that a shader's text declares, those left out by its conditions too; false where it
/// holds some that have no name of their own.
bool FindSamplers(std::string_view text, std::vector<SSampler>& found) {
    bool plain = !HidesSamplers(text);
    // Behind the type, or behind a comma of the same declaration.
    bool named = false;
    bool declares = false;
    std::uint32_t kind = 0;
    std::string_view before;
    int depth = 0;
    for (std::string_view word = NextWord(text); !word.empty(); word = NextWord(text)) {
        const bool precise = word == "lowp" || word == "mediump" || word == "highp";
        if (word == "{" || word == "(") ++depth;
        if (word == "}" || word == ")") --depth;
        if (word == ";") declares = named = false;
        if (word == "," && declares) named = true;
        if (IsSamplerType(word)) {
            // In a structure it is named behind that; the parameter of a function is another's.
            if (depth > 0) plain = plain && (before == "(" || before == "," || before == "in");
            declares = named = depth == 0;
            kind = KindOfSampler(word);
        } else if (named && IsWord(word[0]) && !precise) {
            found.push_back({std::string(word), kind});
            named = false;
        }
        if (!precise) before = word;
    }
    return plain;
}

}  // namespace

void CEffects::Source(std::uint32_t shader) {
    Set(Named(EObject::kProgram, shader), ESlot::kSource);
}

void CEffects::Sources(const Names& shaders) {
    for (std::uint32_t i = 0; i < shaders.ItemCount(); ++i) Source(shaders.GetItem(i));
}

void CEffects::Compile(std::uint32_t shader) {
    const std::uint32_t compiled = Named(EObject::kProgram, shader);
    ReadPlace(compiled, ESlot::kSource);
    Set(compiled, ESlot::kCompilation);
}

void CEffects::Attach(std::uint32_t program, std::uint32_t shader) {
    const std::uint32_t attached = Named(EObject::kProgram, shader);
    Add(Named(EObject::kProgram, program), ESlot::kBuild, 0, attached);
}

void CEffects::Build(std::uint32_t program) {
    Add(Named(EObject::kProgram, program), ESlot::kBuild, 0, 0);
}

void CEffects::Link(std::uint32_t program) {
    const std::uint32_t linked = Named(EObject::kProgram, program);
    if (Resolves()) {
        if (const std::uint32_t build = Place(linked, ESlot::kBuild, 0, false)) {
            for (const SJournal::SEntry& entry : m_journals[build].entries) {
                if (entry.since < m_at) ReadWhole(entry.value);
            }
        }
    }
    Add(linked, ESlot::kBuild, 0, 0);
    CutSlot(linked, ESlot::kUniform);
    CutSlot(linked, ESlot::kUniformBlock);
}

void CEffects::UseProgram(std::uint32_t program) {
    const std::uint32_t used = Named(EObject::kProgram, program);
    ReadPlace(used, ESlot::kBuild);
    Set(m_context, ESlot::kProgramInUse, 0, used);
}

void CEffects::UniformLocation(std::uint32_t program, std::int32_t location) {
    const std::uint32_t asked = Named(EObject::kProgram, program);
    ReadPlace(asked, ESlot::kBuild);
    if (location < 0) return;
    Set(asked, ESlot::kUniformLocation, static_cast<std::uint32_t>(location));
}

void CEffects::AttributeLocation(std::uint32_t program, std::int32_t location) {
    const std::uint32_t asked = Named(EObject::kProgram, program);
    ReadPlace(asked, ESlot::kBuild);
    if (location < 0) return;
    Set(asked, ESlot::kAttributeLocation, static_cast<std::uint32_t>(location));
}

void CEffects::SetUniform(std::int32_t location, std::uint32_t units) {
    if (location < 0) return;
    const auto place = static_cast<std::uint32_t>(location);
    const std::uint32_t program = Value(m_context, ESlot::kProgramInUse);
    ReadPlace(program, ESlot::kBuild);
    ReadPlace(program, ESlot::kUniformLocation, place);
    Set(program, ESlot::kUniform, place, units);
}

void CEffects::Uniform(std::int32_t location) {
    SetUniform(location, 0);
}

void CEffects::UniformUnit(std::int32_t location, std::int32_t value) {
    SetUniform(location, value >= 0 && value < 32 ? 1u << value : 0);
}

void CEffects::UniformUnits(std::int32_t location, const SArrayPtr<TGLint, 1, 1>& values) {
    std::uint32_t units = 0;
    for (std::uint32_t i = 0; i < values.ItemCount(); ++i) {
        const std::int32_t unit = values.GetItem(i);
        if (unit >= 0 && unit < 32) units |= 1u << unit;
    }
    SetUniform(location, units);
}

void CEffects::UniformBlock(std::uint32_t program, std::uint32_t block) {
    const std::uint32_t used = Named(EObject::kProgram, program);
    ReadPlace(used, ESlot::kBuild);
    Set(used, ESlot::kUniformBlock, block);
}

CEffects::SampledUnits CEffects::FindSampled(std::uint32_t program) {
    SampledUnits units{};
    const auto any = [&](std::uint32_t which) {
        for (std::uint32_t& kind : units) kind |= which;
    };
    const std::uint32_t build = Place(program, ESlot::kBuild, 0, false);
    std::vector<SSampler> samplers;
    bool plain = build != 0;
    for (const SJournal::SEntry& entry : m_journals[build].entries) {
        if (entry.since >= m_at || entry.value == 0) continue;
        const std::uint32_t source = Place(entry.value, ESlot::kSource, 0, false);
        const std::uint32_t found = source != 0 ? m_journals[source].Find(m_at) : 0;
        const auto* const call = found != 0
                                     ? dynamic_cast<const CEs2_glShaderSource_v1*>(
                                           &m_findCall(m_journals[source].entries[found - 1].call))
                                     : nullptr;
        if (call == nullptr) {
            plain = false;
            continue;
        }
        std::string text;
        for (std::uint32_t i = 0; i < call->string.ElementCount(); ++i) {
            text += call->string.GetItem(i).GetCString();
        }
        plain = FindSamplers(text, samplers) && plain;
    }
    for (const std::uint32_t number : m_objects[program].journals) {
        const SJournal& journal = m_journals[number];
        if (journal.slot != ESlot::kUniformLocation) continue;
        const std::uint32_t found = journal.Find(m_at);
        if (found == 0) continue;
        const auto* const call = dynamic_cast<const CEs2_glGetUniformLocation_v1*>(
            &m_findCall(journal.entries[found - 1].call));
        std::string_view name = call != nullptr ? call->name.GetCString() : "";
        name = name.substr(0, name.find('['));
        const std::uint32_t set = Place(program, ESlot::kUniform, journal.place, false);
        const std::uint32_t value = set != 0 ? m_journals[set].Find(m_at) : 0;
        const std::uint32_t named = value != 0 && m_journals[set].entries[value - 1].call != 0
                                        ? m_journals[set].entries[value - 1].value
                                        : 1;
        if (!plain) any(named);
        const auto sampler = std::find_if(samplers.begin(), samplers.end(),
                                          [&](const SSampler& s) { return s.name == name; });
        if (sampler == samplers.end()) continue;
        units[sampler->kind] |= named;
        std::erase(samplers, SSampler(*sampler));
    }
    // Those that nobody asked for have the first one.
    for (const SSampler& sampler : samplers) units[sampler.kind] |= 1;
    if (!plain) any(1);
    return units;
}

void CEffects::ReadSampled(std::uint32_t program) {
    const auto read = [&](std::uint32_t unit, std::uint32_t kind) {
        const std::uint32_t bound = Peek(m_context, ESlot::kBoundTexture, unit * 4 + kind);
        ReadWhole(bound != 0 ? bound : Find(EObject::kTexture, m_context, 0x80000000u + kind));
    };
    if (m_isEs1) {
        for (std::uint32_t unit = 0; unit < m_units; ++unit) {
            const std::uint64_t place = std::uint64_t{unit} << 32 | GL_TEXTURE_2D;
            if (Peek(m_context, ESlot::kCapability, place) != 0) read(unit, 0);
        }
        return;
    }
    const SampledUnits units = FindSampled(program);
    for (std::uint32_t unit = 0; unit < 32; ++unit) {
        bool sampled = false;
        for (std::uint32_t kind = 0; kind < units.size(); ++kind) {
            if ((units[kind] >> unit & 1) == 0) continue;
            sampled = true;
            read(unit, kind);
        }
        if (sampled) ReadWhole(Peek(m_context, ESlot::kBoundSampler, unit));
    }
}

}  // namespace kestrail
