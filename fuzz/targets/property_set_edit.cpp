// Parse, change, write, parse: every change does what it says and nothing else, a refused one does
// nothing, and what is written reads back.
#include "fuzz/support/property_view.h"
#include "fuzz/support/target.h"
#include "platform/base/error.h"
#include "platform/unicode/upcase.h"

#include <algorithm>
#include <array>

namespace {

using namespace property_set;
using fuzz::require;
using fuzz::ShownProperties;

std::u16string text(bytes::Cursor& input, std::size_t longest) {
    std::u16string result(input.u8() % (longest + 1), u'x');
    for (char16_t& unit : result) {
        unit = static_cast<char16_t>(input.u8() % 2 == 0 ? 'a' + input.u8() % 4 : input.u16());
        unit = unit == 0 ? u'0' : unit;
    }
    return result;
}

Value value(bytes::Cursor& input) {
    switch (input.u8() % 6) {
    case 0:
        return {Type::i4, static_cast<std::int32_t>(input.u32())};
    case 1:
        return {Type::lpstr, text(input, 9)};
    case 2:
        return {Type::filetime, input.u64()};
    case 3:
        return {Type::blob, bytes::Bytes(input.u8(), input.u8())};
    case 4:
        return {Type::cf, Clipboard{input.u32(), bytes::Bytes(input.u8(), input.u8())}};
    default:
        return {Type::lpwstr, text(input, 9)};
    }
}

// Mostly an id that is there.
PropertyId id(bytes::Cursor& input, const ShownProperties& known) {
    const std::uint8_t choice = input.u8();
    if (known.empty() || choice % 4 == 0) {
        return input.u8() % 2 == 0 ? choice / 4U : input.u32();
    }
    return std::next(known.begin(), choice / 4 % static_cast<int>(known.size()))->first;
}

PropertyKey key(bytes::Cursor& input, const ShownProperties& known) {
    if (input.u8() % 2 == 0) {
        return text(input, 3);
    }
    return id(input, known);
}

bool same_name(const std::optional<std::u16string>& a, const std::u16string& b) {
    const auto is_same = [](char16_t x, char16_t y) {
        return unicode::upper(x) == unicode::upper(y);
    };
    return a && std::equal(a->begin(), a->end(), b.begin(), b.end(), is_same);
}

// The properties but one are as they were; others lose the name that the one was given.
void compare_others(ShownProperties before, ShownProperties now, PropertyId changed,
                    const std::u16string* given_name) {
    before.erase(changed);
    now.erase(changed);
    for (auto& [other, property] : before) {
        const auto found = now.find(other);
        if (given_name != nullptr && found != now.end() && !found->second.name &&
            same_name(property.name, *given_name)) {
            property.name.reset();
        }
    }
    require(before == now, "a change leaves the other properties alone");
}

class Editor {
  public:
    explicit Editor(Section& section)
        : section_(section)
        , before_(fuzz::shown(section)) {}

    // Each throws platform::Error when the section refuses.
    void change(bytes::Cursor& input) {
        switch (input.u8() % 4) {
        case 0:
        case 1:
            return write(input);
        case 2:
            return remove(input);
        default:
            return rename(input);
        }
    }

    void require_unchanged() const {
        require(fuzz::shown(section_) == before_, "a refused change changes nothing");
    }

  private:
    void write(bytes::Cursor& input) {
        const Assignment assignment{key(input, before_), value(input)};
        section_.write({&assignment, 1}, kFirstOrdinaryId, kMaxStreamSize);
        const std::optional<PropertyId> written = section_.resolve(assignment.key);
        require(written && section_.read(*written) == assignment.value,
                "a value that was written can be read");
        compare_others(before_, fuzz::shown(section_), *written, nullptr);
    }

    void remove(bytes::Cursor& input) {
        const PropertyKey gone = key(input, before_);
        const std::optional<PropertyId> removed = section_.resolve(gone);
        section_.remove({&gone, 1});
        if (removed) {
            require(!section_.read(*removed) && section_.name_of(*removed) == nullptr,
                    "a removed property has neither value nor name");
        }
        compare_others(before_, fuzz::shown(section_), removed.value_or(0), nullptr);
    }

    void rename(bytes::Cursor& input) {
        const Naming naming{id(input, before_), text(input, 4)};
        section_.rename({&naming, 1});
        require(section_.resolve(naming.name) == naming.id, "a new name leads to its property");
        compare_others(before_, fuzz::shown(section_), naming.id, &naming.name);
    }

    Section& section_;
    ShownProperties before_;
};

// A value that lacks its end cannot be decoded, nor its type be told when that is cut, until it is
// written with zeros behind it up to where the next one may begin.
void forget_completed(ShownProperties& reread, const ShownProperties& written) {
    for (auto& [id, property] : reread) {
        const auto known = written.find(id);
        if (known != written.end() && !known->second.value) {
            property.value.reset();
            property.type = known->second.type == 0 ? std::uint16_t{0} : property.type;
        }
    }
}

void edit(PropertySet& set, bytes::Cursor& input) {
    constexpr int kMostChanges = 24;
    for (int i = 0; i < kMostChanges && input.remaining() > 0; ++i) {
        Editor editor(set.section());
        try {
            editor.change(input);
        } catch (const platform::Error&) {
            editor.require_unchanged();
        }
    }
}

} // namespace

// The input is a choice, the length of the stream in 16 bits, the stream, and the changes.
void fuzz::test_one(bytes::View data) {
    bytes::Cursor input(data);
    const std::uint8_t choice = input.u8();
    const std::size_t length = input.u16();
    const bytes::View stream = input.take(std::min(length, input.remaining()));
    try {
        PropertySet set = fuzz::open_property_set(choice, {stream.begin(), stream.end()});
        edit(set, input);
        const bytes::Bytes written = set.encode();
        const PropertySet reread = set.reopened(written);
        const ShownProperties shown = fuzz::shown(set.section());
        ShownProperties shown_again = fuzz::shown(reread.section());
        forget_completed(shown_again, shown);
        require(shown_again == shown, "what was written reads back");
        require(reread.encode() == written, "reading it back changes nothing");
    } catch (const platform::Error&) { // damage: nothing can be read, or nothing is written
    }
}
