// Reading whole files, and replacing them so that nothing is lost half-way.
#include "editor/AtomicFile.h"
#include "editor/FileSizeLimit.h"
#include "editor/TemporaryFolder.h"
#include "picture/ImagingError.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cstdint>

namespace pictorel::test {
namespace {

namespace fs = std::filesystem;

constexpr auto kBothDurabilities = {Durability::Working, Durability::Lasting};

codecs::ByteBuffer Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

// What the writer says where it refuses, empty where it writes.
std::string ErrorOf(const std::string& fileName, std::string_view content) {
    try {
        ReplaceFile(fileName, Bytes(content), Durability::Lasting);
        return {};
    } catch (const ImagingError& error) {
        EXPECT_EQ(error.Kind(), ImagingFailure::FileAccess);
        EXPECT_NE(std::string(error.what()).find(fileName), std::string::npos) << error.what();
        return error.what();
    }
}

unsigned ModeOf(const std::string& fileName) {
    struct stat status {};
    EXPECT_EQ(::stat(fileName.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

class AtomicFile : public ::testing::Test {
  protected:
    const TemporaryFolder folder_;
};

TEST_F(AtomicFile, WritesANewFileUnderTheProcesssMask) {
    const mode_t before = ::umask(027);
    const std::string name = folder_.Path("Übersee 日本.png");
    for (const Durability durability : kBothDurabilities) {
        ReplaceFile(name, Bytes("content"), durability);
        EXPECT_EQ(ContentOf(name), "content");
        EXPECT_EQ(ModeOf(name), 0640U);
        fs::remove(name);
    }
    EXPECT_EQ(::umask(before), mode_t{027}) << "the mask itself stays";
    ReplaceFile(name, codecs::ByteView(), Durability::Lasting);
    EXPECT_EQ(fs::file_size(name), 0U);
}

TEST_F(AtomicFile, KeepsTheRightsOfTheFileThatWasThere) {
    for (const mode_t mode : {0600U, 0666U, 0755U, 0640U}) {
        const std::string name = folder_.Make("a.png", "old and longer");
        ASSERT_EQ(::chmod(name.c_str(), mode), 0);
        ReplaceFile(name, Bytes("new"), Durability::Working);
        EXPECT_EQ(ContentOf(name), "new");
        EXPECT_EQ(ModeOf(name), mode);
    }
    EXPECT_EQ(folder_.Names(), std::vector<std::string>{"a.png"});
}

TEST_F(AtomicFile, WritesWhatALinkLeadsTo) {
    const std::string real = folder_.Make("album/real.png", "old");
    fs::create_symlink("album/real.png", folder_.Path("near.png"));
    fs::create_symlink(folder_.Path("near.png"), folder_.Path("far.png"));
    ReplaceFile(folder_.Path("far.png"), Bytes("new"), Durability::Lasting);
    EXPECT_EQ(ContentOf(real), "new");
    EXPECT_TRUE(fs::is_symlink(folder_.Path("near.png")));
    EXPECT_TRUE(fs::is_symlink(folder_.Path("far.png")));
}

TEST_F(AtomicFile, WritesBesideWhereTheNameHasNoFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder_.Path("."));
    EXPECT_EQ(ErrorOf("plain.png", "new"), "");
    fs::current_path(before);
    EXPECT_EQ(ContentOf(folder_.Path("plain.png")), "new");
}

TEST_F(AtomicFile, MakesWhatALinkLeadsToWhereItIsNotThereYet) {
    fs::create_symlink("to come.png", folder_.Path("link.png"));
    ReplaceFile(folder_.Path("link.png"), Bytes("new"), Durability::Lasting);
    EXPECT_TRUE(fs::is_symlink(folder_.Path("link.png")));
    EXPECT_EQ(ContentOf(folder_.Path("to come.png")), "new");
}

// An access-control list as the kernel takes it: rows of kind, rights and user below a version.
std::string RightsOfAnotherUser() {
    constexpr std::uint32_t kNobodys = 0xFFFFFFFF;
    struct Row {
        std::uint16_t kind;
        std::uint16_t rights;
        std::uint32_t user;
    };
    constexpr std::array<Row, 5> kRows{
        {{1, 6, kNobodys}, {2, 4, 12345}, {4, 0, kNobodys}, {16, 4, kNobodys}, {32, 0, kNobodys}}};
    std::string list("\2\0\0\0", 4);
    for (const Row& row : kRows) {
        list.append(reinterpret_cast<const char*>(&row), sizeof(row));
    }
    return list;
}

std::string AttributeOf(const std::string& fileName, const char* name) {
    std::string value(256, '\0');
    const ssize_t bytes = ::getxattr(fileName.c_str(), name, value.data(), value.size());
    value.resize(bytes > 0 ? static_cast<std::size_t>(bytes) : 0);
    return value;
}

TEST_F(AtomicFile, KeepsTheAccessControlListAndTheAttributes) {
    const std::string name = folder_.Make("a.png", "old");
    const std::string list = RightsOfAnotherUser();
    const std::string tags("sea\0sun", 7);
    if (::setxattr(name.c_str(), "user.xdg.tags", tags.data(), tags.size(), 0) != 0 ||
        ::setxattr(name.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) != 0) {
        GTEST_SKIP() << "the file system of the temporary folder has no attributes";
    }
    ::setxattr(name.c_str(), "user.empty", "", 0, 0);
    ReplaceFile(name, Bytes("new"), Durability::Lasting);
    EXPECT_EQ(ContentOf(name), "new");
    EXPECT_EQ(AttributeOf(name, "user.xdg.tags"), tags);
    EXPECT_EQ(::getxattr(name.c_str(), "user.empty", nullptr, 0), 0);
    EXPECT_EQ(AttributeOf(name, "system.posix_acl_access"), list);
}

TEST_F(AtomicFile, TheFoldersListWidensNoRights) {
    const std::string list = RightsOfAnotherUser();
    if (::setxattr(folder_.Path(".").c_str(), "system.posix_acl_default", list.data(), list.size(), 0) != 0) {
        GTEST_SKIP() << "the file system of the temporary folder has no lists";
    }
    const std::string name = folder_.Make("a.png", "old");
    ASSERT_EQ(AttributeOf(name, "system.posix_acl_access").size(), list.size()) << "a new file gets it";
    ASSERT_EQ(::removexattr(name.c_str(), "system.posix_acl_access"), 0);
    ASSERT_EQ(::chmod(name.c_str(), 0600), 0);
    ReplaceFile(name, Bytes("new"), Durability::Lasting);
    EXPECT_EQ(AttributeOf(name, "system.posix_acl_access"), "");
    EXPECT_EQ(ModeOf(name), 0600U);
    ReplaceFile(folder_.Path("b.png"), Bytes("new"), Durability::Lasting);
    EXPECT_EQ(AttributeOf(folder_.Path("b.png"), "system.posix_acl_access").size(), list.size());
}

TEST_F(AtomicFile, RefusesAndSaysWhy) {
    const std::string guarded = folder_.Make("guarded.png", "old");
    ASSERT_EQ(::chmod(guarded.c_str(), 0444), 0);
    fs::create_symlink("guarded.png", folder_.Path("link.png"));
    fs::create_symlink("round.png", folder_.Path("round.png"));
    fs::create_directory(folder_.Path("album.png"));
    ASSERT_EQ(::mkfifo(folder_.Path("pipe.png").c_str(), 0600), 0);
    const auto before = folder_.Names();

    EXPECT_NE(ErrorOf(guarded, "new").find("write-protected"), std::string::npos);
    EXPECT_NE(ErrorOf(folder_.Path("link.png"), "new").find("write-protected"), std::string::npos);
    EXPECT_NE(ErrorOf(folder_.Path("album.png"), "new").find("folder"), std::string::npos);
    EXPECT_NE(ErrorOf(folder_.Path("pipe.png"), "new").find("pipe"), std::string::npos);
    EXPECT_NE(ErrorOf("/dev/full", "new").find("device"), std::string::npos);
    EXPECT_NE(ErrorOf("/proc/a.png", "new"), "") << "nobody may make files there";
    EXPECT_NE(ErrorOf(folder_.Path(std::string(300, 'n') + ".png"), "new").find("too long"),
              std::string::npos);
    EXPECT_NE(ErrorOf(folder_.Path("none/a.png"), "new").find("No such file"), std::string::npos);
    EXPECT_NE(ErrorOf(folder_.Path("guarded.png/a.png"), "new"), "");
    EXPECT_NE(ErrorOf(folder_.Path("round.png"), "new"), "");

    EXPECT_EQ(ContentOf(guarded), "old");
    EXPECT_EQ(folder_.Names(), before) << "nothing is left behind";
}

TEST_F(AtomicFile, AFullDiskLeavesTheOldFileWhole) {
    const std::string old = folder_.Make("old.png", "the old picture");
    const std::string content(100000, 'n');
    for (const rlim_t room : {rlim_t{0}, rlim_t{1}, rlim_t{65536}, rlim_t{99999}}) {
        const FileSizeLimit limit(room);
        EXPECT_NE(ErrorOf(old, content), "") << room;
        EXPECT_NE(ErrorOf(folder_.Path("new.png"), content), "") << room;
    }
    EXPECT_EQ(ContentOf(old), "the old picture");
    EXPECT_EQ(folder_.Names(), std::vector<std::string>{"old.png"}) << "nothing is left behind";
    EXPECT_EQ(ErrorOf(old, content), "");
    EXPECT_EQ(ContentOf(old), content);
}

TEST_F(AtomicFile, ReadsWhatIsThere) {
    const std::string content("a\0b\xFF\n", 5);
    const auto bytes = ReadWholeFile(folder_.Make("Fotos Übersee/日本 ß.png", content));
    ASSERT_TRUE(bytes);
    EXPECT_EQ(std::string(bytes->begin(), bytes->end()), content);
    const auto empty = ReadWholeFile(folder_.Make("empty.png", ""));
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->empty());
}

TEST_F(AtomicFile, ReadsNothingFromWhatIsNoReadableFile) {
    ASSERT_EQ(::mkfifo(folder_.Path("pipe.png").c_str(), 0600),
              0); // nobody writes to it: a reader would wait for ever
    fs::create_directory(folder_.Path("album.png"));
    fs::create_symlink("loop.png", folder_.Path("loop.png"));
    for (const char* const name : {"pipe.png", "album.png", "loop.png", "none.png"}) {
        EXPECT_FALSE(ReadWholeFile(folder_.Path(name))) << name;
    }
    EXPECT_FALSE(ReadWholeFile(""));
    EXPECT_FALSE(ReadWholeFile("/dev/zero")) << "would never end";

    const std::string vast = folder_.Make("vast.png", "");
    fs::resize_file(vast, std::uintmax_t{6} << 30); // takes no room on the disk
    EXPECT_FALSE(ReadWholeFile(vast)) << "no picture within the limits is that large";
}

TEST_F(AtomicFile, ReadsNothingWithoutTheRight) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "nothing is closed to the system's administrator";
    }
    const std::string closed = folder_.Make("closed.png", "x");
    ASSERT_EQ(::chmod(closed.c_str(), 0), 0);
    EXPECT_FALSE(ReadWholeFile(closed));
}

} // namespace
} // namespace pictorel::test
