#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace brindlecast::testing {

// Replaces functions of one living COM object, for as long as this lives: its table of functions by a copy
// that a test can write to. `Count` functions are copied.
template <std::size_t Count>
class InterfacePatch {
public:
    explicit InterfacePatch(void* object) : place(static_cast<void***>(object)), original(*place) {
        std::copy_n(original, Count, table.begin());
        *place = table.data();
    }
    ~InterfacePatch() { *place = original; }
    InterfacePatch(const InterfacePatch&) = delete;
    InterfacePatch& operator=(const InterfacePatch&) = delete;

    void Set(std::size_t slot, void* function) { table.at(slot) = function; }
    void Restore(std::size_t slot) { table.at(slot) = original[slot]; }
    [[nodiscard]] void* Original(std::size_t slot) const { return original[slot]; }

private:
    void*** const place;
    void** const original;
    std::array<void*, Count> table{};
};

} // namespace brindlecast::testing
