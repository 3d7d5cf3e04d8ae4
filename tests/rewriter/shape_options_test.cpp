// Linked pictures: their names in the option tables of shapes, among other properties.
#include "tests/rewriter/relink_fixture.h"

namespace {

using namespace rewriter_test;
using Properties = std::vector<ArtProperty>;

constexpr std::uint16_t kShapeName = 0x0380;
constexpr std::uint16_t kVertices = 0x0145;

class ShapeOptionsTest : public RelinkTest {
  protected:
    static Deck deck_of(const Properties& properties) {
        Deck deck;
        deck.add_slide().shape(Shape(kPictureFrame).options(properties));
        return deck;
    }
};

// An array of two 4-byte points whose entry leaves out the 6-byte header.
ArtProperty vertices() {
    Bytes data;
    for (const std::uint16_t value : std::initializer_list<std::uint16_t>{2, 2, 4, 1, 2, 3, 4}) {
        bytes::append_u16(data, value);
    }
    return {kVertices | kComplexFlag, 8, data};
}

TEST_F(ShapeOptionsTest, NameIsReplacedWhereItStands) {
    using namespace art_property;
    const auto tables = [](const std::u16string& name) {
        return std::vector<Properties>{
            linked_picture(name),
            {text_property(kPictureName, name)},
            {{kFillBlip, 1}, text_property(kFillBlipName, name), {0x01BF, 5}},
            {text_property(kLineBlipName, name), {kLineBlipFlags, 1}},
            {{kPicture, 1}, text_property(kPictureName, name), text_property(kShapeName, u"Map 1")},
            {{kPicture, 1},
             vertices(),
             text_property(kPictureName, name),
             text_property(kShapeName, u"Map 1")},
            {text_property(kPictureName, u"C:\\other.wmf"),
             {kFillBlip, 1},
             text_property(kFillBlipName, name)},
        };
    };
    for (const std::u16string target :
         {u"D:\\b", u"D:\\same.wmf", u"\\\\server\\share\\long.wmf"}) {
        const auto old_tables = tables(u"C:\\name.wmf");
        const auto new_tables = tables(target);
        for (std::size_t i = 0; i < old_tables.size(); ++i) {
            Deck before = deck_of(old_tables[i]);
            Deck after = deck_of(new_tables[i]);
            expect_relinked(before, {{0, target}}, after);
            EXPECT_EQ(not_written(), Indexes{});
        }
    }
}

TEST_F(ShapeOptionsTest, TableThatDoesNotHoldTheWholeNameStays) {
    ArtProperty name = text_property(art_property::kPictureName, u"C:\\name.wmf");
    name.value += 40;
    Deck before = deck_of({{art_property::kPicture, 1}, name});
    Deck after = deck_of({{art_property::kPicture, 1}, name});
    expect_relinked(before, {{0, u"D:\\b.wmf"}}, after);
    EXPECT_EQ(not_written(), Indexes{0});
}

TEST_F(ShapeOptionsTest, PictureComesBeforeTheTextOfItsShape) {
    const auto deck = [](const std::u16string& picture, const std::u16string& target) {
        Deck made;
        const auto web = made.hyperlink(target);
        const Text text = Text(u"C:\\a.doc").link(web, 0, 8);
        made.add_slide()
            .shape(Shape().picture(picture).text(text))
            .shape(Shape::group({Shape().picture(picture)}));
        return made;
    };
    Deck before = deck(u"C:\\map.wmf", u"C:\\a.doc");
    Deck after = deck(u"D:\\long\\map.wmf", u"D:\\b");
    expect_relinked(before, {{0, u"D:\\long\\map.wmf"}, {1, u"D:\\b"}, {2, u"D:\\long\\map.wmf"}},
                    after);
    EXPECT_EQ(not_written(), Indexes{1});
}

} // namespace
