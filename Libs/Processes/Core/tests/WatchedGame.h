#pragma once

// The event that ends the game; the test that starts it owns it.
inline constexpr wchar_t WatchedGameQuitEvent[] = L"MorvaneWatchedGameQuit";
