// Shader sources of the ES2 scenes.
#pragma once

namespace kestrail::samples::shaders {

inline constexpr const char* precision = "precision mediump float;\n";

inline constexpr const char* tileVertex = R"(
attribute vec2 corner;
attribute vec2 texcoord;
attribute vec4 colour;
uniform mat3 placement;
varying vec2 at;
varying vec4 tint;
void main() {
    at = texcoord;
    tint = colour;
    gl_Position = vec4((placement * vec3(corner, 1.0)).xy, 0.0, 1.0);
}
)";

inline constexpr const char* tileFragment = R"(
uniform sampler2D image;
uniform vec4 filterColour;
uniform float fade;
varying vec2 at;
varying vec4 tint;
void main() {
    gl_FragColor = mix(texture2D(image, at) * filterColour, tint, fade);
}
)";

inline constexpr const char* cubeVertex = R"(
attribute vec3 position;
attribute vec3 normal;
uniform mat4 projection;
uniform mat3 turn;
uniform vec3 lights[2];
varying float brightness;
void main() {
    vec3 n = turn * normal;
    brightness = 0.25 + 0.6 * max(dot(n, normalize(lights[0])), 0.0)
               + 0.3 * max(dot(n, normalize(lights[1])), 0.0);
    gl_Position = projection * vec4(turn * position, 1.0);
}
)";

inline constexpr const char* cubeFragment = R"(
uniform vec4 palette[3];
uniform ivec2 choice;
varying float brightness;
void main() {
    vec4 colour = choice.x == 0 ? palette[0] : (choice.x == 1 ? palette[1] : palette[2]);
    gl_FragColor = vec4(colour.rgb * brightness, colour.a);
    if (choice.y == 1) gl_FragColor = gl_FragColor.bgra;
}
)";

inline constexpr const char* flatVertex = R"(
attribute vec2 corner;
attribute vec4 shade;
uniform mat2 turn;
uniform vec2 centre;
varying vec4 colour;
void main() {
    colour = shade;
    gl_Position = vec4(turn * corner + centre, 0.0, 1.0);
    gl_PointSize = 3.0;
}
)";

inline constexpr const char* flatFragment = R"(
varying vec4 colour;
void main() { gl_FragColor = colour; }
)";

}  // namespace kestrail::samples::shaders
