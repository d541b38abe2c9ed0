#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <objidl.h>

#include <set>

namespace brindlecast::testing {

// Watches the memory that COM interfaces hand over (CoTaskMemAlloc) between Start and Stop. There is one for
// the process, because the system keeps a spy for as long as memory that it saw is not freed.
class TaskMemorySpy final : public IMallocSpy {
public:
    static TaskMemorySpy& Instance() {
        static TaskMemorySpy spy;
        return spy;
    }

    void Start() {
        living.clear();
        allocations = 0;
        ASSERT_EQ(S_OK, CoRegisterMallocSpy(this));
    }
    void Stop() { CoRevokeMallocSpy(); }
    // Of the blocks that were allocated since Start.
    [[nodiscard]] unsigned Allocations() const { return allocations; }
    [[nodiscard]] std::size_t Living() const { return living.size(); }

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (iid != __uuidof(IUnknown) && iid != IID_IMallocSpy) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<IMallocSpy*>(this);
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP_(SIZE_T) PreAlloc(SIZE_T size) override { return size; }
    STDMETHODIMP_(void*) PostAlloc(void* block) override {
        ++allocations;
        living.insert(block);
        return block;
    }
    STDMETHODIMP_(void*) PreFree(void* block, BOOL) override {
        living.erase(block);
        return block;
    }
    STDMETHODIMP_(void) PostFree(BOOL) override {}
    STDMETHODIMP_(SIZE_T) PreRealloc(void* block, SIZE_T size, void** next, BOOL) override {
        *next = block;
        living.erase(block);
        return size;
    }
    STDMETHODIMP_(void*) PostRealloc(void* block, BOOL) override {
        living.insert(block);
        return block;
    }
    STDMETHODIMP_(void*) PreGetSize(void* block, BOOL) override { return block; }
    STDMETHODIMP_(SIZE_T) PostGetSize(SIZE_T size, BOOL) override { return size; }
    STDMETHODIMP_(void*) PreDidAlloc(void* block, BOOL) override { return block; }
    STDMETHODIMP_(int) PostDidAlloc(void*, BOOL, int answer) override { return answer; }
    STDMETHODIMP_(void) PreHeapMinimize() override {}
    STDMETHODIMP_(void) PostHeapMinimize() override {}

private:
    TaskMemorySpy() = default;

    std::set<void*> living;
    unsigned allocations = 0;
};

} // namespace brindlecast::testing
