#include "samples/es2/calls.h"

namespace kestrail::samples {

namespace {

// Unlike the numbers that drivers begin with, so that a location passed untranslated shows.
constexpr GLint firstUniform = 5;
constexpr GLint firstAttribute = 8;

GLint LocationOf(std::map<std::string, GLint>& known, const char* name, GLint first) {
    return known.try_emplace(name, first + static_cast<GLint>(known.size())).first->second;
}

}  // namespace

void CEs2Calls::BindAttribLocation(GLuint program, GLuint index, const char* name) {
    m_programs[program].attributes[name] = static_cast<GLint>(index);
    Do(2003, "glBindAttribLocation", Uint{program}, Uint{index}, Text{name});
}

GLuint CEs2Calls::CreateProgram() {
    const GLuint recorded = Recording() ? MakeName(EObject::ShadersAndPrograms) : 0;
    return Ask(2026, "glCreateProgram", Uint{recorded});
}

GLuint CEs2Calls::CreateShader(GLenum type) {
    const GLuint recorded = Recording() ? MakeName(EObject::ShadersAndPrograms) : 0;
    return Ask(2027, "glCreateShader", Uint{recorded}, Enum{type});
}

void CEs2Calls::DeleteProgram(GLuint program) {
    m_programs.erase(program);
    FreeName(EObject::ShadersAndPrograms, program);
    Do(2032, "glDeleteProgram", Uint{program});
}

void CEs2Calls::DisableVertexAttribArray(GLuint index) {
    VertexArray().arrays[index].enabled = false;
    Do(2040, "glDisableVertexAttribArray", Uint{index});
}

void CEs2Calls::EnableVertexAttribArray(GLuint index) {
    VertexArray().arrays[index].enabled = true;
    Do(2044, "glEnableVertexAttribArray", Uint{index});
}

GLint CEs2Calls::GetAttribLocation(GLuint program, const char* name) {
    const GLint recorded = LocationOf(m_programs[program].attributes, name, firstAttribute);
    return Ask(2058, "glGetAttribLocation", Int{recorded}, Uint{program}, Text{name});
}

GLint CEs2Calls::GetUniformLocation(GLuint program, const char* name) {
    const GLint recorded = LocationOf(m_programs[program].uniforms, name, firstUniform);
    return Ask(2077, "glGetUniformLocation", Int{recorded}, Uint{program}, Text{name});
}

void CEs2Calls::LinkProgram(GLuint program) {
    Do(2090, "glLinkProgram", Uint{program});
    GLint linked = GL_TRUE;
    Do(2065, "glGetProgramiv", Uint{program}, Enum{GL_LINK_STATUS}, Ints{&linked, 1});
}

void CEs2Calls::ShaderSource(GLuint shader, const std::vector<std::string>& texts) {
    if (Recording()) {
        Add(2099, Begin(2099)
                      .Uint(shader)
                      .Sizei(static_cast<GLsizei>(texts.size()))
                      .Strings(clientAddress, texts)
                      .Array(tag::Int, 0, {}));
        return;
    }
    std::vector<const char*> strings;
    strings.reserve(texts.size());
    for (const std::string& text : texts) strings.push_back(text.c_str());
    struct SStrings {
        const char* const* values;
        const char* const* Live() const { return values; }
    };
    Issue<void>("glShaderSource", Uint{shader}, Sizei{static_cast<GLsizei>(texts.size())},
                SStrings{strings.data()}, Block{nullptr, 0});
}

}  // namespace kestrail::samples
