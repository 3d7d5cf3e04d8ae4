// COM objects that answer as a test tells them: one result for every call, and how many bytes a
// call claims to have moved.
#pragma once

#include "platform/platform.h"

#include <stdexcept>
#include <string>

namespace ppt::test {

struct Script {
    HRESULT result = S_OK;
    bool throws = false;
    std::uint64_t moved = 0;   // read, or the new position
    std::uint64_t written = 0; // of a copy

    HRESULT answer() const {
        if (throws) {
            throw std::runtime_error("inside the platform");
        }
        return result;
    }
};

template <class Interface>
class ScriptedObject : public Interface {
  public:
    Script script;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

class ScriptedStream final : public ScriptedObject<IStream> {
  public:
    DWORD origin_asked = 99;
    std::int64_t move_asked = 0;
    std::uint64_t count_asked = 0;

    HRESULT STDMETHODCALLTYPE Read(void*, ULONG count, ULONG* read) override {
        count_asked = count;
        *read = static_cast<ULONG>(script.moved);
        return script.answer();
    }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG count, ULONG* written) override {
        count_asked = count;
        *written = static_cast<ULONG>(script.moved);
        return script.answer();
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin,
                                   ULARGE_INTEGER* position) override {
        move_asked = move.QuadPart;
        origin_asked = origin;
        position->QuadPart = script.moved;
        return script.answer();
    }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER count, ULARGE_INTEGER* read,
                                     ULARGE_INTEGER* written) override {
        count_asked = count.QuadPart;
        read->QuadPart = script.moved;
        written->QuadPart = script.written;
        return script.answer();
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }
};

class ScriptedStorage final : public ScriptedObject<IStorage> {
  public:
    DWORD mode_asked = 0;

    HRESULT STDMETHODCALLTYPE OpenStream(const WCHAR*, void*, DWORD mode, DWORD,
                                         IStream**) override {
        mode_asked = mode;
        return script.answer();
    }
    HRESULT STDMETHODCALLTYPE OpenStorage(const WCHAR*, IStorage*, DWORD mode, WCHAR**, DWORD,
                                          IStorage**) override {
        mode_asked = mode;
        return script.answer();
    }
    HRESULT STDMETHODCALLTYPE CreateStream(const WCHAR*, DWORD, DWORD, DWORD, IStream**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CreateStorage(const WCHAR*, DWORD, DWORD, DWORD,
                                            IStorage**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CopyTo(DWORD, const IID*, WCHAR**, IStorage*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE MoveElementTo(const WCHAR*, IStorage*, const WCHAR*, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumElements(DWORD, void*, DWORD, IEnumSTATSTG**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DestroyElement(const WCHAR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RenameElement(const WCHAR*, const WCHAR*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetElementTimes(const WCHAR*, const FILETIME*, const FILETIME*,
                                              const FILETIME*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetClass(REFCLSID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStateBits(DWORD, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
};

} // namespace ppt::test
