#pragma once

#include <thread>

/// Reads the system's font configuration on a thread of its own, beside the connection to the display: on Linux the
/// first text of a process waits for it, and it takes as long as half of the rest of the start. Where fonts come from
/// elsewhere it does nothing.
class EarlyFonts
{
public:
    /// Begins to read. Before the QApplication, on the main thread, with no other thread running.
    EarlyFonts();
    EarlyFonts(const EarlyFonts &) = delete;
    EarlyFonts &operator=(const EarlyFonts &) = delete;
    /// Waits for the reading to end.
    ~EarlyFonts() { wait(); }

    /// To be called before the first text is measured, which would begin to read once more.
    void wait();

private:
    std::thread m_reading;
};
