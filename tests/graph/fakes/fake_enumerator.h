#pragma once

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <utility>

namespace brindlecast::testing {

// As many items as nobody asks for: such an enumerator has no end.
inline constexpr std::size_t kEndless = std::numeric_limits<std::size_t>::max();

// One enumerator for pins and for media types, over what `give` answers for the numbers below `count`.
template <class Interface, class Item, class Give>
class FakeEnumerator final : public Interface {
public:
    FakeEnumerator(Microsoft::WRL::ComPtr<IUnknown> theOwner, std::size_t theCount, Give theGive)
        : owner(std::move(theOwner)), count(theCount), give(theGive) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (iid != __uuidof(IUnknown) && iid != __uuidof(Interface)) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<Interface*>(this);
        this->AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    STDMETHODIMP Next(ULONG wanted, Item* items, ULONG* fetched) override {
        ULONG given = 0;
        for (; given < wanted && at < count; ++given, ++at) {
            items[given] = give(at);
        }
        if (fetched != nullptr) {
            *fetched = given;
        }
        return given == wanted ? S_OK : S_FALSE;
    }
    STDMETHODIMP Skip(ULONG skipped) override {
        at = std::min(count, at + skipped);
        return S_OK;
    }
    STDMETHODIMP Reset() override {
        at = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(Interface** out) override {
        auto* copy = new FakeEnumerator(owner, count, give);
        copy->at = at;
        *out = copy;
        return S_OK;
    }

private:
    std::atomic<ULONG> references{1};
    Microsoft::WRL::ComPtr<IUnknown> owner; // keeps the filter, and with it the pins, alive
    std::size_t count;
    std::size_t at = 0;
    Give give;
};

template <class Interface, class Item, class Give>
[[nodiscard]] Interface* MakeEnumerator(IUnknown* owner, std::size_t count, Give give) {
    return new FakeEnumerator<Interface, Item, Give>(owner, count, give);
}

} // namespace brindlecast::testing
