#pragma once

#include <utility>

namespace System {

/// Owns a driver library that is loaded while the process runs, and unloads it exactly once. Move-only;
/// empty by default. Whoever lets it go makes sure that no thread is inside the library's code any more.
/// Not synchronised: one thread at a time per object.
class DriverLibrary {
public:
    /// A name without a slash is looked for on the loader's search path. Runs the library's own
    /// initialisation, so it takes as long as that does. Empty and `errno` on failure.
    static DriverLibrary load(const char* name);

    DriverLibrary() = default;
    DriverLibrary(DriverLibrary&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    DriverLibrary& operator=(DriverLibrary&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    DriverLibrary(const DriverLibrary&) = delete;
    DriverLibrary& operator=(const DriverLibrary&) = delete;
    ~DriverLibrary();

    explicit operator bool() const { return m_handle != nullptr; }

    /// What the library exports under that name; null when it does not. Good for as long as the library
    /// is loaded.
    void* symbol(const char* name) const;

private:
    explicit DriverLibrary(void* handle) : m_handle(handle) {}

    void* m_handle = nullptr;
};

} // namespace System
