#include "Hand.h"

#include "AddMessageToRotationWindowController.h"
#include "CompareWindow.h"
#include "FormMainView.h"
#include "Hands.h"
#include "KeyHandlingTableView.h"
#include "MapGametypePairWindowController.h"
#include "PlayerSendMessage.h"
#include "RotationListDialog.h"
#include "RotationNameDialog.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QProgressBar>
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
    if (auto *panel = qobject_cast<PlayerSendMessage *>(&sheet)) {
        Hands::type(panel->messageTextField, newText(QStringLiteral("Private")));
        return press(panel->sendButton);
    }
    if (auto *adding = qobject_cast<AddMessageToRotationWindowController *>(&sheet)) {
        Hands::type(adding->messageTextField, newText(QStringLiteral("Notice")));
        Hands::type(adding->durationTextField, QString::number(1 + below(3)));
        return press(adding->addButton);
    }
    if (auto *picker = qobject_cast<MapGametypePairWindowController *>(&sheet)) {
        chooseAny(picker->mapsPopupButton);
        chooseAny(picker->gametypesPopupButton);
        return press(picker->addButton);
    }
    if (auto *comparison = qobject_cast<CompareWindow *>(&sheet)) {
        Hands::type(comparison->comparisonFilterField, isChance(2) ? QStringLiteral("sv") : QString());
        return isChance(3) ? press(comparison->loadOnlyDifferencesButton) : !isChance(3);
    }
    return fillRotationSheet(sheet);
}

bool Hand::fillRotationSheet(QDialog &sheet)
{
    static const QStringList names{QStringLiteral("Monday"),  QStringLiteral("Tuesday"), QStringLiteral("Friday"),
                                   QStringLiteral("Harbour"), QStringLiteral("Evening"), QStringLiteral("Empty")};
    if (auto *naming = qobject_cast<RotationNameDialog *>(&sheet))
        Hands::type(naming->nameField, names.at(below(static_cast<int>(names.size()))));
    else if (auto *listing = qobject_cast<RotationListDialog *>(&sheet);
             listing == nullptr || !clickRow(*listing->tableView))
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
