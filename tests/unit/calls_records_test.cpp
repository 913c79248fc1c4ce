#include <map>
#include <memory>
#include <set>

#include "calls/model/client_arrays.h"
#include "calls/model/data_values.h"
#include "tests/support/table_rows.h"
#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

// Calls that only their identifiers are known of: what the families' rows don't list.
constexpr const char* kOtherNames = R"(1100
    eglSetSwapRectangleANDROID eglGetRenderBufferANDROID eglLockSurfaceKHR eglUnlockSurfaceKHR
    eglCreateImageKHR eglDestroyImageKHR 4030
    glTexBindStreamQVA glGetTexStreamDeviceAttributeivQVA glGetTexStreamDeviceNameQVA
    glDeleteFencesNV glFinishFenceNV glGenFencesNV glGetFenceivNV glIsFenceNV glSetFenceNV
    glTestFenceNV glEGLImageTargetRenderbufferStorageOES glEGLImageTargetTexture2DOES
    glAlphaFuncxOES glClearColorxOES glClearDepthxOES glClipPlanexOES glColor4xOES
    glDepthRangexOES glFogxOES glFogxvOES glFrustumxOES glGetClipPlanexOES glGetFixedvOES
    glGetLightxvOES glGetMaterialxvOES glGetTexEnvxvOES glGetTexParameterxvOES glLightModelxOES
    glLightModelxvOES glLightxOES glLightxvOES glLineWidthxOES glLoadMatrixxOES glMaterialxOES
    glMaterialxvOES glMultMatrixxOES glMultiTexCoord4xOES glNormal3xOES glOrthoxOES
    glPointParameterxOES glPointParameterxvOES glPointSizexOES glPolygonOffsetxOES glRotatexOES
    glSampleCoveragexOES glScalexOES glTexEnvxOES glTexEnvxvOES glTexParameterxOES
    glTexParameterxvOES glTranslatexOES 4126 glGetProgramBinaryOES glProgramBinaryOES)";

/// Which identifiers have a class, and the names that go with them.
std::map<std::uint16_t, std::string> NamesOfIdentifiers() {
    std::map<std::uint16_t, std::string> names;
    for (const SFamilyRows* rows :
         {&EglRows(), &Es1Rows(), &Es2Rows(), &Es3Rows(), &ExtRows(), &MultisampleRows()}) {
        std::uint16_t id = rows->first;
        for (const std::string& name : rows->entries) names[id++] = name;
    }
    std::istringstream words(kOtherNames);
    std::uint16_t id = 0;
    for (std::string word; words >> word;) {
        if (word[0] > '9') names[id++] = word;
        if (word[0] <= '9') id = static_cast<std::uint16_t>(std::stoi(word));
    }
    return names;
}

std::unique_ptr<CApiCall> Make(std::uint16_t id, CRecordStream& stream) {
    return CTraceDocument::CreateCall(id, stream.Trace());
}

TEST(Factories, TheIdentifierAloneSaysTheName) {
    const std::map<std::uint16_t, std::string> names = NamesOfIdentifiers();
    const std::set<std::uint16_t> sinceEight = {4080, 4089, 4090, 4126, 4127};
    // All calls of a version read the same zeros: null pointers and empty arrays.
    const Bytes zeros(400);
    ASSERT_EQ(names.size(), 34U + 6 + 142 + 145 + 80 + 4 + 104);
    for (std::uint32_t version = 7; version <= 15; ++version) {
        CRecordStream stream(zeros, version);
        for (std::uint32_t number = 0; number <= 65535; ++number) {
            const auto id = static_cast<std::uint16_t>(number);
            stream.Trace().Stream().Seek(0, SEEK_SET);
            const auto found = names.find(id);
            const bool wanted = found != names.end() && (version > 7 || !sinceEight.count(id));
            const std::unique_ptr<CApiCall> call = Make(id, stream);
            ASSERT_EQ(call != nullptr, wanted) << version << ", " << number;
            if (!wanted) continue;
            EXPECT_EQ(call->GetName(), found->second);
            EXPECT_TRUE(call->m_id == id && call->GetCallId() == id && !call->m_edited) << number;
        }
    }
}

TEST(Draws, WhatIsLeftBehindTheArraysIsNoArray) {
    for (const std::size_t leftOver : {0U, 1U, 7U}) {
        CRecordBuilder record = Record().Enum(0).Enum(4).Int(2).Sizei(3);
        record.ClientArray(3, 0x1000, Bytes{1, 2, 3}).Raw(Bytes(leftOver, 0xEE));
        CRecordStream stream(record);
        const std::unique_ptr<CApiCall> call = Make(2041, stream);
        CGenCallInfo info;
        call->FillCallInfo(info, true);
        const auto& arrays = dynamic_cast<SVectorData<SDataPtr*>&>(*(*info.GetParameters())[3]);
        ASSERT_EQ(arrays.items.size(), 1U) << leftOver;
        EXPECT_EQ(arrays.items[0]->GetData()[2], 3);
    }
}

TEST(Draws, DamagedArraysEnd) {
    // An array larger than its record, in a record that is otherwise sound.
    CRecordStream stream(Record().Enum(0).Enum(4).Int(0).Sizei(3).Int(0).Pointer(1).U32(100000));
    EXPECT_THROW(Make(2041, stream), std::logic_error);
    // Widths of the wrong sign make the count of what is left grow.
    for (const int width : {-127, -8, 4, 8, 127}) {
        WidthTable widths = StandardWidths();
        widths[tag::Pointer] = widths[tag::Int] = static_cast<std::int8_t>(width);
        CRecordStream damaged(Bytes(5000), 14, widths);
        EXPECT_NE(Make(2041, damaged), nullptr);
        EXPECT_LE(damaged.Consumed(), 5000U + 400U);
    }
}

}  // namespace
}  // namespace kestrail
