#include "samples/es2/recording_calls.h"

#include <algorithm>
#include <cstring>

namespace kestrail::samples {

namespace {

// Client pointers mean nothing in a trace beyond being set, and fixed ones keep builds alike.
constexpr std::uint64_t clientAddress = 0x5000;

// Unlike the numbers that drivers begin with, so that a name passed untranslated shows.
constexpr GLuint firstName = 11;
constexpr GLint firstUniform = 5;
constexpr GLint firstAttribute = 8;

std::size_t ComponentSize(GLenum type) {
    switch (type) {
        case GL_BYTE:
        case GL_UNSIGNED_BYTE:
            return 1;
        case GL_SHORT:
        case GL_UNSIGNED_SHORT:
            return 2;
        default:
            return 4;
    }
}

std::size_t PixelSize(GLenum format, GLenum type) {
    if (type != GL_UNSIGNED_BYTE) return 2;
    switch (format) {
        case GL_RGBA:
            return 4;
        case GL_RGB:
            return 3;
        case GL_LUMINANCE_ALPHA:
            return 2;
        default:
            return 1;
    }
}

GLuint IndexAt(const std::uint8_t* indices, GLenum type, std::size_t i) {
    if (type == GL_UNSIGNED_BYTE) return indices[i];
    std::uint16_t index = 0;
    std::memcpy(&index, indices + 2 * i, sizeof index);
    return index;
}

}  // namespace

bool CRecordingCalls::Open(int width, int height) {
    m_trace.SetConfigAttributes({SceneConfigAttributes().begin(), SceneConfigAttributes().end()});
    m_trace.Thread();
    m_trace.StartUp(2, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    m_trace.Add(1029, m_trace.Egl().EglBoolean(true).Display(CTraceBuilder::display).EglInt(1));
    return true;
}

void CRecordingCalls::Swap() {
    m_trace.SwapBuffers();
}

void CRecordingCalls::Close() {
    m_trace.Add(1018, m_trace.Egl()
                          .EglBoolean(true)
                          .Display(CTraceBuilder::display)
                          .Surface(0)
                          .Surface(0)
                          .Context(0)
                          .Config(0)
                          .Attributes({}));
    m_trace.Add(1008, m_trace.Egl()
                          .EglBoolean(true)
                          .Display(CTraceBuilder::display)
                          .Surface(CTraceBuilder::surface));
    m_trace.Add(1007, m_trace.Egl()
                          .EglBoolean(true)
                          .Display(CTraceBuilder::display)
                          .Context(CTraceBuilder::context));
    m_trace.Add(1023, m_trace.Egl().EglBoolean(true).Display(CTraceBuilder::display));
}

void CRecordingCalls::MakeNames(EKind kind, GLsizei n, GLuint* names) {
    std::set<GLuint>& used = m_names[kind];
    for (GLsizei i = 0; i < n; ++i) {
        GLuint name = firstName;
        while (used.count(name) != 0) ++name;
        used.insert(name);
        names[i] = name;
    }
}

void CRecordingCalls::ForgetNames(EKind kind, GLsizei n, const GLuint* names) {
    for (GLsizei i = 0; i < n; ++i) m_names[kind].erase(names[i]);
}

std::vector<std::int64_t> CRecordingCalls::NameList(GLsizei n, const GLuint* names) {
    return {names, names + n};
}

GLuint CRecordingCalls::BoundBuffer(GLenum target) const {
    return target == GL_ARRAY_BUFFER ? m_arrayBuffer : m_elementBuffer;
}

GLuint CRecordingCalls::HighestIndex(GLsizei count, GLenum type, const void* indices) const {
    const auto* first = static_cast<const std::uint8_t*>(indices);
    if (m_elementBuffer != 0) {
        first =
            m_bufferContents.at(m_elementBuffer).data() + reinterpret_cast<std::uintptr_t>(indices);
    }
    GLuint highest = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        highest = std::max(highest, IndexAt(first, type, i));
    }
    return highest;
}

void CRecordingCalls::AppendClientArrays(CRecordBuilder& record, GLuint highest) const {
    for (const auto& [index, array] : m_arrays) {
        if (!array.enabled || array.buffer != 0 || array.pointer == nullptr) continue;
        const std::size_t vertex = static_cast<std::size_t>(array.size) * ComponentSize(array.type);
        const std::size_t stride =
            array.stride == 0 ? vertex : static_cast<std::size_t>(array.stride);
        Bytes packed;
        for (std::size_t i = 0; i <= highest; ++i) {
            const auto* source = static_cast<const std::uint8_t*>(array.pointer) + i * stride;
            packed.insert(packed.end(), source, source + vertex);
        }
        record.ClientArray(index, clientAddress, packed);
    }
}

Bytes CRecordingCalls::CapturePixels(GLsizei width, GLsizei height, GLenum format, GLenum type,
                                     const void* pixels) const {
    if (pixels == nullptr) return {};
    const std::size_t row = static_cast<std::size_t>(width) * PixelSize(format, type);
    const auto alignment = static_cast<std::size_t>(m_unpackAlignment);
    const std::size_t padded = (row + alignment - 1) / alignment * alignment;
    const auto rows = static_cast<std::size_t>(height);
    Bytes captured(rows * padded);
    std::memcpy(captured.data(), pixels, (rows - 1) * padded + row);
    return captured;
}

void CRecordingCalls::BindAttribLocation(GLuint program, GLuint index, const char* name) {
    m_programs[program].attributes[name] = static_cast<GLint>(index);
    m_trace.Add(2003, m_trace.Gl().Uint(program).Uint(index).String(clientAddress, name));
}

void CRecordingCalls::BindBuffer(GLenum target, GLuint buffer) {
    (target == GL_ARRAY_BUFFER ? m_arrayBuffer : m_elementBuffer) = buffer;
    m_trace.Add(2004, m_trace.Gl().Enum(target).Uint(buffer));
}

void CRecordingCalls::BufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
    Bytes contents;
    if (data != nullptr) {
        const auto* first = static_cast<const std::uint8_t*>(data);
        contents.assign(first, first + size);
    }
    m_trace.Add(2013, m_trace.Gl()
                          .Enum(target)
                          .Sizeiptr(size)
                          .Data(data == nullptr ? 0 : clientAddress, contents)
                          .Enum(usage));
    contents.resize(static_cast<std::size_t>(size));
    m_bufferContents[BoundBuffer(target)] = std::move(contents);
}

