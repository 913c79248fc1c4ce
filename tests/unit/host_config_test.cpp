#include "host/host_config.h"

#include "tests/unit/unit_support.h"

namespace kestrail {
namespace {

class HostConfig : public testing::Test {
protected:
    void SetUp() override {
        static_cast<void>(GetHostConfig());
        GetHostSettings() = SHostSettings{};
    }

    /// What the reader makes of a file with this content, and what it prints, in `m_printed`.
    CHostConfig Read(const std::string& content) {
        std::ofstream(m_path) << content;
        CHostConfig config;
        m_printed = Printed([&] { ReadConfigFile(config, m_path.c_str()); });
        return config;
    }

    const CTempFile m_file{{}};
    const std::string m_path = m_file.Name().c_str();
    std::string m_printed;
};

TEST_F(HostConfig, KeysAreTakenFromAnyPlaceAndForm) {
    const std::string longest(480, 'x');
    const std::pair<std::string, std::string> contents[] = {
        {"", "libEGL.so"},
        {"EglLibraryPath=a.so", "a.so"},
        {"  EglLibraryPath   =   /lib/x.so  \r\n", "/lib/x.so"},
        {"[record]\nEglLibraryPath = a\n[nobody]\n", "a"},
        {"[broken\nEglLibraryPath = a", "a"},
        {"EglLibraryPath = a=b", "a=b"},
        {"EglLibraryPath =\n", ""},
        {"# EglLibraryPath = a\n' EglLibraryPath = a\nEglLibraryPath\n\n", "libEGL.so"},
        {"egllibrarypath = a\nEglLibraryPath\t= a\n[EglLibraryPath = a\n", "libEGL.so"},
        {"EglLibraryPath = a\n \t EglLibraryPath = b\n", "b"},
        {"EglLibraryPath = " + longest + "y\n", longest + "y"},
        // 499 characters make a line; what follows is the next one.
        {"EglLibraryPath = " + longest + "yyEglLibraryPath = b\n", "b"},
    };
    for (const auto& [content, egl] : contents) {
        EXPECT_STREQ(Read(content).EglLibraryPath.c_str(), egl.c_str()) << content;
    }
    // Of three letters and more ES3's path stands for ES2's as well.
    const char* const libraries[][3] = {
        {"Es3LibraryPath = ab", "libGLESv2.so", "ab"},
        {"Es3LibraryPath = abc", "abc", "abc"},
        {"Es2LibraryPath = two\nEs3LibraryPath = three", "three", "three"},
        {"Es3LibraryPath = three\nEs2LibraryPath = two", "two", "three"}};
    for (const auto& [content, es2, es3] : libraries) {
        const CHostConfig config = Read(content);
        EXPECT_STREQ(config.Es2LibraryPath.c_str(), es2) << content;
        EXPECT_STREQ(config.Es3LibraryPath.c_str(), es3) << content;
    }
}

TEST_F(HostConfig, SettingsHaveTheirOwnRules) {
    Read("TraceFile = t\nRecordData = 0\nSaveFrameBuffer = 00\nStartFrame = 12 \nEndFrame = x\n");
    EXPECT_STREQ(GetHostSettings().traceFile.c_str(), "t");
    EXPECT_TRUE(GetHostSettings().recordData);
    EXPECT_FALSE(GetHostSettings().saveFrameBuffer);
    EXPECT_EQ(GetHostSettings().startFrame, 12);
    EXPECT_EQ(GetHostSettings().endFrame, 0);
    Read("SaveFrameBuffer = 10\nEndFrame = -3");
    EXPECT_TRUE(GetHostSettings().saveFrameBuffer);
    EXPECT_EQ(GetHostSettings().endFrame, -3);
}

TEST_F(HostConfig, TheReaderSaysWhatItFound) {
    Read("EglLibraryPath = e\nEs1LibraryPath = 1\nEs3LibraryPath = three\n");
    const std::string folder = std::filesystem::current_path().string();
    EXPECT_EQ(m_printed, "KESTRAIL(M) The current working directory is " + folder +
                             "\nKESTRAIL(M) Config file found: " + folder + "/" + m_path +
                             "\n\nKESTRAIL(M) NetworkControl(I): Disabled\n"
                             "KESTRAIL(M) Config File HostEglLibPath: e\n"
                             "KESTRAIL(M) Config File HostEs1LibPath: 1\n"
                             "KESTRAIL(M) Config File HostEs2LibPath: three\n"
                             "KESTRAIL(M) Config File HostEs3LibPath: three\n");
}

TEST_F(HostConfig, AMissingFileEndsTheProcess) {
    // The death test looks at standard error only, where the child sends its text.
    const auto read = [] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        output::FlushOnAnyExit();
        CHostConfig config;
        ReadConfigFile(config, "absent");
    };
    EXPECT_EXIT(read(), testing::ExitedWithCode(255),
                "WARNING: Config file not found: .*/absent\n\n"
                "KESTRAIL\\(W\\) WARNING: Recording Aborted.Exit\n");
}

TEST_F(HostConfig, TheWriterGivesPathsAndFixedSettings) {
    CHostConfig config;
    config.Es3LibraryPath = "three";
    GetHostSettings().recordData = true;
    GetHostSettings().endFrame = 99;
    const std::string printed = Printed([&] {
        EXPECT_TRUE(WriteConfigFile(config, m_path.c_str()));
        EXPECT_FALSE(WriteConfigFile(config, (m_path + "/none/kestrail.cfg").c_str()));
    });
    EXPECT_EQ(printed,
              "KESTRAIL(M) Writing to File \n\n"
              "KESTRAIL(M) Writing to file complete, please check host library paths.\n\n"
              "KESTRAIL(M) Writing to File \n\n");
    std::stringstream content;
    content << std::ifstream(m_path).rdbuf();
    EXPECT_EQ(content.str(),
              "[host]\nEglLibraryPath = libEGL.so\nEs1LibraryPath = libGLES_CM.so\n"
              "Es2LibraryPath = libGLESv2.so\n\n[record]\nTraceFile = trace.kstl\nRecordData = 0\n"
              "StartFrame = 0\nEndFrame = 1\n\n");
}

}  // namespace
}  // namespace kestrail
