// The calls that ES1 has alone, and the extensions that it is used with.
#pragma once

#include <GLES/gl.h>
#include <GLES/glext.h>

#include <vector>

#include "samples/common/common_calls.h"

namespace kestrail::samples {

class CEs1Calls : public CCommonCalls {
public:
    explicit CEs1Calls(IBackEnd& backEnd) : CCommonCalls(backEnd, 1) {}

    void AlphaFunc(GLenum func, GLclampf ref) { Do(3002, "glAlphaFunc", Enum{func}, Clampf{ref}); }
    void AlphaFuncx(GLenum func, GLclampx ref) {
        Do(3003, "glAlphaFuncx", Enum{func}, Clampx{ref});
    }
    void ClearColorx(GLclampx red, GLclampx green, GLclampx blue, GLclampx alpha) {
        Do(3011, "glClearColorx", Clampx{red}, Clampx{green}, Clampx{blue}, Clampx{alpha});
    }
    void ClearDepthf(GLclampf depth) { Do(3012, "glClearDepthf", Clampf{depth}); }
    void ClearDepthx(GLclampx depth) { Do(3013, "glClearDepthx", Clampx{depth}); }
    void ClientActiveTexture(GLenum unit);
    void ClipPlanef(GLenum plane, const std::vector<GLfloat>& equation) {
        Do(3016, "glClipPlanef", Enum{plane}, FloatItem{equation.data(), 4});
    }
    void Color4f(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
        Do(3018, "glColor4f", Float{red}, Float{green}, Float{blue}, Float{alpha});
    }
    void Color4ub(GLubyte red, GLubyte green, GLubyte blue, GLubyte alpha) {
        Do(3019, "glColor4ub", Ubyte{red}, Ubyte{green}, Ubyte{blue}, Ubyte{alpha});
    }
    void Color4x(GLfixed red, GLfixed green, GLfixed blue, GLfixed alpha) {
        Do(3020, "glColor4x", Fixed{red}, Fixed{green}, Fixed{blue}, Fixed{alpha});
    }
    void DepthRangef(GLclampf zNear, GLclampf zFar) {
        Do(3032, "glDepthRangef", Clampf{zNear}, Clampf{zFar});
    }
    void DepthRangex(GLclampx zNear, GLclampx zFar) {
        Do(3033, "glDepthRangex", Clampx{zNear}, Clampx{zFar});
    }
    void DisableClientState(GLenum array);
    void EnableClientState(GLenum array);
    void Fogf(GLenum name, GLfloat value) { Do(3042, "glFogf", Enum{name}, Float{value}); }
    void Fogfv(GLenum name, const std::vector<GLfloat>& values) {
        Do(3043, "glFogfv", Enum{name}, List(values));
    }
    void Fogx(GLenum name, GLfixed value) { Do(3044, "glFogx", Enum{name}, Fixed{value}); }
    void Fogxv(GLenum name, const std::vector<GLfixed>& values) {
        Do(3045, "glFogxv", Enum{name}, List(values));
    }
    void Frustumf(GLfloat l, GLfloat r, GLfloat b, GLfloat t, GLfloat n, GLfloat f) {
        Do(3047, "glFrustumf", Float{l}, Float{r}, Float{b}, Float{t}, Float{n}, Float{f});
    }
    void Frustumx(GLfixed l, GLfixed r, GLfixed b, GLfixed t, GLfixed n, GLfixed f) {
        Do(3048, "glFrustumx", Fixed{l}, Fixed{r}, Fixed{b}, Fixed{t}, Fixed{n}, Fixed{f});
    }
    void Hint(GLenum target, GLenum mode) { Do(3071, "glHint", Enum{target}, Enum{mode}); }
    void LightModelfv(GLenum name, const std::vector<GLfloat>& values) {
        Do(3076, "glLightModelfv", Enum{name}, List(values));
    }
    void LightModelx(GLenum name, GLfixed value) {
        Do(3077, "glLightModelx", Enum{name}, Fixed{value});
    }
    void Lightf(GLenum light, GLenum name, GLfloat value) {
        Do(3079, "glLightf", Enum{light}, Enum{name}, Float{value});
    }
    void Lightfv(GLenum light, GLenum name, const std::vector<GLfloat>& values) {
        Do(3080, "glLightfv", Enum{light}, Enum{name}, List(values));
    }
    void Lightx(GLenum light, GLenum name, GLfixed value) {
        Do(3081, "glLightx", Enum{light}, Enum{name}, Fixed{value});
    }
    void Lightxv(GLenum light, GLenum name, const std::vector<GLfixed>& values) {
        Do(3082, "glLightxv", Enum{light}, Enum{name}, List(values));
    }
    void LineWidthx(GLfixed width) { Do(3084, "glLineWidthx", Fixed{width}); }
    void LoadIdentity() { Do(3085, "glLoadIdentity"); }
    void LoadMatrixf(const std::vector<GLfloat>& matrix) {
        Do(3086, "glLoadMatrixf", FloatItem{matrix.data(), 16});
    }
    void LoadMatrixx(const std::vector<GLfixed>& matrix) {
        Do(3087, "glLoadMatrixx", FixedItem{matrix.data(), 16});
    }
    void LogicOp(GLenum operation) { Do(3088, "glLogicOp", Enum{operation}); }
    void Materialf(GLenum face, GLenum name, GLfloat value) {
        Do(3089, "glMaterialf", Enum{face}, Enum{name}, Float{value});
    }
    void Materialfv(GLenum face, GLenum name, const std::vector<GLfloat>& values) {
        Do(3090, "glMaterialfv", Enum{face}, Enum{name}, List(values));
    }
    void Materialx(GLenum face, GLenum name, GLfixed value) {
        Do(3091, "glMaterialx", Enum{face}, Enum{name}, Fixed{value});
    }
    void Materialxv(GLenum face, GLenum name, const std::vector<GLfixed>& values) {
        Do(3092, "glMaterialxv", Enum{face}, Enum{name}, List(values));
    }
    void MatrixMode(GLenum mode) { Do(3093, "glMatrixMode", Enum{mode}); }
    void MultMatrixf(const std::vector<GLfloat>& matrix) {
        Do(3094, "glMultMatrixf", FloatItem{matrix.data(), 16});
    }
    void MultMatrixx(const std::vector<GLfixed>& matrix) {
        Do(3095, "glMultMatrixx", FixedItem{matrix.data(), 16});
    }
    void MultiTexCoord4f(GLenum unit, GLfloat s, GLfloat t, GLfloat r, GLfloat q) {
        Do(3096, "glMultiTexCoord4f", Enum{unit}, Float{s}, Float{t}, Float{r}, Float{q});
    }
    void MultiTexCoord4x(GLenum unit, GLfixed s, GLfixed t, GLfixed r, GLfixed q) {
        Do(3097, "glMultiTexCoord4x", Enum{unit}, Fixed{s}, Fixed{t}, Fixed{r}, Fixed{q});
    }
    void Normal3f(GLfloat x, GLfloat y, GLfloat z) {
        Do(3098, "glNormal3f", Float{x}, Float{y}, Float{z});
    }
    void Normal3x(GLfixed x, GLfixed y, GLfixed z) {
        Do(3099, "glNormal3x", Fixed{x}, Fixed{y}, Fixed{z});
    }
    void Orthof(GLfloat l, GLfloat r, GLfloat b, GLfloat t, GLfloat n, GLfloat f) {
        Do(3101, "glOrthof", Float{l}, Float{r}, Float{b}, Float{t}, Float{n}, Float{f});
    }
    void Orthox(GLfixed l, GLfixed r, GLfixed b, GLfixed t, GLfixed n, GLfixed f) {
        Do(3102, "glOrthox", Fixed{l}, Fixed{r}, Fixed{b}, Fixed{t}, Fixed{n}, Fixed{f});
    }
    void PointParameterf(GLenum name, GLfloat value) {
        Do(3104, "glPointParameterf", Enum{name}, Float{value});
    }
    void PointParameterfv(GLenum name, const std::vector<GLfloat>& values) {
        Do(3105, "glPointParameterfv", Enum{name}, List(values));
    }
    void PointSize(GLfloat size) { Do(3108, "glPointSize", Float{size}); }
    void PointSizex(GLfixed size) { Do(3109, "glPointSizex", Fixed{size}); }
    void PolygonOffsetx(GLfixed factor, GLfixed units) {
        Do(3111, "glPolygonOffsetx", Fixed{factor}, Fixed{units});
    }
    void PopMatrix() { Do(3112, "glPopMatrix"); }
    void PushMatrix() { Do(3113, "glPushMatrix"); }
    void Rotatef(GLfloat angle, GLfloat x, GLfloat y, GLfloat z) {
        Do(3115, "glRotatef", Float{angle}, Float{x}, Float{y}, Float{z});
    }
    void Rotatex(GLfixed angle, GLfixed x, GLfixed y, GLfixed z) {
        Do(3116, "glRotatex", Fixed{angle}, Fixed{x}, Fixed{y}, Fixed{z});
    }
    void Scalef(GLfloat x, GLfloat y, GLfloat z) {
        Do(3119, "glScalef", Float{x}, Float{y}, Float{z});
    }
    void Scalex(GLfixed x, GLfixed y, GLfixed z) {
        Do(3120, "glScalex", Fixed{x}, Fixed{y}, Fixed{z});
    }
    void ShadeModel(GLenum mode) { Do(3122, "glShadeModel", Enum{mode}); }
    void TexEnvf(GLenum target, GLenum name, GLfloat value) {
        Do(3127, "glTexEnvf", Enum{target}, Enum{name}, Float{value});
    }
    void TexEnvfv(GLenum target, GLenum name, const std::vector<GLfloat>& values) {
        Do(3128, "glTexEnvfv", Enum{target}, Enum{name}, List(values));
    }
    void TexEnvi(GLenum target, GLenum name, GLint value) {
        Do(3129, "glTexEnvi", Enum{target}, Enum{name}, Int{value});
    }
    void TexEnvx(GLenum target, GLenum name, GLfixed value) {
        Do(3131, "glTexEnvx", Enum{target}, Enum{name}, Fixed{value});
    }
    void TexParameterx(GLenum target, GLenum name, GLfixed value) {
        Do(3138, "glTexParameterx", Enum{target}, Enum{name}, Fixed{value});
    }
    void Translatef(GLfloat x, GLfloat y, GLfloat z) {
        Do(3141, "glTranslatef", Float{x}, Float{y}, Float{z});
    }
    void Translatex(GLfixed x, GLfixed y, GLfixed z) {
        Do(3142, "glTranslatex", Fixed{x}, Fixed{y}, Fixed{z});
    }

