#include "EarlyFonts.h"

#include <clocale>
#include <system_error>

#include <dlfcn.h>

EarlyFonts::EarlyFonts()
{
    // Looked up instead of linked: Qt has loaded the library if it means to use it.
    using Initialise = int (*)();
    const auto initialise = reinterpret_cast<Initialise>(dlsym(RTLD_DEFAULT, "FcInit"));
    if (initialise == nullptr)
        return;
    // The reader asks for the locale, so it has to be what the QApplication is going to make it.
    std::setlocale(LC_ALL, "");
    try {
        m_reading = std::thread([initialise] { initialise(); });
    } catch (const std::system_error &) {
        return; // no thread to be had: the fonts are read when they are needed
    }
}

void EarlyFonts::wait()
{
    if (m_reading.joinable())
        m_reading.join();
}
