// Shader sources of the ES3 scene.
#pragma once

namespace kestrail::samples::es3shaders {

inline constexpr const char* version = "#version 300 es\n";
inline constexpr const char* fragmentHead = "#version 300 es\nprecision mediump float;\n";

/// Instanced tiles, drawn to two targets at once.
inline constexpr const char* instancedVertex = R"(
in vec2 corner;
in vec2 offset;
in uint kind;
in ivec4 nudge;
layout(std140) uniform Palette {
    vec4 colours[4];
    vec4 shift;
};
uniform mat2x3 bend;
uniform mat3x2 squash;
uniform uint count;
uniform uvec2 pick;
out vec3 at;
out vec4 tint;
void main() {
    vec3 bent = bend * corner;
    vec2 place = squash * vec3(bent.xy, 1.0) + bent.zz * 0.1;
    tint = colours[(kind + pick.x) % count];
    at = vec3(corner * 0.5 + 0.5, float((kind + pick.y) % 3u));
    gl_Position = vec4(place + offset + shift.xy + vec2(nudge.xy) * 0.02,
                       0.1 * float(kind), 1.0);
}
)";

inline constexpr const char* instancedFragment = R"(
uniform mediump sampler2DArray layers;
in vec3 at;
in vec4 tint;
layout(location = 0) out vec4 front;
layout(location = 1) out vec4 back;
void main() {
    front = vec4(texture(layers, at).rgb * 0.6 + tint.rgb * 0.4, 1.0);
    back = vec4(1.0 - tint.bgr, 1.0);
}
)";

/// A slice through a volume.
inline constexpr const char* volumeVertex = R"(
in vec2 corner;
in vec3 coordinate;
uniform mat4x3 turn;
out vec3 at;
void main() {
    at = turn * vec4(coordinate, 1.0);
    gl_Position = vec4(corner, 0.0, 1.0);
}
)";

inline constexpr const char* volumeFragment = R"(
uniform mediump sampler3D volume;
uniform highp uvec4 weights[2];
in vec3 at;
out vec4 colour;
void main() {
    colour = texture(volume, at).rrra * vec4(weights[0]) / 255.0 + vec4(weights[1]) / 255.0;
    colour.a = 1.0;
}
)";

/// An image with the numbers of another one added to it.
inline constexpr const char* tileVertex = R"(
in vec2 corner;
uniform vec4 place;
out vec2 at;
void main() {
    at = corner * 0.5 + 0.5;
    gl_Position = vec4(corner * place.zw + place.xy, 0.0, 1.0);
}
)";

inline constexpr const char* tileFragment = R"(
uniform sampler2D image;
uniform mediump usampler2D marks;
in vec2 at;
out vec4 colour;
void main() {
    colour = texture(image, at) + vec4(texture(marks, at)) / 255.0;
}
)";

/// Shapes of one colour, which is given in whole numbers.
inline constexpr const char* flatVertex = R"(
in vec2 corner;
in uvec4 shade;
in ivec4 nudge;
uniform mat2x4 turn;
out vec4 colour;
void main() {
    colour = vec4(shade) / 255.0;
    vec4 turned = turn * corner;
    gl_Position = vec4(turned.xy + turned.zw * 0.1 + vec2(nudge.xy) * 0.01, 0.0, 1.0);
}
)";

inline constexpr const char* flatFragment = R"(
in vec4 colour;
out vec4 result;
void main() { result = colour; }
)";

}  // namespace kestrail::samples::es3shaders
