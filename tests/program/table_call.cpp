#include "tests/program/table_call.h"

#include <algorithm>
#include <vector>

#include "tests/program/program_test.h"

namespace kestrail {
namespace {

constexpr std::uint32_t newName = 55;

SOpening OpenEs2(std::uint32_t version) {
    SOpening opening(version);
    CTraceBuilder& trace = opening.trace;
    opening.Gen("buffer", 7, 2050, trace.Gl());
    opening.Gen("framebuffer", 8, 2052, trace.Gl());
    opening.Gen("renderbuffer", 9, 2053, trace.Gl());
    opening.Gen("texture", 10, 2054, trace.Gl());
    trace.Add(2026, trace.Gl().Uint(11));
    trace.Add(2027, trace.Gl().Uint(12).Enum(35633));
    trace.Add(2131, trace.Gl().Uint(11));
    trace.Add(2077, trace.Gl().Int(3).Uint(11).String(0x10, "uniform"));
    trace.Add(2058, trace.Gl().Int(2).Uint(11).String(0x10, "attribute"));
    trace.Add(2002, trace.Gl().Uint(11).Uint(12));
    opening.names["program"] = {11, "105"};
    opening.names["shader"] = {12, "106"};
    opening.names["location"] = {3, "1001"};
    opening.names["index"] = {2, "9"};
    opening.made = 106;
    return opening;
}

SOpening OpenEs3(std::uint32_t version) {
    SOpening opening = OpenEs2(version);
    CTraceBuilder& trace = opening.trace;
    opening.Gen("array", 13, 5173, trace.Gl());
    opening.Gen("sampler", 14, 5222, trace.Gl());
    trace.Add(5213, trace.Gl().Pointer(15).Enum(37143).Bitfield(0));
    opening.names["sync"] = {15, "sync:1"};
    return opening;
}

SOpening OpenEs1(std::uint32_t version) {
    SOpening opening(version);
    opening.Gen("buffer", 7, 3053, opening.trace.Gl());
    opening.Gen("texture", 10, 3054, opening.trace.Gl());
    return opening;
}

SOpening OpenExt(std::uint32_t version) {
    SOpening opening(version);
    const CRecordBuilder head = opening.trace.Ext(0, 1);
    opening.Gen("texture", 10, 3054, opening.trace.Gl());
    opening.Gen("renderbuffer", 9, 4018, head);
    opening.Gen("framebuffer", 8, 4024, head);
    opening.Gen("array", 13, 4009, head);
    return opening;
}

std::string Join(const Lines& texts) {
    std::string joined;
    for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
    return joined;
}

std::string Braced(const Lines& texts) {
    std::string braced = "{";
    braced += Join(texts);
    return braced + "}";
}

/// One call's record in the making, beside the arguments that the host must see.
class CTableCall {
public:
    CTableCall(const SOpening& opening, const SPrototype& prototype, const SFamilyRows& rows)
        : m_opening(opening),
          m_prototype(prototype),
          m_rows(rows),
          m_record(rows.api == 0 ? opening.trace.Gl() : opening.trace.Ext(0, rows.api)) {}

    CRecordBuilder Record() {
        AddResult();
        for (std::size_t i = 0; i < m_prototype.types.size(); ++i) {
            AddParameter(m_prototype.types[i], m_prototype.names[i], i);
        }
        // What two records keep beside the prototype: the unpack alignment, here the default, and
        // what the feedback wrote.
        if (m_prototype.entry == "glTexImage2D") m_record.Int(4);
        if (m_prototype.entry == "glEndTransformFeedback") m_record.Data(0x10, Bytes(4));
        return m_record;
    }

    std::string Expected() const {
        return m_rows.prefix + m_prototype.entry + "(" + Join(m_expected) + ")";
    }

private:
    bool Starts(const std::string& start) const { return m_prototype.entry.rfind(start, 0) == 0; }

    bool Has(const std::string& name) const {
        return std::count(m_prototype.names.begin(), m_prototype.names.end(), name) != 0;
    }

    bool HasPointer() const {
        return std::any_of(
            m_prototype.types.begin(), m_prototype.types.end(),
            [](const std::string& type) { return type.find('*') != std::string::npos; });
    }

    /// The table that a parameter's name goes through, or none.
    const std::pair<std::uint32_t, std::string>* Translation(const std::string& name) const {
        auto entry = m_rows.translated.find(m_prototype.entry);
        if (entry == m_rows.translated.end()) entry = m_rows.translated.find("*");
        if (entry == m_rows.translated.end()) return nullptr;
        const auto table = entry->second.find(name);
        return table == entry->second.end() ? nullptr : &m_opening.names.at(table->second);
    }

