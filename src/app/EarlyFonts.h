#pragma once

#include <future>
#include <thread>

/// Reads the system's fonts on a thread of its own, beside the connection to the display: on Linux the first text of a
/// process waits for them, and they take as long as half of the rest of the start. Where fonts come from elsewhere it
/// does nothing. Main thread only.
class EarlyFonts
{
public:
    /// Begins to read how fonts are configured. Before the QApplication, with no other thread running.
    EarlyFonts();
    EarlyFonts(const EarlyFonts &) = delete;
    EarlyFonts &operator=(const EarlyFonts &) = delete;
    ~EarlyFonts() { finish(); }

    /// Waits until the configuration has been read, which the first text would read once more, and lets the fonts be
    /// listed while the caller goes on. With a QApplication.
    void listFonts();
    /// Waits until all has been read. Before the QApplication ends.
    void finish();

private:
    void read(int (*initialise)());

    std::promise<void> m_configured;
    std::promise<bool> m_mayList;
    bool m_isAnswered = false; ///< the promise above, by the main thread
    std::thread m_reading;
};
