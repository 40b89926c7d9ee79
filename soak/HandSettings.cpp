#include "Hand.h"

#include "Controls.h"
#include "DvarSetting.h"
#include "Hands.h"
#include "SettingsOutlineModel.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <QTest>
#include <QTreeView>

QWidget *Hand::settingsInFront()
{
    for (const char *name : {"unrankedSettingsView", "rankedSettingsView"}) {
        if (goTo(name))
            return &page(name);
    }
    return nullptr;
}

bool Hand::chooseGroup()
{
    const QWidget *view = settingsInFront();
    if (view == nullptr)
        return false;
    auto *gametypes = view->findChild<QAbstractItemView *>(QStringLiteral("gametypeList")); // if there are any
    return clickRow(gametypes != nullptr && isChance(2) ? *gametypes
                                                        : *control<QAbstractItemView>(*view, "settingsGroupList"));
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
    const QWidget *view = settingsInFront();
    if (view == nullptr)
        return false;
    // The game's and, if there is one, the gametype's.
    static const QRegularExpression names(QStringLiteral("^(ranked|unranked|gametype)OutlineView$"));
    const QList<QTreeView *> outlines = view->findChildren<QTreeView *>(names);
    QTreeView *outline = outlines.at(below(static_cast<int>(outlines.size())));
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
    const QWidget *view = settingsInFront();
    if (view == nullptr)
        return false;
    Hands::type(*view, "settingsFilterField", isChance(2) ? QString() : QString(QChar('a' + below(26))));
    return true;
}

bool Hand::chooseSections()
{
    if (!goTo("configBuilderView"))
        return false;
    if (isChance(4))
        return pressOn("configBuilderView", isChance(4) ? "selectAllButton" : "selectNoneButton");
    return clickRow(table("configBuilderView", "configBuilderGeneralSettingsTable"), Qt::ControlModifier) &&
           (isChance(2) ||
            clickRow(table("configBuilderView", "configBuilderGametypeSettingsTable"), Qt::ControlModifier));
}

bool Hand::saveConfiguration()
{
    return pressOn("configBuilderView", "saveConfigButton");
}

bool Hand::loadConfiguration()
{
    return !configurations().isEmpty() && pressOn("configBuilderView", "loadConfigButton");
}

bool Hand::compareConfiguration()
{
    return !configurations().isEmpty() && pressOn("configBuilderView", "compareConfigButton");
}

QStringList Hand::configurations() const
{
    return m_folder.entryList({QStringLiteral("*.cfg")}, QDir::Files);
}
