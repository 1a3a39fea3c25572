// SPDX-License-Identifier: GPL-3.0-or-later
// JUCE asks for the display adapters before it makes its first window, and believes that it gets an answer.
// There is none where no graphics driver works (services, remote sessions, Wine without a display), so this
// stands in front of the system's function: an answer without adapters, which JUCE takes as "no vertical
// blank".
#include <windows.h>

#include <dxgi.h>

namespace {

class NoAdapters final : public IDXGIFactory {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool isOurs = id == __uuidof(IDXGIFactory) || id == __uuidof(IDXGIObject) || id == IID_IUnknown;
        *object = isOurs ? this : nullptr;
        return isOurs ? S_OK : E_NOINTERFACE;
    }
    // One for the life of the module.
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE EnumAdapters(UINT, IDXGIAdapter** adapter) override {
        *adapter = nullptr;
        return DXGI_ERROR_NOT_FOUND;
    }

    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID, UINT, const void*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID, const IUnknown*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID, UINT*, void*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetParent(REFIID, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE MakeWindowAssociation(HWND, UINT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetWindowAssociation(HWND*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateSwapChain(IUnknown*, DXGI_SWAP_CHAIN_DESC*, IDXGISwapChain**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CreateSoftwareAdapter(HMODULE, IDXGIAdapter**) override { return E_NOTIMPL; }
};

} // namespace

extern "C" HRESULT __stdcall CreateDXGIFactory(REFIID id, void** factory) {
    using Create = HRESULT(__stdcall*)(REFIID, void**);
    static NoAdapters none;
    *factory = nullptr;
    if (const HMODULE library = LoadLibraryW(L"dxgi.dll"))
        if (const auto create = reinterpret_cast<Create>(
                reinterpret_cast<void*>(GetProcAddress(library, "CreateDXGIFactory"))))
            if (SUCCEEDED(create(id, factory)) && *factory != nullptr) return S_OK;
    return none.QueryInterface(id, factory);
}
