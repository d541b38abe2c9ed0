#include "tests/filters/support/test_module.h"

#include <algorithm>
#include <stdexcept>

namespace brindlecast {
namespace {

std::wstring ProductFolder() {
    wchar_t buffer[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, buffer, MAX_PATH);
    std::wstring path = buffer;
    path.erase(path.find_last_of(L'\\'));
    path.erase(path.find_last_of(L'\\'));
    return path + L"\\bin\\";
}

} // namespace

TestModule::TestModule(const std::wstring& fileName)
    : module_(LoadLibraryExW((ProductFolder() + fileName).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (module_ == nullptr)
        throw std::runtime_error("module does not load, error " + std::to_string(GetLastError()));
}

TestModule::~TestModule() {
    FreeLibrary(module_);
}

HRESULT TestModule::GetClassObject(REFCLSID clsid, REFIID iid, void** out) const {
    using Function = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
    const auto function =
        reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")));
    return function != nullptr ? function(clsid, iid, out) : E_NOINTERFACE;
}

HRESULT TestModule::CanUnload() const {
    using Function = HRESULT(WINAPI*)();
    const auto function =
        reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, "DllCanUnloadNow")));
    return function != nullptr ? function() : E_NOINTERFACE;
}

Microsoft::WRL::ComPtr<IBaseFilter> TestModule::CreateFilter(REFCLSID clsid) const {
    Microsoft::WRL::ComPtr<IClassFactory> factory;
    Microsoft::WRL::ComPtr<IBaseFilter> filter;
    HRESULT result =
        GetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf()));
    if (SUCCEEDED(result))
        result = factory->CreateInstance(nullptr, IID_IBaseFilter,
                                         reinterpret_cast<void**>(filter.GetAddressOf()));
    if (FAILED(result))
        throw std::runtime_error("filter cannot be created, result " + std::to_string(result));
    return filter;
}

std::wstring MediaPath(const std::wstring& name) {
    const std::string folder = BRINDLECAST_MEDIA_DIR;
    std::wstring path = L"Z:";
    path.append(folder.begin(), folder.end());
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return path + L"\\" + name;
}

} // namespace brindlecast
