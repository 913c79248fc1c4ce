#include "samples/es2/program.h"

#include "samples/es2/shaders.h"

namespace kestrail::samples {

GLuint MakeProgram(CEs2Calls& gl, const char* vertex, const char* fragment,
                   const std::vector<const char*>& boundAttributes) {
    const GLuint program = gl.CreateProgram();
    const GLuint vertexShader = gl.CreateShader(GL_VERTEX_SHADER);
    gl.ShaderSource(vertexShader, {vertex});
    gl.CompileShader(vertexShader);
    const GLuint fragmentShader = gl.CreateShader(GL_FRAGMENT_SHADER);
    gl.ShaderSource(fragmentShader, {shaders::precision, fragment});
    gl.CompileShader(fragmentShader);
    gl.AttachShader(program, vertexShader);
    gl.AttachShader(program, fragmentShader);
    GLuint index = 0;
    for (const char* name : boundAttributes) gl.BindAttribLocation(program, index++, name);
    gl.LinkProgram(program);
    gl.DeleteShader(vertexShader);
    gl.DeleteShader(fragmentShader);
    return program;
}

}  // namespace kestrail::samples
