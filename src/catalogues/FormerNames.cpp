#include "FormerNames.h"

#include <QFile>
#include <QStringList>

#include <algorithm>

FormerNames::FormerNames(const QString &resources)
{
    QFile file(resources + QStringLiteral("/former.names"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    const QString text = QString::fromUtf8(file.readAll());
    for (const QStringView line : QStringView(text).split(u'\n')) {
        const QList<QStringView> names = line.split(u'\t');
        if (names.size() == 2)
            m_names.insert(names.first().toString(), names.last().toString());
    }
}

QString FormerNames::presentWords(const QString &text) const
{
    QStringList words = text.split(u' ');
    for (QString &word : words)
        word = present(word);
    return words.join(u' ');
}

bool FormerNames::haveChangedFor(const QHash<QString, QString> &dvars) const
{
    const bool hasFormer = std::any_of(m_names.keyBegin(), m_names.keyEnd(),
                                       [&dvars](const QString &former) { return dvars.contains(former); });
    return !hasFormer && std::any_of(m_names.cbegin(), m_names.cend(),
                                     [&dvars](const QString &present) { return dvars.contains(present); });
}
