// A presentation with every kind of link in a folder of its own, and one way of changing them all
// with the built program.
#pragma once

#include "tests/faults/fault_deck.h"
#include "tests/pptlinks/built_program.h"

namespace fault {

class BuiltRelink : public pptlinks::BuiltProgramRun {
  protected:
    using Names = std::vector<std::string>;

    void SetUp() override {
        every_kind_of_link(Ids::as_properties).write(path("in.ppt"));
        source_ = content(path("in.ppt"));
        const pptlinks::RunResult result = run_built(relink_to("out.ppt"));
        ASSERT_EQ(result.status, 0) << result.error;
        report_ = result.out;
        whole_ = content(path("out.ppt"));
        ASSERT_GT(whole_.size(), source_.size());
        std::filesystem::remove(path("out.ppt"));
    }

    void TearDown() override { EXPECT_EQ(content(path("in.ppt")), source_); }

    static std::vector<std::string> relink_to(const std::string& out) {
        return {"relink",         "in.ppt", "-o", out, "--map", "C:=D:\\" + std::string(200, 'n'),
                "--trust-targets"};
    }

    static constexpr const char* kOld = "the old file";

    // What stands at OUT before a run: nothing, or an old file.
    void put_old_file(const std::string& name, bool there) const {
        std::filesystem::remove(path(name));
        if (there) {
            std::ofstream(path(name)) << kOld;
        }
    }

    std::string source_; // the bytes of in.ppt
    std::string whole_;  // the bytes of the rewritten copy
    std::string report_; // what a run says of it
};

} // namespace fault