    void AddResult() {
        const std::string& type = m_prototype.result;
        if (type == "GLuint") {
            m_record.Uint(newName);
        } else if (type == "GLint") {
            m_record.Int(6);
        } else if (type == "GLenum") {
            m_record.Enum(0);
        } else if (type == "GLboolean") {
            m_record.Boolean(true);
        } else if (type == "void *" || type == "GLsync") {
            m_record.Pointer(newName);
        } else if (type != "void") {
            m_record.String(0x10, "text");
        }
    }

    void AddParameter(const std::string& type, const std::string& name, std::size_t place) {
        const auto number = static_cast<std::int64_t>(place);
        if (type.find('*') != std::string::npos) {
            type.rfind("const", 0) == 0 ? AddInput(type, name) : AddOutput(type);
        } else if (type == "GLfloat" || type == "GLclampf") {
            const float value = 0.5F + static_cast<float>(number);
            m_record.Real(type == "GLfloat" ? tag::Float : tag::Clampf, value);
            m_expected.push_back(ArgumentText(value));
        } else {
            AddInteger(type, name, number);
        }
    }

    /// What says how much stands behind a pointer has to be true.
    std::int64_t TrueSize(const std::string& name, std::int64_t otherwise) const {
        static const std::map<std::string, std::int64_t> sizes = {
            {"n", 1},     {"size", 4},   {"imageSize", 4}, {"length", 4},
            {"width", 2}, {"height", 1}, {"depth", 3},     {"numAttachments", 2}};
        if (name == "count") return Starts("glUniform") ? 2 : 1;
        const auto size = sizes.find(name);
        return size == sizes.end() ? otherwise : size->second;
    }

    void AddInteger(const std::string& type, const std::string& name, std::int64_t number) {
        static const std::map<std::string, unsigned> tags = {
            {"GLenum", tag::Enum},     {"GLboolean", tag::Boolean},   {"GLbitfield", tag::Bitfield},
            {"GLint", tag::Int},       {"GLsizei", tag::Sizei},       {"GLuint", tag::Uint},
            {"GLintptr", tag::Intptr}, {"GLsizeiptr", tag::Sizeiptr}, {"GLubyte", tag::Ubyte},
            {"GLfixed", tag::Fixed},   {"GLclampx", tag::Clampx},     {"GLuint64", tag::Uint64},
            {"GLsync", tag::Pointer}};
        const bool byte = type == "GLboolean" || type == "GLubyte";
        std::int64_t value = (byte ? 100 : 0x2000) + number;
        if (type == "GLint" || type == "GLfixed") value = -200 - number;
        if (type.rfind("GLsizei", 0) == 0 && HasPointer()) value = TrueSize(name, value);
        if (name == "buffer" && Starts("glClearBuffer")) value = 0x1800;
        // More than the host's most would be cut.
        if (name == "samples" && m_rows.api == 2) value = 3;
        std::string seen = std::to_string(value);
        if (const auto* names = type == "GLenum" ? nullptr : Translation(name)) {
            value = names->first;
            seen = names->second;
        }
        m_record.Value(tags.at(type), static_cast<std::uint64_t>(value));
        m_expected.push_back(seen);
    }

    void AddOutput(const std::string& type) {
        static const std::map<std::string, unsigned> tags = {
            {"GLint *", tag::Int},     {"GLuint *", tag::Uint},       {"GLsizei *", tag::Sizei},
            {"GLenum *", tag::Enum},   {"GLboolean *", tag::Boolean}, {"GLfixed *", tag::Fixed},
            {"GLint64 *", tag::Int64}, {"void **", tag::Pointer}};
        if (Starts("glGen") && type == "GLuint *") {
            m_record.Array(tag::Uint, 0x10, {newName});
            m_expected.push_back(Braced({m_opening.NextLive()}));
            return;
        }
        m_expected.push_back("ptr");
        if (type == "GLfloat *") {
            m_record.Reals(tag::Float, 0x10, {1.0F});
        } else if (type == "GLchar *") {
            m_record.String(0x10, "text");
        } else if (type == "void *") {
            m_record.Data(0x10, Bytes(64));
        } else {
            ASSERT_TRUE(tags.count(type)) << m_prototype.entry << ": " << type;
            m_record.Array(tags.at(type), 0x10, {1});
        }
    }