void CRecordingCalls::BufferSubData(GLenum target, GLintptr offset, GLsizeiptr size,
                                    const void* data) {
    const auto* first = static_cast<const std::uint8_t*>(data);
    std::copy(first, first + size, m_bufferContents.at(BoundBuffer(target)).begin() + offset);
    m_trace.Add(2014, m_trace.Gl().Enum(target).Intptr(offset).Sizeiptr(size).Data(
                          clientAddress, data, static_cast<std::size_t>(size)));
}

void CRecordingCalls::CheckFramebufferStatus(GLenum target) {
    m_trace.Add(2015, m_trace.Gl().Enum(GL_FRAMEBUFFER_COMPLETE).Enum(target));
}

GLuint CRecordingCalls::CreateProgram() {
    GLuint program = 0;
    MakeNames(EKind::ShadersAndPrograms, 1, &program);
    m_trace.Add(2026, m_trace.Gl().Uint(program));
    return program;
}

GLuint CRecordingCalls::CreateShader(GLenum type) {
    GLuint shader = 0;
    MakeNames(EKind::ShadersAndPrograms, 1, &shader);
    m_trace.Add(2027, m_trace.Gl().Uint(shader).Enum(type));
    return shader;
}

void CRecordingCalls::DeleteProgram(GLuint program) {
    m_programs.erase(program);
    ForgetNames(EKind::ShadersAndPrograms, 1, &program);
    m_trace.Add(2032, m_trace.Gl().Uint(program));
}

void CRecordingCalls::DeleteShader(GLuint shader) {
    m_trace.Add(2034, m_trace.Gl().Uint(shader));
}

void CRecordingCalls::DisableVertexAttribArray(GLuint index) {
    m_arrays[index].enabled = false;
    m_trace.Add(2040, m_trace.Gl().Uint(index));
}

