#include "SheetAlerts.h"

#include <QCoroFuture>

#include <QApplication>
#include <QFutureWatcher>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>

#include <algorithm>
#include <memory>

/// A server's reply can be as long as it likes; what does not fit a screen goes behind "Show Details".
static QString shortened(const QString &text)
{
    constexpr qsizetype mostLines = 16;
    constexpr qsizetype mostCharacters = 1200;
    QString head = text.section(QLatin1Char('\n'), 0, mostLines - 1);
    if (head.size() > mostCharacters)
        head.truncate(mostCharacters);
    return head.size() < text.size() ? head + QStringLiteral("…") : head;
}

/// At least as wide as the title bar needs for its title, and as the longest word of the text: lines break at blanks
/// and slashes alone, and what does not fit would be cut off.
static int widthFor(const QString &text, const QFontMetrics &metrics)
{
    static const QRegularExpression breaks(QStringLiteral("[\\s/]+"));
    int width = metrics.averageCharWidth() * 52;
    for (const QString &word : text.split(breaks))
        width = std::max(width, metrics.horizontalAdvance(word));
    return std::min(width, metrics.averageCharWidth() * 100);
}

/// The texts of the buttons, each with a letter of its own to press it by.
static QStringList withMnemonics(const QStringList &texts)
{
    QString taken;
    QStringList marked;
    for (QString text : texts) {
        text.replace(QLatin1Char('&'), QLatin1String("&&"));
        qsizetype place = 0;
        while (place < text.size() &&
               (!text.at(place).isLetterOrNumber() || taken.contains(text.at(place), Qt::CaseInsensitive)))
            ++place;
        if (place < text.size()) {
            taken += text.at(place);
            text.insert(place, QLatin1Char('&'));
        }
        marked.append(text);
    }
    return marked;
}

static QMessageBox::Icon iconFor(const QStringList &buttons, const AlertManner &manner)
{
    if (buttons.size() > 1)
        return QMessageBox::Question;
    return manner.isGoodNews ? QMessageBox::Information : QMessageBox::Warning;
}

static QMessageBox *makeBox(const QString &title, const QString &text, QMessageBox::Icon icon, QWidget *window)
{
    auto *box = new QMessageBox(window);
    box->setObjectName(QStringLiteral("alert"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowFlag(Qt::Sheet);
    box->setWindowModality(Qt::WindowModal);
    box->setWindowTitle(title);
    box->setIcon(icon);
    // The texts quote servers and files, which must not be taken for markup.
    box->setTextFormat(Qt::PlainText);
    box->setText(title);
    const QString head = shortened(text);
    box->setInformativeText(head);
    if (head != text)
        box->setDetailedText(text);
    for (QLabel *label : box->findChildren<QLabel *>())
        label->setTextFormat(Qt::PlainText);
    auto *informative = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel"));
    if (informative != nullptr)
        informative->setMinimumWidth(widthFor(head, informative->fontMetrics()));
    return box;
}

/// An alert over an open sheet belongs to that sheet: beside it, it could come to lie behind it or, where sheets of one
/// window queue, never be shown.
static QWidget *frontOf(QWidget *window)
{
    QWidget *front = QApplication::activeModalWidget();
    for (const QWidget *owner = front; owner != nullptr; owner = owner->parentWidget()) {
        if (owner == window)
            return front;
    }
    return window;
}

QCoro::Task<int> SheetAlerts::run(QString title, QString text, QStringList buttons, AlertManner manner)
{
    if (buttons.isEmpty())
        buttons.append(QMessageBox::tr("OK"));
    QMessageBox *box = makeBox(title, text, iconFor(buttons, manner), frontOf(m_window));
    const QStringList texts = withMnemonics(buttons);
    const auto pressed = std::make_shared<int>(static_cast<int>(buttons.size()) - 1);
    QAbstractButton *last = nullptr;
    for (int i = 0; i < buttons.size(); ++i) {
        QPushButton *button = box->addButton(texts.at(i), i == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
        QObject::connect(button, &QPushButton::clicked, box, [pressed, i] { *pressed = i; });
        if (i == manner.defaultButton)
            box->setDefaultButton(button);
        last = button;
    }
    box->setEscapeButton(last);
    auto closed = QtFuture::connect(box, &QDialog::finished).onCanceled([] { return int(QDialog::Rejected); });
    box->open();
    co_await closed;
    co_return *pressed;
}
