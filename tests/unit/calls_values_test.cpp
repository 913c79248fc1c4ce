#include <gmock/gmock.h>

#include <stdexcept>

#include "calls/model/array_values.h"
#include "calls/model/data_values.h"
#include "calls/model/egl_values.h"
#include "calls/text/format_kind.h"
#include "tests/unit/unit_support.h"

namespace kestrail {
namespace {

/// Rows NUMBER=TEXT=DETAIL, split by semicolons.
template <typename Value>
void ExpectTexts(const std::string& rows) {
    std::istringstream stream(rows);
    for (std::string row; std::getline(stream >> std::ws, row, ';');) {
        const std::size_t first = row.find('='), second = row.rfind('=');
        Value value;
        value.value = static_cast<typename Value::ValueType>(std::stoll(row, nullptr, 0));
        const std::string text = row.substr(first + 1, second - first - 1);
        EXPECT_EQ(ShortText(value), text) << row;
        EXPECT_EQ(FullText(value), row.substr(second + 1)) << row;
        EXPECT_EQ(LinesText(value), text) << row;
    }
}

TEST(ScalarText, EveryClass) {
    ExpectTexts<TGLuint>("4294967295=4294967295=4294967295");
    ExpectTexts<TGLint>("-2147483648=-2147483648=-2147483648");
    ExpectTexts<TGLfloat>("-2=-2.000000=-2.000000");
    ExpectTexts<TPointer>("0=NULL=NULL; 0xABCDEF=0xabcdef=0xabcdef");
    // In single precision 2147483647 rounds up.
    ExpectTexts<TGLfixed>("-1=-0.000015=-0.000015; 2147483647=32768.000000=32768.000000");
    ExpectTexts<TGLclampx>("32768=0.500000=0.500000");
    ExpectTexts<TGLenum>(
        "0=GL_NONE=0x0; 1=1=0x1; 33986=GL_TEXTURE2=0x84C2; 0xFFFFFFFF=4294967295=0xFFFFFFFF;"
        "2929=GL_DEPTH_TEST=0xB71; 0x1701=GL_PROJECTION=0x1701; 0x8B31=GL_VERTEX_SHADER=0x8B31;"
        "0x8D40=GL_FRAMEBUFFER=0x8D40; 0x8B9D=GL_TEXTURE_CROP_RECT_OES=0x8B9D");
    ExpectTexts<TGLError>(
        "0=GL_NO_ERROR=0x0; 1279=1279=0x4FF; 1280=GL_INVALID_ENUM=0x500; "
        "1281=GL_INVALID_VALUE=0x501; 1282=GL_INVALID_OPERATION=0x502; "
        "1283=GL_STACK_OVERFLOW=0x503; 1284=GL_STACK_UNDERFLOW=0x504; "
        "1285=GL_OUT_OF_MEMORY=0x505; 1286=1286=0x506; 0xFFFFFFFF=-1=0xFFFFFFFF");
    ExpectTexts<TGLBeginMode>(
        "0=GL_POINTS=0x0; 4=GL_TRIANGLES=0x4; 6=GL_TRIANGLE_FAN=0x6; 7=7=0x7; "
        "0x80000000=-2147483648=0x80000000");
    ExpectTexts<TGLBlendFactor>(
        "0=GL_ZERO=0x0; 1=GL_ONE=0x1; 2=2=0x2; 767=767=0x2FF; 768=GL_SRC_COLOR=0x300; "
        "771=GL_ONE_MINUS_SRC_ALPHA=0x303; 776=GL_SRC_ALPHA_SATURATE=0x308; 777=777=0x309");
    ExpectTexts<TGLboolean>("0=GL_FALSE=0; 1=GL_TRUE=1; 2=2=2");
    ExpectTexts<TGLbitfield>(
        "0=0=0x0; 1=0X1=0x1; 0x4501=GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT | "
        "GL_COLOR_BUFFER_BIT | 0X1=0x4501");
    ExpectTexts<TEGLintEnum>("12344=EGL_NONE=12344; 7=7=7");
    ExpectTexts<TEGLBoolean>("0=EGL_FALSE=0; 1=EGL_TRUE=1; 2=EGLBoolean(2)=2");
    ExpectTexts<TEGLenum>("0=0=0; 0x30A0=EGL_OPENGL_ES_API=0X30A0");
    ExpectTexts<TEGLContext>("0=EGL_NO_CONTEXT=0; 4294967295=EGLContext(4294967295)=4294967295");
    ExpectTexts<TEGLDisplay>("0=EGL_NO_DISPLAY=0; 3=EGLDisplay(3)=3");
    ExpectTexts<TEGLSurface>("0=EGL_NO_SURFACE=0; 3=EGLSurface(3)=3");
    ExpectTexts<TEGLNativeDisplayType>("0=EGL_DEFAULT_DISPLAY=0; 3=EGLNativeDisplayType(3)=3");
}

TEST(KindText, EveryKindAndTheEdgesOfTheEglRanges) {
    // KIND VALUE TEXT, split by semicolons.
    std::istringstream rows(R"(1 0xFFFFFFFF -1; 2 0x1FFFFFFFF 4294967295; 3 0xFFFFFFFFFFFFFFFF -1;
        4 0xFFFFFFFFFFFFFFFF 18446744073709551615; 5 0xAB 0x000000AB; 6 0xAB 0x00000000000000AB;
        0 0xFFFFFFFFFFFFFFFF 18446744073709551615; 16 12344 12344; 12 0 0;
        7 0x100000000 EGLBoolean(4294967296); 12 1 EGL_READ_SURFACE_BIT_KHR; 12 3 3;
        12 2 EGL_WRITE_SURFACE_BIT_KHR; 12 0x80 EGL_LOCK_SURFACE_BIT_KHR; 12 0x2FFF 12287;
        12 0x100 EGL_OPTIMAL_FORMAT_BIT_KHR; 12 0x3000 EGL_SUCCESS; 12 0x300E EGL_CONTEXT_LOST;
        12 0x300F 12303; 12 0x3010 12304; 12 0x3020 EGL_BUFFER_SIZE; 12 0x3033 EGL_SURFACE_TYPE;
        12 0x3043 EGL_MATCH_FORMAT_KHR; 12 0x3044 12356; 12 0x3050 EGL_SLOW_CONFIG;
        12 0x305F EGL_TEXTURE_2D; 12 0x3060 12384; 12 0x3080 EGL_TEXTURE_FORMAT;
        12 0x3098 EGL_CONTEXT_CLIENT_VERSION; 12 0x309B EGL_MULTISAMPLE_RESOLVE_BOX;
        12 0x30A2 EGL_OPENGL_API; 12 0x30A3 12451; 12 0x30C0 EGL_FORMAT_RGB_565_EXACT_KHR;
        12 0x30CD EGL_BITMAP_PIXEL_LUMINANCE_OFFSET_KHR; 12 0x30CE 12494;
        12 0x30D2 EGL_IMAGE_PRESERVED_KHR; 12 0x100003038 4294979640; 13 0 0;
        13 7 EGL_PBUFFER_BIT | EGL_PIXMAP_BIT | EGL_WINDOW_BIT; 13 0x8008 0X8008;
        13 0x660 EGL_VG_COLORSPACE_LINEAR_BIT | EGL_VG_ALPHA_FORMAT_PRE_BIT | )"
                            R"(EGL_MULTISAMPLE_RESOLVE_BOX_BIT | EGL_SWAP_BEHAVIOR_PRESERVED_BIT;
        14 0x4F EGL_OPENGL_ES_BIT | EGL_OPENVG_BIT | EGL_OPENGL_ES2_BIT | EGL_OPENGL_BIT | 0X40)");
    int kind = 0;
    for (std::string value, text; rows >> std::dec >> kind >> value >> std::ws;) {
        std::getline(rows, text, ';');
        EXPECT_EQ(FormatKind(kind, std::stoull(value, nullptr, 0)).view(), text) << kind << value;
    }
    // Bits that belong together count only when all are set.
    const SFlagName pairs[] = {{"BOTH", 3}, {"HIGH", 2}};
    const std::pair<std::uint32_t, const char*> texts[] = {{3, "BOTH"}, {2, "HIGH"}, {1, "0X1"}};
    for (const auto& [bits, text] : texts) EXPECT_EQ(FormatFlags(bits, pairs, 2).view(), text);
}

TEST(Reading, BlocksKeepTheirBytesBehindANullPointer) {
    const auto null = ReadFrom<SDataPtr>(Record().Data(0, Bytes(10, 7)));
    EXPECT_EQ(null.GetSize(), 10U);
    ASSERT_NE(null.GetData(), nullptr);
    EXPECT_EQ(null.GetData()[9], 7);
    EXPECT_EQ(ShortText(null) + FullText(null), "NULLNULL");
    const auto full = ReadFrom<SDataPtr>(Record().Data(0xBEEF, Bytes(300, 1)));
    EXPECT_EQ(ShortText(full) + FullText(full), "~Data(300 bytes)~0xbeef");
    EXPECT_EQ(FullText(ReadFrom<SImage2D>(Record().Data(0x10, Bytes(64, 1)))), "0x10");
    EXPECT_EQ(ShortText(ReadFrom<SImage3D>(Record().Data(0, Bytes(4)))), "NULL");
    EXPECT_EQ(ShortText(ReadFrom<SImage3D>(Record().Data(0x10))), "0x10");
}

TEST(Reading, StringsAndArraysHaveNothingBehindANullPointer) {
    EXPECT_STREQ(ReadFrom<SString>(Record().String(0, "abc")).GetCString(), "");
    const auto array = ReadFrom<SArrayPtr<TGLint, 3, 1>>(Record().ArrayHead(0, 5));
    EXPECT_EQ(array.GetCount(), 5U);
    EXPECT_EQ(array.ItemCount(), 0U);
    EXPECT_EQ(array.GetRawArray(), nullptr);
    EXPECT_EQ(FullText(array), "NULL");
    EXPECT_EQ((ReadFrom<SArrayPtr<TGLenum, 1, 1>>(Record().ArrayHead(0x77, 0)).pointer.value), 0U);
    EXPECT_EQ((ReadFrom<SArrayPtr<SString, 1, 1>>(Record().ArrayHead(0x77, 0)).pointer.value), 0U);
    EXPECT_EQ((ReadFrom<SArrayPtr<SString, 1, 1>>(Record().ArrayHead(0, 4)).ElementCount()), 0U);
    EXPECT_EQ((ShortText(ReadFrom<SPtr<TGLfloat, 4, 4>>(Record().Pointer(0)))), "NULL");
}

TEST(Reading, ASizeAboveTheRecordsIsAnError) {
    const auto tooLarge = testing::ThrowsMessage<std::logic_error>(
        "Size readed from memmory is greater than blocksize");
    for (const std::uint32_t over : {1U, 0xFFFFFF00U}) {
        CRecordStream stream(Record().Pointer(1).U32(8 + over));
        const auto expect = [&](auto&& value) {
            stream.Trace().Stream().Seek(0, SEEK_SET);
            EXPECT_THAT([&] { stream.Trace() >> value; }, tooLarge);
        };
        const auto expectAll = [&](auto&&... values) { (expect(values), ...); };
        expectAll(SDataPtr(), SImage2D(), SImage3D(), SString(), SArrayPtr<TGLuint, 1, 1>(),
                  SArrayPtr<TGLfloat, 4, 4>(), SArrayPtr<SString, 1, 1>(), SEglAttribList());
    }
    CRecordStream whole(Record().Pointer(1).U32(8));
    SDataPtr data;
    EXPECT_NO_THROW(whole.Trace() >> data);
}

TEST(Reading, NothingIsKeptOfWhatTheRecordHasNoBytesFor) {
    CRecordStream matrices(Record().ArrayHead(1, 9).Raw(Bytes(72, 7)));
    SArrayPtr<TGLint, 4, 4> array;
    matrices.Trace() >> array;
    EXPECT_EQ(array.GetCount(), 9U);
    EXPECT_EQ(array.ItemCount(), 1U);
    CRecordStream texts(Record().ArrayHead(1, 9).String(1, "ab"));
    SArrayPtr<SString, 1, 1> strings;
    texts.Trace() >> strings;
    EXPECT_EQ(strings.GetCount(), 9U);
    EXPECT_EQ(strings.ElementCount(), 1U);
}

TEST(StringText, CutAtTwentySixAndEscaped) {
    std::string lineFeeds;
    for (int i = 0; i < 24; ++i) lineFeeds += "\\n";
    const std::pair<std::string, std::string> rows[] = {
        {"abcdefghijklmnopqrstuvwxy", "abcdefghijklmnopqrstuvwxy"},
        {"abcdefghijklmnopqrstuvwxyz", "abcdefghijklmnopqrstuvwx..."},
        {"", ""},
        {"a\tb\r\nc", "a  b \\nc"},
        // Tabs are two characters before the cut, line feeds are one.
        {std::string(12, '\t') + "abcdefghijklmn", std::string(24, ' ') + "..."},
        {"0123456789012345678901\n\tabcdef", "0123456789012345678901\\n ..."},
        {std::string(24, '\n') + "ab", lineFeeds + "..."}};
    for (const auto& [text, shown] : rows) {
        EXPECT_EQ(ShortText(ReadFrom<SString>(Record().String(1, text))), '"' + shown + '"');
    }
    EXPECT_EQ(ShortText(ReadFrom<SString>(Record().String(0, "abc"))), "NULL");
    const auto lines = ReadFrom<SString>(Record().String(1, "a\r\n\tb"));
    EXPECT_EQ(LinesText(lines), "a\n\tb");
    EXPECT_EQ(FullText(lines), "\"a \n  b\"");
}

std::string Folded(const std::string& text, int width = 10, bool stop = false) {
    TextWriter out;
    AppendFolded(out, text, width, stop);
    return std::string(out.View());
}

TEST(StringText, Folding) {
    const char* const rows[][2] = {
        {"123456789", "\"123456789\""},
        {"1234567890", "\n\"1234567890\""},
        // Without a blank in reach the line breaks where it is full; the break restarts the column.
        {"12345678901234", "\n\"1234567890\\\n1234\""},
        {"12345 78901234", "\n\"12345 \\\n78901234\""},
        // The character before the break isn't looked at.
        {"123456789 1234", "\n\"123456789 \\\n1234\""},
        {"1\n2\n\r3456789", "\n\"1\n2\n3456789\""},
        {"a b\n456789012345", "\n\"a b\n4567890123\\\n45\""}};
    for (const auto& [text, folded] : rows) EXPECT_EQ(Folded(text), folded);
    // More lines than the width: cut, or begun anew in wider lines behind what is there.
    const std::string eight(8, '\n');
    EXPECT_EQ(Folded(eight, 4, true), "\n\"\n\n\n\n\n ....\"");
    // Five lines at width 4, then from the beginning at 5, 6, 7, 8, 10 and 12, until 13 are made.
    EXPECT_EQ(Folded(eight, 4), "\n\"" + std::string(13, '\n') + " ....\"");
    EXPECT_LT(Folded(std::string(3000, '\n'), 70).size(), 400U);
}

/// The short text, the full one and the lines of an array.
template <typename Array>
std::string Texts(const CRecordBuilder& record) {
    const Array array = ReadFrom<Array>(record);
    return ShortText(array) + '|' + FullText(array) + '|' + LinesText(array);
}

TEST(ArrayText, CutAtThirtySix) {
    using Uints = SArrayPtr<TGLuint, 1, 1>;
    const auto shown = [](const std::vector<std::int64_t>& values) {
        return ShortText(ReadFrom<Uints>(Record().Array(tag::Uint, 1, values)));
    };
    EXPECT_EQ(Texts<Uints>(Record().Array(tag::Uint, 1, {1, 2, 3})),
              "{ 1, 2, 3 }|{ 1, 2, 3 }|1\n2\n3");
    // 25 characters stand before the last element, which makes 35; then 26, which makes 36.
    EXPECT_EQ(shown({1000000000, 100000000, 1000000000}), "{ 1000000000, 100000000, 1000000000 }");
    EXPECT_EQ(shown({1000000000, 1000000000, 1000000000}),
              "{ 1000000000, 1000000000, 100000000... }");
    // Nothing is left of an element that begins behind the limit.
    EXPECT_EQ(shown({1000000000, 1000000000, 123456789, 5}),
              "{ 1000000000, 1000000000, 123456789, ... }");
    EXPECT_EQ((Texts<SArrayPtr<TGLenum, 1, 1>>(Record().Array(tag::Enum, 1, {0x1908, 1}))),
              "{ GL_RGBA, 1 }|{ 0x1908, 0x1 }|GL_RGBA\n1");
    EXPECT_EQ((Texts<SArrayPtr<SString, 1, 1>>(Record().Strings(1, {"void main()", "{}\n"}))),
              "{ \"void main()\", \"{}\\n\" }|{ \"void main()\", \"{}\n\" }|void main()\n{}\n");
}

TEST(ArrayText, Shapes) {
    EXPECT_EQ((Texts<SArrayPtr<TGLint, 2, 1>>(Record().Array(tag::Int, 1, {1, 2, 3, 4}, 2))),
              "{ [ 1; 2 ], [ 3; 4 ] }|{ [ \n1;\n2\n], [ \n3;\n4\n] }|[ \n1;\n2\n]\n[ \n3;\n4\n]");
    const std::string detail = "[ \n1.000000, 2.000000;\n3.000000, 4.000000\n]";
    EXPECT_EQ((Texts<SArrayPtr<TGLfloat, 2, 2>>(Record().Reals(tag::Float, 1, {1, 2, 3, 4}, 4))),
              "{ [ 1.000000, 2.000000; 3.000000, 4... }|{ " + detail + " }|" + detail);
    const auto item =
        ReadFrom<SPtr<TGLfixed, 4, 1>>(Record().Item(tag::Fixed, 1, {65536, 0, -65536, 131072}));
    EXPECT_EQ(ShortText(item), "[ 1.000000; 0.000000; -1.000000; 2.000000 ]");
    EXPECT_EQ(LinesText(item), "[ \n1.000000;\n0.000000;\n-1.000000;\n2.000000\n]");
    EXPECT_EQ(ShortText(ReadFrom<SPtr<TGLfloat, 1, 1>>(Record().RealItem(tag::Float, 1, {5}))),
              "5.000000");
}

TEST(AttributeListText, CutAtFortyToThirtySeven) {
    // List, text, and the pairs, of which details have each in a line.
    const struct {
        std::vector<std::int64_t> list;
        std::string text, pairs;
    } rows[] = {
        {{0x3025, 24, 0x3038}, "EGL_DEPTH_SIZE : 24", "EGL_DEPTH_SIZE : 24"},
        // With the second pair the text has 38 characters, then 42.
        {{0x3024, 8, 0x3023, 8, 0x3038},
         "EGL_RED_SIZE : 8, EGL_GREEN_SIZE : 8",
         "EGL_RED_SIZE : 8,\nEGL_GREEN_SIZE : 8"},
        {{0x3024, 8, 0x3023, 88888, 0x3038},
         "EGL_RED_SIZE : 8, EGL_GREEN_SIZE : ...",
         "EGL_RED_SIZE : 8,\nEGL_GREEN_SIZE : 88888"},
        {{0x3033, 5, 0x3038},
         "EGL_SURFACE_TYPE : EGL_PBUFFER_BIT ...",
         "EGL_SURFACE_TYPE : EGL_PBUFFER_BIT | EGL_WINDOW_BIT"},
        {{0x3040, 0x40, 0x3038}, "EGL_RENDERABLE_TYPE : 0X40", "EGL_RENDERABLE_TYPE : 0X40"}};
    for (const auto& [list, text, pairs] : rows) {
        std::string lines = pairs + "\n";
        std::erase(lines, ',');
        EXPECT_EQ(Texts<SEglAttribList>(Record().Attributes(list)),
                  "{ " + text + " }|{ \n" + pairs + "\n }|" + lines);
    }
    EXPECT_EQ(Texts<SEglAttribList>(Record().Attributes({})), "NULL|NULL|NULL");
    EXPECT_EQ(Texts<SEglAttribList>(Record().Attributes({0x3038})), "{  }|{  }|");
}

TEST(AttributeList, Lookup) {
    const std::int32_t raw[] = {0x3024, 5, 0x3023, 6, 0x3024, 7, 0x3038, 0x3022, 9};
    const SEglAttribList list(raw);
    EXPECT_EQ(list.GetCount(), 7U);
    std::int32_t value = -7;
    list.GetAttribute(0x3024, value);
    EXPECT_EQ(value, 5);
    // A value is no name, and nothing behind the end counts.
    for (const std::int32_t name : {6, 0x3022, 0x3038}) {
        list.GetAttribute(name, value);
        EXPECT_EQ(value, 5) << name;
    }
    EXPECT_EQ(SEglAttribList(nullptr).GetCount(), 0U);
    EXPECT_EQ(SEglAttribList(raw + 6).GetCount(), 1U);
}

TEST(EglValues, OnlyTheFirstPixmapHasALength) {
    // Another trace has a length of its own.
    for (const std::string_view bytes : {"abcdef", "abcdefgh"}) {
        const auto length = static_cast<std::uint32_t>(bytes.size() / 2);
        CRecordBuilder three = Record().U32(77).U32(length).Raw(bytes.data(), length);
        three.U32(78).Raw(bytes.data() + length, length).U32(79).Raw("i", 1);
        CRecordStream stream(three);
        SEglNativePixmapDesc first, second, third;
        // A record that is shorter than the length it inherits ends what is read of it.
        stream.Trace() >> first >> second >> third;
        EXPECT_EQ(first.data.view(), bytes.substr(0, length));
        EXPECT_EQ(second.data.view(), bytes.substr(length));
        EXPECT_EQ(third.data, "i");
        EXPECT_EQ(ShortText(second), "78");
    }
}

}  // namespace
}  // namespace kestrail
