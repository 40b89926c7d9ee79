#include "DvarValueEditor.h"

#include "DvarSetting.h"
#include "GameText.h"
#include "Secrets.h"

#include <QAccessible>
#include <QLabel>
#include <QValidator>

#include <algorithm>
#include <utility>

namespace
{

GameText gameText(const DvarSetting &setting, const QString &typed)
{
    return holdsPassword(setting.dvar()) ? GameText::asItStands(typed) : GameText::of(typed);
}

/// Lets everything be typed, but only what the setting accepts be entered.
class DvarValueValidator : public QValidator
{
public:
    DvarValueValidator(std::shared_ptr<DvarSetting> setting, QObject *parent)
        : QValidator(parent), m_setting(std::move(setting))
    {
    }
    State validate(QString &text, int &) const override
    {
        const GameText judged = gameText(*m_setting, text);
        return judged.isSendable() && m_setting->validateValue(judged.text()) ? Acceptable : Intermediate;
    }

private:
    std::shared_ptr<DvarSetting> m_setting;
};

} // namespace

DvarValueEditor::DvarValueEditor(const std::shared_ptr<DvarSetting> &setting, QWidget *parent)
    : QLineEdit(parent), m_setting(setting), m_hint(new QLabel(parent))
{
    setObjectName(QStringLiteral("dvarValueEditor"));
    setAccessibleName(tr("Value of %1").arg(setting->name()));
    setAutoFillBackground(true);
    if (holdsPassword(setting->dvar()))
        setEchoMode(QLineEdit::PasswordEchoOnEdit);
    setValidator(new DvarValueValidator(setting, this));
    m_hint->setObjectName(QStringLiteral("dvarValueHint"));
    m_hint->setTextFormat(Qt::PlainText);
    m_hint->setText(hintText());
    m_hint->setMargin(4);
    m_hint->setFrameShape(QFrame::Box);
    m_hint->setAutoFillBackground(true);
    m_hint->setBackgroundRole(QPalette::ToolTipBase);
    m_hint->setForegroundRole(QPalette::ToolTipText);
    m_hint->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_hint->hide();
    connect(this, &QLineEdit::textEdited, this, &DvarValueEditor::updateHint);
}

DvarValueEditor::~DvarValueEditor()
{
    delete m_hint; // null if its parent was destroyed first
}

QString DvarValueEditor::value() const
{
    return gameText(*m_setting, text()).text();
}

QString DvarValueEditor::hintText() const
{
    const GameText judged = gameText(*m_setting, text());
    if (judged.isSendable())
        return m_setting->acceptedValues();
    return holdsPassword(m_setting->dvar()) ? tr("The game cannot hold a character of this password.")
                                            : judged.complaint();
}

void DvarValueEditor::showHint()
{
    const QString hint = hintText();
    if (m_hint.isNull() || (m_hint->isVisible() && m_hint->text() == hint))
        return;
    m_hint->setText(hint);
    setAccessibleDescription(hint);
    placeHint();
    m_hint->show();
    m_hint->raise();
    QAccessibleEvent announcement(m_hint, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

void DvarValueEditor::updateHint()
{
    if (!hasAcceptableInput())
        showHint();
    else if (!m_hint.isNull())
        m_hint->hide();
}

void DvarValueEditor::placeHint()
{
    if (m_hint.isNull())
        return;
    m_hint->adjustSize();
    const QRect room = parentWidget()->rect();
    const int left = std::max(0, std::min(x(), room.right() - m_hint->width()));
    const bool fitsBelow = geometry().bottom() + 1 + m_hint->height() <= room.bottom();
    m_hint->move(left, fitsBelow ? geometry().bottom() + 1 : y() - m_hint->height());
}

void DvarValueEditor::moveEvent(QMoveEvent *event)
{
    QLineEdit::moveEvent(event);
    placeHint();
}

void DvarValueEditor::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    placeHint();
}