    // `pointer` is an offset while a vertex buffer is bound.
    void ColorPointer(GLint size, GLenum type, GLsizei stride, const void* pointer);
    void NormalPointer(GLenum type, GLsizei stride, const void* pointer);
    void PointSizePointerOES(GLenum type, GLsizei stride, const void* pointer);
    void TexCoordPointer(GLint size, GLenum type, GLsizei stride, const void* pointer);
    void VertexPointer(GLint size, GLenum type, GLsizei stride, const void* pointer);

    /// Maps the buffer, writes all of it and unmaps it.
    void RewriteBufferOES(GLenum target, const void* data, std::size_t size);

    void BindRenderbufferOES(GLenum target, GLuint renderbuffer) {
        Do(4016, "glBindRenderbufferOES", Enum{target}, Uint{renderbuffer});
    }
    void DeleteRenderbuffersOES(GLsizei n, const GLuint* names) {
        Delete(4017, "glDeleteRenderbuffersOES", EObject::Renderbuffers, n, names);
    }
    void GenRenderbuffersOES(GLsizei n, GLuint* names) {
        Generate(4018, "glGenRenderbuffersOES", EObject::Renderbuffers, n, names);
    }
    void RenderbufferStorageOES(GLenum target, GLenum format, GLsizei width, GLsizei height) {
        Do(4019, "glRenderbufferStorageOES", Enum{target}, Enum{format}, Sizei{width},
           Sizei{height});
    }
    void BindFramebufferOES(GLenum target, GLuint framebuffer) {
        Do(4022, "glBindFramebufferOES", Enum{target}, Uint{framebuffer});
    }
    void DeleteFramebuffersOES(GLsizei n, const GLuint* names) {
        Delete(4023, "glDeleteFramebuffersOES", EObject::Framebuffers, n, names);
    }
    void GenFramebuffersOES(GLsizei n, GLuint* names) {
        Generate(4024, "glGenFramebuffersOES", EObject::Framebuffers, n, names);
    }
    void CheckFramebufferStatusOES(GLenum target) {
        Ask(4025, "glCheckFramebufferStatusOES", Enum{GL_FRAMEBUFFER_COMPLETE_OES}, Enum{target});
    }
    void FramebufferTexture2DOES(GLenum target, GLenum attachment, GLenum textureTarget,
                                 GLuint texture, GLint level) {
        Do(4026, "glFramebufferTexture2DOES", Enum{target}, Enum{attachment}, Enum{textureTarget},
           Uint{texture}, Int{level});
    }
    void FramebufferRenderbufferOES(GLenum target, GLenum attachment, GLenum renderbufferTarget,
                                    GLuint renderbuffer) {
        Do(4027, "glFramebufferRenderbufferOES", Enum{target}, Enum{attachment},
           Enum{renderbufferTarget}, Uint{renderbuffer});
    }
    void GenerateMipmapOES(GLenum target) { Do(4029, "glGenerateMipmapOES", Enum{target}); }

private:
    static Floats List(const std::vector<GLfloat>& values) {
        return {values.data(), values.size()};
    }
    static Fixeds List(const std::vector<GLfixed>& values) {
        return {values.data(), values.size()};
    }
    std::uint32_t KindOf(GLenum array) const;

    GLuint m_clientUnit = 0;
};

}  // namespace kestrail::samples
