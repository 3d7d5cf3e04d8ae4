// The pages of a deck (masters, slides, notes), the shapes on them and the texts in these: a
// description that turns itself into records. Setters return the object, so that a page reads as
// one sentence; pages belong to their Deck, shapes and texts are values.
#pragma once

#include "tests/support/drawing_records.h"

namespace presentation_builder {

// A text with hyperlinks over ranges of it: the records of a text box or of a slide list.
class Text {
  public:
    // Type 4 is "other", the text of an ordinary box; 0 a title, 1 a body.
    explicit Text(std::u16string text, std::uint32_t type = 4);

    // Stored as RT_TextBytesAtom, one byte for each character.
    Text& as_bytes();
    // A hyperlink over the characters from `begin` up to `end`.
    Text& link(std::uint32_t hyperlink_id, std::uint32_t begin, std::uint32_t end);
    Text& link(const Action& action, std::uint32_t begin, std::uint32_t end);
    // The RT_StyleTextPropAtom, in place of a plain one.
    Text& style(Bytes record);
    // Any record, behind what is there already.
    Text& record(View record);

    Bytes records() const;

  private:
    std::u16string text_;
    std::uint32_t type_;
    bool as_bytes_ = false;
    std::optional<Bytes> style_;
    Bytes followers_;
};

class Shape {
  public:
    explicit Shape(std::uint16_t type = kRectangle);
    static Shape group(std::vector<Shape> members);

    // A hyperlink on the shape as a whole.
    Shape& link(std::uint32_t hyperlink_id);
    Shape& link(const Action& action);
    // A sound, movie or object that the shape shows, by its object id.
    Shape& object(std::uint32_t object_id);
    Shape& text(const Text& text);
    // A picture that is linked by path; makes the shape a picture frame.
    Shape& picture(std::u16string_view path);
    Shape& options(std::vector<ArtProperty> properties);
    // Any record, behind those of the shape.
    Shape& record(View record);
    // Leaves out the OfficeArtFSP.
    Shape& without_type();

    // The shape's record; takes one shape id for itself and one for each member.
    Bytes records(std::uint32_t& next_shape_id) const;

  private:
    std::uint16_t type_;
    bool is_group_ = false;
    bool has_type_ = true;
    std::vector<Shape> members_;
    std::vector<ArtProperty> options_;
    Bytes client_data_;
    Bytes textbox_;
    Bytes extra_;
};

enum class PageKind { slide = 0, master = 1, notes = 2 }; // the instances of the slide lists

class Page {
  public:
    Page(PageKind kind, std::uint32_t persist_id, std::uint32_t slide_id, std::uint32_t drawing_id);

    Page& shape(const Shape& shape);
    // RT_CString behind the drawing: the name of a slide or master.
    Page& name(std::u16string_view name);
    // A programmable string tag.
    Page& tag(std::u16string_view name, std::u16string_view value);
    // Any record: in front of the drawing, or at the end of the page.
    Page& record_before_drawing(View record);
    Page& record(View record);
    // A text of this page in the slide list, with its hyperlinks.
    Page& outline(const Text& text);
    // What the drawing claims, when that shall not be the number of shapes.
    Page& shape_count(std::uint32_t count);
    // A container of length 0.
    Page& empty();
    // The next save lists the page again though nothing changed.
    Page& touch();

    PageKind kind() const { return kind_; }
    std::uint32_t persist_id() const { return persist_id_; }
    std::uint32_t slide_id() const { return slide_id_; }

    // The page's container. Cost: its size, times the depth of its groups.
    Bytes records() const;
    // What the slide list says about the page: the RT_SlidePersistAtom and the texts.
    Bytes list_records() const;

    // Whether the page, or its part of the slide list, changed since `mark_saved`.
    bool is_changed() const { return changed_; }
    bool is_outline_changed() const { return outline_changed_; }
    void mark_saved();

  private:
    Bytes page_atom() const;
    Bytes drawing_records() const;

    PageKind kind_;
    std::uint32_t persist_id_;
    std::uint32_t slide_id_;
    std::uint32_t drawing_id_;
    std::vector<Shape> shapes_;
    std::optional<std::uint32_t> shape_count_;
    bool empty_ = false;
    Bytes before_drawing_;
    Bytes names_;
    Bytes tags_;
    Bytes at_end_;
    Bytes outline_;
    std::uint32_t outline_count_ = 0;
    bool changed_ = true;
    bool outline_changed_ = true;
};

} // namespace presentation_builder
