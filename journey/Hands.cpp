#include "Hands.h"

#include "Controls.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>

void Hands::click(QWidget *widget)
{
    QTest::mouseClick(widget, Qt::LeftButton);
}

void Hands::click(const QWidget &root, const char *button)
{
    click(control<QAbstractButton>(root, button));
}

static QPoint shownPlace(QAbstractItemView &view, const QModelIndex &cell)
{
    view.scrollTo(cell);
    return view.visualRect(cell).center();
}

void Hands::click(QAbstractItemView &view, const QModelIndex &cell, Qt::KeyboardModifiers modifiers)
{
    QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, shownPlace(view, cell));
}

void Hands::click(const QWidget &root, const char *view, const QString &text, Qt::KeyboardModifiers modifiers)
{
    auto &found = *control<QAbstractItemView>(root, view);
    click(found, find(found, text), modifiers);
}

void Hands::doubleClick(QAbstractItemView &view, const QModelIndex &cell)
{
    click(view, cell);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, shownPlace(view, cell)); // the second press alone
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, shownPlace(view, cell));
}

void Hands::showTab(QTabWidget &tabs, QWidget *page)
{
    QTest::mouseClick(tabs.tabBar(), Qt::LeftButton, {}, tabs.tabBar()->tabRect(tabs.indexOf(page)).center());
}

void Hands::type(QLineEdit *field, const QString &text)
{
    QTest::mouseClick(field, Qt::LeftButton);
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

void Hands::type(const QWidget &root, const char *field, const QString &text)
{
    type(control<QLineEdit>(root, field), text);
}

void Hands::fillForm(const QWidget &root, const QString &label, quint16 port)
{
    type(root, "labelField", label);
    type(root, "hostField", "127.0.0.1");
    type(root, "portField", QString::number(port));
    type(root, "passwordField", "demo");
}

void Hands::enter(QLineEdit *field, const QString &text)
{
    const QPointer<QLineEdit> typed(field);
    type(field, text);
    if (typed != nullptr)
        QTest::keyClick(field, Qt::Key_Return);
}

void Hands::chooseFile(const QWidget &panel, const QString &path)
{
    enter(control<QLineEdit>(panel, "fileNameEdit"), path);
}

void Hands::choose(QComboBox *popup, const QString &title)
{
    popup->setFocus();
    QTest::keyClick(popup, Qt::Key_Home);
    for (int item = popup->findText(title); item > 0; --item)
        QTest::keyClick(popup, Qt::Key_Down);
}

void Hands::choose(const QWidget &root, const char *popup, const QString &title)
{
    choose(control<QComboBox>(root, popup), title);
}

QModelIndex Hands::find(const QAbstractItemView &view, const QString &text)
{
    const QAbstractItemModel &model = *view.model();
    return model
        .match(model.index(0, 0), Qt::DisplayRole, text, 1,
               Qt::MatchExactly | Qt::MatchCaseSensitive | Qt::MatchRecursive)
        .value(0);
}
