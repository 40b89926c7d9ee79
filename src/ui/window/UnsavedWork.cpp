#include "UnsavedWork.h"

#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "MainTabs.h"
#include "PageDocument.h"
#include "TabPage.h"

UnsavedWork::UnsavedWork(MainTabs &tabs, const Rotations &rotations) : m_tabs(tabs), m_rotations(rotations)
{
    for (const RotationStore *store :
         {static_cast<RotationStore *>(&rotations.maps), static_cast<RotationStore *>(&rotations.messages)})
        QObject::connect(store, &RotationStore::unsavedWorkTouched, &m_context, [this] { m_isGivenUp = false; });
}

void UnsavedWork::finishEditing()
{
    for (TabPage *page : m_tabs.pages()) {
        if (PageDocument *document = page->document())
            document->finishEditing();
    }
}

bool UnsavedWork::isAny() const
{
    return !m_isGivenUp && (m_rotations.maps.hasUnsavedWork() || m_rotations.messages.hasUnsavedWork());
}

QCoro::Task<bool> UnsavedWork::settle()
{
    finishEditing();
    const bool areMapsSettled = co_await m_rotations.maps.saveUnsavedChanges();
    if (!areMapsSettled)
        co_return false;
    const bool areMessagesSettled = co_await m_rotations.messages.saveUnsavedChanges();
    co_return areMessagesSettled;
}
