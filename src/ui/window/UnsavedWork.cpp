#include "UnsavedWork.h"

#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "MainTabs.h"
#include "PageDocument.h"
#include "TabPage.h"

UnsavedWork::UnsavedWork(MainTabs &tabs, const Rotations &rotations) : m_tabs(tabs), m_rotations(rotations) {}

void UnsavedWork::finishEditing()
{
    for (TabPage *page : m_tabs.pages()) {
        if (PageDocument *document = page->document())
            document->finishEditing();
    }
}

bool UnsavedWork::isAny() const
{
    return m_rotations.maps.hasUnsavedWork() || m_rotations.messages.hasUnsavedWork();
}

QCoro::Task<bool> UnsavedWork::settle()
{
    finishEditing();
    const bool areMapsSettled = co_await m_rotations.maps.saveUnsavedWork();
    if (!areMapsSettled)
        co_return false;
    const bool areMessagesSettled = co_await m_rotations.messages.saveUnsavedWork();
    co_return areMessagesSettled;
}
