// See page.h.
#include "tests/support/page.h"

#include <utility>

namespace presentation_builder {

namespace {

using namespace record_type;

constexpr std::uint32_t kHasAnchorAndType = 0x0A00; // OfficeArtFSP: fHaveAnchor, fHaveSpt
constexpr std::uint32_t kShapeIdsPerDrawing = 1024;

Action click(std::uint32_t hyperlink_id) {
    Action action;
    action.hyperlink_id = hyperlink_id;
    return action;
}

} // namespace

Text::Text(std::u16string text, std::uint32_t type)
    : text_(std::move(text))
    , type_(type) {}

Text& Text::as_bytes() {
    as_bytes_ = true;
    return *this;
}

Text& Text::link(std::uint32_t hyperlink_id, std::uint32_t begin, std::uint32_t end) {
    return link(click(hyperlink_id), begin, end);
}

Text& Text::link(const Action& action, std::uint32_t begin, std::uint32_t end) {
    bytes::append(followers_, interactive_info(action));
    bytes::append(followers_, text_range(begin, end, action.mouse_over));
    return *this;
}

Text& Text::style(Bytes record) {
    style_ = std::move(record);
    return *this;
}

Text& Text::record(View record) {
    bytes::append(followers_, record);
    return *this;
}

Bytes Text::records() const {
    return join({text_header(type_), as_bytes_ ? text_bytes(text_) : text_chars(text_),
                 style_ ? *style_ : text_style(static_cast<std::uint32_t>(text_.size())),
                 followers_});
}

Shape::Shape(std::uint16_t type)
    : type_(type) {}

Shape Shape::group(std::vector<Shape> members) {
    Shape group(0);
    group.is_group_ = true;
    group.members_ = std::move(members);
    return group;
}

Shape& Shape::link(std::uint32_t hyperlink_id) {
    return link(click(hyperlink_id));
}

Shape& Shape::link(const Action& action) {
    bytes::append(client_data_, interactive_info(action));
    return *this;
}

Shape& Shape::object(std::uint32_t object_id) {
    bytes::append(client_data_, external_object_ref(object_id));
    return *this;
}

Shape& Shape::text(const Text& text) {
    bytes::append(textbox_, text.records());
    return *this;
}

Shape& Shape::picture(std::u16string_view path) {
    type_ = kPictureFrame;
    return options(linked_picture(path));
}

Shape& Shape::options(std::vector<ArtProperty> properties) {
    options_ = std::move(properties);
    return *this;
}

Shape& Shape::record(View record) {
    bytes::append(extra_, record);
    return *this;
}

Shape& Shape::without_type() {
    has_type_ = false;
    return *this;
}

Bytes Shape::records(std::uint32_t& next_shape_id) const {
    const std::uint32_t shape_id = next_shape_id++;
    if (is_group_) {
        Bytes members;
        for (const Shape& member : members_) {
            bytes::append(members, member.records(next_shape_id));
        }
        return shape_group(shape_id, false, members);
    }
    return container(0, kArtShape,
                     {has_type_ ? shape_atom(type_, shape_id, kHasAnchorAndType) : Bytes{},
                      options_.empty() ? Bytes{} : shape_options(options_),
                      client_anchor({500, 500, 2500, 1200}),
                      client_data_.empty() ? Bytes{} : client_data(client_data_),
                      textbox_.empty() ? Bytes{} : client_textbox(textbox_), extra_});
}

Page::Page(PageKind kind, std::uint32_t persist_id, std::uint32_t slide_id,
           std::uint32_t drawing_id)
    : kind_(kind)
    , persist_id_(persist_id)
    , slide_id_(slide_id)
    , drawing_id_(drawing_id) {}

Page& Page::shape(const Shape& shape) {
    shapes_.push_back(shape);
    return touch();
}

Page& Page::name(std::u16string_view name) {
    bytes::append(names_, cstring(kind_ == PageKind::master ? 2 : 3, name));
    return touch();
}

Page& Page::tag(std::u16string_view name, std::u16string_view value) {
    bytes::append(tags_, string_tag(name, value));
    return touch();
}

Page& Page::record_before_drawing(View record) {
    bytes::append(before_drawing_, record);
    return touch();
}

Page& Page::record(View record) {
    bytes::append(at_end_, record);
    return touch();
}

Page& Page::outline(const Text& text) {
    bytes::append(outline_, text.records());
    ++outline_count_;
    outline_changed_ = true;
    return *this;
}

Page& Page::shape_count(std::uint32_t count) {
    shape_count_ = count;
    return touch();
}

Page& Page::empty() {
    empty_ = true;
    return touch();
}

Page& Page::touch() {
    changed_ = true;
    return *this;
}

void Page::mark_saved() {
    changed_ = false;
    outline_changed_ = false;
}

Bytes Page::page_atom() const {
    Bytes body;
    if (kind_ == PageKind::notes) {
        bytes::append_u32(body, 0); // no slide in particular
        bytes::append_u32(body, 0);
        return atom(0, kNotesAtom, body, 1);
    }
    constexpr std::uint32_t kBlankLayout = 0x10;
    constexpr std::uint32_t kFirstMaster = 0x80000000;
    const std::uint32_t master = kind_ == PageKind::slide ? kFirstMaster : 0;
    for (const std::uint32_t value : {kBlankLayout, 0U, 0U, master, 0U, 7U}) {
        bytes::append_u32(body, value);
    }
    return atom(0, kSlideAtom, body, 2);
}

Bytes Page::drawing_records() const {
    const std::uint32_t first = drawing_id_ * kShapeIdsPerDrawing + 1;
    std::uint32_t next = first;
    Bytes shapes;
    for (const Shape& shape : shapes_) {
        bytes::append(shapes, shape.records(next));
    }
    // The outermost group and the background count as shapes too.
    return drawing(drawing_id_, shape_count_.value_or(next - first + 2), shapes);
}

Bytes Page::records() const {
    const std::uint16_t type = kind_ == PageKind::slide    ? kSlide
                               : kind_ == PageKind::master ? kMainMaster
                                                           : kNotes;
    if (empty_) {
        return container(0, type, {});
    }
    return container(0, type,
                     {page_atom(), before_drawing_, drawing_records(),
                      atom(1, kColorSchemeAtom, Bytes(32)), names_,
                      tags_.empty() ? Bytes{} : container(0, kProgTags, {tags_}), at_end_});
}

Bytes Page::list_records() const {
    return join({slide_persist_atom({persist_id_, slide_id_, outline_count_}), outline_});
}

} // namespace presentation_builder
