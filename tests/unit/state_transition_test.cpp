// Which calls the host gets, in which order, when one ES2 record is turned into another.
#include "tests/unit/transition_fixture.h"
#include "transitions/es2_transition.h"
#include "transitions/es2_transition_steps.h"

namespace kestrail {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

const Calls kDefaultScalars = {
    "glBlendEquationSeparate(32774,32774)",
    "glDisable(3042)",
    "glDisable(2884)",
    "glDisable(2929)",
    "glEnable(3024)",
    "glDisable(32823)",
    "glDisable(32926)",
    "glDisable(32928)",
    "glDisable(3089)",
    "glDisable(2960)",
    "glBlendFuncSeparate(1,0,1,0)",
    "glBlendColor(0,0,0,0)",
    "glClearColor(0,0,0,0)",
    "glClearDepthf(1)",
    "glClearStencil(0)",
    "glColorMask(1,1,1,1)",
    "glCullFace(1029)",
    "glDepthFunc(513)",
    "glDepthMask(1)",
    "glDepthRangef(0,1)",
    "glFrontFace(2305)",
    "glHint(33170,4352)",
    "glPixelStorei(3333,4)",
    "glPixelStorei(3317,4)",
    "glPolygonOffset(0,0)",
    "glSampleCoverage(1,0)",
    "glStencilFuncSeparate(1028,519,0,4294967295)",
    "glStencilFuncSeparate(1029,519,0,4294967295)",
    "glStencilMaskSeparate(1028,4294967295)",
    "glStencilMaskSeparate(1029,4294967295)",
    "glStencilOpSeparate(1028,7680,7680,7680)",
    "glStencilOpSeparate(1029,7680,7680,7680)",
};

TEST_F(StateTransition, DefaultRecordsSetBindingsAndScalarState) {
    CEs2State target;
    TransitionEs2State(target, CEs2State());
    Calls expected = {"glUseProgram(0)",
                      "glUseProgram(0)",
                      "glActiveTexture(33984)",
                      "glBindTexture(3553,0)",
                      "glBindTexture(34067,0)",
                      "glActiveTexture(33984)",
                      "glBindFramebuffer(36160,0)",
                      "glBindVertexArrayOES(0)"};
    expected.insert(expected.end(), kDefaultScalars.begin(), kDefaultScalars.end());
    EXPECT_THAT(Take(), ElementsAreArray(expected));
}

TEST_F(StateTransition, ErrorsArePrintedTwoAtATime) {
    m_host.errors = {0x500, 0x502, 0x505};
    CEs2State state;
    EXPECT_EQ(Printed([&] { CheckTransitionError(state); }),
              "KESTRAIL(M) OGLES2 Error Code  0x500, Setting ContextState\n\n"
              "KESTRAIL(M) OGLES2 Error Code  0x502, Setting ContextState\n\n");
    EXPECT_EQ(m_host.errors.size(), 1u);
}

TEST_F(StateTransition, ScissorAndViewportHaveConditions) {
    CEs2State target;
    target.viewport = {1, 2, 30, 0};
    target.scissorBox = {0, 0, 0, 7};
    m_names.ViewportDirty() = false;
    TransitionScalars(target);
    Calls calls = Take();
    EXPECT_THAT(calls, ::testing::Contains("glScissor(0,0,0,7)"));
    EXPECT_EQ(calls.back(), "glStencilOpSeparate(1029,7680,7680,7680)");
    EXPECT_FALSE(m_names.ViewportDirty());

    target.boundFramebuffer = 3;
    target.unpackAlignment = 1;
    TransitionScalars(target);
    EXPECT_EQ(Take().back(), "glViewport(1,2,30,0)");
    EXPECT_TRUE(m_names.ViewportDirty());
    EXPECT_EQ(CEglNames{}.PixelStore().unpackAlignment, 1);
}

void SetImage(CEs2State& state, std::uint32_t name, std::uint32_t face, std::uint32_t level,
              std::uint32_t target, std::int32_t size, const CSharedBytes& data) {
    STextureImageState& image = state.WriteImage(name, face, level);
    image.name = name;
    image.target = target;
    image.bindTarget = target >= 34069 && target <= 34074 ? 34067 : target;
    image.level = static_cast<std::int32_t>(level);
    image.format = 6408;
    image.internalFormat = 32856;
    image.type = 5121;
    image.width = image.height = size;
    image.depth = 3;
    image.unpackAlignment = 4;
    image.data = data;
}

TEST_F(StateTransition, TexturesThatDifferAreUploaded) {
    const CSharedBytes kept = Content("kept", 16), fresh = Content("fresh", 16);
    const CSharedBytes tooFew = Content("tooFew", 15), small = Content("small", 4);
    CEs2State current;
    SetImage(current, 7, 0, 0, 3553, 2, kept);
    SetImage(current, 8, 0, 0, 3553, 2, kept);
    m_names.Textures().Set(7, 70);
    m_names.Textures().Set(8, 80);
    CEs2State target;
    SetImage(target, 7, 0, 0, 3553, 2, kept);
    SetImage(target, 7, 0, 1, 3553, 2, tooFew);
    SetImage(target, 9, 1, 0, 34070, 2, fresh);
    SetImage(target, 9, 1, 1, 34070, 1, small);
    target.binding2D.Write()[0] = 7;
    target.bindingCube.Write()[0] = 9;
    target.activeTexture = 33985;
    TransitionTextures(target, current);
    EXPECT_THAT(
        Take(),
        ElementsAre("glBindTexture(3553,70)", "glPixelStorei(3333,4)",
                    "glTexImage2D(3553,1,6408,2,2,0,6408,5121,null)", "glBindTexture(3553,70)",
                    "glTexParameteri(3553,10241,9986)", "glTexParameteri(3553,10240,9729)",
                    "glTexParameteri(3553,10242,10497)", "glTexParameteri(3553,10243,10497)",
                    "glGenTextures(1,out)", "glBindTexture(34067,100)", "glPixelStorei(3333,4)",
                    "glTexImage2D(34070,0,6408,2,2,0,6408,5121,fresh)", "glBindTexture(34067,100)",
                    "glPixelStorei(3333,4)", "glTexImage2D(34070,1,6408,1,1,0,6408,5121,small)",
                    // There is no image of face 0 to take parameters from.
                    "glBindTexture(34067,100)", "glDeleteTextures(1,{80})",
                    "glActiveTexture(33984)", "glBindTexture(3553,70)", "glBindTexture(34067,100)",
                    "glActiveTexture(33985)"));
    EXPECT_EQ(m_names.Textures().Get(8), 0u);
    EXPECT_EQ(m_names.Textures().Get(9), 100u);
}

TEST_F(StateTransition, ImagesOfOtherKinds) {
    const CSharedBytes block = Content("block", 8), voxels = Content("voxels", 48);
    CEs2State target;
    target.apiVersion = 3;
    target.textureUnitsUsed = 0;
    SetImage(target, 1, 0, 0, 3553, 0, {});
    SetImage(target, 2, 0, 1, 3553, 4, block);
    STextureImageState& compressed = target.WriteImage(2, 0, 1);
    compressed.compressed = 1;
    compressed.imageSize = 8;
    compressed.internalFormat = 36196;
    compressed.unpackAlignment = 0;
    SetImage(target, 2, 0, 2, 3553, 4, block);
    target.WriteImage(2, 0, 2).compressed = 1;
    target.WriteImage(2, 0, 2).imageSize = 9;
    SetImage(target, 3, 0, 1, 35866, 2, voxels);
    TransitionTextures(target, CEs2State());
    Calls calls = Take();
    ASSERT_EQ(calls.size(), 2u + 1 + 15 + 3 + 2 + 4 + 1);
    // A level without a size is bound and gets its parameters, all fifteen of them.
    EXPECT_EQ(calls[1], "glBindTexture(3553,100)");
    EXPECT_EQ(calls[2], "glBindTexture(3553,100)");
    EXPECT_EQ(calls[3], "glTexParameteri(3553,10241,9986)");
    EXPECT_EQ(calls[17], "glTexParameteri(3553,32882,10497)");
    EXPECT_THAT(
        Calls(calls.begin() + 18, calls.end()),
        ElementsAre("glGenTextures(1,out)", "glBindTexture(3553,101)",
                    "glCompressedTexImage2D(3553,1,36196,4,4,0,8,block)", "glBindTexture(3553,101)",
                    "glPixelStorei(3333,4)", "glGenTextures(1,out)", "glBindTexture(35866,102)",
                    "glPixelStorei(3333,4)", "glTexImage3D(35866,1,32856,2,2,3,0,6408,5121,voxels)",
                    "glActiveTexture(33984)"));
}

TEST_F(StateTransition, HostAlignmentDecidesHowManyBytesItReads) {
    // Rows of 3 bytes take 4 each but the last: 7 bytes at an alignment of 4, 6 at one of 1.
    CEs2State target;
    SetImage(target, 5, 0, 0, 3553, 0, Content("rows", 6));
    STextureImageState& image = target.WriteImage(5, 0, 0);
    image.format = 6409;
    image.width = 3;
    image.height = 2;
    TransitionTextures(target, CEs2State());
    EXPECT_THAT(Take(), ::testing::Contains(
                            ::testing::HasSubstr("glTexImage2D(3553,0,6409,3,2,0,6409,5121,@")))
        << "a copy with a zero behind it";
    image.height = 3;
    TransitionTextures(target, CEs2State());
    EXPECT_THAT(Take(), ::testing::Contains("glTexImage2D(3553,0,6409,3,3,0,6409,5121,null)"));
    image.height = 2;
    CEglNames{}.PixelStore().unpackAlignment = 1;
    TransitionTextures(target, CEs2State());
    EXPECT_THAT(Take(), ::testing::Contains("glTexImage2D(3553,0,6409,3,2,0,6409,5121,rows)"));
}

SShaderState& SetShader(CEs2State& state, std::uint32_t name, std::uint32_t type,
                        const char* source, std::uintptr_t sourceId) {
    SShaderState& shader = state.shaders.Write().GetOrCreate(name);
    shader.name = name;
    shader.type = type;
    shader.source = TShared<CKSTLString>(CKSTLString(source));
    shader.sourceId = sourceId;
    shader.compiled = 1;
    return shader;
}

TEST_F(StateTransition, ShadersAreComparedByTheirSource) {
    CEs2State current, target;
    for (const std::uint32_t name : {1u, 2u, 3u, 4u, 5u}) {
        SetShader(current, name, 35633, "old", name);
        m_names.SetShader(name, name * 10, 35633);
    }
    current.shaders.Write().Find(4)->deletePending = 1;
    SetShader(target, 4, 35633, "old", 4);                      // deleted, and not yet
    SetShader(target, 1, 35633, "old", 1);                      // unchanged
    SetShader(target, 2, 35633, "lost", 2);                     // unchanged, lost by the host
    SetShader(target, 3, 35633, "new", 33);                     // changed
    SetShader(target, 6, 35632, "added", 6).deletePending = 1;  // new
    SetShader(target, 7, 35632, "", 0);                         // new, without a source
    m_host.answers[{"glGetShaderiv", 35713}] = 0;
    TransitionShaders(target, current);
    EXPECT_THAT(Take(), ElementsAre("glCreateShader(35633)", "glShaderSource(100,1,old,null)",
                                    "glCompileShader(100)", "glGetShaderiv(10,35713,out)",
                                    "glShaderSource(10,1,old,null)", "glCompileShader(10)",
                                    "glGetShaderiv(20,35713,out)", "glShaderSource(20,1,lost,null)",
                                    "glCompileShader(20)", "glShaderSource(30,1,new,null)",
                                    "glCompileShader(30)", "glCreateShader(35632)",
                                    "glShaderSource(101,1,added,null)", "glCompileShader(101)",
                                    "glCreateShader(35632)", "glDeleteShader(50)"));
    EXPECT_EQ(m_names.GetShaderRecord(5), nullptr);
    EXPECT_TRUE(m_names.GetShaderRecord(6)->deletePending);
    EXPECT_FALSE(m_names.GetShaderRecord(4)->deletePending);

    m_host.answers[{"glGetShaderiv", 35713}] = 1;
    CEs2State again = target;
    TransitionShaders(again, target);
    EXPECT_THAT(Take(), ElementsAre("glGetShaderiv(100,35713,out)", "glGetShaderiv(10,35713,out)",
                                    "glGetShaderiv(20,35713,out)", "glGetShaderiv(30,35713,out)",
                                    "glGetShaderiv(102,35713,out)"));
}

/// `values` have to outlive the record.
template <typename T>
void SetUniform(CEs2State& state, std::int32_t location, const char* name, std::uint32_t kind,
                std::int32_t components, const std::vector<T>& values) {
    const auto key = static_cast<std::uint32_t>(location);
    SProgramUniforms& uniforms = state.uniforms.Write().GetOrCreate(20).Write();
    SUniformLocation& named = uniforms.locations.Write().GetOrCreate(key);
    named.location = location;
    named.name = TShared<CKSTLString>(CKSTLString(name));
    SUniformState& uniform = uniforms.values.GetOrCreate(key);
    uniform.kind = kind;
    uniform.components = components;
    if (!values.empty()) {
        uniform.values.Set(values.data(), static_cast<std::uint32_t>(values.size()));
    }
}

/// Program 20 of shaders 1 (vertex) and 2 (fragment), which are live as 10 and 11.
CEs2State StateWithProgram() {
    CEs2State state;
    SetShader(state, 1, 35633, "v", 1).attachCount = 1;
    SetShader(state, 2, 35632, "f", 2).attachCount = 1;
    CEs2Names{}.SetShader(1, 10, 35633);
    CEs2Names{}.SetShader(2, 11, 35632);
    SProgramState& program = state.programs.Write().GetOrCreate(20);
    program = {20, 1, 2, 1, 0};
    state.currentProgram = program;
    return state;
}

TEST_F(StateTransition, NewProgramIsLinkedAndGetsItsUniforms) {
    using Uniform = SUniformState;
    CEs2State target = StateWithProgram();
    const std::vector<std::int32_t> whole = {1, 2, 3};
    const std::vector<std::int32_t> manyWhole = {5, 6, 7, 8, 9, 10, 11, 12};
    const std::vector<float> real = {0.5F};
    const std::vector<float> manyReal = {1, 2, 3, 4};
    const std::vector<float> twos(8, 2.0F);
    const std::vector<float> threes(9, 3.0F);
    const std::vector<float> fours(16, 4.0F);
    const std::vector<float> none;
    SetUniform(target, 0, "i3", Uniform::kInteger, 3, whole);
    SetUniform(target, 1, "i4", Uniform::kInteger, 4, manyWhole);
    SetUniform(target, 2, "f1", Uniform::kFloat, 1, real);
    SetUniform(target, 3, "f2", Uniform::kFloat, 2, manyReal);
    SetUniform(target, 4, "m2", Uniform::kMatrix, 4, twos);
    SetUniform(target, 5, "m3", Uniform::kMatrix, 9, threes);
    SetUniform(target, 6, "m4", Uniform::kMatrix, 16, fours);
    SetUniform(target, 7, "short", Uniform::kFloat, 4, real);
    SetUniform(target, 8, "gone", Uniform::kFloat, 1, real);
    SetUniform(target, 9, "never", Uniform::kNeverSet, 0, none);
    m_host.uniformLocations = {{"i3", 50}, {"i4", 51}, {"f1", 52},    {"f2", 53},   {"m2", 54},
                               {"m3", 55}, {"m4", 56}, {"short", 57}, {"never", 58}};
    SAttributeState& bound = target.attributeValues.Write().GetOrCreate(20).Write().GetOrCreate(3);
    bound.bound = 1;
    bound.name = TShared<CKSTLString>(CKSTLString("pos"));
    bound.components = 3;
    constexpr float kBound[] = {7, 8, 9};
    bound.values.Set(kBound, 3);
    SAttributeState& later =
        target.attributeBindings.Write().GetOrCreate(20).Write().GetOrCreate(4);
    later.bound = 1;
    later.name = TShared<CKSTLString>(CKSTLString("uv"));

    const Calls uniforms = {"glGetUniformLocation(100,i3)",
                            "glUniform3i(50,1,2,3)",
                            "glGetUniformLocation(100,i4)",
                            "glUniform4iv(51,2,{5})",
                            "glGetUniformLocation(100,f1)",
                            "glUniform1f(52,0.5)",
                            "glGetUniformLocation(100,f2)",
                            "glUniform2fv(53,2,{1})",
                            "glGetUniformLocation(100,m2)",
                            "glUniformMatrix2fv(54,2,0,{2})",
                            "glGetUniformLocation(100,m3)",
                            "glUniformMatrix3fv(55,1,0,{3})",
                            "glGetUniformLocation(100,m4)",
                            "glUniformMatrix4fv(56,1,0,{4})",
                            "glGetUniformLocation(100,short)",
                            "glGetUniformLocation(100,gone)",
                            "glIsProgram(100)",
                            "glGetUniformLocation(100,never)",
                            "glVertexAttrib3f(3,7,8,9)"};
    Calls expected = {"glUseProgram(0)",           "glCreateProgram()",
                      "glGetAttachedShaders(100)", "glAttachShader(100,11)",
                      "glAttachShader(100,10)",    "glBindAttribLocation(100,3,pos)",
                      "glLinkProgram(100)",        "glBindAttribLocation(100,4,uv)",
                      "glValidateProgram(100)",    "glUseProgram(100)"};
    expected.insert(expected.end(), uniforms.begin(), uniforms.end());
    // The program in use comes once more. The scripted host reports no attached shaders, so they
    // are attached again.
    for (const char* call :
         {"glGetAttachedShaders(100)", "glAttachShader(100,11)", "glAttachShader(100,10)",
          "glBindAttribLocation(100,4,uv)", "glValidateProgram(100)", "glUseProgram(100)"}) {
        expected.push_back(call);
    }
    expected.insert(expected.end(), uniforms.begin(), uniforms.end());
    EXPECT_EQ(Printed([&] { TransitionPrograms(target, CEs2State()); }), "KESTRAIL(M) \n\n");
    EXPECT_THAT(Take(), ElementsAreArray(expected));
    EXPECT_EQ(m_names.CurrentProgram(), 100u);
    EXPECT_EQ(m_names.GetUniformLocation(6), 56);
    EXPECT_EQ(m_names.GetUniformLocation(8), -1);
    EXPECT_EQ(m_names.GetProgramRecord(20)->vertexShader, 1u);
    EXPECT_EQ(m_names.GetProgramRecord(20)->fragmentShader, 2u);
}

TEST_F(StateTransition, UnchangedProgramIsLinkedAgain) {
    CEs2State target = StateWithProgram();
    m_names.SetProgram(20, 30);
    m_host.attachedShaders = {11, 10};
    m_host.answers[{"glGetShaderiv", 35663}] = 35632;
    Printed([&] { TransitionPrograms(target, target); });
    EXPECT_THAT(Take(), ElementsAre("glUseProgram(0)", "glGetAttachedShaders(30)",
                                    "glGetShaderiv(11,35663,out)", "glLinkProgram(30)",
                                    "glValidateProgram(30)", "glUseProgram(30)",
                                    "glGetAttachedShaders(30)", "glGetShaderiv(11,35663,out)",
                                    "glValidateProgram(30)", "glUseProgram(30)"));
}

TEST_F(StateTransition, ShadersThatTheRecordShowsDetachedAreReplaced) {
    CEs2State target = StateWithProgram();
    m_names.SetProgram(20, 30);
    m_names.AttachShader(20, 1);
    m_names.AttachShader(20, 2);
    target.shaders.Write().Find(2)->attachCount = 0;
    target.currentProgram = {};
    m_host.attachedShaders = {10, 11};
    m_host.answers[{"glGetShaderiv", 35663}] = 35633;
    Printed([&] { TransitionPrograms(target, target); });
    EXPECT_THAT(
        Take(),
        ElementsAre("glUseProgram(0)", "glGetAttachedShaders(30)", "glGetShaderiv(10,35663,out)",
                    "glDetachShader(30,11)", "glAttachShader(30,11)", "glLinkProgram(30)",
                    "glValidateProgram(30)", "glUseProgram(30)", "glUseProgram(0)"));
    EXPECT_EQ(m_names.GetShaderRecord(2)->references, 1u);
}

TEST_F(StateTransition, ChangedAndVanishedProgramsAreDeleted) {
    CEs2State target = StateWithProgram(), current = target;
    current.programs.Write().Find(20)->fragmentShader = 5;
    current.programs.Write().GetOrCreate(21).name = 21;
    current.programs.Write().GetOrCreate(22).name = 22;
    target.programs.Write().Find(20)->linked = 0;
    target.currentProgram = {};
    m_names.SetProgram(20, 30);
    m_names.SetProgram(21, 31);
    Printed([&] { TransitionPrograms(target, current); });
    EXPECT_THAT(Take(),
                ElementsAre("glUseProgram(0)", "glIsProgram(30)", "glDeleteProgram(30)",
                            "glIsProgram(31)", "glDeleteProgram(31)", "glUseProgram(0)",
                            "glCreateProgram()", "glGetAttachedShaders(100)",
                            "glAttachShader(100,11)", "glAttachShader(100,10)", "glUseProgram(0)"));
    EXPECT_EQ(m_names.GetProgramRecord(21), nullptr);
    EXPECT_EQ(m_names.GetProgramRecord(20)->liveName, 100u);
}

TEST_F(StateTransition, ProgramWithoutARecordEndsTheStepOnly) {
    CEs2State target = StateWithProgram();
    target.currentProgram = {};
    SetShader(target, 1, 35633, "v", 1);
    TransitionPrograms(target, target);
    EXPECT_THAT(Take(), ElementsAre("glUseProgram(0)"));
    CEs2State current = target;
    Printed([&] { TransitionEs2State(target, current); });
    EXPECT_EQ(Take().back(), kDefaultScalars.back());
}

TEST_F(StateTransition, BuffersAreComparedByNameAndContent) {
    const CSharedBytes one = Content("one", 8), two = Content("two", 8);
    CEs2State current, target;
    SetBuffer(current.buffers, 1, one, 8);
    SetBuffer(current.buffers, 2, one, 8);
    SetBuffer(current.buffers, 9, one, 8);
    m_names.Buffers().Set(2, 20);
    SetBuffer(target.buffers, 2, two, 8);  // another content
    SetBuffer(target.buffers, 1, one, 8);  // unchanged, at another place
    SetBuffer(target.buffers, 3, two, 9);  // more than was captured
    SetBuffer(target.buffers, 4, {}, 16);  // without a content
    target.buffers.Write().Find(4)->mapped = 1;
    TransitionBuffers(target, current);
    EXPECT_THAT(Take(), ElementsAre("glBindBuffer(34962,20)", "glBufferData(34962,8,two,35044)",
                                    "glGenBuffers(1,out)", "glBindBuffer(34962,100)",
                                    "glBufferData(34962,9,null,35044)", "glGenBuffers(1,out)",
                                    "glBindBuffer(34962,101)", "glBufferData(34962,16,null,35044)",
                                    "glMapBufferOES(34962,35001)"));
    EXPECT_EQ(m_names.Buffers().Get(4), 101u);
}

TEST_F(StateTransition, RenderbuffersAndFramebuffers) {
    m_names.Textures().Set(7, 70);
    m_names.Framebuffers().Set(5, 50);
    m_names.Framebuffers().Set(6, 60);
    CEs2State current, target;
    current.framebuffers.Write().GetOrCreate(5).name = 5;
    current.framebuffers.Write().GetOrCreate(6).name = 6;
    target.renderbuffers.Write().GetOrCreate(1) = {1, 1, 8, 9, 33189, 0};
    target.renderbuffers.Write().GetOrCreate(2) = {2, 1, 8, 9, 33189, 4};
    target.renderbuffers.Write().GetOrCreate(3) = {3, 0, 8, 9, 33189, 0};
    target.renderbuffers.Write().GetOrCreate(4) = {4, 1, 0, 0, 0, 0};
    SFramebufferState& flat = target.framebuffers.Write().GetOrCreate(6);
    flat.everBound = 1;
    flat.colors.Write() = {{7, 0, 0, 5890}, {}, {7, 2, 34071, 5890}};
    flat.depth = {1, 0, 0, 36161};
    flat.stencil = {99, 0, 0, 36161};
    flat.drawBuffers.Write() = {36064, 36066};
    SFramebufferState& sampled = target.framebuffers.Write().GetOrCreate(8);
    sampled.everBound = 1;
    sampled.samples = 4;
    sampled.colors.Write() = {{7, 0, 0, 5890}};
    sampled.depthStencil = {2, 0, 0, 36161};
    sampled.depth = {1, 0, 0, 36161};
    target.boundFramebuffer = 8;
    target.boundRenderbuffer = 2;
    TransitionFramebuffers(target, current);
    EXPECT_THAT(Take(), ElementsAre("glGenRenderbuffers(1,out)", "glBindRenderbuffer(36161,100)",
                                    "glRenderbufferStorage(36161,33189,8,9)",
                                    "glGenRenderbuffers(1,out)", "glBindRenderbuffer(36161,101)",
                                    "glRenderbufferStorageMultisampleQVA(36161,4,33189,8,9)",
                                    "glGenRenderbuffers(1,out)", "glGenRenderbuffers(1,out)",
                                    "glBindRenderbuffer(36161,103)", "glBindFramebuffer(36160,60)",
                                    "glFramebufferTexture2D(36160,36064,3553,70,0)",
                                    "glFramebufferTexture2D(36160,36066,34071,70,2)",
                                    "glFramebufferRenderbuffer(36160,36096,36161,100)",
                                    "glFramebufferRenderbuffer(36160,36128,36161,4294967295)",
                                    "glDrawBuffers(2,{36064})", "glGenFramebuffers(1,out)",
                                    "glBindFramebuffer(36160,104)",
                                    "glFramebufferTexture2DMultisampleQVA(36160,36064,3553,70,0,4)",
                                    "glFramebufferRenderbuffer(36160,33306,36161,101)",
                                    "glDeleteFramebuffers(1,{50})", "glBindFramebuffer(36160,104)",
                                    "glBindRenderbuffer(36161,101)"));

    // The one that is bound goes: the surface is bound, and no renderbuffer.
    CEs2State gone;
    gone.boundFramebuffer = 8;
    TransitionFramebuffers(gone, target);
    EXPECT_THAT(Take(), ElementsAre("glDeleteFramebuffers(1,{60})", "glDeleteFramebuffers(1,{104})",
                                    "glBindFramebuffer(36160,0)"));
    EXPECT_EQ(gone.boundFramebuffer, 0u);
}

TEST_F(StateTransition, VertexArraysByExtensionOrByVersion) {
    m_names.Buffers().Set(3, 30);
    CEs2State target;
    target.vertexArrays.Write().GetOrCreate(0).Write().attributes = {{}, {1, 1, 4, 5126, 16, 8, 3}};
    target.vertexArrays.Write().GetOrCreate(6).Write().elementBuffer = 3;
    target.currentVertexArray = 6;
    const Calls withExtension = {"glBindVertexArrayOES(0)",
                                 "glBindBuffer(34962,0)",
                                 "glDisableVertexAttribArray(0)",
                                 "glBindBuffer(34962,30)",
                                 "glVertexAttribPointer(1,4,5126,1,16,@8)",
                                 "glEnableVertexAttribArray(1)",
                                 "glBindBuffer(34962,0)",
                                 "glBindBuffer(34963,0)",
                                 "glGenVertexArraysOES(1,out)",
                                 "glBindVertexArrayOES(100)",
                                 "glBindBuffer(34962,0)",
                                 "glBindBuffer(34963,30)",
                                 "glBindVertexArrayOES(100)"};
    TransitionVertexArrays(target);
    EXPECT_THAT(Take(), ElementsAreArray(withExtension));
    EXPECT_EQ(m_names.VertexArrays().Get(6), 100u);

    target.apiVersion = 3;
    TransitionVertexArrays(target);
    Calls calls = Take();
    EXPECT_EQ(calls.front(), "glBindVertexArray(0)");
    EXPECT_EQ(calls.back(), "glBindVertexArray(100)");

    m_names.VertexArrays().Erase(6);
    target.apiVersion = 2;
    GetEs2Host()->glGenVertexArraysOES = nullptr;
    GetEs2Host()->glBindVertexArrayOES = nullptr;
    TransitionVertexArrays(target);
    EXPECT_EQ(Take().size(), withExtension.size() - 4);
}

}  // namespace
}  // namespace kestrail
