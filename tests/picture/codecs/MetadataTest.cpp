// What people wrote about a picture comes through every format that has a place for it, and tells no lies
// about an edited one.
#include "MadeExif.h"
#include "PictureSupport.h"
#include "picture/codecs/Xmp.h"

#include <string>

namespace pictorel::codecs::testing {
namespace {

ByteBuffer Packet(const std::string& attributes, const std::string& elements) {
    return Bytes()
        .Text("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF><rdf:Description dc:format=\"image/jpeg\"")
        .Text(attributes)
        .Text(">")
        .Text(elements)
        .Text("<dc:title>Tea</dc:title></rdf:Description></rdf:RDF></x:xmpmeta>")
        .Done();
}

TEST(Metadata, XmpLosesWhatAnEditMakesUntrue) {
    const struct {
        const char* name;
        std::string attributes;
        std::string elements;
    } cases[] = {
        {"orientation", " tiff:Orientation=\"6\"", "<tiff:Orientation>6</tiff:Orientation>"},
        {"single quotes and blanks", " tiff:ImageWidth = '4000' tiff:ImageLength='3000'", ""},
        {"empty element", "", "<exif:PixelXDimension/>"},
        {"thumbnail", "", "<xmp:Thumbnails><rdf:Alt><rdf:li>/9j/4AAQ</rdf:li></rdf:Alt></xmp:Thumbnails>"},
    };
    for (const auto& c : cases) {
        const ByteBuffer kept = WithoutPictureClaims(Packet(c.attributes, c.elements));
        EXPECT_EQ(kept, Packet(std::string(c.attributes.size(), ' '), std::string(c.elements.size(), ' ')))
            << c.name;
    }
    const ByteBuffer others = Packet(" tiff:OrientationNote=\"6\"", "<my:xtiff:Orientation/>");
    EXPECT_EQ(WithoutPictureClaims(others), others);
    for (const ByteBuffer& damaged : {Packet(" tiff:Orientation=6", ""), Packet("", "<xmp:Thumbnails>"),
                                      ByteBuffer{}, ByteBuffer(300, 'x')}) {
        EXPECT_TRUE(WithoutPictureClaims(damaged).empty());
    }
}

TEST(Metadata, ComesThroughEveryFormatThatHoldsIt) {
    PixelArray picture = MakePicture(31, 17);
    Metadata details;
    details.exif = MadeExif({.orientation = 1, .resolutionX = 300, .resolutionY = 300, .thumbnail = false});
    details.xmp = Packet("", "");
    details.dotsPerInchX = details.dotsPerInchY = 300;
    picture.SetDetails(details);
    for (const char* const extension : {"JPG", "PNG", "TIF"}) {
        const Metadata read = Read(Write(extension, picture)).Details();
        EXPECT_EQ(read.xmp, details.xmp) << extension;
        EXPECT_FALSE(read.exif.empty()) << extension;
        EXPECT_EQ(read.dotsPerInchX, 300) << extension;
    }
    const Codec& jpeg = *FindCodecByExtension("JPG");
    EXPECT_EQ(jpeg.read(jpeg.write(picture, {100, true}), {true}).Details(), details);
}

} // namespace
} // namespace pictorel::codecs::testing
