// Which picture is known to be in which working file, and when that knowledge ends.
#include "editor/TemporaryFolder.h"
#include "editor/WorkingFileMemory.h"
#include "picture/MadeDetails.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

namespace pictorel::test {
namespace {

namespace fs = std::filesystem;
using test::Random;

class WorkingFileMemoryTest : public ::testing::Test {
  protected:
    void SetUp() override { memory_.Remember(file_, picture_); }

    const TemporaryFolder folder_;
    const std::string file_ = folder_.Make("1.jpg", "one");
    PixelArray picture_ = Random({9, 9});
    WorkingFileMemory memory_;
};

TEST_F(WorkingFileMemoryTest, KnowsWhatIsTheSamePicture) {
    EXPECT_EQ(memory_.FileOf(picture_), file_);
    const PixelArray sharing = picture_;
    EXPECT_EQ(memory_.FileOf(sharing), file_);

    PixelArray changed = picture_;
    changed.WritableRows()[0] ^= 1U;
    PixelArray withAlpha = picture_;
    withAlpha.SetHasAlpha(true);
    PixelArray reduced = picture_;
    reduced.SetReduction(0.5);
    PixelArray otherDetails = picture_;
    otherDetails.SetDetails(MadeDetails());
    for (const PixelArray& other : {changed, withAlpha, reduced, otherDetails, PixelArray()}) {
        EXPECT_FALSE(memory_.FileOf(other));
        EXPECT_FALSE(memory_.LinkAs(folder_.Path("2.jpg"), other));
    }
    EXPECT_EQ(folder_.Names(), std::vector<std::string>{"1.jpg"});
}

TEST_F(WorkingFileMemoryTest, FollowsRenamedFiles) {
    const std::string renamed = folder_.Make("3.jpg", "one");
    memory_.FileRenamed(file_, renamed);
    EXPECT_EQ(memory_.FileOf(picture_), renamed);
    const std::string other = folder_.Make("4.jpg", "four");
    memory_.FileRenamed(other, renamed); // takes the place of the remembered one
    EXPECT_FALSE(memory_.FileOf(picture_));
}

TEST_F(WorkingFileMemoryTest, ALinkTakesThePlaceOfAnOlderFile) {
    const std::string second = folder_.Make("2.jpg", "older");
    ASSERT_TRUE(memory_.LinkAs(second, picture_));
    EXPECT_EQ(ContentOf(second), "one");
}

TEST_F(WorkingFileMemoryTest, WritingAPictureToItsOwnFileKeepsTheFile) {
    EXPECT_TRUE(memory_.LinkAs(file_, picture_));
    EXPECT_EQ(ContentOf(file_), "one");
}

TEST_F(WorkingFileMemoryTest, WhereNoLinkCanBeMadeBothFilesStay) {
    EXPECT_FALSE(memory_.LinkAs(folder_.Path("missing folder/2.jpg"), picture_));
    EXPECT_EQ(memory_.FileOf(picture_), file_);
}

TEST_F(WorkingFileMemoryTest, AReducedCopyDoesNotPushThePictureOut) {
    PixelArray reduced = Random({3, 3});
    reduced.SetReduction(0.25);
    memory_.Remember(folder_.Make("preview.jpg", "small"), reduced);
    EXPECT_EQ(memory_.FileOf(picture_), file_);
}

TEST_F(WorkingFileMemoryTest, AReducedCopyWrittenOverTheFileEndsIt) {
    const std::string second = folder_.Path("2.jpg");
    ASSERT_TRUE(memory_.LinkAs(second, picture_));
    PixelArray reduced = Random({3, 3});
    reduced.SetReduction(0.25);

    fs::remove(second);
    folder_.Make("2.jpg", "small");
    memory_.Remember(second, reduced);
    EXPECT_EQ(memory_.FileOf(picture_), file_) << "the first name still holds it";

    folder_.Make("1.jpg", "small");
    memory_.Remember(file_, reduced);
    EXPECT_FALSE(memory_.FileOf(picture_)) << "a reduced copy would be taken for the picture";
}

TEST_F(WorkingFileMemoryTest, ADeletedFileHoldsNothing) {
    const std::string second = folder_.Path("2.jpg");
    ASSERT_TRUE(memory_.LinkAs(second, picture_));
    fs::remove(second);
    fs::remove(file_);
    EXPECT_FALSE(memory_.FileOf(picture_));
    EXPECT_FALSE(memory_.LinkAs(second, picture_));
}

TEST_F(WorkingFileMemoryTest, TheNextFileTakesThePlaceOfTheFirst) {
    ASSERT_TRUE(memory_.LinkAs(folder_.Path("2.jpg"), picture_));
    const PixelArray next = Random({5, 5});
    memory_.Remember(folder_.Make("3.jpg", "three"), next);
    EXPECT_FALSE(memory_.FileOf(picture_));
    EXPECT_EQ(memory_.FileOf(next), folder_.Path("3.jpg"));
}

} // namespace
} // namespace pictorel::test
