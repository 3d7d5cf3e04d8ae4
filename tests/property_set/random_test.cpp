// Random changes against a model, and random damage. Seeds are fixed and named in every failure.
#include "tests/property_set/edits.h"

#include <map>
#include <random>

namespace property_set {
namespace {

using namespace std::string_view_literals;

class Dice {
  public:
    explicit Dice(std::uint32_t seed)
        : engine_(seed) {}
    std::uint32_t below(std::uint32_t bound) {
        return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(engine_);
    }

  private:
    std::mt19937 engine_;
};

std::u16string random_name(Dice& dice) {
    return std::u16string(1 + dice.below(3), static_cast<char16_t>(u'a' + dice.below(8)));
}

TEST(RandomChanges, AgreeWithAMapOfNamesToValues) {
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const std::uint16_t code_page = seed % 2 == 0 ? 1200 : 1252;
        const auto odd = raw_stream::lpstr("keep");
        PropertySet set = open_user(raw_stream::user_stream(
            {{1, raw_stream::i2(code_page)}, {500, odd}, {2 | kCompanionBit, odd}}));
        std::map<std::u16string, Value> model;
        for (int step = 0; step < 60; ++step) {
            const std::u16string name = random_name(dice);
            const std::optional<PropertyId> id = id_of(set, name);
            ASSERT_EQ(id.has_value(), model.contains(name));
            const std::uint32_t action = dice.below(8);
            if (action < 4) {
                model[name] = wide(std::u16string(dice.below(9), u'v'));
                put(set, name, model[name]);
            } else if (action < 5) {
                drop(set, name);
                model.erase(name);
            } else if (action < 7 && id) {
                const std::u16string target = random_name(dice);
                auto moved = model.extract(name);
                model.erase(target); // loses its name, keeps its value
                moved.key() = target;
                model.insert(std::move(moved));
                rename(set, *id, target);
            } else {
                set = set.reopened(set.encode());
            }
        }
        const bytes::Bytes written = set.encode();
        const PropertySet reread = set.reopened(written);
        for (const auto& [name, value] : model) {
            EXPECT_EQ(reread.section().read(name), value);
        }
        const auto values = raw_stream::parse(written, kUserDefinedFormat).values;
        EXPECT_EQ(values.at(500), odd);
        EXPECT_EQ(values.at(2 | kCompanionBit), odd);
    }
}

bytes::Bytes stream_to_damage(std::uint16_t code_page) {
    const auto name = [code_page](const char* text) {
        return code_page == 1200 ? raw_stream::utf16(std::u16string(text, text + 4))
                                 : raw_stream::latin(text);
    };
    return raw_stream::user_stream(
        {{0, raw_stream::dictionary(code_page, {{2, name("abcd")}, {3, name("efgh")}})},
         {1, raw_stream::i2(code_page)},
         {2, raw_stream::lpwstr(u"text")},
         {3, raw_stream::lpstr("bytes\0"sv)},
         {4, {65, 0, 0, 0, 4, 0, 0, 0, 1, 2, 3, 4}},
         {5, {71, 0, 0, 0, 8, 0, 0, 0, 3, 0, 0, 0, 1, 2, 3, 4}}},
        1);
}

// Does everything that a caller could do with the stream; all that may come is platform::Error.
void use(const bytes::Bytes& stream) {
    std::optional<PropertySet> set;
    failure_of([&] { set = PropertySet::create(stream, kUserDefinedFormat, 1252); });
    if (!set) {
        return;
    }
    for (const PropertyInfo& info : set->section().list()) {
        failure_of([&] { set->section().read(info.id); });
    }
    const bool written = !failure_of([&] {
        rename(*set, 3, u"third");
        drop(*set, PropertyId{2});
        put(*set, u"new", wide(u"x"));
    });
    if (written) {
        const PropertySet reread = open_user(set->encode());
        EXPECT_EQ(reread.section().damage(), "");
        EXPECT_EQ(reread.section().read(u"new"), wide(u"x"));
        EXPECT_EQ(id_of(reread, u"third"), 3u);
    }
}

TEST(RandomDamage, EndsInAnErrorOrASoundStream) {
    constexpr std::uint8_t kTelling[]{0, 1, 2, 3, 4, 8, 0x7F, 0x80, 0xFE, 0xFF};
    for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        bytes::Bytes stream = stream_to_damage(seed % 2 == 0 ? 1200 : 1252);
        for (std::uint32_t i = 1 + dice.below(4); i > 0; --i) {
            const std::uint32_t at = dice.below(static_cast<std::uint32_t>(stream.size()));
            stream[at] = kTelling[dice.below(std::size(kTelling))];
        }
        if (dice.below(4) == 0) {
            stream.resize(dice.below(static_cast<std::uint32_t>(stream.size())));
        }
        use(stream);
        if (HasFailure()) {
            break;
        }
    }
}

TEST(RandomDamage, EveryCutOfAStreamIsHandled) {
    const bytes::Bytes whole = stream_to_damage(1200);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        use({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
    }
}

} // namespace
} // namespace property_set
