// Any bytes as a property set stream: whatever can be listed can be looked up, and what is not
// changed comes out as it went in.
#include "fuzz/support/property_view.h"
#include "fuzz/support/target.h"
#include "platform/base/error.h"

using fuzz::require;

void fuzz::test_one(bytes::View data) {
    bytes::Cursor input(data);
    const std::uint8_t choice = input.u8();
    const bytes::View rest = input.take(input.remaining());
    const bytes::Bytes stream(rest.begin(), rest.end());
    try {
        const property_set::PropertySet set = fuzz::open_property_set(choice, stream);
        const property_set::Section& section = set.section();
        for (const auto& [id, property] : fuzz::shown(section)) {
            require(!property.name || section.resolve(*property.name).has_value(),
                    "a name that is listed is found");
        }
        require(set.changed() || set.encode() == stream, "an unchanged stream is kept as it is");
        require(fuzz::shown(set.reverted().section()) == fuzz::shown(section),
                "the same bytes read the same");
    } catch (const platform::Error&) { // damage that leaves nothing to read
    }
}
