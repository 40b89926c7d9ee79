#include "Hand.h"

#include "ConfigBuilderView.h"
#include "DvarSetting.h"
#include "DvarSettingOutlineView.h"
#include "FormMainView.h"
#include "Hands.h"
#include "SectionTable.h"
#include "SettingsOutlineModel.h"
#include "SettingsView.h"

#include <QTest>

SettingsView *Hand::settingsInFront()
{
    for (SettingsView *view : {window().unrankedSettingsView, window().rankedSettingsView}) {
        if (goTo(view))
            return view;
    }
    return nullptr;
}

bool Hand::chooseGroup()
{
    SettingsView *view = settingsInFront();
    if (view == nullptr)
        return false;
    QListWidget *list = view->gametypeList != nullptr && isChance(2) ? view->gametypeList : view->settingsGroupList;
    return clickRow(*list);
}

/// A value that the type allows, and mostly the server as well; null for one that the hand leaves alone.
static QString otherValue(const DvarSetting &setting, int chance, const QString &text)
{
    // With another password or in another mode the hand could not go on.
    static const QStringList excepted{QStringLiteral("rcon_password"), QStringLiteral("sv_ranked"),
                                      QStringLiteral("playlist_enabled")};
    if (excepted.contains(setting.dvar()) || setting.dvarValue().isNull())
        return {};
    if (setting.type() == QLatin1String("string"))
        return text;
    return QString::number(chance);
}

bool Hand::editSetting()
{
    SettingsView *view = settingsInFront();
    if (view == nullptr)
        return false;
    DvarSettingOutlineView *outline =
        view->gametypeOutlineView != nullptr && isChance(2) ? view->gametypeOutlineView : view->settingsOutlineView;
    const auto *model = qobject_cast<SettingsOutlineModel *>(outline->model());
    if (model->rowCount() == 0 || outline->viewport()->height() < 30)
        return false;
    const QModelIndex category = model->index(below(model->rowCount()), 0);
    if (model->rowCount(category) == 0)
        return false;
    const QModelIndex row = model->index(below(model->rowCount(category)), 0, category);
    const QString value = otherValue(*model->settingAt(row), below(20), newText(QStringLiteral("Text")));
    outline->expand(category);
    Hands::click(*outline, row);
    if (value.isNull() || outline->currentIndex().parent() != category)
        return false;
    if (model->settingAt(row)->type() == QLatin1String("bool")) {
        QTest::keyClick(outline, Qt::Key_Space);
        return true;
    }
    QTest::keyClick(outline, Qt::Key_Return);
    auto *editor = outline->findChild<QLineEdit *>();
    if (editor == nullptr)
        return false;
    Hands::type(editor, value);
    QTest::keyClick(editor, Qt::Key_Return);
    return true;
}

bool Hand::filterSettings()
{
    SettingsView *view = settingsInFront();
    if (view == nullptr)
        return false;
    Hands::type(view->settingsFilterField, isChance(2) ? QString() : QString(QChar('a' + below(26))));
    return true;
}

bool Hand::chooseSections()
{
    ConfigBuilderView &view = *window().configBuilderView;
    if (!goTo(&view))
        return false;
    if (isChance(4))
        return press(isChance(4) ? view.selectAllButton : view.selectNoneButton);
    return clickRow(*view.configBuilderGeneralSettingsTable, Qt::ControlModifier) &&
           (isChance(2) || clickRow(*view.configBuilderGametypeSettingsTable, Qt::ControlModifier));
}

bool Hand::saveConfiguration()
{
    return goTo(window().configBuilderView) && press(window().configBuilderView->saveConfigButton);
}

bool Hand::loadConfiguration()
{
    return goTo(window().configBuilderView) && !configurations().isEmpty() &&
           press(window().configBuilderView->loadConfigButton);
}

bool Hand::compareConfiguration()
{
    return goTo(window().configBuilderView) && !configurations().isEmpty() &&
           press(window().configBuilderView->compareConfigButton);
}

QStringList Hand::configurations() const
{
    return m_folder.entryList({QStringLiteral("*.cfg")}, QDir::Files);
}
