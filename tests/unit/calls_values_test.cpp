#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "calls/model/array_values.h"
#include "calls/model/data_values.h"
#include "calls/model/egl_values.h"
#include "calls/text/enum_names.h"
#include "calls/text/format_kind.h"
#include "tests/unit/unit_support.h"

namespace kestrail {
namespace {

template <typename Value>
void ExpectTexts(std::int64_t number, const char* text, const char* detail) {
    Value value;
    value.value = static_cast<typename Value::ValueType>(number);
    EXPECT_EQ(ShortText(value), text) << number;
    EXPECT_EQ(FullText(value), detail) << number;
    EXPECT_EQ(LinesText(value), text) << number;
}

TEST(ScalarText, EveryClass) {
    ExpectTexts<TuintType<21>>(4294967295, "4294967295", "4294967295");
    ExpectTexts<TintType<17>>(-2147483648, "-2147483648", "-2147483648");
    ExpectTexts<TfloatType<22>>(-2, "-2.000000", "-2.000000");
    ExpectTexts<TPointer>(0, "NULL", "NULL");
    ExpectTexts<TPointer>(0xABCDEF, "0xabcdef", "0xabcdef");
    ExpectTexts<TGLfixed>(65536, "1.000000", "1.000000");
    ExpectTexts<TGLfixed>(-1, "-0.000015", "-0.000015");
    ExpectTexts<TGLclampx>(32768, "0.500000", "0.500000");
    // In single precision 2147483647 rounds up.
    ExpectTexts<TGLfixed>(2147483647, "32768.000000", "32768.000000");

    ExpectTexts<TGLenum>(0, "GL_NONE", "0x0");
    ExpectTexts<TGLenum>(1, "1", "0x1");
    ExpectTexts<TGLenum>(33984, "GL_TEXTURE0", "0x84C0");
    ExpectTexts<TGLenum>(33986, "GL_TEXTURE2", "0x84C2");
    ExpectTexts<TGLenum>(0xFFFFFFFF, "4294967295", "0xFFFFFFFF");
    ExpectTexts<TGLError>(0, "GL_NO_ERROR", "0x0");
    ExpectTexts<TGLError>(1279, "1279", "0x4FF");
    ExpectTexts<TGLError>(1280, "GL_INVALID_ENUM", "0x500");
    ExpectTexts<TGLError>(1281, "GL_INVALID_VALUE", "0x501");
    ExpectTexts<TGLError>(1282, "GL_INVALID_OPERATION", "0x502");
    ExpectTexts<TGLError>(1283, "GL_STACK_OVERFLOW", "0x503");
    ExpectTexts<TGLError>(1284, "GL_STACK_UNDERFLOW", "0x504");
    ExpectTexts<TGLError>(1285, "GL_OUT_OF_MEMORY", "0x505");
    ExpectTexts<TGLError>(1286, "1286", "0x506");
    ExpectTexts<TGLError>(0xFFFFFFFF, "-1", "0xFFFFFFFF");
    ExpectTexts<TGLBeginMode>(0, "GL_POINTS", "0x0");
    ExpectTexts<TGLBeginMode>(4, "GL_TRIANGLES", "0x4");
    ExpectTexts<TGLBeginMode>(6, "GL_TRIANGLE_FAN", "0x6");
    ExpectTexts<TGLBeginMode>(7, "7", "0x7");
    ExpectTexts<TGLBeginMode>(0x80000000, "-2147483648", "0x80000000");
    ExpectTexts<TGLBlendFactor>(0, "GL_ZERO", "0x0");
    ExpectTexts<TGLBlendFactor>(1, "GL_ONE", "0x1");
    ExpectTexts<TGLBlendFactor>(2, "2", "0x2");
    ExpectTexts<TGLBlendFactor>(767, "767", "0x2FF");
    ExpectTexts<TGLBlendFactor>(768, "GL_SRC_COLOR", "0x300");
    ExpectTexts<TGLBlendFactor>(771, "GL_ONE_MINUS_SRC_ALPHA", "0x303");
    ExpectTexts<TGLBlendFactor>(776, "GL_SRC_ALPHA_SATURATE", "0x308");
    ExpectTexts<TGLBlendFactor>(777, "777", "0x309");
    ExpectTexts<TGLboolean>(0, "GL_FALSE", "0");
    ExpectTexts<TGLboolean>(1, "GL_TRUE", "1");
    ExpectTexts<TGLboolean>(2, "2", "2");
    ExpectTexts<TGLbitfield>(0, "0", "0x0");
    ExpectTexts<TGLbitfield>(1, "0X1", "0x1");
    ExpectTexts<TGLbitfield>(0x4100, "GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT", "0x4100");
    ExpectTexts<TGLbitfield>(
        0x4501, "GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT | GL_COLOR_BUFFER_BIT | 0X1",
        "0x4501");

    ExpectTexts<TEGLintEnum>(12344, "EGL_NONE", "12344");
    ExpectTexts<TEGLintEnum>(7, "7", "7");
    ExpectTexts<TEGLBoolean>(0, "EGL_FALSE", "0");
    ExpectTexts<TEGLBoolean>(1, "EGL_TRUE", "1");
    ExpectTexts<TEGLBoolean>(2, "EGLBoolean(2)", "2");
    ExpectTexts<TEGLenum>(0, "0", "0");
    ExpectTexts<TEGLenum>(0x30A0, "EGL_OPENGL_ES_API", "0X30A0");
    ExpectTexts<TEGLContext>(0, "EGL_NO_CONTEXT", "0");
    ExpectTexts<TEGLContext>(4294967295, "EGLContext(4294967295)", "4294967295");
    ExpectTexts<TEGLDisplay>(0, "EGL_NO_DISPLAY", "0");
    ExpectTexts<TEGLDisplay>(3, "EGLDisplay(3)", "3");
    ExpectTexts<TEGLSurface>(0, "EGL_NO_SURFACE", "0");
    ExpectTexts<TEGLSurface>(3, "EGLSurface(3)", "3");
    ExpectTexts<TEGLNativeDisplayType>(0, "EGL_DEFAULT_DISPLAY", "0");
    ExpectTexts<TEGLNativeDisplayType>(3, "EGLNativeDisplayType(3)", "3");
}

TEST(KindText, EveryKindAndTheEdgesOfTheEglRanges) {
    const struct {
        int kind;
        std::uint64_t value;
        const char* text;
    } cases[] = {
        {1, 0xFFFFFFFF, "-1"},
        {2, 0x1FFFFFFFF, "4294967295"},
        {3, ~0ULL, "-1"},
        {4, ~0ULL, "18446744073709551615"},
        {5, 0xAB, "0x000000AB"},
        {6, 0xAB, "0x00000000000000AB"},
        {0, ~0ULL, "18446744073709551615"},
        {16, 12344, "12344"},
        {7, 0x100000000, "EGLBoolean(4294967296)"},
        {12, 0, "0"},
        {12, 1, "EGL_READ_SURFACE_BIT_KHR"},
        {12, 2, "EGL_WRITE_SURFACE_BIT_KHR"},
        {12, 3, "3"},
        {12, 0x80, "EGL_LOCK_SURFACE_BIT_KHR"},
        {12, 0x100, "EGL_OPTIMAL_FORMAT_BIT_KHR"},
        {12, 0x2FFF, "12287"},
        {12, 0x3000, "EGL_SUCCESS"},
        {12, 0x300E, "EGL_CONTEXT_LOST"},
        {12, 0x300F, "12303"},
        {12, 0x3010, "12304"},
        {12, 0x3020, "EGL_BUFFER_SIZE"},
        {12, 0x3033, "EGL_SURFACE_TYPE"},
        {12, 0x3043, "EGL_MATCH_FORMAT_KHR"},
        {12, 0x3044, "12356"},
        {12, 0x3050, "EGL_SLOW_CONFIG"},
        {12, 0x305F, "EGL_TEXTURE_2D"},
        {12, 0x3060, "12384"},
        {12, 0x3080, "EGL_TEXTURE_FORMAT"},
        {12, 0x3098, "EGL_CONTEXT_CLIENT_VERSION"},
        {12, 0x309B, "EGL_MULTISAMPLE_RESOLVE_BOX"},
        {12, 0x30A2, "EGL_OPENGL_API"},
        {12, 0x30A3, "12451"},
        {12, 0x30C0, "EGL_FORMAT_RGB_565_EXACT_KHR"},
        {12, 0x30CD, "EGL_BITMAP_PIXEL_LUMINANCE_OFFSET_KHR"},
        {12, 0x30CE, "12494"},
        {12, 0x30D2, "EGL_IMAGE_PRESERVED_KHR"},
        {12, 0x100003038, "4294979640"},
        {13, 0, "0"},
        {13, 7, "EGL_PBUFFER_BIT | EGL_PIXMAP_BIT | EGL_WINDOW_BIT"},
        {13, 0x660,
         "EGL_VG_COLORSPACE_LINEAR_BIT | EGL_VG_ALPHA_FORMAT_PRE_BIT | "
         "EGL_MULTISAMPLE_RESOLVE_BOX_BIT | EGL_SWAP_BEHAVIOR_PRESERVED_BIT"},
        {13, 0x8008, "0X8008"},
        {14, 0x4F,
         "EGL_OPENGL_ES_BIT | EGL_OPENVG_BIT | EGL_OPENGL_ES2_BIT | EGL_OPENGL_BIT | 0X40"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FormatKind(c.kind, c.value).view(), c.text) << c.kind << ' ' << c.value;
    }
    // Bits that belong together count only when all are set.
    const SFlagName pairs[] = {{"BOTH", 3}, {"HIGH", 2}};
    EXPECT_EQ(FormatFlags(3, pairs, 2).view(), "BOTH");
    EXPECT_EQ(FormatFlags(2, pairs, 2).view(), "HIGH");
    EXPECT_EQ(FormatFlags(1, pairs, 2).view(), "0X1");
}

TEST(EnumNames, NamesOfEveryKindOfHeader) {
    const std::pair<std::uint32_t, const char*> known[] = {{0x0B71, "GL_DEPTH_TEST"},
                                                           {0x0DE1, "GL_TEXTURE_2D"},
                                                           {0x1406, "GL_FLOAT"},
                                                           {0x1701, "GL_PROJECTION"},
                                                           {0x1908, "GL_RGBA"},
                                                           {0x8892, "GL_ARRAY_BUFFER"},
                                                           {0x8B31, "GL_VERTEX_SHADER"},
                                                           {0x8D40, "GL_FRAMEBUFFER"},
                                                           {0x8B9D, "GL_TEXTURE_CROP_RECT_OES"}};
    for (const auto& [value, name] : known) EXPECT_EQ(GlEnumName(value), name);
    EXPECT_EQ(GlEnumName(1), "");
    EXPECT_EQ(GlEnumName(0x80000000), "");
}

TEST(ScalarRead, WidthsComeFromTheTable) {
    const Bytes bytes{0xFF, 0xFE, 0xFD, 0xFC, 1, 2, 3, 4, 5, 6, 7, 8};
    WidthTable widths = StandardWidths();
    widths[tag::Int] = -2;
    widths[tag::Ubyte] = 1;
    widths[tag::Pointer] = 8;
    widths[tag::Uint] = 0;
    {
        CRecordStream stream(bytes, 14, widths);
        TintType<17> number;
        TuintType<19> byte;
        stream.Trace() >> number >> byte;
        EXPECT_EQ(number.value, 0xFEFF);
        EXPECT_EQ(byte.value, 0xFDU);
        EXPECT_EQ(stream.Consumed(), 3U);
    }
    CRecordStream stream(bytes, 14, widths);
    TPointer pointer;
    TuintType<21> name;
    stream.Trace() >> pointer >> name;
    EXPECT_EQ(pointer.value, 0xFCFDFEFFU);
    EXPECT_EQ(name.value, 0x08070605U);
}

TEST(ScalarRead, FloatsAreFourBytesOrAnError) {
    for (const int width : {0, 1, 8, -4, -8}) {
        WidthTable widths = StandardWidths();
        widths[tag::Float] = static_cast<std::int8_t>(width);
        CRecordStream stream(Bytes(40), 14, widths);
        const auto expectError = [&stream](auto value) {
            try {
                stream.Trace() >> value;
                ADD_FAILURE();
            } catch (const std::logic_error& error) {
                EXPECT_STREQ(error.what(), "GetEsTypeSize(INDEX) != sizeof(float)");
            }
        };
        expectError(TfloatType<22>());
        CRecordStream array(Record().ArrayHead(1, 2).U32(0).U32(0).Content(), 14, widths);
        SArrayPtr<TfloatType<22>, 1, 1> floats;
        EXPECT_THROW(array.Trace() >> floats, std::logic_error) << width;
    }
    EXPECT_EQ(ReadFrom<TfloatType<23>>(Record().Clampf(0.25F)).value, 0.25F);
}

TEST(DataRead, NullPointersAndSizes) {
    const auto null = ReadFrom<SDataPtr>(Record().Data(0, Bytes(10, 7)));
    EXPECT_EQ(null.GetSize(), 10U);
    ASSERT_NE(null.GetData(), nullptr);
    EXPECT_EQ(null.GetData()[9], 7);
    EXPECT_EQ(ShortText(null), "NULL");
    EXPECT_EQ(FullText(null), "NULL");
    const auto empty = ReadFrom<SDataPtr>(Record().Data(0xBEEF));
    EXPECT_EQ(empty.GetData(), nullptr);
    EXPECT_EQ(ShortText(empty), "0xbeef");
    const auto full = ReadFrom<SDataPtr>(Record().Data(0xBEEF, Bytes(300, 1)));
    EXPECT_EQ(ShortText(full), "~Data(300 bytes)~");
    EXPECT_EQ(FullText(full), "0xbeef");
    const auto image = ReadFrom<SImage2D>(Record().Data(0x10, Bytes(64, 1)));
    EXPECT_EQ(ShortText(image), "~Image(64 bytes)~");
    EXPECT_EQ(FullText(image), "0x10");
    EXPECT_EQ(ShortText(ReadFrom<SImage3D>(Record().Data(0, Bytes(4)))), "NULL");
    EXPECT_EQ(ShortText(ReadFrom<SImage3D>(Record().Data(0x10))), "0x10");

    // The characters of a string are not there behind a null pointer, unlike those of a block.
    const auto nullText = ReadFrom<SString>(Record().String(0, "abc"));
    EXPECT_EQ(nullText.length, 3U);
    EXPECT_STREQ(nullText.GetCString(), "");
    EXPECT_STREQ(ReadFrom<SString>(Record().String(1, "abc")).GetCString(), "abc");

    const auto nullArray = ReadFrom<SArrayPtr<TintType<17>, 3, 1>>(Record().ArrayHead(0, 5));
    EXPECT_EQ(nullArray.GetCount(), 5U);
    EXPECT_EQ(nullArray.ItemCount(), 0U);
    EXPECT_EQ(nullArray.GetRawArray(), nullptr);
    EXPECT_EQ(ShortText(nullArray), "NULL");
    EXPECT_EQ(FullText(nullArray), "NULL");
    const auto noItems = ReadFrom<SArrayPtr<TGLenum, 1, 1>>(Record().ArrayHead(0x77, 0));
    EXPECT_EQ(noItems.pointer.value, 0U);
    EXPECT_EQ(ShortText(noItems), "NULL");
    const auto noTexts = ReadFrom<SArrayPtr<SString, 1, 1>>(Record().ArrayHead(0x77, 0));
    EXPECT_EQ(noTexts.pointer.value, 0U);
    EXPECT_EQ((ReadFrom<SArrayPtr<SString, 1, 1>>(Record().ArrayHead(0, 4)).ElementCount()), 0U);
    const auto noMatrix = ReadFrom<SPtr<TfloatType<22>, 4, 4>>(Record().Pointer(0));
    EXPECT_EQ(noMatrix.GetRawArray(), nullptr);
    EXPECT_EQ(ShortText(noMatrix), "NULL");
}

template <typename Value>
void ExpectSizeChecked() {
    for (const std::uint32_t over : {0U, 1U, 0xFFFFFF00U}) {
        CRecordStream stream(Record().Pointer(1).U32(8 + over).Content());
        Value value;
        if (over == 0) {
            EXPECT_NO_THROW(stream.Trace() >> value);
            continue;
        }
        try {
            stream.Trace() >> value;
            ADD_FAILURE() << over;
        } catch (const std::logic_error& error) {
            EXPECT_STREQ(error.what(), "Size readed from memmory is greater than blocksize");
        }
    }
}

TEST(DataRead, ASizeAboveTheRecordsIsAnError) {
    ExpectSizeChecked<SDataPtr>();
    ExpectSizeChecked<SImage2D>();
    ExpectSizeChecked<SImage3D>();
    ExpectSizeChecked<SString>();
    ExpectSizeChecked<SArrayPtr<TuintType<21>, 1, 1>>();
    ExpectSizeChecked<SArrayPtr<TfloatType<22>, 4, 4>>();
    ExpectSizeChecked<SArrayPtr<SString, 1, 1>>();
    ExpectSizeChecked<SEglAttribList>();
}

TEST(DataRead, NothingIsKeptOfWhatTheRecordHasNoBytesFor) {
    const std::vector<std::int64_t> item(16, 7);
    CRecordStream matrices(
        Record().ArrayHead(1, 9).Raw(Record().Array(tag::Int, 1, item).Content()));
    SArrayPtr<TintType<17>, 4, 4> array;
    matrices.Trace() >> array;
    EXPECT_EQ(array.GetCount(), 9U);
    EXPECT_EQ(array.ItemCount(), 1U);
    CRecordStream texts(Record().ArrayHead(1, 9).String(1, "ab"));
    SArrayPtr<SString, 1, 1> strings;
    texts.Trace() >> strings;
    EXPECT_EQ(strings.GetCount(), 9U);
    EXPECT_EQ(strings.ElementCount(), 1U);
}

TEST(DataRead, ElementsOfAnyWidth) {
    WidthTable widths = StandardWidths();
    widths[tag::Uint] = 1;
    widths[tag::Int] = -8;
    const CRecordBuilder record = CRecordBuilder(widths, 14)
                                      .Array(tag::Uint, 1, {1, 255, 7})
                                      .Array(tag::Int, 1, {-1, 5, 6, 7}, 2);
    CRecordStream stream(record.Content(), 14, widths);
    SArrayPtr<TuintType<21>, 1, 1> names;
    SArrayPtr<TintType<17>, 2, 1> pairs;
    stream.Trace() >> names >> pairs;
    EXPECT_EQ(stream.Consumed(), record.Content().size());
    ASSERT_EQ(names.ItemCount(), 3U);
    EXPECT_EQ(names.GetItem(1), 255U);
    ASSERT_EQ(pairs.ItemCount(), 2U);
    EXPECT_EQ(pairs.GetRawArray()[0], -1);
    EXPECT_EQ(pairs.GetRawArray()[3], 7);
    const auto wide = ReadFrom<SArrayPtr<TuintType<30>, 1, 1>>(Record().Array(tag::Int64, 1, {-2}));
    EXPECT_EQ(wide.GetItem(0), 0xFFFFFFFEU);
}

std::string TextOf(const std::string& text) {
    return ShortText(ReadFrom<SString>(Record().String(1, text)));
}

TEST(StringText, CutAtTwentySixAndEscaped) {
    const std::string alphabet = "abcdefghijklmnopqrstuvwxyz";
    EXPECT_EQ(TextOf(alphabet.substr(0, 24)), "\"abcdefghijklmnopqrstuvwx\"");
    EXPECT_EQ(TextOf(alphabet.substr(0, 25)), "\"abcdefghijklmnopqrstuvwxy\"");
    EXPECT_EQ(TextOf(alphabet), "\"abcdefghijklmnopqrstuvwx...\"");
    EXPECT_EQ(TextOf(""), "\"\"");
    EXPECT_EQ(TextOf("a\tb\r\nc"), "\"a  b \\nc\"");
    // Tabs are two characters before the cut, line feeds are one.
    EXPECT_EQ(TextOf("\t\t\t\t\t\t\t\t\t\t\t\tabcdefghijklmn"),
              "\"" + std::string(24, ' ') + "...\"");
    EXPECT_EQ(TextOf("0123456789012345678901\n\tabcdef"), "\"0123456789012345678901\\n ...\"");
    EXPECT_EQ(
        TextOf(std::string(24, '\n') + "ab"), "\"" + [] {
            std::string lines;
            for (int i = 0; i < 24; ++i) lines += "\\n";
            return lines;
        }() + "...\"");
    EXPECT_EQ(ShortText(ReadFrom<SString>(Record().String(0, "abc"))), "NULL");
    const auto lines = ReadFrom<SString>(Record().String(1, "a\r\n\tb"));
    EXPECT_EQ(LinesText(lines), "a\n\tb");
    EXPECT_EQ(FullText(lines), "\"a \n  b\"");
}

std::string Folded(const std::string& text, int width, bool stop = false) {
    TextWriter out;
    AppendFolded(out, text, width, stop);
    return std::string(out.View());
}

TEST(StringText, Folding) {
    EXPECT_EQ(Folded("123456789", 10), "\"123456789\"");
    EXPECT_EQ(Folded("1234567890", 10), "\n\"1234567890\"");
    // Without a blank in reach the line breaks where it is full; the break restarts the column.
    EXPECT_EQ(Folded("12345678901234", 10), "\n\"1234567890\\\n1234\"");
    EXPECT_EQ(Folded("12345 78901234", 10), "\n\"12345 \\\n78901234\"");
    // The character before the break isn't looked at.
    EXPECT_EQ(Folded("123456789 1234", 10), "\n\"123456789 \\\n1234\"");
    EXPECT_EQ(Folded("1\n2\n\r3456789", 10), "\n\"1\n2\n3456789\"");
    EXPECT_EQ(Folded("a b\n456789012345", 10), "\n\"a b\n4567890123\\\n45\"");
    // More lines than the width: cut, or begun anew in wider lines behind what is there.
    const std::string eight = "\n\n\n\n\n\n\n\n";
    EXPECT_EQ(Folded(eight, 4, true), "\n\"\n\n\n\n\n ....\"");
    // Five lines at width 4, then from the beginning at 5, 6, 7, 8, 10 and 12, until 13 are made.
    EXPECT_EQ(Folded(eight, 4), "\n\"" + std::string(13, '\n') + " ....\"");
    const std::string endless(3000, '\n');
    EXPECT_LT(Folded(endless, 70).size(), 400U);
}

template <typename Array>
void ExpectArrayText(const CRecordBuilder& record, const std::string& text,
                     const std::string& detail, const std::string& lines) {
    const Array array = ReadFrom<Array>(record);
    EXPECT_EQ(ShortText(array), text);
    EXPECT_EQ(FullText(array), detail);
    EXPECT_EQ(LinesText(array), lines);
}

TEST(ArrayText, CutAtThirtySix) {
    using Uints = SArrayPtr<TuintType<21>, 1, 1>;
    const auto uints = [](std::vector<std::int64_t> values) {
        return Record().Array(tag::Uint, 1, values);
    };
    ExpectArrayText<Uints>(uints({7}), "{ 7 }", "{ 7 }", "7");
    ExpectArrayText<Uints>(uints({1, 2, 3}), "{ 1, 2, 3 }", "{ 1, 2, 3 }", "1\n2\n3");
    // 25 characters stand before the last element, which makes 35; then 26, which makes 36.
    ExpectArrayText<Uints>(
        uints({1000000000, 100000000, 1000000000}), "{ 1000000000, 100000000, 1000000000 }",
        "{ 1000000000, 100000000, 1000000000 }", "1000000000\n100000000\n1000000000");
    EXPECT_EQ(ShortText(ReadFrom<Uints>(uints({1000000000, 1000000000, 1000000000}))),
              std::string("{ 1000000000, 1000000000, 1000000000").substr(0, 35) + "... }");
    // Nothing is left of an element that begins behind the limit.
    EXPECT_EQ(ShortText(ReadFrom<Uints>(uints({1000000000, 1000000000, 123456789, 5}))),
              "{ 1000000000, 1000000000, 123456789, ... }");
    EXPECT_EQ(ShortText(ReadFrom<Uints>(uints({1000000000, 1000000000, 12345678, 5}))),
              "{ 1000000000, 1000000000, 12345678, ... }");
    ExpectArrayText<SArrayPtr<TGLenum, 1, 1>>(Record().Array(tag::Enum, 1, {0x1908, 1}),
                                              "{ GL_RGBA, 1 }", "{ 0x1908, 0x1 }", "GL_RGBA\n1");
    std::vector<std::int64_t> many(1000, 9);
    EXPECT_EQ(ShortText(ReadFrom<Uints>(uints(many))), "{ 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, ... }");
    ExpectArrayText<SArrayPtr<SString, 1, 1>>(Record().Strings(1, {"void main()", "{}\n"}),
                                              "{ \"void main()\", \"{}\\n\" }",
                                              "{ \"void main()\", \"{}\n\" }", "void main()\n{}\n");
}

TEST(ArrayText, Shapes) {
    ExpectArrayText<SArrayPtr<TintType<17>, 2, 1>>(
        Record().Array(tag::Int, 1, {1, 2, 3, 4}, 2), "{ [ 1; 2 ], [ 3; 4 ] }",
        "{ [ \n1;\n2\n], [ \n3;\n4\n] }", "[ \n1;\n2\n]\n[ \n3;\n4\n]");
    const std::string whole = "{ [ 1.000000, 2.000000; 3.000000, 4.000000 ]";
    const std::string detail = "[ \n1.000000, 2.000000;\n3.000000, 4.000000\n]";
    ExpectArrayText<SArrayPtr<TfloatType<22>, 2, 2>>(Record().Reals(tag::Float, 1, {1, 2, 3, 4}, 4),
                                                     whole.substr(0, 35) + "... }",
                                                     "{ " + detail + " }", detail);
    const auto item =
        ReadFrom<SPtr<TGLfixed, 4, 1>>(Record().Item(tag::Fixed, 1, {65536, 0, -65536, 131072}));
    EXPECT_EQ(ShortText(item), "[ 1.000000; 0.000000; -1.000000; 2.000000 ]");
    EXPECT_EQ(LinesText(item), "[ \n1.000000;\n0.000000;\n-1.000000;\n2.000000\n]");
    EXPECT_EQ(
        ShortText(ReadFrom<SPtr<TfloatType<22>, 1, 1>>(Record().RealItem(tag::Float, 1, {5}))),
        "5.000000");
    std::vector<float> matrix(16);
    std::string rows = "[ ";
    for (std::size_t i = 0; i < 16; ++i) {
        matrix[i] = static_cast<float>(i);
        rows += std::to_string(static_cast<float>(i));
        rows += i == 15 ? " ]" : i % 4 == 3 ? "; " : ", ";
    }
    EXPECT_EQ(
        ShortText(ReadFrom<SPtr<TfloatType<22>, 4, 4>>(Record().RealItem(tag::Float, 1, matrix))),
        rows);
}

TEST(AttributeListText, CutAtFortyToThirtySeven) {
    const auto check = [](const std::vector<std::int64_t>& list, const std::string& text,
                          const std::string& detail, const std::string& lines) {
        ExpectArrayText<SEglAttribList>(Record().Attributes(list), text, detail, lines);
    };
    check({}, "NULL", "NULL", "NULL");
    check({0x3038}, "{  }", "{  }", "");
    check({0x3025, 24, 0x3038}, "{ EGL_DEPTH_SIZE : 24 }", "{ \nEGL_DEPTH_SIZE : 24\n }",
          "EGL_DEPTH_SIZE : 24\n");
    // With the second pair the text has 38 characters, then 42.
    check({0x3024, 8, 0x3023, 8, 0x3038}, "{ EGL_RED_SIZE : 8, EGL_GREEN_SIZE : 8 }",
          "{ \nEGL_RED_SIZE : 8,\nEGL_GREEN_SIZE : 8\n }",
          "EGL_RED_SIZE : 8\nEGL_GREEN_SIZE : 8\n");
    check({0x3024, 8, 0x3023, 88888, 0x3038},
          std::string("{ EGL_RED_SIZE : 8, EGL_GREEN_SIZE : 88888").substr(0, 37) + "... }",
          "{ \nEGL_RED_SIZE : 8,\nEGL_GREEN_SIZE : 88888\n }",
          "EGL_RED_SIZE : 8\nEGL_GREEN_SIZE : 88888\n");
    check({0x3033, 5, 0x3038},
          std::string("{ EGL_SURFACE_TYPE : EGL_PBUFFER_BIT | EGL_WINDOW_BIT").substr(0, 37) +
              "... }",
          "{ \nEGL_SURFACE_TYPE : EGL_PBUFFER_BIT | EGL_WINDOW_BIT\n }",
          "EGL_SURFACE_TYPE : EGL_PBUFFER_BIT | EGL_WINDOW_BIT\n");
    check({0x3040, 0x40, 0x3038}, "{ EGL_RENDERABLE_TYPE : 0X40 }",
          "{ \nEGL_RENDERABLE_TYPE : 0X40\n }", "EGL_RENDERABLE_TYPE : 0X40\n");
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
        value = -7;
        list.GetAttribute(name, value);
        EXPECT_EQ(value, -7) << name;
    }
    EXPECT_EQ(SEglAttribList(nullptr).GetCount(), 0U);
    const std::int32_t none[] = {0x3038};
    EXPECT_EQ(SEglAttribList(none).GetCount(), 1U);
}

TEST(EglValues, OnlyTheFirstPixmapHasALength) {
    // The length is kept for the life of the process, so this needs one of its own.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto readTwo = [] {
        const CRecordBuilder record = Record()
                                          .Value(tag::EglNativePixmap, 77)
                                          .U32(3)
                                          .Raw("abc", 3)
                                          .Value(tag::EglNativePixmap, 78)
                                          .Raw("defgh", 5);
        CRecordStream stream(record);
        SEglNativePixmapDesc first, second;
        stream.Trace() >> first >> second;
        const bool sound = first.data == "abc" && second.data == "def" &&
                           second.handle.value == 78 && ShortText(second) == "78";
        // A record that is shorter than the length it inherits ends what is read of it.
        CRecordStream shorter(Record().Value(tag::EglNativePixmap, 79).Raw("i", 1));
        shorter.Trace() >> first;
        std::exit(sound && first.data == "i" ? 0 : 1);
    };
    EXPECT_EXIT(readTwo(), testing::ExitedWithCode(0), "");
}

TEST(EglValues, Windows) {
    const auto window = ReadFrom<SEglNativeWindowDesc>(Record().Window(0x1234, 640, 0xFFFFFFFF));
    EXPECT_EQ(window.width, 640);
    EXPECT_EQ(window.height, -1);
    EXPECT_EQ(ShortText(window), "4660");
}

}  // namespace
}  // namespace kestrail
