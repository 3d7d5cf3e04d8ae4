// IStream over one stream of a compound file: a position of its own on the node that all handles of
// the stream share. Reading and writing go straight to the node; nothing is buffered here.
#pragma once

#include "platform/adapters/com_object.h"
#include "platform/posix/open_compound_file.h"

#include <memory>

namespace platform {

// Answered by StreamObjects only, with their IStream: by this CopyTo recognises a destination whose
// bytes it can copy in bulk.
inline constexpr IID IID_StreamObject{
    0x5D3A0C41, 0x7E92, 0x4B1F, {0x9C, 0x60, 0x2F, 0x81, 0xD7, 0x4A, 0x13, 0xE8}};

class StreamObject final : public ComObject<IStream> {
  public:
    StreamObject(std::shared_ptr<OpenElement> element,
                 std::shared_ptr<compound_file::StreamNode> node, DWORD mode,
                 std::uint64_t position = 0)
        : element_(std::move(element))
        , node_(std::move(node))
        , mode_(mode)
        , position_(position) {}

    HRESULT QueryInterface(REFIID iid, void** object) override;

    // At the end of the stream S_OK with fewer bytes than asked.
    HRESULT Read(void* buffer, ULONG count, ULONG* read) override;
    HRESULT Write(const void* buffer, ULONG count, ULONG* written) override;
    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    HRESULT SetSize(ULARGE_INTEGER size) override;

    // Both positions move by what was really copied, also when the copy ends early.
    HRESULT CopyTo(IStream* destination, ULARGE_INTEGER count, ULARGE_INTEGER* read,
                   ULARGE_INTEGER* written) override;
    HRESULT Commit(DWORD flags) override;
    HRESULT Revert() override;
    HRESULT LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) override;
    HRESULT UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) override;
    HRESULT Stat(STATSTG* stat, DWORD flags) override;
    HRESULT Clone(IStream** clone) override;

  private:
    struct Copied {
        std::uint64_t read = 0;
        std::uint64_t written = 0;
    };

    // A stream opened for writing flushes its file; an error stays with the engine, which reports
    // it to the next commit.
    ~StreamObject() override;

    HRESULT check_readable() const;
    HRESULT check_writable() const;
    HRESULT copy_to_own(StreamObject& destination, std::uint64_t count, Copied& copied);
    HRESULT copy_to_foreign(IStream& destination, std::uint64_t count, Copied& copied);

    std::shared_ptr<OpenElement> element_;
    std::shared_ptr<compound_file::StreamNode> node_;
    DWORD mode_;
    std::uint64_t position_;
};

} // namespace platform
