#include "EarlyFonts.h"

#include <QCoreApplication>
#include <QFontDatabase>

#include <system_error>
#include <utility>

#ifdef FERROW_HAS_FONTCONFIG
#include <fontconfig/fontconfig.h>

#include <clocale>
#include <memory>
#endif

/// The one there is; what Qt calls back knows of no object.
static EarlyFonts *&earlyFonts()
{
    static EarlyFonts *fonts = nullptr;
    return fonts;
}

#ifdef FERROW_HAS_FONTCONFIG
static void allowListingOnceConnected()
{
    if (earlyFonts() != nullptr)
        earlyFonts()->allowListing();
}

static QString familyBehind(const char *name)
{
    struct Destroy {
        void operator()(FcPattern *pattern) const { FcPatternDestroy(pattern); }
    };
    using Pattern = std::unique_ptr<FcPattern, Destroy>;

    const Pattern wanted(FcPatternCreate());
    if (wanted == nullptr ||
        FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8 *>(name)) == FcFalse ||
        FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern) == FcFalse)
        return {};
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const Pattern found(FcFontMatch(nullptr, wanted.get(), &result));
    FcChar8 *family = nullptr;
    if (found == nullptr || FcPatternGetString(found.get(), FC_FAMILY, 0, &family) != FcResultMatch)
        return {};
    return QString::fromUtf8(reinterpret_cast<const char *>(family));
}

EarlyFonts::EarlyFonts()
{
    // The reader asks for the locale, so it has to be what the QApplication is going to make it. It asks for variables
    // of the environment, too, of which Qt removes one that a desktop may have set, DESKTOP_STARTUP_ID.
    std::setlocale(LC_ALL, "");
    try {
        m_reading = std::thread(&EarlyFonts::read, this);
    } catch (const std::system_error &) {
        return; // no thread to be had: the fonts are read when they are needed
    }
    earlyFonts() = this;
    qAddPreRoutine(allowListingOnceConnected);
}

void EarlyFonts::read()
{
    m_sansSerif.set_value(FcInit() == FcTrue ? familyBehind("Sans Serif") : QString());
    if (m_mayList.get_future().get())
        static_cast<void>(QFontDatabase::isFixedPitch(QString())); // for which it lists them
}
#else
EarlyFonts::EarlyFonts() = default;
#endif

void EarlyFonts::allowListing()
{
    if (!std::exchange(m_isAnswered, true))
        m_mayList.set_value(true);
}

QString EarlyFonts::sansSerif()
{
    return m_reading.joinable() ? m_sansSerif.get_future().get() : QString();
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
