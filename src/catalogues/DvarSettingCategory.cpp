#include "DvarSettingCategory.h"

#include "DvarSetting.h"

#include <algorithm>

void DvarSettingCategory::setChildren(QList<std::shared_ptr<DvarSetting>> children)
{
    std::stable_sort(children.begin(), children.end(), [](const auto &left, const auto &right) {
        return left->name().compare(right->name(), Qt::CaseSensitive) < 0;
    });
    m_children = std::move(children);
}