void CRecordingCalls::DrawArrays(GLenum mode, GLint first, GLsizei count) {
    CRecordBuilder record = m_trace.Gl().Enum(mode).Int(first).Sizei(count);
    AppendClientArrays(record, static_cast<GLuint>(first + count - 1));
    m_trace.Add(2041, record);
}

void CRecordingCalls::DrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    CRecordBuilder record = m_trace.Gl().Enum(mode).Sizei(count).Enum(type);
    if (m_elementBuffer != 0) {
        const auto offset = reinterpret_cast<std::uintptr_t>(indices);
        record.Data(offset).Pointer(offset);
    } else {
        record.Data(clientAddress, indices, static_cast<std::size_t>(count) * ComponentSize(type))
            .Pointer(clientAddress);
    }
    AppendClientArrays(record, HighestIndex(count, type, indices));
    m_trace.Add(2042, record);
}

void CRecordingCalls::EnableVertexAttribArray(GLuint index) {
    m_arrays[index].enabled = true;
    m_trace.Add(2044, m_trace.Gl().Uint(index));
}

GLint CRecordingCalls::GetAttribLocation(GLuint program, const char* name) {
    std::map<std::string, GLint>& known = m_programs[program].attributes;
    const auto location =
        known.try_emplace(name, firstAttribute + static_cast<GLint>(known.size())).first->second;
    m_trace.Add(2058, m_trace.Gl().Int(location).Uint(program).String(clientAddress, name));
    return location;
}

GLint CRecordingCalls::GetUniformLocation(GLuint program, const char* name) {
    std::map<std::string, GLint>& known = m_programs[program].uniforms;
    const auto location =
        known.try_emplace(name, firstUniform + static_cast<GLint>(known.size())).first->second;
    m_trace.Add(2077, m_trace.Gl().Int(location).Uint(program).String(clientAddress, name));
    return location;
}

void CRecordingCalls::LinkProgram(GLuint program) {
    m_trace.Add(2090, m_trace.Gl().Uint(program));
    m_trace.Add(
        2065,
        m_trace.Gl().Uint(program).Enum(GL_LINK_STATUS).Array(tag::Int, clientAddress, {GL_TRUE}));
}

void CRecordingCalls::PixelStorei(GLenum name, GLint value) {
    if (name == GL_UNPACK_ALIGNMENT) m_unpackAlignment = value;
    m_trace.Add(2091, m_trace.Gl().Enum(name).Int(value));
}

void CRecordingCalls::ShaderSource(GLuint shader, const std::vector<std::string>& texts) {
    m_trace.Add(2099, m_trace.Gl()
                          .Uint(shader)
                          .Sizei(static_cast<GLsizei>(texts.size()))
                          .Strings(clientAddress, texts)
                          .Array(tag::Int, 0, {}));
}

void CRecordingCalls::TexImage2D(GLenum target, GLint level, GLenum internalFormat, GLsizei width,
                                 GLsizei height, GLenum format, GLenum type, const void* pixels) {
    m_trace.Add(2106, m_trace.Gl()
                          .Enum(target)
                          .Int(level)
                          .Int(internalFormat)
                          .Sizei(width)
                          .Sizei(height)
                          .Int(0)
                          .Enum(format)
                          .Enum(type)
                          .Data(pixels == nullptr ? 0 : clientAddress,
                                CapturePixels(width, height, format, type, pixels))
                          .Int(m_unpackAlignment));
}

void CRecordingCalls::TexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset,
                                    GLsizei width, GLsizei height, GLenum format, GLenum type,
                                    const void* pixels) {
    m_trace.Add(2111, m_trace.Gl()
                          .Enum(target)
                          .Int(level)
                          .Int(xoffset)
                          .Int(yoffset)
                          .Sizei(width)
                          .Sizei(height)
                          .Enum(format)
                          .Enum(type)
                          .Data(clientAddress, CapturePixels(width, height, format, type, pixels)));
}

