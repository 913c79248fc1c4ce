// What calls take, for runs with and without the recorder: `kestrail record` of this program on a
// host that does nothing, which it is linked with.
#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

namespace {

bool MakeContext() {
    constexpr EGLint kVersion[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    const EGLDisplay display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    const EGLContext context = eglCreateContext(display, nullptr, EGL_NO_CONTEXT, kVersion);
    return eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE;
}

template <typename Call>
void Run(benchmark::State& state, Call call) {
    static const bool s_made = MakeContext();
    if (!s_made) return state.SkipWithError("no context");
    // What was recorded before leaves the memory, so that nothing waits for the file.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    for ([[maybe_unused]] const auto turn : state) call();
}

/// Of each benchmark, fewer bytes than may wait for the file.
constexpr std::int64_t kBurst = std::int64_t{48} << 20;
constexpr std::int64_t kCalls = kBurst / 100;

void BM_RecordData(benchmark::State& state) {
    const std::vector<std::uint8_t> data(static_cast<std::size_t>(state.range(0)), 1);
    const auto size = static_cast<GLsizeiptr>(data.size());
    Run(state, [&] { glBufferData(GL_ARRAY_BUFFER, size, data.data(), GL_STATIC_DRAW); });
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
// The first writes to memory that nothing has been in.
BENCHMARK(BM_RecordData)->Arg(64 << 10)->Iterations(kBurst >> 16);
BENCHMARK(BM_RecordData)->Arg(64 << 10)->Iterations(kBurst >> 16);
BENCHMARK(BM_RecordData)->Arg(1 << 20)->Iterations(kBurst >> 20);

void BM_RecordUniform(benchmark::State& state) {
    Run(state, [] { glUniform4f(1, 0.5F, 0.25F, 0.125F, 1); });
}
BENCHMARK(BM_RecordUniform)->Iterations(kCalls);

void BM_RecordBind(benchmark::State& state) {
    Run(state, [] { glBindTexture(GL_TEXTURE_2D, 7); });
}
BENCHMARK(BM_RecordBind)->Iterations(kCalls);

void BM_RecordMatrix(benchmark::State& state) {
    static constexpr std::array<float, 16> kMatrix{};
    Run(state, [] { glUniformMatrix4fv(1, 1, GL_FALSE, kMatrix.data()); });
}
BENCHMARK(BM_RecordMatrix)->Iterations(kCalls);

void BM_RecordDraw(benchmark::State& state) {
    Run(state, [] { glDrawArrays(GL_TRIANGLES, 0, 300); });
}
BENCHMARK(BM_RecordDraw)->Iterations(kCalls);

}  // namespace
