// The calls that ES1 shares with ES2 and later, each under the identifier of its family.
#pragma once

#include "samples/common/call_sink.h"

namespace kestrail::samples {

class CCommonCalls : public CCallSink {
public:
    using CCallSink::CCallSink;

    void ActiveTexture(std::uint32_t unit) { Do(Id(3001, 2001), "glActiveTexture", Enum{unit}); }
    void BindBuffer(std::uint32_t target, std::uint32_t buffer);
    void BindTexture(std::uint32_t target, std::uint32_t texture) {
        Do(Id(3005, 2007), "glBindTexture", Enum{target}, Uint{texture});
    }
    void BlendFunc(std::uint32_t source, std::uint32_t destination) {
        Do(Id(3006, 2011), "glBlendFunc", Enum{source}, Enum{destination});
    }
    void BufferData(std::uint32_t target, std::intptr_t size, const void* data,
                    std::uint32_t usage);
    void BufferSubData(std::uint32_t target, std::intptr_t offset, std::intptr_t size,
                       const void* data);
    void Clear(std::uint32_t mask) { Do(Id(3009, 2016), "glClear", Bitfield{mask}); }
    void ClearColor(float red, float green, float blue, float alpha) {
        Do(Id(3010, 2017), "glClearColor", Clampf{red}, Clampf{green}, Clampf{blue}, Clampf{alpha});
    }
    void ClearStencil(std::int32_t value) { Do(Id(3014, 2019), "glClearStencil", Int{value}); }
    void ColorMask(bool red, bool green, bool blue, bool alpha) {
        Do(Id(3021, 2020), "glColorMask", Boolean{red}, Boolean{green}, Boolean{blue},
           Boolean{alpha});
    }
    void CopyTexSubImage2D(std::uint32_t target, std::int32_t level, std::int32_t xoffset,
                           std::int32_t yoffset, std::int32_t x, std::int32_t y, std::int32_t width,
                           std::int32_t height) {
        Do(Id(3026, 2025), "glCopyTexSubImage2D", Enum{target}, Int{level}, Int{xoffset},
           Int{yoffset}, Int{x}, Int{y}, Sizei{width}, Sizei{height});
    }
    void CullFace(std::uint32_t mode) { Do(Id(3027, 2028), "glCullFace", Enum{mode}); }
    void DeleteBuffers(std::int32_t n, const std::uint32_t* names) {
        Delete(Id(3028, 2029), "glDeleteBuffers", EObject::Buffers, n, names);
    }
    void DeleteTextures(std::int32_t n, const std::uint32_t* names) {
        Delete(Id(3029, 2031), "glDeleteTextures", EObject::Textures, n, names);
    }
    void DepthFunc(std::uint32_t func) { Do(Id(3030, 2036), "glDepthFunc", Enum{func}); }
    void DepthMask(bool flag) { Do(Id(3031, 2037), "glDepthMask", Boolean{flag}); }
    void Disable(std::uint32_t cap) { Do(Id(3034, 2039), "glDisable", Enum{cap}); }
    void DrawArrays(std::uint32_t mode, std::int32_t first, std::int32_t count);
    /// `indices` is an offset while an element buffer is bound.
    void DrawElements(std::uint32_t mode, std::int32_t count, std::uint32_t type,
                      const void* indices);
    void Enable(std::uint32_t cap) { Do(Id(3038, 2043), "glEnable", Enum{cap}); }
    void FrontFace(std::uint32_t mode) { Do(Id(3046, 2049), "glFrontFace", Enum{mode}); }
    void GenBuffers(std::int32_t n, std::uint32_t* names) {
        Generate(Id(3053, 2050), "glGenBuffers", EObject::Buffers, n, names);
    }
    void GenTextures(std::int32_t n, std::uint32_t* names) {
        Generate(Id(3054, 2054), "glGenTextures", EObject::Textures, n, names);
    }
    void LineWidth(float width) { Do(Id(3083, 2089), "glLineWidth", Float{width}); }
    void PixelStorei(std::uint32_t name, std::int32_t value);
    void PolygonOffset(float factor, float units) {
        Do(Id(3110, 2092), "glPolygonOffset", Float{factor}, Float{units});
    }
    void Scissor(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
        Do(Id(3121, 2097), "glScissor", Int{x}, Int{y}, Sizei{width}, Sizei{height});
    }
    void StencilFunc(std::uint32_t func, std::int32_t reference, std::uint32_t mask) {
        Do(Id(3123, 2100), "glStencilFunc", Enum{func}, Int{reference}, Uint{mask});
    }
    void StencilMask(std::uint32_t mask) { Do(Id(3124, 2102), "glStencilMask", Uint{mask}); }
    void StencilOp(std::uint32_t fail, std::uint32_t depthFail, std::uint32_t pass) {
        Do(Id(3125, 2104), "glStencilOp", Enum{fail}, Enum{depthFail}, Enum{pass});
    }
    void TexImage2D(std::uint32_t target, std::int32_t level, std::uint32_t internalFormat,
                    std::int32_t width, std::int32_t height, std::uint32_t format,
                    std::uint32_t type, const void* pixels);
    void TexParameterf(std::uint32_t target, std::uint32_t name, float value) {
        Do(Id(3134, 2107), "glTexParameterf", Enum{target}, Enum{name}, Float{value});
    }
    void TexParameteri(std::uint32_t target, std::uint32_t name, std::int32_t value) {
        Do(Id(3136, 2109), "glTexParameteri", Enum{target}, Enum{name}, Int{value});
    }
    void TexSubImage2D(std::uint32_t target, std::int32_t level, std::int32_t xoffset,
                       std::int32_t yoffset, std::int32_t width, std::int32_t height,
                       std::uint32_t format, std::uint32_t type, const void* pixels);
    void Viewport(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
        Do(Id(3144, 2142), "glViewport", Int{x}, Int{y}, Sizei{width}, Sizei{height});
    }

protected:
    std::uint16_t Id(std::uint16_t es1, std::uint16_t es2) const {
        return ClientVersion() == 1 ? es1 : es2;
    }
    /// The pixels as the driver reads them: rows padded to the unpack alignment.
    Bytes CapturePixels(std::int32_t width, std::int32_t rows, std::uint32_t format,
                        std::uint32_t type, const void* pixels) const;

private:
    std::int32_t m_unpackAlignment = 4;
};

}  // namespace kestrail::samples
