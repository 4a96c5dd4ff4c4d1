#pragma once

#include <string>

struct HICON__;

namespace vlbase::platform {

/// An icon resource of a loaded module, while this object lives.
class NativeIcon
{
public:
    /// \a module is the file name of a module of this process. Texts are UTF-8.
    NativeIcon(const std::string& module, const std::string& resource);
    ~NativeIcon();
    NativeIcon(const NativeIcon&) = delete;
    NativeIcon& operator=(const NativeIcon&) = delete;

    /// Null when there is none of that name.
    HICON__* handle() const { return m_isFound ? m_handle : nullptr; }

private:
    HICON__* m_handle = nullptr;
    bool m_isFound = false;
};

} // namespace vlbase::platform
