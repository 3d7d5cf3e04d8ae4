#include "fuzz/seeds/seeds.h"
#include "tests/support/ole_storage.h"
#include "tests/support/property_stream.h"

namespace fuzz {

namespace {

using namespace presentation_builder;

Bytes with_head(std::initializer_list<std::uint8_t> head, View data) {
    Bytes input(head);
    bytes::append(input, data);
    return input;
}

// A property set stream for parsing, and with some changes behind it for editing.
void add_properties(const Seeds& seeds, const std::string& name, std::uint8_t choice, View stream) {
    seeds.add("property_set_parse", name, with_head({choice}, stream));
    const auto size = static_cast<std::uint16_t>(stream.size());
    Bytes edited = with_head(
        {choice, static_cast<std::uint8_t>(size & 0xFF), static_cast<std::uint8_t>(size >> 8)},
        stream);
    for (std::uint8_t i = 0; i < 120; ++i) {
        edited.push_back(static_cast<std::uint8_t>(i * 37));
    }
    seeds.add("property_set_edit", name, edited);
}

void add_property_seeds(const Seeds& seeds) {
    const ListedHyperlink listed[] = {{u"http://example.org/"}, {u"b.doc", u"R1C1"}};
    for (const std::uint16_t page : std::initializer_list<std::uint16_t>{1252, 1200, 65001, 932}) {
        PropertyStream stream(page);
        stream.text(u"Client", u"somebody").ansi_text(u"abc", "value");
        stream.blob(u"_PID_HLINKS", hyperlink_list(listed));
        add_properties(seeds, "page-" + std::to_string(page), 0, stream.build());
    }
    const Bytes lone = PropertyStream().without_user_defined().build();
    add_properties(seeds, "lone", 2, lone);
    add_properties(seeds, "document", 1, lone);
    add_properties(seeds, "none", 2, {});
}

void add_ole_seeds(const Seeds& seeds) {
    const Bytes file = file_moniker({"C:\\old\\book.xls"});
    const Bytes wide = file_moniker({"C:\\?.xls", u"C:\\\u0416.xls"});
    const Bytes composite = composite_moniker({wide, item_moniker("Sheet1!R1C1", u"\u0416")});
    const Bytes relative = file_moniker({"book.xls", {}, 1});
    seeds.add("ole_link", "file", file);
    seeds.add("ole_link", "composite", composite);
    seeds.add("ole_link", "unknown", composite_moniker({file, unknown_moniker()}));
    seeds.add("ole_link", "stream", ole_stream({relative, file}));
    seeds.add("ole_link", "stream-composite", ole_stream({{}, composite}));
    seeds.add("ole_link", "stream-plain", ole_stream({relative, wide, 1, false}));
    seeds.add("ole_link", "stream-embedded", ole_stream({{}, {}, 0}));
}

void add_text_seeds(const Seeds& seeds) {
    const TextRun paragraphs[] = {{5, 0x1000F, Bytes(4)}, {6, 0xFFFFFFFF, Bytes(36)}};
    const TextRun characters[] = {{11, 0x3FFFFFF, Bytes(24)}};
    const TextRun special[] = {{4, 0x7, Bytes(6)}, {7, 0x60, Bytes(6)}};
    const auto body = [](const Bytes& record) { return View(record).subspan(8); };
    const auto style = text_style(paragraphs, characters);
    const auto info = text_special_info(special);
    // The kind, the length, two replacements of gap, old size and new size.
    seeds.add("text_runs", "style", with_head({0, 10, 0, 2, 1, 2, 5, 2, 3, 1}, body(style)));
    seeds.add("text_runs", "special", with_head({1, 10, 0, 1, 3, 4, 2}, body(info)));
    seeds.add("text_runs", "master", with_head({2, 10, 0, 1, 3, 4, 2}, body(master_text({4, 7}))));
}

void add_path_seeds(const Seeds& seeds) {
    const auto add = [&](const char* name, std::uint8_t page, std::string_view first,
                         std::string_view second) {
        Bytes input{page, static_cast<std::uint8_t>(first.size())};
        input.insert(input.end(), first.begin(), first.end());
        input.insert(input.end(), second.begin(), second.end());
        seeds.add("paths", name, input);
    };
    add("drive", 0, "C:\\docs\\talk.ppt", "c:/docs/figures/map.wmf");
    add("share", 0, "\\\\srv\\pub\\..\\talk.ppt", "\\\\SRV\\pub\\a.doc!R1C1");
    add("double-byte", 1, "C:\\\x83\x5C.\\\x95\x5C. .", ".\\..\\\x83\x5C");
    add("machine", 3, "/home/u/./talk.ppt", "..\\b+c.doc");
}

void add_code_page_seeds(const Seeds& seeds) {
    for (std::uint8_t page = 0; page < 16; ++page) {
        seeds.add(
            "code_pages", std::to_string(page),
            with_head({page, 0x41, 0x00, 0xC3, 0xA9, 0x16, 0x04, 0x83, 0x5C, 0x81, 0xFF}, {}));
    }
}

} // namespace

void add_engine_seeds(const Seeds& seeds) {
    const Bytes operations = with_head({0, 0, 0, 7, 2, 0, 9, 3, 0, 2, 5, 3, 9}, {});
    seeds.add("compound_operations", "some", operations);
    seeds.add("compound_damage", "version-3", with_head({0, 1, 4, 2, 0, 0, 0}, {}));
    seeds.add("compound_damage", "version-4", with_head({1, 2, 29, 0, 0, 0, 1}, {}));
    add_property_seeds(seeds);
    add_ole_seeds(seeds);
    add_text_seeds(seeds);
    add_path_seeds(seeds);
    add_code_page_seeds(seeds);
}

} // namespace fuzz
