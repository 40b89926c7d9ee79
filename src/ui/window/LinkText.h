#pragma once

#include "Link.h"

#include <QCoreApplication>
#include <QString>

/// What the window says of the line to the server. Main thread only.
class LinkText
{
    Q_DECLARE_TR_FUNCTIONS(LinkText)

public:
    /// @param now  the steady clock's.
    LinkText(const Link &link, std::chrono::steady_clock::time_point now);

    /// One short line; empty when not connected, or when nothing is known yet.
    QString shortText() const;
    /// All that is measured.
    QString details() const;

private:
    QString lineText() const;

    Link::Kind m_kind;
    LinkState m_figures;
    QDateTime m_silentSince;
    std::chrono::milliseconds m_silentFor;
    std::chrono::steady_clock::time_point m_now;
};