void CRecordingCalls::VertexAttribPointer(GLuint index, GLint size, GLenum type, bool normalized,
                                          GLsizei stride, const void* pointer) {
    SVertexArray& array = m_arrays[index];
    array.size = size;
    array.type = type;
    array.stride = stride;
    array.pointer = pointer;
    array.buffer = m_arrayBuffer;
    m_trace.Add(2141, m_trace.Gl()
                          .Uint(index)
                          .Int(size)
                          .Enum(type)
                          .Boolean(normalized)
                          .Sizei(stride)
                          .Pointer(m_arrayBuffer != 0 ? reinterpret_cast<std::uintptr_t>(pointer)
                                                      : clientAddress));
}

void CRecordingCalls::ActiveTexture(GLenum unit) {
    m_trace.Add(2001, m_trace.Gl().Enum(unit));
}

void CRecordingCalls::AttachShader(GLuint program, GLuint shader) {
    m_trace.Add(2002, m_trace.Gl().Uint(program).Uint(shader));
}

void CRecordingCalls::BindFramebuffer(GLenum target, GLuint framebuffer) {
    m_trace.Add(2005, m_trace.Gl().Enum(target).Uint(framebuffer));
}

void CRecordingCalls::BindRenderbuffer(GLenum target, GLuint renderbuffer) {
    m_trace.Add(2006, m_trace.Gl().Enum(target).Uint(renderbuffer));
}

void CRecordingCalls::BindTexture(GLenum target, GLuint texture) {
    m_trace.Add(2007, m_trace.Gl().Enum(target).Uint(texture));
}

void CRecordingCalls::BlendColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
    m_trace.Add(2008, m_trace.Gl().Clampf(red).Clampf(green).Clampf(blue).Clampf(alpha));
}

void CRecordingCalls::BlendEquation(GLenum mode) {
    m_trace.Add(2009, m_trace.Gl().Enum(mode));
}

void CRecordingCalls::BlendFunc(GLenum source, GLenum destination) {
    m_trace.Add(2011, m_trace.Gl().Enum(source).Enum(destination));
}

void CRecordingCalls::BlendFuncSeparate(GLenum sourceRgb, GLenum destinationRgb, GLenum sourceAlpha,
                                        GLenum destinationAlpha) {
    m_trace.Add(
        2012,
        m_trace.Gl().Enum(sourceRgb).Enum(destinationRgb).Enum(sourceAlpha).Enum(destinationAlpha));
}

void CRecordingCalls::Clear(GLbitfield mask) {
    m_trace.Add(2016, m_trace.Gl().Bitfield(mask));
}

void CRecordingCalls::ClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
    m_trace.Add(2017, m_trace.Gl().Clampf(red).Clampf(green).Clampf(blue).Clampf(alpha));
}

void CRecordingCalls::ClearStencil(GLint value) {
    m_trace.Add(2019, m_trace.Gl().Int(value));
}

void CRecordingCalls::ColorMask(bool red, bool green, bool blue, bool alpha) {
    m_trace.Add(2020, m_trace.Gl().Boolean(red).Boolean(green).Boolean(blue).Boolean(alpha));
}

void CRecordingCalls::CompileShader(GLuint shader) {
    m_trace.Add(2021, m_trace.Gl().Uint(shader));
}

void CRecordingCalls::CopyTexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset,
                                        GLint x, GLint y, GLsizei width, GLsizei height) {
    m_trace.Add(2025, m_trace.Gl()
                          .Enum(target)
                          .Int(level)
                          .Int(xoffset)
                          .Int(yoffset)
                          .Int(x)
                          .Int(y)
                          .Sizei(width)
                          .Sizei(height));
}

void CRecordingCalls::CullFace(GLenum mode) {
    m_trace.Add(2028, m_trace.Gl().Enum(mode));
}

void CRecordingCalls::DeleteBuffers(GLsizei n, const GLuint* names) {
    ForgetNames(EKind::Buffers, n, names);
    m_trace.Add(2029, m_trace.Gl().Sizei(n).Array(tag::Uint, clientAddress, NameList(n, names)));
}

void CRecordingCalls::DeleteFramebuffers(GLsizei n, const GLuint* names) {
    ForgetNames(EKind::Framebuffers, n, names);
    m_trace.Add(2030, m_trace.Gl().Sizei(n).Array(tag::Uint, clientAddress, NameList(n, names)));
}

