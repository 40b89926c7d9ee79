#include "PlainHeader.h"

#include <QStyleOptionHeader>

PlainHeader::PlainHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(true);
    setHighlightSections(false);
}

QSize PlainHeader::sectionSizeFromContents(int section) const
{
    QStyleOptionHeader option;
    initStyleOption(&option);
    option.section = section;
    option.text = model() == nullptr ? QString() : model()->headerData(section, orientation()).toString();
    option.sortIndicator = isSortIndicatorShown() ? QStyleOptionHeader::SortDown : QStyleOptionHeader::None;
    return style()->sizeFromContents(QStyle::CT_HeaderSection, &option, QSize(), this);
}
