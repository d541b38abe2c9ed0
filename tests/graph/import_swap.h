#pragma once

#include <windows.h>

#include <cstring>
#include <string_view>

namespace brindlecast::testing {

// Lets calls of this program to one function of a library go to another for as long as it lives, to see what
// the system is asked for where its answer does not tell. Calls that the library makes itself stay.
class ImportSwap {
public:
    ImportSwap(std::string_view library, std::string_view function, void* replacement)
        : slot(FindSlot(library, function)), original(slot != nullptr ? *slot : nullptr) {
        Write(replacement);
    }
    ImportSwap(const ImportSwap&) = delete;
    ImportSwap& operator=(const ImportSwap&) = delete;
    ~ImportSwap() { Write(original); }

    // Null when the program does not import the function.
    [[nodiscard]] void* Original() const { return original; }

private:
    static void** FindSlot(std::string_view library, std::string_view function) {
        auto* const base = reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr));
        const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
        const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
        const DWORD imports =
            headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
        const auto* import = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports);
        for (; import->Name != 0; ++import) {
            if (_stricmp(reinterpret_cast<const char*>(base + import->Name), library.data()) != 0) {
                continue;
            }
            const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + import->OriginalFirstThunk);
            auto** address = reinterpret_cast<void**>(base + import->FirstThunk);
            for (; name->u1.AddressOfData != 0; ++name, ++address) {
                const bool isNumber = IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal);
                const auto* hint =
                    reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
                if (!isNumber && function == reinterpret_cast<const char*>(hint->Name)) {
                    return address;
                }
            }
        }
        return nullptr;
    }
    void Write(void* target) {
        DWORD protection = 0;
        if (slot != nullptr && VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection) != FALSE) {
            *slot = target;
            VirtualProtect(slot, sizeof(*slot), protection, &protection);
        }
    }

    void** slot;
    void* original;
};

} // namespace brindlecast::testing
