#include "Journey.h"

#include "AppDelegate.h"
#include "Controls.h"
#include "FormMainView.h"
#include "Hands.h"
#include "LocalServer.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include <algorithm>

static constexpr int patience = 60000; // milliseconds; a slow machine under a sanitizer included

Journey::Journey(AppDelegate &application, const QString &pictures)
    : m_application(application), m_server(startedServer({})), m_playlistServer(startedServer({.playlists = true})),
      m_folder(pictures)
{
}

bool Journey::perform()
{
    const auto steps = {
        &Journey::openTheWindow,      &Journey::saveAServer,     &Journey::connectFromTheList,
        &Journey::kickAPlayer,        &Journey::messageAPlayer,  &Journey::loadAMap,
        &Journey::buildARotation,     &Journey::saveTheRotation, &Journey::setTheRotation,
        &Journey::addMessages,        &Journey::playMessages,    &Journey::sendAQuickMessage,
        &Journey::saveAConfiguration, &Journey::changeSettings,  &Journey::compareAndLoad,
        &Journey::useTheConsole,      &Journey::disconnect,      &Journey::connectByTheForm,
        &Journey::startAPlaylist,     &Journey::excludeAMap,     &Journey::disconnect,
    };
    try {
        for (const auto step : steps)
            (this->*step)();
    } catch (const Failure &failure) {
        m_failure = failure.what;
        takePicture("failed");
    }
    return m_failure.isEmpty();
}

void Journey::openTheWindow()
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); // another program's could not be typed into
    window().show();
    expect(QTest::qWaitForWindowExposed(&window(), patience), "the window opens");
    takePicture("welcome");
}

QWidget &Journey::window() const
{
    return m_application.window();
}

QWidget &Journey::page(const char *name) const
{
    return *control<QWidget>(window(), name);
}

QWidget &Journey::showTab(const char *pageName)
{
    QWidget &shown = page(pageName);
    Hands::showTab(*control<QTabWidget>(window(), "tabControlMain"), &shown);
    return shown;
}

QString Journey::text(const char *label) const
{
    return control<QLabel>(window(), label)->text();
}

QString Journey::transcript() const
{
    return control<QPlainTextEdit>(window(), "consoleOutput")->toPlainText();
}

void Journey::expect(bool isTrue, const QString &what)
{
    if (!isTrue)
        throw Failure{what};
}

void Journey::reach(const QString &what, const std::function<bool()> &isReached)
{
    const auto look = [&] {
        answerAlert();
        return isReached();
    };
    expect(QTest::qWaitFor(look, patience), what);
}

void Journey::settle()
{
    reach("what was begun comes to its end", [this] { return m_application.actions().isIdle(); });
}

QDialog &Journey::reachSheet(const QString &name)
{
    // One that has just been closed may still be there, and one of another page closed beside it.
    QDialog *open = nullptr;
    reach(QStringLiteral("a sheet opens: ") + name, [&] {
        const QList<QDialog *> sheets = window().findChildren<QDialog *>(name);
        const auto shown = std::find_if(sheets.begin(), sheets.end(), [](auto *sheet) { return sheet->isVisible(); });
        open = shown == sheets.end() ? nullptr : *shown;
        return open != nullptr && QTest::qWaitForWindowExposed(open, patience);
    });
    return *open;
}

void Journey::answerAlert()
{
    const auto *alert = window().findChild<QMessageBox *>("alert");
    if (alert == nullptr || !alert->isVisible() || alert->defaultButton() == nullptr)
        return;
    takePicture("alert");
    ++m_alerts;
    Hands::click(alert->defaultButton());
}

void Journey::takePicture(const QString &name)
{
    if (m_folder.isEmpty())
        return;
    QPixmap picture = window().grab();
    // Sheets are windows of their own: they are drawn where they stand.
    QPainter painter(&picture);
    for (QWidget *sheet : QApplication::topLevelWidgets()) {
        if (!sheet->isVisible() || sheet == &window() || !sheet->isModal())
            continue;
        const QPoint place = window().rect().center() - sheet->rect().center();
        painter.drawPixmap(place, sheet->grab());
        painter.setPen(window().palette().color(QPalette::Mid));
        painter.drawRect(QRect(place, sheet->size()).adjusted(-1, -1, 0, 0));
    }
    painter.end();
    const QString number = QString::number(m_paths.size() + 1).rightJustified(2, QLatin1Char('0'));
    const QString path = QDir(m_folder).absoluteFilePath(QStringLiteral("%1-%2.png").arg(number, name));
    if (picture.save(path))
        m_paths.append(path);
}