void CRecordingCalls::DeleteRenderbuffers(GLsizei n, const GLuint* names) {
    ForgetNames(EKind::Renderbuffers, n, names);
    m_trace.Add(2033, m_trace.Gl().Sizei(n).Array(tag::Uint, clientAddress, NameList(n, names)));
}

void CRecordingCalls::DeleteTextures(GLsizei n, const GLuint* names) {
    ForgetNames(EKind::Textures, n, names);
    m_trace.Add(2031, m_trace.Gl().Sizei(n).Array(tag::Uint, clientAddress, NameList(n, names)));
}

void CRecordingCalls::DepthFunc(GLenum func) {
    m_trace.Add(2036, m_trace.Gl().Enum(func));
}

void CRecordingCalls::DepthMask(bool flag) {
    m_trace.Add(2037, m_trace.Gl().Boolean(flag));
}

void CRecordingCalls::Disable(GLenum cap) {
    m_trace.Add(2039, m_trace.Gl().Enum(cap));
}

void CRecordingCalls::Enable(GLenum cap) {
    m_trace.Add(2043, m_trace.Gl().Enum(cap));
}

void CRecordingCalls::FramebufferRenderbuffer(GLenum target, GLenum attachment,
                                              GLenum renderbufferTarget, GLuint renderbuffer) {
    m_trace.Add(
        2047,
        m_trace.Gl().Enum(target).Enum(attachment).Enum(renderbufferTarget).Uint(renderbuffer));
}

void CRecordingCalls::FramebufferTexture2D(GLenum target, GLenum attachment, GLenum textureTarget,
                                           GLuint texture, GLint level) {
    m_trace.Add(
        2048,
        m_trace.Gl().Enum(target).Enum(attachment).Enum(textureTarget).Uint(texture).Int(level));
}

void CRecordingCalls::FrontFace(GLenum mode) {
    m_trace.Add(2049, m_trace.Gl().Enum(mode));
}

void CRecordingCalls::GenBuffers(GLsizei n, GLuint* names) {
    MakeNames(EKind::Buffers, n, names);
    m_trace.Add(2050, m_trace.Gl().Sizei(n).Array(tag::Uint, clientAddress, NameList(n, names)));
}

void CRecordingCalls::GenFramebuffers(GLsizei n, GLuint* names) {
    MakeNames(EKind::Framebuffers, n, names);
    m_trace.Add(2052, m_trace.Gl().Sizei(n).Array(tag::Uint, clientAddress, NameList(n, names)));
}

void CRecordingCalls::GenRenderbuffers(GLsizei n, GLuint* names) {
    MakeNames(EKind::Renderbuffers, n, names);
    m_trace.Add(2053, m_trace.Gl().Sizei(n).Array(tag::Uint, clientAddress, NameList(n, names)));
}

void CRecordingCalls::GenTextures(GLsizei n, GLuint* names) {
    MakeNames(EKind::Textures, n, names);
    m_trace.Add(2054, m_trace.Gl().Sizei(n).Array(tag::Uint, clientAddress, NameList(n, names)));
}

void CRecordingCalls::GenerateMipmap(GLenum target) {
    m_trace.Add(2051, m_trace.Gl().Enum(target));
}

void CRecordingCalls::LineWidth(GLfloat width) {
    m_trace.Add(2089, m_trace.Gl().Float(width));
}

void CRecordingCalls::PolygonOffset(GLfloat factor, GLfloat units) {
    m_trace.Add(2092, m_trace.Gl().Float(factor).Float(units));
}

void CRecordingCalls::RenderbufferStorage(GLenum target, GLenum format, GLsizei width,
                                          GLsizei height) {
    m_trace.Add(2095, m_trace.Gl().Enum(target).Enum(format).Sizei(width).Sizei(height));
}

void CRecordingCalls::Scissor(GLint x, GLint y, GLsizei width, GLsizei height) {
    m_trace.Add(2097, m_trace.Gl().Int(x).Int(y).Sizei(width).Sizei(height));
}

void CRecordingCalls::StencilFunc(GLenum func, GLint reference, GLuint mask) {
    m_trace.Add(2100, m_trace.Gl().Enum(func).Int(reference).Uint(mask));
}

