#pragma once

#include <QObject>

/// Keeps actions that do not repeat from repeating while their key is held down. X11 tells a repeated key as one let go
/// and pressed again in the same millisecond, which Qt often misses.
class HeldKey : public QObject
{
    Q_OBJECT
public:
    /// Watches all keys of the application as long as it lives.
    explicit HeldKey(QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int m_releasedKey = 0;
    quint64 m_releasedAt = 0;  ///< in milliseconds; 0 for a release that bears no time
    bool m_isRepeated = false; ///< the key that is down
};
