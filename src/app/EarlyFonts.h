#pragma once

#include <QString>

#include <future>
#include <thread>

/// Reads the system's fonts on a thread of its own, beside the connection to the display: on Linux the first text of a
/// process waits for them, and they take as long as half of the rest of the start. Where fonts come from elsewhere it
/// does nothing. Main thread only.
class EarlyFonts
{
public:
    /// Begins to read how fonts are configured, and lists the fonts as soon as the QApplication has connected to the
    /// display, which is in the middle of its start. Before the QApplication, with no other thread running; one at a
    /// time.
    EarlyFonts();
    EarlyFonts(const EarlyFonts &) = delete;
    EarlyFonts &operator=(const EarlyFonts &) = delete;
    ~EarlyFonts() { finish(); }

    /// Lets the fonts be listed from now on. With a connection to the display.
    void allowListing();
    /// Waits until the configuration has been read, which the first text would read once more. After the
    /// QApplication's start, before any text is drawn; at most once.
    /// @return the family that is configured to stand for "Sans Serif", empty if it is not known
    QString sansSerif();
    /// Waits until all has been read. Before the QApplication ends.
    void finish();

private:
    void read();

    std::promise<QString> m_sansSerif;
    std::promise<bool> m_mayList;
    bool m_isAnswered = false; ///< the promise above, by the main thread
    std::thread m_reading;
};