void CRecordingCalls::StencilMask(GLuint mask) {
    m_trace.Add(2102, m_trace.Gl().Uint(mask));
}

void CRecordingCalls::StencilOp(GLenum fail, GLenum depthFail, GLenum pass) {
    m_trace.Add(2104, m_trace.Gl().Enum(fail).Enum(depthFail).Enum(pass));
}

void CRecordingCalls::TexParameterf(GLenum target, GLenum name, GLfloat value) {
    m_trace.Add(2107, m_trace.Gl().Enum(target).Enum(name).Float(value));
}

void CRecordingCalls::TexParameteri(GLenum target, GLenum name, GLint value) {
    m_trace.Add(2109, m_trace.Gl().Enum(target).Enum(name).Int(value));
}

void CRecordingCalls::Uniform1f(GLint location, GLfloat v0) {
    m_trace.Add(2112, m_trace.Gl().Int(location).Float(v0));
}

void CRecordingCalls::Uniform1i(GLint location, GLint v0) {
    m_trace.Add(2114, m_trace.Gl().Int(location).Int(v0));
}

void CRecordingCalls::Uniform2f(GLint location, GLfloat v0, GLfloat v1) {
    m_trace.Add(2116, m_trace.Gl().Int(location).Float(v0).Float(v1));
}

void CRecordingCalls::Uniform2i(GLint location, GLint v0, GLint v1) {
    m_trace.Add(2118, m_trace.Gl().Int(location).Int(v0).Int(v1));
}

void CRecordingCalls::Uniform3fv(GLint location, GLsizei count, const GLfloat* values) {
    m_trace.Add(2121, m_trace.Gl().Int(location).Sizei(count).Reals(
                          tag::Float, clientAddress, {values, values + 3 * count}, 3));
}

void CRecordingCalls::Uniform4f(GLint location, GLfloat v0, GLfloat v1, GLfloat v2, GLfloat v3) {
    m_trace.Add(2124, m_trace.Gl().Int(location).Float(v0).Float(v1).Float(v2).Float(v3));
}

void CRecordingCalls::Uniform4fv(GLint location, GLsizei count, const GLfloat* values) {
    m_trace.Add(2125, m_trace.Gl().Int(location).Sizei(count).Reals(
                          tag::Float, clientAddress, {values, values + 4 * count}, 4));
}

void CRecordingCalls::UniformMatrix2fv(GLint location, GLsizei count, const GLfloat* values) {
    m_trace.Add(2128, m_trace.Gl().Int(location).Sizei(count).Boolean(false).Reals(
                          tag::Float, clientAddress, {values, values + 4 * count}, 4));
}

void CRecordingCalls::UniformMatrix3fv(GLint location, GLsizei count, const GLfloat* values) {
    m_trace.Add(2129, m_trace.Gl().Int(location).Sizei(count).Boolean(false).Reals(
                          tag::Float, clientAddress, {values, values + 9 * count}, 9));
}

void CRecordingCalls::UniformMatrix4fv(GLint location, GLsizei count, const GLfloat* values) {
    m_trace.Add(2130, m_trace.Gl().Int(location).Sizei(count).Boolean(false).Reals(
                          tag::Float, clientAddress, {values, values + 16 * count}, 16));
}

void CRecordingCalls::UseProgram(GLuint program) {
    m_trace.Add(2131, m_trace.Gl().Uint(program));
}

void CRecordingCalls::VertexAttrib3fv(GLuint index, const GLfloat* values) {
    m_trace.Add(2138,
                m_trace.Gl().Uint(index).RealItem(tag::Float, clientAddress, {values, values + 3}));
}

void CRecordingCalls::VertexAttrib4f(GLuint index, GLfloat x, GLfloat y, GLfloat z, GLfloat w) {
    m_trace.Add(2139, m_trace.Gl().Uint(index).Float(x).Float(y).Float(z).Float(w));
}

void CRecordingCalls::Viewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    m_trace.Add(2142, m_trace.Gl().Int(x).Int(y).Sizei(width).Sizei(height));
}
}  // namespace kestrail::samples
