// The system's structured storage as a Side, in direct mode.
#include "tests/windows/storage_sides.h"

#include <windows.h>

#include <objbase.h>

#include "platform/base/com_ptr.h"

#include <cstdio>
#include <cstdlib>

namespace storage_sides {
namespace {

constexpr DWORD kExclusive = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;

void require(HRESULT result, const char* call) {
    if (FAILED(result)) {
        std::fprintf(stderr, "%s gave 0x%08lX\n", call, static_cast<unsigned long>(result));
        std::abort();
    }
}

std::wstring wide(std::u16string_view text) {
    return {text.begin(), text.end()};
}

class SystemSide final : public Side {
  public:
    SystemSide(const std::filesystem::path& file, bool create) {
        if (create) {
            require(StgCreateDocfile(file.c_str(), kExclusive | STGM_CREATE, 0, root_.put()),
                    "StgCreateDocfile");
        } else {
            require(StgOpenStorage(file.c_str(), nullptr, kExclusive, nullptr, 0, root_.put()),
                    "StgOpenStorage");
        }
    }

    void add_storage(std::u16string_view path) override {
        const SplitPath parts = split(path);
        ComPtr<IStorage> added;
        require(storage(parts.storage)
                    .back()
                    ->CreateStorage(wide(parts.name).c_str(), kExclusive, 0, 0, added.put()),
                "CreateStorage");
    }

    void add_stream(std::u16string_view path) override {
        const SplitPath parts = split(path);
        ComPtr<IStream> added;
        require(storage(parts.storage)
                    .back()
                    ->CreateStream(wide(parts.name).c_str(), kExclusive, 0, 0, added.put()),
                "CreateStream");
    }

    void write_at(std::u16string_view path, std::uint32_t offset, bytes::View data) override {
        const OpenStream opened(*this, path);
        LARGE_INTEGER position{};
        position.QuadPart = offset;
        require(opened.stream->Seek(position, STREAM_SEEK_SET, nullptr), "Seek");
        ULONG written = 0;
        require(opened.stream->Write(data.data(), static_cast<ULONG>(data.size()), &written),
                "Write");
        if (written != data.size()) {
            require(STG_E_WRITEFAULT, "a short Write");
        }
    }

    void resize(std::u16string_view path, std::uint32_t size) override {
        ULARGE_INTEGER new_size{};
        new_size.QuadPart = size;
        require(OpenStream(*this, path).stream->SetSize(new_size), "SetSize");
    }

    void erase(std::u16string_view path) override {
        const SplitPath parts = split(path);
        require(storage(parts.storage).back()->DestroyElement(wide(parts.name).c_str()),
                "DestroyElement");
    }

    void rename(std::u16string_view path, std::u16string_view new_name) override {
        const SplitPath parts = split(path);
        require(storage(parts.storage)
                    .back()
                    ->RenameElement(wide(parts.name).c_str(), wide(new_name).c_str()),
                "RenameElement");
    }

    bool has(std::u16string_view path) override {
        const SplitPath parts = split(path);
        ComPtr<IStream> found;
        const Way way = storage(parts.storage);
        return SUCCEEDED(way.back()->OpenStream(wide(parts.name).c_str(), nullptr,
                                                STGM_READ | STGM_SHARE_EXCLUSIVE, 0, found.put()));
    }

    std::vector<Element> elements() override {
        std::vector<Element> out;
        collect(root_, u"", out);
        return out;
    }

    void save() override { require(root_->Commit(STGC_DEFAULT), "Commit"); }

  private:
    // A storage or stream is reverted when the storage that it was opened from is released, so the
    // whole way to it is held. The last is the one asked for.
    using Way = std::vector<ComPtr<IStorage>>;

    Way storage(std::u16string_view path) {
        if (path.empty()) {
            return {root_};
        }
        const SplitPath parts = split(path);
        Way way = storage(parts.storage);
        ComPtr<IStorage> opened;
        require(way.back()->OpenStorage(wide(parts.name).c_str(), nullptr, kExclusive, nullptr, 0,
                                        opened.put()),
                "OpenStorage");
        way.push_back(opened);
        return way;
    }

    struct OpenStream {
        OpenStream(SystemSide& side, std::u16string_view path) {
            const SplitPath parts = split(path);
            way = side.storage(parts.storage);
            require(way.back()->OpenStream(wide(parts.name).c_str(), nullptr, kExclusive, 0,
                                           stream.put()),
                    "OpenStream");
        }
        Way way; // outlives the stream
        ComPtr<IStream> stream;
    };

    static bytes::Bytes content(IStorage& storage, const wchar_t* name, ULONG size) {
        ComPtr<IStream> opened;
        require(
            storage.OpenStream(name, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, opened.put()),
            "OpenStream");
        bytes::Bytes out(size);
        ULONG read = 0;
        require(opened->Read(out.data(), size, &read), "Read");
        out.resize(read);
        return out;
    }

    static void collect(const ComPtr<IStorage>& storage, const std::u16string& prefix,
                        std::vector<Element>& out) {
        ComPtr<IEnumSTATSTG> enumeration;
        require(storage->EnumElements(0, nullptr, 0, enumeration.put()), "EnumElements");
        for (STATSTG found{}; enumeration->Next(1, &found, nullptr) == S_OK;) {
            const std::wstring name = found.pwcsName;
            CoTaskMemFree(found.pwcsName);
            Element element{
                prefix + std::u16string(name.begin(), name.end()), found.type == STGTY_STORAGE, {}};
            if (!element.is_storage) {
                element.content = content(*storage.get(), name.c_str(),
                                          static_cast<ULONG>(found.cbSize.QuadPart));
                out.push_back(std::move(element));
                continue;
            }
            out.push_back(element);
            ComPtr<IStorage> inner;
            require(storage->OpenStorage(name.c_str(), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE,
                                         nullptr, 0, inner.put()),
                    "OpenStorage");
            collect(inner, element.path + u"/", out);
        }
    }

    ComPtr<IStorage> root_;
};

} // namespace

std::unique_ptr<Side> make_system_side(const std::filesystem::path& file, bool create) {
    return std::make_unique<SystemSide>(file, create);
}

} // namespace storage_sides
