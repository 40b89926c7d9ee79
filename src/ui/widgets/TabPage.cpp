#include "TabPage.h"

void TabPage::fillMenu(QMenu & /*menu*/) {}

void TabPage::fillFileMenu(QMenu & /*menu*/) {}

PageDocument *TabPage::document()
{
    return nullptr;
}

void TabPage::setInFront(bool /*isInFront*/) {}

QCoro::Task<> TabPage::didConnect()
{
    co_return;
}

void TabPage::willDisconnect() {}
