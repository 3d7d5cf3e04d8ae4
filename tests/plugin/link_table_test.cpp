// The link table and the exports that read and change it.
#include "tests/plugin/plugin_fixture.h"
#include "tests/pptlinks/code_page_guard.h"

#include "plugin/link_table.h"
#include "plugin/status.h"
#include "plugin/trace_log.h"

namespace {

using namespace ppt;
using plugin_test::error_params;
using plugin_test::id;

class LinkTableTest : public plugin_test::PluginTest {
  protected:
    // A use of the external object at the ordinal.
    static LinkRecord* add(const std::string& file_name, std::int32_t ordinal = 0,
                           std::uint16_t type = 0x0FD7, std::uint32_t holder = 1) {
        LinkRecord record;
        record.file_name = file_name;
        record.object_list_ordinal = ordinal;
        record.hyperlink_ordinal = ordinal;
        record.record_type = type;
        record.holder_persist_id = holder;
        return ps_addLinkRecord(&record);
    }
};

TEST_F(LinkTableTest, CallsWithoutALoadedPresentationFindNothing) {
    char buffer[1024] = "left";
    EXPECT_EQ(n_getLinkCount(), 0);
    EXPECT_EQ(j_getLinkFileName(0, 0, buffer), status::kIndexOutOfRange);
    EXPECT_EQ(error_params(), "0|0");
    EXPECT_EQ(j_getHyperlinkText(0, buffer), status::kIndexOutOfRange);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(j_unLoadFile(), 0);
    std::string destination = path("out.ppt");
    EXPECT_EQ(j_rewriteFile(destination.data(), 3), status::kNullArgument);
    EXPECT_FALSE(std::filesystem::exists(destination));
}

TEST_F(LinkTableTest, NullArgumentsAreRefusedBeforeTheIndexIsLookedAt) {
    EXPECT_EQ(j_getLinkFileName(9, 0, nullptr), status::kNullArgument);
    EXPECT_EQ(j_setLinkFileName(9, nullptr, 0), status::kNullArgument);
    EXPECT_EQ(j_getLinkId(9, 0, nullptr), status::kNullArgument);
    EXPECT_EQ(j_setLinkId(9, 0, nullptr), status::kNullArgument);
    EXPECT_EQ(j_getHyperlinkText(9, nullptr), status::kNullArgument);
    EXPECT_EQ(j_getTargetFileId(0, nullptr), status::kNullArgument);
    EXPECT_EQ(j_setTargetFileId(0, nullptr), status::kNullArgument);
    EXPECT_EQ(j_loadFile(nullptr, 3), status::kNullArgument);
    EXPECT_EQ(j_rewriteFile(nullptr, 3), status::kNullArgument);
}

TEST_F(LinkTableTest, IndexesOutsideTheTableAreRefusedWithIndexAndCount) {
    add("a");
    add("b");
    add("c");
    id64 found{};
    EXPECT_EQ(j_getLinkId(5, 0, &found), status::kIndexOutOfRange);
    EXPECT_EQ(error_params(), "5|3");
    EXPECT_EQ(j_getLinkId(-1, 0, &found), status::kIndexOutOfRange);
    EXPECT_EQ(error_params(), "-1|3");
    EXPECT_EQ(j_getLinkId(2, 0, &found), status::kSuccess);
}

TEST_F(LinkTableTest, ChangesOfPathAndIdAreKeptApart) {
    add("C:\\a.doc");
    add("C:\\b.doc");
    EXPECT_EQ(j_setLinkFileName(0, "c:\\A.DOC", 0), 0);
    EXPECT_EQ(link(0).change_status, 0) << "letter case alone is no change";
    EXPECT_EQ(link_path(0), "C:\\a.doc");

    const id64 seven = id(7);
    EXPECT_EQ(j_setLinkFileName(0, "C:\\new.doc", 0), 0);
    EXPECT_EQ(link(0).change_status, 2);
    EXPECT_EQ(j_setLinkId(0, 0, &seven), 0);
    EXPECT_EQ(link(0).change_status, 3);
    EXPECT_EQ(j_setLinkId(1, 0, &seven), 0);
    EXPECT_EQ(link(1).change_status, 1);
    EXPECT_EQ(j_setLinkId(1, 0, &seven), 0) << "the same id once more";
    EXPECT_EQ(j_setLinkFileName(1, "x", 0), 0);
    EXPECT_EQ(link(1).change_status, 3);
    EXPECT_EQ(link_id(1), 7u);
    EXPECT_EQ(link(0).initial_file_name, "C:\\a.doc");
}

TEST_F(LinkTableTest, ANameThatIsTooLongMarksTheLinkAndKeepsTheOldName) {
    add("old");
    const std::string longest(1023, 'x');
    EXPECT_EQ(j_setLinkFileName(0, (longest + "x").c_str(), 0), status::kTextTooLong);
    EXPECT_EQ(error_params(), longest + "x|1024");
    EXPECT_EQ(link_path(0), "old");
    EXPECT_EQ(link(0).change_status, 2);
    EXPECT_EQ(j_setLinkFileName(0, longest.c_str(), 0), 0);
    EXPECT_EQ(link_path(0), longest);
}

TEST_F(LinkTableTest, AddingResetsTheTemplateAndLogsWhatHasAName) {
    const std::size_t before = log_lines().size();
    LinkRecord record;
    record.file_name = "named";
    record.box_text = Shared(StoredText(bytes::Bytes(4, 't'), true, true));
    record.text_range_end = 4;
    EXPECT_EQ(record.hyperlink_text(), "tttt");
    record.change_status = 3;
    record.property_id = 9;
    record.link_id = id(4);
    ps_addLinkRecord(&record);
    EXPECT_EQ(record.change_status, 0);
    EXPECT_EQ(record.hyperlink_text(), "");
    EXPECT_EQ(record.property_id, 0u);
    EXPECT_EQ(b_id64IsClear(&record.link_id), 1);
    add("");
    EXPECT_EQ(log_lines(before), std::vector<std::string>{"Adding link to file named"});
    EXPECT_THROW(ps_addLinkRecord(nullptr), int);
    EXPECT_THROW(add(std::string(1024, 'x')), int);
}

TEST_F(LinkTableTest, TheFirstChangedUseOfAnObjectIsFoundBehindUnchangedOnes) {
    add("same", 4);
    LinkRecord* second = add("same", 4);
    add("other", 5);
    EXPECT_EQ(ps_findChangedLinkByOrdinal(4), nullptr);
    EXPECT_EQ(j_setLinkFileName(1, "changed", 0), 0);
    EXPECT_EQ(ps_findChangedLinkByOrdinal(4), second);
    EXPECT_EQ(ps_findChangedLinkByOrdinal(5), nullptr);
    EXPECT_EQ(ps_findChangedLinkByOrdinal(77), nullptr);
}

TEST_F(LinkTableTest, TheDocumentHoldsItsOwnLinksAndAllHyperlinks) {
    constexpr std::uint32_t document = 1;
    state().links.set_document_persist_id(document);
    LinkRecord* on_slide = add("text hyperlink", 0, 0x0FD7, 9);
    LinkRecord* picture = add("picture", -1, 0, 9);
    LinkRecord* sound = add("sound", 1, 0x1010, document);
    EXPECT_EQ(ps_nextLinkOfHolder(document, false, nullptr), on_slide);
    EXPECT_EQ(ps_nextLinkOfHolder(document, false, on_slide), sound);
    EXPECT_EQ(ps_nextLinkOfHolder(document, false, sound), nullptr);
    EXPECT_EQ(ps_nextLinkOfHolder(9, false, on_slide), picture);
    EXPECT_EQ(ps_nextLinkOfHolder(document, true, nullptr), nullptr);
    j_setLinkFileName(2, "changed", 0);
    EXPECT_EQ(ps_nextLinkOfHolder(document, true, nullptr), sound);
    EXPECT_EQ(ps_nextLinkOfHolder(3, false, nullptr), nullptr);
}

TEST_F(LinkTableTest, TemplatesAreFoundByIdAloneOrWithTheirType) {
    LinkRecord movie;
    movie.record_type = 0x1005;
    movie.external_object_id = 3;
    LinkRecord hyperlink;
    hyperlink.record_type = 0x0FD7;
    hyperlink.external_object_id = 3;
    v_addExternalObject(&movie);
    v_addExternalObject(&hyperlink);
    EXPECT_EQ(movie.slide_index, -1);
    EXPECT_EQ(movie.number_on_slide, -1);
    EXPECT_EQ(ps_findExternalObject(0, 3)->record_type, 0x1005u) << "the first of any type";
    EXPECT_EQ(ps_findExternalObject(0x0FD7, 3)->record_type, 0x0FD7u);
    EXPECT_EQ(ps_findExternalObject(0x1010, 3), nullptr);
    EXPECT_EQ(ps_findExternalObject(0, 4), nullptr);
}

TEST_F(LinkTableTest, StartingAgainKeepsTheHighestCeilingAndCutsLongOptions) {
    EXPECT_EQ(j_initDLL(300, 0, nullptr), 0);
    EXPECT_EQ(j_initDLL(3, 0, nullptr), 0);
    EXPECT_EQ(state().version_ceiling, 300);
    EXPECT_EQ(state().options, "het") << "null keeps the options";
    start(std::string(300, 't').c_str());
    EXPECT_EQ(state().options.size(), 259u);
    j_termDLL(0, 0);
    EXPECT_EQ(state().options, "");
}

TEST(LogPathTest, StandsBesideTheExecutableUnlessItIsTooLong) {
    EXPECT_EQ(log_path_for("C:\\Apps\\Host\\host.exe"), "C:\\Apps\\Host\\PPT.log");
    EXPECT_EQ(log_path_for("host"), "host\\PPT.log");
    const std::string folder(251, 'f');
    EXPECT_EQ(log_path_for(folder + "\\host.exe"), folder + "\\PPT.log");
    EXPECT_EQ(log_path_for(folder + "f\\host.exe"), "");
    const CodePageGuard code_page(932);
    EXPECT_EQ(log_path_for("C:\\Host\\\x83\\.exe"), "C:\\Host\\PPT.log") << "one character";
}

TEST_F(LinkTableTest, StandardExtensionsEndWithTheEmptyString) {
    char buffer[16];
    std::string masters;
    std::string targets;
    for (int i = 0; i <= 2; ++i) {
        v_getStandardMasterFileExtension(i, buffer);
        masters += std::string(buffer) + ";";
    }
    for (int i = 0; i <= 9; ++i) {
        v_getStandardTargetFileExtension(i, buffer);
        targets += std::string(buffer) + ";";
    }
    EXPECT_EQ(masters, "*.ppt;*.pps;;");
    EXPECT_EQ(targets, "*.ppt;*.gif;*.jpg;*.jpeg;*.wav;*.mid;*.wmf;*.doc;*.xls;;");
}

} // namespace
