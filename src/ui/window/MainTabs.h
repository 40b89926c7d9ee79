#pragma once

#include "Tabs.h"

#include <QTabWidget>

/// The tabs of the window: all pages, of which those are shown that the mode of the server has.
class MainTabs : public QTabWidget
{
    Q_OBJECT
public:
    /// Makes all pages; none is shown before the first arrange(). What `workplace` holds outlives the tabs.
    explicit MainTabs(const Workplace &workplace, QWidget *parent = nullptr);

    /// All pages, shown or not, in the order of the table of tabs.
    QList<TabPage *> pages() const { return m_pages; }
    /// Null before the first arrange().
    TabPage *currentPage() const;

    /// Shows the tabs of `set`, the first of them in front.
    void arrange(TabSet set);
    /// The keyboard focus goes along if it was inside.
    void bringLastToFront();

signals:
    void arranged();
    /// @param page  null before the first arrange().
    void currentPageChanged(TabPage *page);

private:
    void tellPages();

    QList<TabPage *> m_pages;
    TabPage *m_front = nullptr; ///< who has been told so
};
