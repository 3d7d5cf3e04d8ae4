// How little stack loading and rewriting need: a thread has 256 KB of it left, for a presentation
// that is nested as deep as one may be and has everything that is looked into.
#include "tests/plugin/plugin_fixture.h"
#include "tests/support/ole_storage.h"
#include "tests/support/property_stream.h"

#include <functional>
#include <malloc.h>

namespace {

using namespace presentation_builder;

constexpr std::size_t kSmallStack = 256 * 1024;

// Calls the function when all of this thread's stack but the last 256 KB is used up. Wine gives
// more than a thread asks for, so that a small reservation alone would show nothing.
[[gnu::noinline]] void call_at_the_end(const std::function<void()>& function) {
    char here = 0;
    MEMORY_BASIC_INFORMATION region{};
    VirtualQuery(&here, &region, sizeof region);
    const auto left = static_cast<std::size_t>(&here - static_cast<char*>(region.AllocationBase));
    volatile char* const used = static_cast<char*>(_alloca(left - kSmallStack));
    used[0] = 1;
    function();
    EXPECT_EQ(used[0], 1);
}

DWORD WINAPI run_function(void* function) {
    call_at_the_end(*static_cast<std::function<void()>*>(function));
    return 0;
}

void run_on_small_stack(std::function<void()> function) {
    const HANDLE thread = CreateThread(nullptr, 0, run_function, &function, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

class SmallStack : public plugin_test::PluginTest {};

TEST_F(SmallStack, IsEnoughToLoadAndRewrite) {
    constexpr int kDeepest = 499; // groups in the outermost one
    Deck deck;
    const auto web = deck.hyperlink(u"http://example.org/");
    const Bytes storage = ole_storage(linked_object({{}, file_moniker({"C:\\old\\book.xls"})}));
    const auto book = deck.ole_link(storage_record(storage, true));
    Shape nested = Shape().picture(u"C:\\map.wmf");
    for (int depth = 0; depth < kDeepest; ++depth) {
        nested = Shape::group({nested});
    }
    deck.add_slide()
        .shape(nested)
        .shape(Shape().object(book))
        .shape(Shape().text(Text(u"words of a link").link(web, 0, 5)));
    deck.properties(PropertyStream()
                        .blob(u"_PID_HLINKS", hyperlink_list({{{u"http://example.org/"}}}))
                        .build());
    std::int32_t loaded = -1;
    std::int32_t count = 0;
    std::int32_t rewritten = -1;
    run_on_small_stack([&] {
        start("het"); // COM, which is of the thread
        loaded = load(deck);
        count = n_getLinkCount();
        for (std::int32_t i = 0; i < count; ++i) {
            j_setLinkFileName(i, "http://longer.example.org/", 0);
        }
        rewritten = rewrite("out.ppt");
        j_termDLL(0, 0);
    });
    EXPECT_EQ(loaded, 0);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(rewritten, 0) << plugin_test::error_params();
}

} // namespace
