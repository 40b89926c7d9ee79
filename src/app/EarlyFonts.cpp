#include "EarlyFonts.h"

#include <QCoreApplication>
#include <QFontDatabase>

#include <clocale>
#include <system_error>
#include <utility>

#include <dlfcn.h>

/// The one there is; what Qt calls back knows of no object.
static EarlyFonts *&earlyFonts()
{
    static EarlyFonts *fonts = nullptr;
    return fonts;
}

static void allowListingOnceConnected()
{
    if (earlyFonts() != nullptr)
        earlyFonts()->allowListing();
}

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
        m_reading = std::thread(&EarlyFonts::read, this, initialise);
    } catch (const std::system_error &) {
        return; // no thread to be had: the fonts are read when they are needed
    }
    earlyFonts() = this;
    qAddPreRoutine(allowListingOnceConnected);
}

void EarlyFonts::read(int (*initialise)())
{
    initialise();
    m_configured.set_value();
    if (m_mayList.get_future().get())
        static_cast<void>(QFontDatabase::isFixedPitch(QString())); // for which it lists them
}

void EarlyFonts::allowListing()
{
    if (!std::exchange(m_isAnswered, true))
        m_mayList.set_value(true);
}

void EarlyFonts::awaitConfiguration()
{
    if (m_reading.joinable())
        m_configured.get_future().wait();
}

void EarlyFonts::finish()
{
    if (!m_reading.joinable())
        return;
    earlyFonts() = nullptr;
    if (!std::exchange(m_isAnswered, true))
        m_mayList.set_value(false);
    m_reading.join();
}
