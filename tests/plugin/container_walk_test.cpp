// Containers whose children do not fit, containers where the format has atoms and atoms where it
// has containers: the walk and the rewriting read the same records, or the file is refused.
#include "plugin/status.h"
#include "tests/rewriter/relink_fixture.h"

namespace {

using namespace ppt;
using namespace presentation_builder;
using presentation_builder::Page;
using Paths = std::vector<std::string>;

class ContainerWalk : public rewriter_test::RelinkTest {
  protected:
    // The status of loading the deck with another length in the record at `offset`.
    std::int32_t status_with_length(Deck& deck, std::size_t offset, std::uint32_t length) {
        Bytes stream = deck.document_stream();
        bytes::store_u32(stream, offset + 4, length);
        deck.replace_document_stream(std::move(stream));
        const std::int32_t loaded = load(deck);
        j_unLoadFile();
        return loaded;
    }
};

TEST_F(ContainerWalk, AChildThatOverrunsItsContainerIsDamage) {
    Deck deck;
    Page& slide = deck.add_slide();
    slide.shape(Shape().link(deck.hyperlink(u"C:\\a.doc"))).shape(Shape());
    const RecordAt shape =
        deck.find_in(slide, {{0x040C, 0}, {0xF002, 0}, {0xF003, 0}, {0xF004, 1}});
    const RecordAt client_data = find_record(deck.document_stream(), shape.offset, {{0xF011, 0}});
    const RecordAt name = deck.find_in_document({{0x0409, 0}, {0x0FD7, 0}, {0x0FBA, 0}});
    for (const RecordAt& last : {client_data, name}) {
        for (const std::uint32_t more : {1u, 8u, 16u}) {
            EXPECT_EQ(status_with_length(deck, last.offset, last.length + more), status::kDamaged)
                << more << " bytes more in " << last.type;
        }
    }
    EXPECT_EQ(status_with_length(deck, client_data.offset, client_data.length), 0);

    // Room for less than a header behind the last child.
    EXPECT_EQ(status_with_length(deck, shape.offset, shape.length + 4), status::kDamaged);
}

// Real files hold such records; whoever reads an atom there takes nothing from it.
TEST_F(ContainerWalk, AContainerInTheNameOfAnAtomIsPassedOverWhole) {
    const Bytes inner = cstring(1, u"C:\\inner.doc");
    Deck deck;
    const auto before = deck.hyperlink(u"C:\\before.doc");
    deck.external_object(
        container(0, 0x1010, {media_atom(deck.next_object_id()), atom(0, 0x0FBA, inner, 0xF)}));
    const auto behind = deck.hyperlink(u"C:\\behind.doc");
    Page& slide = deck.add_slide();
    slide.record_before_drawing(atom(3, 0x0FBA, inner, 0xF));
    slide.shape(Shape().link(before)).shape(Shape().link(behind));
    slide.record(container(
        0, 0x1388, {container(0, 0x1389, {atom(0, 0x0FBA, inner, 0xF), cstring(1, u"1")})}));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_paths(), (Paths{"C:\\before.doc", "C:\\behind.doc"}));
    ASSERT_EQ(j_setLinkFileName(1, "C:\\changed.doc", 0), 0);
    ASSERT_EQ(rewrite("out.ppt"), 0);
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_paths(), (Paths{"C:\\before.doc", "C:\\changed.doc"}));
}

TEST_F(ContainerWalk, AnAtomInTheNameOfAContainerIsWrittenWhole) {
    const auto deck = [](const char16_t* target, bool with_id) {
        Deck made;
        made.document_record(atom(0, 0x0409, Bytes(60, 7)))
            .document_record(external_object_list(1, external_hyperlink(1, {.target = target})));
        Page& slide = made.add_slide();
        slide.shape(Shape().link(1)).record(atom(0, 0x1388, Bytes(60, 7)));
        if (with_id) {
            slide.tag(u"OBRIN-LINK-NUM=10", u"11");
        }
        return made;
    };
    Deck before = deck(u"C:\\a.doc", true);
    Deck after = deck(u"C:\\changed.doc", false);
    expect_relinked(before, {{0, u"C:\\changed.doc"}}, after);
}

TEST_F(ContainerWalk, OnlyTheFirstListOfExternalObjectsCounts) {
    const auto deck = [](const char16_t* target) {
        Deck made;
        const auto first = made.hyperlink(target);
        made.document_record(
            external_object_list(5, external_hyperlink(5, {.target = u"C:\\second.doc"})));
        made.add_slide().shape(Shape().link(first)).shape(Shape().link(5));
        return made;
    };
    Deck before = deck(u"C:\\a.doc");
    Deck after = deck(u"C:\\changed.doc");
    expect_relinked(before, {{0, u"C:\\changed.doc"}}, after);
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_paths(), Paths{"C:\\changed.doc"});
}

} // namespace
