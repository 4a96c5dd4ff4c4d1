#include <VLBase/platform/sounds.h>

#include <process.h>
#include <windows.h>

namespace vlbase::platform {

void playMessageSound()
{
    ::MessageBeep(0);
}

void playTone()
{
    constexpr DWORD frequencyHz = 443;
    constexpr DWORD durationMs = 100;
    ::Beep(frequencyHz, durationMs);
}

int startTone()
{
    return static_cast<int>(::_beginthread([](void*) { playTone(); }, 0, nullptr));
}

} // namespace vlbase::platform
