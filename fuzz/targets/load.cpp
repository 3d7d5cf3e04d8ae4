// A whole load through the exports: compound file, user edits, persist directory, the walk over the
// records, OLE objects, document properties.
#include "fuzz/support/deck_session.h"
#include "fuzz/support/target.h"
#include "plugin/exports.h"

void fuzz::test_one(bytes::View data) {
    static fuzz::DeckSession session;
    const fuzz::DeckInput input = fuzz::deck_input(data);
    const std::int32_t status = session.load(input);
    fuzz::require(status == 0 || n_getLinkCount() == 0, "after a failure nothing is loaded");
    session.link_paths();
    session.unload();
}