    void AddInput(const std::string& type, const std::string& name) {
        if (name == "pixels") {
            const std::size_t size = Has("depth") ? 96 : 32;
            m_record.Data(0x10, Bytes(size, 0xEE));
            m_expected.push_back("<eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee:" + std::to_string(size) + ">");
        } else if (name == "pointer") {
            m_record.Pointer(0x1234);
            m_expected.push_back("4660");
        } else if (type == "const void *") {
            m_record.Data(0x10, Bytes{1, 2, 3, 4});
            m_expected.push_back("<01020304:4>");
        } else if (type == "const GLchar *") {
            m_record.String(0x10, "some name");
            m_expected.push_back("\"some name\"");
        } else if (type == "const GLchar *const*") {
            m_record.Strings(0x10, {"source"});
            m_expected.push_back("{\"source\"}");
        } else if (name == "length") {
            m_record.Array(tag::Int, 0x10, {6});
            m_expected.push_back("{6}");
        } else if (type == "const GLuint *" && name != "value" && name != "v") {
            const auto* names = Translation(name);
            m_record.Array(tag::Uint, 0x10, {names != nullptr ? names->first : newName});
            m_expected.push_back(
                Braced({names != nullptr ? names->second : std::to_string(newName)}));
        } else {
            AddVector(type, name);
        }
    }

    /// How many scalars one item holds, and how many items there are.
    std::pair<std::size_t, std::size_t> Shape(const std::string& name) const {
        if (Starts("glClearBuffer") || name == "eqn" || name == "equation") return {4, 1};
        if (name == "m") return {16, 1};
        if (name == "attachments") return {1, 2};
        if (name != "value" && name != "v") return {1, 1};
        std::vector<std::size_t> digits;
        for (char letter : m_prototype.entry) {
            if (letter >= '1' && letter <= '4') {
                digits.push_back(static_cast<std::size_t>(letter - '0'));
            }
        }
        std::size_t item = digits.front();
        if (Starts("glUniformMatrix")) item *= digits.back();
        return {item, Starts("glUniform") ? 2U : 1U};
    }

    void AddVector(const std::string& type, const std::string& name) {
        static const std::map<std::string, unsigned> tags = {{"const GLint *", tag::Int},
                                                             {"const GLuint *", tag::Uint},
                                                             {"const GLenum *", tag::Enum},
                                                             {"const GLfixed *", tag::Fixed}};
        const auto [item, items] = Shape(name);
        const bool real = type == "const GLfloat *";
        std::vector<float> reals;
        std::vector<std::int64_t> integers;
        Lines seen;
        for (std::size_t i = 0; i < item * items; ++i) {
            integers.push_back(static_cast<std::int64_t>(i) + 3);
            reals.push_back(0.25F * static_cast<float>(i));
            seen.push_back(real ? ArgumentText(reals.back()) : std::to_string(integers.back()));
        }
        m_expected.push_back(Braced(seen));
        // Where the record holds one item alone there is no count on file.
        const bool single =
            name == "m" || name == "eqn" || name == "equation" || (name == "v" && real);
        // What ES 3.0 added counts scalars, the rest counts items.
        const std::size_t counted =
            m_rows.family == "Es3" || (name != "value" && name != "v") ? 1 : item;
        if (real) {
            single ? m_record.RealItem(tag::Float, 0x10, reals)
                   : m_record.Reals(tag::Float, 0x10, reals, counted);
        } else {
            single ? m_record.Item(tags.at(type), 0x10, integers)
                   : m_record.Array(tags.at(type), 0x10, integers, counted);
        }
    }

    const SOpening& m_opening;
    const SPrototype& m_prototype;
    const SFamilyRows& m_rows;
    CRecordBuilder m_record;
    Lines m_expected;
};

}  // namespace

void SOpening::Gen(const std::string& table, std::uint32_t name, std::uint16_t id,
                   const CRecordBuilder& head) {
    trace.Add(id, CRecordBuilder(head).Sizei(1).Array(tag::Uint, 0x10, {name}));
    names[table] = {name, std::to_string(++made)};
}

SOpening Open(const SFamilyRows& rows, std::uint32_t version) {
    if (rows.family == "Es1") return OpenEs1(version);
    if (rows.family == "Es3") return OpenEs3(version);
    return rows.api == 1 ? OpenExt(version) : OpenEs2(version);
}

STableCall MakeTableCall(const SOpening& opening, const SPrototype& prototype,
                         const SFamilyRows& rows) {
    CTableCall call(opening, prototype, rows);
    const CRecordBuilder record = call.Record();
    return {record, call.Expected()};
}

}  // namespace kestrail
