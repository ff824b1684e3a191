#pragma once

namespace toolkit::Keyboard {

// Key codes as the logic knows them.
inline constexpr int kEscape = 53;

// Whether the key is down now, or was pressed since the last time it was asked about: a short
// tap between two looks still counts. Key events of the whole application are watched from the
// first call on; only the Esc key is known.
bool AsyncKeyDown(int keyCode);

// Starts watching the keys; the application does it when it starts.
void startWatching();

} // namespace toolkit::Keyboard
