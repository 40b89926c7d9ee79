#pragma once

#include <QHeaderView>

/// A header that never shows a section in bold, and so need not load a bold font to measure one, as its base does.
class PlainHeader : public QHeaderView
{
    Q_OBJECT
public:
    explicit PlainHeader(QWidget *parent = nullptr);

protected:
    QSize sectionSizeFromContents(int section) const override;
};
