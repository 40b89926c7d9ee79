#include "MainTabs.h"

#include "TabPage.h"

#include <QCoreApplication>
#include <QSignalBlocker>

MainTabs::MainTabs(const Workplace &workplace, QWidget *parent) : QTabWidget(parent)
{
    setObjectName(QStringLiteral("tabControlMain"));
    setAccessibleName(tr("Server"));
    setDocumentMode(true);
    for (const Tab &tab : tabs()) {
        TabPage *page = tab.make(workplace, this);
        page->setObjectName(QLatin1String(tab.name));
        page->hide();
        m_pages.append(page);
    }
    connect(this, &QTabWidget::currentChanged, this, &MainTabs::tellPages);
}

TabPage *MainTabs::currentPage() const
{
    return qobject_cast<TabPage *>(currentWidget());
}

void MainTabs::arrange(TabSet set)
{
    {
        const QSignalBlocker blocker(this); // the user has not chosen the tabs that are current in between
        clear();
        for (qsizetype i = 0; i < m_pages.size(); ++i) {
            const Tab &tab = tabs().at(i);
            if (tab.sets.testFlag(set))
                addTab(m_pages.at(i), QCoreApplication::translate("Tab", tab.label));
        }
        setCurrentIndex(0);
    }
    emit arranged();
    tellPages();
}

void MainTabs::bringLastToFront()
{
    const bool isFocusInside = isAncestorOf(window()->focusWidget());
    setCurrentIndex(count() - 1);
    if (isFocusInside)
        currentWidget()->setFocus();
}

void MainTabs::tellPages()
{
    TabPage *page = currentPage();
    if (page == m_front)
        return;
    if (m_front != nullptr)
        m_front->setInFront(false);
    m_front = page;
    if (page != nullptr)
        page->setInFront(true);
    emit currentPageChanged(page);
}
