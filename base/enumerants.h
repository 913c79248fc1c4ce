// The enumerants and types of EGL and of all versions of OpenGL ES by their published names.
#pragma once

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES/gl.h>
#include <GLES/glext.h>
#include <GLES3/gl3.h>

// Extensions take their macros from the versions.
#include <GLES2/gl2ext.h>

// Of a host's extension that the headers of OpenGL ES leave out.
#ifndef GL_PACK_INVERT_MESA
#define GL_PACK_INVERT_MESA 0x8758
#endif
