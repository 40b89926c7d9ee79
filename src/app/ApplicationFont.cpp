#include "ApplicationFont.h"

#include <QApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QWidget>

#include <utility>
#include <vector>

ApplicationFont::ApplicationFont(QString sansSerif, QObject *parent)
    : QObject(parent), m_sansSerif(std::move(sansSerif))
{
    apply();
}

void ApplicationFont::follow(QWidget &window)
{
    window.installEventFilter(this);
}

bool ApplicationFont::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ThemeChange)
        apply();
    return QObject::eventFilter(watched, event);
}

void ApplicationFont::apply()
{
#ifndef Q_OS_MACOS
    // What a desktop may have chosen a font of its own for.
    constexpr const char *widgetsWithFonts[]{"QMenuBar", "QMenu", "QToolButton", "QHeaderView"};
    const QFont before = QApplication::font();
    std::vector<std::pair<const char *, QFont>> own;
    for (const char *widget : widgetsWithFonts) {
        if (const QFont font = QApplication::font(widget); font != before)
            own.emplace_back(widget, font);
    }
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    if (!m_sansSerif.isEmpty() && font.families() == QStringList(QStringLiteral("Sans Serif")))
        font.setFamilies({m_sansSerif});
    font.setStyleStrategy(QFont::PreferNoShaping);
    QApplication::setFont(font); // which forgets the widgets' own
    for (const auto &[widget, widgetFont] : own)
        QApplication::setFont(widgetFont, widget);
#endif
}
