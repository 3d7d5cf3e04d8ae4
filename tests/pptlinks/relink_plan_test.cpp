// Which links --set and --map reach.
#include "pptlinks/relink_plan.h"

#include "pptlinks/failure.h"
#include "tests/pptlinks/code_page_guard.h"

#include <gtest/gtest.h>

namespace pptlinks {
namespace {

Link link_to(std::string path, std::int32_t ordinal, std::uint32_t object = 1) {
    Link link;
    link.path = std::move(path);
    link.object_list_ordinal = ordinal;
    link.external_object_id = object;
    return link;
}

RelinkPlan plan_of(const std::vector<Link>& links, const PathWishes& wishes) {
    RelinkPlan plan(static_cast<std::int32_t>(links.size()), [&links](std::int32_t index) {
        return links.at(static_cast<std::size_t>(index));
    });
    plan.apply(wishes);
    return plan;
}

using Paths = std::vector<std::optional<std::string>>;

Paths new_paths(const RelinkPlan& plan) {
    Paths paths;
    const auto count = static_cast<std::int32_t>(plan.link_count());
    for (std::int32_t i = 0; i < count; ++i) {
        paths.push_back(plan.new_path(i));
    }
    return paths;
}

using Joined = std::vector<std::vector<std::int32_t>>;

TEST(RelinkPlan, UsesOfOneObjectChangeTogether) {
    const std::vector<Link> links{link_to("C:\\a", 4), link_to("C:\\b", 5), link_to("C:\\a", 4),
                                  link_to("C:\\p", -1), link_to("C:\\p", -1)};
    const RelinkPlan one_named = plan_of(links, {{{2, "X"}, {3, "P"}}, {}});
    EXPECT_EQ(new_paths(one_named), (Paths{"X", {}, "X", "P", {}}));
    EXPECT_EQ(one_named.joined(), (Joined{{0, 2}}));

    const RelinkPlan both_named = plan_of(links, {{{0, "X"}, {2, "X"}}, {}});
    EXPECT_EQ(new_paths(both_named), (Paths{"X", {}, "X", {}, {}}));
    EXPECT_TRUE(both_named.joined().empty());

    EXPECT_THROW(plan_of(links, {{{0, "X"}, {2, "Y"}}, {}}), UsageError);
}

TEST(RelinkPlan, SetWinsOverMap) {
    const std::vector<Link> links{link_to("C:\\a\\1", 0), link_to("C:\\a\\2", 1),
                                  link_to("C:\\a\\2", 1)};
    const RelinkPlan plan = plan_of(links, {{{2, "X"}}, {{"c:/a", "D:"}}});
    EXPECT_EQ(new_paths(plan), (Paths{"D:\\1", "X", "X"}));
    EXPECT_TRUE(plan.joined().empty()); // the map named link 1
}

// A use may have lost its path; the object has one all the same.
TEST(RelinkPlan, AMappedUseTakesTheOthersAlong) {
    const std::vector<Link> links{link_to("", 0), link_to("C:\\a\\1", 0)};
    const RelinkPlan plan = plan_of(links, {{}, {{"C:\\a", "D:"}}});
    EXPECT_EQ(new_paths(plan), (Paths{"D:\\1", "D:\\1"}));
    EXPECT_EQ(plan.joined(), (Joined{{0, 1}}));
}

TEST(RelinkPlan, VideosOfOneListAreKeptApart) {
    const std::vector<Link> links{link_to("C:\\a", 0, 1), link_to("D:\\b", 0, 2)};
    EXPECT_EQ(plan_of(links, {{{1, "X"}}, {}}).inseparable(), (std::vector<std::int32_t>{0, 1}));
    EXPECT_TRUE(plan_of(links, {{}, {{"E:", "F:"}}}).inseparable().empty());
}

TEST(RelinkPlan, APathThatIsNotKnownWholeIsOnlySet) {
    const CodePageGuard code_page(CP_UTF8);
    const std::vector<Link> links{link_to("C:\\??\\b", 0), link_to("http://a/b?c", 1),
                                  link_to("C:\\\xEF\xBF\xBD", 2), link_to("C:\\??\\b", 3),
                                  link_to("\\\\?\\C:\\a", 4)};
    const RelinkPlan plan = plan_of(
        links, {{{3, "X"}}, {{"C:", "D:"}, {"http://a", "http://b"}, {"\\\\?\\C:", "\\\\?\\D:"}}});
    EXPECT_EQ(new_paths(plan), (Paths{{}, "http://b/b?c", {}, "X", "\\\\?\\D:\\a"}));
    EXPECT_EQ(plan.not_known_whole(), (std::vector<std::int32_t>{0, 2}));

    const RelinkPlan replaced = plan_of(links, {{}, {{"C:\\??", "D:"}}});
    EXPECT_EQ(new_paths(replaced), (Paths{"D:\\b", {}, {}, "D:\\b", {}}));
    EXPECT_TRUE(replaced.not_known_whole().empty());
}

} // namespace
} // namespace pptlinks
