#pragma once

namespace vlbase::platform {

/// Plays the default message sound.
void playMessageSound();

/// Plays a tone of 443 Hz for 100 ms and waits for its end.
///
/// On Linux only a console of the system has a tone. Elsewhere the bell of the controlling
/// terminal rings, or without one that of the X display, as the user has set them.
void playTone();

/// Starts a thread that plays the tone.
/// \return a value that stands for the thread, -1 on failure.
int startTone();

} // namespace vlbase::platform
