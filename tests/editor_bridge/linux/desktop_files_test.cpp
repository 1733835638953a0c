#include "editor_bridge/linux/desktop_files.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "editor_bridge/linux/program_name.h"

namespace orbinex::test {
namespace {

namespace fs = std::filesystem;

DesktopFile parse(const std::string& lines, const std::string& locale = "") {
    return parseDesktopFile("[Desktop Entry]\nType=Application\n" + lines, locale);
}

TEST(DesktopFile, startsTheProgramOfItsCommandLine) {
    const struct {
        const char* exec;
        const char* program;
    } rows[] = {
        {"/usr/bin/gimp-2.10 %U", "gimp-2.10"},
        {"env GDK_BACKEND=x11 /opt/App/bin/app --flag", "app"},
        {"\"/opt/With Space/My App\" %f", "My App"},
        {"\"/opt/quote\\\\\"d/x\\\\\"y\"", "x\"y"},
        {"\"never closed", "never closed"},
        {"", ""},
        {"env", ""},
        {"   ", ""},
        {"/", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parse(std::string("Exec=") + row.exec).program, row.program) << row.exec;
}

TEST(DesktopFile, isNamedInTheLanguageOfTheLocale) {
    const std::string names = "Name[de]=Dateien\nName=Files\nName[de_CH]=Dateie\nName[]=x\nName[\n";
    EXPECT_EQ(parse(names).name, "Files");
    EXPECT_EQ(parse(names, "de_DE.UTF-8").name, "Dateien");
    EXPECT_EQ(parse(names, "de_CH@euro").name, "Dateie");
    EXPECT_EQ(parse(names, "fr_FR").name, "Files");
    EXPECT_EQ(parse(names, ".").name, "Files");
    EXPECT_EQ(parse("Name=a\\sb\\\\c\\").name, "a b\\c\\");
}

TEST(DesktopFile, comesThroughAnyBytes) {
    EXPECT_FALSE(parseDesktopFile("", "").isApplication);
    EXPECT_FALSE(parseDesktopFile("Type=Application\nName=before the group\n", "").isApplication);
    EXPECT_FALSE(parse("Hidden=true\n").isApplication);
    EXPECT_FALSE(parse("Type=Link\n").isApplication);
    EXPECT_EQ(parse("Name=A\n[Desktop Action new]\nName=B\n").name, "A");
    EXPECT_EQ(parse("Name=\xff\x1b[1mA\n").name.find('\xff'), std::string::npos);
    EXPECT_LE(parse("Name=" + std::string(100'000, 'x')).name.size(), 200U);
    const auto odd = parse(std::string("=\n[\n[]\nName\nExec\0=\n", 20));
    EXPECT_EQ(odd.name, "");
}

class DesktopFilesTest : public testing::Test {
  protected:
    DesktopFilesTest() {
        std::string name = fs::temp_directory_path() / "desktop-XXXXXX";
        if (::mkdtemp(name.data())) folder_ = name;
        write("user/applications/placeholder.txt", "");
        write("system/applications/placeholder.txt", "");
    }
    ~DesktopFilesTest() override { fs::remove_all(folder_); }

    void write(const std::string& path, const std::string& text) const {
        fs::create_directories((folder_ / path).parent_path());
        std::ofstream(folder_ / path) << text;
    }
    void writeApplication(const std::string& path, const std::string& lines) const {
        write(path, "[Desktop Entry]\nType=Application\n" + lines);
    }
    [[nodiscard]] DesktopFiles files() const { return {{folder_ / "user", folder_ / "system"}, ""}; }
    static std::string idOf(DesktopFiles& files, const std::string& name, const std::string& program = "") {
        const std::vector<std::string> names{name};
        const auto* file = files.find(names, program);
        return file ? file->id : "-";
    }

    fs::path folder_;
};

TEST_F(DesktopFilesTest, areFoundByClassThenByIDThenByProgram) {
    writeApplication("system/applications/org.gimp.desktop", "StartupWMClass=Gimp-2.10\nExec=gimp %U\n");
    writeApplication("system/applications/gimp.desktop", "Exec=other\n");
    writeApplication("system/applications/kde/deep.desktop", "Exec=deep-program\n");
    writeApplication("system/applications/a-script.desktop", "Exec=python3 a.py\n");
    writeApplication("system/applications/b-script.desktop", "Exec=python3 b.py\n");
    auto all = files();
    EXPECT_EQ(idOf(all, "gimp-2.10"), "org.gimp");
    EXPECT_EQ(idOf(all, "GIMP"), "gimp") << "the id comes before the program";
    EXPECT_EQ(idOf(all, "other"), "gimp");
    EXPECT_EQ(idOf(all, "unheard of", "deep-program"), "kde-deep");
    EXPECT_EQ(idOf(all, "python3"), "-") << "shared by two applications";
    EXPECT_EQ(idOf(all, ""), "-");
}

TEST_F(DesktopFilesTest, ofTheUserReplaceTheSystems) {
    writeApplication("system/applications/editor.desktop", "Name=System\n");
    writeApplication("system/applications/removed.desktop", "StartupWMClass=removed\n");
    writeApplication("user/applications/editor.desktop", "Name=User\n");
    writeApplication("user/applications/removed.desktop", "Hidden=true\n");
    auto all = files();
    const std::vector<std::string> names{"editor"};
    EXPECT_EQ(all.find(names, "")->name, "User");
    EXPECT_EQ(idOf(all, "removed"), "-");
}

TEST_F(DesktopFilesTest, areReadAgainWhenAFolderChanges) {
    auto all = files();
    EXPECT_EQ(idOf(all, "late"), "-");
    writeApplication("user/applications/late.desktop", "");
    fs::last_write_time(folder_ / "user/applications",
                        fs::file_time_type::clock::now() + std::chrono::seconds(5));
    EXPECT_EQ(idOf(all, "late"), "late");
}

TEST_F(DesktopFilesTest, areNotStoppedByWhatLiesAmongThem) {
    writeApplication("system/applications/good.desktop", "");
    ::mkfifo((folder_ / "system/applications/pipe.desktop").c_str(), 0600);
    fs::create_directory_symlink(folder_ / "system/applications", folder_ / "system/applications/loop");
    fs::create_symlink("/nowhere", folder_ / "system/applications/broken.desktop");
    fs::create_directory(folder_ / "system/applications/folder.desktop");
    write("system/applications/huge.desktop", "[Desktop Entry]\n" + std::string(1'000'000, '#') + "\n");
    auto all = files();
    EXPECT_EQ(idOf(all, "good"), "good");
    EXPECT_EQ(idOf(all, "pipe"), "-");
}

TEST(ProgramName, isTheFileNameOfTheExecutable) {
    EXPECT_EQ(programOfLink("/opt/resolve/bin/resolve"), "resolve");
    EXPECT_EQ(programOfLink("/opt/resolve/bin/resolve (deleted)"), "resolve");
    EXPECT_EQ(programOfLink(""), "");
    EXPECT_EQ(programOfArgument("C:\\Program Files\\Avid\\Pro Tools\\ProTools.exe"), "ProTools.exe");
    EXPECT_EQ(programOfArgument(std::string("/home/me/resolve.exe\0--flag/x", 29)), "resolve.exe");
    EXPECT_EQ(programOfArgument(""), "");
}

}  // namespace
}  // namespace orbinex::test
