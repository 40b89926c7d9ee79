#include "Hand.h"

#include "Controls.h"
#include "Hands.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

bool Hand::answerFront()
{
    if (QWidget *popup = QApplication::activePopupWidget()) {
        popup->close();
        return true;
    }
    auto *sheet = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (sheet == nullptr)
        return false;
    if (auto *alert = qobject_cast<QMessageBox *>(sheet))
        answer(*alert);
    else if (auto *panel = qobject_cast<QFileDialog *>(sheet))
        chooseFile(*panel);
    else if (m_isInAHurry || !fillSheet(*sheet))
        close(*sheet);
    return true;
}

void Hand::answer(QMessageBox &alert)
{
    m_alerts.append(alert.informativeText());
    QList<QAbstractButton *> answers;
    for (QAbstractButton *button : alert.buttons()) {
        if (alert.buttonRole(button) != QMessageBox::ActionRole) // which shows the details
            answers.append(button);
    }
    // The second answer never begins anything new.
    const int last = static_cast<int>(answers.size()) - 1;
    Hands::click(answers.at(m_isInAHurry ? std::min(1, last) : below(last + 1)));
}

void Hand::chooseFile(QFileDialog &panel)
{
    const QStringList files = configurations();
    QString name = files.isEmpty() ? QString() : files.at(below(static_cast<int>(files.size())));
    if (panel.objectName() == QLatin1String("savePlayerListPanel"))
        name = QStringLiteral("players-%1.%2").arg(QString::number(below(4)), isChance(2) ? "csv" : "txt");
    else if (panel.acceptMode() == QFileDialog::AcceptSave)
        name = QStringLiteral("server-%1.cfg").arg(below(4));
    auto *field = panel.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    if (!m_isInAHurry && field != nullptr && !name.isEmpty() && !isChance(5)) {
        Hands::type(field, m_folder.filePath(name));
        QTest::keyClick(field, Qt::Key_Return);
    }
    if (panel.isVisible())
        panel.reject();
}

bool Hand::fillSheet(QDialog &sheet)
{
    if (sheet.findChild<QProgressBar *>() != nullptr)
        return !isChance(60);
    if (isChance(4))
        return false;
    const QString name = sheet.objectName();
    if (name == QLatin1String("playerSendMessagePanel")) {
        Hands::type(sheet, "messageTextField", newText(QStringLiteral("Private")));
        return press(sheet, "sendButton");
    }
    if (name == QLatin1String("AddMessageToRotationWindowController")) {
        Hands::type(sheet, "messageTextField", newText(QStringLiteral("Notice")));
        Hands::type(sheet, "durationTextField", QString::number(1 + below(3)));
        return press(sheet, "addButton");
    }
    if (name == QLatin1String("mapGametypePairPanel")) {
        chooseAny(control<QComboBox>(sheet, "mapsPopupButton"));
        chooseAny(control<QComboBox>(sheet, "gametypesPopupButton"));
        return press(sheet, "addButton");
    }
    if (name == QLatin1String("CompareWindow")) {
        Hands::type(sheet, "comparisonFilterField", isChance(2) ? QStringLiteral("sv") : QString());
        return isChance(3) ? press(sheet, "loadOnlyDifferencesButton") : !isChance(3);
    }
    return fillRotationSheet(sheet);
}

bool Hand::fillRotationSheet(QDialog &sheet)
{
    static const QStringList names{QStringLiteral("Monday"),  QStringLiteral("Tuesday"), QStringLiteral("Friday"),
                                   QStringLiteral("Harbour"), QStringLiteral("Evening"), QStringLiteral("Empty")};
    if (auto *name = sheet.findChild<QLineEdit *>(QStringLiteral("nameField")))
        Hands::type(name, names.at(below(static_cast<int>(names.size()))));
    else if (auto *rotations = sheet.findChild<QAbstractItemView *>(QStringLiteral("tableView"));
             rotations == nullptr || !clickRow(*rotations))
        return false;
    for (const char *button : {"openButton", "deleteButton", "saveButton", "addButton"}) {
        if (auto *found = sheet.findChild<QPushButton *>(QLatin1String(button)))
            return press(found);
    }
    return false;
}

void Hand::close(QDialog &sheet)
{
    QTest::keyClick(&sheet, Qt::Key_Escape);
}
